// A note's entries and settings on the service, for one editing session: fetching and merging
// them into the note (and taking the snapshot), writing the session's changes and deleting its
// emptied entries, removing superseded generations, and rewriting the note message's
// "show_line_num". The note message is addressed through its object when it is at hand and sent,
// else through its group and sequence.
//
// Every chain holds this sync, and with it the session, until it ends (ZIQGroupNoteGuard): a
// started operation finishes and answers its completion whatever became of the screen.
#pragma once

#include "plugin/provider/ZIQGroupNoteEditingSession.h"
#include "plugin/provider/ZIQGroupNoteExtensionClient.h"
#include "plugin/provider/ZIQGroupNoteGuard.h"

#include <memory>

class ZIQGroupNoteSync : public std::enable_shared_from_this<ZIQGroupNoteSync>
{
public:
    using Completion = ZIQGroupNoteExtensionClient::Completion;
    using InfoCompletion = std::function<void(int code, const QString &desc, const ZIQGroupNoteInfoPtr &info)>;
    using ResultsCompletion = ZIQGroupNoteExtensionClient::ResultsCompletion;
    using ListCompletion = ZIQGroupNoteExtensionClient::ListCompletion;
    using MessageCompletion = ZIQGroupNoteExtensionClient::MessageCompletion;
    using OperationDict = ZIQGroupNoteExtensionClient::OperationDict;

    /// Talks to the client of the session's context.
    explicit ZIQGroupNoteSync(std::shared_ptr<ZIQGroupNoteEditingSession> session);

    const std::shared_ptr<ZIQGroupNoteEditingSession> &session() const { return m_session; }
    V2VORManager *manager() const { return m_extensions.manager(); }
    /// Conflict retries spent on message modifications since the last successful one.
    qint64 modifyRetryCount() const { return m_modifyRetryCount; }

    /// Fetches and merges the newest entries and settings of the note.
    void getNoteStatistics(InfoCompletion completion);
    void refreshCreatorInfoWithCompletion(Completion completion);

    /// Writes the session's added and modified entries (and the settings when changed) in one
    /// call, then deletes the emptied ones, whatever the write answered.
    void setGroupNoteMessageExtensionWithCompletion(Completion completion);
    void setGroupNoteMessage(const V2VORMessagePtr &message, const QList<V2VORMessageExtension> &extensionList,
        const OperationDict &operationDict, ResultsCompletion completion);
    void deleteItemsOfMessage(const V2VORMessagePtr &message, const QStringList &keys, Completion completion);
    void getMessageExtension(const V2VORMessagePtr &message, InfoCompletion completion);
    void getMessageExtensionBySeq(quint64 seq, ListCompletion completion);
    void findMessageByMsgID(const QString &msgID, MessageCompletion completion) const;
    /// Rewrites the note message's "show_line_num" to the session's count when it differs.
    void modifyShowLineNumOfMessage(const V2VORMessagePtr &message);

private:
    ZIQGroupNoteGuard<ZIQGroupNoteSync> chain() { return ZIQGroupNoteGuard<ZIQGroupNoteSync>(shared_from_this()); }
    ZIQGroupNoteInfoPtr info() const { return m_session->info(); }
    QString groupID() const;
    void withOriginMessage(std::function<void(ZIQGroupNoteSync &sync, const V2VORMessagePtr &sentOrigin)> action);
    void mergeFetchedList(
        const V2VORMessagePtr &message, const QList<V2VORMessageExtension> &list, InfoCompletion completion);
    void innerModifyShowLineNumOfMessage(const V2VORMessagePtr &message);
    void finishModify(int code, const V2VORMessagePtr &current);

    std::shared_ptr<ZIQGroupNoteEditingSession> m_session;
    ZIQGroupNoteExtensionClient m_extensions;
    qint64 m_modifyRetryCount = 0;
};
