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
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QToolButton>

using platform::ManualClock;
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
    void pushAndPopReportEachTransitionOnceInOrder()
    {
        Phone phone;
        QCOMPARE(phone.log, calls({ "A load", "A willAppear", "A didAppear" }));
        phone.log.clear();

        RecordingViewController *b = phone.push(QStringLiteral("B"));
        QCOMPARE(phone.log, calls({ "B load", "A willDisappear(animated)", "B willAppear(animated)" }));
        QVERIFY(phone.navigation.isTransitioning());
        phone.clock.advance(Transition - 1);
        QCOMPARE(phone.log.size(), 3);
        phone.clock.advance(1);
        QCOMPARE(phone.log.mid(3), calls({ "A didDisappear(animated)", "B didAppear(animated)" }));
        QVERIFY(!phone.navigation.isTransitioning());
        QCOMPARE(phone.navigation.viewControllers(), (QList<ViewController *> { phone.root, b }));
        QCOMPARE(b->navigationController(), &phone.navigation);
        QVERIFY(b->view()->isVisible() && !phone.root->view()->isVisible());
        phone.log.clear();

        QPointer<ViewController> popped = phone.navigation.popViewControllerAnimated(true);
        QCOMPARE(popped.data(), b);
        QCOMPARE(phone.log, calls({ "B willDisappear(animated)", "A willAppear(animated)" }));
        phone.clock.advance(Transition);
        QCOMPARE(phone.log.mid(2), calls({ "B didDisappear(animated)", "A didAppear(animated)" }));
        QCOMPARE(phone.navigation.topViewController(), phone.root);
        QVERIFY(phone.root->view()->isVisible());
        QTRY_VERIFY(popped.isNull());

        phone.log.clear();
        QCOMPARE(phone.navigation.popViewControllerAnimated(true), nullptr);
        QVERIFY(phone.log.isEmpty());
    }

    void slidesTheNewScreenInOverTheOld()
    {
        Phone phone;
        RecordingViewController *b = phone.push(QStringLiteral("B"));
        QCOMPARE(b->view()->x(), 375);
        phone.clock.advance(Transition / 2);
        // Half-way in time, an easing-out slide has covered more than half of the way.
        QVERIFY2(b->view()->x() > 0 && b->view()->x() < 375 / 2, qPrintable(QString::number(b->view()->x())));
        QVERIFY(phone.root->view()->x() < 0 && phone.root->view()->x() > -375 / 3);
        phone.clock.advance(Transition / 2);
        QCOMPARE(b->view()->geometry(), QRect(0, 0, 375, 812));
        QCOMPARE(phone.root->view()->geometry(), QRect(0, 0, 375, 812));

        phone.navigation.popViewControllerAnimated(true);
        phone.clock.advance(Transition / 2);
        QVERIFY(b->view()->x() > 375 / 2 && b->view()->x() < 375);
    }

    void aChildOfAPushedScreenFollowsIt()
    {
        Phone phone;
        auto *b = new RecordingViewController(QStringLiteral("B"), &phone.log);
        auto *card = new RecordingViewController(QStringLiteral("card"), &phone.log);
        b->addChildViewController(card);
        card->view()->setParent(b->view());
        card->didMoveToParentViewController(b);
        phone.log.clear();

        phone.navigation.pushViewController(b, true);
        phone.clock.advance(Transition);
        QCOMPARE(phone.log,
            calls({ "A willDisappear(animated)", "B willAppear(animated)", "card willAppear(animated)",
                "A didDisappear(animated)", "B didAppear(animated)", "card didAppear(animated)" }));
        QCOMPARE(card->navigationController(), &phone.navigation);
        phone.log.clear();

        phone.navigation.popViewControllerAnimated(false);
        QCOMPARE(phone.log,
            calls({ "B willDisappear", "card willDisappear", "A willAppear", "B didDisappear", "card didDisappear",
                "A didAppear" }));
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
        QCOMPARE(phone.navigation.topViewController(), c);
        QCOMPARE(c->view()->geometry(), QRect(0, 0, 375, 812));
    }

    void popToRootSkipsTheScreensBetween()
    {
        Phone phone;
        QPointer<ViewController> b = phone.push(QStringLiteral("B"), false);
        QPointer<ViewController> c = phone.push(QStringLiteral("C"), false);
        phone.log.clear();

        const QList<ViewController *> popped = phone.navigation.popToRootViewController(false);
        QCOMPARE(popped, (QList<ViewController *> { b, c }));
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
        auto *b = new RecordingViewController(QStringLiteral("B"), &log);
        navigation.pushViewController(b, true);
        QVERIFY(log.isEmpty());
        QVERIFY(!navigation.isTransitioning());

        navigation.view()->resize(375, 667);
        navigation.view()->show();
        QCOMPARE(log, calls({ "B load", "B willAppear", "B didAppear" }));
        QVERIFY(!root->isViewLoaded());
        navigation.popViewControllerAnimated(true);
        QCOMPARE(log.mid(3), calls({ "A load", "B willDisappear(animated)", "A willAppear(animated)" }));
    }

    void barHeightOnBothPhones_data()
    {
        QTest::addColumn<QSizeF>("phone");
        QTest::addColumn<int>("barHeight");
        QTest::newRow("375 x 812") << QSizeF(375, 812) << 88;
        QTest::newRow("375 x 667") << QSizeF(375, 667) << 64;
    }

    void barHeightOnBothPhones()
    {
        QFETCH(QSizeF, phone);
        QFETCH(int, barHeight);
        Phone stack(phone);
        platform::NavigationBar *bar = stack.navigation.navigationBar();
        QCOMPARE(bar->geometry(), QRect(0, 0, 375, barHeight));
        QCOMPARE(stack.navigation.navigationBarBottom(), qreal(barHeight));
        auto *hairline = bar->findChild<QWidget *>(QStringLiteral("navigationBarHairline"));
        QVERIFY(hairline);
        QCOMPARE(hairline->geometry(), QRect(0, barHeight - 1, 375, 1));
        // The title sits in the row below the status area.
        QCOMPARE(bar->titleLabel()->y(), barHeight - 44);
        QCOMPARE(bar->titleLabel()->height(), 44);
    }

    void screensRunUnderTheBarOrBelowIt_data()
    {
        QTest::addColumn<bool>("underBar");
        QTest::addColumn<QRect>("frame");
        QTest::newRow("under the bar") << true << QRect(0, 0, 375, 812);
        QTest::newRow("below the bar") << false << QRect(0, 88, 375, 812 - 88);
    }

    void screensRunUnderTheBarOrBelowIt()
    {
        QFETCH(bool, underBar);
        QFETCH(QRect, frame);
        Phone phone;
        auto *b = new RecordingViewController(QStringLiteral("B"), &phone.log);
        b->setExtendsUnderNavigationBar(underBar);
        phone.navigation.pushViewController(b, true);
        phone.clock.advance(Transition);
        QCOMPARE(b->view()->geometry(), frame);
        QCOMPARE(b->view()->height() == phone.navigation.view()->height(), underBar);
        phone.navigation.view()->resize(375, 700);
        QCOMPARE(b->view()->geometry().bottom(), 699);
    }

    void barShowsTheTopScreenAndABackButton()
    {
        Phone phone;
        platform::NavigationBar *bar = phone.navigation.navigationBar();
        QVERIFY(!bar->backButton()->isVisible());
        QCOMPARE(bar->titleLabel()->text(), QStringLiteral("A"));

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

    void barShowsTheTopScreensRightWidget()
    {
        Phone phone;
        platform::NavigationBar *bar = phone.navigation.navigationBar();
        RecordingViewController *b = phone.push(QStringLiteral("B"), false);
        QPointer<QPushButton> send = new QPushButton(QStringLiteral("Send"));
        send->resize(56, 28);
        b->navigationItem()->setRightItemWidget(send);
        QVERIFY(send->isVisible());
        QCOMPARE(send->parentWidget(), bar);
        QCOMPARE(send->geometry(), QRect(375 - 16 - 56, 88 - 44 + 8, 56, 28));

        phone.navigation.popViewControllerAnimated(false);
        QVERIFY(!send->isVisible());
        QTRY_VERIFY(send.isNull());
    }

    void picturesAPushedScreen()
    {
        Phone phone;
        phone.root->setTitle(QStringLiteral("Team chat"));
        auto *b = new RecordingViewController(QStringLiteral("Group note"), &phone.log);
        auto *send = new QPushButton(QStringLiteral("Send"));
        send->resize(56, 28);
        b->navigationItem()->setRightItemWidget(send);
        auto *content = new QLabel(QStringLiteral("Content starts under the bar"), b->view());
        content->move(16, 100);
        phone.navigation.pushViewController(b, true);
        phone.clock.advance(Transition);

        const QImage picture = phone.navigation.view()->grab().toImage();
        const QString path
            = QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("navigation-pushed.png"));
        QVERIFY(picture.save(path));
        QCOMPARE(picture.size(), QSize(375, 812));
        // The hairline is drawn darker than the bar above it.
        const QColor bar = picture.pixelColor(187, 20);
        const QColor hairline = picture.pixelColor(187, 87);
        QVERIFY(hairline.lightness() < bar.lightness());
    }
};

QTEST_MAIN(NavigationControllerTest)
#include "tst_navigationcontroller.moc"
