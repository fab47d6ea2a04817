// The note's settings page: the rows a setting (or none) gives, the deadline in the device's
// zone with its week-based year, the rows' actions reaching the owning screen, and the page's
// look (rules, clear rows, switch tint) in both themes.
#include "EditorTestSupport.h"

#include "plugin/editor/ZIQGroupNoteSettingView.h"
#include "plugin/editor/ZIQGroupNoteSwitchCell.h"
#include "plugin/editor/ZIQGroupNoteTextCell.h"

#include "platform/ManualClock.h"
#include "platform/SystemFont.h"

#include <QLabel>

#include <unicode/timezone.h>

namespace {

double utcMs(int year, int month, int day, int hour, int minute)
{
    return double(QDateTime(QDate(year, month, day), QTime(hour, minute), Qt::UTC).toMSecsSinceEpoch());
}

ZIQGroupNoteSettingPtr setting(bool multi, bool notify, double deadline)
{
    return std::make_shared<ZIQGroupNoteSetting>(multi, notify, deadline);
}

struct Page
{
    explicit Page(const ZIQGroupNoteSettingPtr &setting)
        : view(new ZIQGroupNoteSettingView(setting, screen.view()))
    {
        view->setGeometry(0, 138, 375, 150);
        screen.view()->show();
    }

    template<class Cell> Cell *cell(int row) const
    {
        return qobject_cast<Cell *>(view->tableView()->cellForRow({ 0, row }));
    }

    platform::ManualClock clock;
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
        registerPluginTheme();
        // The device's zone for every deadline below: eight hours ahead of UTC all year.
        icu::TimeZone::adoptDefault(icu::TimeZone::createTimeZone("Asia/Shanghai"));
    }

    void cleanup() { ZIQThemeManager::shareManager()->applyTheme(ZIQThemeLight); }

    void rowsShowTheSetting_data()
    {
        QTest::addColumn<ZIQGroupNoteSettingPtr>("setting");
        QTest::addColumn<bool>("multi");
        QTest::addColumn<QString>("deadline");
        QTest::addColumn<bool>("notify");

        const QString notSet = localized("ZIQGroupNoteDeadlineNotSet");
        const auto dated = [](double ms) { return setting(true, true, ms); };
        QTest::newRow("no setting") << ZIQGroupNoteSettingPtr() << true << notSet << true;
        QTest::newRow("single entry") << setting(false, true, utcMs(2024, 6, 15, 0, 5)) << false << "2024-06-15 08:05"
                                      << true;
        QTest::newRow("silent, no deadline") << setting(true, false, 0) << true << notSet << false;
        // The year shown is the week's, on the device's calendar day: Sunday 29 December 2024 starts
        // the week holding 1 January.
        QTest::newRow("Saturday before the year's last week")
            << dated(utcMs(2024, 12, 28, 15, 59)) << true << "2024-12-28 23:59" << true;
        QTest::newRow("Sunday, in UTC still Saturday")
            << dated(utcMs(2024, 12, 28, 16, 0)) << true << "2025-12-29 00:00" << true;
    }

    void rowsShowTheSetting()
    {
        QFETCH(ZIQGroupNoteSettingPtr, setting);
        QFETCH(bool, multi);
        QFETCH(QString, deadline);
        QFETCH(bool, notify);
        Page page(nullptr);
        page.view->refreshWithSettings(setting);

        auto *multiCell = page.cell<ZIQGroupNoteSwitchCell>(0);
        auto *deadlineCell = page.cell<ZIQGroupNoteTextCell>(1);
        auto *notifyCell = page.cell<ZIQGroupNoteSwitchCell>(2);
        QVERIFY(multiCell && deadlineCell && notifyCell);
        QCOMPARE(multiCell->switcher()->isOn(), multi);
        QCOMPARE(deadlineCell->valueLabel()->text(), deadline);
        QCOMPARE(notifyCell->switcher()->isOn(), notify);
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
        Page page(nullptr);
        platform::TableViewCell *cell = page.view->tableView()->cellForRow({ 0, row });

        if (auto *switchCell = qobject_cast<ZIQGroupNoteSwitchCell *>(cell))
            QTest::mouseClick(switchCell->switcher(), Qt::LeftButton);
        else
            QTest::mouseClick(cell, Qt::LeftButton, {}, cell->rect().center());

        QCOMPARE(page.screen.calls.size(), 1);
        QCOMPARE(page.screen.calls[0].action, action);
        QCOMPARE(page.screen.calls[0].sender, cell);
        QCOMPARE(page.screen.calls[0].seen, seen);
    }

    void pageKeepsItsLookInEitherTheme_data()
    {
        QTest::addColumn<QString>("theme");
        QTest::addColumn<QColor>("tint");
        QTest::addColumn<QColor>("line");
        QTest::addColumn<QColor>("background");
        QTest::newRow("light") << ZIQThemeLight << QColor("#147AFF") << QColor("#EEEEEE") << QColor("#FFFFFF");
        QTest::newRow("dark") << ZIQThemeDark << QColor("#0A84FF") << QColor("#38383A") << QColor("#000000");
    }

    void pageKeepsItsLookInEitherTheme()
    {
        QFETCH(QString, theme);
        QFETCH(QColor, tint);
        QFETCH(QColor, line);
        QFETCH(QColor, background);
        Page page(nullptr);
        ZIQThemeManager::shareManager()->applyTheme(theme);

        // Rows are clear over the page's background, each with its inset rule on its last point.
        const QImage image = page.view->grab().toImage();
        savePicture(page.view, QStringLiteral("settings_") + theme);
        for (int row = 0; row < 3; ++row) {
            QCOMPARE(QColor(image.pixel(4, 50 * row + 25)), background);
            QCOMPARE(QColor(image.pixel(8, 50 * row + 49)), background);
            QCOMPARE(QColor(image.pixel(100, 50 * row + 49)), line);
        }
        // The kit re-colours its switch on a palette change; the page's tint must survive it.
        auto *switchCell = page.cell<ZIQGroupNoteSwitchCell>(0);
        QCOMPARE(switchCell->switcher()->onTintColor(), tint);
        switchCell->setPalette(QPalette(Qt::red));
        QCOMPARE(switchCell->switcher()->onTintColor(), tint);
    }

private:
    platform::ScreenScope m_scope { QSizeF(375, 812) };
};

QTEST_MAIN(GroupNoteSettingViewTest)
#include "tst_groupnotesettingview.moc"
