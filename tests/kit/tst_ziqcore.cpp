// The kit core: services by name, events by (key, sub-key) and extension points, and that a
// destroyed service, listener or provider is never reached again.
#include "kit/core/ZIQCore.h"
#include "kit/core/ZIQExtensionProtocol.h"
#include "kit/core/ZIQNotifyProtocol.h"
#include "kit/core/ZIQServiceProtocol.h"

#include <QTest>

#include <functional>
#include <memory>

namespace {

const QString Chat = QStringLiteral("chat");
const QString Sent = QStringLiteral("sent");

// A module of the kit: a service, an event listener and an extension provider at once.
struct Module : ZIQServiceProtocol, ZIQNotifyProtocol, ZIQExtensionProtocol
{
    QVariant onCall(const QString &method, const QVariantMap &param) override
    {
        return method + param.value("n").toString();
    }
    void onNotifyEvent(const QString &, const QString &, QObject *, const QVariantMap &) override { heard(); }
    QList<ZIQExtensionInfo> onGetExtension(const QString &, const QVariantMap &param) override
    {
        lastParam = param;
        return offers;
    }
    std::function<void()> heard;
    QList<ZIQExtensionInfo> offers;
    QVariantMap lastParam;
};

} // namespace

class ZIQCoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void callsServicesUntilTheyGo()
    {
        auto service = std::make_unique<Module>();
        ZIQCore::registerService(QStringLiteral("echo"), service.get());
        QCOMPARE(
            ZIQCore::callService(QStringLiteral("echo"), QStringLiteral("ping"), { { "n", 7 } }), QVariant("ping7"));
        service.reset();
        QVERIFY(!ZIQCore::callService(QStringLiteral("echo"), QStringLiteral("ping"), {}).isValid());
    }

    void deliversToLiveListenersOfTheSubKey()
    {
        QStringList log;
        Module first, everySubKey, otherSubKey, removed, last;
        auto destroyed = std::make_unique<Module>();
        // The first listener tears down two after it while the event is being delivered.
        first.heard = [&] {
            log << QStringLiteral("first");
            destroyed.reset();
            ZIQCore::unRegisterEventByObject(&removed);
        };
        everySubKey.heard = [&] { log << QStringLiteral("every"); };
        last.heard = [&] { log << QStringLiteral("last"); };
        otherSubKey.heard = removed.heard = destroyed->heard = [&] { log << QStringLiteral("wrong"); };
        ZIQCore::registerEvent(Chat, Sent, &first);
        ZIQCore::registerEvent(Chat, QString(), &everySubKey);
        ZIQCore::registerEvent(Chat, QString(), &everySubKey);
        ZIQCore::registerEvent(Chat, QStringLiteral("read"), &otherSubKey);
        for (Module *listener : { destroyed.get(), &removed, &last })
            ZIQCore::registerEvent(Chat, Sent, listener);

        ZIQCore::notifyEvent(Chat, Sent, nullptr, {});
        ZIQCore::notifyEvent(QStringLiteral("plugin"), Sent, nullptr, {});
        QCOMPARE(log, QStringLiteral("first every last").split(QLatin1Char(' ')));
    }

    void collectsExtensionsHeaviestFirst()
    {
        Module light, heavy;
        auto gone = std::make_unique<Module>();
        light.offers = { { 100, QStringLiteral("file") }, { 300, QStringLiteral("photo") } };
        heavy.offers = { { 300, QStringLiteral("note") }, { 500, QStringLiteral("call") } };
        gone->offers = { { 999, QStringLiteral("gone") } };
        for (Module *provider : { &light, &heavy, gone.get() })
            ZIQCore::registerExtension(QStringLiteral("more"), provider);
        gone.reset();

        const QVariantMap param { { QStringLiteral("groupID"), QStringLiteral("g1") } };
        QStringList texts;
        for (const ZIQExtensionInfo &info : ZIQCore::getExtensionList(QStringLiteral("more"), param))
            texts << info.text;
        // Equal weights keep the order their providers registered in.
        QCOMPARE(texts, QStringLiteral("call photo note file").split(QLatin1Char(' ')));
        QCOMPARE(heavy.lastParam, param);
        QVERIFY(ZIQCore::getExtensionList(QStringLiteral("minimal"), param).isEmpty());
    }
};

QTEST_GUILESS_MAIN(ZIQCoreTest)
#include "tst_ziqcore.moc"
