#include "plugin/provider/ZIQGroupNoteDataProvider.h"

#include "plugin/provider/ZIQGroupNoteDataProviderDelegate.h"
#include "plugin/provider/ZIQGroupNoteGuard.h"
#include "plugin/provider/ZIQGroupNoteLiveUpdates.h"
#include "plugin/provider/ZIQGroupNoteSubmission.h"

ZIQGroupNoteDataProvider::ZIQGroupNoteDataProvider(const V2VORMessagePtr &message, QObject *parent)
    : ZIQGroupNoteDataProvider(message, ZIQGroupNoteContext::current(), parent)
{
}

ZIQGroupNoteDataProvider::ZIQGroupNoteDataProvider(
    const V2VORMessagePtr &message, const ZIQGroupNoteContext &context, QObject *parent)
    : QObject(parent)
    , m_session(std::make_shared<ZIQGroupNoteEditingSession>(message, context))
    , m_sync(std::make_shared<ZIQGroupNoteSync>(m_session))
    , m_sender(std::make_shared<ZIQGroupNoteSender>(m_session))
    , m_liveUpdates(new ZIQGroupNoteLiveUpdates(m_session, this))
{
    connect(m_liveUpdates, &ZIQGroupNoteLiveUpdates::refreshNeeded, this,
        &ZIQGroupNoteDataProvider::refreshAndTellDelegate);
    connect(m_liveUpdates, &ZIQGroupNoteLiveUpdates::showLineNumChanged, this,
        &ZIQGroupNoteDataProvider::tellShowLineNumChanged);
}

ZIQGroupNoteDataProvider::~ZIQGroupNoteDataProvider()
{
    m_sender->detach();
}

bool ZIQGroupNoteDataProvider::needUpdateDataListSynchronously() const
{
    return m_liveUpdates->needUpdateDataListSynchronously();
}

void ZIQGroupNoteDataProvider::setNeedUpdateDataListSynchronously(bool need)
{
    m_liveUpdates->setNeedUpdateDataListSynchronously(need);
}

ZIQGroupNoteDataProviderDelegate *ZIQGroupNoteDataProvider::delegate() const
{
    return m_delegateLifetime.expired() ? nullptr : m_delegate;
}

void ZIQGroupNoteDataProvider::setDelegate(ZIQGroupNoteDataProviderDelegate *delegate)
{
    m_delegate = delegate;
    m_delegateLifetime = delegate ? delegate->m_lifetime : std::weak_ptr<const bool>();
}

QString ZIQGroupNoteDataProvider::displayedNameOfMemberInfo(const V2VORGroupMemberFullInfo &member)
{
    return ZIQGroupNoteInfo::displayedNameOfMemberInfo(member);
}

ZIQGroupNotePreviewCellDataPtr ZIQGroupNoteDataProvider::createEmptyPreviewCellData() const
{
    return std::make_shared<ZIQGroupNotePreviewCellData>();
}

void ZIQGroupNoteDataProvider::submitInGroup(const QString &groupID, bool isCreateNew, Completion completion)
{
    ZIQGroupNoteSubmission::submit(m_sync, m_sender, groupID, isCreateNew, std::move(completion));
}

void ZIQGroupNoteDataProvider::refreshCreatorInfoWithCompletion(Completion completion)
{
    m_sync->refreshCreatorInfoWithCompletion(std::move(completion));
}

void ZIQGroupNoteDataProvider::setGroupNoteMessageExtensionWithCompletion(Completion completion)
{
    m_sync->setGroupNoteMessageExtensionWithCompletion(std::move(completion));
}

void ZIQGroupNoteDataProvider::setGroupNoteMessage(const V2VORMessagePtr &message,
    const QList<V2VORMessageExtension> &extensionList, const OperationDict &operationDict, ResultsCompletion completion)
{
    m_sync->setGroupNoteMessage(message, extensionList, operationDict, std::move(completion));
}

void ZIQGroupNoteDataProvider::deleteItemsOfMessage(
    const V2VORMessagePtr &message, const QStringList &keys, Completion completion)
{
    m_sync->deleteItemsOfMessage(message, keys, std::move(completion));
}

void ZIQGroupNoteDataProvider::getMessageExtension(const V2VORMessagePtr &message, InfoCompletion completion)
{
    m_sync->getMessageExtension(message, std::move(completion));
}

void ZIQGroupNoteDataProvider::getMessageExtensionBySeq(quint64 seq, ListCompletion completion)
{
    m_sync->getMessageExtensionBySeq(seq, std::move(completion));
}

void ZIQGroupNoteDataProvider::findMessageByMsgID(
    const QString &msgID, ZIQGroupNoteSync::MessageCompletion completion) const
{
    m_sync->findMessageByMsgID(msgID, std::move(completion));
}

void ZIQGroupNoteDataProvider::sendGroupNoteMessageToGroup(const QString &groupID, SendSucc succ, SendFail fail)
{
    m_sender->sendGroupNoteMessageToGroup(groupID, std::move(succ), std::move(fail));
}

void ZIQGroupNoteDataProvider::sendNoteNotifyMessageToGroup(const QString &groupID, SendSucc succ, SendFail fail)
{
    m_sender->sendNoteNotifyMessageToGroup(groupID, std::move(succ), std::move(fail));
}

void ZIQGroupNoteDataProvider::sendNoteMessage(const V2VORMessagePtr &message, SendSucc succ, SendFail fail)
{
    m_sender->sendNoteMessage(message, std::move(succ), std::move(fail));
}

void ZIQGroupNoteDataProvider::sendMessageByHALVEX(
    const V2VORMessagePtr &message, const QString &groupID, SendSucc succ, SendFail fail)
{
    m_sender->sendMessageByHALVEX(message, groupID, std::move(succ), std::move(fail));
}

QString ZIQGroupNoteDataProvider::sendMessage(const V2VORMessagePtr &message, const QString &groupID,
    const ZIQSendMessageAppendParams &appendParams, V2VORProgress progress, SendSucc succ, SendFail fail)
{
    return m_sender->sendMessage(message, groupID, appendParams, std::move(progress), std::move(succ), std::move(fail));
}

V2VOROfflinePushInfo ZIQGroupNoteDataProvider::offlinePushInfo(const QString &groupID)
{
    return ZIQGroupNoteSender::offlinePushInfo(groupID);
}

void ZIQGroupNoteDataProvider::onNotifyEvent(
    const QString &key, const QString &subKey, QObject *object, const QVariantMap &param)
{
    m_sender->onNotifyEvent(key, subKey, object, param);
}

void ZIQGroupNoteDataProvider::onRecvMessageModified(const V2VORMessagePtr &message)
{
    m_liveUpdates->onRecvMessageModified(message);
}

void ZIQGroupNoteDataProvider::onRecvMessageExtensionsChanged(
    const QString &msgID, const QList<V2VORMessageExtension> &extensions)
{
    m_liveUpdates->onRecvMessageExtensionsChanged(msgID, extensions);
}

void ZIQGroupNoteDataProvider::onReceivedGroupNoteUpdated(const platform::Notification &notification)
{
    m_liveUpdates->onReceivedGroupNoteUpdated(notification);
}

void ZIQGroupNoteDataProvider::refreshAndTellDelegate()
{
    const ZIQGroupNoteGuard<ZIQGroupNoteSync, ZIQGroupNoteDataProvider> guard(m_sync, this);
    m_sync->getNoteStatistics(guard.toOwner(
        [](ZIQGroupNoteDataProvider &provider, int code, const QString &, const ZIQGroupNoteInfoPtr &info) {
            if (code != 0)
                return;
            if (ZIQGroupNoteDataProviderDelegate *observer = provider.delegate())
                observer->dataProviderDidUpdateGroupNoteInfo(&provider, info);
            Q_EMIT provider.noteUpdated(info);
        }));
}

void ZIQGroupNoteDataProvider::tellShowLineNumChanged(qint64 oldValue, qint64 newValue)
{
    if (ZIQGroupNoteDataProviderDelegate *observer = delegate())
        observer->dataProviderDidUpdateShowLineNum(this, oldValue, newValue);
    Q_EMIT showLineNumChanged(oldValue, newValue);
}
