// Toasts over a window: placed where asked, one at a time, and gone once their time is up on
// the main queue's clock.
#include "platform/ManualClock.h"
#include "platform/Toast.h"
#include "platform/ToastCenter.h"

#include <QTest>
#include <QWidget>

using platform::Toast;
using platform::ToastCenter;
using platform::ToastPosition;

class ToastTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsOverTheWindowForItsDuration_data()
    {
        QTest::addColumn<ToastPosition>("position");
        QTest::addColumn<int>("third"); // of the window, that the toast's centre falls in
        QTest::newRow("top") << ToastPosition::Top << 0;
        QTest::newRow("center") << ToastPosition::Center << 1;
    }

    void showsOverTheWindowForItsDuration()
    {
        QFETCH(ToastPosition, position);
        QFETCH(int, third);
        platform::ManualClock clock;
        QWidget window;
        window.show();
        ToastCenter::instance()->show(QStringLiteral("Saved"), 1500, position);
        QPointer<Toast> toast = window.findChild<Toast *>();
        QVERIFY(toast && toast->isVisible() && window.rect().contains(toast->geometry()));
        QVERIFY(qAbs(toast->geometry().center().x() - window.rect().center().x()) <= 1);
        QCOMPARE(toast->geometry().center().y() * 3 / window.height(), third);
        clock.advance(1499);
        QVERIFY(toast->isVisible());
        clock.advance(1);
        QTRY_VERIFY(toast.isNull());
    }

    void aNewToastReplacesTheOldOne()
    {
        platform::ManualClock clock;
        ToastCenter::instance()->show(QStringLiteral("first"), 3000);
        QPointer<Toast> first = ToastCenter::instance()->currentToast();
        clock.advance(1000);
        ToastCenter::instance()->show(QStringLiteral("second"), 3000);
        ToastCenter::instance()->show(QString(), 3000);
        QPointer<Toast> second = ToastCenter::instance()->currentToast();
        QVERIFY(second && second != first && second->text() == QStringLiteral("second"));
        QTRY_VERIFY(first.isNull());
        // The second keeps its own full duration.
        clock.advance(2999);
        QVERIFY(second->isVisible());
        clock.advance(1);
        QVERIFY(!second->isVisible());
    }
};

QTEST_MAIN(ToastTest)
#include "tst_toast.moc"
