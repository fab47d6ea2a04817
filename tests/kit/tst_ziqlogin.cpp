// The kit's login state over the process's messaging client: who is logged in, their profile,
// and the login-success notification that start-up code waits for.
#include "kit/common/ZIQLogin.h"
#include "platform/NotificationCenter.h"
#include "sdk/MessagingServer.h"
#include "sdk/V2VORManager.h"

#include <QTest>

using platform::Notification;
using platform::NotificationCenter;

class ZIQLoginTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void loginFetchesTheProfileThenNotifies();
    void failedLoginNeitherNotifiesNorSucceeds();
    void missingProfileStillLogsIn();
    void identityFollowsTheSharedClient();

private:
    std::unique_ptr<MessagingServer> m_server;
    std::unique_ptr<V2VORManager> m_client;
    QObject m_observer;
    QStringList m_events;
};

void ZIQLoginTest::init()
{
    m_server = std::make_unique<MessagingServer>();
    m_server->addUser(QStringLiteral("alice"), QStringLiteral("Alice"), QStringLiteral("https://faces/alice.png"));
    m_client = std::make_unique<V2VORManager>(m_server.get());
    V2VORManager::setSharedInstance(m_client.get());
    m_events.clear();
    NotificationCenter::defaultCenter().addObserver(&m_observer, ZIQLoginSuccessNotification,
        [this](const Notification &) { m_events << QStringLiteral("notified as ") + ZIQLogin::getNickName(); });
}

void ZIQLoginTest::cleanup()
{
    NotificationCenter::defaultCenter().removeObserver(&m_observer);
    V2VORManager::setSharedInstance(nullptr);
    m_client.reset();
    m_server.reset();
}

void ZIQLoginTest::loginFetchesTheProfileThenNotifies()
{
    QCOMPARE(ZIQLogin::getUserID(), QString());
    ZIQLogin::login(
        QStringLiteral("alice"), [this] { m_events << QStringLiteral("succeeded"); },
        [this](int code, const QString &) { m_events << QStringLiteral("failed %1").arg(code); });
    QVERIFY(m_events.isEmpty());

    QTRY_COMPARE(m_events, (QStringList { QStringLiteral("notified as Alice"), QStringLiteral("succeeded") }));
    QCOMPARE(ZIQLogin::getUserID(), QStringLiteral("alice"));
    QCOMPARE(ZIQLogin::getFaceUrl(), QStringLiteral("https://faces/alice.png"));
    QCOMPARE(m_client->getLoginStatus(), int(V2VOR_STATUS_LOGINED));
}

void ZIQLoginTest::failedLoginNeitherNotifiesNorSucceeds()
{
    m_server->failNextCall(QStringLiteral("login"), 6206, QStringLiteral("sig expired"));
    int failedCode = 0;
    QString failedDesc;
    ZIQLogin::login(
        QStringLiteral("alice"), [this] { m_events << QStringLiteral("succeeded"); },
        [&](int code, const QString &desc) {
            failedCode = code;
            failedDesc = desc;
        });
    QTRY_COMPARE(failedCode, 6206);
    QCOMPARE(failedDesc, QStringLiteral("sig expired"));
    QVERIFY(m_events.isEmpty());

    // Without a messaging client there is nobody to log in with.
    V2VORManager::setSharedInstance(nullptr);
    failedCode = 0;
    ZIQLogin::login(QStringLiteral("alice"), {}, [&](int code, const QString &) { failedCode = code; });
    QCOMPARE(failedCode, -1);
    QCOMPARE(ZIQLogin::getUserID(), QString());
    QCOMPARE(ZIQLogin::getNickName(), QString());
}

void ZIQLoginTest::missingProfileStillLogsIn()
{
    m_server->failNextCall(QStringLiteral("getUsersInfo"), 6012, QStringLiteral("timeout"));
    ZIQLogin::login(QStringLiteral("carol"), [this] { m_events << QStringLiteral("succeeded"); }, {});
    QTRY_COMPARE(m_events, (QStringList { QStringLiteral("notified as "), QStringLiteral("succeeded") }));
    QCOMPARE(ZIQLogin::getUserID(), QStringLiteral("carol"));
    QCOMPARE(ZIQLogin::getFaceUrl(), QString());
}

void ZIQLoginTest::identityFollowsTheSharedClient()
{
    V2VORManager bobClient(m_server.get());
    bool loggedIn = false;
    bobClient.login(QStringLiteral("bob"), [&] { loggedIn = true; }, {});
    QTRY_VERIFY(loggedIn);
    ZIQLogin::setProfile(QStringLiteral("bob"), QStringLiteral("Bob"), QStringLiteral("https://faces/bob.png"));
    ZIQLogin::setProfile(QString(), QStringLiteral("Nobody"), QString());

    V2VORManager::setSharedInstance(&bobClient);
    QCOMPARE(ZIQLogin::getUserID(), QStringLiteral("bob"));
    QCOMPARE(ZIQLogin::getNickName(), QStringLiteral("Bob"));
    QCOMPARE(ZIQLogin::getFaceUrl(), QStringLiteral("https://faces/bob.png"));

    V2VORManager::setSharedInstance(m_client.get());
    QCOMPARE(ZIQLogin::getUserID(), QString());
    QCOMPARE(ZIQLogin::getNickName(), QString());
    V2VORManager::setSharedInstance(nullptr);
}

QTEST_GUILESS_MAIN(ZIQLoginTest)
#include "tst_ziqlogin.moc"
