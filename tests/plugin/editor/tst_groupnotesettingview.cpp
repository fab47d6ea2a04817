// The note's settings page: the rows a setting (or none) gives, the deadline in the device's
// zone with its week-based year, the switches reaching the owning screen, and the page's look
// (rules, clear rows, switch tint) in both themes.
#include "EditorTestSupport.h"

#include "plugin/editor/ZIQGroupNoteSettingView.h"
#include "plugin/editor/ZIQGroupNoteSwitchCell.h"
#include "plugin/editor/ZIQGroupNoteTextCell.h"

#include "platform/ManualClock.h"

namespace {

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
    void initTestCase() { setUpEditorTests(); }

    void cleanup() { ZIQThemeManager::shareManager()->applyTheme(ZIQThemeLight); }

    void rowsShowTheSetting_data()
    {
        QTest::addColumn<ZIQGroupNoteSettingPtr>("setting");
        QTest::addColumn<bool>("multi");
        QTest::addColumn<QString>("deadline");
        QTest::addColumn<bool>("notify");

        const QString notSet = localized("ZIQGroupNoteDeadlineNotSet");
        using Setting = ZIQGroupNoteSetting;
        QTest::newRow("no setting") << ZIQGroupNoteSettingPtr() << true << notSet << true;
        QTest::newRow("single entry, silent") << std::make_shared<Setting>(false, false, 0) << false << notSet << false;
        // The year shown is the week's, on the device's calendar day: Sunday 29 December 2024 starts
        // the week holding 1 January, and is still Saturday in UTC.
        QTest::newRow("Sunday, in UTC still Saturday")
            << std::make_shared<Setting>(true, true, shanghaiMs(2024, 12, 29, 0, 0)) << true << "2025-12-29 00:00"
            << true;
    }

    void rowsShowTheSetting()
    {
        QFETCH(ZIQGroupNoteSettingPtr, setting);
        QFETCH(bool, multi);
        QFETCH(QString, deadline);
        QFETCH(bool, notify);
        Page page(nullptr);
        page.view->refreshWithSettings(setting);

        QCOMPARE(page.cell<ZIQGroupNoteSwitchCell>(0)->switcher()->isOn(), multi);
        QCOMPARE(page.cell<ZIQGroupNoteTextCell>(1)->valueLabel()->text(), deadline);
        QCOMPARE(page.cell<ZIQGroupNoteSwitchCell>(2)->switcher()->isOn(), notify);
    }

    void switchesReportToTheOwningScreen()
    {
        Page page(nullptr);
        for (const int row : { 0, 2 })
            QTest::mouseClick(page.cell<ZIQGroupNoteSwitchCell>(row)->switcher(), Qt::LeftButton);
        QCOMPARE(page.screen.log, (QStringList { "onSwitchMultiSubmit  off", "onSwitchAllowNotify  off" }));
    }

    void pageKeepsItsLookInEitherTheme_data()
    {
        QTest::addColumn<QString>("theme");
        QTest::addColumn<QColor>("tint");
        QTest::addColumn<QColor>("background");
        QTest::newRow("light") << ZIQThemeLight << QColor("#147AFF") << QColor("#FFFFFF");
        QTest::newRow("dark") << ZIQThemeDark << QColor("#0A84FF") << QColor("#000000");
    }

    void pageKeepsItsLookInEitherTheme()
    {
        QFETCH(QString, theme);
        QFETCH(QColor, tint);
        QFETCH(QColor, background);
        Page page(nullptr);
        ZIQThemeManager::shareManager()->applyTheme(theme);

        // Rows are clear over the page's background, each with its inset rule on its last point.
        const QImage image = page.view->grab().toImage();
        savePicture(page.view, QStringLiteral("settings_") + theme);
        QCOMPARE(QColor(image.pixel(4, 25)), background);
        QCOMPARE(QColor(image.pixel(8, 99)), background);
        QVERIFY(QColor(image.pixel(100, 99)) != background);
        // The kit re-colours its switch on a palette change; the page's tint must survive it.
        auto *switchCell = page.cell<ZIQGroupNoteSwitchCell>(0);
        switchCell->setPalette(QPalette(Qt::red));
        QCOMPARE(switchCell->switcher()->onTintColor(), tint);
    }

private:
    platform::ScreenScope m_scope { QSizeF(375, 812) };
};

QTEST_MAIN(GroupNoteSettingViewTest)
#include "tst_groupnotesettingview.moc"
