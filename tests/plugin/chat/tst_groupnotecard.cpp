// The note card in the chat: its size from the note alone against hand-added figures, the drawn
// card against the same numbers, expanding, entries written on another member's device reaching
// a drawn card and its row, a cell reused across notes, corners and joining.
#include "../provider/ProviderTestSupport.h"

#include "kit/chat/ZIQBaseChatViewController.h"
#include "kit/chat/ZIQBubbleView.h"
#include "kit/chat/ZIQChatClassRegistry.h"
#include "kit/chat/ZIQChatMessageList.h"
#include "kit/chat/ZIQReactionStrip.h"
#include "kit/core/ZIQNotifyProtocol.h"
#include "platform/CornerMask.h"
#include "platform/NavigationController.h"
#include "platform/NotificationCenter.h"
#include "platform/Screen.h"
#include "platform/SystemFont.h"
#include "platform/TableView.h"
#include "platform/TextMeasure.h"
#include "plugin/chat/ZIQGroupNoteContainerCell.h"
#include "plugin/chat/ZIQGroupNoteContainerCellData.h"
#include "plugin/chat/ZIQGroupNotePreviewCell.h"
#include "plugin/chat/ZIQGroupNotePreviewViewController.h"
#include "plugin/editor/ZIQGroupNoteViewController.h"
#include "plugin/model/ZIQGroupNoteMessageBody.h"

#include <QLabel>
#include <QPushButton>

using Provider = ZIQGroupNoteDataProvider;

namespace {

/// The messages whose rows a card asked the chat to measure again.
struct SizeChanges : ZIQNotifyProtocol
{
    SizeChanges()
    {
        ZIQCore::registerEvent(ZIQCore_ZIQPluginNotify, ZIQCore_ZIQPluginNotify_PluginViewSizeChangedSubKey, this);
    }
    ~SizeChanges() override { ZIQCore::unRegisterEventByObject(this); }
    void onNotifyEvent(const QString &, const QString &, QObject *, const QVariantMap &param) override
    {
        const auto message
            = param.value(ZIQCore_ZIQPluginNotify_PluginViewSizeChangedSubKey_Message).value<V2VORMessagePtr>();
        msgIDs.append(message ? message->msgID() : QString());
    }
    QStringList msgIDs;
};

/// `user`'s group chat on a navigation stack in a phone-sized window, `user` being the device's user.
struct NoteChat
{
    NoteChat(Scene &scene, const QString &user)
    {
        scene.group.actAs(user);
        chat = new ZIQBaseChatViewController(
            ZIQChatConversation { scene.group.groupID(), {} }, scene.group.client(user));
        navigation = std::make_unique<platform::NavigationController>(chat);
        navigation->view()->resize(375, 812);
        navigation->view()->show();
    }
    ZIQChatMessageList *list() const { return chat->messageList(); }
    int rowOf(const QString &msgID) const { return list()->rowOfMessage(msgID); }
    /// The drawn note row of `msgID`, once the history holds it.
    ZIQGroupNoteContainerCell *noteCell(const QString &msgID) const
    {
        if (!QTest::qWaitFor([&] { return rowOf(msgID) >= 0; }, 5000))
            return nullptr;
        chat->tableView()->scrollToRow({ 0, rowOf(msgID) }, platform::TableView::ScrollPosition::Middle, false);
        return qobject_cast<ZIQGroupNoteContainerCell *>(chat->tableView()->cellForRow({ 0, rowOf(msgID) }));
    }
    ZIQBaseChatViewController *chat = nullptr;
    std::unique_ptr<platform::NavigationController> navigation;
};

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
    while (platform::TextMeasure::singleLineSize(title + " order", titleFont()).width() <= width)
        title += QStringLiteral(" order");
    return title + QStringLiteral(" order").repeated(extraWords);
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

int shownRows(ZIQGroupNotePreviewViewController *card)
{
    return card->itemsTableView()->numberOfRows(0);
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
    void initTestCase()
    {
        auto &registry = ZIQChatClassRegistry::instance();
        registry.registerCellDataClass<ZIQGroupNoteContainerCellData>();
        registry.registerCellClass<ZIQGroupNoteContainerCell>();
        registry.appendCustomMessage(
            ZIQGroupNoteMessageBody::noteBusinessID, "ZIQGroupNoteContainerCell", "ZIQGroupNoteContainerCellData");
        ZIQBaseChatViewController::registerKitCells();
    }

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
        const auto info = std::make_shared<ZIQGroupNoteInfo>();
        info->setTitle(title);

        // Sums are taken in single precision, as the card takes them.
        const float lines = float(titleLines * titleLine());
        QCOMPARE(Provider::calcTitleSize(info).height(), qreal(lines));
        QCOMPARE(Provider::calcHeaderViewSize(info), QSizeF(width, double(lines + 77.f)));
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
        SizeChanges changes;
        if (entries > 2) {
            // Collapsed, the expand row leads and the last entry follows; only the expand row reacts.
            QVERIFY(rowOf(card, 0)->indexLabel()->isHidden());
            QCOMPARE(rowText(card, 0), QStringLiteral("Show all"));
            const QLabel *offer = rowOf(card, 0)->contentLabel();
            QCOMPARE(offer->palette().color(offer->foregroundRole()), QColor("#147AFF"));
            QCOMPARE(rowOf(card, 1)->indexLabel()->text(), QStringLiteral("5"));
            QCOMPARE(rowText(card, 1), QStringLiteral("line 5"));
            QTest::mouseClick(rowOf(card, 1), Qt::LeftButton);
            QCOMPARE(shownRows(card), 2);
        }
        if (expand)
            QTest::mouseClick(rowOf(card, 0), Qt::LeftButton);
        QTRY_COMPARE(shownRows(card), rows);
        // A refilled cell's card draws its rows once its own fetch has answered.
        QTRY_COMPARE(card->itemsTableView()->height(), 38 * rows);
        QCOMPARE(changes.msgIDs, expand ? QStringList { msgID } : QStringList());
        cell = chat.noteCell(msgID);
        QCOMPARE(cell->vc(), card);
        QCOMPARE(cell->customData()->isExpandAll(), expand);
        for (int row = 0; row < rows && rows == entries; ++row)
            QTRY_COMPARE(rowText(card, row), QStringLiteral("line %1").arg(row + 1));

        const ZIQGroupNoteInfoPtr info = card->dataProvider()->info();
        const QSizeF measured = Provider::calcSizeOfInfo(info, rows);
        const int header = ceilOf(Provider::calcHeaderViewSize(info).height());
        const QSizeF title = Provider::calcTitleSize(info);
        QWidget *root = card->view();
        QCOMPARE(root->geometry(), QRect(0, 0, 263, ceilOf(measured.height())));
        QCOMPARE(cell->container()->size(), root->size());
        QCOMPARE(chat.list()->contentSize(chat.rowOf(msgID)), measured);
        QCOMPARE(card->headerView()->geometry(), QRect(0, 0, 263, header));
        QCOMPARE(card->titleLabel()->size(), QSize(ceilOf(title.width()), ceilOf(title.height())));
        QCOMPARE(card->itemsTableView()->geometry(), QRect(0, header, 263, 38 * rows));
        for (int row = 0; row < rows; ++row) {
            QWidget *drawnRow = rowOf(card, row);
            QCOMPARE(QRect(drawnRow->mapTo(card->itemsTableView(), QPoint()), drawnRow->size()),
                QRect(0, 38 * row, 263, 38));
        }
        QCOMPARE(card->joinButton()->geometry(), QRect(65, header + 38 * rows + 12, 133, 36));
        QCOMPARE(card->joinButton()->geometry().bottom() + 1 + 12, root->height());
        QVERIFY(card->infoLabel()->text().contains(QStringLiteral("Alice")));
        // Drawn inside the chat's table, the header and the body keep their own colours.
        const QImage drawn = root->grab().toImage();
        QCOMPARE(drawn.pixelColor(250, 5), QColor("#F2F7FF"));
        QCOMPARE(drawn.pixelColor(20, root->height() - 24), QColor("#F9F9F9"));
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
        // The service answers in order: once a later fetch of the first note is answered, so is
        // the stale one.
        auto answered = std::make_shared<bool>(false);
        ZIQGroupNoteDataProvider probe(scene.find("alice", first));
        probe.getNoteStatistics([answered](int, const QString &, const ZIQGroupNoteInfoPtr &) { *answered = true; });
        QTRY_VERIFY(*answered);
        QCOMPARE(card->titleLabel()->text(), QStringLiteral("Second"));
        QCOMPARE(shownRows(card), 2);

        cell.fillWithData(firstData);
        QTRY_COMPARE(shownRows(card), 3);
        QVERIFY(firstData->isExpandAll());
        QVERIFY(!secondData->isExpandAll());
    }

    void cornersReactionStripAndJoin_data()
    {
        QTest::addColumn<QString>("viewer");
        QTest::addColumn<bool>("reacted");
        QTest::addColumn<int>("squareCorner");
        QTest::newRow("creator's own") << "alice" << false << int(platform::Corner::TopRight);
        QTest::newRow("another member's") << "bob" << false << int(platform::Corner::TopLeft);
        QTest::newRow("under a reaction strip") << "bob" << true << int(platform::Corner::All);
    }

    /// The card's square corner, its reaction strip, and its Join button opening the editor over
    /// this very note (not an older one), whoever looks at it.
    void cornersReactionStripAndJoin()
    {
        QFETCH(QString, viewer);
        QFETCH(bool, reacted);
        QFETCH(int, squareCorner);
        const platform::ScreenScope phone({ 375, 812 });
        Scene scene;
        postNote(scene, QStringLiteral("Older"), 1);
        const QString msgID = postNote(scene, QStringLiteral("Lunch"), 1);
        NoteChat chat(scene, viewer);
        ZIQGroupNoteContainerCell *cell = chat.noteCell(msgID);
        QTRY_COMPARE(shownRows(cell->vc()), 1);
        if (reacted) {
            bool done = false;
            chat.list()->setReaction(
                msgID, QStringLiteral("👍"), [&] { done = true; }, [](int, const QString &) {});
            QTRY_VERIFY(done);
            QTRY_VERIFY(!chat.noteCell(msgID)->reactionStrip()->isHidden());
            cell = chat.noteCell(msgID);
        }
        const platform::CornerMask *mask = platform::CornerMask::of(cell->customView());
        const platform::Corners square = mask ? platform::Corners(platform::Corner::All) & ~mask->corners()
                                              : platform::Corners(platform::Corner::All);
        QCOMPARE(int(square), squareCorner);
        QCOMPARE(cell->vc()->disCorner(), reacted);
        QCOMPARE(cell->bubbleView()->isHidden(), reacted);
        if (reacted) {
            QCOMPARE(cell->reactionStrip()->palette().color(QPalette::Window), QColor("#F9F9F9"));
            QVERIFY(cell->reactionStrip()->autoFillBackground());
        }

        QTest::mouseClick(cell->vc()->joinButton(), Qt::LeftButton);
        auto *editor = qobject_cast<ZIQGroupNoteViewController *>(chat.navigation->topViewController());
        QVERIFY(editor);
        QCOMPARE(editor->dataProvider()->message()->msgID(), msgID);
        QCOMPARE(editor->groupID(), scene.group.groupID());
        QVERIFY(!editor->isCreateNew());
    }
};

QTEST_MAIN(GroupNoteCardTest)
#include "tst_groupnotecard.moc"
