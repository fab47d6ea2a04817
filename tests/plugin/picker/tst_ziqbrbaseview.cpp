// The bottom sheet and its style: defaults and clamps, the panel's geometry, the show and dismiss
// animations under a manual clock, and the deadline picker on a phone: its title bar's baseline
// and its pictures.
#include "PickerTestSupport.h"

#include "platform/ManualClock.h"
#include "platform/Screen.h"

#include <QCoreApplication>
#include <QDir>
#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>
#include <QScopeGuard>
#include <QTest>

namespace {

constexpr int PhoneWidth = 375;
constexpr int PhoneHeight = 812;

/// The first and last ink rows of `child`'s text in the title bar's picture `bar`.
std::pair<int, int> inkRows(const QImage &bar, const QWidget *child)
{
    // The title line at the bar's foot is not ink.
    const QImage text = bar.copy(child->x(), 0, child->width(), bar.height() - 2);
    int darkest = 255;
    for (int y = 0; y < text.height(); ++y)
        for (int x = 0; x < text.width(); ++x)
            darkest = std::min(darkest, qGray(text.pixel(x, y)));
    // Ink is half way from the bar's white to the text's colour, whatever grey the text is.
    int top = text.height();
    int bottom = -1;
    for (int y = 0; y < text.height(); ++y)
        for (int x = 0; x < text.width(); ++x)
            if (qGray(text.pixel(x, y)) < (darkest + 255) / 2)
                top = std::min(top, y), bottom = std::max(bottom, y);
    return { top, bottom };
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
        // A bar that holds nothing may be as low as it likes.
        style.setHiddenTitleLabel(true);
        style.setHiddenCancelBtn(true);
        style.setHiddenDoneBtn(true);
        QCOMPARE(style.titleBarHeight(), 20.0);

        // Colours nobody set follow the appearance: a dark screen gets a dark bar with light text.
        const QPalette light = QGuiApplication::palette();
        const auto restore = qScopeGuard([&] { QGuiApplication::setPalette(light); });
        QPalette dark = light;
        dark.setColor(QPalette::Window, Qt::black);
        QGuiApplication::setPalette(dark);
        QVERIFY(style.titleBarColor().lightnessF() < 0.2 && style.cancelTextColor().lightnessF() > 0.8);
    }

    void sheetSlidesInAndOut()
    {
        platform::ManualClock clock;
        QWidget window;
        window.resize(PhoneWidth, PhoneHeight);
        window.show();
        auto *sheet = new ZIQBRBaseView(&window);
        // Without a title bar the panel is the picker and the padding below it.
        const int panelTop = PhoneHeight - 216 - 34;
        sheet->pickerStyle().setHiddenTitleBarView(true);
        sheet->pickerStyle().setPaddingBottom(34);
        int cancels = 0;
        sheet->setCancelBlock([&cancels] { ++cancels; });
        sheet->show();
        QCOMPARE(sheet->alertView()->geometry(), QRect(0, PhoneHeight, PhoneWidth, PhoneHeight - panelTop));
        clock.advance(ZIQBRBaseView::ShowDurationMs - 1);
        QVERIFY(sheet->alertView()->y() > panelTop && sheet->maskOpacity() < 1);
        clock.advance(1);
        QCOMPARE(sheet->alertView()->y(), panelTop);
        QCOMPARE(sheet->maskOpacity(), 1.0);
        // Dismissing slides the panel out without a cancel.
        sheet->dismiss();
        clock.advance(ZIQBRBaseView::DismissDurationMs);
        QCOMPARE(sheet->alertView()->y(), PhoneHeight);
        QCOMPARE(sheet->maskOpacity(), 0.0);
        QCOMPARE(cancels, 0);
    }

    void deadlinePickerOnAPhone_data()
    {
        QTest::addColumn<QString>("language");
        QTest::newRow("en") << "en";
        QTest::newRow("zh-Hans") << "zh-Hans";
    }

    /// Also writes the pictures of the picker: into $ZIQ_PICTURES_DIR when set (docs/pictures of
    /// the source tree), else beside the test program.
    void deadlinePickerOnAPhone()
    {
        QFETCH(QString, language);
        const QString appLanguage = ZIQGlobalization::getPreferredLanguage();
        ZIQGlobalization::setPreferredLanguage(language);
        const auto restoreLanguage = qScopeGuard([&] { ZIQGlobalization::setPreferredLanguage(appLanguage); });
        const platform::ScreenScope phone(QSizeF(PhoneWidth, PhoneHeight));
        platform::ManualClock clock(localMs(2026, 3, 15, 10, 7, 23));
        QWidget window;
        window.resize(PhoneWidth, PhoneHeight);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        ZIQBRDatePickerView *picker = makeDeadlinePicker(&window, language);
        picker->setTitle(localized("ZIQGroupNoteDeadlineSettings"));
        picker->show();
        clock.advance(ZIQBRBaseView::ShowDurationMs);

        // Title bar, picker, and the home indicator's inset below.
        QCOMPARE(picker->alertView()->geometry(), QRect(0, PhoneHeight - 294, PhoneWidth, 294));
        // No text of the English title bar reaches below its baseline, and all share one, with the
        // capitals of Cancel in the middle of the 44-point bar.
        const QImage bar = picker->titleBarView()->grab().toImage();
        const auto [cancelTop, cancelBaseline] = inkRows(bar, picker->cancelBtn());
        QVERIFY(std::abs((cancelTop + cancelBaseline + 1) / 2.0 - 22) <= 1);
        if (language == "en")
            QCOMPARE(QList({ inkRows(bar, picker->titleLabel()).second, inkRows(bar, picker->doneBtn()).second }),
                QList({ cancelBaseline, cancelBaseline }));
        const QString folder = qEnvironmentVariableIsEmpty("ZIQ_PICTURES_DIR")
            ? QCoreApplication::applicationDirPath()
            : qEnvironmentVariable("ZIQ_PICTURES_DIR");
        const QString path = QDir(folder).filePath(QStringLiteral("picker-%1-light.png").arg(language));
        QVERIFY(window.grab().save(path));
        qInfo("picture: %s", qPrintable(path));
    }
};

QTEST_MAIN(TestZIQBRBaseView)
#include "tst_ziqbrbaseview.moc"
