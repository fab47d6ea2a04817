// Toasts in a program without widgets are recorded and reported, never drawn.
#include "platform/ToastCenter.h"

#include <QSignalSpy>
#include <QTest>

class ToastWithoutWidgetsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void recordsWithoutDrawing()
    {
        QSignalSpy shown(platform::ToastCenter::instance(), &platform::ToastCenter::toastShown);
        platform::ToastCenter::instance()->show(QStringLiteral("Stopped"), -5, platform::ToastPosition::Bottom);
        QCOMPARE(shown.value(0), (QVariantList { QStringLiteral("Stopped"), 0, int(platform::ToastPosition::Bottom) }));
        QVERIFY(!platform::ToastCenter::instance()->currentToast());
    }
};

QTEST_GUILESS_MAIN(ToastWithoutWidgetsTest)
#include "tst_toastwithoutwidgets.moc"
