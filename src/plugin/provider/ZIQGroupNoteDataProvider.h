// The working copy of one group note behind a screen (the editor or the note card): it applies
// the user's edits, keeps the rows the screens show, finds what changed against the entries as
// last fetched, submits the changes, and is the only place screens talk to about a note: the
// entries and settings live in the note message's extensions, the note's head in the message
// body.
//
// A thin front over its parts: the editing session (edits, rows, change detection), the sync
// (fetches, merges, writes, deletions, "show_line_num"), the sender (note and tips messages)
// and the live updates (remote changes). A started submission or fetch runs to its end and
// answers its completion even after the provider is gone (ZIQGroupNoteGuard); only the delegate
// and the Qt signals fall silent with the provider.
#pragma once

#include "plugin/provider/ZIQGroupNoteEditingSession.h"
#include "plugin/provider/ZIQGroupNoteSender.h"
#include "plugin/provider/ZIQGroupNoteSync.h"

#include <QObject>
#include <QSizeF>

namespace platform {
struct Notification;
}
class ZIQGroupNoteDataProviderDelegate;
class ZIQGroupNoteLiveUpdates;

class ZIQGroupNoteDataProvider : public QObject
{
    Q_OBJECT

public:
    using Completion = ZIQGroupNoteSync::Completion;
    using InfoCompletion = ZIQGroupNoteSync::InfoCompletion;
    using ResultsCompletion = ZIQGroupNoteSync::ResultsCompletion;
    using ListCompletion = ZIQGroupNoteSync::ListCompletion;
    using OperationDict = ZIQGroupNoteSync::OperationDict;
    using SendSucc = ZIQGroupNoteSender::SendSucc;
    using SendFail = ZIQGroupNoteSender::SendFail;

    /// A session over the note carried by `message` (a note or a tips message), or over a new,
    /// empty note of the current user when `message` is null, read through the process's current
    /// login as it stands at construction.
    explicit ZIQGroupNoteDataProvider(const V2VORMessagePtr &message = {}, QObject *parent = nullptr);
    /// As above, read by `context`: its client carries every call, its user is "myself".
    ZIQGroupNoteDataProvider(
        const V2VORMessagePtr &message, const ZIQGroupNoteContext &context, QObject *parent = nullptr);
    ~ZIQGroupNoteDataProvider() override;

    // Session state.
    V2VORMessagePtr message() const { return m_session->message(); }
    void setMessage(const V2VORMessagePtr &message) { m_session->setMessage(message); }
    /// The note message created by the last post of a new note.
    V2VORMessagePtr customMessage() const { return m_session->customMessage(); }
    ZIQGroupNoteInfoPtr info() const { return m_session->info(); }
    const QList<ZIQGroupNoteTextFieldCellDataPtr> &dataList() const { return m_session->dataList(); }
    const QList<ZIQGroupNotePreviewCellDataPtr> &previewDataList() const { return m_session->previewDataList(); }
    /// Independent copies of the entries as they stood after the last successful fetch.
    const QList<ZIQGroupNoteItemPtr> &cachedLastItems() const { return m_session->cachedLastItems(); }
    const QList<ZIQGroupNoteItemPtr> &addedItems() const { return m_session->addedItems(); }
    const QList<ZIQGroupNoteItemPtr> &modifiedItems() const { return m_session->modifiedItems(); }
    const QList<ZIQGroupNoteItemPtr> &deletedItems() const { return m_session->deletedItems(); }
    /// The card shows every entry rather than the collapsed form.
    bool isExpandAll() const { return m_session->isExpandAll(); }
    void setIsExpandAll(bool expandAll) { m_session->setIsExpandAll(expandAll); }
    /// Extension changes refresh the note only while this is set (the editor sets it while its
    /// screen is not shown).
    bool needUpdateDataListSynchronously() const;
    void setNeedUpdateDataListSynchronously(bool need);
    /// Added entries were written; decides whether the group is told with a tips message.
    bool isItemsChanged() const { return m_session->isItemsChanged(); }
    bool isConfigChanged() const { return m_session->isConfigChanged(); }
    /// The row count written to the note message's "show_line_num".
    qint64 localShowLineNum() const { return m_session->localShowLineNum(); }
    void setLocalShowLineNum(qint64 showLineNum) { m_session->setLocalShowLineNum(showLineNum); }
    /// Conflict retries spent on message modifications since the last successful one.
    qint64 modifyRetryCount() const { return m_sync->modifyRetryCount(); }
    /// The callbacks of a send through the kit's chat service still waiting for its result event.
    const SendSucc &sendNoteMessageSucc() const { return m_sender->sendNoteMessageSucc(); }
    const SendFail &sendNoteMessageFail() const { return m_sender->sendNoteMessageFail(); }
    ZIQGroupNoteDataProviderDelegate *delegate() const;
    void setDelegate(ZIQGroupNoteDataProviderDelegate *delegate);
    /// The messaging client the provider talks to.
    V2VORManager *manager() const { return m_sync->manager(); }

    // Edits; none of them touches the service.
    void switchMultiSubmit(bool allow) { m_session->switchMultiSubmit(allow); }
    void switchNotify(bool allow) { m_session->switchNotify(allow); }
    void setDeadline(double deadlineTimestampInMS) { m_session->setDeadline(deadlineTimestampInMS); }
    void editTitle(const QString &title) { info()->setTitle(title); }
    void editDesc(const QString &desc) { info()->setDesc(desc); }
    void addExample(const QString &example) { info()->setExample(example); }
    /// Rows change an entry's content directly on the shared entry; nothing to do here.
    void editItem(const ZIQGroupNoteItemPtr &) { }
    void addNewItem() { addNewItemFromOld(nullptr); }
    void repeatItem(const ZIQGroupNoteItemPtr &item) { addNewItemFromOld(item); }
    /// A new entry of the current user, copying the template's text when one is given.
    void addNewItemFromOld(const ZIQGroupNoteItemPtr &oldItem) { m_session->addNewItemFromOld(oldItem); }

    // Queries.
    /// The session's message is the note's first message rather than one that refers to it.
    bool isOriginMessage() const { return m_session->isOriginMessage(); }
    QString originMessageID() const { return m_session->originMessageID(); }
    static QString displayedNameOfMemberInfo(const V2VORGroupMemberFullInfo &member);

    // Rows.
    void convertInfoToCellData() { m_session->convertInfoToCellData(); }
    void restorePreviewDataList() { m_session->restorePreviewDataList(); }
    ZIQGroupNoteTextFieldCellDataPtr createCellDataFromInfo(const ZIQGroupNoteInfoPtr &info, qsizetype index) const
    {
        return m_session->createCellDataFromInfo(info, index);
    }
    ZIQGroupNotePreviewCellDataPtr createPreviewCellDataFromInfo(const ZIQGroupNoteInfoPtr &info, qsizetype index) const
    {
        return m_session->createPreviewCellDataFromInfo(info, index);
    }
    ZIQGroupNotePreviewCellDataPtr createEmptyPreviewCellData() const;

    /// Compares the entries with the snapshot and appends to the added, modified and deleted
    /// lists; an emptied entry gets the deletion marker as its content.
    void parseChangedOperationsByComparison() { m_session->parseChangedOperationsByComparison(); }

    // Submission and refresh.
    void submitInGroup(const QString &groupID, bool isCreateNew, Completion completion);
    /// Fetches and merges the newest entries and settings of the note.
    void getNoteStatistics(InfoCompletion completion) { m_sync->getNoteStatistics(std::move(completion)); }
    void refreshCreatorInfoWithCompletion(Completion completion);

    // Extension operations on the note message.
    /// Writes the session's added and modified entries (and the settings when changed) in one
    /// call, then deletes the emptied ones.
    void setGroupNoteMessageExtensionWithCompletion(Completion completion);
    void setGroupNoteMessage(const V2VORMessagePtr &message, const QList<V2VORMessageExtension> &extensionList,
        const OperationDict &operationDict, ResultsCompletion completion);
    void deleteItemsOfMessage(const V2VORMessagePtr &message, const QStringList &keys, Completion completion);
    void getMessageExtension(const V2VORMessagePtr &message, InfoCompletion completion);
    void getMessageExtensionBySeq(quint64 seq, ListCompletion completion);
    void findMessageByMsgID(const QString &msgID, ZIQGroupNoteSync::MessageCompletion completion) const;
    /// Rewrites the note message's "show_line_num" to localShowLineNum() when it differs.
    void modifyShowLineNumOfMessage(const V2VORMessagePtr &message) { m_sync->modifyShowLineNumOfMessage(message); }

    // Sending.
    void sendGroupNoteMessageToGroup(const QString &groupID, SendSucc succ, SendFail fail);
    void sendNoteNotifyMessageToGroup(const QString &groupID, SendSucc succ, SendFail fail);
    /// Through the kit's chat service when one is registered, else straight to the message's group.
    void sendNoteMessage(const V2VORMessagePtr &message, SendSucc succ, SendFail fail);
    void sendMessageByZIQChat(const V2VORMessagePtr &message) { m_sender->sendMessageByZIQChat(message); }
    void sendMessageByHALVEX(const V2VORMessagePtr &message, const QString &groupID, SendSucc succ, SendFail fail);
    QString sendMessage(const V2VORMessagePtr &message, const QString &groupID,
        const ZIQSendMessageAppendParams &appendParams, V2VORProgress progress, SendSucc succ, SendFail fail);
    /// The offline push a message to `groupID` would carry.
    static V2VOROfflinePushInfo offlinePushInfo(const QString &groupID);

    // Card size. The note card in the chat is measured from the note alone, before any view
    // exists; the card lays itself out from the same numbers. Sums are formed in single
    // precision, one term at a time, so that a row keeps exactly the height it had before.
    /// The width the card gives its title: 70% of the screen less the header's margins.
    static qreal titleWidth();
    /// The note's title in bold 14 within titleWidth(); 0 x 0 without a title.
    static QSizeF calcTitleSize(const ZIQGroupNoteInfoPtr &info);
    /// The card's header: icon line, title and info line.
    static QSizeF calcHeaderViewSize(const ZIQGroupNoteInfoPtr &info);
    /// The entry table of `count` rows.
    static float calcTableViewHeight(qint64 count);
    /// The whole card with `count` entry rows: header, table and the join button's strip.
    static QSizeF calcSizeOfInfo(const ZIQGroupNoteInfoPtr &info, qint64 count);

    // Remote changes. The provider's parts hear them by themselves; these take one passed on by hand.
    void onNotifyEvent(const QString &key, const QString &subKey, QObject *object, const QVariantMap &param);
    void onRecvMessageModified(const V2VORMessagePtr &message);
    void onRecvMessageExtensionsChanged(const QString &msgID, const QList<V2VORMessageExtension> &extensions);
    void onReceivedGroupNoteUpdated(const platform::Notification &notification);

Q_SIGNALS:
    /// The note was fetched anew after a remote or local change (beside the delegate's call).
    void noteUpdated(const ZIQGroupNoteInfoPtr &info);
    /// The note message's "show_line_num" was modified (beside the delegate's call).
    void showLineNumChanged(qint64 oldValue, qint64 newValue);

private:
    void refreshAndTellDelegate();
    void tellShowLineNumChanged(qint64 oldValue, qint64 newValue);

    std::shared_ptr<ZIQGroupNoteEditingSession> m_session;
    std::shared_ptr<ZIQGroupNoteSync> m_sync;
    std::shared_ptr<ZIQGroupNoteSender> m_sender;
    ZIQGroupNoteLiveUpdates *m_liveUpdates = nullptr;
    ZIQGroupNoteDataProviderDelegate *m_delegate = nullptr;
    std::weak_ptr<const bool> m_delegateLifetime;
};
