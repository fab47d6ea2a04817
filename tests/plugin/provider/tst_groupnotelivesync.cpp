// Live updates and sending paths: remote modifications and extension changes reaching the
// delegate, the "groupNoteUpdated" notice and which messages concern a note, the direct send
// path and the chat service's send-result event.
#include "ProviderTestSupport.h"

#include "platform/NotificationCenter.h"
#include "plugin/provider/ZIQGroupNoteDataProviderDelegate.h"

#include <QSignalSpy>

namespace {

class DelegateRecorder : public ZIQGroupNoteDataProviderDelegate
{
public:
    void dataProviderDidUpdateGroupNoteInfo(ZIQGroupNoteDataProvider *, const ZIQGroupNoteInfoPtr &info) override
    {
        infos.append(info);
    }
    void dataProviderDidUpdateShowLineNum(ZIQGroupNoteDataProvider *, qint64 oldValue, qint64 newValue) override
    {
        lineNums.append({ oldValue, newValue });
    }
    QList<ZIQGroupNoteInfoPtr> infos;
    QList<QPair<qint64, qint64>> lineNums;
};

} // namespace

class TestGroupNoteLiveSync : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void remoteChangesReachTheDelegate()
    {
        Scene s;
        const QString msgID = s.post();
        auto card = s.open("carol", msgID);
        DelegateRecorder recorder;
        card->setDelegate(&recorder);
        QSignalSpy updates(card.get(), &ZIQGroupNoteDataProvider::noteUpdated);
        QSignalSpy lineNums(card.get(), &ZIQGroupNoteDataProvider::showLineNumChanged);
        // Bob's screens stay open: the line count is rewritten after the submission's answer.
        std::vector<std::unique_ptr<ZIQGroupNoteDataProvider>> bob;
        const auto bobAdds = [&](const char *line) {
            bob.push_back(s.open("bob", msgID));
            addLine(*bob.back(), line);
            QVERIFY(s.submit(*bob.back(), false)->code == 0);
        };
        // While an editor shows the note, extension changes are left alone; the rewritten line
        // count is always followed.
        bobAdds("Bob: soup");
        QTRY_COMPARE(recorder.lineNums, (QList<QPair<qint64, qint64>> { { 1, 2 } }));
        QVERIFY(recorder.infos.isEmpty());
        card->setNeedUpdateDataListSynchronously(true);
        bobAdds("Bob: bread");
        QTRY_COMPARE(recorder.infos.size(), 1);
        QCOMPARE(card->info()->items().constLast()->content(), QStringLiteral("Bob: bread"));

        // The local notice refreshes whatever the flag says; a modification that leaves the count
        // as it was is not passed on.
        card->setNeedUpdateDataListSynchronously(false);
        platform::NotificationCenter::defaultCenter().post("groupNoteUpdated", { { "msgID", msgID } });
        QTRY_COMPARE(recorder.infos.size(), 2);
        card->onRecvMessageModified(s.group.server()->messageByID(msgID));
        QCOMPARE(recorder.lineNums.size(), 1);
        // Qt users hear the same as the delegate.
        QCOMPARE(updates.size(), recorder.infos.size());
        QCOMPARE(updates.constLast().constFirst().value<ZIQGroupNoteInfoPtr>(), card->info());
        QCOMPARE(lineNums, (QList<QVariantList> { { 1, 2 } }));

        // A refresh under way when the card goes reaches neither its delegate nor its signals;
        // a screen refreshed after it has heard its answer by the time its own arrives.
        const auto later = s.open("alice", msgID);
        QSignalSpy laterUpdates(later.get(), &ZIQGroupNoteDataProvider::noteUpdated);
        platform::NotificationCenter::defaultCenter().post("groupNoteUpdated", { { "msgID", msgID } });
        card.reset();
        QTRY_COMPARE(laterUpdates.size(), 1);
        QCOMPARE(recorder.infos.size(), 2);
    }

    void changeConcernsTheNote()
    {
        Scene s;
        const QString msgID = s.post();
        const QString tipsID = s.join("bob", msgID, "Bob: soup")->msgID();
        const auto card = s.open("carol", msgID);
        const auto overTips = s.open("carol", tipsID);
        card->setNeedUpdateDataListSynchronously(true);
        overTips->setNeedUpdateDataListSynchronously(true);
        // A refresh starts with a call inside the event's handling: a read for the note's own
        // message, a look-up of the first message for one reached through a tips message.
        const auto refreshes = [&](const QString &id) {
            const int reads = s.group.server()->callCount("getMessageExtensions");
            const int lookUps = s.group.server()->callCount("findMessages");
            for (ZIQGroupNoteDataProvider *provider : { card.get(), overTips.get() })
                provider->onRecvMessageExtensionsChanged(id, {});
            platform::NotificationCenter::defaultCenter().post("groupNoteUpdated", { { "msgID", id } });
            return std::pair(s.group.server()->callCount("getMessageExtensions") - reads,
                s.group.server()->callCount("findMessages") - lookUps);
        };
        // The note names no first message, so it takes any message's change for its own: a note
        // read from its first message cannot tell which ID a copy of it carries.
        QCOMPARE(refreshes("msg-x"), std::pair(2, 0));
        QCOMPARE(refreshes(tipsID), std::pair(2, 2));
        QCOMPARE(refreshes(msgID), std::pair(2, 2));
    }

    void sendPaths()
    {
        GroupFixture group;
        ZIQGroupNoteDataProvider provider(nullptr, { group.client("alice"), "alice", "Alice" });
        // Without the chat service a message goes straight to its group, without push information.
        const V2VORMessagePtr message = group.client("alice")->createCustomMessage("{}");
        message->setGroupID(group.groupID());
        int succeeded = 0;
        provider.sendNoteMessage(message, [&succeeded] { ++succeeded; }, {});
        QTRY_COMPARE(succeeded, 1);
        const auto record = group.server()->sendRecord(message->msgID());
        // The push information is assembled but not handed over: note messages go out without
        // offline push from every client of these notes.
        QVERIFY(record && record->priority == 0 && !record->onlineUserOnly && !record->offlinePushInfo);

        // Through the chat service the result event answers whatever send is pending, once.
        ChatServiceDouble chat({});
        QList<int> failed;
        provider.sendNoteMessage(
            message, [&succeeded] { ++succeeded; }, [&](int code, const QString &) { failed.append(code); });
        QTest::ignoreMessage(QtWarningMsg, "sendMessageByZIQChat failed, code: 7, desc: busy");
        ChatServiceDouble::answer(7, QStringLiteral("busy"));
        ChatServiceDouble::answer(0, {});
        ChatServiceDouble::answer(0, {});
        QCOMPARE(failed, QList<int> { 7 });
        QCOMPARE(succeeded, 2);

        // With Bob the process's user, Alice's session must not send through Bob's chat.
        group.actAs("bob");
        const V2VORMessagePtr alices = group.client("alice")->createCustomMessage("{}");
        alices->setGroupID(group.groupID());
        provider.sendNoteMessage(alices, [&succeeded] { ++succeeded; }, {});
        QTRY_COMPARE(succeeded, 3);
        QCOMPARE(chat.handedOver.size(), 1);
        QCOMPARE(alices->sender(), QStringLiteral("alice"));
        // A new note of hers goes to the group it was submitted to.
        provider.sendGroupNoteMessageToGroup(group.groupID(), [&succeeded] { ++succeeded; }, {});
        QTRY_COMPARE(succeeded, 4);
        QCOMPARE(provider.message()->groupID(), group.groupID());
        QCOMPARE(chat.handedOver.size(), 1);
    }
};

QTEST_MAIN(TestGroupNoteLiveSync)
#include "tst_groupnotelivesync.moc"
