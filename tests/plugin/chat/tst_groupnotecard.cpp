// The note card in the chat: its size from the note alone against hand-added figures, the drawn
// card's parts against the same numbers, expanding, entries written on another member's device
// reaching a drawn card and its row, a cell reused across notes, corners and joining.
#include "CardTestSupport.h"

#include "kit/chat/ZIQBubbleView.h"
#include "kit/chat/ZIQReactionStrip.h"
#include "platform/CornerMask.h"
#include "platform/NotificationCenter.h"
#include "platform/Screen.h"
#include "platform/SystemFont.h"
#include "platform/TextMeasure.h"
#include "plugin/chat/ZIQGroupNotePreviewCell.h"
#include "plugin/editor/ZIQGroupNoteViewController.h"

#include <QLabel>
#include <QPushButton>

using Provider = ZIQGroupNoteDataProvider;

namespace {

QFont titleFont()
{
    return platform::SystemFont::bold(14);
}

/// One line of the bold title font, as the card measures lines (with the font's leading).
qreal titleLine()
{
    return platform::TextMeasure::size(QStringLiteral("Hg"), titleFont(), { 1000, platform::TextMeasure::Unbounded },
        platform::TextMeasure::UsesLineFragmentOrigin | platform::TextMeasure::UsesFontLeading)
        .height();
}

/// Latin words up to the last that still keeps one line within `width` points, plus `extraWords`.
QString wordsFilling(qreal width, int extraWords = 0)
{
    QString title = QStringLiteral("Lunch");
    for (int i = 0;; ++i) {
        const QString longer = title + QStringLiteral(" order");
        if (platform::TextMeasure::singleLineSize(longer, titleFont()).width() > width) {
            for (int extra = 0; extra < extraWords; ++extra)
                title += QStringLiteral(" order");
            return title;
        }
        title = longer;
    }
}

ZIQGroupNoteInfoPtr noteTitled(const QString &title)
{
    auto info = std::make_shared<ZIQGroupNoteInfo>();
    info->setTitle(title);
    return info;
}

/// Alice posts a note titled `title` with the lines "line 1" to "line <count>"; its ID.
QString postNote(Scene &scene, const QString &title, int count)
{
    const auto provider = scene.open("alice");
    provider->editTitle(title);
    for (int i = 1; i <= count; ++i)
        addLine(*provider, QStringLiteral("line %1").arg(i));
    return scene.submit(*provider, true)->code == 0 ? provider->message()->msgID() : QString();
}

QRect rectIn(QWidget *widget, QWidget *ancestor)
{
    return QRect(widget->mapTo(ancestor, QPoint(0, 0)), widget->size());
}

ZIQGroupNotePreviewCell *rowOf(ZIQGroupNotePreviewViewController *card, int row)
{
    return qobject_cast<ZIQGroupNotePreviewCell *>(card->itemsTableView()->cellForRow({ 0, row }));
}

/// The text of a row as drawn; empty while the row is not drawn.
QString rowText(ZIQGroupNotePreviewViewController *card, int row)
{
    const ZIQGroupNotePreviewCell *cell = rowOf(card, row);
    return cell ? cell->contentLabel()->text() : QString();
}

int ceilOf(qreal value)
{
    return int(std::ceil(value));
}

} // namespace

class GroupNoteCardTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { registerNoteRow(); }

    void sizeFromTheNoteAlone_data()
    {
        QTest::addColumn<QSizeF>("screen");
        QTest::addColumn<QString>("title");
        QTest::addColumn<qint64>("count");
        QTest::addColumn<int>("titleLines");
        QTest::addColumn<qreal>("width");
        QTest::addColumn<float>("rest"); // what the card adds to its title lines

        const platform::ScreenScope phone({ 375, 812 });
        // The title wraps at 70% of the screen less 48 points: 214.5 on this phone.
        const QString oneLine = wordsFilling(214.5);
        const QString twoLines = wordsFilling(214.5, 1);
        QVERIFY(platform::TextMeasure::singleLineSize(twoLines, titleFont()).width() < 262.5);

        QTest::newRow("no title, collapsed") << QSizeF(375, 812) << QString() << qint64(2) << 0 << 262.5 << 213.f;
        QTest::newRow("no title, no entries") << QSizeF(375, 667) << QString() << qint64(0) << 0 << 262.5 << 137.f;
        QTest::newRow("one line, collapsed") << QSizeF(375, 812) << oneLine << qint64(2) << 1 << 262.5 << 213.f;
        QTest::newRow("one line, one entry") << QSizeF(375, 812) << oneLine << qint64(1) << 1 << 262.5 << 175.f;
        QTest::newRow("one line, expanded to 5") << QSizeF(375, 812) << oneLine << qint64(5) << 1 << 262.5 << 327.f;
        QTest::newRow("two lines, collapsed") << QSizeF(375, 812) << twoLines << qint64(2) << 2 << 262.5 << 213.f;
        QTest::newRow("no screen") << QSizeF() << QString() << qint64(2) << 0 << 0.0 << 213.f;
    }

    void sizeFromTheNoteAlone()
    {
        QFETCH(QSizeF, screen);
        QFETCH(QString, title);
        QFETCH(qint64, count);
        QFETCH(int, titleLines);
        QFETCH(qreal, width);
        QFETCH(float, rest);
        const platform::ScreenScope scope(screen);
        const ZIQGroupNoteInfoPtr info = noteTitled(title);

        const float lines = float(titleLines * titleLine());
        QCOMPARE(Provider::calcTitleSize(info).height(), qreal(lines));
        QCOMPARE(Provider::calcHeaderViewSize(info), QSizeF(width, double(lines + 77.f)));
        QCOMPARE(Provider::calcTableViewHeight(count), float(38 * count));
        QCOMPARE(Provider::calcSizeOfInfo(info, count), QSizeF(width, double(lines + rest)));
    }

    void drawnCardMatchesTheNumbers_data()
    {
        QTest::addColumn<int>("entries");
        QTest::addColumn<bool>("expand");
        QTest::addColumn<int>("rows");
        QTest::newRow("one entry") << 1 << false << 1;
        QTest::newRow("five, collapsed") << 5 << false << 2;
        QTest::newRow("five, expanded") << 5 << true << 5;
    }

    void drawnCardMatchesTheNumbers()
    {
        QFETCH(int, entries);
        QFETCH(bool, expand);
        QFETCH(int, rows);
        const platform::ScreenScope phone({ 375, 812 });
        Scene scene;
        const QString msgID = postNote(scene, wordsFilling(214.5, 1), entries);
        NoteChat chat(scene, "alice");
        ZIQGroupNoteContainerCell *cell = chat.noteCell(msgID);
        QVERIFY(cell);
        ZIQGroupNotePreviewViewController *card = cell->vc();
        QTRY_COMPARE(shownRows(card), std::min(entries, 2));
        if (expand)
            QTest::mouseClick(rowOf(card, 0), Qt::LeftButton);
        QTRY_COMPARE(shownRows(card), rows);
        // A refilled cell's card draws its rows once its own fetch has answered.
        QTRY_COMPARE(card->itemsTableView()->height(), 38 * rows);
        cell = chat.noteCell(msgID);
        QCOMPARE(cell->vc(), card);

        const QSizeF measured = Provider::calcSizeOfInfo(card->dataProvider()->info(), rows);
        QWidget *root = card->view();
        const int header = ceilOf(Provider::calcHeaderViewSize(card->dataProvider()->info()).height());
        const QSizeF title = Provider::calcTitleSize(card->dataProvider()->info());
        QCOMPARE(root->geometry(), QRect(0, 0, 263, ceilOf(measured.height())));
        QCOMPARE(cell->container()->size(), root->size());
        QCOMPARE(chat.list()->contentSize(chat.rowOf(msgID)), measured);
        QCOMPARE(card->headerView()->geometry(), QRect(0, 0, 263, header));
        QCOMPARE(card->iconView()->geometry(), QRect(12, 12, 16, 16));
        const QRect note = card->noteLabel()->geometry();
        QCOMPARE(note.left(), 39);
        QCOMPARE(note.width(), 263 - 12 - 39);
        QVERIFY(qAbs(QRectF(note).center().y() - 20) <= 0.5);
        const QRect titleRect = card->titleLabel()->geometry();
        QCOMPARE(titleRect, QRect(39, note.bottom() + 1 + 5, ceilOf(title.width()), ceilOf(title.height())));
        QCOMPARE(card->infoLabel()->geometry(), QRect(39, titleRect.bottom() + 1 + 5, 212, 21));
        QCOMPARE(card->itemsTableView()->geometry(), QRect(0, header, 263, 38 * rows));
        for (int row = 0; row < rows; ++row)
            QCOMPARE(rectIn(rowOf(card, row), card->itemsTableView()), QRect(0, 38 * row, 263, 38));
        QCOMPARE(card->joinButton()->geometry(), QRect(65, header + 38 * rows + 12, 133, 36));
        QCOMPARE(card->joinButton()->geometry().bottom() + 1 + 12, root->height());
        QVERIFY(card->infoLabel()->text().contains(QStringLiteral("Alice")));
        // Drawn inside the chat's table, the header and the body keep their own colours.
        const QImage drawn = root->grab().toImage();
        QCOMPARE(drawn.pixelColor(250, 5), QColor("#F2F7FF"));
        QCOMPARE(drawn.pixelColor(20, root->height() - 24), QColor("#F9F9F9"));
    }

    void expandingFiveEntries()
    {
        const platform::ScreenScope phone({ 375, 812 });
        Scene scene;
        const QString msgID = postNote(scene, QStringLiteral("Lunch"), 5);
        NoteChat chat(scene, "alice");
        QVERIFY(chat.noteCell(msgID));
        ZIQGroupNotePreviewViewController *card = chat.noteCell(msgID)->vc();
        QTRY_COMPARE(shownRows(card), 2);

        ZIQGroupNotePreviewCell *expandRow = rowOf(card, 0);
        QVERIFY(expandRow);
        QVERIFY(expandRow->isExpandCell());
        QVERIFY(expandRow->indexLabel()->isHidden());
        QCOMPARE(expandRow->contentLabel()->text(), QStringLiteral("Show all"));
        QCOMPARE(rowOf(card, 1)->indexLabel()->text(), QStringLiteral("5"));
        QCOMPARE(rowText(card, 1), QStringLiteral("line 5"));
        // Any other row does nothing when tapped.
        SizeChanges changes;
        QTest::mouseClick(rowOf(card, 1), Qt::LeftButton);
        QCOMPARE(shownRows(card), 2);

        QTest::mouseClick(expandRow, Qt::LeftButton);
        QTRY_COMPARE(shownRows(card), 5);
        QCOMPARE(changes.msgIDs, QStringList { msgID });
        const auto data = chat.noteCell(msgID)->customData();
        QVERIFY(data->isExpandAll());
        QCOMPARE(data->allItemsCount(), 5);
        QCOMPARE(chat.list()->contentSize(chat.rowOf(msgID)).height(),
            Provider::calcSizeOfInfo(card->dataProvider()->info(), 5).height());
        for (int row = 0; row < 5; ++row)
            QTRY_COMPARE(rowText(card, row), QStringLiteral("line %1").arg(row + 1));
    }

    void anotherMembersEntriesReachTheCard_data()
    {
        QTest::addColumn<int>("entries");
        QTest::addColumn<bool>("expand");
        QTest::addColumn<int>("rowsAfter");
        // Collapsed, the card follows the note's "show_line_num", which Bob's line raises to 2.
        QTest::newRow("collapsed") << 1 << false << 2;
        // Expanded, it grows to every entry.
        QTest::newRow("expanded") << 3 << true << 4;
    }

    void anotherMembersEntriesReachTheCard()
    {
        QFETCH(int, entries);
        QFETCH(bool, expand);
        QFETCH(int, rowsAfter);
        const platform::ScreenScope phone({ 375, 812 });
        Scene scene;
        const QString msgID = postNote(scene, QStringLiteral("Lunch"), entries);
        NoteChat chat(scene, "alice");
        ZIQGroupNotePreviewViewController *card = chat.noteCell(msgID)->vc();
        QTRY_COMPARE(shownRows(card), std::min(entries, 2));
        if (expand) {
            QTest::mouseClick(rowOf(card, 0), Qt::LeftButton);
            QTRY_COMPARE(shownRows(card), entries);
        }

        SizeChanges changes;
        QVERIFY(scene.join("bob", msgID, QStringLiteral("Bob: soup")));
        scene.group.actAs("alice");
        // Bob's editor tells the note's screens on his device; the chat's card hears it here.
        platform::NotificationCenter::defaultCenter().post("groupNoteUpdated", { { "msgID", msgID } });
        QTRY_COMPARE(shownRows(card), rowsAfter);
        // An expanded card asks for the new height itself; a collapsed one is re-measured by the
        // chat when the note message's "show_line_num" is modified.
        if (expand)
            QTRY_VERIFY(changes.msgIDs.contains(msgID));
        QTRY_COMPARE(rowText(card, rowsAfter - 1), QStringLiteral("Bob: soup"));
        QTRY_VERIFY(card->infoLabel()->text().contains(QStringLiteral("2")));
        // The chat measured the row again, and the card fills it.
        const auto data = chat.noteCell(msgID)->customData();
        QCOMPARE(data->isExpandAll(), expand);
        if (expand)
            QCOMPARE(data->allItemsCount(), rowsAfter);
        const qreal height = Provider::calcSizeOfInfo(card->dataProvider()->info(), rowsAfter).height();
        QTRY_COMPARE(chat.list()->contentSize(chat.rowOf(msgID)).height(), height);
        QTRY_COMPARE(card->view()->height(), ceilOf(height));
    }

    void reusedCellKeepsEachNotesState()
    {
        const platform::ScreenScope phone({ 375, 812 });
        Scene scene;
        const QString first = postNote(scene, QStringLiteral("First"), 3);
        const QString second = postNote(scene, QStringLiteral("Second"), 4);
        scene.group.actAs("alice");
        const auto dataOf = [&](const QString &msgID) {
            auto data = std::static_pointer_cast<ZIQGroupNoteContainerCellData>(
                ZIQChatClassRegistry::instance().cellDataForMessage(scene.find("alice", msgID)));
            ZIQGroupNoteContainerCell::getContentSize(data.get());
            return data;
        };
        const auto firstData = dataOf(first);
        const auto secondData = dataOf(second);
        ZIQGroupNoteContainerCell cell;
        ZIQGroupNotePreviewViewController *card = cell.vc();

        cell.fillWithData(firstData);
        QTRY_COMPARE(shownRows(card), 2);
        QTest::mouseClick(rowOf(card, 0), Qt::LeftButton);
        QTRY_COMPARE(shownRows(card), 3);

        // The first note's fetch is still under way when the cell turns to the second.
        cell.fillWithData(firstData);
        cell.fillWithData(secondData);
        QCOMPARE(cell.vc(), card);
        QTRY_COMPARE(card->titleLabel()->text(), QStringLiteral("Second"));
        QTRY_COMPARE(rowText(card, 1), QStringLiteral("line 4"));
        QTest::qWait(50);
        QCOMPARE(card->titleLabel()->text(), QStringLiteral("Second"));
        QCOMPARE(shownRows(card), 2);

        cell.fillWithData(firstData);
        QTRY_COMPARE(shownRows(card), 3);
        QVERIFY(firstData->isExpandAll());
        QVERIFY(!secondData->isExpandAll());
    }

    void cornersAndReactionStrip_data()
    {
        QTest::addColumn<QString>("viewer");
        QTest::addColumn<bool>("reacted");
        QTest::addColumn<int>("squareCorner");
        const int all = int(platform::Corner::All);
        QTest::newRow("creator's own") << "alice" << false << int(platform::Corner::TopRight);
        QTest::newRow("another member's") << "bob" << false << int(platform::Corner::TopLeft);
        QTest::newRow("under a reaction strip") << "bob" << true << all;
    }

    void cornersAndReactionStrip()
    {
        QFETCH(QString, viewer);
        QFETCH(bool, reacted);
        QFETCH(int, squareCorner);
        const platform::ScreenScope phone({ 375, 812 });
        Scene scene;
        const QString msgID = postNote(scene, QStringLiteral("Lunch"), 1);
        NoteChat chat(scene, viewer);
        ZIQGroupNoteContainerCell *cell = chat.noteCell(msgID);
        QTRY_COMPARE(shownRows(cell->vc()), 1);
        if (reacted) {
            bool done = false;
            chat.list()->setReaction(msgID, QStringLiteral("👍"), [&] { done = true; }, [](int, const QString &) { });
            QTRY_VERIFY(done);
            QTRY_VERIFY(!chat.noteCell(msgID)->reactionStrip()->isHidden());
            cell = chat.noteCell(msgID);
        }
        QWidget *root = cell->customView();
        const platform::CornerMask *mask = platform::CornerMask::of(root);
        const platform::Corners square = mask ? platform::Corners(platform::Corner::All) & ~mask->corners()
                                              : platform::Corners(platform::Corner::All);
        QCOMPARE(int(square), squareCorner);
        QCOMPARE(cell->vc()->disCorner(), reacted);
        QCOMPARE(cell->bubbleView()->isHidden(), reacted);
        if (reacted) {
            QCOMPARE(cell->reactionStrip()->palette().color(QPalette::Window), QColor("#F9F9F9"));
            QVERIFY(cell->reactionStrip()->autoFillBackground());
        }
    }

    void joinOpensTheEditorOverTheNote()
    {
        const platform::ScreenScope phone({ 375, 812 });
        Scene scene;
        postNote(scene, QStringLiteral("Older"), 1);
        const QString msgID = postNote(scene, QStringLiteral("Lunch"), 1);
        NoteChat chat(scene, "bob");
        ZIQGroupNotePreviewViewController *card = chat.noteCell(msgID)->vc();
        QTRY_COMPARE(shownRows(card), 1);
        QTest::mouseClick(card->joinButton(), Qt::LeftButton);
        auto *editor = qobject_cast<ZIQGroupNoteViewController *>(chat.navigation->topViewController());
        QVERIFY(editor);
        QCOMPARE(editor->dataProvider()->message()->msgID(), msgID);
        QCOMPARE(editor->groupID(), scene.group.groupID());
        QVERIFY(!editor->isCreateNew());
    }

    void entryRows_data()
    {
        QTest::addColumn<qint64>("index");
        QTest::addColumn<QString>("content");
        QTest::addColumn<QString>("indexText");
        QTest::addColumn<QString>("contentText");
        QTest::addColumn<QColor>("ink");
        QTest::newRow("entry") << qint64(12) << "Bob: soup" << "12" << "Bob: soup" << QColor("#666666");
        QTest::newRow("no index") << qint64(-1) << "Bob: soup" << "" << "Bob: soup" << QColor("#666666");
        QTest::newRow("empty entry") << qint64(3) << "" << "" << "" << QColor("#666666");
        QTest::newRow("expand row") << qint64(-1) << "Show all" << "" << "Show all" << QColor("#147AFF");
    }

    void entryRows()
    {
        QFETCH(qint64, index);
        QFETCH(QString, content);
        QFETCH(QString, indexText);
        QFETCH(QString, contentText);
        QFETCH(QColor, ink);
        auto item = std::make_shared<ZIQGroupNoteItem>(QStringLiteral("bob"), 1.0, 0, content);
        item->setIndex(index);
        ZIQGroupNotePreviewCell row;
        row.resize(263, 38);
        row.show();
        row.fillWithData(std::make_shared<ZIQGroupNotePreviewCellData>(item));
        QCOMPARE(row.indexLabel()->text(), indexText);
        QCOMPARE(row.contentLabel()->text(), contentText);
        QCOMPARE(row.contentLabel()->palette().color(row.contentLabel()->foregroundRole()), ink);
        const int contentLeft = row.isExpandCell() ? 18 : row.indexLabel()->geometry().right() + 1 + 11;
        QCOMPARE(row.contentLabel()->geometry(), QRect(contentLeft, 12, 263 - 12 - contentLeft, 21));
        QCOMPARE(row.bottomLine()->geometry(), QRect(12, 37, 263 - 24, 1));
        int taps = 0;
        row.setPluginMsgSelectCallback([&] { ++taps; });
        Q_EMIT row.tapped();
        QCOMPARE(taps, 1);
    }
};

QTEST_MAIN(GroupNoteCardTest)
#include "tst_groupnotecard.moc"
