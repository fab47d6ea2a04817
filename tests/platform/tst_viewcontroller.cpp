// View controllers on their own and nested: the root view built once on demand, appearance
// reported once per transition to a controller and its children, layout passes, the owner of a
// widget, and actions that reach that owner only when it answers to them.
#include "RecordingViewController.h"

#include <QLabel>
#include <QPointer>
#include <QTest>

using platform::ViewController;

namespace {

class Sender : public QObject
{
    Q_OBJECT
};

class OtherSender : public QObject
{
    Q_OBJECT
};

/// A screen answering to a few actions; each records its name and argument.
class ActionScreen : public ViewController
{
    Q_OBJECT

public:
    QStringList received;
    QObject *lastArgument = nullptr;

    Q_INVOKABLE void onSenderTapped(Sender *sender) { record(QStringLiteral("onSenderTapped"), sender); }
    Q_INVOKABLE void onAnything(QObject *object) { record(QStringLiteral("onAnything"), object); }
    Q_INVOKABLE void onNothing() { received << QStringLiteral("onNothing"); }

public Q_SLOTS:
    void onSlot(Sender *sender) { record(QStringLiteral("onSlot"), sender); }

Q_SIGNALS:
    void onSignal(Sender *sender);

private:
    void record(const QString &name, QObject *argument)
    {
        received << name;
        lastArgument = argument;
    }
};

class LabelScreen : public ViewController
{
    Q_OBJECT

public:
    int loads = 0;

protected:
    QWidget *loadView() override { return new QLabel(QStringLiteral("root")); }
    void viewDidLoad() override { ++loads; }
};

} // namespace

class ViewControllerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void loadsItsViewOnceOnDemand()
    {
        LabelScreen screen;
        QVERIFY(!screen.isViewLoaded());
        QCOMPARE(screen.loads, 0);
        QWidget *view = screen.view();
        QVERIFY(qobject_cast<QLabel *>(view));
        QVERIFY(screen.isViewLoaded());
        QCOMPARE(screen.view(), view);
        QCOMPARE(screen.loads, 1);

        delete view;
        QVERIFY(!screen.isViewLoaded());
        screen.view();
        QCOMPARE(screen.loads, 2);
    }

    void deletingAControllerDeletesItsViewWhereverItIs()
    {
        QWidget window;
        auto *screen = new LabelScreen;
        QPointer<QWidget> view = screen->view();
        view->setParent(&window);
        delete screen;
        QVERIFY(view.isNull());
        QVERIFY(window.children().isEmpty());
    }

    void rootFollowsItsWindowAndForwardsToChildren()
    {
        QStringList log;
        QWidget window;
        RecordingViewController parent(QStringLiteral("parent"), &log);
        parent.view()->setParent(&window);
        auto *child = new RecordingViewController(QStringLiteral("child"), &log);
        parent.addChildViewController(child);
        child->view()->setParent(parent.view());
        child->didMoveToParentViewController(&parent);
        QCOMPARE(child->parent(), &parent);
        QCOMPARE(child->parentViewController(), &parent);
        QCOMPARE(parent.childViewControllers(), QList<ViewController *> { child });
        QCOMPARE(log, QStringList({ QStringLiteral("parent load"), QStringLiteral("child load") }));
        log.clear();

        window.show();
        window.show();
        QCOMPARE(log,
            QStringList({ QStringLiteral("parent willAppear"), QStringLiteral("child willAppear"),
                QStringLiteral("parent didAppear"), QStringLiteral("child didAppear") }));
        log.clear();
        window.hide();
        QCOMPARE(log,
            QStringList({ QStringLiteral("parent willDisappear"), QStringLiteral("child willDisappear"),
                QStringLiteral("parent didDisappear"), QStringLiteral("child didDisappear") }));
        QCOMPARE(child->appearance(), ViewController::Appearance::Disappeared);
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
        QCOMPARE(child->parent(), &cell);
        QCOMPARE(log, QStringList({ QStringLiteral("child willAppear"), QStringLiteral("child didAppear") }));
        log.clear();

        child->removeFromParentViewController();
        QCOMPARE(log, QStringList({ QStringLiteral("child willDisappear"), QStringLiteral("child didDisappear") }));
        QVERIFY(!child->parentViewController());
        QVERIFY(parent.childViewControllers().isEmpty());
        QCOMPARE(child->parent(), &cell);
        delete child;
        QVERIFY(parent.childViewControllers().isEmpty());
    }

    void hiddenChildViewsDoNotAppear()
    {
        QStringList log;
        RecordingViewController parent(QStringLiteral("parent"), &log);
        auto *child = new RecordingViewController(QStringLiteral("child"), &log);
        parent.addChildViewController(child);
        child->view()->setParent(parent.view());
        child->view()->hide();
        child->didMoveToParentViewController(&parent);
        log.clear();
        parent.view()->show();
        QCOMPARE(log, QStringList({ QStringLiteral("parent willAppear"), QStringLiteral("parent didAppear") }));
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
        QTest::qWait(0);
        QCOMPARE(screen.layoutPasses, shown + 2);

        screen.setNeedsLayout();
        screen.layoutIfNeeded();
        screen.layoutIfNeeded();
        QCOMPARE(screen.layoutPasses, shown + 3);
    }

    void findsTheNearestOwningController()
    {
        QStringList log;
        QWidget window;
        RecordingViewController parent(QStringLiteral("parent"), &log);
        parent.view()->setParent(&window);
        auto *parentButton = new QLabel(new QWidget(parent.view()));
        auto *child = new RecordingViewController(QStringLiteral("child"), &log);
        parent.addChildViewController(child);
        child->view()->setParent(parent.view());
        auto *childLabel = new QLabel(child->view());

        QCOMPARE(ViewController::owning(parentButton), &parent);
        QCOMPARE(ViewController::owning(childLabel), child);
        QCOMPARE(ViewController::owning(child->view()), child);
        QCOMPARE(ViewController::owning(&window), nullptr);
        QCOMPARE(ViewController::owning(nullptr), nullptr);
        delete child;
        QCOMPARE(ViewController::owning(parentButton), &parent);
    }

    void deliversActionsOnlyToAnOwnerAnsweringToThem_data()
    {
        QTest::addColumn<QByteArray>("action");
        QTest::addColumn<QString>("argumentKind");
        QTest::addColumn<QString>("received"); // empty: nothing delivered

        QTest::newRow("typed action") << QByteArray("onSenderTapped") << "sender"
                                      << "onSenderTapped";
        QTest::newRow("slot") << QByteArray("onSlot") << "sender"
                              << "onSlot";
        QTest::newRow("action taking any object") << QByteArray("onAnything") << "other"
                                                  << "onAnything";
        QTest::newRow("no argument") << QByteArray("onSenderTapped") << "none"
                                     << "onSenderTapped";
        QTest::newRow("argument of another class") << QByteArray("onSenderTapped") << "other"
                                                   << "";
        QTest::newRow("missing action") << QByteArray("onMissing") << "sender"
                                        << "";
        QTest::newRow("empty action name") << QByteArray() << "sender"
                                           << "";
        QTest::newRow("action without a parameter") << QByteArray("onNothing") << "sender"
                                                    << "";
        QTest::newRow("signal of that name") << QByteArray("onSignal") << "sender"
                                             << "";
    }

    void deliversActionsOnlyToAnOwnerAnsweringToThem()
    {
        QFETCH(QByteArray, action);
        QFETCH(QString, argumentKind);
        QFETCH(QString, received);
        ActionScreen screen;
        auto *control = new QLabel(new QWidget(screen.view()));
        Sender sender;
        OtherSender other;
        QObject *argument = argumentKind == QLatin1String("sender") ? static_cast<QObject *>(&sender)
            : argumentKind == QLatin1String("other")                ? static_cast<QObject *>(&other)
                                                                    : nullptr;
        int signalled = 0;
        connect(&screen, &ActionScreen::onSignal, &screen, [&] { ++signalled; });

        const bool delivered = ViewController::performAction(control, action.constData(), argument);
        QCOMPARE(delivered, !received.isEmpty());
        QCOMPARE(screen.respondsToAction(action.constData(), argument), delivered);
        QCOMPARE(screen.received, received.isEmpty() ? QStringList() : QStringList { received });
        QCOMPARE(screen.lastArgument, delivered ? argument : nullptr);
        QCOMPARE(signalled, 0);
    }

    void anActionFromAWidgetWithoutOwnerIsDropped()
    {
        QLabel stray;
        Sender sender;
        QVERIFY(!ViewController::performAction(&stray, "onSenderTapped", &sender));
        QVERIFY(!ViewController::performAction(nullptr, "onSenderTapped", &sender));
    }
};

QTEST_MAIN(ViewControllerTest)
#include "tst_viewcontroller.moc"
