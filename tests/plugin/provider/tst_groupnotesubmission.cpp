// The editing session and its submission against the in-process service with a group of real
// clients: edits, rows and change detection; a note posted and joined through the note and
// through a tips message, the local refusals, concurrent writers, the "show_line_num" rewrite
// and failures of every service call.
#include "ProviderTestSupport.h"

#include "kit/common/ZIQGlobalization.h"
#include "kit/common/ZIQTool.h"
#include "platform/ToastCenter.h"
#include "plugin/model/ZIQGroupNoteExtensionKey.h"
#include "sdk/V2VORErrorCode.h"

#include <QSignalSpy>

namespace {

const QString kSetExtensionFailDesc = QStringLiteral("ZIQGroupNote_Set_Message_Extension_Fail_Desc");

qint64 storedShowLineNum(Scene &s, const QString &msgID)
{
    const V2VORMessagePtr stored = s.group.server()->messageByID(msgID);
    return ZIQTool::jsonData2Dictionary(stored->customElem()->data).value("show_line_num").toInteger();
}

struct Rule
{
    bool isCreateNew;
    int added, modified, emptied;
    bool single, pastDeadline;
    QString refusal, desc; // the toast's localization key and the description; empty when accepted
};

struct Failure
{
    QString operation, route, actor, desc; // the code is always the injected 9999
};

} // namespace

Q_DECLARE_METATYPE(Rule)
Q_DECLARE_METATYPE(Failure)

class TestGroupNoteSubmission : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void changesAgainstTheSnapshot()
    {
        Scene s;
        const auto provider = s.open("alice", s.post(2));
        const QList<ZIQGroupNoteItemPtr> items = provider->info()->items();
        items.at(0)->setContent("changed");
        items.at(1)->setContent(QString());
        // A new line starts with the author's name; a repeated one copies the text.
        provider->addNewItem();
        provider->repeatItem(items.at(0));
        addLine(*provider, QString()); // added and emptied again: no change at all
        provider->parseChangedOperationsByComparison();
        QCOMPARE(provider->addedItems().size(), 2);
        QCOMPARE(provider->addedItems()[0]->content(), QStringLiteral("Alice "));
        QCOMPARE(provider->addedItems()[1]->content(), QStringLiteral("changed"));
        QCOMPARE(provider->modifiedItems(), QList<ZIQGroupNoteItemPtr> { items.at(0) });
        QCOMPARE(provider->deletedItems(), QList<ZIQGroupNoteItemPtr> { items.at(1) });
        QCOMPARE(items.at(1)->content(), ZIQGroupNoteExtensionKey::deletedMarker);
        QCOMPARE(provider->localShowLineNum(), 2 + 2 - 1);
        // A second detection counts on from the first; the lists grow, and the emptied line, now
        // holding the marker, counts as modified.
        provider->parseChangedOperationsByComparison();
        QCOMPARE(provider->localShowLineNum(), 3 + 2 + 4 - 1);
    }

    void previewRows_data()
    {
        QTest::addColumn<int>("entries");
        QTest::addColumn<bool>("expanded");
        QTest::addColumn<QString>("rows"); // "+" is the expand row
        QTest::newRow("none") << 0 << false << "";
        QTest::newRow("one") << 1 << false << "1";
        QTest::newRow("two, both shown") << 2 << false << "1 2";
        QTest::newRow("three, expand row and newest") << 3 << false << "+ 3";
        QTest::newRow("five") << 5 << false << "+ 5";
        QTest::newRow("five, expanded") << 5 << true << "1 2 3 4 5";
    }
    void previewRows()
    {
        QFETCH(int, entries);
        QFETCH(bool, expanded);
        ZIQGroupNoteEditingSession session(nullptr, {});
        QList<V2VORMessageExtension> store;
        for (int i = entries; i >= 1; --i)
            store.append({ QStringLiteral("u_%1_0").arg(i), QString::number(i) });
        session.info()->mergeExtensionList(store);
        session.setIsExpandAll(expanded);
        session.convertInfoToCellData();
        QStringList rows;
        for (const ZIQGroupNotePreviewCellDataPtr &row : session.previewDataList())
            rows.append(row->isExpandRow() ? QStringLiteral("+") : row->item()->content());
        QTEST(rows.join(u' '), "rows");
        QCOMPARE(session.dataList().size(), entries); // the editor shows every entry
    }

    void postedAndJoined()
    {
        Scene s;
        const auto creator = s.open("alice");
        creator->switchMultiSubmit(false);
        addLine(*creator, "line 1");
        QVERIFY(!creator->info()->canSubmit()); // single submission: no further line offered
        const auto posted = std::make_shared<Answer>();
        creator->submitInGroup({}, true, record(posted));
        QTRY_VERIFY(creator->message() && creator->message()->status() == V2VOR_MSG_STATUS_SEND_SUCC);
        // The entries wait half a second for the new message to settle on the service.
        s.clock.advance(499);
        QCOMPARE(s.group.server()->callCount("setMessageExtensions"), 0);
        s.clock.advance(1);
        QTRY_COMPARE(*posted, (Answer { 0, kSetExtensionFailDesc, 1 }));
        const QString msgID = creator->message()->msgID();
        QTRY_COMPARE(storedShowLineNum(s, msgID), 1);


        // Dave joined the group later: only a tips message is in his history, so he reaches the
        // note by group and sequence, where every write goes under a new generation.
        s.group.addLateMember("dave");
        const QString laterTips = s.join("carol", msgID, "Carol: rice")->msgID();
        for (const QString content : { "Dave: tea", "" }) {
            const auto dave = s.open("dave", laterTips);
            content.isEmpty() ? dave->info()->items().constLast()->setContent({}) : (void)addLine(*dave, content);
            QCOMPARE(s.submit(*dave, false)->code, 0);
        }
        QCOMPARE(s.group.server()->callCount("getMessageExtensionsBySequence"), 2);
        QList<V2VORMessageExtension> stored = s.group.server()->extensionsOf(msgID);
        const QString base = stored.constLast().extensionKey.chopped(2);
        QVERIFY(base.startsWith(QLatin1String("dave_")));
        QCOMPARE(stored.mid(3), // after "line 1", the settings and Carol's line
            (QList<V2VORMessageExtension> {
                { base + "_0", "Dave: tea" }, { base + "_1", ZIQGroupNoteExtensionKey::deletedMarker } }));
        // Reading through the note, Bob sees Dave's line gone and removes its first generation.
        const auto bob = s.open("bob", msgID);
        stored.remove(3);
        QTRY_COMPARE(s.group.server()->extensionsOf(msgID), stored);
    }

    void sequenceKeys()
    {
        // Only the last character is read as the generation, as every client of these notes reads
        // it, so all of them agree on the keys: "_10" reads as 0.
        QCOMPARE(ZIQGroupNoteExtensionClient::sequenceWriteList(
                     { { "bob_1_3", "a" }, { "bob_2_3", "b" }, { "config", "c" }, { "bob_3_10", "d" } },
                     { { "bob_1_3", 1 }, { "bob_2_3", 0 }, { "bob_3_10", 1 } }),
            (QList<V2VORMessageExtension> {
                { "bob_1_4", "a" }, { "bob_2_0", "b" }, { "conf_0", "c" }, { "bob_3__1", "d" } }));
    }

    void localRules_data()
    {
        QTest::addColumn<Rule>("rule");
        const QString limitKey = QStringLiteral("ZIQGroupNoteSubmitExceedLimit");
        const QString limit = QStringLiteral("The count of group notes exceeds the upper limit");
        // clang-format off
        QTest::newRow("new, deadline reached") << Rule { true, 1, 0, 0, false, true,
            "ZIQGroupNoteDeadlineMustBeLater", "The deadline must be later than the current time" };
        QTest::newRow("new, 20 lines") << Rule { true, 20, 0, 0, false, false, limitKey, limit };
        QTest::newRow("new, 19 lines") << Rule { true, 19, 0, 0, false, false, {}, kSetExtensionFailDesc };
        QTest::newRow("deadline reached") << Rule { false, 1, 0, 0, false, true,
            "ZIQGroupNoteExceedDeadline", "Exceed deadline, collection stopped" };
        QTest::newRow("10 added, 10 modified") << Rule { false, 10, 10, 0, false, false, limitKey, limit };
        QTest::newRow("19 added, 19 emptied") << Rule { false, 19, 0, 19, false, false, {}, {} };
        QTest::newRow("20 emptied") << Rule { false, 0, 0, 20, false, false, limitKey, limit };
        QTest::newRow("single, new line") << Rule { false, 1, 0, 0, true, false, "ZIQGroupNoteSubmitOnce", "You are not allow to submit" };
        QTest::newRow("single, line changed") << Rule { false, 0, 1, 0, true, false, {}, {} };
        QTest::newRow("single, line emptied") << Rule { false, 0, 0, 1, true, false, {}, {} };
        QTest::newRow("unchanged") << Rule { false, 0, 0, 0, false, false, "ZIQGroupNoteNotChanged", "Group note's content is not changed" };
        // clang-format on
    }
    void localRules()
    {
        QFETCH(Rule, rule);
        Scene s;
        const int existing = std::max(1, rule.modified + rule.emptied);
        const double deadline = rule.pastDeadline ? s.clock.now() + 3600000 : 0;
        const QString msgID = rule.isCreateNew ? QString() : s.post(existing, !rule.single, deadline);
        const auto provider = s.open("alice", msgID);
        for (int i = 0; i < rule.modified + rule.emptied; ++i)
            provider->info()->items().at(i)->setContent(i < rule.modified ? QStringLiteral("changed") : QString());
        for (int i = 0; i < rule.added; ++i)
            addLine(*provider, "new");
        if (rule.pastDeadline) // a deadline at the current millisecond has passed
            rule.isCreateNew ? provider->setDeadline(s.clock.now()) : s.clock.setNow(deadline);

        const auto state = [&] {
            return std::pair(
                s.group.server()->groupMessages(s.group.groupID()).size(), s.group.server()->extensionsOf(msgID));
        };
        const auto before = state();
        QSignalSpy toasts(platform::ToastCenter::instance(), &platform::ToastCenter::toastShown);
        QCOMPARE(*s.submit(*provider, rule.isCreateNew), (Answer { rule.refusal.isEmpty() ? 0 : -1, rule.desc, 1 }));
        if (rule.refusal.isEmpty()) {
            const QString noteID = rule.isCreateNew ? provider->message()->msgID() : msgID;
            QCOMPARE(s.stored(noteID).size(), (rule.isCreateNew ? 0 : existing) + rule.added - rule.emptied);
            return;
        }
        QCOMPARE(
            toasts, (QList<QVariantList> { { ZIQGlobalization::getLocalizedStringForKey(rule.refusal), 3000, 1 } }));
        QVERIFY(state() == before); // nothing sent, nothing written
    }

    void startedSubmissionFinishes_data()
    {
        QTest::addColumn<QString>("actor");
        QTest::addColumn<QString>("through"); // what the actor's screen was opened over
        QTest::addColumn<bool>("bySequence");
        // clang-format off
        QTest::newRow("new note") << "alice" << "" << false;
        QTest::newRow("the note message") << "bob" << "note" << false;
        QTest::newRow("a tips message, first message at hand") << "bob" << "tips" << false;
        // Dave joined later: the note message is not in his history.
        QTest::newRow("a tips message, first message not at hand") << "dave" << "tips" << true;
        // clang-format on
    }
    void startedSubmissionFinishes()
    {
        QFETCH(QString, actor);
        QFETCH(QString, through);
        QFETCH(bool, bySequence);
        Scene s;
        // An empty note with one line of the actor's (once Carol's line is gone), so that the
        // submission below changes the line count from 1 to 2.
        const QString msgID = through.isEmpty() ? QString() : s.post(0);
        s.group.addLateMember("dave");
        QString openedOver = msgID;
        if (!through.isEmpty()) {
            const QString tipsID = s.join("carol", msgID, "Carol: rice")->msgID();
            const auto carol = s.open("carol", msgID);
            carol->info()->items().first()->setContent({});
            QCOMPARE(s.submit(*carol, false)->code, 0);
            openedOver = through == "tips" ? tipsID : msgID;
            QVERIFY(s.join(actor, openedOver, "first"));
        }
        const int sequenceWrites = s.group.server()->callCount("setMessageExtensionsBySequence");
        const int sentBefore = s.chat.handedOver.size();

        // The member empties their line, adds two, presses Send and leaves at once.
        auto provider = s.open(actor, openedOver);
        if (!through.isEmpty())
            provider->info()->items().constLast()->setContent({});
        addLine(*provider, "one");
        addLine(*provider, "two");
        const auto outcome = std::make_shared<Answer>();
        provider->submitInGroup({}, through.isEmpty(), record(outcome));
        const QString noteID = through.isEmpty() ? provider->message()->msgID() : msgID;
        provider.reset();

        QTRY_COMPARE((s.clock.advance(500), outcome->calls), 1);
        QCOMPARE(*outcome, (Answer { 0, through.isEmpty() ? kSetExtensionFailDesc : QString(), 1 }));
        QCOMPARE(s.group.server()->callCount("setMessageExtensionsBySequence") > sequenceWrites, bySequence);
        // Carol's client sees the lines, the line count and the message the actor's chat sent
        // last: the note itself when new, else the tips message telling of the added lines. The
        // count is rewritten on the note message, or, where it is not at hand, on the message the
        // screen was opened over.
        const QString countedOn = bySequence ? openedOver : noteID;
        QTRY_COMPARE(
            ZIQTool::jsonData2Dictionary(s.find("carol", countedOn)->customElem()->data).value("show_line_num").toInt(),
            2);
        QStringList seen;
        const auto carol = s.open("carol", noteID);
        for (const ZIQGroupNoteItemPtr &item : carol->info()->items())
            seen.append(item->content());
        QCOMPARE(seen, (QStringList { "one", "two" }));
        QCOMPARE(s.chat.handedOver.size(), sentBefore + 1);
        const V2VORMessagePtr sent = s.chat.handedOver.constLast();
        V2VORMessagePtr received;
        QTRY_VERIFY((received = s.find("carol", sent->msgID())));
        QCOMPARE(received->sender(), actor);
        QCOMPARE(ZIQTool::jsonData2Dictionary(received->customElem()->data).value("businessID").toString(),
            through.isEmpty() ? "group_note" : "group_note_tips");
    }

    void usersOfOneProcessKeepTheirOwnEntries()
    {
        Scene s;
        const QString msgID = s.post();
        const auto alice = s.open("alice", msgID);
        const auto bob = s.open("bob", msgID);
        addLine(*bob, "bob");
        addLine(*alice, "alice");
        const std::shared_ptr<Answer> outcomes[2] { std::make_shared<Answer>(), std::make_shared<Answer>() };
        bob->submitInGroup({}, false, record(outcomes[1]));
        alice->submitInGroup({}, false, record(outcomes[0]));
        QTRY_VERIFY(outcomes[0]->calls == 1 && outcomes[1]->calls == 1);
        QCOMPARE(outcomes[0]->code + outcomes[1]->code, 0);
        // Each screen writes as its own user and counts that user's lines as theirs.
        QStringList authors;
        for (const V2VORMessageExtension &extension : s.group.server()->extensionsOf(msgID))
            authors.append(extension.extensionKey.section(u'_', 0, 0) + u':' + extension.extensionValue);
        QCOMPARE(authors.mid(authors.size() - 2), (QStringList { "bob:bob", "alice:alice" }));
        QVERIFY(alice->info()->isMyselfSubmitted() && !bob->info()->isMyselfSubmitted());
    }

    void staleShowLineNumRewrite()
    {
        Scene s;
        const QString msgID = s.post();
        const auto provider = s.open("bob", msgID);
        addLine(*provider, "Bob: soup");
        const auto attempts = [&, before = s.group.server()->callCount("modifyMessage")] {
            return s.group.server()->callCount("modifyMessage") - before;
        };
        const auto conflicts = [&](int count) {
            for (int i = 0; i < count; ++i)
                s.group.server()->failNextCall("modifyMessage", V2VOR_ERR_MESSAGE_MODIFY_CONFLICT, "stale");
            QTest::ignoreMessage(QtWarningMsg, "modify confict, but exceed max retry limit, ignore");
        };
        // Two retries follow the first conflict, each on the service's current message; then it
        // gives up.
        conflicts(3);
        QCOMPARE(s.submit(*provider, false)->code, 0);
        QTRY_COMPARE(attempts(), 3);
        // The spent retries carry over: a later conflict is not retried until a success.
        conflicts(1);
        provider->modifyShowLineNumOfMessage(provider->message());
        QTRY_COMPARE(attempts(), 4);
        QCOMPARE(storedShowLineNum(s, msgID), 1);
        provider->modifyShowLineNumOfMessage(provider->message());
        QTRY_COMPARE(storedShowLineNum(s, msgID), 2);
        QCOMPARE(provider->modifyRetryCount(), 0);
    }

    void serviceFailuresAreReported_data()
    {
        QTest::addColumn<Failure>("failure");
        const QString setFail = kSetExtensionFailDesc;
        const QString injected = QStringLiteral("injected");
        // clang-format off
        QTest::newRow("post") << Failure { "sendMessage", "create", "alice", "ZIQGroupNote_Send_Message_Fail_Desc" };
        QTest::newRow("first write") << Failure { "setMessageExtensions", "create", "alice", setFail };
        QTest::newRow("delete") << Failure { "deleteMessageExtensions", "empty", "alice", setFail };
        QTest::newRow("write by sequence") << Failure { "setMessageExtensionsBySequence", "add via tips", "dave",
            setFail };
        QTest::newRow("look-up falls back to sequence") << Failure { "findMessages", "add via tips", "bob", {} };
        QTest::newRow("read") << Failure { "getMessageExtensions", "fetch", "bob", injected };
        QTest::newRow("read by sequence") << Failure { "getMessageExtensionsBySequence", "fetch via tips", "dave",
            injected };
        QTest::newRow("creator look-up") << Failure { "getGroupMembersInfo", "creator", "bob", injected };
        // clang-format on
    }
    void serviceFailuresAreReported()
    {
        QFETCH(Failure, failure);
        const QString &route = failure.route;
        Scene s;
        // Alice's note, joined by Bob, who told the group (Dave, a late member, among them).
        const QString msgID = route == "create" ? QString() : s.post();
        s.group.addLateMember("dave");
        const V2VORMessagePtr tips = msgID.isEmpty() ? nullptr : s.join("bob", msgID, "Bob: soup");
        const auto provider = s.open(failure.actor, route.endsWith("via tips") ? tips->msgID() : msgID);
        if (route == "empty")
            provider->info()->items().first()->setContent(QString());
        else if (route == "create" || route.startsWith("add"))
            addLine(*provider, failure.actor);

        s.group.server()->failNextCall(failure.operation, 9999, "injected");
        const auto outcome = std::make_shared<Answer>();
        if (route.startsWith("fetch"))
            provider->getNoteStatistics([report = record(outcome)](int code, const QString &desc,
                                            const ZIQGroupNoteInfoPtr &) { report(code, desc); });
        else if (route == "creator")
            provider->refreshCreatorInfoWithCompletion(record(outcome));
        else
            provider->submitInGroup({}, route == "create", record(outcome));
        QTRY_COMPARE_WITH_TIMEOUT((s.clock.advance(500), outcome->calls), 1, 5000);
        QCOMPARE(*outcome, (Answer { failure.desc.isEmpty() ? 0 : 9999, failure.desc, 1 }));
        if (failure.desc.isEmpty()) // the look-up failed, so the entry went by sequence
            QCOMPARE(s.stored(msgID).constLast(), QStringLiteral("bob"));
    }
};

QTEST_MAIN(TestGroupNoteSubmission)
#include "tst_groupnotesubmission.moc"
