// Failures of every service call the provider makes, injected on the in-process service: each
// reaches the caller with the service's code and the right description, and nothing further is
// written or announced.
#include "ProviderTestSupport.h"

namespace {

const int kInjectedCode = 9999;
const QString kInjectedDesc = QStringLiteral("injected");

} // namespace

class TestGroupNoteFailures : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void serviceFailuresAreReported_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QString>("route");
        QTest::addColumn<QString>("actor");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("desc");
        QTest::addColumn<QString>("logged");
        const QString sendFail = QStringLiteral("ZIQGroupNote_Send_Message_Fail_Desc");
        const QString setFail = QStringLiteral("ZIQGroupNote_Set_Message_Extension_Fail_Desc");
        QTest::newRow("post") << "sendMessage"
                              << "create"
                              << "alice" << kInjectedCode << sendFail
                              << "sendMessageByZIQChat failed, code: 9999, desc: injected";
        QTest::newRow("first write") << "setMessageExtensions"
                                     << "create"
                                     << "alice" << kInjectedCode << setFail
                                     << "set extension failed, msgID: msg-1, code: 9999, desc: injected ";
        QTest::newRow("write") << "setMessageExtensions"
                               << "add"
                               << "bob" << kInjectedCode << setFail
                               << "set extension failed, msgID: msg-1, code: 9999, desc: injected ";
        QTest::newRow("delete") << "deleteMessageExtensions"
                                << "empty"
                                << "alice" << kInjectedCode << setFail
                                << "delete extension failed, msgID: msg-1, code: 9999, desc: injected ";
        QTest::newRow("write by sequence")
            << "setMessageExtensionsBySequence"
            << "add via tips"
            << "dave" << kInjectedCode << setFail << "set extension failed, seq: 1, code: 9999, desc: injected";
        QTest::newRow("look-up falls back to sequence") << "findMessages"
                                                        << "add via tips"
                                                        << "bob" << 0 << ""
                                                        << "find failed, msgID: msg-1, code: 9999, desc: injected";
        QTest::newRow("read") << "getMessageExtensions"
                              << "fetch"
                              << "bob" << kInjectedCode << kInjectedDesc
                              << "get extension failed, msgID: msg-1, code: 9999, desc: injected ";
        QTest::newRow("read by sequence")
            << "getMessageExtensionsBySequence"
            << "fetch via tips"
            << "dave" << kInjectedCode << kInjectedDesc << "get extension failed, seq: 1, code: 9999, desc: injected";
        QTest::newRow("creator look-up") << "getGroupMembersInfo"
                                         << "creator"
                                         << "bob" << kInjectedCode << kInjectedDesc << "";
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
        QString msgID;
        QString tipsID;
        if (route != QLatin1String("create")) {
            // Alice's note, joined by Bob, which told the group (Dave, a late member, among them).
            msgID = postNote(group, clock, QStringLiteral("alice"), { "Alice: noodles" });
            group.addLateMember(QStringLiteral("dave"));
            group.actAs(QStringLiteral("bob"));
            ZIQGroupNoteDataProvider bob(localCopy(group.client(QStringLiteral("bob")), msgID));
            QCOMPARE(fetch(bob), 0);
            addLine(bob, QStringLiteral("Bob: soup"));
            QCOMPARE(submit(bob, clock, group.groupID(), false).code(), 0);
            QTRY_COMPARE(chat.handedOver.size(), 2);
            QTRY_COMPARE(chat.handedOver.last()->status(), V2VOR_MSG_STATUS_SEND_SUCC);
            tipsID = chat.handedOver.last()->msgID();
        }
        group.actAs(actor);
        const bool viaTips = route.endsWith(QLatin1String("via tips"));
        V2VORMessagePtr opened;
        if (route != QLatin1String("create"))
            opened = localCopy(group.client(actor), viaTips ? tipsID : msgID);
        ZIQGroupNoteDataProvider provider(opened);
        const qsizetype announced = chat.handedOver.size();
        if (route.startsWith(QLatin1String("add")) || route == QLatin1String("empty"))
            QCOMPARE(fetch(provider), 0);
        if (route == QLatin1String("empty"))
            provider.info()->items().first()->setContent(QString());
        else if (route == QLatin1String("create") || route.startsWith(QLatin1String("add")))
            addLine(provider, QStringLiteral("%1: tea").arg(actor));

        group.server()->failNextCall(operation, kInjectedCode, kInjectedDesc);
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
            QCOMPARE(storedEntries(group, msgID).last(), QStringLiteral("bob: tea"));
            QCOMPARE(group.server()->callCount(QStringLiteral("setMessageExtensionsBySequence")), 1);
        } else if (route != QLatin1String("create")) {
            QCoreApplication::processEvents();
            QCOMPARE(chat.handedOver.size(), announced); // a failed change is not announced
        }
    }
};

QTEST_MAIN(TestGroupNoteFailures)
#include "tst_groupnotefailures.moc"
