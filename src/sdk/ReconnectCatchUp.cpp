#include "sdk/ReconnectCatchUp.h"

#include <QPointer>
#include <algorithm>

ReconnectCatchUp::ReconnectCatchUp(MessagingBackend *backend, MessagingSession *session, Held held, QObject *parent)
    : QObject(parent)
    , m_backend(backend)
    , m_session(session)
    , m_held(std::move(held))
{
}

template<typename F> auto ReconnectCatchUp::guarded(F callback)
{
    return [self = QPointer<ReconnectCatchUp>(this), callback](const auto &answer) {
        if (self)
            callback(answer);
    };
}

void ReconnectCatchUp::start()
{
    QHash<QString, std::shared_ptr<Conversation>> conversations;
    for (const V2VORMessagePtr &message : std::as_const(m_held.messages)) {
        const bool isGroup = !message->groupID().isEmpty();
        const QString id = isGroup ? message->groupID() : message->userID();
        std::shared_ptr<Conversation> &conversation
            = conversations[(isGroup ? QStringLiteral("g:") : QStringLiteral("u:")) + id];
        if (!conversation)
            conversation = std::make_shared<Conversation>(Conversation { isGroup, id, message->seq(), message->seq() });
        conversation->newestSeq = std::max(conversation->newestSeq, message->seq());
        conversation->oldestSeq = std::min(conversation->oldestSeq, message->seq());
        if (message->supportMessageExtension())
            fetchExtensions(message->msgID());
    }
    for (const std::shared_ptr<Conversation> &conversation : std::as_const(conversations))
        fetchPage(conversation, 0);
    if (m_outstanding == 0)
        fetchConversations();
}

void ReconnectCatchUp::fetchPage(const std::shared_ptr<Conversation> &conversation, quint64 beforeSeq)
{
    ++m_outstanding;
    auto answer = guarded([this, conversation](const ServiceReply<QList<V2VORMessagePtr>> &reply) {
        if (reply.error)
            qWarning(
                "Catching up: history of %s failed: %s", qPrintable(conversation->id), qPrintable(reply.error.desc));
        else
            readPage(conversation, reply.value);
        settle();
    });
    if (conversation->isGroup)
        m_backend->history(m_session, conversation->id, kPageSize, beforeSeq, answer);
    else
        m_backend->directHistory(m_session, conversation->id, kPageSize, beforeSeq, answer);
}

void ReconnectCatchUp::readPage(const std::shared_ptr<Conversation> &conversation, const QList<V2VORMessagePtr> &page)
{
    quint64 oldestOfPage = 0;
    for (const V2VORMessagePtr &message : page) {
        oldestOfPage = oldestOfPage ? std::min(oldestOfPage, message->seq()) : message->seq();
        const V2VORMessagePtr held = m_held.messages.value(message->msgID());
        if (held && held->messageVersion() != message->messageVersion())
            conversation->modified.append(message);
        else if (!held && message->seq() > conversation->newestSeq)
            conversation->missed.append(message);
    }
    // Pages run newest first: go on until the page reaches the oldest message held.
    if (page.size() >= kPageSize && oldestOfPage > conversation->oldestSeq)
        return fetchPage(conversation, oldestOfPage);
    deliverMessages(*conversation);
}

void ReconnectCatchUp::deliverMessages(const Conversation &conversation)
{
    QList<V2VORMessagePtr> missed = conversation.missed;
    std::sort(missed.begin(), missed.end(),
        [](const V2VORMessagePtr &a, const V2VORMessagePtr &b) { return a->seq() < b->seq(); });
    for (const V2VORMessagePtr &message : std::as_const(missed)) {
        if (!m_held.holdsNow || !m_held.holdsNow(message->msgID()))
            m_session->receiveNewMessage(message);
    }
    for (const V2VORMessagePtr &message : conversation.modified)
        m_session->receiveModified(message);
}

void ReconnectCatchUp::fetchExtensions(const QString &msgID)
{
    ++m_outstanding;
    m_backend->getExtensions(m_session, msgID, guarded([this, msgID](const ExtensionReply &reply) {
        if (reply.error)
            qWarning("Catching up: extensions of %s failed: %s", qPrintable(msgID), qPrintable(reply.error.desc));
        else
            readExtensions(msgID, reply);
        settle();
    }));
}

void ReconnectCatchUp::readExtensions(const QString &msgID, const ExtensionReply &reply)
{
    const QHash<QString, quint64> known = m_held.versions.value(msgID);
    QList<V2VORMessageExtension> changed;
    QHash<QString, quint64> changedVersions;
    QSet<QString> live;
    for (const V2VORMessageExtension &extension : reply.extensions) {
        const QString &key = extension.extensionKey;
        live.insert(key);
        const quint64 version = reply.versions.value(key);
        if (version > known.value(key)) {
            changed.append(extension);
            changedVersions.insert(key, version);
        }
    }
    QStringList deleted;
    for (const QString &key : m_held.liveKeys.value(msgID)) {
        if (!live.contains(key))
            deleted.append(key);
    }
    deleted.sort();
    if (!changed.isEmpty())
        m_session->receiveExtensionsChanged(msgID, changed, changedVersions);
    if (!deleted.isEmpty())
        m_session->receiveExtensionsDeleted(msgID, deleted, {});
}

void ReconnectCatchUp::settle()
{
    if (--m_outstanding == 0)
        fetchConversations();
}

void ReconnectCatchUp::fetchConversations()
{
    m_backend->conversationList(m_session, guarded([this](const ServiceReply<QList<V2VORConversation>> &reply) {
        if (reply.error)
            qWarning("Catching up: conversation list failed: %s", qPrintable(reply.error.desc));
        for (const V2VORConversation &conversation : reply.value)
            m_session->receiveConversationChanged(conversation);
        deleteLater();
    }));
}
