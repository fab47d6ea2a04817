// Toasts over a window: placed where asked, one at a time, and gone once their time is up on
// the main queue's clock.
#include "platform/ManualClock.h"
#include "platform/Toast.h"
#include "platform/ToastCenter.h"

#include <QSignalSpy>
#include <QTest>
#include <QWidget>

using platform::ManualClock;
using platform::Toast;
using platform::ToastCenter;
using platform::ToastPosition;

class ToastTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void placesTheToastOverTheWindow_data();
    void placesTheToastOverTheWindow();
    void disappearsAfterItsDuration();
    void aNewToastReplacesTheOldOne();

private:
    std::unique_ptr<QWidget> m_window;
};

void ToastTest::init()
{
    m_window = std::make_unique<QWidget>();
    m_window->resize(375, 812);
    m_window->show();
}

void ToastTest::cleanup()
{
    m_window.reset();
}

void ToastTest::placesTheToastOverTheWindow_data()
{
    QTest::addColumn<ToastPosition>("position");
    QTest::addColumn<int>("region");

    // The third of the window the toast's centre falls in.
    QTest::newRow("top") << ToastPosition::Top << 0;
    QTest::newRow("center") << ToastPosition::Center << 1;
    QTest::newRow("bottom") << ToastPosition::Bottom << 2;
}

void ToastTest::placesTheToastOverTheWindow()
{
    QFETCH(ToastPosition, position);
    QFETCH(int, region);
    ManualClock clock;
    QSignalSpy shown(ToastCenter::instance(), &ToastCenter::toastShown);

    ToastCenter::instance()->show(QStringLiteral("Saved"), 3000, position);

    QCOMPARE(shown.size(), 1);
    QCOMPARE(shown.at(0).at(0).toString(), QStringLiteral("Saved"));
    QCOMPARE(shown.at(0).at(1).toInt(), 3000);
    QCOMPARE(shown.at(0).at(2).toInt(), static_cast<int>(position));
    Toast *toast = m_window->findChild<Toast *>(QStringLiteral("toast"));
    QVERIFY(toast);
    QCOMPARE(ToastCenter::instance()->currentToast(), toast);
    QVERIFY(toast->isVisible());
    QCOMPARE(toast->text(), QStringLiteral("Saved"));
    const QRect area = m_window->rect();
    QVERIFY(area.contains(toast->geometry()));
    QVERIFY(qAbs(toast->geometry().center().x() - area.center().x()) <= 1);
    QCOMPARE(toast->geometry().center().y() * 3 / area.height(), region);
}

void ToastTest::disappearsAfterItsDuration()
{
    ManualClock clock;
    ToastCenter::instance()->show(QStringLiteral("Sent"), 1500);
    QPointer<Toast> toast = ToastCenter::instance()->currentToast();
    QVERIFY(toast);

    clock.advance(1499);
    QVERIFY(toast->isVisible());
    clock.advance(1);
    QVERIFY(!toast->isVisible());
    QTRY_VERIFY(toast.isNull());
    QVERIFY(!ToastCenter::instance()->currentToast());
    QCOMPARE(ToastCenter::instance()->lastText(), QStringLiteral("Sent"));
}

void ToastTest::aNewToastReplacesTheOldOne()
{
    ManualClock clock;
    ToastCenter::instance()->show(QStringLiteral("first"), 3000);
    QPointer<Toast> first = ToastCenter::instance()->currentToast();
    clock.advance(1000);
    ToastCenter::instance()->show(QStringLiteral("second"), 3000);
    QPointer<Toast> second = ToastCenter::instance()->currentToast();

    QVERIFY(second && second != first);
    QTRY_VERIFY(first.isNull());
    // Empty text neither shows nor replaces anything.
    ToastCenter::instance()->show(QString(), 3000);
    QCOMPARE(ToastCenter::instance()->currentToast(), second.data());
    // The second keeps its own full duration.
    clock.advance(2500);
    QVERIFY(second->isVisible());
    clock.advance(500);
    QVERIFY(!second->isVisible());
}

QTEST_MAIN(ToastTest)
#include "tst_toast.moc"
