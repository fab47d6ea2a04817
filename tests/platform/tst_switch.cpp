// The phone switch: only the user's flips (tap, Space, an assistive toggle) are reported, its
// knob ends where the state says, a tap leaves the focus with the field being edited, and
// assistive technologies see a checkable, checked control.
#include "platform/ManualClock.h"
#include "platform/Switch.h"

#include <QAccessible>
#include <QAccessibleActionInterface>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>

using platform::ManualClock;
using platform::Switch;

class SwitchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyTheUsersFlipsAreReported_data()
    {
        QTest::addColumn<QString>("how");
        QTest::addColumn<bool>("flips");
        QTest::addColumn<bool>("reported");
        QTest::newRow("tap") << "tap" << true << true;
        QTest::newRow("space") << "space" << true << true;
        QTest::newRow("assistive toggle") << "assistive" << true << true;
        QTest::newRow("set by the program") << "setOn" << true << false;
        QTest::newRow("right button") << "right" << false << false;
        QTest::newRow("tap while disabled") << "disabled" << false << false;
    }

    void onlyTheUsersFlipsAreReported()
    {
        QFETCH(QString, how);
        QFETCH(bool, flips);
        QFETCH(bool, reported);
        ManualClock clock;
        QWidget window;
        auto *toggle = new Switch(&window);
        toggle->setAccessibleName(QStringLiteral("Notify the group"));
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QSignalSpy spy(toggle, &Switch::toggled);
        // Assistive technologies see a checkable control whose checked state follows the switch.
        QAccessibleInterface *accessible = QAccessible::queryAccessibleInterface(toggle);
        QVERIFY(accessible && accessible->role() == QAccessible::CheckBox && accessible->state().checkable);

        if (how == QLatin1String("tap")) {
            QTest::mouseClick(toggle, Qt::LeftButton);
        } else if (how == QLatin1String("space")) {
            QTest::keyClick(toggle, Qt::Key_Space);
        } else if (how == QLatin1String("assistive")) {
            QVERIFY(accessible->actionInterface());
            accessible->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
        } else if (how == QLatin1String("setOn")) {
            toggle->setOn(true, true);
        } else if (how == QLatin1String("right")) {
            QTest::mouseClick(toggle, Qt::RightButton);
        } else {
            toggle->setEnabled(false);
            QTest::mouseClick(toggle, Qt::LeftButton);
        }

        QCOMPARE(toggle->isOn(), flips);
        QCOMPARE(accessible->state().checked, flips);
        QCOMPARE(spy.count(), reported ? 1 : 0);
        if (reported)
            QCOMPARE(spy.first().first().toBool(), true);
        clock.advance(Switch::AnimationDurationMs);
        QCOMPARE(toggle->knobPosition(), flips ? 1.0 : 0.0);
    }

    void aTapLeavesTheFocusWithTheFieldBeingEdited()
    {
        QWidget window;
        auto *field = new QLineEdit(&window);
        auto *toggle = new Switch(&window);
        toggle->move(0, 60);
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        field->setFocus();
        QTRY_VERIFY(field->hasFocus());

        QTest::mouseClick(toggle, Qt::LeftButton);
        QVERIFY(toggle->isOn());
        QVERIFY(field->hasFocus());
        // Keyboard users still reach the switch.
        QTest::keyClick(field, Qt::Key_Tab);
        QTRY_VERIFY(toggle->hasFocus());
        QTest::keyClick(toggle, Qt::Key_Space);
        QVERIFY(!toggle->isOn());
    }
};

QTEST_MAIN(SwitchTest)
#include "tst_switch.moc"
