// The bottom sheet and its style: defaults and clamps, the panel's geometry, the show and dismiss
// animations under a manual clock, and a picture of the note editor's deadline picker on a phone.
#include "PickerTestSupport.h"

#include "platform/ManualClock.h"
#include "platform/Screen.h"
#include "platform/SystemFont.h"
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

/// Saves `widget` as a PNG into $ZIQ_PICTURES_DIR, or beside the test program; returns the file's path.
QString saveScreenshot(QWidget *widget, const QString &name)
{
    const QString folder = qEnvironmentVariableIsEmpty("ZIQ_PICTURES_DIR")
        ? QCoreApplication::applicationDirPath()
        : qEnvironmentVariable("ZIQ_PICTURES_DIR");
    const QString path = QDir(folder).filePath(name + QStringLiteral(".png"));
    return widget->grab().save(path) ? path : QString();
}

void fillPhoneWindow(QWidget *window, bool dark)
{
    window->resize(PhoneWidth, PhoneHeight);
    QPalette palette = window->palette();
    palette.setColor(QPalette::Window, dark ? QColor(0, 0, 0) : QColor(242, 242, 247));
    palette.setColor(QPalette::WindowText, dark ? Qt::white : Qt::black);
    window->setPalette(palette);
    window->setAutoFillBackground(true);
    auto *layout = new QVBoxLayout(window);
    auto *title = new QLabel(QStringLiteral("Group note settings"), window);
    title->setFont(platform::SystemFont::bold(17));
    title->setAlignment(Qt::AlignHCenter);
    layout->addSpacing(52);
    layout->addWidget(title);
    layout->addStretch();
}

/// The editor's three theme colours as a dark theme would set them, and a title bar to match.
void darken(ZIQBRPickerStyle &style)
{
    style.setPickerColor(QColor(QStringLiteral("#1C1C1E")));
    style.setPickerTextColor(QColor(QStringLiteral("#FFFFFF")));
    style.setSeparatorColor(QColor(QStringLiteral("#38383A")));
    style.setTitleBarColor(QColor(QStringLiteral("#1C1C1E")));
    style.setTitleLineColor(QColor(24, 24, 28));
    style.setShadowLineColor(QColor(QStringLiteral("#38383A")));
    style.setTitleTextColor(QColor(QStringLiteral("#8E8E93")));
    style.setCancelTextColor(QColor(QStringLiteral("#FFFFFF")));
    style.setDoneTextColor(QColor(QStringLiteral("#FFFFFF")));
}

} // namespace

class TestZIQBRBaseView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void styleClamps()
    {
        ZIQBRPickerStyle style;
        style.setPickerHeight(30);
        style.setRowHeight(10);
        style.setTitleBarHeight(20);
        style.setShadowLineHeight(6);
        // The editor's theme writes its separator colour without "#": an unreadable colour keeps the default.
        style.setSeparatorColor(QColor(QStringLiteral("DDDDDD")));
        QCOMPARE((QList<qreal> { style.pickerHeight(), style.rowHeight(), style.titleBarHeight(),
                     style.shadowLineHeight(), qreal(style.separatorColor().red()) }),
            (QList<qreal> { 216, 35, 44, 0.5, 198 }));
        style.setPickerHeight(40);
        QCOMPARE(style.pickerHeight(), 40.0);
        // A bar that holds nothing may be as low as it likes.
        style.setHiddenTitleLabel(true);
        style.setHiddenCancelBtn(true);
        style.setHiddenDoneBtn(true);
        QCOMPARE(style.titleBarHeight(), 20.0);
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

    void titleBarTextsShareOneCentredBaseline()
    {
        platform::ManualClock clock;
        const platform::ScreenScope phone(QSizeF(PhoneWidth, PhoneHeight));
        QWidget window;
        window.resize(PhoneWidth, PhoneHeight);
        window.show();
        auto *sheet = new ZIQBRBaseView(&window);
        sheet->setTitle(QStringLiteral("Deadline"));
        sheet->show();
        clock.advance(ZIQBRBaseView::ShowDurationMs);
        const QImage bar = sheet->titleBarView()->grab().toImage();

        // Ink rows of each text: none of "Cancel", "Deadline" and "Confirm" reaches below its baseline.
        const auto inkRows = [&](const QWidget *child) {
            const QRect area = child->geometry();
            const QImage text = bar.copy(area.left(), 0, area.width(), bar.height() - 2); // the title line is not ink
            int darkest = 255;
            for (int i = 0; i < text.width() * text.height(); ++i)
                darkest = std::min(darkest, qGray(text.pixel(i % text.width(), i / text.width())));
            // Half way from the bar's white to the text's colour, whatever grey the text is.
            int top = text.height();
            int bottom = -1;
            for (int i = 0; i < text.width() * text.height(); ++i) {
                if (qGray(text.pixel(i % text.width(), i / text.width())) < (darkest + 255) / 2) {
                    top = std::min(top, i / text.width());
                    bottom = std::max(bottom, i / text.width());
                }
            }
            return std::pair { top, bottom };
        };
        const auto [cancelTop, cancelBaseline] = inkRows(sheet->cancelBtn());
        const auto [titleTop, titleBaseline] = inkRows(sheet->titleLabel());
        const auto [doneTop, doneBaseline] = inkRows(sheet->doneBtn());
        QCOMPARE(titleBaseline, cancelBaseline);
        QCOMPARE(doneBaseline, cancelBaseline);
        // The capitals of Cancel sit in the middle of the 44-point bar.
        QVERIFY(std::abs((cancelTop + cancelBaseline + 1) / 2.0 - 22) <= 1);
    }

    void deadlinePickerOnAPhone_data()
    {
        QTest::addColumn<QString>("language");
        QTest::addColumn<bool>("dark");
        QTest::newRow("en-light") << "en" << false;
        QTest::newRow("zh-Hans-light") << "zh-Hans" << false;
        QTest::newRow("en-dark") << "en" << true;
        QTest::newRow("zh-Hans-dark") << "zh-Hans" << true;
    }

    /// Also writes the pictures of the picker: into $ZIQ_PICTURES_DIR when set (docs/pictures of
    /// the source tree), else beside the test program.
    void deadlinePickerOnAPhone()
    {
        QFETCH(QString, language);
        QFETCH(bool, dark);
        const QString appLanguage = ZIQGlobalization::getPreferredLanguage();
        ZIQGlobalization::setPreferredLanguage(language);
        const auto restoreLanguage = qScopeGuard([&] { ZIQGlobalization::setPreferredLanguage(appLanguage); });
        const platform::ScreenScope phone(QSizeF(PhoneWidth, PhoneHeight));
        platform::ManualClock clock(localMs(2026, 3, 15, 10, 7, 23));
        QWidget window;
        fillPhoneWindow(&window, dark);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        ZIQBRDatePickerView *picker = makeDeadlinePicker(&window, language);
        if (dark)
            darken(picker->pickerStyle());
        picker->setTitle(localized("ZIQGroupNoteDeadlineSettings"));
        picker->show();
        clock.advance(ZIQBRBaseView::ShowDurationMs);

        // Title bar, picker, and the home indicator's inset below.
        QCOMPARE(picker->alertView()->geometry(), QRect(0, PhoneHeight - 294, PhoneWidth, 294));
        QCOMPARE(picker->titleBarView()->height(), 44);
        const QList<platform::WheelColumn *> wheels = picker->findChildren<platform::WheelColumn *>();
        QCOMPARE(wheels.size(), 5);
        for (platform::WheelColumn *wheel : wheels) {
            QCOMPARE(wheel->rowHeight(), 35);
            QCOMPARE(wheel->height(), 216);
        }
        const QString name = QStringLiteral("picker-%1-%2").arg(language, dark ? "dark" : "light");
        const QString path = saveScreenshot(&window, name);
        QVERIFY(!path.isEmpty());
        qInfo("picture: %s", qPrintable(path));
    }
};

QTEST_MAIN(TestZIQBRBaseView)
#include "tst_ziqbrbaseview.moc"
