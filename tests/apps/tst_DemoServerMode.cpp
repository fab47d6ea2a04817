// The demo run against a messaging server that is not there: the phone's screens show at once
// and say they are connecting, instead of the program waiting for the server.
#include "DemoApp.h"

#include "platform/ManualClock.h"

#include <QApplication>
#include <QLabel>
#include <QTcpServer>
#include <QTest>
#include <QWidget>

class tst_DemoServerMode : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsThatItIsConnecting()
    {
        platform::ManualClock clock;
        // A loopback port nobody listens on.
        QTcpServer probe;
        QVERIFY(probe.listen(QHostAddress::LocalHost));
        const quint16 port = probe.serverPort();
        probe.close();

        int code = -1;
        const std::optional<DemoOptions> options = DemoOptions::parse(
            { "group-notes-demo", "--server", QStringLiteral("ws://127.0.0.1:%1").arg(port), "--user", "amy" }, code);
        QVERIFY(options);
        DemoApp demo(*options);
        demo.start();
        QWidget *window = nullptr;
        QTRY_VERIFY((window = findWindow()));
        QTRY_VERIFY(titled(window, QStringLiteral("Connecting…")));
        if (const QString picture = qEnvironmentVariable("DEMO_PICTURE"); !picture.isEmpty())
            window->grab().save(picture);
    }

private:
    static QWidget *findWindow()
    {
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (widget->isVisible())
                return widget;
        }
        return nullptr;
    }
    static bool titled(QWidget *window, const QString &title)
    {
        const QList<QLabel *> labels = window->findChildren<QLabel *>();
        return std::any_of(labels.begin(), labels.end(), [&](QLabel *label) { return label->text() == title; });
    }
};

QTEST_MAIN(tst_DemoServerMode)
#include "tst_DemoServerMode.moc"
