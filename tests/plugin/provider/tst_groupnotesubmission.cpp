// Submitting notes against the in-process service with a group of real clients: posting a new
// note, joining through the note and through a tips message, the local refusals, concurrent
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
    return ZIQTool::jsonData2Dictionary(stored->customElem()->data).value(QStringLiteral("show_line_num")).toInteger();
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
    void newNoteIsSeenAndJoinedByOthers()
    {
        GroupFixture group;
        platform::ManualClock clock;
        ChatServiceDouble chat(group.groupID());
        group.actAs(QStringLiteral("alice"));
        ZIQGroupNoteDataProvider creator;
        creator.editTitle(QStringLiteral("Lunch order"));
        addLine(creator, QStringLiteral("Alice: noodles"));
        addLine(creator, QStringLiteral("Alice: rice"));
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
        QCOMPARE(storedEntries(group, msgID), (QStringList { "Alice: noodles", "Alice: rice" }));
        // Settings left at their defaults are not written.
        QCOMPARE(group.server()->extensionsOf(msgID).size(), 2);
        QTRY_COMPARE(storedShowLineNum(group, msgID), 2);

        group.actAs(QStringLiteral("bob"));
        ZIQGroupNoteDataProvider member(localCopy(group.client(QStringLiteral("bob")), msgID));
        QCOMPARE(fetch(member), 0);
        QCOMPARE(member.info()->title(), QStringLiteral("Lunch order"));
        QCOMPARE(member.info()->items().size(), 2);
        QCOMPARE(member.info()->items().first()->userName(), QStringLiteral("Alice"));
        addLine(member, QStringLiteral("Bob: soup"));
        const Outcome joined = submit(member, clock, group.groupID(), false);
        QCOMPARE(joined.code(), 0);
        QCOMPARE(joined.desc(), QString());
        QCOMPARE(storedEntries(group, msgID).size(), 3);
        // The group is told with a tips message pointing back at the note.
        QTRY_COMPARE(chat.handedOver.size(), 2);
        const QJsonObject tips = ZIQTool::jsonData2Dictionary(chat.handedOver.last()->customElem()->data);
        QCOMPARE(tips.value("businessID").toString(), QStringLiteral("group_note_tips"));
        QCOMPARE(tips.value("content").toObject().value("original_msg_id").toString(), msgID);
    }

    void memberJoinsThroughTipsBySequence()
    {
        GroupFixture group;
        platform::ManualClock clock;
        ChatServiceDouble chat(group.groupID());
        const QString msgID = postNote(group, clock, QStringLiteral("alice"), { "Alice: noodles" });
        group.addLateMember(QStringLiteral("dave"));
        group.actAs(QStringLiteral("bob"));
        ZIQGroupNoteDataProvider bob(localCopy(group.client(QStringLiteral("bob")), msgID));
        QCOMPARE(fetch(bob), 0);
        addLine(bob, QStringLiteral("Bob: soup"));
        QCOMPARE(submit(bob, clock, group.groupID(), false).code(), 0);
        QTRY_COMPARE(chat.handedOver.size(), 2);
        QTRY_COMPARE(chat.handedOver.last()->status(), V2VOR_MSG_STATUS_SEND_SUCC);
        const QString tipsID = chat.handedOver.last()->msgID();

        // Dave joined after the note was posted: only the tips message is in his history.
        group.actAs(QStringLiteral("dave"));
        const auto openTips = [&] {
            return std::make_unique<ZIQGroupNoteDataProvider>(localCopy(group.client(QStringLiteral("dave")), tipsID));
        };
        auto dave = openTips();
        QVERIFY(dave->info() && !dave->isOriginMessage());
        QCOMPARE(dave->originMessageID(), msgID);
        QCOMPARE(fetch(*dave), 0);
        QCOMPARE(group.server()->callCount(QStringLiteral("getMessageExtensionsBySequence")), 1);
        QCOMPARE(dave->info()->items().size(), 2);
        addLine(*dave, QStringLiteral("Dave: tea"));
        QCOMPARE(submit(*dave, clock, group.groupID(), false).code(), 0);
        const ZIQGroupNoteItemPtr added = dave->info()->items().last();
        QCOMPARE(group.server()->extensionsOf(msgID).last(), (V2VORMessageExtension { added->key(), "Dave: tea" }));

        // On the sequence path an edit is written under the next generation, an emptied line as the
        // marker under the one after; the rows hold the very entries the note compares.
        dave = openTips();
        QCOMPARE(fetch(*dave), 0);
        QCOMPARE(dave->dataList().last()->item(), dave->info()->items().last());
        dave->dataList().last()->item()->setContent(QStringLiteral("Dave: green tea"));
        QCOMPARE(submit(*dave, clock, group.groupID(), false).code(), 0);
        const QString base = added->keyWithoutSeq();
        QCOMPARE(
            group.server()->extensionsOf(msgID).last(), (V2VORMessageExtension { base + "_1", "Dave: green tea" }));
        dave = openTips();
        QCOMPARE(fetch(*dave), 0);
        QCOMPARE(dave->info()->items().last()->content(), QStringLiteral("Dave: green tea"));
        dave->dataList().last()->item()->setContent(QString());
        QCOMPARE(submit(*dave, clock, group.groupID(), false).code(), 0);
        QCOMPARE(group.server()->extensionsOf(msgID).last(),
            (V2VORMessageExtension { base + "_2", ZIQGroupNoteExtensionKey::deletedMarker }));
        dave = openTips();
        QCOMPARE(fetch(*dave), 0);
        QCOMPARE(dave->info()->items().size(), 2);
    }

    void sequenceKeys_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<int>("operation"); // 0 added, 1 modified, -1 none, 2 deleted
        QTest::addColumn<QString>("written");
        QTest::newRow("added") << "bob_1700000000000_0" << 0 << "bob_1700000000000_0";
        QTest::newRow("modified") << "bob_1700000000000_3" << 1 << "bob_1700000000000_4";
        QTest::newRow("deleted") << "bob_1700000000000_3" << 2 << "bob_1700000000000_4";
        QTest::newRow("settings") << "config" << -1 << "conf_0";
        QTest::newRow("tenth generation misread") << "bob_1700000000000_10" << 1 << "bob_1700000000000__1";
    }
    void sequenceKeys()
    {
        QFETCH(QString, key);
        QFETCH(int, operation);
        QFETCH(QString, written);
        ZIQGroupNoteExtensionClient::OperationDict operations;
        if (operation == 0 || operation == 1)
            operations.insert(key, operation);
        const QList<V2VORMessageExtension> list = operation == 2
            ? ZIQGroupNoteExtensionClient::sequenceDeletionList({ key })
            : ZIQGroupNoteExtensionClient::sequenceWriteList({ { key, "text" } }, operations);
        QCOMPARE(list.size(), 1);
        QCOMPARE(list.first().extensionKey, written);
        QCOMPARE(list.first().extensionValue, operation == 2 ? ZIQGroupNoteExtensionKey::deletedMarker : "text");
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
        QTest::newRow("new, deadline reached")
            << true << 0 << 1 << 0 << 0 << false << true << "ZIQGroupNoteDeadlineMustBeLater"
            << "The deadline must be later than the current time";
        QTest::newRow("new, 20 lines") << true << 0 << 20 << 0 << 0 << false << false << "ZIQGroupNoteSubmitExceedLimit"
                                       << limit;
        QTest::newRow("new, 19 lines") << true << 0 << 19 << 0 << 0 << false << false << ""
                                       << "";
        QTest::newRow("deadline reached") << false << 1 << 1 << 0 << 0 << false << true << "ZIQGroupNoteExceedDeadline"
                                          << "Exceed deadline, collection stopped";
        QTest::newRow("10 added, 10 modified")
            << false << 10 << 10 << 10 << 0 << false << false << "ZIQGroupNoteSubmitExceedLimit" << limit;
        QTest::newRow("19 added, 19 emptied") << false << 19 << 19 << 0 << 19 << false << false << ""
                                              << "";
        QTest::newRow("single, new line") << false << 1 << 1 << 0 << 0 << true << false << "ZIQGroupNoteSubmitOnce"
                                          << "You are not allow to submit";
        QTest::newRow("single, line changed") << false << 1 << 0 << 1 << 0 << true << false << ""
                                              << "";
        QTest::newRow("single, line emptied") << false << 1 << 0 << 0 << 1 << true << false << ""
                                              << "";
        QTest::newRow("unchanged") << false << 1 << 0 << 0 << 0 << false << false << "ZIQGroupNoteNotChanged"
                                   << "Group note's content is not changed";
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
        QString msgID;
        if (!isCreateNew) {
            msgID = postNote(group, clock, QStringLiteral("bob"), lines(existing), !single, deadline);
            QVERIFY(!msgID.isEmpty());
        }
        group.actAs(QStringLiteral("bob"));
        ZIQGroupNoteDataProvider provider(
            isCreateNew ? nullptr : localCopy(group.client(QStringLiteral("bob")), msgID));
        if (!isCreateNew)
            QCOMPARE(fetch(provider), 0);
        const QList<ZIQGroupNoteItemPtr> stored = provider.info()->items();
        for (int i = 0; i < modified + emptied; ++i)
            stored.at(i)->setContent(i < modified ? QStringLiteral("changed") : QString());
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
        for (const QString user : { "alice", "bob" }) {
            group.actAs(user);
            providers.push_back(std::make_unique<ZIQGroupNoteDataProvider>(localCopy(group.client(user), msgID)));
            QCOMPARE(fetch(*providers.back()), 0);
        }
        Outcome outcomes[2];
        for (int i = 0; i < 2; ++i) {
            group.actAs(group.userIDs().at(i));
            addLine(*providers[i], group.userIDs().at(i) + ": more");
            providers[i]->submitInGroup(group.groupID(), false, outcomes[i].callback());
        }
        QTRY_VERIFY(outcomes[0].calls() == 1 && outcomes[1].calls() == 1);
        QCOMPARE(outcomes[0].code(), 0);
        QCOMPARE(outcomes[1].code(), 0);
        QCOMPARE(storedEntries(group, msgID), (QStringList { "Alice: noodles", "alice: more", "bob: more" }));
        // Both rewrite "show_line_num" to the same count.
        QTRY_COMPARE(group.server()->callCount(QStringLiteral("modifyMessage")), 1 + 2);
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
        for (int i = 0; i < conflicts; ++i)
            group.server()->failNextCall(QStringLiteral("modifyMessage"), V2VOR_ERR_MESSAGE_MODIFY_CONFLICT, "stale");
        if (conflicts > 2)
            QTest::ignoreMessage(QtWarningMsg, "modify confict, but exceed max retry limit, ignore");
        QCOMPARE(submit(provider, clock, group.groupID(), false).code(), 0);
        QTRY_COMPARE(group.server()->callCount(QStringLiteral("modifyMessage")) - before, attempts);
        QTRY_COMPARE(storedShowLineNum(group, msgID), stored);
        QCOMPARE(provider.modifyRetryCount(), conflicts > 2 ? 2 : 0);
        if (conflicts <= 2)
            return;
        // The spent retries carry over: the next conflict is not retried until a success.
        group.server()->failNextCall(QStringLiteral("modifyMessage"), V2VOR_ERR_MESSAGE_MODIFY_CONFLICT, "stale");
        QTest::ignoreMessage(QtWarningMsg, "modify confict, but exceed max retry limit, ignore");
        provider.modifyShowLineNumOfMessage(provider.message());
        QTRY_COMPARE(group.server()->callCount(QStringLiteral("modifyMessage")) - before, attempts + 1);
        provider.modifyShowLineNumOfMessage(provider.message());
        QTRY_COMPARE(storedShowLineNum(group, msgID), 2);
        QTRY_COMPARE(provider.modifyRetryCount(), 0);
    }
};

QTEST_MAIN(TestGroupNoteSubmission)
#include "tst_groupnotesubmission.moc"
