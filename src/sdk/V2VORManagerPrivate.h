// Internals of one messaging client: login state, the local message history a device would
// keep, the extension versions this client last saw, listeners and the log sink.
#pragma once

#include "sdk/MessagingBackend.h"
#include "sdk/V2VORManager.h"

#include "sdk/ReconnectCatchUp.h"

#include <QHash>
#include <QPointer>
#include <QSet>
#include <functional>

class V2VORManager::Private : public MessagingSession
{
public:
    Private(V2VORManager *q, std::unique_ptr<MessagingBackend> backend);
    ~Private() override;

    /// Every client of the process, so that a dying listener can leave them all.
    static QList<V2VORManager *> &allClients();

    /// Counts the call and says why it is refused: no service, an injected failure, no login.
    std::optional<CallError> admit(const QString &operation, bool needsLogin = true, const QString &alias = {});
    /// Runs `task` on a later turn of the main queue, unless this client is gone by then.
    void post(std::function<void()> task);
    void postFailure(const V2VORFail &fail, const CallError &error);
    /// `callback`, run only while this client lives (answers over the network come late).
    template<typename F> auto guarded(F callback)
    {
        return [client = QPointer<V2VORManager>(q), callback](const auto &answer) {
            if (client)
                callback(answer);
        };
    }
    /// Answers `fail` with the error when there is one, else `succ`.
    void postOutcome(const V2VORSucc &succ, const V2VORFail &fail, const std::optional<CallError> &error);
    template<typename T> void postValue(const V2VORValueSucc<T> &succ, const T &value)
    {
        post([succ, value] {
            if (succ)
                succ(value);
        });
    }

    template<typename T>
    void replyValue(const ServiceReply<T> &reply, const V2VORValueSucc<T> &succ, const V2VORFail &fail)
    {
        if (reply.error)
            return postFailure(fail, reply.error);
        postValue(succ, reply.value);
    }

    void remember(const V2VORMessagePtr &copy);
    /// Asks the service for the user's own profile, then runs `then` whatever the answer.
    void learnOwnProfile(const std::function<void()> &then);
    /// Keeps the messages of a history page and answers the caller with copies of them.
    void replyMessages(
        const ServiceReply<QList<V2VORMessagePtr>> &reply, const MessageListSucc &succ, const V2VORFail &fail);
    void learnVersions(const QString &msgID, const QHash<QString, quint64> &versions);
    QHash<QString, quint64> seenVersions(const QString &msgID) const;
    void replyExtensionResults(const ExtensionReply &reply, const ExtensionResultSucc &succ, const V2VORFail &fail);
    void callBySequence(const QString &api, const QVariant &param, const ExperimentalSucc &succ, const V2VORFail &fail);

    // The session: events from the service, on the main queue.
    QString sessionUserID() const override;
    QObject *sessionContext() override;
    void receiveNewMessage(const V2VORMessagePtr &copy) override;
    void receiveModified(const V2VORMessagePtr &copy) override;
    void receiveExtensionsChanged(const QString &msgID, const QList<V2VORMessageExtension> &extensions,
                                  const QHash<QString, quint64> &versions) override;
    void receiveExtensionsDeleted(
        const QString &msgID, const QStringList &keys, const QHash<QString, quint64> &versions) override;
    void receiveConversationChanged(const V2VORConversation &conversation) override;
    void receiveConnectionState(V2VORConnectionState state) override;
    void receiveReconnected() override;
    /// The keys of `msgID` now live are exactly `extensions` (a full read).
    void learnLiveKeys(const QString &msgID, const QList<V2VORMessageExtension> &extensions);

    V2VORManager *q;
    std::unique_ptr<MessagingBackend> backend;
    QString token;
    /// The logged-in user's own profile, once the service told it: a message being sent names
    /// its sender at once, before any answer comes back across the network.
    V2VORUserFullInfo ownProfile;
    QString userID;
    int status = V2VOR_STATUS_LOGOUT;
    QHash<QString, V2VORMessagePtr> history;
    /// msgID -> key -> version
    QHash<QString, QHash<QString, quint64>> versions;
    /// msgID -> the keys this client last knew live (to tell deletions missed offline).
    QHash<QString, QSet<QString>> liveKeys;
    V2VORConnectionState connectionState = V2VOR_CONNECTION_CONNECTED;
    QPointer<ReconnectCatchUp> catchUp;
    QList<V2VORAdvancedMsgListener *> listeners;
    QList<V2VORConversationListener *> conversationListeners;
    QStringList logs;

private:
    void notifyListeners(const std::function<void(V2VORAdvancedMsgListener *)> &call);
};
