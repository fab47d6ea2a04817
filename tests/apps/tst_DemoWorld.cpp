// The demo's hiking group note played into the history: posted by the first other member, joined
// by the rest through their own clients, with every message stamped at its time in the past.
#include "DemoCast.h"
#include "DemoWorld.h"

#include "kit/chat/ZIQChatService.h"
#include "kit/common/ZIQLogin.h"
#include "plugin/service/ZIQGroupNotePlugin.h"
#include "sdk/LocalBackend.h"
#include "sdk/MessagingServer.h"
#include "server/DirectoryFile.h"
#include "sdk/SilentSession.h"
#include "sdk/V2VORCustomElem.h"
#include "sdk/V2VORManager.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

namespace {

constexpr double StartMs = 1700000000000.0;
/// The scene's waits, four joins at most: well under a minute of its clock.
constexpr double SceneMs = 60.0 * 1000.0;

QString businessIDOf(const V2VORMessagePtr &message)
{
    if (!message->customElem())
        return {};
    return QJsonDocument::fromJson(message->customElem()->data).object().value(QStringLiteral("businessID")).toString();
}

} // namespace

class tst_DemoWorld : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void playNote_data();
    void playNote();
    void serverWorldIsTheEmbeddedOne();
};

void tst_DemoWorld::initTestCase()
{
    ZIQChatService::registerInCore();
    ZIQGroupNotePlugin::load();
}

void tst_DemoWorld::playNote_data()
{
    QTest::addColumn<QString>("userID");
    // Newest first, as the group's history reads.
    QTest::addColumn<QStringList>("senders");

    QTest::newRow("amy") << "amy" << QStringList { "dan", "chloe", "ben" };
    QTest::newRow("ben") << "ben" << QStringList { "dan", "chloe", "amy" };
    QTest::newRow("dan") << "dan" << QStringList { "chloe", "ben", "amy" };
}

void tst_DemoWorld::playNote()
{
    QFETCH(QString, userID);
    QFETCH(QStringList, senders);

    MessagingServer server;
    DemoWorld::createDirectory(server);
    // The user's own client is the process's, as in the demo: notes go out through the chat kit.
    V2VORManager me(&server);
    V2VORManager::setSharedInstance(&me);
    auto forget = qScopeGuard([] { V2VORManager::setSharedInstance(nullptr); });
    bool loggedIn = false;
    ZIQLogin::login(userID, [&loggedIn] { loggedIn = true; }, {});
    QTRY_VERIFY(loggedIn);

    DemoCast cast(&server, 1);
    DemoWorld::castOthers(cast, userID);
    QVERIFY(DemoWorld::playNote(cast, DemoWorld::noteScript(userID), StartMs));

    QList<V2VORMessagePtr> history;
    bool read = false;
    me.getGroupHistoryMessageList(QStringLiteral("hike"), 10, nullptr,
        [&](const QList<V2VORMessagePtr> &messages) {
            history = messages;
            read = true;
        },
        {});
    QTRY_VERIFY(read);
    QStringList seen;
    for (const V2VORMessagePtr &message : std::as_const(history)) {
        seen.append(message->sender());
        QVERIFY2(message->timestamp() >= StartMs && message->timestamp() <= StartMs + SceneMs,
            qPrintable(QString::number(message->timestamp() - StartMs)));
    }
    QCOMPARE(seen, senders);
    QCOMPARE(businessIDOf(history.constLast()), QStringLiteral("group_note"));
    for (qsizetype i = 0; i + 1 < history.size(); ++i)
        QCOMPARE(businessIDOf(history.at(i)), QStringLiteral("group_note_tips"));
}


namespace {

/// The users and groups of a service as one user sees them, in one comparable line per item.
QStringList worldAsSeenBy(MessagingServer &server, const QString &userID)
{
    LocalBackend backend(&server);
    SilentSession viewer(userID);
    QStringList seen;
    QStringList groupIDs;
    backend.groupsInfo(&viewer, { "hike", "books", "family" }, [&](const ServiceReply<QList<V2VORGroupInfo>> &reply) {
        for (const V2VORGroupInfo &group : reply.value) {
            seen << group.groupID + " " + group.groupName + " " + group.faceURL;
            groupIDs << group.groupID;
        }
    });
    for (const QString &groupID : groupIDs) {
        backend.members(&viewer, groupID, {}, [&](const ServiceReply<QList<V2VORGroupMemberFullInfo>> &reply) {
            for (const V2VORGroupMemberFullInfo &member : reply.value)
                seen << groupID + ": " + member.userID + " " + member.nickName + " " + member.faceURL;
        });
    }
    return seen;
}

} // namespace

void tst_DemoWorld::serverWorldIsTheEmbeddedOne()
{
    // The file a server is seeded with for phones on several devices holds the same people and
    // groups as the demo's own single-window world.
    QString error;
    const std::optional<DirectoryFile> file = DirectoryFile::read(QStringLiteral(DEMO_WORLD_FILE), &error);
    QVERIFY2(file, qPrintable(error));
    MessagingServer seeded;
    LocalBackend backend(&seeded);
    SilentSession operatorSession(QStringLiteral("operator"));
    std::optional<int> outcome;
    file->apply(&backend, &operatorSession, [&](const CallError &failure) { outcome = failure.code; });
    QCOMPARE(outcome.value_or(-1), 0);

    MessagingServer embedded;
    DemoWorld::createDirectory(embedded);
    for (const DemoWorld::Person &person : DemoWorld::people()) {
        const QStringList expected = worldAsSeenBy(embedded, person.userID);
        QVERIFY(!expected.isEmpty());
        QCOMPARE(worldAsSeenBy(seeded, person.userID), expected);
    }
}

QTEST_MAIN(tst_DemoWorld)
#include "tst_DemoWorld.moc"
