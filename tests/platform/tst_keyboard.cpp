// The simulated keyboard: focus on a text field brings it up over the window on the main
// queue's clock, with the will/did notifications and frames a phone sends, and goes again.
#include "platform/Keyboard.h"
#include "platform/ManualClock.h"
#include "platform/NotificationCenter.h"
#include "platform/Screen.h"
#include "platform/TextField.h"

#include <QEasingCurve>
#include <QTest>

using namespace platform;

namespace {

struct Posted
{
    QRectF begin;
    QRectF end;
    double duration;
};

// Records every keyboard notification while it lives.
class Recorder : public QObject
{
public:
    Recorder()
    {
        for (const QString &name : { KeyboardWillShowNotification, KeyboardDidShowNotification,
                 KeyboardWillHideNotification, KeyboardDidHideNotification }) {
            NotificationCenter::defaultCenter().addObserver(this, name, [this](const Notification &n) {
                QVERIFY(n.userInfo.value(KeyboardAnimationCurveUserInfoKey).canConvert<QEasingCurve>());
                names.append(n.name);
                posted.append({ n.userInfo.value(KeyboardFrameBeginUserInfoKey).toRectF(),
                    n.userInfo.value(KeyboardFrameEndUserInfoKey).toRectF(),
                    n.userInfo.value(KeyboardAnimationDurationUserInfoKey).toDouble() });
            });
        }
    }

    QStringList names;
    QList<Posted> posted;
};

// A phone-sized window holding one text field, the window itself keeping the focus when it opens.
struct Phone
{
    explicit Phone(const QSizeF &size)
    {
        window.resize(size.toSize());
        field->setGeometry(16, 100, 343, 46);
        window.setFocusPolicy(Qt::ClickFocus);
        window.setFocus();
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
    }

    QWidget window;
    TextField *field = new TextField(&window);
};

} // namespace

class KeyboardTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void slidesUpAndAwayWithNotifications_data()
    {
        QTest::addColumn<QSizeF>("screen");
        QTest::addColumn<qreal>("height");
        QTest::newRow("375x812") << QSizeF(375, 812) << 336.0;
        QTest::newRow("375x667") << QSizeF(375, 667) << 260.0;
    }

    void slidesUpAndAwayWithNotifications()
    {
        QFETCH(QSizeF, screen);
        QFETCH(qreal, height);
        ScreenScope scope(screen);
        ManualClock clock;
        Phone phone(QSizeF(375, 667));
        Recorder recorder;
        const QRectF up(0, screen.height() - height, screen.width(), height);
        const QRectF down(0, screen.height(), screen.width(), height);
        QCOMPARE(Keyboard::height(), height);

        QVERIFY(phone.field->becomeFirstResponder());
        QCOMPARE(Keyboard::firstResponder(), phone.field);
        QCOMPARE(recorder.names, QStringList { KeyboardWillShowNotification });
        QCOMPARE(recorder.posted.last().begin, down);
        QCOMPARE(recorder.posted.last().end, up);
        QCOMPARE(recorder.posted.last().duration, 0.25);
        KeyboardView *panel = Keyboard::instance()->view();
        QVERIFY(panel && panel->parentWidget() == &phone.window);

        clock.advance(125);
        QVERIFY(panel->isVisible() && panel->y() > 667 - height && panel->y() < 667);
        QCOMPARE(recorder.posted.size(), 1);
        clock.advance(125);
        QCOMPARE(recorder.names.last(), KeyboardDidShowNotification);
        QCOMPARE(panel->geometry(), QRect(0, 667 - height, 375, height));
        QCOMPARE(Keyboard::instance()->frame(), up);

        phone.field->resignFirstResponder();
        QCOMPARE(recorder.names.last(), KeyboardWillHideNotification);
        QCOMPARE(recorder.posted.last().begin, up);
        QCOMPARE(recorder.posted.last().end, down);
        clock.advance(250);
        QCOMPARE(recorder.names.last(), KeyboardDidHideNotification);
        QVERIFY(!panel->isVisible());
        QCOMPARE(recorder.posted.size(), 4);
    }

    // Hiding halfway up turns back from where the keyboard stands; the rise never finishes.
    void turnsBackHalfway()
    {
        ScreenScope scope(QSizeF(375, 812));
        ManualClock clock;
        Phone phone(QSizeF(375, 812));
        Recorder recorder;
        phone.field->becomeFirstResponder();
        clock.advance(100);
        const QRectF halfway = Keyboard::instance()->frame();
        QVERIFY(halfway.top() > 812 - 336 && halfway.top() < 812);
        QVERIFY(Keyboard::endEditing(&phone.window));
        QCOMPARE(recorder.posted.last().begin, halfway);
        clock.advance(250);
        QCOMPARE(recorder.names,
            (QStringList { KeyboardWillShowNotification, KeyboardWillHideNotification, KeyboardDidHideNotification }));
        QVERIFY(!Keyboard::endEditing(&phone.window));
    }
};

QTEST_MAIN(KeyboardTest)
#include "tst_keyboard.moc"
