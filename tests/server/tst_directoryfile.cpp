// The directory file a server is seeded with: what is refused, and what lands in the service,
// whether the backend answers inside its calls or later.
#include "platform/MainQueue.h"
#include "sdk/LocalBackend.h"
#include "sdk/MessagingServer.h"
#include "server/DirectoryFile.h"
#include "sdk/SilentSession.h"

#include <QTest>

namespace {

const QByteArray kWorld = R"({
    "users": [{"userID": "amy", "nickName": "Amy Chen", "faceURL": "faces/amy.png"}, {"userID": "ben"},
              {"userID": "chloe"}],
    "groups": [{"groupID": "family", "groupName": "Family", "members": ["amy", "ben"],
                "nameCards": {"ben": "Benny"}},
               {"groupID": "empty"}],
    "remarks": [{"viewerID": "amy", "targetID": "ben", "remark": "brother"}]
})";

/// The in-process service answering its directory calls on a later turn, as a remote store does.
class LaterBackend : public LocalBackend
{
public:
    using LocalBackend::LocalBackend;

    void addUser(MessagingSession *caller, const QString &userID, const QString &nickName, const QString &faceURL,
        Done done) override
    {
        later([=, this] { LocalBackend::addUser(caller, userID, nickName, faceURL, done); });
    }
    void createGroup(MessagingSession *caller, const QString &groupID, const QStringList &memberIDs, Done done) override
    {
        later([=, this] { LocalBackend::createGroup(caller, groupID, memberIDs, done); });
    }
    void setGroupInfo(MessagingSession *caller, const QString &groupID, const QString &groupName,
        const QString &faceURL, Done done) override
    {
        later([=, this] { LocalBackend::setGroupInfo(caller, groupID, groupName, faceURL, done); });
    }
    void setNameCard(MessagingSession *caller, const QString &groupID, const QString &userID, const QString &nameCard,
        Done done) override
    {
        later([=, this] { LocalBackend::setNameCard(caller, groupID, userID, nameCard, done); });
    }
    void setFriendRemark(MessagingSession *caller, const QString &viewerID, const QString &targetID,
        const QString &remark, Done done) override
    {
        later([=, this] { LocalBackend::setFriendRemark(caller, viewerID, targetID, remark, done); });
    }

    int inFlight = 0;
    int mostInFlight = 0;

private:
    void later(std::function<void()> call)
    {
        mostInFlight = std::max(mostInFlight, ++inFlight);
        platform::MainQueue::async(&m_context, [this, call] {
            --inFlight;
            call();
        });
    }
    QObject m_context;
};

} // namespace

class TestDirectoryFile : public QObject
{
    Q_OBJECT

private:
    static void checkWorld(MessagingServer &service, MessagingBackend &backend)
    {
        QVERIFY(service.hasUser(QStringLiteral("chloe")));
        QVERIFY(service.isGroupMember(QStringLiteral("family"), QStringLiteral("ben")));
        QVERIFY(!service.isGroupMember(QStringLiteral("family"), QStringLiteral("chloe")));
        SilentSession amy(QStringLiteral("amy"));
        QList<V2VORGroupMemberFullInfo> members;
        backend.members(&amy, QStringLiteral("family"), {},
            [&](const ServiceReply<QList<V2VORGroupMemberFullInfo>> &reply) { members = reply.value; });
        QCOMPARE(members.size(), 2);
        for (const V2VORGroupMemberFullInfo &member : std::as_const(members)) {
            if (member.userID == QLatin1String("ben")) {
                QCOMPARE(member.nameCard, QStringLiteral("Benny"));
                QCOMPARE(member.friendRemark, QStringLiteral("brother"));
            } else {
                QCOMPARE(member.nickName, QStringLiteral("Amy Chen"));
                QCOMPARE(member.faceURL, QStringLiteral("faces/amy.png"));
            }
        }
        QList<V2VORGroupInfo> groups;
        backend.groupsInfo(&amy, { QStringLiteral("family") },
            [&](const ServiceReply<QList<V2VORGroupInfo>> &reply) { groups = reply.value; });
        QCOMPARE(groups.value(0).groupName, QStringLiteral("Family"));
    }

private Q_SLOTS:
    void refusals_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QString>("why");
        QTest::newRow("not JSON") << QByteArray("users: amy") << "not a JSON object";
        QTest::newRow("an array") << QByteArray("[]") << "not a JSON object";
        QTest::newRow("users an object") << QByteArray(R"({"users": {}})") << "\"users\" must be an array";
        QTest::newRow("user without ID") << QByteArray(R"({"users": [{"userID": "a"}, {"nickName": "B"}]})")
                                         << "users[1] needs a \"userID\"";
        QTest::newRow("user a string") << QByteArray(R"({"users": ["amy"]})") << "users[0] must be an object";
        QTest::newRow("nick a number") << QByteArray(R"({"users": [{"userID": "a", "nickName": 1}]})")
                                       << "users[0].nickName must be a string";
        QTest::newRow("group without ID")
            << QByteArray(R"({"groups": [{"groupName": "G"}]})") << "groups[0] needs a \"groupID\"";
        QTest::newRow("members not IDs") << QByteArray(R"({"groups": [{"groupID": "g", "members": ["a", 2]}]})")
                                         << "groups[0].members";
        QTest::newRow("name cards a list")
            << QByteArray(R"({"groups": [{"groupID": "g", "nameCards": ["a"]}]})") << "groups[0].nameCards";
        QTest::newRow("remark without target")
            << QByteArray(R"({"remarks": [{"viewerID": "a", "remark": "r"}]})") << "remarks[0] needs a \"targetID\"";
    }

    void refusals()
    {
        QFETCH(QByteArray, json);
        QFETCH(QString, why);
        QString error;
        QVERIFY(!DirectoryFile::fromJson(json, &error));
        QVERIFY2(error.contains(why), qPrintable(error));
    }

    void seedsAServiceAnsweringAtOnce()
    {
        QString error;
        const auto directory = DirectoryFile::fromJson(kWorld, &error);
        QVERIFY2(directory, qPrintable(error));
        QCOMPARE(directory->userCount(), 3);
        QCOMPARE(directory->groupCount(), 2);
        MessagingServer service;
        LocalBackend backend(&service);
        SilentSession seeder(QStringLiteral("seeder"));
        int answers = 0;
        CallError outcome { -1, {} };
        directory->apply(&backend, &seeder, [&](const CallError &error) {
            ++answers;
            outcome = error;
        });
        QCOMPARE(answers, 1);
        QCOMPARE(outcome.code, 0);
        checkWorld(service, backend);
    }

    void seedsAServiceAnsweringLaterOneChangeAtATime()
    {
        const auto directory = DirectoryFile::fromJson(kWorld, nullptr);
        MessagingServer service;
        LaterBackend backend(&service);
        SilentSession seeder(QStringLiteral("seeder"));
        int answers = 0;
        directory->apply(&backend, &seeder, [&](const CallError &error) {
            ++answers;
            QCOMPARE(error.code, 0);
        });
        QCOMPARE(answers, 0);
        QTRY_COMPARE(answers, 1);
        QCOMPARE(backend.mostInFlight, 1);
        QCoreApplication::processEvents();
        QCOMPARE(answers, 1);
        checkWorld(service, backend);
    }

    void aFailureStopsTheSeedingAndIsHeardOnce()
    {
        const auto directory = DirectoryFile::fromJson(kWorld, nullptr);
        auto service = std::make_unique<MessagingServer>();
        LocalBackend backend(service.get());
        service.reset(); // a backend whose service is gone answers every call with an error
        SilentSession seeder(QStringLiteral("seeder"));
        QList<int> codes;
        directory->apply(&backend, &seeder, [&](const CallError &error) { codes.append(error.code); });
        QCOMPARE(codes, QList<int>({ int(V2VOR_ERR_NOT_LOGGED_IN) }));
    }
};

QTEST_GUILESS_MAIN(TestDirectoryFile)
#include "tst_directoryfile.moc"
