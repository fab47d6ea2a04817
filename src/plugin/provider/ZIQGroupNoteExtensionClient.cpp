#include "plugin/provider/ZIQGroupNoteExtensionClient.h"

#include "plugin/model/ZIQGroupNoteExtensionKey.h"
#include "plugin/provider/ZIQGroupNoteLog.h"

namespace {

const QString kGetBySequenceAPI = QStringLiteral("getMessageExtensionsBySequence");
const QString kSetBySequenceAPI = QStringLiteral("setMessageExtensionsBySequence");
const QString kParsedListEmptyDesc = QStringLiteral("parsed extension list is empty");

void logResults(const QList<V2VORMessageExtensionResult> &results)
{
    for (const V2VORMessageExtensionResult &result : results)
        ZIQGroupNoteLog::info(
            "result, code: %d, info: %@, key: %@", result.resultCode, result.resultInfo, result.extension.extensionKey);
}

} // namespace

ZIQGroupNoteExtensionClient::ZIQGroupNoteExtensionClient(V2VORManager *manager)
    : m_manager(manager)
{
}

void ZIQGroupNoteExtensionClient::setMessageExtension(
    const V2VORMessagePtr &message, const QList<V2VORMessageExtension> &extensions, Completion completion) const
{
    V2VORManager *sdk = readyClient(completion);
    if (!sdk)
        return;
    sdk->setMessageExtensions(
        message, extensions,
        [message, completion](const QList<V2VORMessageExtensionResult> &results) {
            ZIQGroupNoteLog::info("set extension succ, msgID: %@", message->msgID());
            logResults(results);
            if (completion)
                completion(0, QString());
        },
        [message, completion](int code, const QString &desc) {
            ZIQGroupNoteLog::warning("set extension failed, msgID: %@, code: %d, desc: %@ ",
                message ? message->msgID() : QString(), code, desc);
            if (completion)
                completion(code, desc);
        });
}

void ZIQGroupNoteExtensionClient::deleteMessageExtension(
    const V2VORMessagePtr &message, const QStringList &keys, Completion completion) const
{
    if (keys.isEmpty()) {
        if (completion)
            completion(0, QString());
        return;
    }
    V2VORManager *sdk = readyClient(completion);
    if (!sdk)
        return;
    sdk->deleteMessageExtensions(
        message, keys,
        [message, completion](const QList<V2VORMessageExtensionResult> &results) {
            ZIQGroupNoteLog::info("delete extension succ, msgID: %@", message->msgID());
            logResults(results);
            if (completion)
                completion(0, QString());
        },
        [message, completion](int code, const QString &desc) {
            ZIQGroupNoteLog::warning("delete extension failed, msgID: %@, code: %d, desc: %@ ",
                message ? message->msgID() : QString(), code, desc);
            if (completion)
                completion(code, desc);
        });
}

void ZIQGroupNoteExtensionClient::getMessageExtensions(const V2VORMessagePtr &message, ListCompletion completion) const
{
    V2VORManager *sdk = readyClient(completion, QList<V2VORMessageExtension>());
    if (!sdk)
        return;
    sdk->getMessageExtensions(
        message,
        [completion](const QList<V2VORMessageExtension> &list) {
            if (completion)
                completion(0, QString(), list);
        },
        [message, completion](int code, const QString &desc) {
            ZIQGroupNoteLog::warning("get extension failed, msgID: %@, code: %d, desc: %@ ",
                message ? message->msgID() : QString(), code, desc);
            if (completion)
                completion(code, desc, {});
        });
}

void ZIQGroupNoteExtensionClient::setMessageExtensionBySeq(const QString &groupID, quint64 seq,
    const QList<V2VORMessageExtension> &extensions, const OperationDict &operationDict,
    ResultsCompletion completion) const
{
    const QList<V2VORMessageExtension> rewritten = sequenceWriteList(extensions, operationDict);
    if (rewritten.isEmpty()) {
        if (completion)
            completion(-1, kParsedListEmptyDesc, {});
        return;
    }
    setSDKMessageExtensionBySeq(groupID, seq, rewritten, std::move(completion));
}

void ZIQGroupNoteExtensionClient::deleteMessageExtensionBySeq(
    const QString &groupID, quint64 seq, const QStringList &keys, ResultsCompletion completion) const
{
    const QList<V2VORMessageExtension> markers = sequenceDeletionList(keys);
    if (markers.isEmpty()) {
        if (completion)
            completion(-1, kParsedListEmptyDesc, {});
        return;
    }
    setSDKMessageExtensionBySeq(groupID, seq, markers, std::move(completion));
}

void ZIQGroupNoteExtensionClient::setSDKMessageExtensionBySeq(const QString &groupID, quint64 seq,
    const QList<V2VORMessageExtension> &extensions, ResultsCompletion completion) const
{
    V2VORManager *sdk = readyClient(completion, QList<V2VORMessageExtensionResult>());
    if (!sdk)
        return;
    QVariantMap param = sequenceParam(groupID, seq);
    param.insert(QStringLiteral("messageExtensionList"), QVariant::fromValue(extensions));
    sdk->callExperimentalAPI(
        kSetBySequenceAPI, param,
        [seq, completion](const QVariant &result) {
            // Without a result list there is nothing to report, not even success.
            if (result.metaType() != QMetaType::fromType<QList<V2VORMessageExtensionResult>>())
                return;
            const auto results = result.value<QList<V2VORMessageExtensionResult>>();
            ZIQGroupNoteLog::info("set extension succ, seq: %llu", seq);
            for (const V2VORMessageExtensionResult &one : results)
                ZIQGroupNoteLog::info("set result, code: %d, info: %@", one.resultCode, one.resultInfo);
            if (completion)
                completion(0, QString(), results);
        },
        [seq, completion](int code, const QString &desc) {
            ZIQGroupNoteLog::warning("set extension failed, seq: %llu, code: %d, desc: %@", seq, code, desc);
            if (completion)
                completion(code, desc, {});
        });
}

void ZIQGroupNoteExtensionClient::getMessageExtensionsBySeq(
    const QString &groupID, quint64 seq, ListCompletion completion) const
{
    V2VORManager *sdk = readyClient(completion, QList<V2VORMessageExtension>());
    if (!sdk)
        return;
    sdk->callExperimentalAPI(
        kGetBySequenceAPI, sequenceParam(groupID, seq),
        [completion](const QVariant &result) {
            if (!completion)
                return;
            if (result.metaType() != QMetaType::fromType<QList<V2VORMessageExtension>>())
                completion(-1, QStringLiteral("result is empty"), {});
            else
                completion(0, QString(), result.value<QList<V2VORMessageExtension>>());
        },
        [seq, completion](int code, const QString &desc) {
            ZIQGroupNoteLog::warning("get extension failed, seq: %llu, code: %d, desc: %@", seq, code, desc);
            if (completion)
                completion(code, desc, {});
        });
}

void ZIQGroupNoteExtensionClient::findMessageByMsgID(const QString &msgID, MessageCompletion completion) const
{
    V2VORManager *sdk = readyClient(completion, V2VORMessagePtr());
    if (!sdk)
        return;
    sdk->findMessages(
        { msgID },
        [completion](const QList<V2VORMessagePtr> &messages) {
            if (!completion)
                return;
            if (messages.isEmpty())
                completion(-1, QStringLiteral("msg not exist"), nullptr);
            else
                completion(0, QString(), messages.first());
        },
        [msgID, completion](int code, const QString &desc) {
            ZIQGroupNoteLog::warning("find failed, msgID: %@, code: %d, desc: %@", msgID, code, desc);
            if (completion)
                completion(code, desc, nullptr);
        });
}

QList<V2VORMessageExtension> ZIQGroupNoteExtensionClient::sequenceWriteList(
    const QList<V2VORMessageExtension> &extensions, const OperationDict &operationDict)
{
    QList<V2VORMessageExtension> rewritten;
    rewritten.reserve(extensions.size());
    for (const V2VORMessageExtension &extension : extensions) {
        const QString &key = extension.extensionKey;
        const bool modified = operationDict.value(key, 0) != 0;
        rewritten.append({ modified ? ZIQGroupNoteExtensionKey::nextGenerationKey(key)
                                    : ZIQGroupNoteExtensionKey::firstGenerationKey(key),
            extension.extensionValue });
    }
    return rewritten;
}

QList<V2VORMessageExtension> ZIQGroupNoteExtensionClient::sequenceDeletionList(const QStringList &keys)
{
    QList<V2VORMessageExtension> markers;
    markers.reserve(keys.size());
    for (const QString &key : keys)
        markers.append({ ZIQGroupNoteExtensionKey::nextGenerationKey(key), ZIQGroupNoteExtensionKey::deletedMarker });
    return markers;
}

QVariantMap ZIQGroupNoteExtensionClient::sequenceParam(const QString &groupID, quint64 seq)
{
    return { { QStringLiteral("groupID"), groupID }, { QStringLiteral("messageSequence"), QVariant::fromValue(seq) } };
}
