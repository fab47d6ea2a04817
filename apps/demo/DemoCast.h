// The other people of the demo: each played member has a messaging client of their own on the
// demo's service and, once started, now and then says something short in one of their chats, so
// the user sees conversations come alive. Random but seeded: the same seed plays the same lines.
#pragma once

#include "kit/chat/ZIQChatConversation.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <functional>
#include <random>

class MessagingServer;
class V2VORManager;

class DemoCast : public QObject
{
    Q_OBJECT

public:
    /// Quietest and busiest pause between two lines of the cast.
    static constexpr int MinPauseMs = 8000;
    static constexpr int MaxPauseMs = 20000;

    DemoCast(MessagingServer *server, quint32 seed, QObject *parent = nullptr);
    ~DemoCast() override;

    /// Gives `userID` a client of their own, logged in on a later turn of the main queue.
    void addMember(const QString &userID);
    /// A chat `userID` may speak in (seen from their side), with the lines they may say there.
    void addChat(const QString &userID, const ZIQChatConversation &chat, const QStringList &lines);
    QStringList memberIDs() const { return m_order; }
    /// The member's own client, to act as them beyond chatting; null for a stranger.
    V2VORManager *client(const QString &userID) const;

    /// Starts the random lines: one every MinPauseMs to MaxPauseMs of the main queue's clock.
    void start();
    void stop();
    bool isRunning() const { return m_running; }

    /// `userID` reads `chat`, then says `text` there; `done` hears whether the service took it.
    void post(const QString &userID, const ZIQChatConversation &chat, const QString &text,
              std::function<void(bool sent)> done = {});
    /// `userID` has read everything of `chat` so far.
    void markRead(const QString &userID, const ZIQChatConversation &chat);

Q_SIGNALS:
    void posted(const QString &userID, const ZIQChatConversation &chat, const QString &text);

private:
    struct Stage
    {
        ZIQChatConversation chat;
        QStringList lines;
    };
    struct Member
    {
        QPointer<V2VORManager> client;
        QList<Stage> stages;
    };

    void scheduleNext();
    void playOnce();
    int pick(int count);

    MessagingServer *m_server;
    std::mt19937 m_random;
    QHash<QString, Member> m_members;
    QStringList m_order;
    bool m_running = false;
    quint64 m_generation = 0;
};
