// The kit's base cells inside a settings screen: switch and key/value rows report their actions
// to the screen that owns them (and drop what it does not answer to), filling is a pure redraw,
// and a theme switch re-colours the rows. Also draws the sample settings screen, light and
// dark, with the keyboard up.
#include "SampleSettingsScreen.h"

#include "kit/common/ZIQCommonSwitchCellData.h"
#include "kit/common/ZIQCommonTextCellData.h"
#include "kit/common/ZIQThemeManager.h"
#include "platform/Keyboard.h"
#include "platform/ManualClock.h"
#include "platform/NavigationController.h"
#include "platform/Screen.h"
#include "platform/Switch.h"
#include "platform/SystemFont.h"

#include <QDir>
#include <QLabel>
#include <QTest>

using platform::ManualClock;

namespace {

ZIQCommonSwitchCellDataPtr switchRow(const QString &title, bool on, const QByteArray &selector)
{
    auto row = std::make_shared<ZIQCommonSwitchCellData>();
    row->setReuseIdentifier(QStringLiteral("switchCell"));
    row->setTitle(title);
    row->setOn(on);
    row->setCswitchSelector(selector);
    return row;
}

ZIQCommonTextCellDataPtr textRow(const QString &key, const QString &value, bool accessory, const QByteArray &selector)
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
        std::make_shared<SampleTextFieldCellData>(QStringLiteral("Title"), QStringLiteral("Saturday hike")),
        std::make_shared<SampleTextFieldCellData>(QStringLiteral("Description"), QString()),
        switchRow(QStringLiteral("Allow several entries"), true, "onSwitchChanged"),
        switchRow(QStringLiteral("Notify the group"), false, "onSwitchChanged"),
        textRow(QStringLiteral("Deadline"), QStringLiteral("2024-06-01 18:00"), true, "onOpenDetail"),
        textRow(QStringLiteral("Language"), QStringLiteral("English"), true, "onOpenDetail"),
    };
}

// A phone-sized window showing one settings screen on a navigation stack.
struct Phone
{
    explicit Phone(const QList<ZIQCommonCellDataPtr> &rows)
        : screen(new SampleSettingsScreen(rows))
    {
        auto *root = new platform::ViewController;
        root->setTitle(QStringLiteral("Me"));
        stack.pushViewController(root, false);
        stack.pushViewController(screen, false);
        QWidget *window = stack.view();
        window->resize(int(platform::Screen::width()), int(platform::Screen::height()));
        // The window keeps the focus itself when it opens, so that no field starts out focused.
        window->setFocusPolicy(Qt::ClickFocus);
        window->show();
        window->setFocus();
        QVERIFY(QTest::qWaitForWindowActive(window));
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

    void aFlippedSwitchReportsItsCellToTheScreen_data()
    {
        QTest::addColumn<QByteArray>("selector");
        QTest::addColumn<bool>("delivered");
        QTest::newRow("action the screen answers to") << QByteArray("onSwitchChanged") << true;
        QTest::newRow("no action") << QByteArray() << false;
        QTest::newRow("action the screen lacks") << QByteArray("onSomethingElse") << false;
    }

    void aFlippedSwitchReportsItsCellToTheScreen()
    {
        QFETCH(QByteArray, selector);
        QFETCH(bool, delivered);
        ManualClock clock;
        auto row = switchRow(QStringLiteral("Notify the group"), false, selector);
        Phone phone({ row });
        auto *cell = phone.cell<ZIQCommonSwitchCell>(0);
        QVERIFY(cell);
        QCOMPARE(cell->switcher()->accessibleName(), QStringLiteral("Notify the group"));
        // Title at the leading margin, switch at the trailing one, both centred across the row.
        const QRect switchFrame(cell->switcher()->mapTo(cell, QPoint()), cell->switcher()->size());
        QCOMPARE(switchFrame.right() + 1, cell->width() - 16);
        QCOMPARE(switchFrame.center().y(), cell->rect().center().y());
        QCOMPARE(cell->titleLabel()->x(), 16);

        QTest::mouseClick(cell->switcher(), Qt::LeftButton);
        // The row's state follows the flip whether or not anyone hears of it.
        QVERIFY(row->on());
        QCOMPARE(phone.screen->reports.size(), delivered ? 1 : 0);
        if (delivered) {
            QCOMPARE(phone.screen->reports.first().action, selector);
            QCOMPARE(phone.screen->reports.first().cell, cell);
            QVERIFY(phone.screen->reports.first().switchOn);
        }
    }

    void aTappedTextRowReportsItselfAndShowsTheChevronOnlyWhenAsked_data()
    {
        QTest::addColumn<bool>("accessory");
        QTest::addColumn<QByteArray>("selector");
        QTest::newRow("chevron, action") << true << QByteArray("onOpenDetail");
        QTest::newRow("no chevron, action") << false << QByteArray("onOpenDetail");
        QTest::newRow("no action") << true << QByteArray();
    }

    void aTappedTextRowReportsItselfAndShowsTheChevronOnlyWhenAsked()
    {
        QFETCH(bool, accessory);
        QFETCH(QByteArray, selector);
        ManualClock clock;
        Phone phone({ textRow(QStringLiteral("Deadline"), QStringLiteral("Not set"), accessory, selector) });
        auto *cell = phone.cell<ZIQCommonTextCell>(0);
        QVERIFY(cell);
        QCOMPARE(cell->accessoryType() == platform::TableViewCell::AccessoryType::DisclosureIndicator, accessory);
        // The value ends at the row's margin, or just before the chevron.
        const int valueRight = cell->valueLabel()->mapTo(cell, cell->valueLabel()->rect().topRight()).x() + 1;
        QCOMPARE(valueRight, cell->width() - (accessory ? platform::TableViewCell::AccessoryWidth : 16));
        QCOMPARE(cell->keyLabel()->x(), 16);

        QTest::mouseClick(cell, Qt::LeftButton, {}, QPoint(cell->width() - 20, cell->height() / 2));
        QCOMPARE(phone.screen->reports.size(), selector.isEmpty() ? 0 : 1);
        if (!selector.isEmpty())
            QCOMPARE(phone.screen->reports.first().cell, cell);
    }

    void fillingAgainChangesNothing_data()
    {
        QTest::addColumn<int>("row");
        QTest::newRow("switch") << 2;
        QTest::newRow("text") << 4;
        QTest::newRow("text field") << 0;
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
        QCOMPARE(cell->data(), phone.screen->rows.at(row));
        QCOMPARE(cell->grab().toImage(), once);
    }

    void aThemeSwitchRecoloursTheRows_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("labelName");
        QTest::newRow("switch") << 2 << "titleLabel";
        QTest::newRow("text") << 4 << "keyLabel";
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

    /// Also writes the pictures of the sample screen into $ZIQ_PICTURES_DIR when it is set.
    void theSampleScreenWithTheKeyboardUp_data()
    {
        QTest::addColumn<QString>("theme");
        QTest::addColumn<QString>("picture");
        QTest::newRow("light") << ZIQThemeLight << "sample-screen";
        QTest::newRow("dark") << ZIQThemeDark << "sample-screen-dark";
    }

    void theSampleScreenWithTheKeyboardUp()
    {
        QFETCH(QString, theme);
        QFETCH(QString, picture);
        applyTheme(theme);
        ManualClock clock;
        Phone phone(sampleRows());
        auto *field = phone.cell<SampleTextFieldCell>(0)->textField;
        QVERIFY(field->becomeFirstResponder());
        clock.advance(platform::Keyboard::AnimationDurationMs);
        platform::Keyboard *keyboard = platform::Keyboard::instance();
        QVERIFY(keyboard->isVisible());
        QCOMPARE(keyboard->frame().top(), 812 - platform::Keyboard::height());
        QVERIFY(field->hasFocus());

        // Every row stands clear of the keyboard.
        QWidget *window = phone.stack.view();
        platform::TableViewCell *last = phone.screen->tableView()->cellForRow({ 0, 5 });
        QVERIFY(last && last->isVisible());
        QVERIFY(last->mapTo(window, QPoint(0, last->height())).y() <= keyboard->frame().top());

        if (qEnvironmentVariableIsEmpty("ZIQ_PICTURES_DIR"))
            return;
        const QString path = QDir(qEnvironmentVariable("ZIQ_PICTURES_DIR")).filePath(picture + QStringLiteral(".png"));
        QVERIFY(window->grab().save(path));
    }
};

QTEST_MAIN(KitCellsTest)
#include "tst_kitcells.moc"
