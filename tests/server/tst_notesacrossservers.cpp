// Two members of a group on two different vor-servers sharing NATS follow one group note live,
// through the plug-in as it runs on each device: Alice posts a note, Bob opens it on his device,
// adds an entry and submits, and the card open on Alice's device refreshes and shows his entry.
#include "contract/ContractFixture.h"
#include "contract/ServerCluster.h"
#include "plugin/provider/ProviderTestSupport.h"
#include "sdk/ClientCalls.h"

#include "kit/common/ZIQLogin.h"
#include "plugin/provider/ZIQGroupNoteDataProviderDelegate.h"
#include "sdk/NetworkBackend.h"

#include <QSignalSpy>

namespace {

constexpr int kWaitMs = 10000;
// The fixture's operator is client 0, Alice client 1 (on server 1), Bob client 2 (on server 0).
constexpr int kAliceIndex = 1;
constexpr int kBobIndex = 2;

class DelegateRecorder : public ZIQGroupNoteDataProviderDelegate
{
public:
    void dataProviderDidUpdateGroupNoteInfo(ZIQGroupNoteDataProvider *, const ZIQGroupNoteInfoPtr &info) override
    {
        infos.append(info);
    }
    QList<ZIQGroupNoteInfoPtr> infos;
};

QStringList contentsOf(const ZIQGroupNoteInfoPtr &info)
{
    QStringList contents;
    for (const ZIQGroupNoteItemPtr &item : info->items())
        contents.append(item->content());
    return contents;
}

} // namespace

class TestNotesAcrossServers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_cluster = std::make_unique<ServerCluster>(QStringLiteral("nats"), 2);
        QVERIFY2(m_cluster->startError().isEmpty(), qPrintable(m_cluster->startError()));
    }
    void cleanup() { V2VORManager::setSharedInstance(nullptr); }
    void cleanupTestCase() { m_cluster.reset(); }

    void anEntryAddedOnOneServerShowsOnTheOther()
    {
        ContractFixture group(*m_cluster, { QStringLiteral("alice"), QStringLiteral("bob") });
        QVERIFY(group.isReady());
        QCOMPARE(m_cluster->backend(kAliceIndex)->connection()->url(), m_cluster->server(1).url());
        QCOMPARE(m_cluster->backend(kBobIndex)->connection()->url(), m_cluster->server(0).url());
        ChatServiceDouble chat(group.groupID());

        actAs(group, "alice", chat);
        ZIQGroupNoteDataProvider posting;
        posting.editTitle(QStringLiteral("Picnic"));
        addLine(posting, QStringLiteral("Alice: cake"));
        QCOMPARE(submit(posting, group.groupID(), true), 0);
        const QString msgID = posting.message()->msgID();
        QVERIFY(!msgID.isEmpty());

        // Alice's card over her own copy of the note follows remote changes.
        const auto card = open(group.client("alice"), msgID);
        QVERIFY(card);
        QCOMPARE(contentsOf(card->info()), QStringList { QStringLiteral("Alice: cake") });
        card->setNeedUpdateDataListSynchronously(true);
        DelegateRecorder delegate;
        card->setDelegate(&delegate);
        QSignalSpy updates(card.get(), &ZIQGroupNoteDataProvider::noteUpdated);

        actAs(group, "bob", chat);
        const auto editor = open(group.client("bob"), msgID);
        QVERIFY(editor);
        QCOMPARE(contentsOf(editor->info()), QStringList { QStringLiteral("Alice: cake") });
        addLine(*editor, QStringLiteral("Bob: bread"));
        QCOMPARE(submit(*editor, group.groupID(), false), 0);

        const QStringList both { QStringLiteral("Alice: cake"), QStringLiteral("Bob: bread") };
        QTRY_COMPARE_WITH_TIMEOUT(contentsOf(card->info()), both, kWaitMs);
        QVERIFY(!updates.isEmpty());
        QVERIFY(!delegate.infos.isEmpty());
        QCOMPARE(contentsOf(delegate.infos.constLast()), both);
        QCOMPARE(card->manager(), group.client("alice"));
    }

private:
    /// The process becomes `name`'s device: the shared client, the kit's login and the chat
    /// screen's sender.
    static void actAs(const ContractFixture &group, const char *name, ChatServiceDouble &chat)
    {
        const QString user = QString::fromLatin1(name);
        V2VORManager::setSharedInstance(group.client(user));
        ZIQLogin::setProfile(group.id(user), GroupFixture::nickNameOf(user), GroupFixture::faceURLOf(user));
        chat.sender = group.client(user);
    }

    /// A screen over the client's own copy of the note, fetched as a screen does on opening.
    static std::unique_ptr<ZIQGroupNoteDataProvider> open(V2VORManager *client, const QString &msgID)
    {
        V2VORMessagePtr copy;
        if (!QTest::qWaitFor([&] { return bool(copy = localCopy(client, msgID)); }, kWaitMs))
            return nullptr;
        auto provider = std::make_unique<ZIQGroupNoteDataProvider>(copy);
        auto fetched = std::make_shared<int>(-1);
        provider->getNoteStatistics([fetched](int code, const QString &, const ZIQGroupNoteInfoPtr &) { *fetched = code; });
        return QTest::qWaitFor([fetched] { return *fetched >= 0; }, kWaitMs) && *fetched == 0 ? std::move(provider)
                                                                                            : nullptr;
    }

    /// Submits through the plug-in's own path; the answer's code (-1: none came).
    static int submit(ZIQGroupNoteDataProvider &provider, const QString &groupID, bool isCreateNew)
    {
        const auto answer = std::make_shared<Answer>();
        provider.submitInGroup(groupID, isCreateNew, record(answer));
        return QTest::qWaitFor([answer] { return answer->calls > 0; }, kWaitMs) ? answer->code : -1;
    }

    std::unique_ptr<ServerCluster> m_cluster;
};

QTEST_MAIN(TestNotesAcrossServers)
#include "tst_notesacrossservers.moc"
