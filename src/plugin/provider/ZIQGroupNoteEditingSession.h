// The editing session of one note: the note as the user edits it, the rows the screens show, the
// entries as last fetched (the snapshot) and what changed against them. Nothing here talks to the
// service; the sync writes what the session found, the sender posts what it holds.
#pragma once

#include "plugin/model/ZIQGroupNoteInfo.h"
#include "plugin/provider/ZIQGroupNotePreviewCellData.h"
#include "plugin/provider/ZIQGroupNoteTextFieldCellData.h"

#include <QHash>

class ZIQGroupNoteEditingSession
{
public:
    /// Extension key -> 0 for an added entry, 1 for a modified one; deletions are never listed.
    using OperationDict = QHash<QString, int>;

    /// A session over the note carried by `message` (a note or a tips message), or over a new,
    /// empty note of the context's user when `message` is null.
    explicit ZIQGroupNoteEditingSession(const V2VORMessagePtr &message, const ZIQGroupNoteContext &context);

    const ZIQGroupNoteContext &context() const { return m_info->context(); }
    V2VORMessagePtr message() const { return m_message; }
    void setMessage(const V2VORMessagePtr &message) { m_message = message; }
    V2VORMessagePtr customMessage() const { return m_customMessage; }
    /// A new note's message once it is created for posting: the session works on it from then on.
    void adoptPostedMessage(const V2VORMessagePtr &message);
    ZIQGroupNoteInfoPtr info() const { return m_info; }
    const QList<ZIQGroupNoteTextFieldCellDataPtr> &dataList() const { return m_dataList; }
    const QList<ZIQGroupNotePreviewCellDataPtr> &previewDataList() const { return m_previewDataList; }
    const QList<ZIQGroupNoteItemPtr> &cachedLastItems() const { return m_cachedLastItems; }
    const QList<ZIQGroupNoteItemPtr> &addedItems() const { return m_addedItems; }
    const QList<ZIQGroupNoteItemPtr> &modifiedItems() const { return m_modifiedItems; }
    const QList<ZIQGroupNoteItemPtr> &deletedItems() const { return m_deletedItems; }
    bool isExpandAll() const { return m_isExpandAll; }
    void setIsExpandAll(bool expandAll) { m_isExpandAll = expandAll; }
    bool isItemsChanged() const { return m_isItemsChanged; }
    bool isConfigChanged() const { return m_isConfigChanged; }
    qint64 localShowLineNum() const { return m_localShowLineNum; }
    void setLocalShowLineNum(qint64 showLineNum) { m_localShowLineNum = showLineNum; }

    // Edits.
    void switchMultiSubmit(bool allow);
    void switchNotify(bool allow);
    void setDeadline(double deadlineTimestampInMS);
    void addNewItemFromOld(const ZIQGroupNoteItemPtr &oldItem);

    /// The session's message is the note's first message rather than one that refers to it.
    bool isOriginMessage() const;
    QString originMessageID() const;

    // Rows.
    void convertInfoToCellData();
    void restorePreviewDataList();
    ZIQGroupNoteTextFieldCellDataPtr createCellDataFromInfo(const ZIQGroupNoteInfoPtr &info, qsizetype index) const;
    ZIQGroupNotePreviewCellDataPtr createPreviewCellDataFromInfo(
        const ZIQGroupNoteInfoPtr &info, qsizetype index) const;

    /// Compares the entries with the snapshot and appends to the added, modified and deleted
    /// lists; an emptied entry gets the deletion marker as its content.
    void parseChangedOperationsByComparison();
    /// Rebuilds the rows and takes independent copies of the entries as the new snapshot.
    void refreshSnapshot();
    /// The extensions a write of the session's changes carries: added, then modified entries, then
    /// the settings when they changed. Marks the session's items as changed when any was added.
    QList<V2VORMessageExtension> changedExtensions(OperationDict *operationDict);
    /// Keys of the emptied entries, in order.
    QStringList deletedKeys() const;

private:
    double freeTimestamp(const QString &userID) const;

    V2VORMessagePtr m_message;
    V2VORMessagePtr m_customMessage;
    ZIQGroupNoteInfoPtr m_info;
    QList<ZIQGroupNoteTextFieldCellDataPtr> m_dataList;
    QList<ZIQGroupNotePreviewCellDataPtr> m_previewDataList;
    QList<ZIQGroupNoteItemPtr> m_cachedLastItems;
    QList<ZIQGroupNoteItemPtr> m_addedItems;
    QList<ZIQGroupNoteItemPtr> m_modifiedItems;
    QList<ZIQGroupNoteItemPtr> m_deletedItems;
    bool m_isExpandAll = false;
    bool m_isItemsChanged = false;
    bool m_isConfigChanged = false;
    qint64 m_localShowLineNum = 0;
};
