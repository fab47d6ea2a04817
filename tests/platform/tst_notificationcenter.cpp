// The notification centre: synchronous delivery in registration order, removal, and never a
// call to an observer that is gone or was removed, even in the middle of a post.
#include "platform/NotificationCenter.h"

#include <QTest>

using platform::Notification;

class NotificationCenterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void postsToLiveObserversOfTheName()
    {
        const QString updated = QStringLiteral("updated");
        platform::NotificationCenter center;
        QObject first, second, removed, added, poster;
        auto *destroyed = new QObject;
        QStringList calls;
        auto log = [&](const QString &name) { return [&calls, name](const Notification &) { calls << name; }; };
        center.addObserver(&first, updated, [&](const Notification &n) {
            calls << n.userInfo.value(QStringLiteral("msgID")).toString() + (n.object == &poster ? "" : "?");
            // Observers after this one change while the post is under way.
            center.removeObserver(&removed);
            delete std::exchange(destroyed, nullptr);
            center.addObserver(&added, updated, log(QStringLiteral("added")));
            center.removeObserver(&first, updated);
        });
        center.addObserver(&second, updated, log(QStringLiteral("second")));
        center.addObserver(&second, QStringLiteral("other"), log(QStringLiteral("other")));
        center.addObserver(&removed, updated, log(QStringLiteral("removed")));
        center.addObserver(destroyed, updated, log(QStringLiteral("destroyed")));

        center.post(updated, { { QStringLiteral("msgID"), QStringLiteral("m1") } }, &poster);
        QCOMPARE(calls, QStringLiteral("m1 second").split(QLatin1Char(' ')));
        // One added during a post hears the next one; one that removed itself does not.
        center.post(updated);
        QCOMPARE(calls, QStringLiteral("m1 second second added").split(QLatin1Char(' ')));
        center.removeObserver(&second);
        center.post(QStringLiteral("other"));
        QCOMPARE(calls.size(), 4);
    }
};

QTEST_GUILESS_MAIN(NotificationCenterTest)
#include "tst_notificationcenter.moc"
