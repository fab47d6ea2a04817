// Submitting notes against the in-process service with a group of real clients: a note posted
// and joined through the note and through a tips message, the local refusals, concurrent
// writers, the "show_line_num" rewrite and failures of every service call.
#include "ProviderTestSupport.h"

#include "kit/common/ZIQGlobalization.h"
#include "kit/common/ZIQTool.h"
#include "platform/ToastCenter.h"
#include "plugin/model/ZIQGroupNoteExtensionKey.h"
#include "sdk/V2VORErrorCode.h"

#include <QSignalSpy>

namespace {

const QString kSetExtensionFailDesc = QStringLiteral("ZIQGroupNote_Set_Message_Extension_Fail_Desc");

qint64 storedShowLineNum(GroupFixture &group, const QString &msgID)
{
    const V2VORMessagePtr stored = group.server()->messageByID(msgID);
    return ZIQTool::jsonData2Dictionary(stored->customElem()->data).value("show_line_num").toInteger();
}

int writeCalls(GroupFixture &group)
{
    int calls = 0;
    for (const char *operation : { "sendMessage", "setMessageExtensions", "deleteMessageExtensions",
             "setMessageExtensionsBySequence", "modifyMessage" })
        calls += group.server()->callCount(QLatin1String(operation));
    return calls;
}

} // namespace

class TestGroupNoteSubmission : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void postedAndJoined()
    {
        GroupFixture group;
        platform::ManualClock clock;
        ChatServiceDouble chat(group.groupID());
        group.actAs(QStringLiteral("alice"));
        ZIQGroupNoteDataProvider creator;
        addLine(creator, QStringLiteral("Alice: noodles"));
        Outcome posted;
        creator.submitInGroup(group.groupID(), true, posted.callback());
        QTRY_VERIFY(creator.message() && creator.message()->status() == V2VOR_MSG_STATUS_SEND_SUCC);
        // The entries wait half a second for the new message to settle on the service.
        clock.advance(499);
        QCoreApplication::processEvents();
        QCOMPARE(group.server()->callCount(QStringLiteral("setMessageExtensions")), 0);
        clock.advance(1);
        QTRY_COMPARE(posted.calls(), 1);
        QCOMPARE(posted.code(), 0);
        QCOMPARE(posted.desc(), kSetExtensionFailDesc);
        const QString msgID = creator.message()->msgID();
        QCOMPARE(group.server()->extensionsOf(msgID).size(), 1); // default settings are not written
        QTRY_COMPARE(storedShowLineNum(group, msgID), 1);

        // Bob joins through the note; the group is told by a tips message pointing back at it.
        const V2VORMessagePtr tips = joinNote(group, clock, chat, "bob", msgID, "Bob: soup");
        QVERIFY(tips);
        const QJsonObject body = ZIQTool::jsonData2Dictionary(tips->customElem()->data);
        QCOMPARE(body.value("businessID").toString(), QStringLiteral("group_note_tips"));
        QCOMPARE(body.value("content").toObject().value("original_msg_id").toString(), msgID);

        // Dave joined the group later: only the tips message is in his history, so the note is
        // reached by group and sequence, and every write goes under a new generation.
        group.addLateMember(QStringLiteral("dave"));
        const V2VORMessagePtr laterTips = joinNote(group, clock, chat, "carol", msgID, "Carol: rice");
        group.actAs(QStringLiteral("dave"));
        const auto edit = [&](const QString &content) {
            ZIQGroupNoteDataProvider dave(localCopy(group.client(QStringLiteral("dave")), laterTips->msgID()));
            QVERIFY(fetch(dave) == 0);
            if (content.startsWith(QLatin1String("new")))
                addLine(dave, content);
            else
                dave.dataList().constLast()->item()->setContent(content);
            QVERIFY(submit(dave, clock, group.groupID(), false).code() == 0);
        };
        edit(QStringLiteral("new tea"));
        QCOMPARE(group.server()->callCount(QStringLiteral("getMessageExtensionsBySequence")), 1);
        const QString key = group.server()->extensionsOf(msgID).constLast().extensionKey;
        QVERIFY(key.startsWith(QLatin1String("dave_")) && key.endsWith(QLatin1String("_0")));
        edit(QStringLiteral("green tea"));
        const QString base = key.chopped(2);
        QCOMPARE(group.server()->extensionsOf(msgID).constLast(), (V2VORMessageExtension { base + "_1", "green tea" }));
        edit(QString()); // emptied: the marker under the next generation
        QCOMPARE(group.server()->extensionsOf(msgID).constLast(),
            (V2VORMessageExtension { base + "_2", ZIQGroupNoteExtensionKey::deletedMarker }));
        const auto generations = [&] {
            const QList<V2VORMessageExtension> stored = group.server()->extensionsOf(msgID);
            return std::count_if(
                stored.cbegin(), stored.cend(), [&](auto &e) { return e.extensionKey.startsWith(base); });
        };
        QCOMPARE(generations(), 3);
        // A member reading through the note sees Dave's line gone and removes its superseded generations.
        group.actAs(QStringLiteral("bob"));
        ZIQGroupNoteDataProvider bob(localCopy(group.client(QStringLiteral("bob")), msgID));
        QCOMPARE(fetch(bob), 0);
        QCOMPARE(bob.info()->items().size(), 3);
        QCOMPARE(bob.info()->paticipantCount(), 3u);
        QTRY_COMPARE(generations(), 1);
    }

    void localRules_data()
    {
        QTest::addColumn<bool>("isCreateNew");
        QTest::addColumn<int>("existing");
        QTest::addColumn<int>("added");
        QTest::addColumn<int>("modified");
        QTest::addColumn<int>("emptied");
        QTest::addColumn<bool>("single");
        QTest::addColumn<bool>("pastDeadline");
        QTest::addColumn<QString>("refusal"); // localization key; empty when accepted
        QTest::addColumn<QString>("desc");
        const QString limit = QStringLiteral("The count of group notes exceeds the upper limit");
        // clang-format off
        QTest::newRow("new, deadline reached") << true << 0 << 1 << 0 << 0 << false << true
            << "ZIQGroupNoteDeadlineMustBeLater" << "The deadline must be later than the current time";
        QTest::newRow("new, 20 lines") << true << 0 << 20 << 0 << 0 << false << false << "ZIQGroupNoteSubmitExceedLimit" << limit;
        QTest::newRow("new, 19 lines") << true << 0 << 19 << 0 << 0 << false << false << "" << "";
        QTest::newRow("deadline reached") << false << 1 << 1 << 0 << 0 << false << true
            << "ZIQGroupNoteExceedDeadline" << "Exceed deadline, collection stopped";
        QTest::newRow("10 added, 10 modified") << false << 10 << 10 << 10 << 0 << false << false << "ZIQGroupNoteSubmitExceedLimit" << limit;
        QTest::newRow("19 added, 19 emptied") << false << 19 << 19 << 0 << 19 << false << false << "" << "";
        QTest::newRow("single, new line") << false << 1 << 1 << 0 << 0 << true << false
            << "ZIQGroupNoteSubmitOnce" << "You are not allow to submit";
        QTest::newRow("single, line changed") << false << 1 << 0 << 1 << 0 << true << false << "" << "";
        QTest::newRow("single, line emptied") << false << 1 << 0 << 0 << 1 << true << false << "" << "";
        QTest::newRow("unchanged") << false << 1 << 0 << 0 << 0 << false << false
            << "ZIQGroupNoteNotChanged" << "Group note's content is not changed";
        // clang-format on
    }
    void localRules()
    {
        QFETCH(bool, isCreateNew);
        QFETCH(int, existing);
        QFETCH(int, added);
        QFETCH(int, modified);
        QFETCH(int, emptied);
        QFETCH(bool, single);
        QFETCH(bool, pastDeadline);
        QFETCH(QString, refusal);
        QFETCH(QString, desc);
        GroupFixture group;
        platform::ManualClock clock;
        ChatServiceDouble chat(group.groupID());
        const double deadline = pastDeadline ? clock.now() + 3600000 : 0;
        const QString msgID = isCreateNew
            ? QString()
            : postNote(group, clock, QStringLiteral("bob"), lines(existing), !single, deadline);
        group.actAs(QStringLiteral("bob"));
        ZIQGroupNoteDataProvider provider(
            isCreateNew ? nullptr : localCopy(group.client(QStringLiteral("bob")), msgID));
        QCOMPARE(isCreateNew ? 0 : fetch(provider), 0);
        for (int i = 0; i < modified + emptied; ++i)
            provider.info()->items().at(i)->setContent(i < modified ? QStringLiteral("changed") : QString());
        for (const QString &line : lines(added, QStringLiteral("new ")))
            addLine(provider, line);
        if (pastDeadline && isCreateNew)
            provider.setDeadline(clock.now());
        else if (pastDeadline)
            clock.setNow(deadline);

        const int writesBefore = writeCalls(group);
        QSignalSpy toasts(platform::ToastCenter::instance(), &platform::ToastCenter::toastShown);
        Outcome outcome;
        provider.submitInGroup(group.groupID(), isCreateNew, outcome.callback());
        if (refusal.isEmpty()) {
            QTRY_COMPARE_WITH_TIMEOUT((clock.advance(500), outcome.calls()), 1, 5000);
            QCOMPARE(outcome.code(), 0);
            const QString noteID = isCreateNew ? provider.message()->msgID() : msgID;
            QCOMPARE(storedEntries(group, noteID).size(), existing + added - emptied);
            return;
        }
        QCOMPARE(outcome.calls(), 1);
        QCOMPARE(outcome.code(), -1);
        QCOMPARE(outcome.desc(), desc);
        QCOMPARE(toasts.size(), 1);
        QCOMPARE(toasts.first(), (QVariantList { ZIQGlobalization::getLocalizedStringForKey(refusal), 3000, 1 }));
        clock.advance(1000);
        QCoreApplication::processEvents();
        QCOMPARE(writeCalls(group), writesBefore);
        QCOMPARE(chat.handedOver.size(), isCreateNew ? 0 : 1);
    }

    void concurrentWritersKeepTheirEntries()
    {
        GroupFixture group;
        platform::ManualClock clock;
        ChatServiceDouble chat(group.groupID());
        const QString msgID = postNote(group, clock, QStringLiteral("alice"), { "Alice: noodles" });
        std::vector<std::unique_ptr<ZIQGroupNoteDataProvider>> providers;
        Outcome outcomes[2];
        for (const QString user : { "alice", "bob" }) {
            group.actAs(user);
            providers.push_back(std::make_unique<ZIQGroupNoteDataProvider>(localCopy(group.client(user), msgID)));
            QCOMPARE(fetch(*providers.back()), 0);
        }
        for (int i = 0; i < 2; ++i) {
            group.actAs(group.userIDs().at(i));
            addLine(*providers[i], group.userIDs().at(i) + ": more");
            providers[i]->submitInGroup(group.groupID(), false, outcomes[i].callback());
        }
        QTRY_VERIFY(outcomes[0].calls() == 1 && outcomes[1].calls() == 1);
        QCOMPARE(outcomes[0].code() + outcomes[1].code(), 0);
        QCOMPARE(storedEntries(group, msgID), (QStringList { "Alice: noodles", "alice: more", "bob: more" }));
        QTRY_COMPARE(storedShowLineNum(group, msgID), 2);
    }

    void staleShowLineNumRewrite_data()
    {
        QTest::addColumn<int>("conflicts");
        QTest::addColumn<int>("attempts");
        QTest::addColumn<qint64>("stored");
        QTest::newRow("retried") << 1 << 2 << qint64(2);
        QTest::newRow("given up") << 3 << 3 << qint64(1);
    }
    void staleShowLineNumRewrite()
    {
        QFETCH(int, conflicts);
        QFETCH(int, attempts);
        QFETCH(qint64, stored);
        GroupFixture group;
        platform::ManualClock clock;
        ChatServiceDouble chat(group.groupID());
        const QString msgID = postNote(group, clock, QStringLiteral("alice"), { "Alice: noodles" });
        QTRY_COMPARE(storedShowLineNum(group, msgID), 1);
        group.actAs(QStringLiteral("bob"));
        ZIQGroupNoteDataProvider provider(localCopy(group.client(QStringLiteral("bob")), msgID));
        QCOMPARE(fetch(provider), 0);
        addLine(provider, QStringLiteral("Bob: soup"));
        const int before = group.server()->callCount(QStringLiteral("modifyMessage"));
        const auto conflict
            = [&] { group.server()->failNextCall("modifyMessage", V2VOR_ERR_MESSAGE_MODIFY_CONFLICT, "stale"); };
        for (int i = 0; i < conflicts; ++i)
            conflict();
        if (conflicts > 2)
            QTest::ignoreMessage(QtWarningMsg, "modify confict, but exceed max retry limit, ignore");
        QCOMPARE(submit(provider, clock, group.groupID(), false).code(), 0);
        QTRY_COMPARE(group.server()->callCount(QStringLiteral("modifyMessage")) - before, attempts);
        QTRY_COMPARE(storedShowLineNum(group, msgID), stored);
        QCOMPARE(provider.modifyRetryCount(), conflicts > 2 ? 2 : 0);
        if (conflicts <= 2)
            return;
        // The spent retries carry over: the next conflict is not retried until a success.
        conflict();
        QTest::ignoreMessage(QtWarningMsg, "modify confict, but exceed max retry limit, ignore");
        provider.modifyShowLineNumOfMessage(provider.message());
        QTRY_COMPARE(group.server()->callCount(QStringLiteral("modifyMessage")) - before, attempts + 1);
        provider.modifyShowLineNumOfMessage(provider.message());
        QTRY_COMPARE(storedShowLineNum(group, msgID), 2);
        QCOMPARE(provider.modifyRetryCount(), 0);
    }

    void serviceFailuresAreReported_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QString>("route");
        QTest::addColumn<QString>("actor");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("desc");
        QTest::addColumn<QString>("logged");
        const QString injected = QStringLiteral("injected");
        const QString sendFail = QStringLiteral("ZIQGroupNote_Send_Message_Fail_Desc");
        // clang-format off
        QTest::newRow("post") << "sendMessage" << "create" << "alice" << 9999 << sendFail
            << "sendMessageByZIQChat failed, code: 9999, desc: injected";
        QTest::newRow("first write") << "setMessageExtensions" << "create" << "alice" << 9999 << kSetExtensionFailDesc
            << "set extension failed, msgID: msg-1, code: 9999, desc: injected ";
        QTest::newRow("write") << "setMessageExtensions" << "add" << "bob" << 9999 << kSetExtensionFailDesc
            << "set extension failed, msgID: msg-1, code: 9999, desc: injected ";
        QTest::newRow("delete") << "deleteMessageExtensions" << "empty" << "alice" << 9999 << kSetExtensionFailDesc
            << "delete extension failed, msgID: msg-1, code: 9999, desc: injected ";
        QTest::newRow("write by sequence") << "setMessageExtensionsBySequence" << "add via tips" << "dave" << 9999
            << kSetExtensionFailDesc << "set extension failed, seq: 1, code: 9999, desc: injected";
        QTest::newRow("look-up falls back to sequence") << "findMessages" << "add via tips" << "bob" << 0 << ""
            << "find failed, msgID: msg-1, code: 9999, desc: injected";
        QTest::newRow("read") << "getMessageExtensions" << "fetch" << "bob" << 9999 << injected
            << "get extension failed, msgID: msg-1, code: 9999, desc: injected ";
        QTest::newRow("read by sequence") << "getMessageExtensionsBySequence" << "fetch via tips" << "dave" << 9999
            << injected << "get extension failed, seq: 1, code: 9999, desc: injected";
        QTest::newRow("creator look-up") << "getGroupMembersInfo" << "creator" << "bob" << 9999 << injected << "";
        // clang-format on
    }
    void serviceFailuresAreReported()
    {
        QFETCH(QString, operation);
        QFETCH(QString, route);
        QFETCH(QString, actor);
        QFETCH(int, code);
        QFETCH(QString, desc);
        QFETCH(QString, logged);
        GroupFixture group;
        platform::ManualClock clock;
        ChatServiceDouble chat(group.groupID());
        V2VORMessagePtr opened;
        QString msgID;
        if (route != QLatin1String("create")) {
            // Alice's note, joined by Bob, who told the group (Dave, a late member, among them).
            msgID = postNote(group, clock, QStringLiteral("alice"), { "Alice: noodles" });
            group.addLateMember(QStringLiteral("dave"));
            const V2VORMessagePtr tips = joinNote(group, clock, chat, "bob", msgID, "Bob: soup");
            opened = localCopy(group.client(actor), route.endsWith(QLatin1String("via tips")) ? tips->msgID() : msgID);
        }
        group.actAs(actor);
        ZIQGroupNoteDataProvider provider(opened);
        const qsizetype announced = chat.handedOver.size();
        if (route.startsWith(QLatin1String("add")) || route == QLatin1String("empty"))
            QCOMPARE(fetch(provider), 0);
        if (route == QLatin1String("empty"))
            provider.info()->items().first()->setContent(QString());
        else if (route == QLatin1String("create") || route.startsWith(QLatin1String("add")))
            addLine(provider, actor + QStringLiteral(": tea"));

        group.server()->failNextCall(operation, 9999, QStringLiteral("injected"));
        if (!logged.isEmpty())
            QTest::ignoreMessage(QtWarningMsg, qPrintable(logged));
        Outcome outcome;
        if (route.startsWith(QLatin1String("fetch")))
            provider.getNoteStatistics([report = outcome.callback()](int code, const QString &desc,
                                           const ZIQGroupNoteInfoPtr &) { report(code, desc); });
        else if (route == QLatin1String("creator"))
            provider.refreshCreatorInfoWithCompletion(outcome.callback());
        else
            provider.submitInGroup(group.groupID(), route == QLatin1String("create"), outcome.callback());
        QTRY_COMPARE_WITH_TIMEOUT((clock.advance(500), outcome.calls()), 1, 5000);
        QCOMPARE(outcome.code(), code);
        QCOMPARE(outcome.desc(), desc);
        if (code == 0) {
            QCOMPARE(storedEntries(group, msgID).constLast(), QStringLiteral("bob: tea"));
            QCOMPARE(group.server()->callCount(QStringLiteral("setMessageExtensionsBySequence")), 1);
        } else if (route != QLatin1String("create")) {
            QCoreApplication::processEvents();
            QCOMPARE(chat.handedOver.size(), announced); // a failed change is not announced
        }
    }
};

QTEST_MAIN(TestGroupNoteSubmission)
#include "tst_groupnotesubmission.moc"
