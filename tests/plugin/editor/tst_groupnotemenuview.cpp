// The editor's tab bar: where its tabs and lines stand, which tab is highlighted and what a tap reports.
#include "EditorTestSupport.h"

#include "platform/SystemFont.h"
#include "plugin/editor/ZIQGroupNoteMenuView.h"

#include <QPushButton>
#include <QTest>

namespace {

struct Menu
{
    ZIQGroupNoteMenuView view;
    QStringList taps;

    explicit Menu(int width = 375, bool listening = true)
    {
        if (listening) {
            view.setNoteClickedBlock([this] { taps << QStringLiteral("note"); });
            view.setSettingClickedBlock([this] { taps << QStringLiteral("setting"); });
        }
        view.resize(width, 50);
        view.show();
    }

    QPushButton *button(const QString &name) const { return view.findChild<QPushButton *>(name); }
    QWidget *line(const QString &name) const { return view.findChild<QWidget *>(name); }
};

} // namespace

class TestGroupNoteMenuView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        platform::SystemFont::install();
        registerPluginTheme();
    }

    void tabsSplitThePhoneWidthNotTheBars()
    {
        const int screenWidth = 400, barWidth = 600;
        platform::ScreenScope screen({ qreal(screenWidth), 812 });
        Menu menu(barWidth);
        const QRect note = menu.button(QStringLiteral("noteButton"))->geometry();
        const QRect setting = menu.button(QStringLiteral("settingButton"))->geometry();

        QCOMPARE(note.topLeft(), QPoint(0, 0));
        QCOMPARE(note.height(), 48);
        QVERIFY(qAbs(note.width() - screenWidth / 2.0) <= 0.5);
        QCOMPARE(setting, note.translated(note.width(), 0));
        QTest::mouseClick(menu.button(QStringLiteral("settingButton")), Qt::LeftButton);
        for (const QRect &tab : { note, setting }) {
            const QWidget *underline
                = tab == note ? menu.line(QStringLiteral("noteLine")) : menu.line(QStringLiteral("settingLine"));
            QCOMPARE(underline->size(), QSize(36, 2));
            QCOMPARE(underline->y(), 48);
            QVERIFY(qAbs(underline->geometry().center().x() - tab.center().x()) <= 1);
        }
        QCOMPARE(menu.line(QStringLiteral("bottomLine"))->geometry(), QRect(0, 49, barWidth, 1));
    }

    void tapsHighlightAndReport_data()
    {
        QTest::addColumn<QStringList>("tapped");
        QTest::addColumn<bool>("noteHighlighted");
        QTest::addColumn<bool>("listening"); // a bar nobody listens to still highlights

        const QStringList setting { QStringLiteral("setting") };
        QTest::newRow("untouched") << QStringList() << true << true;
        QTest::newRow("settings") << setting << false << true;
        QTest::newRow("settings, then note") << setting + QStringList { QStringLiteral("note") } << true << true;
        QTest::newRow("note again") << QStringList { QStringLiteral("note") } << true << true;
        QTest::newRow("settings, unheard") << setting << false << false;
    }

    void tapsHighlightAndReport()
    {
        QFETCH(QStringList, tapped);
        QFETCH(bool, noteHighlighted);
        QFETCH(bool, listening);
        platform::ScreenScope screen({ 375, 812 });
        Menu menu(375, listening);
        for (const QString &tab : tapped)
            QTest::mouseClick(menu.button(tab + QStringLiteral("Button")), Qt::LeftButton);

        QCOMPARE(menu.taps, listening ? tapped : QStringList());
        QCOMPARE(menu.view.isNoteHighlighted(), noteHighlighted);
        const QString on = noteHighlighted ? QStringLiteral("note") : QStringLiteral("setting");
        const QString off = noteHighlighted ? QStringLiteral("setting") : QStringLiteral("note");
        QVERIFY(!menu.line(on + QStringLiteral("Line"))->isHidden());
        QVERIFY(menu.line(off + QStringLiteral("Line"))->isHidden());
        const QPushButton *highlighted = menu.button(on + QStringLiteral("Button"));
        const QPushButton *plain = menu.button(off + QStringLiteral("Button"));
        QCOMPARE(highlighted->font().weight(), QFont::Bold);
        QCOMPARE(plain->font().weight(), QFont::Normal);
        QCOMPARE(highlighted->palette().color(QPalette::ButtonText), QColor(QStringLiteral("#000000")));
        QCOMPARE(plain->palette().color(QPalette::ButtonText), QColor(QStringLiteral("#666666")));
    }
};

QTEST_MAIN(TestGroupNoteMenuView)
#include "tst_groupnotemenuview.moc"
