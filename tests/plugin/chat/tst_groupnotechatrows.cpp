// The rows note and tips messages make in a chat. The note card: its size from the note alone
// against hand-added figures, expanding, entries written on another member's device reaching a
// drawn card and its row, the drawn card against the same numbers, a cell reused across notes,
// corners and joining. The tips row: its line names the sender (by user ID when they have no
// nickname) and ends in the note's title in brackets, grey then blue in either theme; only a JSON
// body makes a row; a tap opens the editor only when it is this very row's, over its own message.
#include "../provider/ProviderTestSupport.h"
#include "sdk/ClientCalls.h"

#include "kit/chat/ZIQBaseChatViewController.h"
#include "kit/chat/ZIQBubbleView.h"
#include "kit/chat/ZIQChatClassRegistry.h"
#include "kit/chat/ZIQChatMessageList.h"
#include "kit/chat/ZIQChatService.h"
#include "kit/chat/ZIQReactionStrip.h"
#include "kit/common/ZIQGlobalization.h"
#include "kit/common/ZIQTheme.h"
#include "kit/common/ZIQThemeManager.h"
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
#include "plugin/chat/ZIQGroupNoteTipsCell.h"
#include "plugin/chat/ZIQGroupNoteTipsCellData.h"
#include "plugin/editor/ZIQGroupNoteViewController.h"
#include "plugin/service/ZIQGroupNoteService.h"

#include <QLabel>
#include <QPushButton>
#include <QtMath>

using Provider = ZIQGroupNoteDataProvider;

namespace {

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
    int rowOf(const QString &msgID) const { return chat->messageList()->rowOfMessage(msgID); }
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

/// One line of the bold title font, as the card measures lines (with the font's leading).
qreal titleLine()
{
    return platform::TextMeasure::size(QStringLiteral("Hg"), platform::SystemFont::bold(14),
        { 1000, platform::TextMeasure::Unbounded },
        platform::TextMeasure::UsesLineFragmentOrigin | platform::TextMeasure::UsesFontLeading)
        .height();
}

/// Latin words up to the last that still keeps one line within `width` points, plus `extraWords`.
QString wordsFilling(qreal width, int extraWords = 0)
{
    QString title = QStringLiteral("Lunch");
    while (platform::TextMeasure::singleLineSize(title + " order", platform::SystemFont::bold(14)).width() <= width)
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

V2VORMessagePtr tipsMessage(const QByteArray &body, const QString &nickName = QStringLiteral("Ben"))
{
    auto message = std::make_shared<V2VORMessage>();
    auto elem = std::make_unique<V2VORCustomElem>();
    elem->data = body;
    message->setCustomElem(std::move(elem));
    message->setSender(QStringLiteral("ben"));
    message->setNickName(nickName);
    return message;
}

QByteArray titled(const QString &title)
{
    return QStringLiteral(R"({"businessID":"group_note_tips","title":"%1"})").arg(title).toUtf8();
}

} // namespace

class GroupNoteChatRowsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // The plug-in hands both its message kinds to the chat service as it starts.
        ZIQChatService::registerInCore();
        ZIQGroupNoteService::sharedInstance();
        ZIQBaseChatViewController::registerKitCells();
        ZIQGlobalization::setPreferredLanguage(QStringLiteral("en"));
    }

    void cleanup() { ZIQThemeManager::shareManager()->applyTheme(ZIQThemeLight); }

    void sizeFromTheNoteAlone_data()
    {
        QTest::addColumn<QSizeF>("screen");
        QTest::addColumn<QString>("title");
        QTest::addColumn<qint64>("count");
        QTest::addColumn<int>("titleLines");
        QTest::addColumn<float>("rest"); // what the card adds to its title lines

        const platform::ScreenScope phone({ 375, 812 });
        // The title wraps at 70% of the screen less 48 points: 214.5 on this phone.
        const QString oneLine = wordsFilling(214.5);
        const QString twoLines = wordsFilling(214.5, 1);
        QVERIFY(platform::TextMeasure::singleLineSize(twoLines, platform::SystemFont::bold(14)).width() < 262.5);

        QTest::newRow("no title, no entries") << QSizeF(375, 667) << QString() << qint64(0) << 0 << 137.f;
        QTest::newRow("one line, one entry") << QSizeF(375, 812) << oneLine << qint64(1) << 1 << 175.f;
        QTest::newRow("two lines, collapsed") << QSizeF(375, 812) << twoLines << qint64(2) << 2 << 213.f;
        QTest::newRow("no screen") << QSizeF() << QString() << qint64(2) << 0 << 213.f;
    }

    void sizeFromTheNoteAlone()
    {
        QFETCH(QSizeF, screen);
        QFETCH(QString, title);
        QFETCH(qint64, count);
        QFETCH(int, titleLines);
        QFETCH(float, rest);
        const platform::ScreenScope scope(screen);
        const qreal width = screen.isEmpty() ? 0 : 262.5; // 70% of the screen
        const auto info = std::make_shared<ZIQGroupNoteInfo>();
        info->setTitle(title);

        // Sums are taken in single precision, as the card takes them.
        const float lines = float(titleLines * titleLine());
        QCOMPARE(Provider::calcTitleSize(info).height(), qreal(lines));
        QCOMPARE(Provider::calcHeaderViewSize(info), QSizeF(width, double(lines + 77.f)));
        QCOMPARE(Provider::calcSizeOfInfo(info, count), QSizeF(width, double(lines + rest)));
    }

    void drawnCardFollowsTheNumbersAndAnotherMember_data()
    {
        QTest::addColumn<int>("entries");
        QTest::addColumn<bool>("expand");
        QTest::addColumn<int>("rowsAfter"); // once Bob has added a line
        // Collapsed, the card follows the note's "show_line_num", at most two rows.
        QTest::newRow("one entry") << 1 << false << 2;
        QTest::newRow("five, collapsed") << 5 << false << 2;
        // Expanded, it grows to every entry.
        QTest::newRow("five, expanded") << 5 << true << 6;
    }

    void drawnCardFollowsTheNumbersAndAnotherMember()
    {
        QFETCH(int, entries);
        QFETCH(bool, expand);
        QFETCH(int, rowsAfter);
        const platform::ScreenScope phone({ 375, 812 });
        Scene scene;
        const QString msgID = postNote(scene, wordsFilling(214.5, 1), entries);
        NoteChat chat(scene, "alice");
        ZIQGroupNoteContainerCell *cell = chat.noteCell(msgID);
        QVERIFY(cell);
        ZIQGroupNotePreviewViewController *card = cell->vc();
        QTRY_COMPARE(shownRows(card), std::min(entries, 2));
        if (entries > 2) {
            // Collapsed, the expand row leads and the last entry follows; only the expand row reacts.
            QVERIFY(rowOf(card, 0)->indexLabel()->isHidden());
            QCOMPARE(rowText(card, 0), QStringLiteral("Show all"));
            QCOMPARE(rowOf(card, 1)->indexLabel()->text(), QStringLiteral("5"));
            QCOMPARE(rowText(card, 1), QStringLiteral("line 5"));
            QTest::mouseClick(rowOf(card, 1), Qt::LeftButton);
            QCOMPARE(shownRows(card), 2);
        }
        if (expand) {
            QTest::mouseClick(rowOf(card, 0), Qt::LeftButton);
            QTRY_COMPARE(shownRows(card), entries);
            // The card asked the chat to measure its row again.
            QTRY_COMPARE(chat.chat->messageList()->contentSize(chat.rowOf(msgID)),
                Provider::calcSizeOfInfo(card->dataProvider()->info(), entries));
            for (int row = 0; row < entries; ++row)
                QTRY_COMPARE(rowText(card, row), QStringLiteral("line %1").arg(row + 1));
        }

        QVERIFY(scene.join("bob", msgID, QStringLiteral("Bob: soup")));
        scene.group.actAs("alice");
        // Bob's editor tells the note's screens on his device; the chat's card hears it here.
        platform::NotificationCenter::defaultCenter().post("groupNoteUpdated", { { "msgID", msgID } });
        QTRY_COMPARE(shownRows(card), rowsAfter);
        QTRY_COMPARE(rowText(card, rowsAfter - 1), QStringLiteral("Bob: soup"));
        QTRY_VERIFY(card->infoLabel()->text().contains(QStringLiteral("2")));
        // A refilled cell's card draws its rows once its own fetch has answered.
        QTRY_COMPARE(card->itemsTableView()->height(), 38 * rowsAfter);
        cell = chat.noteCell(msgID);
        QCOMPARE(cell->vc(), card);

        // The chat's row, the card and its parts follow the figures.
        const ZIQGroupNoteInfoPtr info = card->dataProvider()->info();
        const QSizeF measured = Provider::calcSizeOfInfo(info, rowsAfter);
        const QSizeF title = Provider::calcTitleSize(info);
        QWidget *root = card->view();
        QTRY_COMPARE(chat.chat->messageList()->contentSize(chat.rowOf(msgID)), measured);
        QTRY_COMPARE(root->geometry(), QRect(0, 0, 263, qCeil(measured.height())));
        QCOMPARE(cell->container()->size(), root->size());
        QCOMPARE(card->titleLabel()->size(), QSize(qCeil(title.width()), qCeil(title.height())));
        QCOMPARE(card->itemsTableView()->y(), qCeil(Provider::calcHeaderViewSize(info).height()));
        QCOMPARE(card->joinButton()->geometry().bottom() + 1 + 12, root->height());
        // Drawn inside the chat's table, the header and the body keep their own colours.
        const QImage drawn = root->grab().toImage();
        QCOMPARE(drawn.pixelColor(250, 5), QColor("#F2F7FF"));
        QCOMPARE(drawn.pixelColor(20, root->height() - 24), QColor("#F9F9F9"));
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
        if (reacted) {
            chat.chat->messageList()->setReaction(
                msgID, QStringLiteral("👍"), [] {}, [](int, const QString &) {});
            QTRY_VERIFY(!chat.noteCell(msgID)->reactionStrip()->isHidden());
            cell = chat.noteCell(msgID);
        }
        const platform::CornerMask *mask = platform::CornerMask::of(cell->customView());
        const platform::Corners square = mask ? platform::Corners(platform::Corner::All) & ~mask->corners()
                                              : platform::Corners(platform::Corner::All);
        QCOMPARE(int(square), squareCorner);
        QCOMPARE(cell->bubbleView()->isHidden(), reacted);

        QTest::mouseClick(cell->vc()->joinButton(), Qt::LeftButton);
        auto *editor = qobject_cast<ZIQGroupNoteViewController *>(chat.navigation->topViewController());
        QVERIFY(editor);
        QCOMPARE(editor->dataProvider()->message()->msgID(), msgID);
        QVERIFY(!editor->isCreateNew());
    }

    void theLineNamesTheSenderAndTheTitle_data()
    {
        QTest::addColumn<QString>("nickName");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("line"); // null: the body makes no row
        const QString updated = QStringLiteral(" updated the group note ");
        QTest::newRow("nickname") << "Ben Carter" << titled("Picnic") << "Ben Carter" + updated + "[Picnic]";
        QTest::newRow("no nickname") << "" << titled("Picnic") << "ben" + updated + "[Picnic]";
        QTest::newRow("outside the basic plane")
            << "Chloé 🥾" << titled("山顶 🏔️") << "Chloé 🥾" + updated + "[山顶 🏔️]";
        QTest::newRow("no title") << "Ben" << QByteArray("{}") << "Ben" + updated + "[]";
        QTest::newRow("a lone JSON value") << "Ben" << QByteArray(R"("just text")") << "Ben" + updated + "[]";
        QTest::newRow("not JSON") << "Ben" << QByteArray("{title: Picnic") << QString();
        QTest::newRow("two values") << "Ben" << QByteArray("1, 2") << QString();
        QTest::newRow("empty body") << "Ben" << QByteArray() << QString();
    }

    /// The line, its name grey and its bracketed title blue in either theme.
    void theLineNamesTheSenderAndTheTitle()
    {
        QFETCH(QString, nickName);
        QFETCH(QByteArray, body);
        QFETCH(QString, line);
        QCOMPARE(ZIQGroupNoteTipsCellData::getDisplayString(tipsMessage(body)), QStringLiteral("[Group Note]"));
        for (const QString &theme : { ZIQThemeDark, ZIQThemeLight }) {
            ZIQThemeManager::shareManager()->applyTheme(theme);
            const auto data = ZIQGroupNoteTipsCellData::getCellData(tipsMessage(body, nickName));
            QCOMPARE(data ? data->content() : QString(), line);
            if (!data)
                return;
            const ZIQAttributedString text = data->attributedString();
            const qsizetype titleStart = text.string().indexOf(QStringLiteral(" ["));
            QVERIFY(ZIQTheme::d_systemGrayColor() != ZIQTheme::d_systemBlueColor());
            for (int i = 0; i < text.string().size(); ++i)
                QCOMPARE(text.formatAt(i).foreground().color(),
                    i < titleStart ? ZIQTheme::d_systemGrayColor() : ZIQTheme::d_systemBlueColor());
        }
    }

    /// A tap on a tips row in the chat opens the editor over that row's message; a tap the chat
    /// reports for another row, or that offers no navigation stack, opens nothing.
    void aTipsRowsTapOpensTheEditorOverItsMessage()
    {
        const platform::ScreenScope phone({ 375, 812 });
        Scene scene;
        for (const char *title : { "Picnic", "Hike" })
            QVERIFY(sendToGroup(scene.group.client("alice"), scene.group.groupID(), titled(title)));
        NoteChat chat(scene, "bob");
        const auto rowAt = [&](int row) {
            return qobject_cast<ZIQGroupNoteTipsCell *>(chat.chat->tableView()->cellForRow({ 0, row }));
        };
        QTRY_VERIFY(rowAt(0) && rowAt(1));
        QObject stranger;
        for (auto [row, pushOnto] : { std::pair<QObject *, QObject *>(rowAt(1), chat.navigation.get()),
                 std::pair<QObject *, QObject *>(rowAt(0), &stranger) })
            rowAt(0)->pluginMsgSelectCallback({
                { ZIQCore_ZIQPluginNotify_PluginCustomCellClick_Cell, QVariant::fromValue(row) },
                { ZIQCore_ZIQPluginNotify_PluginCustomCellClick_PushVC, QVariant::fromValue(pushOnto) },
            });
        QCOMPARE(chat.navigation->topViewController(), chat.chat);

        const V2VORMessagePtr tapped = rowAt(0)->messageData()->innerMessage();
        QTest::mouseClick(rowAt(0), Qt::LeftButton, {}, rowAt(0)->rect().center());
        auto *editor = qobject_cast<ZIQGroupNoteViewController *>(chat.navigation->topViewController());
        QVERIFY(editor);
        // The row's message ID stands where a group ID goes, and the tips message is the note's.
        QCOMPARE(editor->groupID(), tapped->msgID());
        QCOMPARE(editor->dataProvider()->message(), tapped);
        QVERIFY(!editor->isCreateNew());
    }
};

QTEST_MAIN(GroupNoteChatRowsTest)
#include "tst_groupnotechatrows.moc"
