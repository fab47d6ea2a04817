// The editor's note page: where its blocks stand in both faces, the deadline chip, new entry
// rows, over-long input and what it tells the controller.
#include "EditorTestSupport.h"

#include "kit/common/ZIQTheme.h"
#include "platform/ManualClock.h"
#include "platform/SystemFont.h"
#include "platform/TextMeasure.h"
#include "platform/ToastCenter.h"
#include "plugin/editor/ZIQGroupNoteContentView.h"
#include "plugin/service/ZIQGroupNoteBundle.h"

#include <QApplication>
#include <QLabel>
#include <QSignalSpy>
#include <QTest>
#include <QTimeZone>

#include <unicode/timezone.h>

namespace {

constexpr QSize PageSize(375, 674); // a 375 x 812 phone under its navigation bar and the tabs

double shanghaiMs(int year, int month, int day, int hour, int minute)
{
    return double(
        QDateTime(QDate(year, month, day), QTime(hour, minute), QTimeZone("Asia/Shanghai")).toMSecsSinceEpoch());
}

ZIQGroupNoteInfoPtr existingNote(double deadlineMs, const QString &example)
{
    auto info = std::make_shared<ZIQGroupNoteInfo>();
    info->setTitle(QStringLiteral("Spring outing to the lake on Saturday, with a picnic lunch by the water"));
    info->setDesc(QStringLiteral("Bring your own drinks"));
    info->setExample(example);
    info->setCreatorUserID(QStringLiteral("alice"));
    info->setCreatorUserName(QStringLiteral("Alice"));
    info->setPaticipantCount(3);
    info->setting()->setDeadlineTimestampInMS(deadlineMs);
    return info;
}

QImage addButtonImage(bool enabled)
{
    const QIcon icon = ZIQTheme::dynamicImage(
        enabled ? QStringLiteral("group_note_add_img") : QStringLiteral("group_note_add_disable_img"),
        ZIQGroupNoteThemeModule,
        ZIQTheme::imageWithContentsOfFile(getZIQGetBundlePath()
            + (enabled ? QStringLiteral("/group_note_add") : QStringLiteral("/group_note_add_disable"))));
    return icon.pixmap(QSize(34, 34)).toImage();
}

/// The page as the editor holds it: inside a controller's root view, wired to its actions, with
/// entry rows from a test data source.
struct Page
{
    EntryRows rows;
    EditorTestController controller;
    ZIQGroupNoteContentView *page = nullptr;

    Page(const ZIQGroupNoteInfoPtr &info, bool isCreateNew, QSize size = PageSize)
    {
        QWidget *root = controller.view();
        root->resize(size);
        page = new ZIQGroupNoteContentView(info, isCreateNew, root);
        page->setOnEndEditTitleSelector("onEndEditTitle");
        page->setOnEndEditDescSelector("onEndEditDesc");
        page->setOnEndEditDeadlineSelector("onEndEditDeadlineSelector");
        page->setOnAddExampleSelector("onAddExample");
        page->setOnAddItemSelector("onAddItem");
        page->itemTableView()->registerCell<platform::TableViewCell>(QStringLiteral("itemCell"));
        page->itemTableView()->setDataSource(&rows);
        page->resize(size);
        page->show();
        root->show();
    }

    bool activate() const
    {
        page->window()->activateWindow();
        return QTest::qWaitForWindowActive(page->window());
    }

    void showRows(int count)
    {
        rows.count = count;
        page->reloadTableViewWithCellCount(count, false);
    }

    template<class T = QWidget> T *find(const char *name) const { return page->findChild<T *>(QLatin1String(name)); }
    QRect rect(const char *name) const { return find(name)->geometry(); }
};

} // namespace

class TestGroupNoteContentView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        platform::SystemFont::install();
        registerPluginTheme();
        ZIQGlobalization::setPreferredLanguage(QStringLiteral("en"));
        // The device's zone for every deadline below.
        icu::TimeZone::adoptDefault(icu::TimeZone::createTimeZone("Asia/Shanghai"));
    }

    void faces_data()
    {
        QTest::addColumn<bool>("isCreateNew");
        QTest::addColumn<bool>("startsInOtherFace");
        QTest::addColumn<bool>("hasDeadline");
        QTest::addColumn<QString>("example");
        QTest::addColumn<bool>("chipShown");
        // Offsets of the example row and the table from the head block's bottom; -1: hidden.
        QTest::addColumn<int>("exampleTop");
        QTest::addColumn<int>("tableTop");

        const QString eg = QStringLiteral("Name + phone");
        QTest::newRow("creating") << true << false << false << QString() << true << 56 << 114;
        QTest::newRow("existing, deadline only") << false << false << true << QString() << true << -1 << 48;
        QTest::newRow("existing, example only") << false << false << false << eg << false << 20 << 78;
        QTest::newRow("existing, neither") << false << false << false << QString() << false << -1 << 12;
        QTest::newRow("created note shown as sent") << false << true << true << eg << true << 56 << 114;
        // Composing keeps the chip as the other face left it.
        QTest::newRow("sent note without deadline composed") << true << true << false << eg << false << 20 << 78;
    }

    void faces()
    {
        QFETCH(bool, isCreateNew);
        QFETCH(bool, startsInOtherFace);
        QFETCH(bool, hasDeadline);
        QFETCH(QString, example);
        QFETCH(bool, chipShown);
        QFETCH(int, exampleTop);
        QFETCH(int, tableTop);
        platform::ScreenScope screen({ 375, 812 });
        platform::ManualClock clock(shanghaiMs(2024, 6, 1, 12, 0));
        Page p(existingNote(hasDeadline ? shanghaiMs(2024, 6, 20, 9, 5) : 0, example),
            startsInOtherFace ? !isCreateNew : isCreateNew);
        if (startsInOtherFace)
            p.page->refreshWithCreateNew(isCreateNew);
        p.showRows(3);

        for (const char *name : { "titleView", "infoView", "bottomLine" })
            QCOMPARE(p.find(name)->isHidden(), isCreateNew);
        QCOMPARE(p.find("titleInputView")->isHidden(), !isCreateNew);
        QCOMPARE(p.find("hintTextField")->isEnabled(), isCreateNew);
        int headBottom = 0;
        if (isCreateNew) {
            QCOMPARE(p.rect("titleInputView"), QRect(16, 20, 343, 80));
            headBottom = 100;
        } else {
            QCOMPARE(p.rect("infoView"), QRect(16, 0, 343, 49));
            QCOMPARE(p.find<QLabel>("infoLabel")->text(), QStringLiteral("Started by Alice · 3 joined"));
            QCOMPARE(p.rect("bottomLine"), QRect(16, 49, 343, 1));
            // The title wraps as a label of the same font and width wraps it.
            auto *title = p.find<QLabel>("titleLabel");
            QVERIFY(title->height() > title->fontMetrics().height());
            QCOMPARE(p.rect("titleLabel"), QRect(0, 0, 311, title->heightForWidth(311)));
            const QRect desc = p.rect("descLabel");
            QCOMPARE(desc.topLeft(), QPoint(0, title->height() + 8));
            QCOMPARE(p.rect("titleView"), QRect(16, 69, 343, title->height() + desc.height() + 8));
            headBottom = 69 + p.rect("titleView").height();
        }

        QCOMPARE(p.find("deadlineButton")->isHidden(), !chipShown);
        if (chipShown)
            QCOMPARE(p.rect("deadlineButton").topLeft(), QPoint(16, headBottom + 12));
        QCOMPARE(p.find("exampleView")->isHidden(), exampleTop < 0);
        if (exampleTop >= 0) {
            QCOMPARE(p.rect("exampleView"), QRect(0, headBottom + exampleTop, 375, 46));
        }
        QCOMPARE(p.rect("itemTableView"), QRect(0, headBottom + tableTop, 375, 3 * 58));
        QCOMPARE(p.rect("addButton"), QRect(16, headBottom + tableTop + 3 * 58 + 6, 34, 34));
    }

    void tableKeepsClearOfTheHomeIndicator_data()
    {
        QTest::addColumn<QSizeF>("screen");
        QTest::addColumn<platform::DeviceIdiom>("idiom");
        QTest::addColumn<int>("rows");
        QTest::addColumn<int>("inset");

        const auto phone = platform::DeviceIdiom::Phone;
        QTest::newRow("375x812 phone, full table") << QSizeF(375, 812) << phone << 20 << 34;
        QTest::newRow("414x896 phone, full table") << QSizeF(414, 896) << phone << 20 << 34;
        QTest::newRow("375x812 phone, two rows") << QSizeF(375, 812) << phone << 2 << 0;
        QTest::newRow("375x812 pad") << QSizeF(375, 812) << platform::DeviceIdiom::Pad << 20 << 0;
        QTest::newRow("320x812 phone") << QSizeF(320, 812) << phone << 20 << 0;
    }

    void tableKeepsClearOfTheHomeIndicator()
    {
        QFETCH(QSizeF, screen);
        QFETCH(platform::DeviceIdiom, idiom);
        QFETCH(int, rows);
        QFETCH(int, inset);
        // The same page on a 375 x 667 phone, which has no home indicator.
        const auto measure = [rows](const QSizeF &size, platform::DeviceIdiom kind) {
            platform::ScreenScope scope(size, kind);
            Page p(nullptr, true, QSize(375, 500));
            p.showRows(rows);
            const auto *table = p.page->itemTableView();
            const QRect add = p.rect("addButton");
            return std::tuple(p.page->itemTableViewHeight(), table->height(), p.page->bottomBlankHeight(),
                500 - add.y() - add.height() - 20);
        };
        const auto [refHeight, refTable, refBlank, refRoom] = measure({ 375, 667 }, platform::DeviceIdiom::Phone);
        const auto [height, table, blank, room] = measure(screen, idiom);

        QCOMPARE(refTable, std::min(rows * 58, 500 - 214 - 34 - 6 - 20));
        QCOMPARE(refHeight - height, float(inset));
        QCOMPARE(refTable - table, inset);
        QCOMPARE(blank - refBlank, float(inset));
        QCOMPARE(blank, float(room));
    }

    void deadlineChip_data()
    {
        QTest::addColumn<double>("now");
        QTest::addColumn<double>("deadline");
        QTest::addColumn<QString>("title");

        const double june = shanghaiMs(2024, 6, 1, 12, 0);
        QTest::newRow("reached") << shanghaiMs(2024, 6, 20, 9, 5) << shanghaiMs(2024, 6, 20, 9, 5) << "Stopped";
        // The year shown is the week's: the week holding 1 January 2025 starts on Sunday 29 December,
        // and 28 December 23:30 UTC is already that Sunday in the device's zone.
        QTest::newRow("Saturday before that week")
            << june << shanghaiMs(2024, 12, 28, 23, 59) << "Deadline: 2024-12-28 23:59";
        QTest::newRow("local day decides")
            << june << double(QDateTime(QDate(2024, 12, 28), QTime(23, 30), Qt::UTC).toMSecsSinceEpoch())
            << QStringLiteral("Deadline: 2025-12-29 07:30");
    }

    void deadlineChip()
    {
        QFETCH(double, now);
        QFETCH(double, deadline);
        QFETCH(QString, title);
        platform::ScreenScope screen({ 375, 812 });
        platform::ManualClock clock(now);
        Page p(existingNote(deadline, {}), false);

        auto *chip = p.find<QPushButton>("deadlineButton");
        QVERIFY(!chip->isHidden());
        QCOMPARE(chip->text(), title);
        QCOMPARE(chip->accessibleName(), title);
        QCOMPARE(chip->height(), 24);
        // Sized for the bold title it does not draw: wider than the regular title and its padding.
        const qreal regular = platform::TextMeasure::singleLineSize(title, platform::SystemFont::regular(12)).width();
        QVERIFY2(chip->width() > regular + 36, qPrintable(QString::number(chip->width())));
    }

    void newRows_data()
    {
        QTest::addColumn<int>("held");
        QTest::addColumn<int>("count");
        QTest::addColumn<bool>("addNew");
        QTest::addColumn<int>("rowsAfter");
        QTest::addColumn<int>("offsetAfter");
        QTest::addColumn<QString>("focused");

        // The page leaves the table 366 points: six rows and a bit.
        QTest::newRow("added to a short list") << 2 << 3 << true << 3 << 0 << "entryField2";
        QTest::newRow("added below the fold") << 9 << 10 << true << 10 << 10 * 58 - 366 << "entryField9";
        QTest::newRow("already in the table") << 10 << 10 << true << 10 << 0 << QString();
        QTest::newRow("two announced at once") << 3 << 5 << true << 3 << 0 << QString();
        QTest::newRow("reloaded") << 4 << 10 << false << 10 << 10 * 58 - 366 << QString();
        QTest::newRow("none") << 3 << 0 << true << 3 << 0 << QString();
    }

    void newRows()
    {
        QFETCH(int, held);
        QFETCH(int, count);
        QFETCH(bool, addNew);
        QFETCH(int, rowsAfter);
        QFETCH(int, offsetAfter);
        QFETCH(QString, focused);
        platform::ScreenScope screen({ 375, 812 });
        platform::ManualClock clock;
        Page p(nullptr, true);
        QVERIFY(p.activate());
        p.showRows(held);
        clock.advance(1000);
        auto *table = p.page->itemTableView();
        table->setContentOffset({ 0, 0 });
        // Activation focused the title field; the new row must take the focus on its own.
        if (QWidget *focus = QApplication::focusWidget())
            focus->clearFocus();
        QCoreApplication::processEvents();
        QVERIFY(!QApplication::focusWidget());

        p.rows.count = std::max(count, held);
        p.page->reloadTableViewWithCellCount(count, addNew);
        QCOMPARE(table->numberOfRows(0), rowsAfter);
        QCOMPARE(p.page->localCellCount(), count > 0 ? count : held);
        clock.advance(299);
        QCOMPARE(table->contentOffset().y(), 0.0);
        clock.advance(1);
        QCoreApplication::processEvents();
        clock.advance(400);
        QCoreApplication::processEvents();
        QCOMPARE(table->contentOffset().y(), qreal(offsetAfter));
        QWidget *focus = QApplication::focusWidget();
        QCOMPARE(focus ? focus->objectName() : QString(), focused);
    }

    void textLimit_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("action");
        QTest::addColumn<int>("startLength");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("refused");

        const QString x = QStringLiteral("x"), title = "titleTextField", desc = "descTextField";
        QTest::newRow("title at 50") << title << "onEndEditTitle" << 49 << x << false;
        QTest::newRow("title at 51") << title << "onEndEditTitle" << 50 << x << true;
        QTest::newRow("description at 50") << desc << "onEndEditDesc" << 49 << x << false;
        QTest::newRow("example at 50") << QString("hintTextField") << "onAddExample" << 49 << x << false;
        QTest::newRow("an emoji counts twice") << title << "onEndEditTitle" << 49 << "\U0001F600" << true;
    }

    void textLimit()
    {
        QFETCH(QString, field);
        QFETCH(QString, action);
        QFETCH(int, startLength);
        QFETCH(QString, typed);
        QFETCH(bool, refused);
        platform::ManualClock clock;
        Page p(nullptr, true);
        auto *edit = p.find<platform::TextField>(qPrintable(field));
        edit->setText(QString(startLength, QLatin1Char('a')));
        edit->setFocus();
        QSignalSpy toasts(platform::ToastCenter::instance(), &platform::ToastCenter::toastShown);

        QKeyEvent key(QEvent::KeyPress, 0, Qt::NoModifier, typed);
        QApplication::sendEvent(edit, &key);

        const QString text = QString(startLength, QLatin1Char('a')) + typed;
        QCOMPARE(edit->text(), text);
        QCOMPARE(toasts.size(), refused ? 1 : 0);
        if (refused)
            QCOMPARE(toasts[0],
                (QVariantList {
                    localized("ZIQGroupNoteTextFieldExceedLimit"), 3000, int(platform::ToastPosition::Center) }));
        QCOMPARE(p.controller.log(), refused ? QStringList() : QStringList { action + ' ' + field + ' ' + text });
    }

    void onlyEntryRowsAnswerTheKeyboard()
    {
        Page p(nullptr, true);
        p.showRows(1);
        for (const char *name : { "titleTextField", "descTextField", "hintTextField", "entryField0" })
            QCOMPARE(p.page->needRespondToKeyboardAnimation(p.find(name)), name == QLatin1String("entryField0"));
    }

    void titleFieldTabsOnAndADeadlineTapEndsEditing()
    {
        Page p(nullptr, true);
        QVERIFY(p.activate());
        p.find("titleTextField")->setFocus();
        for (const char *next : { "descTextField", "hintTextField" }) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            QCOMPARE(QApplication::focusWidget()->objectName(), QLatin1String(next));
        }
        QTest::mouseClick(p.find("deadlineButton"), Qt::LeftButton);
        QVERIFY(!QApplication::focusWidget());
        QCOMPARE(p.controller.log(), QStringList { QStringLiteral("onEndEditDeadlineSelector deadlineButton") });
    }

    void addButton_data()
    {
        QTest::addColumn<bool>("allowMultiSubmit");
        QTest::addColumn<bool>("submitted");
        QTest::addColumn<bool>("passed");
        QTest::addColumn<bool>("enabledBefore");
        QTest::addColumn<bool>("enabledAfter");

        QTest::newRow("several entries each") << true << false << false << true << true;
        QTest::newRow("one entry, not yet added") << false << false << false << true << false;
        QTest::newRow("one entry, already stored") << false << true << false << false << false;
        QTest::newRow("deadline passed") << true << false << true << false << false;
    }

    void addButton()
    {
        QFETCH(bool, allowMultiSubmit);
        QFETCH(bool, submitted);
        QFETCH(bool, passed);
        QFETCH(bool, enabledBefore);
        QFETCH(bool, enabledAfter);
        QVERIFY(addButtonImage(true) != addButtonImage(false));
        platform::ManualClock clock(shanghaiMs(2024, 6, 1, 12, 0));
        auto info = existingNote(passed ? shanghaiMs(2024, 5, 1, 0, 0) : 0, {});
        info->setting()->setAllowMultiSubmit(allowMultiSubmit);
        info->setIsMyselfSubmitted(submitted);
        Page p(info, false);
        auto *button = p.find<QPushButton>("addButton");
        QVERIFY(!button->accessibleName().isEmpty());

        QCOMPARE(button->icon().pixmap(QSize(34, 34)).toImage(), addButtonImage(enabledBefore));
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(p.controller.log(), QStringList { QStringLiteral("onAddItem addButton") });
        QCOMPARE(button->icon().pixmap(QSize(34, 34)).toImage(), addButtonImage(enabledAfter));
    }
};

QTEST_MAIN(TestGroupNoteContentView)
#include "tst_groupnotecontentview.moc"
