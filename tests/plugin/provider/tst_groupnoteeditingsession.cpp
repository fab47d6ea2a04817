// The editing session: edits of a note in memory, the editor and card rows, and what change
// detection finds against the entries as last fetched.
#include "ProviderTestSupport.h"

#include "plugin/model/ZIQGroupNoteExtensionKey.h"

class TestGroupNoteEditingSession : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newNoteOfTheCurrentUser()
    {
        GroupFixture group;
        group.actAs(QStringLiteral("alice"));
        platform::ManualClock clock(1700000000000.0);
        ZIQGroupNoteDataProvider provider;
        QCOMPARE(provider.info()->creatorUserID(), QStringLiteral("alice"));
        provider.switchMultiSubmit(false);
        const ZIQGroupNoteItemPtr first = addLine(provider, QStringLiteral("Alice: noodles"));
        QCOMPARE(first->key(), QStringLiteral("alice_1700000000000_0"));
        QCOMPARE(provider.dataList().constLast()->item(), first);
        QVERIFY(!provider.info()->canSubmit()); // single submission: one added line is all

        // A new line starts with the author's name; one added within the same millisecond
        // still gets a key of its own.
        provider.addNewItem();
        const ZIQGroupNoteItemPtr second = provider.info()->items().constLast();
        QCOMPARE(second->content(), QStringLiteral("Alice "));
        QCOMPARE(second->index(), 2);
        QVERIFY(second->keyWithoutSeq() != first->keyWithoutSeq());
        provider.repeatItem(first);
        QCOMPARE(provider.info()->items().constLast()->content(), QStringLiteral("Alice: noodles"));
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
        for (const QString &line : lines(entries, QStringLiteral("e")))
            provider.info()->previewItems().append(std::make_shared<ZIQGroupNoteItem>("bob", 1.7e12, 0, line));
        provider.setIsExpandAll(expanded);
        provider.restorePreviewDataList();
        QStringList shown;
        for (const ZIQGroupNotePreviewCellDataPtr &row : provider.previewDataList())
            shown.append(row->isExpandRow() ? QStringLiteral("expand") : row->item()->content());
        QCOMPARE(shown, rows);
    }

    void changesAgainstTheSnapshot()
    {
        GroupFixture group;
        platform::ManualClock clock;
        ChatServiceDouble chat(group.groupID());
        const QString msgID = postNote(group, clock, QStringLiteral("alice"), { "a1", "a2", "a3" });
        ZIQGroupNoteDataProvider provider(localCopy(group.client(QStringLiteral("alice")), msgID));
        QCOMPARE(fetch(provider), 0);
        const QList<ZIQGroupNoteItemPtr> items = provider.info()->items();
        // Rows edit the shared entries; the snapshot keeps copies of its own.
        provider.dataList().at(0)->item()->setContent(QStringLiteral("a1 changed"));
        provider.dataList().at(1)->item()->setContent(QString());
        QCOMPARE(provider.cachedLastItems().at(0)->content(), QStringLiteral("a1"));
        const ZIQGroupNoteItemPtr added = addLine(provider, QStringLiteral("a4"));
        addLine(provider, QString()); // added and emptied again: no change at all

        provider.parseChangedOperationsByComparison();
        QCOMPARE(provider.addedItems(), QList<ZIQGroupNoteItemPtr> { added });
        QCOMPARE(provider.modifiedItems(), QList<ZIQGroupNoteItemPtr> { items.at(0) });
        QCOMPARE(provider.deletedItems(), QList<ZIQGroupNoteItemPtr> { items.at(1) });
        QCOMPARE(items.at(1)->content(), ZIQGroupNoteExtensionKey::deletedMarker);
        QCOMPARE(provider.localShowLineNum(), 3);
        // A second detection counts on from the first; the emptied line, now holding the marker,
        // counts as modified this time.
        provider.parseChangedOperationsByComparison();
        QCOMPARE(provider.localShowLineNum(), 3 + 3 + 2 - 1);
    }
};

QTEST_MAIN(TestGroupNoteEditingSession)
#include "tst_groupnoteeditingsession.moc"
