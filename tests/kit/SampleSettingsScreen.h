// A settings screen built from the kit's cells: one table whose rows are cell data, each row's
// height asked of its data and its cell dequeued by the data's reuse identifier. It records the
// actions its cells report, so tests can see what reached it.
#pragma once

#include "kit/common/ZIQCommonSwitchCell.h"
#include "kit/common/ZIQCommonTextCell.h"
#include "kit/common/ZIQTheme.h"
#include "kit/common/ZIQThemeManager.h"
#include "platform/Switch.h"
#include "platform/TableView.h"
#include "platform/TableViewDataSource.h"
#include "platform/TableViewDelegate.h"
#include "platform/ViewController.h"

class SampleSettingsScreen : public platform::ViewController,
                             public platform::TableViewDataSource,
                             public platform::TableViewDelegate
{
    Q_OBJECT

public:
    struct Report
    {
        QByteArray action;
        QObject *cell;
        bool switchOn;
    };

    explicit SampleSettingsScreen(const QList<ZIQCommonCellDataPtr> &rows, QObject *parent = nullptr)
        : platform::ViewController(parent)
        , rows(rows)
    {
        setTitle(QStringLiteral("Settings"));
        setExtendsUnderNavigationBar(false);
    }

    platform::TableView *tableView() const { return m_table; }

    Q_INVOKABLE void onSwitchChanged(ZIQCommonSwitchCell *cell)
    {
        reports.append({ QByteArrayLiteral("onSwitchChanged"), cell, cell->switcher()->isOn() });
    }
    Q_INVOKABLE void onOpenDetail(ZIQCommonTextCell *cell)
    {
        reports.append({ QByteArrayLiteral("onOpenDetail"), cell, false });
    }

    QList<ZIQCommonCellDataPtr> rows;
    QList<Report> reports;

protected:
    QWidget *loadView() override
    {
        QWidget *root = platform::ViewController::loadView();
        m_table = new platform::TableView(root);
        m_table->setDataSource(this);
        m_table->setDelegate(this);
        m_table->setSeparatorStyle(platform::TableView::SeparatorStyle::SingleLine);
        m_table->registerCell<ZIQCommonSwitchCell>(QStringLiteral("switchCell"));
        m_table->registerCell<ZIQCommonTextCell>(QStringLiteral("textCell"));
        // Rows stand on the grouped background of a settings page.
        ZIQTheme::bind(m_table, [this] {
            const bool dark = ZIQThemeManager::shareManager()->isDark();
            m_table->setBackgroundColor(dark ? QColor(Qt::black) : QColor(0xF2, 0xF2, 0xF7));
            m_table->setSeparatorColor(dark ? QColor(0x38, 0x38, 0x3A) : QColor(0xC6, 0xC6, 0xC8));
        });
        return root;
    }

    void viewDidLayoutSubviews() override { m_table->setGeometry(view()->rect()); }

    int numberOfRows(platform::TableView *, int) const override { return int(rows.size()); }

    platform::TableViewCell *cellForRow(platform::TableView *table, const platform::IndexPath &path) override
    {
        const ZIQCommonCellDataPtr &row = rows.at(path.row);
        auto *cell = static_cast<ZIQCommonTableViewCell *>(table->dequeueReusableCell(row->reuseIdentifier()));
        cell->fillWithData(row);
        return cell;
    }

    qreal heightForHeader(platform::TableView *, int) override { return 20; }
    qreal heightForRow(platform::TableView *table, const platform::IndexPath &path) override
    {
        return rows.at(path.row)->heightOfWidth(table->viewport()->width());
    }

private:
    platform::TableView *m_table = nullptr;
};
