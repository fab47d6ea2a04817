// Entry keys and the entry store: key formats, generations written on the sequence path,
// superseded keys, and merging a note message's extensions into the note.
#include "plugin/model/ZIQGroupNoteExtensionKey.h"
#include "plugin/model/ZIQGroupNoteInfo.h"

#include <QTest>

using Key = ZIQGroupNoteExtensionKey;

namespace {

V2VORMessageExtension ext(const QString &key, const QString &value = QStringLiteral("text"))
{
    return { key, value };
}

QStringList rows(const QList<ZIQGroupNoteItemPtr> &items)
{
    QStringList result;
    for (const ZIQGroupNoteItemPtr &item : items)
        result.append(QStringLiteral("%1 %2 %3").arg(item->index()).arg(item->userID(), item->content()));
    return result;
}

} // namespace

class TestGroupNoteEntryStore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void entryKey_data()
    {
        QTest::addColumn<QString>("userID");
        QTest::addColumn<double>("timestamp");
        QTest::addColumn<QString>("key");
        QTest::newRow("whole ms") << "alice" << 1700000000123.0 << "alice_1700000000123_2";
        QTest::newRow("fraction rounds") << "alice" << 1700000000123.7 << "alice_1700000000124_2";
        // "%.0f" rounds a tie to even; rounding half up would name another entry.
        QTest::newRow("tie to even") << "bob" << 1700000000122.5 << "bob_1700000000122_2";
        QTest::newRow("underscored user") << "a_b" << 5.0 << "a_b_5_2";
    }
    void entryKey()
    {
        QFETCH(QString, userID);
        QFETCH(double, timestamp);
        QFETCH(QString, key);
        ZIQGroupNoteItem item(userID, timestamp, 2, QStringLiteral("tea"));
        item.setKey(QStringLiteral("stored_but_ignored_9"));
        item.setIndex(4);
        QCOMPARE(item.key(), key);
        QCOMPARE(item.keyWithoutSeq(), key.chopped(2));

        const ZIQGroupNoteItemPtr copy = item.copy();
        item.setContent(QStringLiteral("coffee"));
        item.setKeySeq(3);
        QCOMPARE(copy->key(), key);
        QCOMPARE(copy->content(), QStringLiteral("tea"));
        QCOMPARE(copy->index(), 4);
    }

    void parseEntryKey_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("parts"); // "userID|time|generation", or "-" for no entry
        QTest::newRow("plain") << "alice_1700000000123_0"
                               << "alice|1700000000123|0";
        QTest::newRow("underscores in user") << "a_b_1700000000000_2"
                                             << "a_b|1700000000000|2";
        QTest::newRow("settings on sequence path") << "conf_0"
                                                   << "|0|0";
        QTest::newRow("non-numeric parts") << "u_abc_x"
                                           << "u|0|0";
        QTest::newRow("leading digits") << "u_12ab_3x"
                                        << "u|12|3";
        QTest::newRow("no underscore") << "alice"
                                       << "-";
    }
    void parseEntryKey()
    {
        QFETCH(QString, key);
        Key::EntryKeyParts p;
        const bool isEntry = Key::parseEntryKey(key, &p);
        QTEST(isEntry ? QStringLiteral("%1|%2|%3").arg(p.userID).arg(p.timestampInMS, 0, 'f', 0).arg(p.keySeq)
                      : QStringLiteral("-"),
            "parts");
    }

    void sequencePathKeys_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("next");
        QTest::addColumn<QString>("first");
        QTest::newRow("modified") << "u_1700_3"
                                  << "u_1700_4"
                                  << "u_1700_0";
        // One digit is read and two characters are cut, whatever the key holds.
        QTest::newRow("tenth generation") << "u_1700_10"
                                          << "u_1700__1"
                                          << "u_1700__0";
        QTest::newRow("settings key") << "config"
                                      << "conf_1"
                                      << "conf_0";
    }
    void sequencePathKeys()
    {
        QFETCH(QString, key);
        QTEST(Key::nextGenerationKey(key), "next");
        QTEST(Key::firstGenerationKey(key), "first");
    }

    void redundantKeys_data()
    {
        QTest::addColumn<QStringList>("keys");
        QTest::addColumn<QStringList>("redundant");
        QTest::newRow("older generation") << QStringList { "u_1_0", "u_1_1" } << QStringList { "u_1_0" };
        QTest::newRow("out of order") << QStringList { "u_1_2", "u_1_0", "v_1_0", "u_1_1" }
                                      << QStringList { "u_1_0", "u_1_1" };
        QTest::newRow("equal newest stay") << QStringList { "u_1_2", "u_1x2", "u_1_1" } << QStringList { "u_1_1" };
        // After generation 9 come _10, read as 0, and then __1.
        QTest::newRow("tenth generation") << QStringList { "u_1_9", "u_1_10", "u_1__1" } << QStringList { "u_1_10" };
        QTest::newRow("settings") << QStringList { "config", "conf_0", "conf_1" } << QStringList { "conf_0" };
        QTest::newRow("no underscore") << QStringList { "x1", "y2" } << QStringList {};
    }
    void redundantKeys()
    {
        QFETCH(QStringList, keys);
        QList<V2VORMessageExtension> list;
        for (const QString &key : keys)
            list.append(ext(key));
        ZIQGroupNoteInfo info;
        info.setExtensionList(list);
        QTEST(info.redundantKeysInExtensionList(), "redundant");
    }

    void merge()
    {
        ZIQGroupNoteInfo info;
        info.setIsMyselfSubmitted(true);
        info.setTitle(QStringLiteral("T"));
        const ZIQGroupNoteSettingPtr setting = info.setting();
        const QStringList authors = info.mergeExtensionList({
            ext("u1_300_0", "old"),
            ext("a_b_200_0", "ab"),
            ext("u2_100_0", "gone"),
            ext("u2_100_1", Key::deletedMarker),
            ext("u1_300_1", "new"),
            ext("stray", "x"),
            ext("conf_0", "{}"),
        });
        QCOMPARE(rows(info.items()), (QStringList { "1  {}", "2 a_b ab", "3 u1 new" }));
        QCOMPARE(authors, (QStringList { "a_b", "u1", "" }));
        QCOMPARE(info.paticipantCount(), 3u);
        QCOMPARE(info.lastIndex(), 3);
        QCOMPARE(info.previewItems(), info.items());
        QCOMPARE(info.setting(), setting);
        info.items().append(std::make_shared<ZIQGroupNoteItem>());
        QCOMPARE(info.previewItems().size(), 3);

        // An empty store keeps the last number, the user's flag, the head and the settings.
        info.mergeExtensionList({});
        QVERIFY(info.items().isEmpty() && info.previewItems().isEmpty());
        QCOMPARE(info.paticipantCount(), 0u);
        QCOMPARE(info.lastIndex(), 3);
        QVERIFY(info.isMyselfSubmitted());
        QCOMPARE(info.title(), QStringLiteral("T"));
        QCOMPARE(info.setting(), setting);
    }

    void settings_data()
    {
        QTest::addColumn<QString>("config");
        QTest::addColumn<QString>("setting"); // "multi notify deadline"
        QTest::newRow("written here") << ZIQGroupNoteSetting(false, true, 1700000123456.0).configValue()
                                      << "0 1 1700000123456";
        QTest::newRow("fractional deadline") << R"({"multi_submit": true, "deadline": 1700000000999.9})"
                                             << "1 0 1700000000999";
        QTest::newRow("negative deadline") << R"({"notify": true, "deadline": -4})"
                                           << "0 1 0";
        QTest::newRow("not JSON") << "multi_submit=1"
                                  << "0 0 0";
    }
    void settings()
    {
        QFETCH(QString, config);
        ZIQGroupNoteInfo info;
        info.mergeExtensionList({ ext("config", config), ext("u_1_0") });
        const ZIQGroupNoteSettingPtr s = info.setting();
        QTEST(QStringLiteral("%1 %2 %3")
                  .arg(s->allowMultiSubmit())
                  .arg(s->allowNotify())
                  .arg(s->deadlineTimestampInMS(), 0, 'f', 3)
                  .remove(QStringLiteral(".000")),
            "setting");
        QCOMPARE(info.items().size(), 1);
    }

    void completionAlwaysCalledLater()
    {
        auto info = std::make_shared<ZIQGroupNoteInfo>();
        QList<std::pair<int, QString>> calls;
        info->updateWithExtensionList({ ext("u_1_0") }, [&calls](int code, const QString &desc) {
            calls.append({ code, desc });
        });
        QVERIFY(calls.isEmpty());
        info.reset();
        QTRY_COMPARE(calls.size(), 1);
        QCOMPARE(calls.first(), std::make_pair(0, QString()));
    }
};

QTEST_GUILESS_MAIN(TestGroupNoteEntryStore)
#include "tst_groupnoteentrystore.moc"
