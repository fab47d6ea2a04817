// The demo's hiking group note played into the history: posted by the first other member, joined
// by the rest through their own clients, with every message stamped at its time in the past.
#include "DemoCast.h"
#include "DemoWorld.h"

#include "kit/chat/ZIQChatService.h"
#include "kit/common/ZIQLogin.h"
#include "plugin/service/ZIQGroupNotePlugin.h"
#include "sdk/MessagingServer.h"
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

QTEST_MAIN(tst_DemoWorld)
#include "tst_DemoWorld.moc"
