#include "plugin/provider/ZIQGroupNoteLiveUpdates.h"

#include "kit/common/ZIQTool.h"
#include "platform/Notification.h"
#include "platform/NotificationCenter.h"

namespace {

const QString kGroupNoteUpdated = QStringLiteral("groupNoteUpdated");

} // namespace

ZIQGroupNoteLiveUpdates::ZIQGroupNoteLiveUpdates(std::shared_ptr<ZIQGroupNoteEditingSession> session, QObject *parent)
    : QObject(parent)
    , m_session(std::move(session))
{
    if (V2VORManager *client = m_session->context().client)
        client->addAdvancedMsgListener(this);
    platform::NotificationCenter::defaultCenter().addObserver(this, kGroupNoteUpdated,
        [this](const platform::Notification &notification) { onReceivedGroupNoteUpdated(notification); });
}

ZIQGroupNoteLiveUpdates::~ZIQGroupNoteLiveUpdates()
{
    platform::NotificationCenter::defaultCenter().removeObserver(this);
    if (V2VORManager *client = m_session->context().client)
        client->removeAdvancedMsgListener(this);
}

void ZIQGroupNoteLiveUpdates::onRecvMessageModified(const V2VORMessagePtr &message)
{
    if (!message || message->elemType() != V2VOR_ELEM_TYPE_CUSTOM || !message->customElem())
        return;
    const V2VORMessagePtr own = m_session->message();
    if (!own || message->msgID() != own->msgID() || message->msgID() != m_session->originMessageID())
        return;
    const QJsonObject body = ZIQTool::jsonData2Dictionary(message->customElem()->data);
    const qint64 newValue = body.value(QStringLiteral("show_line_num")).toInteger();
    const qint64 oldValue = m_session->info()->showLineNum();
    if (newValue == oldValue)
        return;
    m_session->info()->setShowLineNum(newValue);
    Q_EMIT showLineNumChanged(oldValue, newValue);
}

void ZIQGroupNoteLiveUpdates::onRecvMessageExtensionsChanged(const QString &msgID, const QList<V2VORMessageExtension> &)
{
    if (concernsMessage(msgID) && m_needUpdateDataListSynchronously)
        Q_EMIT refreshNeeded();
}

void ZIQGroupNoteLiveUpdates::onReceivedGroupNoteUpdated(const platform::Notification &notification)
{
    if (concernsMessage(notification.userInfo.value(QStringLiteral("msgID")).toString()))
        Q_EMIT refreshNeeded();
}

bool ZIQGroupNoteLiveUpdates::concernsMessage(const QString &msgID) const
{
    // A note that names no first message takes every message's change for its own: such a note
    // read from its first message cannot tell which ID a copy of it carries, and a refresh too
    // many costs one read where a missed one leaves a stale card.
    const ZIQGroupNoteInfoPtr info = m_session->info();
    const bool isSessionMessage = m_session->message() && m_session->message()->msgID() == msgID;
    return isSessionMessage || info->originMsgID().isEmpty() || info->originMsgID() == msgID;
}
