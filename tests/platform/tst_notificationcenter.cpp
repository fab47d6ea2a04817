// The notification centre: synchronous delivery in registration order, removal, and never a
// call to an observer that is gone or was removed, even in the middle of a post.
#include "platform/NotificationCenter.h"

#include <QTest>

#include <memory>

using platform::Notification;
using platform::NotificationCenter;

namespace {

const QString Updated = QStringLiteral("updated");
const QString Other = QStringLiteral("other");

} // namespace

class NotificationCenterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void postsToObserversInOrder();
    void removesObservers();
    void neverCallsDestroyedObservers();
    void changesDuringAPost();
};

void NotificationCenterTest::postsToObserversInOrder()
{
    NotificationCenter center;
    QObject first, second, third;
    QStringList calls;
    QVariantMap received;
    QObject *sender = nullptr;
    center.addObserver(&second, Updated, [&](const Notification &n) {
        calls << QStringLiteral("second");
        received = n.userInfo;
        sender = n.object;
    });
    center.addObserver(&first, Updated, [&](const Notification &) { calls << QStringLiteral("first"); });
    center.addObserver(&third, Other, [&](const Notification &) { calls << QStringLiteral("third"); });

    QObject poster;
    center.post(Updated, { { QStringLiteral("msgID"), QStringLiteral("m1") } }, &poster);
    QCOMPARE(calls, (QStringList { QStringLiteral("second"), QStringLiteral("first") }));
    QCOMPARE(received.value(QStringLiteral("msgID")).toString(), QStringLiteral("m1"));
    QCOMPARE(sender, &poster);
    QCOMPARE(center.observerCount(Updated), 2);
}

void NotificationCenterTest::removesObservers()
{
    NotificationCenter center;
    QObject observer;
    int updated = 0, other = 0;
    center.addObserver(&observer, Updated, [&](const Notification &) { ++updated; });
    center.addObserver(&observer, Other, [&](const Notification &) { ++other; });

    center.removeObserver(&observer, Updated);
    center.post(Updated);
    center.post(Other);
    QCOMPARE(updated, 0);
    QCOMPARE(other, 1);

    center.removeObserver(&observer);
    center.post(Other);
    QCOMPARE(other, 1);
    QCOMPARE(center.observerCount(Other), 0);
}

void NotificationCenterTest::neverCallsDestroyedObservers()
{
    NotificationCenter center;
    int calls = 0;
    auto observer = std::make_unique<QObject>();
    center.addObserver(observer.get(), Updated, [&](const Notification &) { ++calls; });
    observer.reset();
    center.post(Updated);
    QCOMPARE(calls, 0);
    QCOMPARE(center.observerCount(Updated), 0);
}

void NotificationCenterTest::changesDuringAPost()
{
    NotificationCenter center;
    QObject remover, removed, added;
    auto *destroyed = new QObject;
    QStringList calls;
    center.addObserver(&remover, Updated, [&](const Notification &) {
        calls << QStringLiteral("remover");
        center.removeObserver(&removed);
        delete destroyed;
        center.addObserver(&added, Updated, [&](const Notification &) { calls << QStringLiteral("added"); });
        center.removeObserver(&remover);
    });
    center.addObserver(&removed, Updated, [&](const Notification &) { calls << QStringLiteral("removed"); });
    center.addObserver(destroyed, Updated, [&](const Notification &) { calls << QStringLiteral("destroyed"); });
    center.post(Updated);
    QCOMPARE(calls, QStringList { QStringLiteral("remover") });

    // An observer added during a post hears the next one; one that removed itself does not.
    center.post(Updated);
    QCOMPARE(calls, (QStringList { QStringLiteral("remover"), QStringLiteral("added") }));
}

QTEST_GUILESS_MAIN(NotificationCenterTest)
#include "tst_notificationcenter.moc"
