// The process a fuzz target runs in: the application object, a fixed device time zone, and, for
// targets that reach the messaging client, an in-process service with one group whose member
// "alice" is the logged-in user. Built once per process; every input reuses it.
#pragma once

#include <QHash>
#include <QString>

#include <functional>

class FuzzSession
{
public:
    /// Creates the application object and pins the device's time zone to Asia/Shanghai.
    static void startApplication(int *argc, char ***argv);
    /// As startApplication(), then logs "alice" in to a group of alice, bob (name card "Bobby")
    /// and a_b, beside carol, a user outside the group. Aborts when the login does not finish.
    static void startGroup(int *argc, char ***argv);

    static QString groupID() { return QStringLiteral("group-1"); }
    static QString currentUserID() { return QStringLiteral("alice"); }
    /// The names a member look-up of the group gives, by user ID; users outside it are absent.
    static QHash<QString, QString> memberNames();

    /// Delivers posted events until `done` answers true, for a bounded number of rounds, so a
    /// callback that never comes shows up as false rather than as a hang. Every posted event is
    /// delivered before returning, so nothing piles up from one input to the next.
    static bool drainUntil(const std::function<bool()> &done);
};
