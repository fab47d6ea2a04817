// The editor's entry line: the 50-unit limit on what reaches the entry, who may edit and until
// when, delivery to the owning screen, and the text kept clear of the repeat button.
#include "EditorTestSupport.h"

#include "plugin/editor/ZIQGroupNoteTextFieldCell.h"

#include "platform/ManualClock.h"
#include "support/GroupFixture.h"

#include <QClipboard>
#include <QGuiApplication>

namespace {

const QString Me = QStringLiteral("alice");
const QString Other = QStringLiteral("bob");
constexpr double Start = 1700000000000.0;

struct Line
{
    Line(const QString &author, const QString &content, double deadline = 0)
        : cell(new ZIQGroupNoteTextFieldCell(QString(), screen.view()))
        , data(std::make_shared<ZIQGroupNoteTextFieldCellData>(
              std::make_shared<ZIQGroupNoteItem>(author, Start - 1000, 0, content)))
    {
        data->item()->setIndex(7);
        data->setDeadlineTimestampInMS(deadline);
        data->setOnEditItemSelector("onEditItem");
        data->setOnRepeatButtonClickedSelector("onRepeatItem");
        cell->resize(375, 46);
        screen.view()->show();
        cell->fillWithData(data);
    }

    platform::TextField *field() const { return cell->textField(); }
    QString stored() const { return data->item()->content(); }

    platform::ManualClock clock { Start };
    EditorTestController screen;
    ZIQGroupNoteTextFieldCell *cell;
    ZIQGroupNoteTextFieldCellDataPtr data;
};

} // namespace

class GroupNoteTextFieldCellTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        setUpEditorTests();
        QVERIFY(m_group.isReady());
        m_group.actAs(Me);
    }

    void onlyTextsOfAtMostFiftyUnitsReachTheEntry_data()
    {
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("pasted"); // one unit deleted when empty
        QTest::addColumn<QString>("stored");
        QTest::addColumn<int>("shown"); // length of the text left in the field

        const QString a49(49, u'a'), a50(50, u'a');
        QTest::newRow("the 50th unit") << a49 << "b" << a49 + "b" << 50;
        QTest::newRow("the 51st unit") << a50 << "b" << a50 << 51;
        QTest::newRow("an emoji after 49 units") << a49 << "\U0001F600" << a49 << 51;
        QTest::newRow("deleting back to 50") << a50 + "b" << QString() << a50 << 50;
    }

    void onlyTextsOfAtMostFiftyUnitsReachTheEntry()
    {
        QFETCH(QString, before);
        QFETCH(QString, pasted);
        QFETCH(QString, stored);
        QFETCH(int, shown);
        // The entry holds the last accepted text; the field may show a longer one typed since.
        Line line(Me, before.left(50));
        line.field()->setText(before);
        QSignalSpy toasts(platform::ToastCenter::instance(), &platform::ToastCenter::toastShown);

        QGuiApplication::clipboard()->setText(pasted);
        if (pasted.isEmpty())
            QTest::keyClick(line.field(), Qt::Key_Backspace);
        else
            QTest::keyClick(line.field(), Qt::Key_V, Qt::ControlModifier);

        const bool refused = shown > 50;
        QCOMPARE(line.field()->text().size(), shown);
        QCOMPARE(line.stored(), stored);
        QCOMPARE(line.screen.log, refused ? QStringList() : QStringList { "onEditItem  " + stored });
        QCOMPARE(QList<QVariantList>(toasts), refused ? QList<QVariantList> { limitToast() } : QList<QVariantList>());
    }

    void onlyTheAuthorEditsAndOnlyBeforeTheDeadline_data()
    {
        QTest::addColumn<QString>("author");
        QTest::addColumn<double>("deadline");
        QTest::addColumn<double>("elapsed");
        QTest::addColumn<bool>("editable");
        QTest::addColumn<QString>("picture");

        QTest::newRow("own, no deadline, years later") << Me << 0.0 << 1e11 << true << "entry_own";
        QTest::newRow("own, deadline ahead") << Me << Start + 60000 << 59999.0 << true << "";
        QTest::newRow("own, deadline reached") << Me << Start + 60000 << 60000.0 << false << "entry_after_deadline";
        QTest::newRow("another member's") << Other << 0.0 << 0.0 << false << "entry_other";
    }

    void onlyTheAuthorEditsAndOnlyBeforeTheDeadline()
    {
        QFETCH(QString, author);
        QFETCH(double, deadline);
        QFETCH(double, elapsed);
        QFETCH(bool, editable);
        QFETCH(QString, picture);
        Line line(author, QStringLiteral("Tom 13800138000"), deadline);
        line.clock.advance(elapsed);
        // The table fills a row again each time it shows it.
        line.cell->fillWithData(line.data);
        savePicture(line.cell, picture);
        // A read-only line shows its beginning, an editable one is ready to type at its end.
        QCOMPARE(line.field()->cursorPosition(), editable ? line.stored().size() : 0);

        QTest::keyClicks(line.field(), QStringLiteral("!"));
        QCOMPARE(line.stored().endsWith(u'!'), editable);
        QCOMPARE(line.field()->text(), line.stored());
        QCOMPARE(line.screen.log.size(), editable ? 1 : 0);
        // The text ends before the repeat button that stands over the field's right end.
        const QRect field = line.field()->geometry(), repeat = line.cell->repeatButton()->geometry();
        QVERIFY(field.right() - line.field()->rightView()->width() < repeat.left());
        QVERIFY(!line.cell->repeatButton()->accessibleName().isEmpty());
    }

private:
    platform::ScreenScope m_scope { QSizeF(375, 812) };
    GroupFixture m_group { { Me, Other } };
};

QTEST_MAIN(GroupNoteTextFieldCellTest)
#include "tst_groupnotetextfieldcell.moc"
