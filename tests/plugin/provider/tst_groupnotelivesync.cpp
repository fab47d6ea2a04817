// Sending paths and live updates: the chat service's send-result event, the direct path, remote
// modifications and extension changes reaching the delegate, the "groupNoteUpdated" notice,
// and providers or delegates that are gone before an answer arrives.
#include "ProviderTestSupport.h"

#include "kit/common/ZIQTool.h"
#include "platform/NotificationCenter.h"
#include "plugin/provider/ZIQGroupNoteDataProviderDelegate.h"
#include "sdk/V2VORAdvancedMsgListener.h"

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

/// Counts a client's events; added after a provider, it hears each event after the provider did.
class EventCounter : public V2VORAdvancedMsgListener
{
public:
    void onRecvMessageModified(const V2VORMessagePtr &) override { ++modifications; }
    void onRecvMessageExtensionsChanged(const QString &, const QList<V2VORMessageExtension> &) override
    {
        ++extensionChanges;
    }
    int modifications = 0;
    int extensionChanges = 0;
};

/// Takes messages without sending them; tests answer with the send-result event themselves.
class SilentChatService : public ZIQServiceProtocol
{
public:
    SilentChatService() { ZIQCore::registerService(ZIQCore_ZIQChatService, this); }
    ~SilentChatService() override { ZIQCore::unregisterService(ZIQCore_ZIQChatService); }
    QVariant onCall(const QString &, const QVariantMap &) override
    {
        ++calls;
        return {};
    }
    int calls = 0;
};

int fetchCalls(GroupFixture &group)
{
    return group.server()->callCount(QStringLiteral("findMessages"))
        + group.server()->callCount(QStringLiteral("getMessageExtensions"));
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
        EventCounter events;
        group.client(QStringLiteral("carol"))->addAdvancedMsgListener(&events);
        // Bob's screens stay open until the end: the line count is rewritten after the answer.
        std::vector<std::unique_ptr<ZIQGroupNoteDataProvider>> bobScreens;
        const auto bobAdds = [&](const QString &line) {
            group.actAs(QStringLiteral("bob"));
            bobScreens.push_back(
                std::make_unique<ZIQGroupNoteDataProvider>(localCopy(group.client(QStringLiteral("bob")), msgID)));
            QVERIFY(fetch(*bobScreens.back()) == 0);
            addLine(*bobScreens.back(), line);
            QVERIFY(submit(*bobScreens.back(), clock, group.groupID(), false).code() == 0);
            group.actAs(QStringLiteral("carol"));
        };

        // While an editor shows the note, extension changes are left alone...
        bobAdds(QStringLiteral("Bob: soup"));
        QTRY_VERIFY(events.extensionChanges >= 1 && events.modifications >= 1);
        QCOMPARE(recorder.infoUpdates, 0);
        // ...but the rewritten line count is always followed.
        QCOMPARE(recorder.lineNums, (QList<QPair<qint64, qint64>> { { 1, 2 } }));
        QCOMPARE(card.info()->showLineNum(), 2);

        card.setNeedUpdateDataListSynchronously(true);
        bobAdds(QStringLiteral("Bob: bread"));
        QTRY_COMPARE(recorder.infoUpdates, 1);
        QCOMPARE(recorder.lastInfo->items().size(), 3);
        QCOMPARE(card.previewDataList().size(), 2); // collapsed: expand row and newest entry

        // The local notice refreshes whatever the flag says; a modification that leaves the
        // count as it was is not passed on.
        card.setNeedUpdateDataListSynchronously(false);
        platform::NotificationCenter::defaultCenter().post(
            QStringLiteral("groupNoteUpdated"), { { QStringLiteral("msgID"), msgID } });
        QTRY_COMPARE(recorder.infoUpdates, 2);
        card.onRecvMessageModified(group.server()->messageByID(msgID));
        QCOMPARE(recorder.lineNums.size(), 1);
        group.client(QStringLiteral("carol"))->removeAdvancedMsgListener(&events);
    }

    void changeConcernsTheNote_data()
    {
        QTest::addColumn<bool>("overTips");
        QTest::addColumn<QString>("changed"); // "note", "tips" or "other"
        QTest::addColumn<bool>("refreshes");
        QTest::newRow("note, its own change") << false << "note" << true;
        QTest::newRow("note, any other message") << false << "other" << true; // no first message named
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
        {
            group.actAs(QStringLiteral("bob"));
            ZIQGroupNoteDataProvider bob(localCopy(group.client(QStringLiteral("bob")), msgID));
            QCOMPARE(fetch(bob), 0);
            addLine(bob, QStringLiteral("Bob: soup"));
            QCOMPARE(submit(bob, clock, group.groupID(), false).code(), 0);
        }
        QTRY_COMPARE(chat.handedOver.size(), 2);
        QTRY_COMPARE(chat.handedOver.last()->status(), V2VOR_MSG_STATUS_SEND_SUCC);
        const QString tipsID = chat.handedOver.last()->msgID();

        group.actAs(QStringLiteral("carol"));
        ZIQGroupNoteDataProvider card(localCopy(group.client(QStringLiteral("carol")), overTips ? tipsID : msgID));
        const QString id = changed == "note" ? msgID : changed == "tips" ? tipsID : QStringLiteral("msg-other");
        // The fetch starts at once, inside the call, so the call counts tell.
        int before = fetchCalls(group);
        platform::NotificationCenter::defaultCenter().post(QStringLiteral("groupNoteUpdated"), { { "msgID", id } });
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

        // A delegate that is gone is never called.
        auto provider = std::make_unique<ZIQGroupNoteDataProvider>(localCopy(group.client("bob"), msgID));
        auto recorder = std::make_unique<DelegateRecorder>();
        provider->setDelegate(recorder.get());
        QCOMPARE(provider->delegate(), recorder.get());
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
        QCOMPARE(storedEntries(group, msgID).last(), QStringLiteral("Bob: soup"));

        // A new note whose screen closed before the post was answered writes no entries.
        provider = std::make_unique<ZIQGroupNoteDataProvider>();
        addLine(*provider, QStringLiteral("Bob: tea"));
        Outcome created;
        provider->submitInGroup(group.groupID(), true, created.callback());
        const V2VORMessagePtr posted = chat.handedOver.last();
        provider.reset();
        QTRY_COMPARE(posted->status(), V2VOR_MSG_STATUS_SEND_SUCC);
        clock.advance(1000);
        QCoreApplication::processEvents();
        QCOMPARE(created.calls(), 0);
        QVERIFY(group.server()->extensionsOf(posted->msgID()).isEmpty());
    }

    void sendsWithoutTheChatService()
    {
        GroupFixture group;
        group.actAs(QStringLiteral("alice"));
        ZIQGroupNoteDataProvider provider;
        addLine(provider, QStringLiteral("Alice: noodles"));
        // The direct path sends to the message's own group, which a new message does not have.
        QTest::ignoreMessage(
            QtWarningMsg, "sendMessageByHALVEX failed, code: 6017, desc: a message needs a receiver or a group");
        Outcome outcome;
        provider.submitInGroup(group.groupID(), true, outcome.callback());
        QTRY_COMPARE(outcome.calls(), 1);
        QCOMPARE(outcome.code(), 6017);
        QCOMPARE(outcome.desc(), QStringLiteral("ZIQGroupNote_Send_Message_Fail_Desc"));
        QCOMPARE(group.server()->callCount(QStringLiteral("setMessageExtensions")), 0);

        const V2VORMessagePtr message = group.client("alice")->createCustomMessage(R"({"businessID": "group_note"})");
        message->setGroupID(group.groupID());
        bool sent = false;
        provider.sendNoteMessage(message, [&sent] { sent = true; }, {});
        QTRY_VERIFY(sent);
        const auto record = group.server()->sendRecord(message->msgID());
        QVERIFY(record.has_value());
        QCOMPARE(record->priority, 0);
        QCOMPARE(record->onlineUserOnly, false);
        QVERIFY(!record->offlinePushInfo.has_value()); // assembled, deliberately not handed over
    }

    void sendResultAnswersThePendingSend()
    {
        GroupFixture group;
        group.actAs(QStringLiteral("alice"));
        SilentChatService chat;
        ZIQGroupNoteDataProvider provider;
        ChatServiceDouble::answer(0, {}); // nothing pending: nothing happens
        int succeeded = 0;
        QList<QPair<int, QString>> failed;
        provider.sendNoteMessage(
            group.client("alice")->createCustomMessage("{}"), [&] { ++succeeded; },
            [&](int code, const QString &desc) {
                failed.append({ code, desc });
            });
        QCOMPARE(chat.calls, 1);
        QTest::ignoreMessage(QtWarningMsg, "sendMessageByZIQChat failed, code: 7, desc: busy");
        ChatServiceDouble::answer(7, QStringLiteral("busy"));
        QCOMPARE(failed, (QList<QPair<int, QString>> { { 7, "busy" } }));
        QTest::ignoreMessage(QtWarningMsg, "sendMessageByZIQChat failed, code: 8, desc: again");
        ChatServiceDouble::answer(8, QStringLiteral("again"));
        QCOMPARE(failed.size(), 1);
        // The event names no message, so the success still pending answers a later result.
        ChatServiceDouble::answer(0, {});
        ChatServiceDouble::answer(0, {});
        QCOMPARE(succeeded, 1);
    }
};

QTEST_MAIN(TestGroupNoteLiveSync)
#include "tst_groupnotelivesync.moc"
