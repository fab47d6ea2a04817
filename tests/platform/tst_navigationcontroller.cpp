// The navigation stack on a phone: lifecycle order across animated pushes and pops run out on a
// manual clock, the slide in between, the bar (height, title, back button, right widget),
// screens laid out under or below the bar, and a picture of a pushed screen.
#include "RecordingViewController.h"

#include "platform/ManualClock.h"
#include "platform/NavigationBar.h"
#include "platform/NavigationController.h"
#include "platform/NavigationItem.h"
#include "platform/Screen.h"

#include <QLabel>
#include <QPointer>
#include <QTest>
#include <QToolButton>

using platform::ManualClock;
using platform::NavigationBar;
using platform::NavigationController;
using platform::ScreenScope;
using platform::ViewController;

namespace {

constexpr int Transition = NavigationController::TransitionDurationMs;

/// A stack shown in a window of the phone's size, as a program shows its root screen.
struct Phone
{
    explicit Phone(QSizeF size = QSizeF(375, 812))
        : screen(size)
    {
        navigation.view()->resize(size.toSize());
        navigation.view()->show();
    }

    RecordingViewController *push(const QString &name, bool animated = true)
    {
        auto *screen = new RecordingViewController(name, &log);
        navigation.pushViewController(screen, animated);
        return screen;
    }

    ScreenScope screen;
    ManualClock clock;
    QStringList log;
    RecordingViewController *root = new RecordingViewController(QStringLiteral("A"), &log);
    NavigationController navigation { root };
};

} // namespace

class NavigationControllerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pushAndPopSlideAndReportEachTransitionOnceInOrder()
    {
        Phone phone;
        QCOMPARE(phone.log, calls("A load, A willAppear, A didAppear"));
        phone.log.clear();

        RecordingViewController *b = phone.push(QStringLiteral("B"));
        QCOMPARE(phone.log, calls("B load, A willDisappear(animated), B willAppear(animated)"));
        QCOMPARE(b->view()->x(), 375);
        phone.clock.advance(Transition / 2);
        // Half-way in time, an easing-out slide has covered more than half of the way.
        QVERIFY(b->view()->x() > 0 && b->view()->x() < 375 / 2);
        phone.clock.advance(Transition / 2 - 1);
        QCOMPARE(phone.log.size(), 3);
        phone.clock.advance(1);
        QCOMPARE(phone.log.mid(3), calls("A didDisappear(animated), B didAppear(animated)"));
        QCOMPARE(phone.navigation.viewControllers(), (QList<ViewController *> { phone.root, b }));
        QCOMPARE(b->view()->geometry(), QRect(0, 0, 375, 812));
        QVERIFY(b->view()->isVisible() && !phone.root->view()->isVisible());
        phone.log.clear();

        QPointer<ViewController> popped = phone.navigation.popViewControllerAnimated(true);
        QCOMPARE(popped.data(), b);
        QCOMPARE(phone.log, calls("B willDisappear(animated), A willAppear(animated)"));
        phone.clock.advance(Transition);
        QCOMPARE(phone.log.mid(2), calls("B didDisappear(animated), A didAppear(animated)"));
        QTRY_VERIFY(popped.isNull());
        QCOMPARE(phone.navigation.popViewControllerAnimated(true), nullptr);
    }

    void aPushDuringAPushEndsTheFirstAtOnce()
    {
        Phone phone;
        phone.push(QStringLiteral("B"));
        phone.log.clear();
        RecordingViewController *c = phone.push(QStringLiteral("C"));
        QCOMPARE(phone.log,
            calls("A didDisappear(animated), B didAppear(animated), C load, B willDisappear(animated), C "
                  "willAppear(animated)"));
        phone.clock.advance(Transition);
        QCOMPARE(c->view()->geometry(), QRect(0, 0, 375, 812));
    }

    void aStackOffScreenReportsNothingUntilShown()
    {
        ScreenScope screen(QSizeF(375, 667));
        QStringList log;
        auto *root = new RecordingViewController(QStringLiteral("A"), &log);
        NavigationController navigation(root);
        navigation.pushViewController(new RecordingViewController(QStringLiteral("B"), &log), true);
        QVERIFY(log.isEmpty() && !navigation.isTransitioning());

        navigation.view()->show();
        QCOMPARE(log, calls("B load, B willAppear, B didAppear"));
        QVERIFY(!root->isViewLoaded());
    }

    void screensRunUnderTheBarUnlessAsked()
    {
        Phone stack(QSizeF(375, 667));
        QCOMPARE(stack.navigation.navigationBarBottom(), 64.0);
        // A screen runs under the bar, as tall as the stack, unless it asks to start below it.
        QCOMPARE(stack.root->view()->geometry(), QRect(0, 0, 375, 667));
        auto *below = new RecordingViewController(QStringLiteral("B"), &stack.log);
        below->setExtendsUnderNavigationBar(false);
        stack.navigation.pushViewController(below, false);
        QCOMPARE(below->view()->geometry(), QRect(0, 64, 375, 667 - 64));
        stack.navigation.view()->resize(375, 600);
        QCOMPARE(below->view()->geometry(), QRect(0, 64, 375, 600 - 64));
    }

    void backButtonIsTitledAfterTheScreenBelowAndPops()
    {
        Phone phone;
        NavigationBar *bar = phone.navigation.navigationBar();
        RecordingViewController *b = phone.push(QStringLiteral("B"));
        QCOMPARE(bar->titleLabel()->text(), QStringLiteral("B"));
        QVERIFY(bar->backButton()->isVisible());
        QCOMPARE(bar->backButton()->text(), QStringLiteral("A"));
        QCOMPARE(bar->backButton()->accessibleName(), QStringLiteral("Back"));
        b->setTitle(QStringLiteral("Group note"));
        QCOMPARE(bar->titleLabel()->text(), QStringLiteral("Group note"));

        phone.root->navigationItem()->setBackButtonTitle(QStringLiteral("Chat"));
        QCOMPARE(bar->backButton()->text(), QStringLiteral("Chat"));
        phone.root->navigationItem()->setBackButtonTitle(QString());
        phone.root->setTitle(QString());
        QCOMPARE(bar->backButton()->text(), QStringLiteral("Back"));
        phone.root->setTitle(QStringLiteral("A title far too long to stand beside the centred title"));
        QCOMPARE(bar->backButton()->text(), QStringLiteral("Back"));
        QVERIFY(bar->backButton()->geometry().right() < bar->titleLabel()->geometry().left());

        phone.clock.advance(Transition);
        QTest::mouseClick(bar->backButton(), Qt::LeftButton);
        phone.clock.advance(Transition);
        QCOMPARE(phone.navigation.topViewController(), phone.root);
        QVERIFY(!bar->backButton()->isVisible());
    }
};

QTEST_MAIN(NavigationControllerTest)
#include "tst_navigationcontroller.moc"
