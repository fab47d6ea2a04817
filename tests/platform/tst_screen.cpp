// The phone screen: safe-area insets and navigation bar height for the phones the screens are
// laid out for, and a scope that puts the previous screen back.
#include "platform/Screen.h"

#include <QTest>

using platform::DeviceIdiom;
using platform::Screen;
using platform::ScreenScope;

class ScreenTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void insetsAndBarHeight_data()
    {
        QTest::addColumn<QSizeF>("size");
        QTest::addColumn<DeviceIdiom>("idiom");
        QTest::addColumn<QMarginsF>("insets");
        QTest::addColumn<qreal>("barHeight");
        QTest::newRow("phone with a notch")
            << QSizeF(375, 812) << DeviceIdiom::Phone << QMarginsF(0, 44, 0, 34) << 88.0;
        QTest::newRow("phone with a home button")
            << QSizeF(375, 667) << DeviceIdiom::Phone << QMarginsF(0, 20, 0, 0) << 64.0;
        QTest::newRow("narrower than 375") << QSizeF(320, 812) << DeviceIdiom::Phone << QMarginsF(0, 20, 0, 0) << 64.0;
        QTest::newRow("no screen") << QSizeF() << DeviceIdiom::Phone << QMarginsF() << 64.0;
    }

    void insetsAndBarHeight()
    {
        QFETCH(QSizeF, size);
        QFETCH(DeviceIdiom, idiom);
        QFETCH(QMarginsF, insets);
        QFETCH(qreal, barHeight);
        ScreenScope outer(QSizeF(768, 1024), DeviceIdiom::Pad);
        {
            ScreenScope screen(size, idiom);
            QCOMPARE(Screen::bounds(), QRectF(QPointF(0, 0), size));
            QCOMPARE(Screen::safeAreaInsets(), insets);
            QCOMPARE(Screen::navigationBarHeight(), barHeight);
        }
        // A scope puts back the screen before it.
        QCOMPARE(Screen::bounds().size(), QSizeF(768, 1024));
        QVERIFY(!Screen::isPhone());
    }
};

QTEST_GUILESS_MAIN(ScreenTest)
#include "tst_screen.moc"
