// The note's entries and settings on the service: writing a session's changes, choosing how the
// note message is addressed (its object when at hand and sent, else its group and sequence),
// fetching and merging, and rewriting the message's "show_line_num".
#include "plugin/provider/ZIQGroupNoteDataProvider.h"

#include "plugin/model/ZIQGroupNoteExtensionKey.h"
#include "plugin/model/ZIQGroupNoteMessageBody.h"
#include "plugin/provider/ZIQGroupNoteLog.h"
#include "sdk/V2VORErrorCode.h"

#include <QPointer>

namespace {

// Retries of a "show_line_num" rewrite that met a newer version of the message.
constexpr qint64 kMaxModifyRetries = 2;
// A card never shows more collapsed rows, so a note at this value needs no rewrite.
constexpr qint64 kMaxShowLineNum = 2;

const QString kMessageEmptyDesc = QStringLiteral("message is empty, get failed");

QStringList keysOf(const QList<ZIQGroupNoteItemPtr> &items)
{
    QStringList keys;
    for (const ZIQGroupNoteItemPtr &item : items)
        keys.append(item->key());
    return keys;
}

} // namespace

void ZIQGroupNoteDataProvider::setGroupNoteMessageExtensionWithCompletion(Completion completion)
{
    OperationDict operationDict;
    const QList<V2VORMessageExtension> extensions = changedExtensions(&operationDict);
    if (extensions.isEmpty()) {
        if (!m_deletedItems.isEmpty())
            deleteItemsOfMessage(m_message, keysOf(m_deletedItems), std::move(completion));
        else if (completion)
            completion(0, QString());
        return;
    }
    // Writes go first; emptied entries are deleted afterwards even when the write failed.
    QPointer<ZIQGroupNoteDataProvider> self(this);
    setGroupNoteMessage(m_message, extensions, operationDict,
        [self, completion](int code, const QString &desc, const QList<V2VORMessageExtensionResult> &) {
            if (self && !self->m_deletedItems.isEmpty())
                self->deleteItemsOfMessage(self->m_message, keysOf(self->m_deletedItems), completion);
            else if (completion)
                completion(code, desc);
        });
}

QList<V2VORMessageExtension> ZIQGroupNoteDataProvider::changedExtensions(OperationDict *operationDict)
{
    QList<V2VORMessageExtension> extensions;
    for (const ZIQGroupNoteItemPtr &item : std::as_const(m_addedItems)) {
        extensions.append({ item->key(), item->content() });
        operationDict->insert(item->key(), 0);
    }
    // Only additions are announced to the group.
    if (!m_addedItems.isEmpty())
        m_isItemsChanged = true;
    for (const ZIQGroupNoteItemPtr &item : std::as_const(m_modifiedItems)) {
        extensions.append({ item->key(), item->content() });
        operationDict->insert(item->key(), 1);
    }
    if (m_isConfigChanged)
        extensions.append({ ZIQGroupNoteExtensionKey::configKey, m_info->setting()->configValue() });
    return extensions;
}

void ZIQGroupNoteDataProvider::withOriginMessage(std::function<void(const V2VORMessagePtr &sentOrigin)> action)
{
    QPointer<ZIQGroupNoteDataProvider> self(this);
    m_extensions.findMessageByMsgID(
        m_info->originMsgID(), [self, action](int code, const QString &, const V2VORMessagePtr &found) {
            if (!self)
                return;
            const bool sent = code == 0 && found && found->status() == V2VOR_MSG_STATUS_SEND_SUCC;
            action(sent ? found : nullptr);
        });
}

void ZIQGroupNoteDataProvider::setGroupNoteMessage(const V2VORMessagePtr &,
    const QList<V2VORMessageExtension> &extensionList, const OperationDict &operationDict, ResultsCompletion completion)
{
    const auto byMessage = [completion](int code, const QString &desc) {
        if (completion)
            completion(code, desc, {});
    };
    if (isOriginMessage()) {
        m_extensions.setMessageExtension(m_message, extensionList, byMessage);
        return;
    }
    QPointer<ZIQGroupNoteDataProvider> self(this);
    withOriginMessage([self, extensionList, operationDict, completion, byMessage](const V2VORMessagePtr &sentOrigin) {
        if (sentOrigin) {
            self->m_extensions.setMessageExtension(sentOrigin, extensionList, byMessage);
            return;
        }
        const QString groupID = self->m_message ? self->m_message->groupID() : QString();
        self->m_extensions.setMessageExtensionBySeq(
            groupID, self->m_info->originMsgSeq(), extensionList, operationDict, completion);
    });
}

void ZIQGroupNoteDataProvider::deleteItemsOfMessage(
    const V2VORMessagePtr &message, const QStringList &keys, Completion completion)
{
    if (isOriginMessage()) {
        if (!m_message) {
            if (completion)
                completion(-1, kMessageEmptyDesc);
            return;
        }
        m_extensions.deleteMessageExtension(message, keys, std::move(completion));
        return;
    }
    QPointer<ZIQGroupNoteDataProvider> self(this);
    withOriginMessage([self, keys, completion](const V2VORMessagePtr &sentOrigin) {
        if (sentOrigin) {
            self->m_extensions.deleteMessageExtension(sentOrigin, keys, completion);
            return;
        }
        const QString groupID = self->m_message ? self->m_message->groupID() : QString();
        self->m_extensions.deleteMessageExtensionBySeq(groupID, self->m_info->originMsgSeq(), keys,
            [completion](int code, const QString &desc, const QList<V2VORMessageExtensionResult> &) {
                if (completion)
                    completion(code, desc);
            });
    });
}

void ZIQGroupNoteDataProvider::getMessageExtension(const V2VORMessagePtr &message, InfoCompletion completion)
{
    QPointer<ZIQGroupNoteDataProvider> self(this);
    m_extensions.getMessageExtensions(
        message, [self, message, completion](int code, const QString &desc, const QList<V2VORMessageExtension> &list) {
            if (code != 0) {
                if (completion)
                    completion(code, desc, nullptr);
            } else if (self) {
                self->mergeFetchedList(message, list, completion);
            }
        });
}

void ZIQGroupNoteDataProvider::mergeFetchedList(
    const V2VORMessagePtr &message, const QList<V2VORMessageExtension> &list, InfoCompletion completion)
{
    QPointer<ZIQGroupNoteDataProvider> self(this);
    const ZIQGroupNoteInfoPtr info = m_info;
    info->updateWithExtensionList(list, [self, message, info, completion](int code, const QString &desc) {
        if (code == 0 && self) {
            self->refreshSnapshot();
            // Superseded generations do not pile up: whoever reads them removes them, in calls
            // the service accepts.
            const QStringList redundant = info->redundantKeysInExtensionList();
            for (qsizetype i = 0; i < redundant.size(); i += V2VORLimits::kMaxExtensionsPerCall)
                self->m_extensions.deleteMessageExtension(
                    message, redundant.mid(i, V2VORLimits::kMaxExtensionsPerCall), {});
        }
        if (completion)
            completion(code, desc, info);
    });
}

void ZIQGroupNoteDataProvider::getMessageExtensionBySeq(quint64 seq, ListCompletion completion)
{
    QPointer<ZIQGroupNoteDataProvider> self(this);
    const QString groupID = m_message ? m_message->groupID() : QString();
    m_extensions.getMessageExtensionsBySeq(
        groupID, seq, [self, completion](int code, const QString &desc, const QList<V2VORMessageExtension> &list) {
            if (code != 0) {
                if (completion)
                    completion(code, desc, {});
                return;
            }
            if (!self)
                return;
            self->m_info->updateWithExtensionList(list, [self, list, completion](int code, const QString &) {
                // The fetched list is reported first, whatever the merge answered; the rows and
                // the snapshot follow the note as it stands once the caller has seen it.
                if (completion)
                    completion(0, QString(), list);
                if (code == 0 && self)
                    self->refreshSnapshot();
            });
        });
}

void ZIQGroupNoteDataProvider::findMessageByMsgID(
    const QString &msgID, ZIQGroupNoteExtensionClient::MessageCompletion completion) const
{
    m_extensions.findMessageByMsgID(msgID, std::move(completion));
}

void ZIQGroupNoteDataProvider::modifyShowLineNumOfMessage(const V2VORMessagePtr &message)
{
    if (!message || message->elemType() != V2VOR_ELEM_TYPE_CUSTOM || m_info->showLineNum() == m_localShowLineNum
        || m_info->showLineNum() == kMaxShowLineNum)
        return;
    const QString msgID = isOriginMessage() ? message->msgID() : m_info->originMsgID();
    QPointer<ZIQGroupNoteDataProvider> self(this);
    m_extensions.findMessageByMsgID(
        msgID, [self, msgID, message](int code, const QString &desc, const V2VORMessagePtr &found) {
            ZIQGroupNoteLog::info("findMessageByMsgID, msgID: %@, code: %d, desc: %@", msgID, code, desc);
            if (!self)
                return;
            const bool sent = code == 0 && found && found->status() == V2VOR_MSG_STATUS_SEND_SUCC;
            self->innerModifyShowLineNumOfMessage(sent ? found : message);
        });
}

void ZIQGroupNoteDataProvider::innerModifyShowLineNumOfMessage(const V2VORMessagePtr &message)
{
    V2VORManager *sdk = manager();
    if (!sdk || !message || !message->customElem())
        return;
    message->customElem()->data
        = ZIQGroupNoteMessageBody::bodyWithShowLineNum(message->customElem()->data, m_localShowLineNum);
    QPointer<ZIQGroupNoteDataProvider> self(this);
    sdk->modifyMessage(message, [self, message](int code, const QString &desc, const V2VORMessagePtr &current) {
        ZIQGroupNoteLog::info("modify message, msgID: %@, code: %d, desc: %@", message->msgID(), code, desc);
        if (self)
            self->finishModify(code, current);
    });
}

void ZIQGroupNoteDataProvider::finishModify(int code, const V2VORMessagePtr &current)
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
