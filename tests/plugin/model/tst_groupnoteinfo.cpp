// The note's head and its people: derived flags, the note and tips bodies read and written, the
// current user's flags and the authors' names from the group member look-up.
#include "platform/ManualClock.h"
#include "plugin/model/ZIQGroupNoteInfo.h"
#include "plugin/model/ZIQGroupNoteMessageBody.h"
#include "support/GroupFixture.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

namespace {

constexpr double kNow = 1700000000000.0;

V2VORMessagePtr customMessage(const QByteArray &data, const QString &msgID = {}, quint64 seq = 0)
{
    auto message = std::make_shared<V2VORMessage>();
    message->setGroupID(QStringLiteral("group-1"));
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

QString head(const ZIQGroupNoteInfo &info)
{
    return QStringLiteral("%1|%2|%3|%4|%5|%6")
        .arg(info.title(), info.desc(), info.example(), info.creatorUserID())
        .arg(info.showLineNum())
        .arg(info.originMsgID() + QLatin1Char('@') + QString::number(info.originMsgSeq()));
}

QList<V2VORMessageExtension> entriesBy(const QStringList &userIDs)
{
    QList<V2VORMessageExtension> list;
    for (qsizetype i = 0; i < userIDs.size(); ++i)
        list.append({ QStringLiteral("%1_%2_0").arg(userIDs[i]).arg(100 + i), QStringLiteral("text") });
    return list;
}

QStringList userNames(const ZIQGroupNoteInfo &info)
{
    QStringList names;
    for (const ZIQGroupNoteItemPtr &item : info.items())
        names.append(item->userName());
    return names;
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
        QTest::addColumn<QString>("flags"); // exceeded, canSubmit, didSubmitOnce
        QTest::newRow("multi, own entries") << 0.0 << true << true << true << "010";
        QTest::newRow("deadline is now") << kNow << true << false << false << "100";
        QTest::newRow("deadline next ms") << kNow + 1 << true << false << false << "010";
        QTest::newRow("negative deadline") << -5.0 << false << false << false << "010";
        QTest::newRow("single, stored entry") << 0.0 << false << true << false << "001";
        QTest::newRow("single, added in editor") << 0.0 << false << false << true << "000";
        QTest::newRow("single, past deadline") << kNow - 1 << false << true << false << "101";
    }
    void derivedFlags()
    {
        platform::ManualClock clock(kNow);
        QFETCH(double, deadline);
        QFETCH(bool, multi);
        QFETCH(bool, submitted);
        QFETCH(bool, created);
        ZIQGroupNoteInfo info;
        info.setSetting(std::make_shared<ZIQGroupNoteSetting>(multi, true, deadline));
        info.setIsMyselfSubmitted(submitted);
        info.setIsMyselfCreated(created);
        // What the setters store never decides what the getters answer.
        info.setCanSubmit(!info.canSubmit());
        info.setDidSubmitOnce(!info.didSubmitOnce());
        QTEST(QStringLiteral("%1%2%3").arg(info.isExceedDeadline()).arg(info.canSubmit()).arg(info.didSubmitOnce()),
            "flags");
    }

    void readHead_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("head"); // title|desc|format|creator|rows|origin@seq
        QTest::newRow("compact note") << QByteArray(
            R"({"title":"T","description":"D","show_line_num":1,"content":)"
            R"({"creator":"c","format":"F","original_msg_id":"","original_msg_seq":0}})")
                                      << "T|D|F|c|1|@0";
        QTest::newRow("rows clamped") << QByteArray(R"({"show_line_num": 7})") << "||||2|@0";
        QTest::newRow("negative rows kept") << QByteArray(R"({"show_line_num": -3})") << "||||-3|@0";
        QTest::newRow("origin without seq") << QByteArray(R"({"content": {"original_msg_id": "m1"}})") << "||||0|@0";
        QTest::newRow("seq without origin") << QByteArray(R"({"content": {"original_msg_seq": 4}})") << "||||0|@0";
        QTest::newRow("tips, any spacing") << QByteArray("{\n \"businessID\" : \"group_note_tips\" ,\n\t\"content\" :"
                                                         " {\"original_msg_id\": \"m1\", \"original_msg_seq\": "
                                                         "9007199254740993}}")
                                           << "||||0|m1@9007199254740993";
        QTest::newRow("not JSON") << QByteArray("title: T") << "||||0|@0";
    }
    void readHead()
    {
        QFETCH(QByteArray, body);
        const V2VORMessagePtr message = customMessage(body);
        const ZIQGroupNoteInfoPtr info = ZIQGroupNoteInfo::initWithMessage(message);
        QVERIFY(info);
        QCOMPARE(info->message(), message);
        QTEST(head(*info), "head");
    }

    void noNoteWithoutCustomData()
    {
        QVERIFY(!ZIQGroupNoteInfo::initWithMessage(nullptr));
        QVERIFY(!ZIQGroupNoteInfo::initWithMessage(std::make_shared<V2VORMessage>()));
    }

    void noteBody()
    {
        ZIQGroupNoteInfo info;
        const QJsonObject empty = object(ZIQGroupNoteMessageBody::noteBody(info, 0));
        QCOMPARE(empty, object(R"({"businessID": "group_note", "title": "", "description": "", "show_line_num": 0,
            "content": {"creator": "", "format": "", "original_msg_id": "", "original_msg_seq": 0}})"));

        info.setTitle(QStringLiteral("Lunch \"order\"\n午饭"));
        info.setExample(QStringLiteral("name + dish"));
        info.setCreatorUserID(QStringLiteral("alice"));
        const QByteArray body = ZIQGroupNoteMessageBody::noteBody(info, 1);
        QVERIFY(body.contains("\n    "));
        QCOMPARE(head(*ZIQGroupNoteInfo::initWithMessage(customMessage(body))), head(info).replace("|0|@", "|1|@"));
    }

    void tipsBody_data()
    {
        QTest::addColumn<QString>("origin");
        QTest::addColumn<quint64>("originSeq");
        QTest::addColumn<QString>("pointsAt");
        QTest::newRow("from the note itself") << "" << quint64(0) << "note@12";
        QTest::newRow("from a re-posted copy") << "first" << quint64(3) << "first@3";
    }
    void tipsBody()
    {
        QFETCH(QString, origin);
        QFETCH(quint64, originSeq);
        const QByteArray noteBody = R"({"businessID":"group_note","title":"T","extra":[1],"show_line_num":2,)"
                                    R"("content":{"creator":"c","original_msg_id":"","original_msg_seq":0}})";
        ZIQGroupNoteInfo info;
        info.setOriginMsgID(origin);
        info.setOriginMsgSeq(originSeq);
        const QByteArray tips = ZIQGroupNoteMessageBody::tipsBody(customMessage(noteBody, "note", 12), info);
        const ZIQGroupNoteInfoPtr read = ZIQGroupNoteInfo::initWithMessage(customMessage(tips));
        QFETCH(QString, pointsAt);
        QCOMPARE(head(*read), "T|||c|2|" + pointsAt);
        QCOMPARE(object(tips).value(QLatin1String("businessID")).toString(), QStringLiteral("group_note_tips"));
        QCOMPARE(object(tips).value(QLatin1String("extra")), object(noteBody).value(QLatin1String("extra")));

        const QByteArray rewritten = ZIQGroupNoteMessageBody::bodyWithShowLineNum(tips, 5);
        QCOMPARE(head(*ZIQGroupNoteInfo::initWithMessage(customMessage(rewritten))), "T|||c|2|" + pointsAt);
        QCOMPARE(object(rewritten).value(QLatin1String("show_line_num")).toInt(), 5);
    }

    void namesAndCurrentUser()
    {
        GroupFixture group;
        QVERIFY(group.isReady());
        group.addOutsider(QStringLiteral("dave"));
        group.server()->setNameCard(group.groupID(), QStringLiteral("alice"), QStringLiteral("Ali"));
        group.server()->setFriendRemark(QStringLiteral("carol"), QStringLiteral("bob"), QStringLiteral("Bobby"));
        group.actAs(QStringLiteral("carol"));
        auto info = ZIQGroupNoteInfo::initWithMessage(customMessage(R"({"content": {"creator": "carol"}})"));
        QVERIFY(info->isCreatedByMyself());
        info->setSetting(std::make_shared<ZIQGroupNoteSetting>(false, true, 0));
        int completions = 0;
        info->updateWithExtensionList(entriesBy({ "alice", "bob", "carol", "dave", "alice" }),
            [&completions](int code, const QString &desc) { completions += code == 0 && desc.isEmpty() ? 1 : 100; });
        QVERIFY(info->isMyselfSubmitted() && info->didSubmitOnce() && !info->canSubmit());
        QTRY_COMPARE(completions, 1);
        QCOMPARE(userNames(*info), (QStringList { "Ali", "Bobby", "Carol", "", "Ali" }));
    }

    void lookUpFailureOrNoteGone()
    {
        GroupFixture group;
        QVERIFY(group.isReady());
        group.actAs(QStringLiteral("alice"));
        group.server()->failNextCall(QStringLiteral("getGroupMembersInfo"), 10007, QStringLiteral("denied"));
        auto info = ZIQGroupNoteInfo::initWithMessage(customMessage("{}"));
        QList<std::pair<int, QString>> calls;
        auto record = [&calls](int code, const QString &desc) { calls.append({ code, desc }); };
        info->updateWithExtensionList(entriesBy({ "bob" }), record);
        QTRY_COMPARE(calls.size(), 1);
        QCOMPARE(calls.first(), std::make_pair(0, QString()));
        QCOMPARE(userNames(*info), QStringList { QString() });

        // The look-up names the entries it was asked for, even when their note is gone.
        info->updateWithExtensionList(entriesBy({ "bob" }), record);
        const ZIQGroupNoteItemPtr entry = info->items().first();
        info.reset();
        QTRY_COMPARE(calls.size(), 2);
        QCOMPARE(entry->userName(), QStringLiteral("Bob"));
        QVERIFY(!ZIQGroupNoteInfo::initWithMessage(customMessage("{}"))->isCreatedByMyself());
    }
};

QTEST_GUILESS_MAIN(TestGroupNoteInfo)
#include "tst_groupnoteinfo.moc"
