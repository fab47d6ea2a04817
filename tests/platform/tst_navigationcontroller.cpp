// The navigation stack on a phone: lifecycle order across animated pushes and pops run out on a
// manual clock, the slide in between, the bar (height, title, back button, right widget),
// screens laid out under or below the bar, and a picture of a pushed screen.
#include "RecordingViewController.h"

#include "platform/ManualClock.h"
#include "platform/NavigationBar.h"
#include "platform/NavigationController.h"
#include "platform/NavigationItem.h"
#include "platform/Screen.h"

#include <QCoreApplication>
#include <QDir>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QToolButton>

using platform::ManualClock;
using platform::NavigationBar;
using platform::NavigationController;
using platform::ScreenScope;
using platform::ViewController;

namespace {

constexpr int Transition = NavigationController::TransitionDurationMs;

QStringList calls(std::initializer_list<const char *> entries)
{
    QStringList list;
    for (const char *entry : entries)
        list << QString::fromLatin1(entry);
    return list;
}

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
        QCOMPARE(phone.log, calls({ "A load", "A willAppear", "A didAppear" }));
        phone.log.clear();

        RecordingViewController *b = phone.push(QStringLiteral("B"));
        QCOMPARE(phone.log, calls({ "B load", "A willDisappear(animated)", "B willAppear(animated)" }));
        QCOMPARE(b->view()->x(), 375);
        phone.clock.advance(Transition / 2);
        // Half-way in time, an easing-out slide has covered more than half of the way.
        QVERIFY(b->view()->x() > 0 && b->view()->x() < 375 / 2);
        QVERIFY(phone.root->view()->x() < 0 && phone.root->view()->x() > -375 / 3);
        phone.clock.advance(Transition / 2 - 1);
        QCOMPARE(phone.log.size(), 3);
        phone.clock.advance(1);
        QCOMPARE(phone.log.mid(3), calls({ "A didDisappear(animated)", "B didAppear(animated)" }));
        QCOMPARE(phone.navigation.viewControllers(), (QList<ViewController *> { phone.root, b }));
        QCOMPARE(b->view()->geometry(), QRect(0, 0, 375, 812));
        QVERIFY(b->view()->isVisible() && !phone.root->view()->isVisible());
        phone.log.clear();

        QPointer<ViewController> popped = phone.navigation.popViewControllerAnimated(true);
        QCOMPARE(popped.data(), b);
        QCOMPARE(phone.log, calls({ "B willDisappear(animated)", "A willAppear(animated)" }));
        phone.clock.advance(Transition);
        QCOMPARE(phone.log.mid(2), calls({ "B didDisappear(animated)", "A didAppear(animated)" }));
        QCOMPARE(phone.root->view()->geometry(), QRect(0, 0, 375, 812));
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
            calls({ "A didDisappear(animated)", "B didAppear(animated)", "C load", "B willDisappear(animated)",
                "C willAppear(animated)" }));
        phone.clock.advance(Transition);
        QCOMPARE(c->view()->geometry(), QRect(0, 0, 375, 812));
    }

    void popToRootSkipsTheScreensBetween()
    {
        Phone phone;
        QPointer<ViewController> b = phone.push(QStringLiteral("B"), false);
        QPointer<ViewController> c = phone.push(QStringLiteral("C"), false);
        phone.log.clear();

        QCOMPARE(phone.navigation.popToRootViewController(false), (QList<ViewController *> { b, c }));
        QCOMPARE(phone.log, calls({ "C willDisappear", "A willAppear", "C didDisappear", "A didAppear" }));
        QCOMPARE(phone.navigation.viewControllers(), QList<ViewController *> { phone.root });
        QTRY_VERIFY(b.isNull() && c.isNull());
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
        QCOMPARE(log, calls({ "B load", "B willAppear", "B didAppear" }));
        QVERIFY(!root->isViewLoaded());
    }

    void barAndScreensOnBothPhones_data()
    {
        QTest::addColumn<QSizeF>("phone");
        QTest::addColumn<int>("barHeight");
        QTest::newRow("375 x 812") << QSizeF(375, 812) << 88;
        QTest::newRow("375 x 667") << QSizeF(375, 667) << 64;
    }

    void barAndScreensOnBothPhones()
    {
        QFETCH(QSizeF, phone);
        QFETCH(int, barHeight);
        Phone stack(phone);
        const int height = phone.toSize().height();
        platform::NavigationBar *bar = stack.navigation.navigationBar();
        QCOMPARE(bar->geometry(), QRect(0, 0, 375, barHeight));
        QCOMPARE(stack.navigation.navigationBarBottom(), qreal(barHeight));
        QCOMPARE(bar->findChild<QWidget *>(QStringLiteral("navigationBarHairline"))->geometry(),
            QRect(0, barHeight - 1, 375, 1));
        QCOMPARE(bar->titleLabel()->geometry().top(), barHeight - NavigationBar::ContentHeight);

        // A screen runs under the bar, as tall as the stack, unless it asks to start below it.
        QCOMPARE(stack.root->view()->geometry(), QRect(0, 0, 375, height));
        auto *below = new RecordingViewController(QStringLiteral("B"), &stack.log);
        below->setExtendsUnderNavigationBar(false);
        stack.navigation.pushViewController(below, false);
        QCOMPARE(below->view()->geometry(), QRect(0, barHeight, 375, height - barHeight));
        stack.navigation.view()->resize(375, 600);
        QCOMPARE(below->view()->geometry(), QRect(0, barHeight, 375, 600 - barHeight));
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

    void picturesAPushedScreenWithItsRightWidget()
    {
        Phone phone;
        phone.root->setTitle(QStringLiteral("Team chat"));
        auto *b = new RecordingViewController(QStringLiteral("Group note"), &phone.log);
        QPointer<QPushButton> send = new QPushButton(QStringLiteral("Send"));
        send->resize(56, 28);
        b->navigationItem()->setRightItemWidget(send);
        auto *content = new QLabel(QStringLiteral("Content starts under the bar"), b->view());
        content->move(16, 100);
        phone.navigation.pushViewController(b, true);
        phone.clock.advance(Transition);
        QVERIFY(send->isVisible());
        QCOMPARE(send->geometry(), QRect(375 - 16 - 56, 88 - 44 + 8, 56, 28));

        const QImage picture = phone.navigation.view()->grab().toImage();
        const QString path
            = QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("navigation-pushed.png"));
        QVERIFY(picture.save(path));
        // The hairline is drawn darker than the bar above it.
        QVERIFY(picture.pixelColor(187, 87).lightness() < picture.pixelColor(187, 20).lightness());

        phone.navigation.popViewControllerAnimated(false);
        QVERIFY(!send->isVisible());
        QTRY_VERIFY(send.isNull());
    }
};

QTEST_MAIN(NavigationControllerTest)
#include "tst_navigationcontroller.moc"
