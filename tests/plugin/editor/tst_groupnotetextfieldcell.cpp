// The editor's entry line: the 50-unit limit on what reaches the entry, who may edit and until
// when, the repeat button, delivery of the line's actions to the owning screen, and where the
// line's controls stand.
#include "EditorTestSupport.h"
#include "support/GroupFixture.h"

#include "plugin/editor/ZIQGroupNoteTextFieldCell.h"

#include "platform/ManualClock.h"
#include "platform/SystemFont.h"
#include "platform/TextField.h"
#include "platform/ToastCenter.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QSignalSpy>
#include <QToolButton>

using platform::ManualClock;

namespace {

const QString Me = QStringLiteral("alice");
const QString Other = QStringLiteral("bob");
constexpr double Start = 1700000000000.0;
const QString Emoji = QString::fromUtf8("\xF0\x9F\x98\x80"); // two UTF-16 units

ZIQGroupNoteTextFieldCellDataPtr entryRow(const QString &author, const QString &content, double deadline = 0)
{
    auto item = std::make_shared<ZIQGroupNoteItem>(author, Start - 1000, 0, content);
    item->setIndex(7);
    auto row = std::make_shared<ZIQGroupNoteTextFieldCellData>(item);
    row->setDeadlineTimestampInMS(deadline);
    row->setOnEditItemSelector("onEditItem");
    row->setOnRepeatButtonClickedSelector("onRepeatItem");
    return row;
}

struct Line
{
    explicit Line(const ZIQGroupNoteTextFieldCellDataPtr &row)
        : cell(new ZIQGroupNoteTextFieldCell(QString(), screen.view()))
        , data(row)
    {
        cell->resize(375, 46);
        cell->show();
        cell->fillWithData(row);
    }

    platform::TextField *field() const { return cell->textField(); }
    QString stored() const { return data->item()->content(); }

    EditorTestController screen;
    ZIQGroupNoteTextFieldCell *cell;
    ZIQGroupNoteTextFieldCellDataPtr data;
};

enum class Edit { Type, Paste, Backspace };

void apply(platform::TextField *field, Edit edit, const QString &text)
{
    switch (edit) {
    case Edit::Type:
        QTest::keyClicks(field, text);
        break;
    case Edit::Paste:
        QGuiApplication::clipboard()->setText(text);
        QTest::keyClick(field, Qt::Key_V, Qt::ControlModifier);
        break;
    case Edit::Backspace:
        QTest::keyClick(field, Qt::Key_Backspace);
        break;
    }
}

} // namespace

Q_DECLARE_METATYPE(Edit)

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
        QTest::addColumn<Edit>("edit");
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("stored");
        QTest::addColumn<bool>("refused");

        const QString a49(49, u'a');
        const QString a50(50, u'a');
        QTest::newRow("typing the 50th unit") << a49 << Edit::Type << "b" << a49 + "b" << a49 + "b" << false;
        QTest::newRow("typing the 51st unit") << a50 << Edit::Type << "b" << a50 + "b" << a50 << true;
        QTest::newRow("pasting 60 into an empty field")
            << QString() << Edit::Paste << QString(60, u'x') << QString(60, u'x') << QString() << true;
        QTest::newRow("an emoji filling units 49 and 50")
            << QString(48, u'a') << Edit::Paste << Emoji << QString(48, u'a') + Emoji << QString(48, u'a') + Emoji
            << false;
        QTest::newRow("an emoji after 49 units") << a49 << Edit::Paste << Emoji << a49 + Emoji << a49 << true;
        QTest::newRow("deleting back to 50") << a50 + "b" << Edit::Backspace << QString() << a50 << a50 << false;
        QTest::newRow("emptying the field") << "a" << Edit::Backspace << QString() << QString() << QString() << false;
    }

    void onlyTextsOfAtMostFiftyUnitsReachTheEntry()
    {
        QFETCH(QString, before);
        QFETCH(Edit, edit);
        QFETCH(QString, input);
        QFETCH(QString, shown);
        QFETCH(QString, stored);
        QFETCH(bool, refused);
        ManualClock clock(Start);
        // The entry holds the last accepted text; the field may show a longer one typed since.
        Line line(entryRow(Me, before.left(50)));
        line.field()->setText(before);
        QSignalSpy toasts(platform::ToastCenter::instance(), &platform::ToastCenter::toastShown);

        apply(line.field(), edit, input);

        QCOMPARE(line.field()->text(), shown);
        QCOMPARE(line.stored(), stored);
        QCOMPARE(line.screen.calls.size(), refused ? 0 : 1);
        if (!refused) {
            QCOMPARE(line.screen.calls[0].action, QByteArray("onEditItem"));
            QCOMPARE(line.screen.calls[0].sender, line.data.get());
            QCOMPARE(line.screen.calls[0].seen, stored);
        }
        QCOMPARE(toasts.size(), refused ? 1 : 0);
        if (refused) {
            QCOMPARE(toasts[0][0].toString(), localized("ZIQGroupNoteTextFieldExceedLimit"));
            QCOMPARE(toasts[0][1].toInt(), 3000);
            QCOMPARE(toasts[0][2].toInt(), int(platform::ToastPosition::Center));
        }
    }

    void onlyTheAuthorEditsAndOnlyBeforeTheDeadline_data()
    {
        QTest::addColumn<QString>("author");
        QTest::addColumn<double>("deadline");
        QTest::addColumn<double>("elapsed");
        QTest::addColumn<bool>("editable");

        QTest::newRow("own entry, no deadline") << Me << 0.0 << 0.0 << true;
        QTest::newRow("own entry, no deadline, years later") << Me << 0.0 << 1e11 << true;
        QTest::newRow("own entry, negative deadline") << Me << -5.0 << 0.0 << true;
        QTest::newRow("own entry, deadline ahead") << Me << Start + 60000 << 59999.0 << true;
        QTest::newRow("own entry, deadline reached") << Me << Start + 60000 << 60000.0 << false;
        QTest::newRow("own entry, deadline passed") << Me << Start + 60000 << 60001.0 << false;
        QTest::newRow("another member's entry") << Other << 0.0 << 0.0 << false;
        QTest::newRow("another member's entry, deadline ahead") << Other << Start + 60000 << 0.0 << false;
    }

    void onlyTheAuthorEditsAndOnlyBeforeTheDeadline()
    {
        QFETCH(QString, author);
        QFETCH(double, deadline);
        QFETCH(double, elapsed);
        QFETCH(bool, editable);
        ManualClock clock(Start);
        Line line(entryRow(author, QStringLiteral("Tom"), deadline));
        clock.advance(elapsed);
        // The row is filled again whenever the table shows it.
        line.cell->fillWithData(line.data);

        QTest::keyClicks(line.field(), QStringLiteral("!"));

        QCOMPARE(line.field()->text(), editable ? QStringLiteral("Tom!") : QStringLiteral("Tom"));
        QCOMPARE(line.stored(), line.field()->text());
        QCOMPARE(line.screen.calls.size(), editable ? 1 : 0);
        QCOMPARE(line.field()->becomeFirstResponder(), editable);
        QCOMPARE(line.cell->indexLabel()->text(), QStringLiteral("7"));
    }

    void repeatIsReportedWhoeverWroteTheEntry_data()
    {
        QTest::addColumn<QString>("author");
        QTest::addColumn<double>("deadline");
        QTest::newRow("own entry") << Me << 0.0;
        QTest::newRow("another member's entry") << Other << 0.0;
        QTest::newRow("after the deadline") << Me << Start - 1;
    }

    void repeatIsReportedWhoeverWroteTheEntry()
    {
        QFETCH(QString, author);
        QFETCH(double, deadline);
        ManualClock clock(Start);
        Line line(entryRow(author, QStringLiteral("Tom"), deadline));

        QTest::mouseClick(line.cell->repeatButton(), Qt::LeftButton);

        QCOMPARE(line.screen.calls.size(), 1);
        QCOMPARE(line.screen.calls[0].action, QByteArray("onRepeatItem"));
        QCOMPARE(line.screen.calls[0].sender, line.data.get());
    }

    void actionsTheScreenDoesNotAnswerAreDropped_data()
    {
        QTest::addColumn<QByteArray>("action");
        QTest::newRow("unknown action") << QByteArray("onRemoveItem");
        QTest::newRow("no action") << QByteArray();
        QTest::newRow("a name with a colon") << QByteArray("onEditItem:");
    }

    void actionsTheScreenDoesNotAnswerAreDropped()
    {
        QFETCH(QByteArray, action);
        ManualClock clock(Start);
        auto row = entryRow(Me, QStringLiteral("Tom"));
        row->setOnEditItemSelector(action);
        row->setOnRepeatButtonClickedSelector(action);
        Line line(row);

        QTest::keyClicks(line.field(), QStringLiteral("!"));
        QTest::mouseClick(line.cell->repeatButton(), Qt::LeftButton);

        QVERIFY(line.screen.calls.isEmpty());
        // The entry takes the text even when nobody hears of it.
        QCOMPARE(line.stored(), QStringLiteral("Tom!"));
    }

    void controlsStandWhereTheLineNeedsThem_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<QRect>("index");
        QTest::addColumn<QRect>("field");
        QTest::addColumn<QRect>("repeat");
        QTest::newRow("375 wide") << 375 << QRect(16, 12, 22, 21) << QRect(46, 0, 313, 46) << QRect(329, 13, 20, 20);
        QTest::newRow("320 wide") << 320 << QRect(16, 12, 22, 21) << QRect(46, 0, 258, 46) << QRect(274, 13, 20, 20);
    }

    void controlsStandWhereTheLineNeedsThem()
    {
        QFETCH(int, width);
        QFETCH(QRect, index);
        QFETCH(QRect, field);
        QFETCH(QRect, repeat);
        ManualClock clock(Start);
        Line line(entryRow(Me, QStringLiteral("Tom")));
        line.cell->resize(width, 46);

        QCOMPARE(line.cell->indexLabel()->geometry(), index);
        QCOMPARE(line.field()->geometry(), field);
        QCOMPARE(line.cell->repeatButton()->geometry(), repeat);
        // The text keeps clear of the button standing over the field's right end.
        const QRect button = line.cell->repeatButton()->geometry().translated(-field.x(), 0);
        QCOMPARE(line.field()->leftView()->size(), QSize(16, 20));
        QCOMPARE(line.field()->rightView()->size(), QSize(36, 20));
        QVERIFY(field.width() - line.field()->rightView()->width() <= button.left());
        QVERIFY(!line.cell->repeatButton()->icon().isNull());
        QVERIFY(!line.cell->repeatButton()->accessibleName().isEmpty());
    }

    void everyLineDrawsItsTextAtFullStrength_data()
    {
        QTest::addColumn<QString>("author");
        QTest::addColumn<double>("deadline");
        QTest::addColumn<QString>("picture");
        QTest::newRow("own entry") << Me << 0.0 << "entry_own";
        QTest::newRow("another member's entry") << Other << 0.0 << "entry_other";
        QTest::newRow("after the deadline") << Me << Start - 1 << "entry_after_deadline";
    }

    void everyLineDrawsItsTextAtFullStrength()
    {
        QFETCH(QString, author);
        QFETCH(double, deadline);
        QFETCH(QString, picture);
        ManualClock clock(Start);
        Line line(entryRow(author, QStringLiteral("Tom 13800138000"), deadline));

        const QImage image = line.cell->grab().toImage();
        savePicture(line.cell, picture);

        // Read-only lines are not greyed out: their text is as dark as an editable line's.
        const QRect text = line.field()->geometry().adjusted(16, 12, -36, -12);
        QVERIFY2(darkestLightness(image, text) < 60, qPrintable(QString::number(darkestLightness(image, text))));
        QVERIFY(darkestLightness(image, line.cell->indexLabel()->geometry()) < 60);
    }

private:
    platform::ScreenScope m_scope { QSizeF(375, 812) };
    GroupFixture m_group { { Me, Other } };
};

QTEST_MAIN(GroupNoteTextFieldCellTest)
#include "tst_groupnotetextfieldcell.moc"
