// The kit's login state: who the current user is. The current user is the one logged in on
// the process's messaging client (V2VORManager::sharedInstance()).
#pragma once

#include "sdk/V2VORCallbacks.h"

#include <QString>

/// Posted on the default notification centre after every successful login.
inline const QString ZIQLoginSuccessNotification = QStringLiteral("ZIQLoginSuccessNotification");

class ZIQLogin
{
public:
    /// Logs in on the shared client, fetches the user's profile, then posts
    /// ZIQLoginSuccessNotification and calls `succ`.
    static void login(const QString &userID, V2VORSucc succ, V2VORFail fail);
    static QString getUserID();
    static QString getNickName();
    static QString getFaceUrl();
    /// Remembers a user's profile without a service round trip (tests, demo seeding).
    static void setProfile(const QString &userID, const QString &nickName, const QString &faceUrl);
};
