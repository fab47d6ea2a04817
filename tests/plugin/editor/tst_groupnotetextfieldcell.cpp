// The editor's entry line: the 50-unit limit on what reaches the entry, who may edit and until
// when, the repeat button, delivery to the owning screen, and where the controls stand.
#include "EditorTestSupport.h"

#include "plugin/editor/ZIQGroupNoteTextFieldCell.h"

#include "platform/ManualClock.h"
#include "platform/SystemFont.h"
#include "platform/ToastCenter.h"
#include "support/GroupFixture.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QSignalSpy>
#include <QToolButton>

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
        platform::SystemFont::install();
        QVERIFY(m_group.isReady());
        m_group.actAs(Me);
    }

    void onlyTextsOfAtMostFiftyUnitsReachTheEntry_data()
    {
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("paste"); // typed or deleted when empty
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("stored");
        QTest::addColumn<int>("shown"); // length of the text left in the field

        const QString a48(48, u'a'), a49(49, u'a'), a50(50, u'a');
        const QString emoji = QString::fromUtf8("\xF0\x9F\x98\x80");
        QTest::newRow("typing the 50th unit") << a49 << QString() << "b" << a49 + "b" << 50;
        QTest::newRow("typing the 51st unit") << a50 << QString() << "b" << a50 << 51;
        QTest::newRow("pasting 60 into an empty field")
            << QString() << QString(60, u'x') << QString() << QString() << 60;
        QTest::newRow("an emoji as units 49 and 50") << a48 << emoji << QString() << a48 + emoji << 50;
        QTest::newRow("an emoji after 49 units") << a49 << emoji << QString() << a49 << 51;
        QTest::newRow("deleting back to 50") << a50 + "b" << QString() << QString() << a50 << 50;
    }

    void onlyTextsOfAtMostFiftyUnitsReachTheEntry()
    {
        QFETCH(QString, before);
        QFETCH(QString, paste);
        QFETCH(QString, typed);
        QFETCH(QString, stored);
        QFETCH(int, shown);
        // The entry holds the last accepted text; the field may show a longer one typed since.
        Line line(Me, before.left(50));
        line.field()->setText(before);
        QSignalSpy toasts(platform::ToastCenter::instance(), &platform::ToastCenter::toastShown);

        if (!paste.isEmpty()) {
            QGuiApplication::clipboard()->setText(paste);
            QTest::keyClick(line.field(), Qt::Key_V, Qt::ControlModifier);
        } else if (!typed.isEmpty()) {
            QTest::keyClicks(line.field(), typed);
        } else {
            QTest::keyClick(line.field(), Qt::Key_Backspace);
        }

        const bool refused = shown > 50;
        QCOMPARE(line.field()->text().size(), shown);
        QCOMPARE(line.stored(), stored);
        QCOMPARE(line.screen.log(), refused ? QStringList() : QStringList { "onEditItem  " + stored });
        QCOMPARE(toasts.size(), refused ? 1 : 0);
        if (refused)
            QCOMPARE(toasts[0],
                (QVariantList {
                    localized("ZIQGroupNoteTextFieldExceedLimit"), 3000, int(platform::ToastPosition::Center) }));
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
        QTest::newRow("own, deadline reached") << Me << Start + 60000 << 60000.0 << false << "";
        QTest::newRow("own, deadline passed") << Me << Start + 60000 << 60001.0 << false << "entry_after_deadline";
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

        QTest::keyClicks(line.field(), QStringLiteral("!"));
        QCOMPARE(line.stored().endsWith(u'!'), editable);
        QCOMPARE(line.field()->text(), line.stored());
        QCOMPARE(line.screen.calls.size(), editable ? 1 : 0);
    }

    void actionsTheScreenDoesNotAnswerAreDropped()
    {
        for (const QByteArray &action : { QByteArray("onRemoveItem"), QByteArray() }) {
            Line line(Me, QStringLiteral("Tom"));
            line.data->setOnEditItemSelector(action);
            line.data->setOnRepeatButtonClickedSelector(action);
            QTest::keyClicks(line.field(), QStringLiteral("!"));
            QTest::mouseClick(line.cell->repeatButton(), Qt::LeftButton);
            QVERIFY(line.screen.calls.isEmpty());
            QCOMPARE(line.stored(), QStringLiteral("Tom!"));
        }
    }

    void controlsStandWhereTheLineNeedsThem_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<QRect>("field");
        QTest::addColumn<QRect>("repeat");
        QTest::newRow("375 wide") << 375 << QRect(46, 0, 313, 46) << QRect(329, 13, 20, 20);
        QTest::newRow("320 wide") << 320 << QRect(46, 0, 258, 46) << QRect(274, 13, 20, 20);
    }

    void controlsStandWhereTheLineNeedsThem()
    {
        QFETCH(int, width);
        QFETCH(QRect, field);
        QFETCH(QRect, repeat);
        Line line(Me, QStringLiteral("Tom"));
        line.cell->resize(width, 46);

        QCOMPARE(line.field()->geometry(), field);
        QCOMPARE(line.cell->repeatButton()->geometry(), repeat);
        // The text ends before the button that stands over the field's right end.
        QVERIFY(field.right() - line.field()->rightView()->width() < repeat.left());
        QVERIFY(!line.cell->repeatButton()->accessibleName().isEmpty());
    }

private:
    platform::ScreenScope m_scope { QSizeF(375, 812) };
    GroupFixture m_group { { Me, Other } };
};

QTEST_MAIN(GroupNoteTextFieldCellTest)
#include "tst_groupnotetextfieldcell.moc"
