// Toasts in a program without widgets are recorded and reported, never drawn.
#include "platform/ToastCenter.h"

#include <QSignalSpy>
#include <QTest>

using platform::ToastCenter;
using platform::ToastPosition;

class ToastWithoutWidgetsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void recordsWithoutDrawing()
    {
        QSignalSpy shown(ToastCenter::instance(), &ToastCenter::toastShown);
        ToastCenter::instance()->show(QStringLiteral("Stopped"), -5, ToastPosition::Bottom);
        QCOMPARE(shown.size(), 1);
        QCOMPARE(shown.at(0).at(1).toInt(), 0);
        QCOMPARE(shown.at(0).at(2).toInt(), static_cast<int>(ToastPosition::Bottom));
        QCOMPARE(ToastCenter::instance()->lastText(), QStringLiteral("Stopped"));
        QVERIFY(!ToastCenter::instance()->currentToast());
    }
};

QTEST_GUILESS_MAIN(ToastWithoutWidgetsTest)
#include "tst_toastwithoutwidgets.moc"
