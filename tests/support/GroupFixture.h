// A group of users played through one in-process messaging service: one logged-in client per
// user, a group they all belong to, and a switch that makes one of them the current user of
// the process (the shared client and the kit's login profile), as on that user's device.
#pragma once

#include "sdk/MessagingServer.h"
#include "sdk/V2VORManager.h"

#include <QHash>
#include <QPointer>
#include <QStringList>
#include <memory>

class GroupFixture
{
public:
    /// Creates the users (nick name: the ID with a capital first letter, "alice" -> "Alice"),
    /// a group holding them all, and logs every user in on a client of their own.
    explicit GroupFixture(
        const QStringList &userIDs = { QStringLiteral("alice"), QStringLiteral("bob"), QStringLiteral("carol") },
        const QString &groupID = QStringLiteral("group-1"));
    ~GroupFixture();

    GroupFixture(const GroupFixture &) = delete;
    GroupFixture &operator=(const GroupFixture &) = delete;

    MessagingServer *server() const { return m_server.get(); }
    QString groupID() const { return m_groupID; }
    QStringList userIDs() const { return m_userIDs; }
    /// The client logged in as `userID`; null for a user the fixture does not know.
    V2VORManager *client(const QString &userID) const { return m_clients.value(userID); }

    /// Makes `userID`'s client the process's shared client and its profile the kit's login.
    void actAs(const QString &userID);
    /// A user who joins the group now, with a logged-in client of their own.
    V2VORManager *addLateMember(const QString &userID);
    /// A user outside the group, with a logged-in client of their own.
    V2VORManager *addOutsider(const QString &userID);

    static QString nickNameOf(const QString &userID);
    /// A face picture that exists nowhere, so rows that load it stay on their placeholder and
    /// no test reaches beyond the machine.
    static QString faceURLOf(const QString &userID)
    {
        return QStringLiteral("file:///nonexistent/faces/%1.png").arg(userID);
    }

    /// Whether every login finished (the fixture waits a bounded time for each).
    bool isReady() const { return m_ready; }

private:
    V2VORManager *addClient(const QString &userID);

    std::unique_ptr<MessagingServer> m_server;
    QString m_groupID;
    QStringList m_userIDs;
    QHash<QString, V2VORManager *> m_clients;
    QPointer<V2VORManager> m_previousShared;
    bool m_ready = true;
};
