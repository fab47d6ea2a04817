#include "FuzzSession.h"

#include "FuzzCheck.h"
#include "sdk/MessagingServer.h"
#include "sdk/V2VORManager.h"

#include <QCoreApplication>

#include <unicode/timezone.h>

void FuzzSession::startApplication(int *argc, char ***argv)
{
    if (QCoreApplication::instance())
        return;
    // Parsing without a zone uses the device zone's present offset; a fixed zone keeps a crash
    // input reproducible on any machine.
    icu::TimeZone::adoptDefault(icu::TimeZone::createTimeZone("Asia/Shanghai"));
    new QCoreApplication(*argc, *argv);
}

void FuzzSession::startGroup(int *argc, char ***argv)
{
    startApplication(argc, argv);
    if (V2VORManager::sharedInstance())
        return;
    // Lives as long as the process, like the client of a real device.
    auto *server = new MessagingServer(QCoreApplication::instance());
    server->addUser(QStringLiteral("alice"), QStringLiteral("Alice"));
    server->addUser(QStringLiteral("bob"), QStringLiteral("Bob"));
    server->addUser(QStringLiteral("a_b"), QStringLiteral("A_b"));
    server->addUser(QStringLiteral("carol"), QStringLiteral("Carol"));
    server->createGroup(groupID(), { QStringLiteral("alice"), QStringLiteral("bob"), QStringLiteral("a_b") });
    server->setNameCard(groupID(), QStringLiteral("bob"), QStringLiteral("Bobby"));

    auto *client = new V2VORManager(server, server);
    V2VORManager::setSharedInstance(client);
    bool answered = false;
    client->login(
        currentUserID(), [&answered] { answered = true; }, [&answered](int, const QString &) { answered = true; });
    FUZZ_CHECK(drainUntil([&answered] { return answered; }) && client->getLoginUser() == currentUserID(),
        "the fuzz session could not log in");
}

QHash<QString, QString> FuzzSession::memberNames()
{
    return {
        { QStringLiteral("alice"), QStringLiteral("Alice") },
        { QStringLiteral("bob"), QStringLiteral("Bobby") },
        { QStringLiteral("a_b"), QStringLiteral("A_b") },
    };
}

bool FuzzSession::drainUntil(const std::function<bool()> &done)
{
    // A member look-up is answered in one hop of the queue; a few rounds leave ample room.
    constexpr int rounds = 8;
    for (int round = 0; round < rounds && !done(); ++round)
        QCoreApplication::sendPostedEvents();
    QCoreApplication::sendPostedEvents();
    return done();
}
