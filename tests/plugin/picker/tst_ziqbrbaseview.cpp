// The bottom sheet and its style: defaults and clamps, the panel's geometry, the show and dismiss
// animations under a manual clock, and a picture of the note editor's deadline picker on a phone.
#include "PickerTestSupport.h"

#include "platform/ManualClock.h"
#include "platform/WheelColumn.h"

#include <QCoreApplication>
#include <QDir>
#include <QLabel>
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
    void styleDefaultsAndClamps_data()
    {
        QTest::addColumn<qreal>("actual");
        QTest::addColumn<qreal>("expected");
        const auto style = [](const std::function<void(ZIQBRPickerStyle &)> &set) {
            ZIQBRPickerStyle s;
            set(s);
            return s;
        };
        QTest::newRow("picker height 30 reads as 216")
            << style([](auto &s) { s.setPickerHeight(30); }).pickerHeight() << 216.0;
        QTest::newRow("picker height 40 kept") << style([](auto &s) { s.setPickerHeight(40); }).pickerHeight() << 40.0;
        QTest::newRow("row height 10 reads as 35") << style([](auto &s) { s.setRowHeight(10); }).rowHeight() << 35.0;
        QTest::newRow("title bar 20 reads as 44")
            << style([](auto &s) { s.setTitleBarHeight(20); }).titleBarHeight() << 44.0;
        QTest::newRow("title bar 20 kept when it holds nothing") << style([](auto &s) {
            s.setTitleBarHeight(20);
            s.setHiddenTitleLabel(true);
            s.setHiddenCancelBtn(true);
            s.setHiddenDoneBtn(true);
        }).titleBarHeight() << 20.0;
        QTest::newRow("shadow line 6 reads as 0.5")
            << style([](auto &s) { s.setShadowLineHeight(6); }).shadowLineHeight() << 0.5;
        // The editor's theme writes its separator colour without "#": an unreadable colour keeps the default.
        QTest::newRow("unreadable colour keeps the default") << qreal(
            style([](auto &s) { s.setSeparatorColor(QColor(QStringLiteral("DDDDDD"))); }).separatorColor().red())
                                                             << 198.0;
    }

    void styleDefaultsAndClamps()
    {
        QFETCH(qreal, actual);
        QFETCH(qreal, expected);
        QCOMPARE(actual, expected);
    }

    void sheetSlidesInAndOut_data()
    {
        QTest::addColumn<bool>("hiddenTitleBar");
        QTest::addColumn<int>("paddingBottom");
        QTest::addColumn<int>("panelHeight");
        QTest::newRow("title bar and picker") << false << 0 << 260;
        QTest::newRow("picker and padding only") << true << 34 << 250;
    }

    void sheetSlidesInAndOut()
    {
        QFETCH(bool, hiddenTitleBar);
        QFETCH(int, paddingBottom);
        QFETCH(int, panelHeight);
        platform::ManualClock clock;
        QWidget window;
        window.resize(PhoneWidth, PhoneHeight);
        window.show();
        QPointer<ZIQBRBaseView> sheet = new ZIQBRBaseView(&window);
        sheet->setTitle(QStringLiteral("Deadline"));
        sheet->pickerStyle().setHiddenTitleBarView(hiddenTitleBar);
        sheet->pickerStyle().setPaddingBottom(paddingBottom);
        int cancels = 0;
        sheet->setCancelBlock([&cancels] { ++cancels; });
        sheet->show();

        QCOMPARE(sheet->geometry(), window.rect());
        QCOMPARE(sheet->alertView()->geometry(), QRect(0, PhoneHeight, PhoneWidth, panelHeight));
        QCOMPARE(sheet->titleBarView()->isVisible(), !hiddenTitleBar);
        QCOMPARE(sheet->maskOpacity(), 0.0);
        QCOMPARE(sheet->titleLabel()->text(), QStringLiteral("Deadline"));
        QCOMPARE(sheet->cancelBtn()->text(), localized("ZIQGroupNoteNotDatePickerCancel"));
        clock.advance(ZIQBRBaseView::ShowDurationMs - 1);
        QVERIFY(sheet->alertView()->y() > PhoneHeight - panelHeight);
        clock.advance(1);
        QCOMPARE(sheet->alertView()->y(), PhoneHeight - panelHeight);
        QCOMPARE(sheet->maskOpacity(), 1.0);

        sheet->dismiss();
        clock.advance(ZIQBRBaseView::DismissDurationMs);
        QCOMPARE(sheet->alertView()->y(), PhoneHeight);
        QCOMPARE(sheet->maskOpacity(), 0.0);
        QVERIFY(!sheet->isVisible());
        QCOMPARE(cancels, 0);
        QTRY_VERIFY(sheet.isNull());
    }

    void deadlinePickerOnAPhone_data()
    {
        QTest::addColumn<QString>("language");
        QTest::newRow("en") << "en";
        QTest::newRow("zh-Hans") << "zh-Hans";
    }

    void deadlinePickerOnAPhone()
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
};

QTEST_MAIN(TestZIQBRBaseView)
#include "tst_ziqbrbaseview.moc"
