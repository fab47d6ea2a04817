// View controllers on their own and nested: appearance reported once per transition to a
// controller and its children, layout passes, the owner of a widget, and actions that reach
// that owner only when it answers to them.
#include "RecordingViewController.h"

#include <QLabel>
#include <QPointer>
#include <QTest>

#include <tuple>

using platform::ViewController;

namespace {

class Sender : public QObject
{
    Q_OBJECT
};

/// A screen answering to a few actions; each records its name and argument.
class ActionScreen : public ViewController
{
    Q_OBJECT

public:
    QString received;
    QObject *argument = nullptr;

    Q_INVOKABLE void onSenderTapped(Sender *sender)
    {
        std::tie(received, argument) = std::pair("onSenderTapped", sender);
    }
    Q_INVOKABLE void onAnything(QObject *object) { std::tie(received, argument) = std::pair("onAnything", object); }
    Q_INVOKABLE void onNothing() { received = QStringLiteral("onNothing"); }

Q_SIGNALS:
    void onSignal(Sender *sender);
};

} // namespace

class ViewControllerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void forwardsAppearanceOnceToVisibleChildren()
    {
        QStringList log;
        QWidget window;
        RecordingViewController parent(QStringLiteral("parent"), &log);
        parent.view()->setParent(&window);
        for (const QString &name : { QStringLiteral("child"), QStringLiteral("hidden") }) {
            auto *child = new RecordingViewController(name, &log);
            parent.addChildViewController(child);
            child->view()->setParent(parent.view());
            child->view()->setHidden(name == QLatin1String("hidden"));
            child->didMoveToParentViewController(&parent);
            QCOMPARE(child->parent(), &parent);
        }
        log.clear();

        window.show();
        window.show();
        QCOMPARE(log, calls("parent willAppear, child willAppear, parent didAppear, child didAppear"));
        log.clear();
        window.hide();
        QCOMPARE(log, calls("parent willDisappear, child willDisappear, parent didDisappear, child didDisappear"));
    }

    void aChildJoiningOrLeavingAScreenOnViewAppearsOrDisappears()
    {
        QStringList log;
        RecordingViewController parent(QStringLiteral("parent"), &log);
        parent.view()->show();
        QObject cell; // the child's owner, as a list cell owns its card
        auto *child = new RecordingViewController(QStringLiteral("child"), &log, &cell);
        child->view()->setParent(parent.view());
        child->view()->show();
        log.clear();

        parent.addChildViewController(child);
        QVERIFY(log.isEmpty());
        child->didMoveToParentViewController(&parent);
        QCOMPARE(log, calls("child willAppear, child didAppear"));
        QCOMPARE(parent.childViewControllers(), QList<ViewController *> { child });
        QCOMPARE(child->parent(), &cell);
        log.clear();

        child->removeFromParentViewController();
        QCOMPARE(log, calls("child willDisappear, child didDisappear"));
        QVERIFY(!child->parentViewController() && parent.childViewControllers().isEmpty());
        QCOMPARE(child->parent(), &cell);
    }

    void laysOutOnResizeAndOnceWhenAsked()
    {
        QStringList log;
        RecordingViewController screen(QStringLiteral("screen"), &log);
        screen.view()->show();
        const int shown = screen.layoutPasses;
        screen.view()->resize(200, 300);
        QCOMPARE(screen.layoutPasses, shown + 1);

        screen.setNeedsLayout();
        screen.setNeedsLayout();
        QCOMPARE(screen.layoutPasses, shown + 1);
        QTRY_COMPARE(screen.layoutPasses, shown + 2);
        screen.setNeedsLayout();
        screen.layoutIfNeeded();
        screen.layoutIfNeeded();
        QTest::qWait(0);
        QCOMPARE(screen.layoutPasses, shown + 3);
    }

    void findsTheNearestOwningController()
    {
        QStringList log;
        QWidget window;
        RecordingViewController parent(QStringLiteral("parent"), &log);
        parent.view()->setParent(&window);
        auto *parentLabel = new QLabel(new QWidget(parent.view()));
        auto *child = new RecordingViewController(QStringLiteral("child"), &log);
        parent.addChildViewController(child);
        child->view()->setParent(parent.view());
        auto *childLabel = new QLabel(child->view());

        QCOMPARE(ViewController::owning(parentLabel), &parent);
        QCOMPARE(ViewController::owning(childLabel), child);
        QCOMPARE(ViewController::owning(&window), nullptr);
        // The root view goes with its controller, wherever it has been placed.
        QPointer<QWidget> childView = child->view();
        delete child;
        QVERIFY(childView.isNull());
        QCOMPARE(ViewController::owning(parentLabel), &parent);
    }

    void deliversActionsOnlyToAnOwnerAnsweringToThem_data()
    {
        QTest::addColumn<QByteArray>("action");
        QTest::addColumn<QString>("argumentKind");
        QTest::addColumn<bool>("delivered");
        QTest::newRow("typed action") << QByteArray("onSenderTapped") << "sender" << true;
        QTest::newRow("taking any object") << QByteArray("onAnything") << "plain" << true;
        QTest::newRow("no argument") << QByteArray("onSenderTapped") << "none" << true;
        QTest::newRow("argument of another class") << QByteArray("onSenderTapped") << "plain" << false;
        QTest::newRow("missing action") << QByteArray("onMissing") << "sender" << false;
        QTest::newRow("without a parameter") << QByteArray("onNothing") << "sender" << false;
        QTest::newRow("a signal, not an action") << QByteArray("onSignal") << "sender" << false;
        QTest::newRow("no owner") << QByteArray("onSenderTapped") << "stray" << false;
    }

    void deliversActionsOnlyToAnOwnerAnsweringToThem()
    {
        QFETCH(QByteArray, action);
        QFETCH(QString, argumentKind);
        QFETCH(bool, delivered);
        ActionScreen screen;
        QLabel stray;
        QWidget *control = argumentKind == QLatin1String("stray") ? &stray : new QLabel(new QWidget(screen.view()));
        Sender sender;
        QObject plain;
        QObject *argument = argumentKind == QLatin1String("plain") ? &plain
            : argumentKind == QLatin1String("none")                ? nullptr
                                                                   : &sender;
        int signalled = 0;
        connect(&screen, &ActionScreen::onSignal, &screen, [&] { ++signalled; });

        QCOMPARE(ViewController::performAction(control, action.constData(), argument), delivered);
        QCOMPARE(screen.received, delivered ? QString::fromLatin1(action) : QString());
        QCOMPARE(screen.argument, delivered ? argument : nullptr);
        QCOMPARE(signalled, 0);
    }
};

QTEST_MAIN(ViewControllerTest)
#include "tst_viewcontroller.moc"
