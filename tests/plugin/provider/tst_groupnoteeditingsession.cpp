// The editing session: edits of a note in memory, the editor and card rows, and what change
// detection finds against the entries as last fetched.
#include "ProviderTestSupport.h"

#include "kit/common/ZIQGlobalization.h"
#include "plugin/model/ZIQGroupNoteExtensionKey.h"

class TestGroupNoteEditingSession : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newNoteBelongsToTheCurrentUser()
    {
        GroupFixture group;
        group.actAs(QStringLiteral("alice"));
        platform::ManualClock clock(1700000000000.0);
        ZIQGroupNoteDataProvider provider;
        QCOMPARE(provider.info()->creatorUserID(), QStringLiteral("alice"));
        QVERIFY(provider.info()->items().isEmpty());
        QVERIFY(provider.isOriginMessage());

        provider.switchMultiSubmit(false);
        QVERIFY(provider.info()->canSubmit());
        provider.addNewItem();
        QCOMPARE(provider.info()->items().size(), 1);
        const ZIQGroupNoteItemPtr first = provider.info()->items().first();
        QCOMPARE(first->content(), QStringLiteral("Alice "));
        QCOMPARE(first->index(), 1);
        QCOMPARE(first->key(), QStringLiteral("alice_1700000000000_0"));
        QCOMPARE(provider.dataList().size(), 1);
        QCOMPARE(provider.dataList().first()->item(), first);
        // With single submission one added line is all a member may add.
        QVERIFY(!provider.info()->canSubmit());

        // A repeated line copies the text; added in the same millisecond it still gets a key of its own.
        first->setContent(QStringLiteral("Alice: noodles"));
        provider.repeatItem(first);
        const ZIQGroupNoteItemPtr second = provider.info()->items().last();
        QCOMPARE(second->content(), QStringLiteral("Alice: noodles"));
        QCOMPARE(second->index(), 2);
        QVERIFY(second->keyWithoutSeq() != first->keyWithoutSeq());
    }

    void onlyRealSettingChangesCount_data()
    {
        QTest::addColumn<int>("which");
        QTest::addColumn<bool>("changed");
        QTest::newRow("multi submit unchanged") << 0 << false;
        QTest::newRow("multi submit off") << 1 << true;
        QTest::newRow("notify unchanged") << 2 << false;
        QTest::newRow("notify off") << 3 << true;
        QTest::newRow("no deadline again") << 4 << false;
        QTest::newRow("deadline set") << 5 << true;
    }
    void onlyRealSettingChangesCount()
    {
        QFETCH(int, which);
        QFETCH(bool, changed);
        ZIQGroupNoteDataProvider provider;
        const bool value = which % 2 == 0;
        if (which < 2)
            provider.switchMultiSubmit(value);
        else if (which < 4)
            provider.switchNotify(value);
        else
            provider.setDeadline(value ? 0 : 1800000000000.0);
        QCOMPARE(provider.isConfigChanged(), changed);
    }

    void previewRows_data()
    {
        QTest::addColumn<int>("entries");
        QTest::addColumn<bool>("expanded");
        QTest::addColumn<QStringList>("rows");
        QTest::newRow("none") << 0 << false << QStringList();
        QTest::newRow("two collapsed") << 2 << false << QStringList { "e1", "e2" };
        QTest::newRow("three collapsed") << 3 << false << QStringList { "expand", "e3" };
        QTest::newRow("three expanded") << 3 << true << QStringList { "e1", "e2", "e3" };
    }
    void previewRows()
    {
        QFETCH(int, entries);
        QFETCH(bool, expanded);
        QFETCH(QStringList, rows);
        ZIQGroupNoteDataProvider provider;
        for (int i = 1; i <= entries; ++i)
            provider.info()->previewItems().append(std::make_shared<ZIQGroupNoteItem>(
                QStringLiteral("bob"), 1700000000000.0 + i, 0, QStringLiteral("e%1").arg(i)));
        provider.setIsExpandAll(expanded);
        provider.restorePreviewDataList();

        QStringList shown;
        for (const ZIQGroupNotePreviewCellDataPtr &row : provider.previewDataList())
            shown.append(row->isExpandRow() ? QStringLiteral("expand") : row->item()->content());
        QCOMPARE(shown, rows);
        if (!rows.isEmpty() && rows.first() == QLatin1String("expand"))
            QCOMPARE(provider.previewDataList().first()->item()->content(),
                ZIQGlobalization::getLocalizedStringForKey(QStringLiteral("ZIQGroupNoteExpand")));
    }

    void changesAgainstTheSnapshot()
    {
        GroupFixture group;
        platform::ManualClock clock;
        ChatServiceDouble chat(group.groupID());
        const QString msgID = postNote(group, clock, QStringLiteral("alice"), { "a1", "a2", "a3" });
        QVERIFY(!msgID.isEmpty());

        group.actAs(QStringLiteral("alice"));
        ZIQGroupNoteDataProvider provider(localCopy(group.client(QStringLiteral("alice")), msgID));
        QCOMPARE(fetch(provider), 0);
        QCOMPARE(provider.cachedLastItems().size(), 3);
        const QList<ZIQGroupNoteItemPtr> items = provider.info()->items();
        // Rows edit the shared entries; the snapshot keeps copies of its own.
        provider.dataList().at(0)->item()->setContent(QStringLiteral("a1 changed"));
        provider.dataList().at(1)->item()->setContent(QString());
        QCOMPARE(provider.cachedLastItems().at(0)->content(), QStringLiteral("a1"));
        addLine(provider, QStringLiteral("a4"));
        addLine(provider, QString()); // added and emptied again: no change at all

        provider.parseChangedOperationsByComparison();
        QCOMPARE(provider.modifiedItems(), QList<ZIQGroupNoteItemPtr> { items.at(0) });
        QCOMPARE(provider.deletedItems(), QList<ZIQGroupNoteItemPtr> { items.at(1) });
        QCOMPARE(items.at(1)->content(), ZIQGroupNoteExtensionKey::deletedMarker);
        QCOMPARE(provider.addedItems().size(), 1);
        QCOMPARE(provider.addedItems().first()->content(), QStringLiteral("a4"));
        QCOMPARE(provider.localShowLineNum(), 3);
        // A second detection in the same session counts on from the first; the emptied line now
        // holds the marker, so it counts as modified this time.
        provider.parseChangedOperationsByComparison();
        QCOMPARE(provider.localShowLineNum(), 3 + 3 + 2 - 1);
        QCOMPARE(provider.modifiedItems().size(), 3);
    }
};

QTEST_MAIN(TestGroupNoteEditingSession)
#include "tst_groupnoteeditingsession.moc"
