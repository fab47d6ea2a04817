// The kit's base cells inside a settings screen: switch and key/value rows lay out at the row's
// margins and report their actions to the screen that owns them (and drop what it does not
// answer to), filling is a pure redraw, and a theme switch re-colours the rows. Also draws the
// sample settings screen, light and dark.
#include "SampleSettingsScreen.h"

#include "kit/common/ZIQThemeManager.h"
#include "platform/ManualClock.h"
#include "platform/NavigationController.h"
#include "platform/Screen.h"
#include "platform/Switch.h"
#include "platform/SystemFont.h"

#include <QLabel>
#include <QTest>

using platform::ManualClock;

namespace {

ZIQCommonCellDataPtr switchRow(const QString &title, bool on, const QByteArray &selector)
{
    auto row = std::make_shared<ZIQCommonSwitchCellData>();
    row->setReuseIdentifier(QStringLiteral("switchCell"));
    row->setTitle(title);
    row->setOn(on);
    row->setCswitchSelector(selector);
    return row;
}

ZIQCommonCellDataPtr textRow(const QString &key, const QString &value, bool accessory, const QByteArray &selector)
{
    auto row = std::make_shared<ZIQCommonTextCellData>();
    row->setReuseIdentifier(QStringLiteral("textCell"));
    row->setKey(key);
    row->setValue(value);
    row->setShowAccessory(accessory);
    row->setCselector(selector);
    return row;
}

QList<ZIQCommonCellDataPtr> sampleRows()
{
    return {
        switchRow(QStringLiteral("Allow several entries"), true, "onSwitchChanged"),
        switchRow(QStringLiteral("Notify the group"), false, "onSwitchChanged"),
        textRow(QStringLiteral("Deadline"), QStringLiteral("2024-06-01 18:00"), true, "onOpenDetail"),
        textRow(QStringLiteral("Language"), QStringLiteral("English"), false, "onOpenDetail"),
    };
}

// A phone-sized window showing one settings screen on a navigation stack.
struct Phone
{
    explicit Phone(const QList<ZIQCommonCellDataPtr> &rows)
        : screen(new SampleSettingsScreen(rows))
    {
        stack.pushViewController(screen, false);
        stack.view()->resize(375, 812);
        stack.view()->show();
        stack.layoutIfNeeded();
        screen->layoutIfNeeded();
    }

    template<class Cell> Cell *cell(int row)
    {
        return qobject_cast<Cell *>(screen->tableView()->cellForRow({ 0, row }));
    }

    platform::ScreenScope scope { QSizeF(375, 812) };
    platform::NavigationController stack;
    SampleSettingsScreen *screen;
};

void applyTheme(const QString &theme)
{
    ZIQThemeManager::shareManager()->applyTheme(theme);
}

} // namespace

class KitCellsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { platform::SystemFont::install(); }
    void cleanup() { applyTheme(ZIQThemeLight); }

    void rowsLayOutAtTheirMargins()
    {
        ManualClock clock;
        Phone phone(sampleRows());
        // Title at the leading margin, switch at the trailing one, both centred across the row.
        auto *toggle = phone.cell<ZIQCommonSwitchCell>(1);
        QCOMPARE(toggle->switcher()->accessibleName(), QStringLiteral("Notify the group"));
        const QRect switchFrame(toggle->switcher()->mapTo(toggle, QPoint()), toggle->switcher()->size());
        QCOMPARE(switchFrame.right() + 1, toggle->width() - 16);
        QCOMPARE(switchFrame.center().y(), toggle->rect().center().y());
        QCOMPARE(toggle->titleLabel()->x(), 16);
        // The value ends at the row's margin, or just before the chevron.
        for (const int row : { 2, 3 }) {
            auto *cell = phone.cell<ZIQCommonTextCell>(row);
            const bool chevron = row == 2;
            QCOMPARE(cell->accessoryType() == platform::TableViewCell::AccessoryType::DisclosureIndicator, chevron);
            const int valueRight = cell->valueLabel()->mapTo(cell, cell->valueLabel()->rect().topRight()).x() + 1;
            QCOMPARE(valueRight, cell->width() - (chevron ? platform::TableViewCell::AccessoryWidth : 16));
            QCOMPARE(cell->keyLabel()->x(), 16);
        }
    }

    void aRowReportsItselfOnlyToAScreenThatAnswers_data()
    {
        QTest::addColumn<bool>("isSwitch");
        QTest::addColumn<QByteArray>("selector");
        QTest::addColumn<bool>("delivered");
        QTest::newRow("switch, action the screen answers to") << true << QByteArray("onSwitchChanged") << true;
        QTest::newRow("switch, no action") << true << QByteArray() << false;
        QTest::newRow("switch, action the screen lacks") << true << QByteArray("onSomethingElse") << false;
        QTest::newRow("text, action the screen answers to") << false << QByteArray("onOpenDetail") << true;
        QTest::newRow("text, no action") << false << QByteArray() << false;
    }

    void aRowReportsItselfOnlyToAScreenThatAnswers()
    {
        QFETCH(bool, isSwitch);
        QFETCH(QByteArray, selector);
        QFETCH(bool, delivered);
        ManualClock clock;
        const ZIQCommonCellDataPtr row = isSwitch ? switchRow("Notify the group", false, selector)
                                                  : textRow("Deadline", "Not set", true, selector);
        Phone phone({ row });
        auto *cell = phone.cell<ZIQCommonTableViewCell>(0);
        if (auto *toggle = qobject_cast<ZIQCommonSwitchCell *>(cell))
            QTest::mouseClick(toggle->switcher(), Qt::LeftButton);
        else
            QTest::mouseClick(cell, Qt::LeftButton, {}, QPoint(cell->width() - 20, cell->height() / 2));
        // A switch row's state follows the flip whether or not anyone hears of it.
        if (isSwitch)
            QVERIFY(std::static_pointer_cast<ZIQCommonSwitchCellData>(row)->on());
        QCOMPARE(phone.screen->reports.size(), delivered ? 1 : 0);
        if (delivered) {
            QCOMPARE(phone.screen->reports.first().action, selector);
            QCOMPARE(phone.screen->reports.first().cell, cell);
            QCOMPARE(phone.screen->reports.first().switchOn, isSwitch);
        }
    }

    void fillingAgainChangesNothing_data()
    {
        QTest::addColumn<int>("row");
        QTest::newRow("switch") << 0;
        QTest::newRow("text") << 2;
    }

    void fillingAgainChangesNothing()
    {
        QFETCH(int, row);
        ManualClock clock;
        Phone phone(sampleRows());
        auto *cell = phone.cell<ZIQCommonTableViewCell>(row);
        const QImage once = cell->grab().toImage();
        // Another row's data in between, as a reused cell sees it, then the same row twice.
        cell->fillWithData(phone.screen->rows.at(row + 1));
        cell->fillWithData(phone.screen->rows.at(row));
        cell->fillWithData(phone.screen->rows.at(row));
        clock.advance(platform::Switch::AnimationDurationMs);
        QCoreApplication::processEvents();
        QCOMPARE(cell->data(), phone.screen->rows.at(row));
        QCOMPARE(cell->grab().toImage(), once);
    }

    void aThemeSwitchRecoloursTheRows_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("labelName");
        QTest::newRow("switch") << 0 << "titleLabel";
        QTest::newRow("text") << 2 << "keyLabel";
    }

    void aThemeSwitchRecoloursTheRows()
    {
        QFETCH(int, row);
        QFETCH(QString, labelName);
        ManualClock clock;
        Phone phone(sampleRows());
        auto *cell = phone.cell<ZIQCommonTableViewCell>(row);
        auto *label = cell->findChild<QLabel *>(labelName);
        QVERIFY(label);
        QCOMPARE(cell->backgroundColor(), QColor(0xFF, 0xFF, 0xFF));
        QCOMPARE(label->palette().color(QPalette::WindowText), QColor(0, 0, 0));

        applyTheme(ZIQThemeDark);
        QCOMPARE(cell->backgroundColor(), QColor(0x1C, 0x1C, 0x1E));
        QCOMPARE(label->palette().color(QPalette::WindowText), QColor(0xFF, 0xFF, 0xFF));

        // A row asked to stay clear stays clear through theme changes.
        cell->setBackgroundThemeColor({}, 0, {});
        applyTheme(ZIQThemeLight);
        QVERIFY(!cell->backgroundColor().isValid());
        QCOMPARE(label->palette().color(QPalette::WindowText), QColor(0, 0, 0));
    }

    /// The sample screen, light and dark, into $ZIQ_PICTURES_DIR.
    void pictures()
    {
        if (qEnvironmentVariableIsEmpty("ZIQ_PICTURES_DIR"))
            QSKIP("ZIQ_PICTURES_DIR is not set");
        ManualClock clock;
        Phone phone(sampleRows());
        for (const QString &theme : { ZIQThemeLight, ZIQThemeDark }) {
            applyTheme(theme);
            const QString path = qEnvironmentVariable("ZIQ_PICTURES_DIR") + "/sample-screen-" + theme + ".png";
            QVERIFY(phone.stack.view()->grab().save(path));
        }
    }
};

QTEST_MAIN(KitCellsTest)
#include "tst_kitcells.moc"
