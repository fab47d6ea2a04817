// The bottom sheet and its style: defaults and clamps, the panel's geometry, the show and dismiss
// animations under a manual clock, and a picture of the note editor's deadline picker on a phone.
#include "PickerTestSupport.h"

#include "kit/common/ZIQGlobalization.h"
#include "platform/ManualClock.h"
#include "platform/WheelColumn.h"
#include "plugin/picker/ZIQBRBaseView.h"

#include <QCoreApplication>
#include <QDir>
#include <QLabel>
#include <QPalette>
#include <QPointer>
#include <QPushButton>
#include <QScopeGuard>
#include <QTest>
#include <QVBoxLayout>

namespace {

constexpr int PhoneWidth = 375;
constexpr int PhoneHeight = 812;

/// Saves `widget` as a PNG beside the test program in the build folder; returns the file's path.
QString saveScreenshot(QWidget *widget, const QString &name)
{
    const QString path = QDir(QCoreApplication::applicationDirPath()).filePath(name + QStringLiteral(".png"));
    return widget->grab().save(path) ? path : QString();
}

void fillPhoneWindow(QWidget *window)
{
    window->resize(PhoneWidth, PhoneHeight);
    QPalette palette = window->palette();
    palette.setColor(QPalette::Window, QColor(0xF2, 0xF2, 0xF7));
    window->setPalette(palette);
    window->setAutoFillBackground(true);
    auto *layout = new QVBoxLayout(window);
    auto *title = new QLabel(QStringLiteral("Group note settings"), window);
    title->setAlignment(Qt::AlignHCenter);
    layout->addWidget(title);
    layout->addStretch();
}

} // namespace

class TestZIQBRBaseView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void styleDefaultsAndClamps_data();
    void styleDefaultsAndClamps();
    void sheetSlidesInAndOut();
    void hiddenTitleBarLeavesPickerAndPadding();
    void deadlinePickerOnAPhone_data();
    void deadlinePickerOnAPhone();
};

void TestZIQBRBaseView::styleDefaultsAndClamps_data()
{
    QTest::addColumn<qreal>("actual");
    QTest::addColumn<qreal>("expected");

    const auto style = [](const std::function<void(ZIQBRPickerStyle &)> &set) {
        ZIQBRPickerStyle s;
        set(s);
        return s;
    };
    QTest::newRow("picker height default") << ZIQBRPickerStyle().pickerHeight() << 216.0;
    QTest::newRow("picker height 30 reads as 216")
        << style([](auto &s) { s.setPickerHeight(30); }).pickerHeight() << 216.0;
    QTest::newRow("picker height 40 kept") << style([](auto &s) { s.setPickerHeight(40); }).pickerHeight() << 40.0;
    QTest::newRow("row height default") << ZIQBRPickerStyle().rowHeight() << 35.0;
    QTest::newRow("row height 10 reads as 35") << style([](auto &s) { s.setRowHeight(10); }).rowHeight() << 35.0;
    QTest::newRow("row height 20 kept") << style([](auto &s) { s.setRowHeight(20); }).rowHeight() << 20.0;
    QTest::newRow("title bar default") << ZIQBRPickerStyle().titleBarHeight() << 44.0;
    QTest::newRow("title bar 20 reads as 44")
        << style([](auto &s) { s.setTitleBarHeight(20); }).titleBarHeight() << 44.0;
    QTest::newRow("title bar 60 kept") << style([](auto &s) { s.setTitleBarHeight(60); }).titleBarHeight() << 60.0;
    QTest::newRow("title bar 20 kept when it holds nothing") << style([](auto &s) {
        s.setTitleBarHeight(20);
        s.setHiddenTitleLabel(true);
        s.setHiddenCancelBtn(true);
        s.setHiddenDoneBtn(true);
    }).titleBarHeight() << 20.0;
    QTest::newRow("hidden title bar") << style([](auto &s) {
        s.setTitleBarHeight(60);
        s.setHiddenTitleBarView(true);
    }).titleBarHeight() << 0.0;
    QTest::newRow("shadow line default") << ZIQBRPickerStyle().shadowLineHeight() << 0.5;
    QTest::newRow("shadow line 6 reads as 0.5")
        << style([](auto &s) { s.setShadowLineHeight(6); }).shadowLineHeight() << 0.5;
    QTest::newRow("shadow line 2 kept") << style([](auto &s) { s.setShadowLineHeight(2); }).shadowLineHeight() << 2.0;
    QTest::newRow("padding -3 reads as none") << style([](auto &s) { s.setPaddingBottom(-3); }).paddingBottom() << 0.0;
    QTest::newRow("Confirm sits 65 from the right") << ZIQBRPickerStyle().doneBtnFrame(375).x() << 310.0;
    QTest::newRow("title spans the middle") << ZIQBRPickerStyle().titleLabelFrame(375).width() << 241.0;
    // The editor's theme writes its separator colour without "#": an unreadable colour keeps the default.
    QTest::newRow("unreadable colour keeps the default")
        << qreal(style([](auto &s) { s.setSeparatorColor(QColor(QStringLiteral("DDDDDD"))); }).separatorColor().red())
        << 198.0;
    QTest::newRow("mask is 30% black") << qreal(qRound(ZIQBRPickerStyle().maskColor().alphaF() * 100)) << 30.0;
}

void TestZIQBRBaseView::styleDefaultsAndClamps()
{
    QFETCH(qreal, actual);
    QFETCH(qreal, expected);
    QCOMPARE(actual, expected);
}

void TestZIQBRBaseView::sheetSlidesInAndOut()
{
    platform::ManualClock clock;
    QWidget window;
    window.resize(PhoneWidth, PhoneHeight);
    window.show();
    QPointer<ZIQBRBaseView> sheet = new ZIQBRBaseView(&window);
    sheet->setTitle(QStringLiteral("Deadline"));
    int cancels = 0;
    sheet->setCancelBlock([&cancels] { ++cancels; });
    sheet->show();

    QCOMPARE(sheet->geometry(), window.rect());
    QCOMPARE(sheet->panelHeight(), 260.0);
    QCOMPARE(sheet->alertView()->geometry(), QRect(0, PhoneHeight, PhoneWidth, 260));
    QCOMPARE(sheet->maskOpacity(), 0.0);
    QCOMPARE(sheet->titleLabel()->text(), QStringLiteral("Deadline"));
    QCOMPARE(sheet->cancelBtn()->text(),
        ZIQGlobalization::getLocalizedStringForKey(QStringLiteral("ZIQGroupNoteNotDatePickerCancel")));
    clock.advance(ZIQBRBaseView::ShowDurationMs - 1);
    QVERIFY(sheet->alertView()->y() > PhoneHeight - 260);
    clock.advance(1);
    QCOMPARE(sheet->alertView()->y(), PhoneHeight - 260);
    QCOMPARE(sheet->maskOpacity(), 1.0);

    sheet->dismiss();
    QCOMPARE(cancels, 0);
    clock.advance(ZIQBRBaseView::DismissDurationMs);
    QCOMPARE(sheet->alertView()->y(), PhoneHeight);
    QCOMPARE(sheet->maskOpacity(), 0.0);
    QVERIFY(!sheet->isVisible());
    QTRY_VERIFY(sheet.isNull());
}

void TestZIQBRBaseView::hiddenTitleBarLeavesPickerAndPadding()
{
    platform::ManualClock clock;
    QWidget window;
    window.resize(PhoneWidth, PhoneHeight);
    auto *sheet = new ZIQBRBaseView(&window);
    sheet->pickerStyle().setHiddenTitleBarView(true);
    sheet->pickerStyle().setPaddingBottom(34);
    sheet->show();
    clock.advance(ZIQBRBaseView::ShowDurationMs);
    QCOMPARE(sheet->panelHeight(), 250.0);
    QCOMPARE(sheet->alertView()->geometry(), QRect(0, PhoneHeight - 250, PhoneWidth, 250));
    QVERIFY(!sheet->titleBarView()->isVisible());
}

void TestZIQBRBaseView::deadlinePickerOnAPhone_data()
{
    QTest::addColumn<QString>("language");
    QTest::newRow("en") << "en";
    QTest::newRow("zh-Hans") << "zh-Hans";
}

void TestZIQBRBaseView::deadlinePickerOnAPhone()
{
    QFETCH(QString, language);
    const QString appLanguage = ZIQGlobalization::getPreferredLanguage();
    ZIQGlobalization::setPreferredLanguage(language);
    const auto restoreLanguage = qScopeGuard([&] { ZIQGlobalization::setPreferredLanguage(appLanguage); });
    platform::ManualClock clock(localMs(2026, 3, 15, 10, 7, 23));
    QWidget window;
    fillPhoneWindow(&window);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    ZIQBRDatePickerView *picker = makeDeadlinePicker(&window, language);
    picker->setTitle(QString());
    picker->show();
    clock.advance(ZIQBRBaseView::ShowDurationMs);

    QCOMPARE(picker->alertView()->geometry(), QRect(0, PhoneHeight - 260, PhoneWidth, 260));
    QCOMPARE(picker->titleBarView()->height(), 44);
    const QList<platform::WheelColumn *> wheels = picker->findChildren<platform::WheelColumn *>();
    QCOMPARE(wheels.size(), 5);
    for (platform::WheelColumn *wheel : wheels) {
        QCOMPARE(wheel->rowHeight(), 35);
        QCOMPARE(wheel->height(), 216);
    }
    const QString path = saveScreenshot(&window, QStringLiteral("deadline-picker-") + language);
    QVERIFY(!path.isEmpty());
    qInfo("picture: %s", qPrintable(path));
}

QTEST_MAIN(TestZIQBRBaseView)
#include "tst_ziqbrbaseview.moc"
