#include "plugin/provider/ZIQGroupNoteSync.h"

#include "plugin/model/ZIQGroupNoteMessageBody.h"
#include "plugin/provider/ZIQGroupNoteLog.h"
#include "sdk/V2VORErrorCode.h"

namespace {

// Retries of a "show_line_num" rewrite that met a newer version of the message.
constexpr qint64 kMaxModifyRetries = 2;
// A card never shows more collapsed rows, so a note at this value needs no rewrite.
constexpr qint64 kMaxShowLineNum = 2;

const QString kMessageEmptyDesc = QStringLiteral("message is empty, get failed");

bool isSent(int code, const V2VORMessagePtr &message)
{
    return code == 0 && message && message->status() == V2VOR_MSG_STATUS_SEND_SUCC;
}

} // namespace

ZIQGroupNoteSync::ZIQGroupNoteSync(std::shared_ptr<ZIQGroupNoteEditingSession> session)
    : m_session(std::move(session))
    , m_extensions(m_session->context().client)
{
}

QString ZIQGroupNoteSync::groupID() const
{
    const V2VORMessagePtr message = m_session->message();
    return message ? message->groupID() : QString();
}

void ZIQGroupNoteSync::getNoteStatistics(InfoCompletion completion)
{
    if (m_session->isOriginMessage()) {
        if (m_session->message())
            getMessageExtension(m_session->message(), std::move(completion));
        else if (completion)
            completion(-1, kMessageEmptyDesc, nullptr);
        return;
    }
    withOriginMessage([completion](ZIQGroupNoteSync &sync, const V2VORMessagePtr &sentOrigin) {
        if (sentOrigin) {
            sync.getMessageExtension(sentOrigin, completion);
            return;
        }
        const ZIQGroupNoteInfoPtr info = sync.info();
        sync.getMessageExtensionBySeq(info->originMsgSeq(),
            [info, completion](int code, const QString &desc, const QList<V2VORMessageExtension> &list) {
                if (code != 0) {
                    if (completion)
                        completion(code, desc, info);
                    return;
                }
                // Merged once more so that the answer follows the rows and the snapshot, which
                // the read refreshes only after reporting the list.
                info->updateWithExtensionList(list, [info, completion](int code, const QString &desc) {
                    if (completion)
                        completion(code, desc, info);
                });
            });
    });
}

void ZIQGroupNoteSync::refreshCreatorInfoWithCompletion(Completion completion)
{
    V2VORManager *sdk = manager();
    if (!sdk) {
        if (completion)
            completion(-1, ZIQGroupNoteExtensionClient::noClientDesc);
        return;
    }
    sdk->getGroupMembersInfo(groupID(), { info()->creatorUserID() },
        chain().step([completion](ZIQGroupNoteSync &sync, const QList<V2VORGroupMemberFullInfo> &members) {
            if (!members.isEmpty()) {
                sync.info()->setCreatorUserName(ZIQGroupNoteInfo::displayedNameOfMemberInfo(members.first()));
                sync.info()->setCreatorUserAvatar(members.first().faceURL);
            }
            if (completion)
                completion(0, QString());
        }),
        [completion](int code, const QString &desc) {
            if (completion)
                completion(code, desc);
        });
}

void ZIQGroupNoteSync::setGroupNoteMessageExtensionWithCompletion(Completion completion)
{
    OperationDict operationDict;
    const QList<V2VORMessageExtension> extensions = m_session->changedExtensions(&operationDict);
    const V2VORMessagePtr message = m_session->message();
    if (extensions.isEmpty()) {
        if (!m_session->deletedItems().isEmpty())
            deleteItemsOfMessage(message, m_session->deletedKeys(), std::move(completion));
        else if (completion)
            completion(0, QString());
        return;
    }
    // Writes go first; emptied entries are deleted afterwards even when the write failed, so a
    // member's emptied line goes whatever became of their new ones.
    setGroupNoteMessage(message, extensions, operationDict,
        chain().step([message, completion](ZIQGroupNoteSync &sync, int code, const QString &desc,
                         const QList<V2VORMessageExtensionResult> &) {
            if (!sync.m_session->deletedItems().isEmpty())
                sync.deleteItemsOfMessage(message, sync.m_session->deletedKeys(), completion);
            else if (completion)
                completion(code, desc);
        }));
}

void ZIQGroupNoteSync::withOriginMessage(
    std::function<void(ZIQGroupNoteSync &sync, const V2VORMessagePtr &sentOrigin)> action)
{
    m_extensions.findMessageByMsgID(info()->originMsgID(),
        chain().step([action](ZIQGroupNoteSync &sync, int code, const QString &, const V2VORMessagePtr &found) {
            action(sync, isSent(code, found) ? found : nullptr);
        }));
}

void ZIQGroupNoteSync::setGroupNoteMessage(const V2VORMessagePtr &, const QList<V2VORMessageExtension> &extensionList,
    const OperationDict &operationDict, ResultsCompletion completion)
{
    const auto byMessage = [completion](int code, const QString &desc) {
        if (completion)
            completion(code, desc, {});
    };
    if (m_session->isOriginMessage()) {
        m_extensions.setMessageExtension(m_session->message(), extensionList, byMessage);
        return;
    }
    withOriginMessage([extensionList, operationDict, completion, byMessage](
                          ZIQGroupNoteSync &sync, const V2VORMessagePtr &sentOrigin) {
        if (sentOrigin)
            sync.m_extensions.setMessageExtension(sentOrigin, extensionList, byMessage);
        else
            sync.m_extensions.setMessageExtensionBySeq(
                sync.groupID(), sync.info()->originMsgSeq(), extensionList, operationDict, completion);
    });
}

void ZIQGroupNoteSync::deleteItemsOfMessage(
    const V2VORMessagePtr &message, const QStringList &keys, Completion completion)
{
    if (m_session->isOriginMessage()) {
        if (!m_session->message()) {
            if (completion)
                completion(-1, kMessageEmptyDesc);
            return;
        }
        m_extensions.deleteMessageExtension(message, keys, std::move(completion));
        return;
    }
    withOriginMessage([keys, completion](ZIQGroupNoteSync &sync, const V2VORMessagePtr &sentOrigin) {
        if (sentOrigin) {
            sync.m_extensions.deleteMessageExtension(sentOrigin, keys, completion);
            return;
        }
        sync.m_extensions.deleteMessageExtensionBySeq(sync.groupID(), sync.info()->originMsgSeq(), keys,
            [completion](int code, const QString &desc, const QList<V2VORMessageExtensionResult> &) {
                if (completion)
                    completion(code, desc);
            });
    });
}

void ZIQGroupNoteSync::getMessageExtension(const V2VORMessagePtr &message, InfoCompletion completion)
{
    m_extensions.getMessageExtensions(message,
        chain().step([message, completion](ZIQGroupNoteSync &sync, int code, const QString &desc,
                         const QList<V2VORMessageExtension> &list) {
            if (code == 0)
                sync.mergeFetchedList(message, list, completion);
            else if (completion)
                completion(code, desc, nullptr);
        }));
}

void ZIQGroupNoteSync::mergeFetchedList(
    const V2VORMessagePtr &message, const QList<V2VORMessageExtension> &list, InfoCompletion completion)
{
    info()->updateWithExtensionList(
        list, chain().step([message, completion](ZIQGroupNoteSync &sync, int code, const QString &desc) {
            if (code == 0) {
                sync.m_session->refreshSnapshot();
                // Superseded generations do not pile up: whoever reads them removes them, in calls
                // the service accepts.
                const QStringList redundant = sync.info()->redundantKeysInExtensionList();
                for (qsizetype i = 0; i < redundant.size(); i += V2VORLimits::kMaxExtensionsPerCall)
                    sync.m_extensions.deleteMessageExtension(
                        message, redundant.mid(i, V2VORLimits::kMaxExtensionsPerCall), {});
            }
            if (completion)
                completion(code, desc, sync.info());
        }));
}

void ZIQGroupNoteSync::getMessageExtensionBySeq(quint64 seq, ListCompletion completion)
{
    m_extensions.getMessageExtensionsBySeq(groupID(), seq,
        chain().step([completion](ZIQGroupNoteSync &sync, int code, const QString &desc,
                         const QList<V2VORMessageExtension> &list) {
            if (code != 0) {
                if (completion)
                    completion(code, desc, {});
                return;
            }
            sync.info()->updateWithExtensionList(
                list, sync.chain().step([list, completion](ZIQGroupNoteSync &sync, int code, const QString &) {
                    // The fetched list is reported first, whatever the merge answered; the rows
                    // and the snapshot follow the note as it stands once the caller has seen it.
                    if (completion)
                        completion(0, QString(), list);
                    if (code == 0)
                        sync.m_session->refreshSnapshot();
                }));
        }));
}

void ZIQGroupNoteSync::findMessageByMsgID(const QString &msgID, MessageCompletion completion) const
{
    m_extensions.findMessageByMsgID(msgID, std::move(completion));
}

void ZIQGroupNoteSync::modifyShowLineNumOfMessage(const V2VORMessagePtr &message)
{
    const qint64 showLineNum = info()->showLineNum();
    if (!message || message->elemType() != V2VOR_ELEM_TYPE_CUSTOM || showLineNum == m_session->localShowLineNum()
        || showLineNum == kMaxShowLineNum)
        return;
    const QString msgID = m_session->isOriginMessage() ? message->msgID() : info()->originMsgID();
    m_extensions.findMessageByMsgID(msgID,
        chain().step(
            [msgID, message](ZIQGroupNoteSync &sync, int code, const QString &desc, const V2VORMessagePtr &found) {
                ZIQGroupNoteLog::info("findMessageByMsgID, msgID: %@, code: %d, desc: %@", msgID, code, desc);
                sync.innerModifyShowLineNumOfMessage(isSent(code, found) ? found : message);
            }));
}

void ZIQGroupNoteSync::innerModifyShowLineNumOfMessage(const V2VORMessagePtr &message)
{
    V2VORManager *sdk = manager();
    if (!sdk || !message || !message->customElem())
        return;
    message->customElem()->data
        = ZIQGroupNoteMessageBody::bodyWithShowLineNum(message->customElem()->data, m_session->localShowLineNum());
    sdk->modifyMessage(message,
        chain().step([message](ZIQGroupNoteSync &sync, int code, const QString &desc, const V2VORMessagePtr &current) {
            ZIQGroupNoteLog::info("modify message, msgID: %@, code: %d, desc: %@", message->msgID(), code, desc);
            sync.finishModify(code, current);
        }));
}

void ZIQGroupNoteSync::finishModify(int code, const V2VORMessagePtr &current)
{
    if (code == 0) {
        m_modifyRetryCount = 0;
        return;
    }
    if (code != V2VOR_ERR_MESSAGE_MODIFY_CONFLICT || !current)
        return;
    // The count carries over until a modification succeeds, so a later conflict after giving up
    // is not retried.
    if (m_modifyRetryCount < kMaxModifyRetries) {
        innerModifyShowLineNumOfMessage(current);
        ++m_modifyRetryCount;
    } else {
        ZIQGroupNoteLog::warning("modify confict, but exceed max retry limit, ignore");
    }
}
