// The kit's base cells on their own: a switch row keeps its flip in its data with nobody to
// report to, filling is a pure redraw however a reused cell was filled before, and a row asked
// to stay clear stays clear through theme switches.
#include "kit/common/ZIQCommonSwitchCell.h"
#include "kit/common/ZIQCommonTextCell.h"
#include "kit/common/ZIQThemeManager.h"
#include "platform/ManualClock.h"
#include "platform/Screen.h"
#include "platform/Switch.h"
#include "platform/SystemFont.h"

#include <QTest>

namespace {

std::shared_ptr<ZIQCommonSwitchCellData> switchRow(const QString &title, bool on)
{
    auto row = std::make_shared<ZIQCommonSwitchCellData>();
    row->setTitle(title);
    row->setOn(on);
    row->setCswitchSelector("onSwitchChanged");
    return row;
}

std::shared_ptr<ZIQCommonTextCellData> textRow(const QString &key, const QString &value, bool accessory)
{
    auto row = std::make_shared<ZIQCommonTextCellData>();
    row->setKey(key);
    row->setValue(value);
    row->setShowAccessory(accessory);
    row->setCselector("onOpenDetail");
    return row;
}

/// A shown cell of a phone-wide row, filled with `row`.
template<class Cell> std::unique_ptr<Cell> shownCell(const ZIQCommonCellDataPtr &row)
{
    auto cell = std::make_unique<Cell>();
    cell->fillWithData(row);
    cell->resize(375, int(row->heightOfWidth(375)));
    cell->show();
    QCoreApplication::processEvents();
    return cell;
}

} // namespace

class KitCellsTest : public QObject
{
    Q_OBJECT

    platform::ManualClock m_clock;
    platform::ScreenScope m_screen { QSizeF(375, 812) };

private Q_SLOTS:
    void initTestCase() { platform::SystemFont::install(); }
    void cleanup() { ZIQThemeManager::shareManager()->applyTheme(ZIQThemeLight); }

    void aFlipStaysInTheDataWithNobodyToTell()
    {
        const auto row = switchRow("Notify the group", false);
        const auto cell = shownCell<ZIQCommonSwitchCell>(row);
        QTest::mouseClick(cell->switcher(), Qt::LeftButton);
        QVERIFY(row->on());
    }

    void fillingAgainChangesNothing_data()
    {
        QTest::addColumn<bool>("isSwitch");
        QTest::newRow("switch") << true;
        QTest::newRow("text") << false;
    }

    void fillingAgainChangesNothing()
    {
        QFETCH(bool, isSwitch);
        const ZIQCommonCellDataPtr row = isSwitch ? ZIQCommonCellDataPtr(switchRow("Allow several entries", true))
                                                  : textRow("Deadline", "2024-06-01 18:00", true);
        const ZIQCommonCellDataPtr other = isSwitch ? ZIQCommonCellDataPtr(switchRow("Notify the group", false))
                                                    : textRow("Language", "English", false);
        const std::unique_ptr<ZIQCommonTableViewCell> cell = isSwitch
            ? std::unique_ptr<ZIQCommonTableViewCell>(shownCell<ZIQCommonSwitchCell>(row))
            : shownCell<ZIQCommonTextCell>(row);
        const QImage once = cell->grab().toImage();
        // Another row's data in between, as a reused cell sees it, then the same row twice.
        for (const ZIQCommonCellDataPtr &data : { other, row, row })
            cell->fillWithData(data);
        m_clock.advance(platform::Switch::AnimationDurationMs);
        QCoreApplication::processEvents();
        QCOMPARE(cell->grab().toImage(), once);
    }

    void aClearRowStaysClearThroughThemeSwitches()
    {
        const auto cell = shownCell<ZIQCommonTextCell>(textRow("Deadline", "Not set", true));
        const QColor light = cell->backgroundColor();
        ZIQThemeManager::shareManager()->applyTheme(ZIQThemeDark);
        QVERIFY(cell->backgroundColor().isValid() && cell->backgroundColor() != light);
        cell->setBackgroundThemeColor({}, 0, {});
        ZIQThemeManager::shareManager()->applyTheme(ZIQThemeLight);
        QVERIFY(!cell->backgroundColor().isValid());
    }
};

QTEST_MAIN(KitCellsTest)
#include "tst_kitcells.moc"
