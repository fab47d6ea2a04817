// Entry keys: formatting, parsing back, and the generation arithmetic of the sequence path.
#include "plugin/model/ZIQGroupNoteExtensionKey.h"
#include "plugin/model/ZIQGroupNoteItem.h"

#include <QTest>

using Key = ZIQGroupNoteExtensionKey;

class TestGroupNoteKeys : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void entryKey_data()
    {
        QTest::addColumn<QString>("userID");
        QTest::addColumn<double>("timestamp");
        QTest::addColumn<qint64>("keySeq");
        QTest::addColumn<QString>("key");
        QTest::newRow("whole ms") << "alice" << 1700000000123.0 << qint64(0) << "alice_1700000000123_0";
        QTest::newRow("fraction rounds") << "alice" << 1700000000123.7 << qint64(2) << "alice_1700000000124_2";
        // "%.0f" rounds a tie to even; a hand-made round-half-up would give ..123.
        QTest::newRow("tie to even") << "bob" << 1700000000122.5 << qint64(1) << "bob_1700000000122_1";
        QTest::newRow("underscored user") << "a_b" << 5.0 << qint64(12) << "a_b_5_12";
    }
    void entryKey()
    {
        QFETCH(QString, userID);
        QFETCH(double, timestamp);
        QFETCH(qint64, keySeq);
        QFETCH(QString, key);
        ZIQGroupNoteItem item(userID, timestamp, keySeq, QStringLiteral("text"));
        item.setKey(QStringLiteral("stored_but_ignored_9"));
        item.setKeyWithoutSeq(QStringLiteral("ignored_too"));
        QCOMPARE(item.key(), key);
        QCOMPARE(item.keyWithoutSeq(), key.left(key.lastIndexOf(QLatin1Char('_'))));
    }

    void parseEntryKey_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<bool>("isEntry");
        QTest::addColumn<QString>("userID");
        QTest::addColumn<double>("timestamp");
        QTest::addColumn<qint64>("keySeq");
        QTest::newRow("plain") << "alice_1700000000123_0" << true << "alice" << 1700000000123.0 << qint64(0);
        QTest::newRow("underscores in user") << "a_b_1700000000000_2" << true << "a_b" << 1700000000000.0 << qint64(2);
        QTest::newRow("settings on sequence path") << "conf_0" << true << "" << 0.0 << qint64(0);
        QTest::newRow("non-numeric parts") << "u_abc_x" << true << "u" << 0.0 << qint64(0);
        QTest::newRow("leading digits") << "u_12ab_3x" << true << "u" << 12.0 << qint64(3);
        QTest::newRow("empty user") << "_5_1" << true << "" << 5.0 << qint64(1);
        QTest::newRow("no underscore") << "alice" << false << "" << 0.0 << qint64(0);
        QTest::newRow("empty") << "" << false << "" << 0.0 << qint64(0);
    }
    void parseEntryKey()
    {
        QFETCH(QString, key);
        QFETCH(bool, isEntry);
        Key::EntryKeyParts parts;
        QCOMPARE(Key::parseEntryKey(key, &parts), isEntry);
        QTEST(parts.userID, "userID");
        QTEST(parts.timestampInMS, "timestamp");
        QTEST(parts.keySeq, "keySeq");
    }

    void generations_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<qint64>("generation");
        QTest::addColumn<QString>("next");
        QTest::addColumn<QString>("first");
        QTest::newRow("modified") << "u_1700_3" << qint64(3) << "u_1700_4"
                                  << "u_1700_0";
        // Only one digit is read and two characters are cut, whatever the key holds.
        QTest::newRow("tenth generation") << "u_1700_10" << qint64(0) << "u_1700__1"
                                          << "u_1700__0";
        QTest::newRow("settings key") << "config" << qint64(0) << "conf_1"
                                      << "conf_0";
        QTest::newRow("one character") << "7" << qint64(7) << "_8"
                                       << "_0";
    }
    void generations()
    {
        QFETCH(QString, key);
        QTEST(Key::generationOf(key), "generation");
        QTEST(Key::nextGenerationKey(key), "next");
        QTEST(Key::firstGenerationKey(key), "first");
    }

    void copyIsIndependent()
    {
        ZIQGroupNoteItem item(QStringLiteral("alice"), 1700000000123.0, 2, QStringLiteral("tea"));
        item.setUserName(QStringLiteral("Alice"));
        item.setIndex(4);
        const ZIQGroupNoteItemPtr copy = item.copy();
        item.setContent(QStringLiteral("coffee"));
        item.setKeySeq(3);
        QCOMPARE(copy->content(), QStringLiteral("tea"));
        QCOMPARE(copy->key(), QStringLiteral("alice_1700000000123_2"));
        QCOMPARE(copy->userName(), QStringLiteral("Alice"));
        QCOMPARE(copy->index(), 4);
        QCOMPARE(copy->keyWithoutSeq(), item.keyWithoutSeq());
    }
};

QTEST_GUILESS_MAIN(TestGroupNoteKeys)
#include "tst_groupnotekeys.moc"
