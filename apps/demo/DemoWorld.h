// The demo's little world: its people with names and faces, three groups and a one-to-one
// chat, and a few days of history in each, written as if it had happened.
#pragma once

#include "DemoNoteScene.h"

#include "kit/chat/ZIQChatConversation.h"

#include <QList>
#include <QString>
#include <QStringList>

class DemoCast;
class MessagingServer;

class DemoWorld
{
public:
    struct Person
    {
        QString userID;
        QString nickName;
        QString faceURL;
    };

    static QList<Person> people();
    static bool hasPerson(const QString &userID);
    /// The person's nickname; empty for a stranger.
    static QString nickNameOf(const QString &userID);
    /// The user a plain start logs in as.
    static QString defaultUserID();

    /// Users and groups, with their profiles, on the service.
    static void createDirectory(MessagingServer &server);
    /// Plays the last days' history through `cast` (every person becomes a member) on a manual
    /// clock, so that every message carries its own time before `nowMs`.
    static void playHistory(DemoCast &cast, double nowMs);
    /// Plays `script` through `cast` at once on a manual clock that starts at `startMs`, so the
    /// note and its entries join the history; false when the scene did not finish.
    static bool playNote(DemoCast &cast, const DemoNoteScene::Script &script, double startMs);
    /// Makes everyone but `userID` a member of `cast`, with the chats and lines they speak.
    static void castOthers(DemoCast &cast, const QString &userID);
    /// The sign-up sheet the other members of `userID`'s hiking group play; no group when
    /// the user is not in it.
    static DemoNoteScene::Script noteScript(const QString &userID);
};
