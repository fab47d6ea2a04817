// Live updates and sending paths: remote modifications and extension changes reaching the
// delegate, the "groupNoteUpdated" notice, answers arriving after a provider or delegate is
// gone, the direct send path and the chat service's send-result event.
#include "ProviderTestSupport.h"

#include "platform/NotificationCenter.h"
#include "plugin/provider/ZIQGroupNoteDataProviderDelegate.h"

namespace {

class DelegateRecorder : public ZIQGroupNoteDataProviderDelegate
{
public:
    void dataProviderDidUpdateGroupNoteInfo(ZIQGroupNoteDataProvider *, const ZIQGroupNoteInfoPtr &info) override
    {
        lastInfo = info;
        ++infoUpdates;
    }
    void dataProviderDidUpdateShowLineNum(ZIQGroupNoteDataProvider *, qint64 oldValue, qint64 newValue) override
    {
        lineNums.append({ oldValue, newValue });
    }
    int infoUpdates = 0;
    ZIQGroupNoteInfoPtr lastInfo;
    QList<QPair<qint64, qint64>> lineNums;
};

int fetchCalls(GroupFixture &group)
{
    return group.server()->callCount(QStringLiteral("findMessages"))
        + group.server()->callCount(QStringLiteral("getMessageExtensions"));
}

void postUpdated(const QString &msgID)
{
    platform::NotificationCenter::defaultCenter().post(QStringLiteral("groupNoteUpdated"), { { "msgID", msgID } });
}

} // namespace

class TestGroupNoteLiveSync : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void remoteChangesReachTheDelegate()
    {
        GroupFixture group;
        platform::ManualClock clock;
        ChatServiceDouble chat(group.groupID());
        const QString msgID = postNote(group, clock, QStringLiteral("alice"), { "Alice: noodles" });
        group.actAs(QStringLiteral("carol"));
        ZIQGroupNoteDataProvider card(localCopy(group.client(QStringLiteral("carol")), msgID));
        DelegateRecorder recorder;
        card.setDelegate(&recorder);
        QCOMPARE(fetch(card), 0);
        // Bob's screens stay open: the line count is rewritten after the submission's answer.
        std::vector<std::unique_ptr<ZIQGroupNoteDataProvider>> bobScreens;
        const auto bobAdds = [&](const QString &line) {
            group.actAs(QStringLiteral("bob"));
            bobScreens.push_back(std::make_unique<ZIQGroupNoteDataProvider>(localCopy(group.client("bob"), msgID)));
            QVERIFY(fetch(*bobScreens.back()) == 0);
            addLine(*bobScreens.back(), line);
            QVERIFY(submit(*bobScreens.back(), clock, group.groupID(), false).code() == 0);
            group.actAs(QStringLiteral("carol"));
        };

        // While an editor shows the note, extension changes (heard before the modification that
        // follows them) are left alone; the rewritten line count is always followed.
        bobAdds(QStringLiteral("Bob: soup"));
        QTRY_COMPARE(recorder.lineNums, (QList<QPair<qint64, qint64>> { { 1, 2 } }));
        QCOMPARE(recorder.infoUpdates, 0);
        QCOMPARE(card.info()->showLineNum(), 2);

        card.setNeedUpdateDataListSynchronously(true);
        bobAdds(QStringLiteral("Bob: bread"));
        QTRY_COMPARE(recorder.infoUpdates, 1);
        QCOMPARE(recorder.lastInfo->items().size(), 3);
        QCOMPARE(card.previewDataList().size(), 2); // collapsed: expand row and newest entry

        // The local notice refreshes whatever the flag says; a modification that leaves the count
        // as it was is not passed on.
        card.setNeedUpdateDataListSynchronously(false);
        postUpdated(msgID);
        QTRY_COMPARE(recorder.infoUpdates, 2);
        card.onRecvMessageModified(group.server()->messageByID(msgID));
        QCOMPARE(recorder.lineNums.size(), 1);
    }

    void changeConcernsTheNote_data()
    {
        QTest::addColumn<bool>("overTips");
        QTest::addColumn<QString>("changed"); // "note", "tips" or "other"
        QTest::addColumn<bool>("refreshes");
        QTest::newRow("note, its own change") << false << "note" << true;
        QTest::newRow("note, any other message") << false << "other" << true; // it names no first message
        QTest::newRow("tips, the note") << true << "note" << true;
        QTest::newRow("tips, itself") << true << "tips" << true;
        QTest::newRow("tips, another message") << true << "other" << false;
    }
    void changeConcernsTheNote()
    {
        QFETCH(bool, overTips);
        QFETCH(QString, changed);
        QFETCH(bool, refreshes);
        GroupFixture group;
        platform::ManualClock clock;
        ChatServiceDouble chat(group.groupID());
        const QString msgID = postNote(group, clock, QStringLiteral("alice"), { "Alice: noodles" });
        const V2VORMessagePtr tips = joinNote(group, clock, chat, "bob", msgID, "Bob: soup");
        QVERIFY(tips);
        group.actAs(QStringLiteral("carol"));
        ZIQGroupNoteDataProvider card(localCopy(group.client("carol"), overTips ? tips->msgID() : msgID));
        const QString id = changed == "note" ? msgID : changed == "tips" ? tips->msgID() : QStringLiteral("msg-x");
        // A refresh starts with a call inside the event's handling, so the call counts tell.
        int before = fetchCalls(group);
        postUpdated(id);
        QCOMPARE(fetchCalls(group) > before, refreshes);
        before = fetchCalls(group);
        card.onRecvMessageExtensionsChanged(id, {});
        QCOMPARE(fetchCalls(group), before); // not while an editor shows the note
        card.setNeedUpdateDataListSynchronously(true);
        card.onRecvMessageExtensionsChanged(id, {});
        QCOMPARE(fetchCalls(group) > before, refreshes);
    }

    void goneBeforeTheAnswer()
    {
        GroupFixture group;
        platform::ManualClock clock;
        ChatServiceDouble chat(group.groupID());
        const QString msgID = postNote(group, clock, QStringLiteral("alice"), { "Alice: noodles" });
        group.actAs(QStringLiteral("bob"));
        auto provider = std::make_unique<ZIQGroupNoteDataProvider>(localCopy(group.client("bob"), msgID));
        auto recorder = std::make_unique<DelegateRecorder>();
        provider->setDelegate(recorder.get());
        recorder.reset();
        QCOMPARE(provider->delegate(), nullptr);

        // A change submitted just before its screen closed is still written and answered.
        QCOMPARE(fetch(*provider), 0);
        addLine(*provider, QStringLiteral("Bob: soup"));
        Outcome written;
        provider->submitInGroup(group.groupID(), false, written.callback());
        provider.reset();
        QTRY_COMPARE(written.calls(), 1);
        QCOMPARE(written.code(), 0);
        QCOMPARE(storedEntries(group, msgID).constLast(), QStringLiteral("Bob: soup"));

        // A new note whose screen closed before the post was answered gets no entries written.
        provider = std::make_unique<ZIQGroupNoteDataProvider>();
        addLine(*provider, QStringLiteral("Bob: tea"));
        Outcome created;
        provider->submitInGroup(group.groupID(), true, created.callback());
        const V2VORMessagePtr posted = chat.handedOver.constLast();
        provider.reset();
        QTRY_COMPARE(posted->status(), V2VOR_MSG_STATUS_SEND_SUCC);
        clock.advance(1000);
        QCoreApplication::processEvents();
        QCOMPARE(created.calls(), 0);
        QVERIFY(group.server()->extensionsOf(posted->msgID()).isEmpty());
    }

    void sendPaths()
    {
        GroupFixture group;
        group.actAs(QStringLiteral("alice"));
        ZIQGroupNoteDataProvider provider;
        addLine(provider, QStringLiteral("Alice: noodles"));
        // Without the chat service a message goes to its own group, which a new one lacks.
        QTest::ignoreMessage(
            QtWarningMsg, "sendMessageByHALVEX failed, code: 6017, desc: a message needs a receiver or a group");
        Outcome outcome;
        provider.submitInGroup(group.groupID(), true, outcome.callback());
        QTRY_COMPARE(outcome.calls(), 1);
        QCOMPARE(outcome.code(), 6017);
        QCOMPARE(outcome.desc(), QStringLiteral("ZIQGroupNote_Send_Message_Fail_Desc"));
        QCOMPARE(group.server()->callCount(QStringLiteral("setMessageExtensions")), 0);
        const V2VORMessagePtr message = group.client("alice")->createCustomMessage("{}");
        message->setGroupID(group.groupID());
        int succeeded = 0;
        provider.sendNoteMessage(message, [&succeeded] { ++succeeded; }, {});
        QTRY_COMPARE(succeeded, 1);
        const auto record = group.server()->sendRecord(message->msgID());
        QVERIFY(record && record->priority == 0 && !record->onlineUserOnly);
        QVERIFY(!record->offlinePushInfo); // assembled, deliberately not handed over

        // Through the chat service the result event answers whatever send is pending.
        ChatServiceDouble chat({});
        QList<int> failed;
        provider.sendNoteMessage(
            message, [&succeeded] { ++succeeded; }, [&](int code, const QString &) { failed.append(code); });
        QCOMPARE(chat.handedOver, QList<V2VORMessagePtr> { message });
        QTest::ignoreMessage(QtWarningMsg, "sendMessageByZIQChat failed, code: 7, desc: busy");
        ChatServiceDouble::answer(7, QStringLiteral("busy"));
        QTest::ignoreMessage(QtWarningMsg, "sendMessageByZIQChat failed, code: 8, desc: again");
        ChatServiceDouble::answer(8, QStringLiteral("again"));
        ChatServiceDouble::answer(0, {});
        ChatServiceDouble::answer(0, {});
        QCOMPARE(failed, QList<int> { 7 });
        QCOMPARE(succeeded, 2);
    }
};

QTEST_MAIN(TestGroupNoteLiveSync)
#include "tst_groupnotelivesync.moc"
