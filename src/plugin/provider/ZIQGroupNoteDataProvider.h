// The working copy of one group note behind a screen (the editor or the note card): it applies
// the user's edits, keeps the rows the screens show, finds what changed against the entries as
// last fetched, submits the changes, and is the only place that talks to the messaging client
// and the kit about a note: the entries and settings live in the note message's extensions,
// the note's head in the message body.
//
// Callbacks that outlive a call hold the provider weakly: once it is destroyed, nothing of it is
// touched, and a completion that does not depend on the provider is still called.
#pragma once

#include "kit/chat/ZIQSendMessageAppendParams.h"
#include "kit/core/ZIQNotifyProtocol.h"
#include "plugin/model/ZIQGroupNoteInfo.h"
#include "plugin/provider/ZIQGroupNoteExtensionClient.h"
#include "plugin/provider/ZIQGroupNotePreviewCellData.h"
#include "plugin/provider/ZIQGroupNoteTextFieldCellData.h"
#include "sdk/V2VORAdvancedMsgListener.h"
#include "sdk/V2VOROfflinePushInfo.h"

#include <QObject>

namespace platform {
struct Notification;
}
class ZIQGroupNoteDataProviderDelegate;

class ZIQGroupNoteDataProvider : public QObject, public V2VORAdvancedMsgListener, public ZIQNotifyProtocol
{
    Q_OBJECT

public:
    using Completion = ZIQGroupNoteExtensionClient::Completion;
    using InfoCompletion = std::function<void(int code, const QString &desc, const ZIQGroupNoteInfoPtr &info)>;
    using ResultsCompletion = ZIQGroupNoteExtensionClient::ResultsCompletion;
    using ListCompletion = ZIQGroupNoteExtensionClient::ListCompletion;
    using OperationDict = ZIQGroupNoteExtensionClient::OperationDict;
    using SendSucc = std::function<void()>;
    using SendFail = std::function<void(int code, const QString &desc)>;

    /// A session over the note carried by `message` (a note or a tips message), or over a new,
    /// empty note of the current user when `message` is null. The provider talks to the
    /// messaging client that is the shared one at construction.
    explicit ZIQGroupNoteDataProvider(const V2VORMessagePtr &message = {}, QObject *parent = nullptr);
    ~ZIQGroupNoteDataProvider() override;

    // Session state.
    V2VORMessagePtr message() const { return m_message; }
    void setMessage(const V2VORMessagePtr &message) { m_message = message; }
    /// The note message created by the last post of a new note.
    V2VORMessagePtr customMessage() const { return m_customMessage; }
    ZIQGroupNoteInfoPtr info() const { return m_info; }
    const QList<ZIQGroupNoteTextFieldCellDataPtr> &dataList() const { return m_dataList; }
    const QList<ZIQGroupNotePreviewCellDataPtr> &previewDataList() const { return m_previewDataList; }
    /// Independent copies of the entries as they stood after the last successful fetch.
    const QList<ZIQGroupNoteItemPtr> &cachedLastItems() const { return m_cachedLastItems; }
    const QList<ZIQGroupNoteItemPtr> &addedItems() const { return m_addedItems; }
    const QList<ZIQGroupNoteItemPtr> &modifiedItems() const { return m_modifiedItems; }
    const QList<ZIQGroupNoteItemPtr> &deletedItems() const { return m_deletedItems; }
    /// The card shows every entry rather than the collapsed form.
    bool isExpandAll() const { return m_isExpandAll; }
    void setIsExpandAll(bool expandAll) { m_isExpandAll = expandAll; }
    /// Extension changes refresh the note only while this is set (the editor sets it while its
    /// screen is not shown).
    bool needUpdateDataListSynchronously() const { return m_needUpdateDataListSynchronously; }
    void setNeedUpdateDataListSynchronously(bool need) { m_needUpdateDataListSynchronously = need; }
    /// Added entries were written; decides whether the group is told with a tips message.
    bool isItemsChanged() const { return m_isItemsChanged; }
    bool isConfigChanged() const { return m_isConfigChanged; }
    /// The row count written to the note message's "show_line_num".
    qint64 localShowLineNum() const { return m_localShowLineNum; }
    void setLocalShowLineNum(qint64 showLineNum) { m_localShowLineNum = showLineNum; }
    /// Conflict retries spent on message modifications since the last successful one.
    qint64 modifyRetryCount() const { return m_modifyRetryCount; }
    /// The callbacks of a send through the kit's chat service still waiting for its result event.
    const SendSucc &sendNoteMessageSucc() const { return m_sendNoteMessageSucc; }
    const SendFail &sendNoteMessageFail() const { return m_sendNoteMessageFail; }
    ZIQGroupNoteDataProviderDelegate *delegate() const;
    void setDelegate(ZIQGroupNoteDataProviderDelegate *delegate);
    /// The messaging client the provider talks to.
    V2VORManager *manager() const { return m_extensions.manager(); }

    // Edits; none of them touches the service.
    void switchMultiSubmit(bool allow);
    void switchNotify(bool allow);
    void setDeadline(double deadlineTimestampInMS);
    void editTitle(const QString &title);
    void editDesc(const QString &desc);
    void addExample(const QString &example);
    /// Rows change an entry's content directly on the shared entry; nothing to do here.
    void editItem(const ZIQGroupNoteItemPtr &item);
    void addNewItem();
    void repeatItem(const ZIQGroupNoteItemPtr &item);
    /// A new entry of the current user, copying the template's text when one is given.
    void addNewItemFromOld(const ZIQGroupNoteItemPtr &oldItem);

    // Queries.
    /// The session's message is the note's first message rather than one that refers to it.
    bool isOriginMessage() const;
    QString originMessageID() const;
    static QString displayedNameOfMemberInfo(const V2VORGroupMemberFullInfo &member);

    // Rows.
    void convertInfoToCellData();
    void restorePreviewDataList();
    ZIQGroupNoteTextFieldCellDataPtr createCellDataFromInfo(const ZIQGroupNoteInfoPtr &info, qsizetype index) const;
    ZIQGroupNotePreviewCellDataPtr createPreviewCellDataFromInfo(
        const ZIQGroupNoteInfoPtr &info, qsizetype index) const;
    ZIQGroupNotePreviewCellDataPtr createEmptyPreviewCellData() const;

    /// Compares the entries with the snapshot and appends to the added, modified and deleted
    /// lists; an emptied entry gets the deletion marker as its content.
    void parseChangedOperationsByComparison();

    // Submission and refresh.
    void submitInGroup(const QString &groupID, bool isCreateNew, Completion completion);
    /// Fetches and merges the newest entries and settings of the note.
    void getNoteStatistics(InfoCompletion completion);
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
    void findMessageByMsgID(const QString &msgID, ZIQGroupNoteExtensionClient::MessageCompletion completion) const;
    /// Rewrites the note message's "show_line_num" to localShowLineNum() when it differs.
    void modifyShowLineNumOfMessage(const V2VORMessagePtr &message);

    // Sending.
    void sendGroupNoteMessageToGroup(const QString &groupID, SendSucc succ, SendFail fail);
    void sendNoteNotifyMessageToGroup(const QString &groupID, SendSucc succ, SendFail fail);
    /// Through the kit's chat service when one is registered, else straight to the message's group.
    void sendNoteMessage(const V2VORMessagePtr &message, SendSucc succ, SendFail fail);
    void sendMessageByZIQChat(const V2VORMessagePtr &message);
    void sendMessageByHALVEX(const V2VORMessagePtr &message, const QString &groupID, SendSucc succ, SendFail fail);
    QString sendMessage(const V2VORMessagePtr &message, const QString &groupID,
        const ZIQSendMessageAppendParams &appendParams, V2VORProgress progress, SendSucc succ, SendFail fail);
    /// The offline push a message to `groupID` would carry.
    static V2VOROfflinePushInfo offlinePushInfo(const QString &groupID);

    // Remote changes.
    void onNotifyEvent(const QString &key, const QString &subKey, QObject *object, const QVariantMap &param) override;
    void onRecvMessageModified(const V2VORMessagePtr &message) override;
    void onRecvMessageExtensionsChanged(const QString &msgID, const QList<V2VORMessageExtension> &extensions) override;
    void onReceivedGroupNoteUpdated(const platform::Notification &notification);

private:
    void setupNotification();
    void refuse(const QString &localizationKey, const QString &desc, const Completion &completion) const;
    bool refuseNewNote(const Completion &completion) const;
    bool refuseExistingNote(const Completion &completion) const;
    void submitNewNote(const QString &groupID, Completion completion);
    void submitChanges(const QString &groupID, Completion completion);
    QList<V2VORMessageExtension> changedExtensions(OperationDict *operationDict);
    void withOriginMessage(std::function<void(const V2VORMessagePtr &sentOrigin)> action);
    void mergeFetchedList(
        const V2VORMessagePtr &message, const QList<V2VORMessageExtension> &list, InfoCompletion completion);
    void refreshSnapshot();
    void innerModifyShowLineNumOfMessage(const V2VORMessagePtr &message);
    void finishModify(int code, const V2VORMessagePtr &current);
    bool concernsMessage(const QString &msgID) const;
    void refreshAndTellDelegate();
    V2VORMessagePtr createNoteMessage(const QByteArray &body, const SendFail &fail) const;

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
    bool m_needUpdateDataListSynchronously = false;
    bool m_isItemsChanged = false;
    bool m_isConfigChanged = false;
    qint64 m_localShowLineNum = 0;
    qint64 m_modifyRetryCount = 0;
    ZIQGroupNoteDataProviderDelegate *m_delegate = nullptr;
    std::weak_ptr<const bool> m_delegateLifetime;
    SendSucc m_sendNoteMessageSucc;
    SendFail m_sendNoteMessageFail;
    ZIQGroupNoteExtensionClient m_extensions;
};
