// The note's head: derived flags, display names, and the note and tips bodies read and written.
#include "platform/ManualClock.h"
#include "plugin/model/ZIQGroupNoteInfo.h"
#include "plugin/model/ZIQGroupNoteMessageBody.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

namespace {

constexpr double kNow = 1700000000000.0;

V2VORMessagePtr customMessage(const QByteArray &data, const QString &msgID = QString(), quint64 seq = 0)
{
    auto message = std::make_shared<V2VORMessage>();
    message->setElemType(V2VOR_ELEM_TYPE_CUSTOM);
    message->setCustomElem(std::make_unique<V2VORCustomElem>(V2VORCustomElem { data, {}, {} }));
    message->setMsgID(msgID);
    message->setSeq(seq);
    return message;
}

QJsonObject object(const QByteArray &json)
{
    return QJsonDocument::fromJson(json).object();
}

} // namespace

class TestGroupNoteInfo : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void derivedFlags_data()
    {
        QTest::addColumn<double>("deadline");
        QTest::addColumn<bool>("multi");
        QTest::addColumn<bool>("submitted");
        QTest::addColumn<bool>("created");
        QTest::addColumn<bool>("exceeded");
        QTest::addColumn<bool>("canSubmit");
        QTest::addColumn<bool>("didSubmitOnce");
        QTest::newRow("multi, own entries") << 0.0 << true << true << true << false << true << false;
        QTest::newRow("deadline is now") << kNow << true << false << false << true << false << false;
        QTest::newRow("deadline next ms") << kNow + 1 << true << false << false << false << true << false;
        QTest::newRow("negative deadline") << -5.0 << false << false << false << false << true << false;
        QTest::newRow("single, stored entry") << 0.0 << false << true << false << false << false << true;
        QTest::newRow("single, added in editor") << 0.0 << false << false << true << false << false << false;
        QTest::newRow("single, past deadline") << kNow - 1 << false << true << false << true << false << true;
    }
    void derivedFlags()
    {
        platform::ManualClock clock(kNow);
        QFETCH(double, deadline);
        QFETCH(bool, multi);
        QFETCH(bool, submitted);
        QFETCH(bool, created);
        QFETCH(bool, canSubmit);
        QFETCH(bool, didSubmitOnce);
        ZIQGroupNoteInfo info;
        info.setSetting(std::make_shared<ZIQGroupNoteSetting>(multi, true, deadline));
        info.setIsMyselfSubmitted(submitted);
        info.setIsMyselfCreated(created);
        // What the setters store is never what the derived getters answer.
        info.setCanSubmit(!canSubmit);
        info.setDidSubmitOnce(!didSubmitOnce);
        QTEST(info.isExceedDeadline(), "exceeded");
        QCOMPARE(info.canSubmit(), canSubmit);
        QCOMPARE(info.didSubmitOnce(), didSubmitOnce);
    }

    void displayedName_data()
    {
        QTest::addColumn<QString>("nameCard");
        QTest::addColumn<QString>("remark");
        QTest::addColumn<QString>("nick");
        QTest::addColumn<QString>("shown");
        QTest::newRow("name card first") << "Card"
                                         << "Remark"
                                         << "Nick"
                                         << "Card";
        QTest::newRow("then remark") << ""
                                     << "Remark"
                                     << "Nick"
                                     << "Remark";
        QTest::newRow("then nick") << ""
                                   << ""
                                   << "Nick"
                                   << "Nick";
        QTest::newRow("then user ID") << ""
                                      << ""
                                      << ""
                                      << "u1";
    }
    void displayedName()
    {
        QFETCH(QString, nameCard);
        QFETCH(QString, remark);
        QFETCH(QString, nick);
        const V2VORGroupMemberFullInfo member { QStringLiteral("u1"), nick, QString(), nameCard, remark };
        QTEST(ZIQGroupNoteInfo::displayedNameOfMemberInfo(member), "shown");
    }

    void readHead_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("example");
        QTest::addColumn<qint64>("showLineNum");
        QTest::addColumn<QString>("originID");
        QTest::addColumn<quint64>("originSeq");
        QTest::newRow("compact note") << QByteArray(
            R"({"businessID":"group_note","title":"T","show_line_num":1,)"
            R"("content":{"format":"F","original_msg_id":"","original_msg_seq":0}})")
                                      << "T"
                                      << "F" << qint64(1) << "" << quint64(0);
        QTest::newRow("rows clamped to two") << QByteArray(R"({"show_line_num": 7})") << ""
                                             << "" << qint64(2) << "" << quint64(0);
        QTest::newRow("negative rows kept") << QByteArray(R"({"show_line_num": -3})") << ""
                                            << "" << qint64(-3) << "" << quint64(0);
        QTest::newRow("origin without seq") << QByteArray(R"({"content": {"original_msg_id": "m1"}})") << ""
                                            << "" << qint64(0) << "" << quint64(0);
        QTest::newRow("seq without origin") << QByteArray(R"({"content": {"original_msg_seq": 4}})") << ""
                                            << "" << qint64(0) << "" << quint64(0);
        QTest::newRow("any business ID") << QByteArray("{\n \"businessID\" : \"other\",\n \"title\" : \"T\",\n"
                                                       " \"content\" : {\"original_msg_id\": \"m1\",\n"
                                                       " \"original_msg_seq\": 9007199254740993}}")
                                         << "T"
                                         << "" << qint64(0) << "m1" << quint64(9007199254740993ULL);
        QTest::newRow("not JSON") << QByteArray("title: T") << ""
                                  << "" << qint64(0) << "" << quint64(0);
        QTest::newRow("JSON array") << QByteArray(R"(["title"])") << ""
                                    << "" << qint64(0) << "" << quint64(0);
    }
    void readHead()
    {
        QFETCH(QByteArray, body);
        const V2VORMessagePtr message = customMessage(body);
        const ZIQGroupNoteInfoPtr info = ZIQGroupNoteInfo::initWithMessage(message);
        QVERIFY(info);
        QCOMPARE(info->message(), message);
        QTEST(info->title(), "title");
        QTEST(info->example(), "example");
        QTEST(info->showLineNum(), "showLineNum");
        QTEST(info->originMsgID(), "originID");
        QTEST(info->originMsgSeq(), "originSeq");
        QVERIFY(!info->isCreatedByMyself());
    }

    void noNoteWithoutCustomData()
    {
        QVERIFY(!ZIQGroupNoteInfo::initWithMessage(nullptr));
        QVERIFY(!ZIQGroupNoteInfo::initWithMessage(std::make_shared<V2VORMessage>()));
    }

    void noteBodyRoundTrip()
    {
        ZIQGroupNoteInfo info;
        info.setTitle(QStringLiteral("Lunch \"order\"\n午饭"));
        info.setExample(QStringLiteral("name + dish"));
        info.setCreatorUserID(QStringLiteral("alice"));
        const QByteArray body = ZIQGroupNoteMessageBody::noteBody(info, 1);
        QVERIFY(body.contains('\n'));
        const ZIQGroupNoteInfoPtr read = ZIQGroupNoteInfo::initWithMessage(customMessage(body));
        QCOMPARE(read->title(), info.title());
        QCOMPARE(read->desc(), QString());
        QCOMPARE(read->example(), info.example());
        QCOMPARE(read->creatorUserID(), QStringLiteral("alice"));
        QCOMPARE(read->showLineNum(), 1);
        QCOMPARE(read->originMsgID(), QString());
        QCOMPARE(object(body).value(QLatin1String("businessID")).toString(), QStringLiteral("group_note"));
    }

    void absentTextsAreEmptyStrings()
    {
        const QJsonObject body = object(ZIQGroupNoteMessageBody::noteBody(ZIQGroupNoteInfo(), 0));
        const QJsonObject content = body.value(QLatin1String("content")).toObject();
        for (const QJsonValue &text : { body.value(QLatin1String("title")), body.value(QLatin1String("description")),
                 content.value(QLatin1String("creator")), content.value(QLatin1String("format")),
                 content.value(QLatin1String("original_msg_id")) })
            QCOMPARE(text, QJsonValue(QString()));
        QCOMPARE(content.value(QLatin1String("original_msg_seq")), QJsonValue(0));
    }

    void tipsPointAtFirstMessage_data()
    {
        QTest::addColumn<QString>("infoOriginID");
        QTest::addColumn<quint64>("infoOriginSeq");
        QTest::addColumn<QString>("pointsAt");
        QTest::addColumn<quint64>("pointsAtSeq");
        QTest::newRow("from the note itself") << "" << quint64(0) << "note" << quint64(12);
        QTest::newRow("from a re-posted copy") << "first" << quint64(3) << "first" << quint64(3);
        QTest::newRow("origin known by seq only") << "" << quint64(3) << "" << quint64(3);
    }
    void tipsPointAtFirstMessage()
    {
        QFETCH(QString, infoOriginID);
        QFETCH(quint64, infoOriginSeq);
        const QByteArray noteBody = R"({"businessID":"group_note","title":"T","extra":[1],"show_line_num":2,)"
                                    R"("content":{"creator":"alice","original_msg_id":"x","original_msg_seq":1}})";
        const V2VORMessagePtr message = customMessage(noteBody, QStringLiteral("note"), 12);
        ZIQGroupNoteInfo info;
        info.setOriginMsgID(infoOriginID);
        info.setOriginMsgSeq(infoOriginSeq);
        const QByteArray tips = ZIQGroupNoteMessageBody::tipsBody(message, info);

        QJsonObject expected = object(noteBody);
        expected.insert(QStringLiteral("businessID"), QStringLiteral("group_note_tips"));
        QJsonObject content = expected.value(QLatin1String("content")).toObject();
        QFETCH(QString, pointsAt);
        QFETCH(quint64, pointsAtSeq);
        content.insert(QStringLiteral("original_msg_id"), pointsAt);
        content.insert(QStringLiteral("original_msg_seq"), qint64(pointsAtSeq));
        expected.insert(QStringLiteral("content"), content);
        QCOMPARE(object(tips), expected);

        const ZIQGroupNoteInfoPtr read = ZIQGroupNoteInfo::initWithMessage(customMessage(tips));
        QCOMPARE(read->originMsgID(), pointsAt);
        QCOMPARE(read->originMsgSeq(), pointsAtSeq);
    }

    void showLineNumRewriteKeepsTheRest()
    {
        const QByteArray body = R"({"businessID":"group_note","title":"T","show_line_num":0,"extra":{"a":1}})";
        QJsonObject expected = object(body);
        expected.insert(QStringLiteral("show_line_num"), 5);
        QCOMPARE(object(ZIQGroupNoteMessageBody::bodyWithShowLineNum(body, 5)), expected);
    }
};

QTEST_GUILESS_MAIN(TestGroupNoteInfo)
#include "tst_groupnoteinfo.moc"
