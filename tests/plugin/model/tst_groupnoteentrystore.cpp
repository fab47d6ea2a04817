// Merging a note message's extensions into the note: settings, generations, deletions, order,
// numbering, and which keys are superseded.
#include "plugin/model/ZIQGroupNoteExtensionKey.h"
#include "plugin/model/ZIQGroupNoteInfo.h"

#include <QTest>

namespace {

V2VORMessageExtension ext(const QString &key, const QString &value = QStringLiteral("text"))
{
    return { key, value };
}

QList<V2VORMessageExtension> extensions(const QStringList &keys)
{
    QList<V2VORMessageExtension> list;
    for (const QString &key : keys)
        list.append(ext(key));
    return list;
}

QStringList contents(const QList<ZIQGroupNoteItemPtr> &items)
{
    QStringList result;
    for (const ZIQGroupNoteItemPtr &item : items)
        result.append(QStringLiteral("%1:%2").arg(item->index()).arg(item->content()));
    return result;
}

} // namespace

class TestGroupNoteEntryStore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void redundantKeys_data()
    {
        QTest::addColumn<QStringList>("keys");
        QTest::addColumn<QStringList>("redundant");
        QTest::newRow("older generation") << QStringList { "u_1_0", "u_1_1" } << QStringList { "u_1_0" };
        QTest::newRow("out of order") << QStringList { "u_1_2", "u_1_0", "v_1_0", "u_1_1" }
                                      << QStringList { "u_1_0", "u_1_1" };
        QTest::newRow("single generation") << QStringList { "u_1_5", "u_2_0" } << QStringList {};
        QTest::newRow("equal newest stay") << QStringList { "u_1_2", "u_1x2", "u_1_1" } << QStringList { "u_1_1" };
        // From generation 9 the next write is _10, read as 0, and the one after that __1.
        QTest::newRow("tenth generation") << QStringList { "u_1_9", "u_1_10", "u_1__1" } << QStringList { "u_1_10" };
        QTest::newRow("settings") << QStringList { "config", "conf_0", "conf_1" } << QStringList { "conf_0" };
        QTest::newRow("no underscore") << QStringList { "x1", "y2" } << QStringList {};
    }
    void redundantKeys()
    {
        QFETCH(QStringList, keys);
        ZIQGroupNoteInfo info;
        info.setExtensionList(extensions(keys));
        QTEST(info.redundantKeysInExtensionList(), "redundant");
    }

    void newestGenerationWins()
    {
        ZIQGroupNoteInfo info;
        info.mergeExtensionList({ ext("u1_1700000000000_0", "old"), ext("u1_1700000000000_1", "new") });
        QCOMPARE(contents(info.items()), QStringList { "1:new" });
        QCOMPARE(info.items().first()->keySeq(), 1);
        QCOMPARE(info.items().first()->key(), QStringLiteral("u1_1700000000000_1"));
    }

    void deletedEntriesAndParticipants()
    {
        const QString deleted = ZIQGroupNoteExtensionKey::deletedMarker;
        ZIQGroupNoteInfo info;
        const QStringList authors = info.mergeExtensionList({
            ext("a_b_30_0", "ab"),
            ext("u2_10_0", "gone"),
            ext("u2_10_1", deleted),
            ext("u1_20_0", "kept"),
            ext("u1_25_0", deleted),
        });
        QCOMPARE(contents(info.items()), (QStringList { "1:kept", "2:ab" }));
        QCOMPARE(authors, (QStringList { "a_b", "u1" }));
        QCOMPARE(info.paticipantCount(), 2u);
        QCOMPARE(info.items().last()->userID(), QStringLiteral("a_b"));
    }

    void sortsNumbersAndSharesEntries()
    {
        ZIQGroupNoteInfo info;
        info.setIsMyselfSubmitted(true);
        info.setIsMyselfCreated(true);
        info.setTitle(QStringLiteral("T"));
        info.mergeExtensionList({ ext("u_300_0", "c"), ext("u_100_2", "a"), ext("v_200_0", "b") });
        QCOMPARE(contents(info.items()), (QStringList { "1:a", "2:b", "3:c" }));
        QCOMPARE(info.lastIndex(), 3);
        QCOMPARE(info.previewItems(), info.items());
        info.items().append(std::make_shared<ZIQGroupNoteItem>());
        QCOMPARE(info.previewItems().size(), 3);
        // A refresh never takes back the user's flags nor the head.
        QVERIFY(info.isMyselfSubmitted());
        QVERIFY(info.isMyselfCreated());
        QCOMPARE(info.title(), QStringLiteral("T"));

        info.mergeExtensionList({});
        QVERIFY(info.items().isEmpty());
        QVERIFY(info.previewItems().isEmpty());
        QCOMPARE(info.paticipantCount(), 0u);
        QCOMPARE(info.lastIndex(), 3);
    }

    void settings_data()
    {
        QTest::addColumn<QString>("config");
        QTest::addColumn<bool>("multi");
        QTest::addColumn<bool>("notify");
        QTest::addColumn<double>("deadline");
        QTest::newRow("written") << R"({"multi_submit": false, "notify": true, "deadline": 1700000000999.9})" << false
                                 << true << 1700000000999.0;
        QTest::newRow("missing members") << R"({"notify": true})" << false << true << 0.0;
        QTest::newRow("negative deadline") << R"({"multi_submit": true, "deadline": -4})" << true << false << 0.0;
        QTest::newRow("not JSON") << "multi_submit=1" << false << false << 0.0;
    }
    void settings()
    {
        QFETCH(QString, config);
        ZIQGroupNoteInfo info;
        info.mergeExtensionList({ ext("config", config), ext("u_1_0") });
        QTEST(info.setting()->allowMultiSubmit(), "multi");
        QTEST(info.setting()->allowNotify(), "notify");
        QTEST(info.setting()->deadlineTimestampInMS(), "deadline");
        QCOMPARE(info.items().size(), 1);

        const ZIQGroupNoteSettingPtr kept = info.setting();
        info.mergeExtensionList({ ext("u_1_0") });
        QCOMPARE(info.setting(), kept);
    }

    void settingsRoundTrip()
    {
        const ZIQGroupNoteSetting written(false, true, 1700000123456.0);
        const ZIQGroupNoteSettingPtr read = ZIQGroupNoteSetting::settingWithConfigValue(written.configValue());
        QCOMPARE(read->allowMultiSubmit(), false);
        QCOMPARE(read->allowNotify(), true);
        QCOMPARE(read->deadlineTimestampInMS(), 1700000123456.0);
    }

    void oddKeys()
    {
        ZIQGroupNoteInfo info;
        const QString configJson = QStringLiteral(R"({"notify":true})");
        info.mergeExtensionList({ ext("conf_0", configJson), ext("stray", "x") });
        // The settings written on the sequence path show as an entry without author.
        QCOMPARE(contents(info.items()), QStringList { "1:" + configJson });
        QCOMPARE(info.items().first()->userID(), QString());
        QCOMPARE(info.paticipantCount(), 1u);
        QVERIFY(info.setting()->allowMultiSubmit());
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
        info = std::make_shared<ZIQGroupNoteInfo>();
        info->updateWithExtensionList({});
    }
};

QTEST_GUILESS_MAIN(TestGroupNoteEntryStore)
#include "tst_groupnoteentrystore.moc"
