// The note model: entry keys and the generations of the sequence path, merging a note message's
// extensions into the note, the derived flags, the note and tips bodies, and the authors' names
// from the group member look-up.
#include "platform/ManualClock.h"
#include "plugin/model/ZIQGroupNoteExtensionKey.h"
#include "plugin/model/ZIQGroupNoteInfo.h"
#include "plugin/model/ZIQGroupNoteMessageBody.h"
#include "support/GroupFixture.h"

#include <QJsonDocument>
#include <QTest>

using Key = ZIQGroupNoteExtensionKey;
Q_DECLARE_METATYPE(ZIQGroupNoteSetting)

namespace {

constexpr double kNow = 1700000000000.0;

// Extensions from "key=value" texts; a text without "=" is a key holding "text".
QList<V2VORMessageExtension> extensions(const QStringList &pairs)
{
    QList<V2VORMessageExtension> list;
    for (const QString &pair : pairs)
        list.append({ pair.section(u'=', 0, 0), pair.contains(u'=') ? pair.section(u'=', 1) : QStringLiteral("text") });
    return list;
}

// One "index key content" text per entry, or the given field of each.
QStringList rows(const QList<ZIQGroupNoteItemPtr> &items, QString (ZIQGroupNoteItem::*field)() const = nullptr)
{
    QStringList result;
    for (const ZIQGroupNoteItemPtr &item : items)
        result.append(
            field ? (*item.*field)() : QStringLiteral("%1 %2 %3").arg(item->index()).arg(item->key(), item->content()));
    return result;
}

V2VORMessagePtr customMessage(const QByteArray &data)
{
    auto message = std::make_shared<V2VORMessage>();
    message->setGroupID(QStringLiteral("group-1"));
    message->setCustomElem(std::make_unique<V2VORCustomElem>(V2VORCustomElem { data, {}, {} }));
    return message;
}

// "title|desc|format|creator|rows|origin@seq" of the note read from `body`.
QString headOf(const QByteArray &body)
{
    const ZIQGroupNoteInfoPtr info = ZIQGroupNoteInfo::initWithMessage(customMessage(body));
    return QStringList { info->title(), info->desc(), info->example(), info->creatorUserID(),
        QString::number(info->showLineNum()), info->originMsgID() + u'@' + QString::number(info->originMsgSeq()) }
        .join(u'|');
}

} // namespace

class TestGroupNoteModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void entryKey()
    {
        // The key follows the entry's time, whatever key was stored; "%.0f" rounds a tie to even,
        // where rounding half up would name another entry.
        ZIQGroupNoteItem item(QStringLiteral("a_b"), 1700000000123.7, 2, QStringLiteral("tea"));
        item.setKey(QStringLiteral("stored_but_ignored_9"));
        QCOMPARE(item.key(), "a_b_1700000000124_2");
        QCOMPARE(item.keyWithoutSeq(), "a_b_1700000000124");
        QCOMPARE(ZIQGroupNoteItem(QStringLiteral("a_b"), 1700000000122.5, 2, {}).key(), "a_b_1700000000122_2");
    }

    void redundantKeys_data()
    {
        QTest::addColumn<QStringList>("keys");
        QTest::addColumn<QStringList>("redundant");
        // Any order; keys sharing the newest generation all stay.
        QTest::newRow("older generations")
            << QStringList { "u_1_2", "u_1_0", "v_1_0", "u_1x2", "u_1_1" } << QStringList { "u_1_0", "u_1_1" };
        // After generation 9 come _10, read as 0, and then __1.
        QTest::newRow("tenth generation") << QStringList { "u_1_9", "u_1_10", "u_1__1" } << QStringList { "u_1_10" };
        QTest::newRow("settings") << QStringList { "config", "conf_0", "conf_1" } << QStringList { "conf_0" };
        // Keys without an underscore are never written here; they are left alone.
        QTest::newRow("no underscore") << QStringList { "x1", "x2" } << QStringList {};
    }
    void redundantKeys()
    {
        QFETCH(QStringList, keys);
        ZIQGroupNoteInfo info;
        info.setExtensionList(extensions(keys));
        QTEST(info.redundantKeysInExtensionList(), "redundant");
    }

    void merge_data()
    {
        QTest::addColumn<QStringList>("store");
        QTest::addColumn<QStringList>("rows");
        QTest::addColumn<int>("participants");
        QTest::addColumn<ZIQGroupNoteSetting>("setting");
        // A deadline is written with its fraction and read without it.
        const QString config = "config=" + ZIQGroupNoteSetting(false, true, 1700000123456.7).configValue();
        QTest::newRow("generations, deletion, settings")
            << QStringList { "u1_300_0=old", "u2_100_0=gone", "u2_100_1=" + Key::deletedMarker, "u1_300_1=new", config }
            << QStringList { "1 u1_300_1 new" } << 1 << ZIQGroupNoteSetting(false, true, 1700000123456.0);
        QTest::newRow("sorted by time, underscored user")
            << QStringList { "a_b_200_0=ab", "u_100_0=u", "u_50_0=first" }
            << QStringList { "1 u_50_0 first", "2 u_100_0 u", "3 a_b_200_0 ab" } << 2
            << ZIQGroupNoteSetting(false, false, 5);
        // Settings cut on the sequence path show as an entry; numbers read by their leading digits.
        QTest::newRow("odd") << QStringList { "conf_0={}", "u_12ab_3x=y", "stray", "config=x" }
                             << QStringList { "1 _0_0 {}", "2 u_12_3 y" } << 2 << ZIQGroupNoteSetting(false, false, 0);
    }
    void merge()
    {
        QFETCH(QStringList, store);
        QFETCH(QStringList, rows);
        QFETCH(ZIQGroupNoteSetting, setting);
        ZIQGroupNoteInfo info;
        info.setSetting(std::make_shared<ZIQGroupNoteSetting>(false, false, 5));
        info.setIsMyselfSubmitted(true);
        info.mergeExtensionList(extensions(store));
        QCOMPARE(::rows(info.items()), rows);
        QTEST(int(info.paticipantCount()), "participants");
        QCOMPARE(info.setting()->configValue(), setting.configValue());
        // A refresh to an empty store keeps the last number; none turns the user's flag back off.
        info.mergeExtensionList({});
        QVERIFY(info.items().isEmpty() && info.previewItems().isEmpty() && info.paticipantCount() == 0);
        QVERIFY(info.isMyselfSubmitted());
        QCOMPARE(qsizetype(info.lastIndex()), rows.size());
    }

    void derivedFlags_data()
    {
        QTest::addColumn<QString>("state");
        QTest::addColumn<double>("deadline");
        QTest::addColumn<QString>("flags"); // exceeded, canSubmit, didSubmitOnce
        QTest::newRow("deadline is now") << "multi" << kNow << "100";
        QTest::newRow("deadline next ms") << "multi" << kNow + 1 << "010";
        QTest::newRow("single, stored entry") << "single submitted" << 0.0 << "001";
        QTest::newRow("single, added in editor") << "single created" << 0.0 << "000";
    }
    void derivedFlags()
    {
        platform::ManualClock clock(kNow);
        QFETCH(QString, state);
        QFETCH(double, deadline);
        ZIQGroupNoteInfo info;
        info.setSetting(std::make_shared<ZIQGroupNoteSetting>(state.contains("multi"), true, deadline));
        info.setIsMyselfSubmitted(state.contains("submitted"));
        info.setIsMyselfCreated(state.contains("created"));
        QTEST(QStringLiteral("%1%2%3").arg(info.isExceedDeadline()).arg(info.canSubmit()).arg(info.didSubmitOnce()),
            "flags");
    }

    void readHead_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("head");
        QTest::newRow("rows clamped") << QByteArray(R"({"show_line_num": 7})") << "||||2|@0";
        QTest::newRow("negative rows kept") << QByteArray(R"({"show_line_num": -3})") << "||||-3|@0";
        // An origin is the message ID and its sequence together, or nothing.
        QTest::newRow("origin without seq") << QByteArray(R"({"content": {"original_msg_id": "m1"}})") << "||||0|@0";
        QTest::newRow("long seq") << QByteArray(
            R"({"content":{"original_msg_id":"m","original_msg_seq":9007199254740993}})")
                                  << "||||0|m@9007199254740993";
        QTest::newRow("not JSON") << QByteArray("title: T") << "||||0|@0";
    }
    void readHead()
    {
        QFETCH(QByteArray, body);
        QTEST(headOf(body), "head");
        QVERIFY(!ZIQGroupNoteInfo::initWithMessage(nullptr)
            && !ZIQGroupNoteInfo::initWithMessage(std::make_shared<V2VORMessage>()));
    }

    void bodies()
    {
        ZIQGroupNoteInfo info;
        info.setTitle(QStringLiteral("T\n午饭"));
        info.setDesc(QStringLiteral("D"));
        info.setExample(QStringLiteral("F"));
        info.setCreatorUserID(QStringLiteral("alice"));
        const V2VORMessagePtr message = customMessage(ZIQGroupNoteMessageBody::noteBody(info, 2));
        QCOMPARE(QJsonDocument::fromJson(message->customElem()->data),
            QJsonDocument::fromJson(R"({"businessID": "group_note", "title": "T\n午饭", "description": "D",
            "show_line_num": 2, "content": {"creator": "alice", "format": "F", "original_msg_id": "", "original_msg_seq": 0}})"));

        // The tips body copies the note message's body and points at the note's first message:
        // the copy's own origin when it was re-posted (a note's own message is driven end to end
        // by the provider's tests).
        message->setMsgID(QStringLiteral("copy"));
        message->setSeq(12);
        info.setOriginMsgID(QStringLiteral("first"));
        info.setOriginMsgSeq(3);
        const QByteArray tips = ZIQGroupNoteMessageBody::tipsBody(message, info);
        const QString tipsHead = QStringLiteral("T\n午饭|D|F|alice|2|first@3");
        QCOMPARE(headOf(tips), tipsHead);
        QCOMPARE(QJsonDocument::fromJson(tips)["businessID"], QStringLiteral("group_note_tips"));
        QCOMPARE(headOf(ZIQGroupNoteMessageBody::bodyWithShowLineNum(tips, 1)).replace("|1|", "|2|"), tipsHead);
    }

    void memberNames()
    {
        GroupFixture group;
        QVERIFY(group.isReady());
        group.addOutsider(QStringLiteral("dave"));
        group.server()->setNameCard(group.groupID(), QStringLiteral("alice"), QStringLiteral("Ali"));
        group.server()->setFriendRemark(QStringLiteral("carol"), QStringLiteral("alice"), QStringLiteral("Al"));
        group.server()->setFriendRemark(QStringLiteral("carol"), QStringLiteral("bob"), QStringLiteral("Bobby"));
        // Nobody is logged in on the process: the note asks its own context alone.
        const ZIQGroupNoteContext carol { group.client("carol"), "carol", "Carol" };
        auto info = ZIQGroupNoteInfo::initWithMessage(customMessage(R"({"content": {"creator": "carol"}})"), carol);
        QVERIFY(info->isCreatedByMyself());
        const auto store = extensions({ "alice_1_0", "bob_2_0", "carol_3_0", "dave_4_0", "alice_5_0" });
        QList<std::pair<int, QString>> calls;
        const auto record = [&calls](int code, const QString &desc) { calls.append({ code, desc }); };
        info->updateWithExtensionList(store, record);
        QVERIFY(info->isMyselfSubmitted());
        QTRY_COMPARE(calls.size(), 1);
        QCOMPARE(
            rows(info->items(), &ZIQGroupNoteItem::userName), (QStringList { "Ali", "Bobby", "Carol", "", "Ali" }));

        // A failing look-up leaves the names unset and still completes.
        group.server()->failNextCall(QStringLiteral("getGroupMembersInfo"), 10007, QStringLiteral("denied"));
        info->updateWithExtensionList(store, record);
        QTRY_COMPARE(calls.size(), 2);
        QCOMPARE(rows(info->items(), &ZIQGroupNoteItem::userName), QStringList(store.size()));

        // The look-up names the entries it was asked for, even when their note is gone.
        info->updateWithExtensionList(store, record);
        const ZIQGroupNoteItemPtr entry = info->items().first();
        info.reset();
        QTRY_COMPARE(calls.size(), 3);
        QCOMPARE(entry->userName(), QStringLiteral("Ali"));
        QCOMPARE(calls, (QList<std::pair<int, QString>>(3, { 0, QString() })));
    }
};

QTEST_GUILESS_MAIN(TestGroupNoteModel)
#include "tst_groupnotemodel.moc"
