#include "sdk/V2VORManagerPrivate.h"

#include "platform/MainQueue.h"
#include "sdk/NetworkBackend.h"
#include "sdk/V2VORAdvancedMsgListener.h"
#include "sdk/V2VORConversationListener.h"

V2VORManager::Private::Private(V2VORManager *q, std::unique_ptr<MessagingBackend> backend)
    : q(q)
    , backend(std::move(backend))
{
    this->backend->attach(this);
    if (auto *network = dynamic_cast<NetworkBackend *>(this->backend.get()))
        connectionState = network->connectionState();
}

V2VORManager::Private::~Private()
{
    backend->detach(this);
}

QList<V2VORManager *> &V2VORManager::Private::allClients()
{
    static QList<V2VORManager *> clients;
    return clients;
}

std::optional<CallError> V2VORManager::Private::admit(const QString &operation, bool needsLogin, const QString &alias)
{
    QStringList operations { operation };
    if (!alias.isEmpty())
        operations.append(alias);
    if (auto injected = backend->admit(operations))
        return injected;
    if (needsLogin && status != V2VOR_STATUS_LOGINED)
        return CallError { V2VOR_ERR_NOT_LOGGED_IN, QStringLiteral("%1 needs a logged-in user").arg(operation) };
    return std::nullopt;
}

void V2VORManager::Private::post(std::function<void()> task)
{
    platform::MainQueue::async(q, std::move(task));
}

void V2VORManager::Private::postFailure(const V2VORFail &fail, const CallError &error)
{
    post([fail, error] {
        if (fail)
            fail(error.code, error.desc);
    });
}

void V2VORManager::Private::postOutcome(
    const V2VORSucc &succ, const V2VORFail &fail, const std::optional<CallError> &error)
{
    if (error)
        return postFailure(fail, *error);
    post([succ] {
        if (succ)
            succ();
    });
}

void V2VORManager::Private::learnOwnProfile(const std::function<void()> &then)
{
    backend->usersInfo(this, { userID }, guarded([this, then](const ServiceReply<QList<V2VORUserFullInfo>> &reply) {
        if (!reply.error && !reply.value.isEmpty() && reply.value.first().userID == userID)
            ownProfile = reply.value.first();
        then();
    }));
}

void V2VORManager::Private::remember(const V2VORMessagePtr &copy)
{
    if (copy && !copy->msgID().isEmpty())
        history.insert(copy->msgID(), copy->clone());
}

void V2VORManager::Private::replyMessages(
    const ServiceReply<QList<V2VORMessagePtr>> &reply, const MessageListSucc &succ, const V2VORFail &fail)
{
    if (reply.error)
        return postFailure(fail, reply.error);
    QList<V2VORMessagePtr> copies;
    for (const V2VORMessagePtr &message : reply.value) {
        remember(message);
        copies.append(message->clone());
    }
    postValue(succ, copies);
}

void V2VORManager::Private::learnVersions(const QString &msgID, const QHash<QString, quint64> &learned)
{
    QHash<QString, quint64> &known = versions[msgID];
    for (auto it = learned.cbegin(); it != learned.cend(); ++it)
        known[it.key()] = std::max(known.value(it.key()), it.value());
}

QHash<QString, quint64> V2VORManager::Private::seenVersions(const QString &msgID) const
{
    return versions.value(msgID);
}

void V2VORManager::Private::replyExtensionResults(
    const ExtensionReply &reply, const ExtensionResultSucc &succ, const V2VORFail &fail)
{
    if (reply.error) {
        postFailure(fail, reply.error);
        return;
    }
    learnVersions(reply.msgID, reply.versions);
    post([succ, results = reply.results] {
        if (succ)
            succ(results);
    });
}

QString V2VORManager::Private::sessionUserID() const
{
    return status == V2VOR_STATUS_LOGOUT ? QString() : userID;
}

QObject *V2VORManager::Private::sessionContext()
{
    return q;
}

void V2VORManager::Private::receiveNewMessage(const V2VORMessagePtr &copy)
{
    remember(copy);
    notifyListeners([copy](V2VORAdvancedMsgListener *listener) { listener->onRecvNewMessage(copy->clone()); });
}

void V2VORManager::Private::receiveModified(const V2VORMessagePtr &copy)
{
    if (history.contains(copy->msgID()))
        remember(copy);
    notifyListeners([copy](V2VORAdvancedMsgListener *listener) { listener->onRecvMessageModified(copy->clone()); });
}

void V2VORManager::Private::receiveExtensionsChanged(
    const QString &msgID, const QList<V2VORMessageExtension> &extensions, const QHash<QString, quint64> &learned)
{
    learnVersions(msgID, learned);
    for (const V2VORMessageExtension &extension : extensions)
        liveKeys[msgID].insert(extension.extensionKey);
    notifyListeners(
        [&](V2VORAdvancedMsgListener *listener) { listener->onRecvMessageExtensionsChanged(msgID, extensions); });
}

void V2VORManager::Private::receiveExtensionsDeleted(
    const QString &msgID, const QStringList &keys, const QHash<QString, quint64> &learned)
{
    learnVersions(msgID, learned);
    for (const QString &key : keys)
        liveKeys[msgID].remove(key);
    notifyListeners([&](V2VORAdvancedMsgListener *listener) { listener->onRecvMessageExtensionsDeleted(msgID, keys); });
}

void V2VORManager::Private::receiveConversationChanged(const V2VORConversation &conversation)
{
    const QList<V2VORConversationListener *> current = conversationListeners;
    for (V2VORConversationListener *listener : current) {
        if (conversationListeners.contains(listener))
            listener->onConversationChanged({ conversation });
    }
}

void V2VORManager::Private::receiveConnectionState(V2VORConnectionState state)
{
    if (connectionState == state)
        return;
    connectionState = state;
    Q_EMIT q->connectionStateChanged(state);
}

void V2VORManager::Private::receiveReconnected()
{
    delete catchUp;
    ReconnectCatchUp::Held held { history, versions, liveKeys,
        [client = QPointer<V2VORManager>(q)](const QString &msgID) {
            return client && client->d->history.contains(msgID);
        } };
    catchUp = new ReconnectCatchUp(backend.get(), this, std::move(held), q);
    catchUp->start();
}

void V2VORManager::Private::learnLiveKeys(const QString &msgID, const QList<V2VORMessageExtension> &extensions)
{
    QSet<QString> &live = liveKeys[msgID];
    live.clear();
    for (const V2VORMessageExtension &extension : extensions)
        live.insert(extension.extensionKey);
}

void V2VORManager::Private::notifyListeners(const std::function<void(V2VORAdvancedMsgListener *)> &call)
{
    // A listener may remove (or destroy) another one while it is being told.
    const QList<V2VORAdvancedMsgListener *> current = listeners;
    for (V2VORAdvancedMsgListener *listener : current) {
        if (listeners.contains(listener))
            call(listener);
    }
}

namespace {

CallError invalid(const QString &desc)
{
    return { V2VOR_ERR_INVALID_PARAMETERS, desc };
}

} // namespace

void V2VORManager::Private::callBySequence(
    const QString &api, const QVariant &param, const ExperimentalSucc &succ, const V2VORFail &fail)
{
    const QVariantMap map = param.toMap();
    const QString groupID = map.value(QStringLiteral("groupID")).toString();
    bool sequenceOK = false;
    const quint64 sequence = map.value(QStringLiteral("messageSequence")).toULongLong(&sequenceOK);
    if (groupID.isEmpty() || !sequenceOK)
        return postFailure(fail, invalid(QStringLiteral("%1 needs \"groupID\" and \"messageSequence\"").arg(api)));

    const bool isWrite = api == QLatin1String("setMessageExtensionsBySequence");
    const QVariant list = map.value(QStringLiteral("messageExtensionList"));
    if (isWrite && !list.canConvert<QList<V2VORMessageExtension>>())
        return postFailure(fail, invalid(QStringLiteral("%1 needs \"messageExtensionList\"").arg(api)));

    const auto located = [this, isWrite, list, succ, fail](const ServiceReply<QString> &reply) {
        if (reply.error)
            return postFailure(fail, reply.error);
        const QString msgID = reply.value;
        auto answer = guarded([this, msgID, isWrite, succ, fail](const ExtensionReply &extensions) {
            if (extensions.error)
                return postFailure(fail, extensions.error);
            learnVersions(msgID, extensions.versions);
            if (!isWrite)
                learnLiveKeys(msgID, extensions.extensions);
            const QVariant result = isWrite ? QVariant::fromValue(extensions.results)
                                            : QVariant::fromValue(extensions.extensions);
            postValue(succ, result);
        });
        if (isWrite)
            backend->setExtensions(this, msgID, list.value<QList<V2VORMessageExtension>>(), seenVersions(msgID), answer);
        else
            backend->getExtensions(this, msgID, answer);
    };
    backend->messageAt(this, groupID, sequence, guarded(located));
}
