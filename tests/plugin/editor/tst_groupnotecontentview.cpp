// The editor's note page: where its blocks stand in both faces with their deadline chip, the
// room kept over the home indicator, over-long input and what it tells the controller.
#include "EditorTestSupport.h"

#include "platform/ManualClock.h"
#include "plugin/editor/ZIQGroupNoteContentView.h"

#include <QApplication>

namespace {

constexpr QSize PageSize(375, 674); // a 375 x 812 phone under its navigation bar and the tabs

ZIQGroupNoteInfoPtr existingNote(double deadlineMs, const QString &example)
{
    auto info = std::make_shared<ZIQGroupNoteInfo>();
    info->setTitle(QStringLiteral("Spring outing to the lake on Saturday, with a picnic lunch by the water"));
    info->setDesc(QStringLiteral("Bring your own drinks"));
    info->setExample(example);
    info->setCreatorUserID(QStringLiteral("alice"));
    info->setCreatorUserName(QStringLiteral("Alice"));
    info->setPaticipantCount(3);
    info->setting()->setDeadlineTimestampInMS(deadlineMs);
    return info;
}

/// The page as the editor holds it: inside a controller's root view, wired to its actions, with
/// entry rows from a test data source.
struct Page
{
    EntryRows rows;
    EditorTestController controller;
    ZIQGroupNoteContentView *page = nullptr;

    Page(const ZIQGroupNoteInfoPtr &info, bool isCreateNew, QSize size = PageSize)
    {
        QWidget *root = controller.view();
        root->resize(size);
        page = new ZIQGroupNoteContentView(info, isCreateNew, root);
        page->setOnEndEditTitleSelector("onEndEditTitle");
        page->setOnEndEditDescSelector("onEndEditDesc");
        page->setOnEndEditDeadlineSelector("onEndEditDeadlineSelector");
        page->setOnAddExampleSelector("onAddExample");
        page->setOnAddItemSelector("onAddItem");
        page->itemTableView()->registerCell<platform::TableViewCell>(QStringLiteral("itemCell"));
        page->itemTableView()->setDataSource(&rows);
        page->resize(size);
        page->show();
        root->show();
    }

    void showRows(int count)
    {
        rows.count = count;
        page->reloadTableViewWithCellCount(count, false);
    }

    template<class T = QWidget> T *find(const char *name) const { return page->findChild<T *>(QLatin1String(name)); }
    QRect rect(const char *name) const { return find(name)->geometry(); }
};

} // namespace

class TestGroupNoteContentView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { setUpEditorTests(); }

    void faces_data()
    {
        QTest::addColumn<bool>("isCreateNew");
        QTest::addColumn<bool>("startsInOtherFace");
        QTest::addColumn<double>("deadline");
        QTest::addColumn<QString>("example");
        QTest::addColumn<QString>("chip"); // hidden when empty
        QTest::addColumn<bool>("exampleShown");
        QTest::addColumn<int>("tableTop"); // below the head block's bottom

        const QString eg = QStringLiteral("Name + phone");
        // The year shown is the week's: the week holding 1 January 2025 starts on Sunday 29 December,
        // and 28 December 23:30 UTC is already that Sunday in the device's zone.
        const double weekEdge = double(QDateTime(QDate(2024, 12, 28), QTime(23, 30), Qt::UTC).toMSecsSinceEpoch());
        QTest::newRow("creating") << true << false << 0.0 << QString() << "Deadline: " << true << 114;
        QTest::newRow("existing, deadline passed")
            << false << false << shanghaiMs(2024, 6, 1, 12, 0) << QString() << "Stopped" << false << 48;
        QTest::newRow("created note shown as sent")
            << false << true << weekEdge << eg << "Deadline: 2025-12-29 07:30" << true << 114;
        // Composing keeps the chip as the other face left it.
        QTest::newRow("sent note without deadline composed") << true << true << 0.0 << eg << QString() << true << 78;
    }

    void faces()
    {
        QFETCH(bool, isCreateNew);
        QFETCH(bool, startsInOtherFace);
        QFETCH(double, deadline);
        QFETCH(QString, example);
        QFETCH(QString, chip);
        QFETCH(bool, exampleShown);
        QFETCH(int, tableTop);
        platform::ScreenScope screen({ 375, 812 });
        platform::ManualClock clock(shanghaiMs(2024, 6, 1, 12, 0));
        Page p(existingNote(deadline, example), startsInOtherFace ? !isCreateNew : isCreateNew);
        if (startsInOtherFace)
            p.page->refreshWithCreateNew(isCreateNew);
        p.showRows(3);

        for (const char *name : { "titleView", "infoView", "bottomLine" })
            QCOMPARE(p.find(name)->isHidden(), isCreateNew);
        QCOMPARE(p.find("titleInputView")->isHidden(), !isCreateNew);
        QCOMPARE(p.find("hintTextField")->isEnabled(), isCreateNew);
        const int headBottom = p.rect(isCreateNew ? "titleInputView" : "titleView").bottom() + 1;
        if (!isCreateNew) {
            QCOMPARE(p.find<QLabel>("infoLabel")->text(), QStringLiteral("Started by Alice · 3 joined"));
            // The long title wraps, and the block grows to hold it and the description under it.
            auto *title = p.find<QLabel>("titleLabel");
            QCOMPARE(title->height(), title->heightForWidth(311));
            QVERIFY(title->height() > title->fontMetrics().height());
            QCOMPARE(p.rect("titleView").height(), title->height() + p.rect("descLabel").height() + 8);
        }

        auto *chipButton = p.find<QPushButton>("deadlineButton");
        QCOMPARE(chipButton->isHidden() ? QString() : chipButton->text(), chip);
        if (!chip.isEmpty())
            QCOMPARE(chipButton->pos(), QPoint(16, headBottom + 12));
        QCOMPARE(p.find("exampleView")->isHidden(), !exampleShown);
        QCOMPARE(p.rect("itemTableView"), QRect(0, headBottom + tableTop, 375, 3 * 58));
        QCOMPARE(p.rect("addButton"), QRect(16, headBottom + tableTop + 3 * 58 + 6, 34, 34));
        QVERIFY(!p.find("addButton")->accessibleName().isEmpty());
    }

    void tableKeepsClearOfTheHomeIndicator_data()
    {
        QTest::addColumn<QSizeF>("screen");
        QTest::addColumn<platform::DeviceIdiom>("idiom");
        QTest::addColumn<int>("rows");
        QTest::addColumn<int>("tableHeight"); // the page leaves a full table 226 points

        const auto phone = platform::DeviceIdiom::Phone;
        QTest::newRow("375x812 phone, full table") << QSizeF(375, 812) << phone << 20 << 226 - 34;
        QTest::newRow("375x812 phone, two rows") << QSizeF(375, 812) << phone << 2 << 2 * 58;
        QTest::newRow("375x812 pad") << QSizeF(375, 812) << platform::DeviceIdiom::Pad << 20 << 226;
        QTest::newRow("320x812 phone") << QSizeF(320, 812) << phone << 20 << 226;
        QTest::newRow("375x667 phone") << QSizeF(375, 667) << phone << 20 << 226;
    }

    void tableKeepsClearOfTheHomeIndicator()
    {
        QFETCH(QSizeF, screen);
        QFETCH(platform::DeviceIdiom, idiom);
        QFETCH(int, rows);
        QFETCH(int, tableHeight);
        platform::ScreenScope scope(screen, idiom);
        Page p(nullptr, true, QSize(375, 500));
        p.showRows(rows);

        QCOMPARE(p.page->itemTableView()->height(), tableHeight);
        QCOMPARE(p.page->itemTableViewHeight(), float(tableHeight));
        // What the table leaves free stays below the add button, over the indicator.
        QCOMPARE(p.page->bottomBlankHeight(), float(500 - p.rect("addButton").bottom() - 1 - 20));
    }

    void textLimit_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<int>("startLength");
        QTest::addColumn<QString>("action");
        QTest::addColumn<bool>("refused");
        QTest::addColumn<QString>("typed");

        QTest::newRow("title at 51") << "titleTextField" << 50 << "onEndEditTitle" << true << "x";
        QTest::newRow("description at 50") << "descTextField" << 49 << "onEndEditDesc" << false << "x";
        QTest::newRow("example, an emoji at 50") << "hintTextField" << 48 << "onAddExample" << false << "\U0001F600";
    }

    void textLimit()
    {
        QFETCH(QString, field);
        QFETCH(int, startLength);
        QFETCH(QString, action);
        QFETCH(bool, refused);
        QFETCH(QString, typed);
        platform::ManualClock clock;
        Page p(nullptr, true);
        auto *edit = p.find<platform::TextField>(qPrintable(field));
        edit->setText(QString(startLength, QLatin1Char('a')));
        QSignalSpy toasts(platform::ToastCenter::instance(), &platform::ToastCenter::toastShown);

        QKeyEvent key(QEvent::KeyPress, 0, Qt::NoModifier, typed);
        QApplication::sendEvent(edit, &key);

        const QString text = QString(startLength, QLatin1Char('a')) + typed;
        QCOMPARE(edit->text(), text);
        QCOMPARE(QList<QVariantList>(toasts), refused ? QList<QVariantList> { limitToast() } : QList<QVariantList>());
        QCOMPARE(p.controller.log, refused ? QStringList() : QStringList { action + ' ' + field + ' ' + text });
    }

    void newRowsAreInsertedOnlyOneAfterTheTable_data()
    {
        QTest::addColumn<int>("held");
        QTest::addColumn<int>("announced");
        QTest::addColumn<int>("shown");
        QTest::newRow("one more") << 2 << 3 << 3;
        QTest::newRow("already there") << 2 << 2 << 2;
        QTest::newRow("two at once") << 1 << 3 << 1;
    }

    void newRowsAreInsertedOnlyOneAfterTheTable()
    {
        QFETCH(int, held);
        QFETCH(int, announced);
        QFETCH(int, shown);
        platform::ManualClock clock;
        Page p(nullptr, true);
        p.showRows(held);
        p.rows.count = announced;
        p.page->reloadTableViewWithCellCount(announced, true);
        QCOMPARE(p.page->itemTableView()->numberOfRows(0), shown);
    }

    void titleFieldTabsOnAndADeadlineTapEndsEditing()
    {
        Page p(nullptr, true);
        p.page->window()->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(p.page->window()));
        p.find("titleTextField")->setFocus();
        for (const char *next : { "descTextField", "hintTextField" }) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            QCOMPARE(QApplication::focusWidget()->objectName(), QLatin1String(next));
        }
        QTest::mouseClick(p.find("deadlineButton"), Qt::LeftButton);
        QVERIFY(!QApplication::focusWidget());
        QCOMPARE(p.controller.log, QStringList { QStringLiteral("onEndEditDeadlineSelector deadlineButton") });
    }
};

QTEST_MAIN(TestGroupNoteContentView)
#include "tst_groupnotecontentview.moc"
