#include "kit/common/ZIQLogin.h"

#include "platform/MainQueue.h"
#include "platform/NotificationCenter.h"
#include "sdk/V2VORManager.h"

#include <QHash>
#include <QLoggingCategory>

namespace {

Q_LOGGING_CATEGORY(lcLogin, "ziq.kit.login")

struct Profile
{
    QString nickName;
    QString faceUrl;
};

// Profiles of the users this process has logged in as, by user ID.
QHash<QString, Profile> &profiles()
{
    static QHash<QString, Profile> cache;
    return cache;
}

Profile currentProfile()
{
    return profiles().value(ZIQLogin::getUserID());
}

void finishLogin(const QString &userID, const V2VORSucc &succ)
{
    qCInfo(lcLogin) << "logged in as" << userID;
    platform::NotificationCenter::defaultCenter().post(ZIQLoginSuccessNotification);
    if (succ)
        succ();
}

} // namespace

void ZIQLogin::login(const QString &userID, V2VORSucc succ, V2VORFail fail)
{
    V2VORManager *client = V2VORManager::sharedInstance();
    if (!client) {
        // Answered later, as every login answer is.
        platform::MainQueue::async([fail] {
            if (fail)
                fail(-1, QStringLiteral("no messaging client"));
        });
        return;
    }
    // The client may be gone (a test tearing down) by the time the login is answered.
    QPointer<V2VORManager> weakClient(client);
    auto loggedIn = [weakClient, userID, succ] {
        if (!weakClient) {
            finishLogin(userID, succ);
            return;
        }
        weakClient->getUsersInfo(
            { userID },
            [userID, succ](const QList<V2VORUserFullInfo> &users) {
                for (const V2VORUserFullInfo &user : users) {
                    if (user.userID == userID)
                        setProfile(user.userID, user.nickName, user.faceURL);
                }
                finishLogin(userID, succ);
            },
            [userID, succ](int code, const QString &desc) {
                // The login itself stands; the profile stays as it was.
                qCWarning(lcLogin) << "profile of" << userID << "not fetched:" << code << desc;
                finishLogin(userID, succ);
            });
    };
    client->login(userID, std::move(loggedIn), std::move(fail));
}

QString ZIQLogin::getUserID()
{
    const V2VORManager *client = V2VORManager::sharedInstance();
    return client ? client->getLoginUser() : QString();
}

QString ZIQLogin::getNickName()
{
    return currentProfile().nickName;
}

QString ZIQLogin::getFaceUrl()
{
    return currentProfile().faceUrl;
}

void ZIQLogin::setProfile(const QString &userID, const QString &nickName, const QString &faceUrl)
{
    if (userID.isEmpty())
        return;
    profiles().insert(userID, { nickName, faceUrl });
}
