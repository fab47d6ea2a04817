// Who reads a note and through which messaging client: the client that names the entries' authors
// and the user whose entries and notes count as "mine". A note is given one context and asks it
// alone, so two users' screens in one process never mix their answers, and a refresh never asks
// a client that was swapped in halfway through.
#pragma once

#include "sdk/V2VORManager.h"

#include <QPointer>
#include <QString>

class ZIQGroupNoteContext
{
public:
    /// The process's current login: the shared messaging client and the kit's login profile.
    static ZIQGroupNoteContext current();

    /// Whether `userID` names this context's user. With nobody logged in the user ID is empty,
    /// and an empty ID matches no one: not a creator or author written as "" either.
    bool isCurrentUser(const QString &userID) const { return !this->userID.isEmpty() && userID == this->userID; }

    /// Member look-ups and extension traffic go here; null when there is no client at all.
    QPointer<V2VORManager> client;
    QString userID;
    /// Starts a new entry's text; empty when the profile is unknown.
    QString nickName;
};
