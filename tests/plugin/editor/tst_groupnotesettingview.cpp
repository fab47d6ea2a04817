// The note's settings page: the three rows a setting (or none) gives, the deadline's text in the
// device's zone with its week-based year, refreshing, the rows' actions reaching the owning
// screen, and the rows' own drawing (rule, switch tint) through theme changes.
#include "EditorTestSupport.h"

#include "plugin/editor/ZIQGroupNoteSettingView.h"
#include "plugin/editor/ZIQGroupNoteSwitchCell.h"
#include "plugin/editor/ZIQGroupNoteSwitchCellData.h"
#include "plugin/editor/ZIQGroupNoteTextCell.h"
#include "plugin/editor/ZIQGroupNoteTextCellData.h"

#include "kit/common/ZIQThemeManager.h"
#include "platform/ManualClock.h"
#include "platform/SystemFont.h"
#include "platform/TableView.h"
#include "plugin/service/ZIQGroupNoteDefines.h"

#include <QLabel>

#include <unicode/timezone.h>

using platform::ManualClock;

namespace {

double utcMs(int year, int month, int day, int hour, int minute)
{
    return double(QDateTime(QDate(year, month, day), QTime(hour, minute), Qt::UTC).toMSecsSinceEpoch());
}

struct Page
{
    explicit Page(const ZIQGroupNoteSettingPtr &setting)
        : view(new ZIQGroupNoteSettingView(setting, screen.view()))
    {
        view->setGeometry(0, 138, 375, 150);
        view->show();
    }

    template<class Cell> Cell *cell(int row) const
    {
        return qobject_cast<Cell *>(view->tableView()->cellForRow({ 0, row }));
    }

    EditorTestController screen;
    ZIQGroupNoteSettingView *view;
};

} // namespace

class GroupNoteSettingViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        platform::SystemFont::install();
        ZIQGlobalization::setPreferredLanguage(QStringLiteral("en"));
        ZIQThemeManager::shareManager()->registerThemeResourcePath(
            QStringLiteral(":/%1.bundle").arg(ZIQGroupNoteThemeBundleName), ZIQGroupNoteThemeModule);
        // The device's zone for every deadline below: eight hours ahead of UTC, no summer time.
        icu::TimeZone::adoptDefault(icu::TimeZone::createTimeZone("Asia/Shanghai"));
    }

    void cleanup() { ZIQThemeManager::shareManager()->applyTheme(ZIQThemeLight); }

    void rowsShowTheSetting_data()
    {
        QTest::addColumn<ZIQGroupNoteSettingPtr>("setting");
        QTest::addColumn<bool>("multi");
        QTest::addColumn<QString>("deadline");
        QTest::addColumn<bool>("notify");

        QTest::newRow("no setting") << ZIQGroupNoteSettingPtr() << true << localized("ZIQGroupNoteDeadlineNotSet")
                                    << true;
        QTest::newRow("single entry, dated")
            << std::make_shared<ZIQGroupNoteSetting>(false, true, utcMs(2024, 6, 15, 0, 5)) << false
            << QStringLiteral("2024-06-15 08:05") << true;
        QTest::newRow("silent, no deadline") << std::make_shared<ZIQGroupNoteSetting>(true, false, 0.0) << true
                                             << localized("ZIQGroupNoteDeadlineNotSet") << false;
        QTest::newRow("negative deadline") << std::make_shared<ZIQGroupNoteSetting>(false, false, -1.0) << false
                                           << localized("ZIQGroupNoteDeadlineNotSet") << false;
    }

    void rowsShowTheSetting()
    {
        QFETCH(ZIQGroupNoteSettingPtr, setting);
        QFETCH(bool, multi);
        QFETCH(QString, deadline);
        QFETCH(bool, notify);
        ManualClock clock;
        Page page(setting);

        QCOMPARE(page.view->tableView()->numberOfRows(0), 3);
        auto *multiCell = page.cell<ZIQGroupNoteSwitchCell>(0);
        auto *deadlineCell = page.cell<ZIQGroupNoteTextCell>(1);
        auto *notifyCell = page.cell<ZIQGroupNoteSwitchCell>(2);
        QVERIFY(multiCell && deadlineCell && notifyCell);
        QCOMPARE(multiCell->titleLabel()->text(), localized("ZIQGroupNoteMultipleSettings"));
        QCOMPARE(multiCell->switcher()->isOn(), multi);
        QCOMPARE(deadlineCell->keyLabel()->text(), localized("ZIQGroupNoteDeadlineSettings"));
        QCOMPARE(deadlineCell->valueLabel()->text(), deadline);
        QCOMPARE(deadlineCell->accessoryType(), platform::TableViewCell::AccessoryType::DisclosureIndicator);
        QCOMPARE(notifyCell->titleLabel()->text(), localized("ZIQGroupNoteNotifySettings"));
        QCOMPARE(notifyCell->switcher()->isOn(), notify);
        for (int row = 0; row < 3; ++row)
            QCOMPARE(page.view->tableView()->rectForRow({ 0, row }), QRectF(0, 50 * row, 375, 50));
    }

    void deadlineShowsTheWeekBasedYearInTheDevicesZone_data()
    {
        QTest::addColumn<double>("deadline");
        QTest::addColumn<QString>("text");

        QTest::newRow("mid-year") << utcMs(2024, 6, 15, 10, 30) << QStringLiteral("2024-06-15 18:30");
        QTest::newRow("Saturday before the year's last week")
            << utcMs(2024, 12, 28, 15, 59) << QStringLiteral("2024-12-28 23:59");
        // Still Saturday in UTC, already Sunday 29 December on the device: the week of 1 January.
        QTest::newRow("Sunday of the week holding 1 January")
            << utcMs(2024, 12, 28, 16, 0) << QStringLiteral("2025-12-29 00:00");
        QTest::newRow("New Year's Eve") << utcMs(2024, 12, 31, 15, 0) << QStringLiteral("2025-12-31 23:00");
        QTest::newRow("New Year's Day on the device only")
            << utcMs(2024, 12, 31, 16, 30) << QStringLiteral("2025-01-01 00:30");
        QTest::newRow("year starting on Sunday") << utcMs(2022, 12, 31, 12, 0) << QStringLiteral("2022-12-31 20:00");
    }

    void deadlineShowsTheWeekBasedYearInTheDevicesZone()
    {
        QFETCH(double, deadline);
        QFETCH(QString, text);
        ManualClock clock;
        Page page(std::make_shared<ZIQGroupNoteSetting>(true, true, deadline));

        QCOMPARE(page.view->deadlineDateStr(), text);
        QCOMPARE(page.cell<ZIQGroupNoteTextCell>(1)->valueLabel()->text(), text);
    }

    void refreshShowsTheNewSetting()
    {
        ManualClock clock;
        Page page(nullptr);
        auto setting = std::make_shared<ZIQGroupNoteSetting>(false, false, utcMs(2030, 1, 2, 3, 4));

        page.view->refreshWithSettings(setting);

        QCOMPARE(page.view->setting(), setting);
        QCOMPARE(page.cell<ZIQGroupNoteSwitchCell>(0)->switcher()->isOn(), false);
        QCOMPARE(page.cell<ZIQGroupNoteTextCell>(1)->valueLabel()->text(), QStringLiteral("2030-01-02 11:04"));
        QCOMPARE(page.cell<ZIQGroupNoteSwitchCell>(2)->switcher()->isOn(), false);
        QCOMPARE(page.view->tableView()->numberOfRows(0), 3);
    }

    void rowsReportToTheOwningScreen_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QByteArray>("action");
        QTest::addColumn<QString>("seen");
        QTest::newRow("multiple entries switch") << 0 << QByteArray("onSwitchMultiSubmit") << "off";
        QTest::newRow("deadline") << 1 << QByteArray("onEditDeadline") << QString();
        QTest::newRow("notify switch") << 2 << QByteArray("onSwitchAllowNotify") << "off";
    }

    void rowsReportToTheOwningScreen()
    {
        QFETCH(int, row);
        QFETCH(QByteArray, action);
        QFETCH(QString, seen);
        ManualClock clock;
        Page page(nullptr);
        platform::TableViewCell *cell = page.view->tableView()->cellForRow({ 0, row });
        QVERIFY(cell);

        if (auto *switchCell = qobject_cast<ZIQGroupNoteSwitchCell *>(cell))
            QTest::mouseClick(switchCell->switcher(), Qt::LeftButton);
        else
            QTest::mouseClick(cell, Qt::LeftButton, {}, QPoint(cell->width() / 2, cell->height() / 2));

        QCOMPARE(page.screen.calls.size(), 1);
        QCOMPARE(page.screen.calls[0].action, action);
        QCOMPARE(page.screen.calls[0].sender, cell);
        QCOMPARE(page.screen.calls[0].seen, seen);
    }

    void rowsKeepThePagesLookThroughThemeChanges_data()
    {
        QTest::addColumn<QString>("theme");
        QTest::addColumn<QColor>("tint");
        QTest::addColumn<QColor>("line");
        QTest::addColumn<QColor>("background");
        QTest::newRow("light") << ZIQThemeLight << QColor("#147AFF") << QColor("#EEEEEE") << QColor("#FFFFFF");
        QTest::newRow("dark") << ZIQThemeDark << QColor("#0A84FF") << QColor("#38383A") << QColor("#000000");
    }

    void rowsKeepThePagesLookThroughThemeChanges()
    {
        QFETCH(QString, theme);
        QFETCH(QColor, tint);
        QFETCH(QColor, line);
        QFETCH(QColor, background);
        ManualClock clock;
        Page page(nullptr);
        ZIQThemeManager::shareManager()->applyTheme(theme);
        auto *switchCell = page.cell<ZIQGroupNoteSwitchCell>(0);
        auto *textCell = page.cell<ZIQGroupNoteTextCell>(1);

        QCOMPARE(switchCell->switcher()->onTintColor(), tint);
        for (QWidget *bottomLine : { switchCell->bottomLine(), textCell->bottomLine() })
            QCOMPARE(bottomLine->geometry(), QRect(16, 49, bottomLine->parentWidget()->width() - 32, 1));
        // The rows are clear: the page's own background shows through them.
        const QImage image = page.view->grab().toImage();
        savePicture(page.view, QStringLiteral("settings_") + theme);
        QCOMPARE(QColor(image.pixel(4, 75)), page.view->palette().color(QPalette::Window));
        QCOMPARE(QColor(image.pixel(4, 75)), background);
        for (int row = 0; row < 3; ++row) {
            QCOMPARE(QColor(image.pixel(100, 50 * row + 49)), line);
            QCOMPARE(QColor(image.pixel(8, 50 * row + 49)), background);
        }

        // A palette change makes the kit re-colour its switch; the page's tint must survive it.
        switchCell->setPalette(QPalette(Qt::red));
        QCOMPARE(switchCell->switcher()->onTintColor(), tint);
    }

private:
    platform::ScreenScope m_scope { QSizeF(375, 812) };
};

QTEST_MAIN(GroupNoteSettingViewTest)
#include "tst_groupnotesettingview.moc"
