// A chat's message list on groups of real clients: history and live messages with one cell
// data per message, a refused send shown as sending then failed, and reactions aggregated per
// emoji.
#include "ChatTestSupport.h"
#include "sdk/ClientCalls.h"
#include "support/GroupFixture.h"

#include "kit/chat/ZIQTextMessageCellData.h"

#include <QSignalSpy>

using Reaction = ZIQMessageReactions::Reaction;

namespace {

QStringList texts(const ZIQChatMessageList &list)
{
    QStringList shown;
    for (int row = 0; row < list.count(); ++row) {
        const V2VORMessagePtr message = list.cellData(row)->innerMessage();
        shown << (message->elemType() == V2VOR_ELEM_TYPE_TEXT ? message->text() : QStringLiteral("custom"));
    }
    return shown;
}

} // namespace

class ChatMessageListTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(registerSheetKind()); }

    void historyPagesAndLiveMessagesKeepOneCellDataEach()
    {
        GroupFixture group;
        V2VORManager *alice = group.client("alice");
        for (const char *text : { "one", "two", "three" })
            QVERIFY(sendText(alice, group.groupID(), text));
        const V2VORMessagePtr sheet = sendToGroup(alice, group.groupID(), sheetBody(1));

        ZIQChatMessageList atBob({ group.groupID(), {} }, group.client("bob"));
        QVERIFY(loadAndWait(atBob, 2));
        QCOMPARE(texts(atBob), QStringList({ "three", "custom" }));
        QVERIFY(atBob.hasMoreMessages());
        QSignalSpy inserted(&atBob, &ZIQChatMessageList::rowsInserted);
        QVERIFY(loadAndWait(atBob, 5));
        QCOMPARE(texts(atBob), QStringList({ "one", "two", "three", "custom" }));
        QVERIFY(!atBob.hasMoreMessages());
        QCOMPARE(inserted.takeFirst(), QVariantList({ 0, 2 }));

        QVERIFY(sendText(alice, group.groupID(), "four"));
        QTRY_COMPARE(atBob.count(), 5);
        QCOMPARE(inserted.takeFirst(), QVariantList({ 4, 1 }));
        const auto text = std::dynamic_pointer_cast<ZIQTextMessageCellData>(atBob.cellData(4));
        QVERIFY(text && text->direction() == ZIQMessageDirection::Incoming);
        QCOMPARE(text->content(), QStringLiteral("four"));

        // A modified message keeps its cell data, which now shows the new body.
        const ZIQMessageCellDataPtr before = atBob.cellData(3);
        atBob.contentSize(3);
        QSignalSpy changed(&atBob, &ZIQChatMessageList::rowChanged);
        sheet->customElem()->data = sheetBody(3);
        alice->modifyMessage(sheet, {});
        QTRY_COMPARE(changed.size(), 1);
        QCOMPARE(changed.first(), QVariantList({ 3 }));
        QCOMPARE(atBob.cellData(3), before);
        QCOMPARE(atBob.count(), 5);
        QCOMPARE(atBob.contentSize(3), QSizeF(240, 120));
    }

    void aRefusedSendShowsAtOnceThenFailed()
    {
        GroupFixture group;
        group.actAs("alice");
        ZIQChatMessageList atAlice({ group.groupID(), {} }, group.client("alice"));
        ZIQChatMessageList atBob({ group.groupID(), {} }, group.client("bob"));
        QVERIFY(loadAndWait(atAlice) && loadAndWait(atBob));
        ZIQChatService::instance()->setCurrentChat(&atAlice);
        group.server()->failNextCall("sendMessage", 9520, "service busy");
        EventRecorder results;
        ZIQCore::registerEvent(ZIQCore_ZIQChatNotify, ZIQCore_ZIQChatNotify_SendMessageSubKey, &results);

        // A plug-in's message without a group goes to the open chat.
        const V2VORMessagePtr sheet = group.client("alice")->createCustomMessage(sheetBody(2));
        ZIQCore::callService(ZIQCore_ZIQChatService, ZIQCore_ZIQChatService_SendMessageMethod,
            { { ZIQCore_ZIQChatService_SendMessageMethod_MsgKey, QVariant::fromValue(sheet) } });
        QCOMPARE(atAlice.count(), 1);
        QCOMPARE(int(atAlice.cellData(0)->status()), int(ZIQMessageStatus::Sending));
        QCOMPARE(atAlice.cellData(0)->direction(), ZIQMessageDirection::Outgoing);
        QTRY_COMPARE(results.events.size(), 1);
        QCOMPARE(int(atAlice.cellData(0)->status()), int(ZIQMessageStatus::Failed));
        const QVariantMap result = results.events.first().second;
        QCOMPARE(result.value(ZIQCore_ZIQChatNotify_SendMessageSubKey_Code).toInt(), 9520);
        QCOMPARE(result.value(ZIQCore_ZIQChatNotify_SendMessageSubKey_Desc).toString(), QStringLiteral("service busy"));

        // The others see only what the service took.
        QVERIFY(sendText(group.client("alice"), group.groupID(), "hello"));
        QTRY_COMPARE(texts(atBob), QStringList({ "hello" }));
        ZIQChatService::instance()->setCurrentChat(nullptr);
    }

    void reactionsAggregatePerEmojiLive()
    {
        GroupFixture group;
        const V2VORMessagePtr sheet = sendToGroup(group.client("alice"), group.groupID(), sheetBody(1));
        ZIQChatMessageList atAlice({ group.groupID(), {} }, group.client("alice"));
        ZIQChatMessageList atBob({ group.groupID(), {} }, group.client("bob"));
        ZIQChatMessageList atCarol({ group.groupID(), {} }, group.client("carol"));
        QVERIFY(loadAndWait(atAlice) && loadAndWait(atBob) && loadAndWait(atCarol));
        const QString msgID = sheet->msgID();
        auto react = [&](ZIQChatMessageList &list, const QString &emoji) {
            CallOutcome<> done;
            list.setReaction(msgID, emoji, done.done(), done.fail());
            return done.wait() && done.code() == 0;
        };
        QVERIFY(react(atAlice, "👍") && react(atBob, "👍") && react(atCarol, "❤️"));
        // Entries of the message's own plug-in live beside the reactions and are not ones.
        QVERIFY(setExtensions(group.client("bob"), sheet, { { "bob_1700000000000_0", "Sat" } }).code() == 0);
        const QList<Reaction> all { { "👍", { "alice", "bob" } }, { "❤️", { "carol" } } };
        QTRY_COMPARE(atAlice.cellData(0)->reactions().reactions(), all);
        QTRY_COMPARE(atCarol.cellData(0)->reactions().reactions(), all);

        QVERIFY(react(atBob, "❤️") && react(atAlice, {}));
        const QList<Reaction> after { { "❤️", { "bob", "carol" } } };
        QTRY_COMPARE(atCarol.cellData(0)->reactions().reactions(), after);
        QCOMPARE(atCarol.cellData(0)->reactions().emojiOf("bob"), QStringLiteral("❤️"));
        // A chat opened later reads the same from the message's extensions.
        ZIQChatMessageList later({ group.groupID(), {} }, group.client("alice"));
        QVERIFY(loadAndWait(later));
        QTRY_COMPARE(later.cellData(0)->reactions().reactions(), after);
    }
};

QTEST_MAIN(ChatMessageListTest)
#include "tst_chatmessagelist.moc"
