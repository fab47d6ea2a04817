// The kit core: services by name, events by (key, sub-key) and extension points, and that a
// destroyed service, listener or provider is never reached again.
#include "kit/core/OfflinePushExtInfo.h"
#include "kit/core/ZIQCore.h"
#include "kit/core/ZIQExtensionProtocol.h"
#include "kit/core/ZIQNotifyProtocol.h"
#include "kit/core/ZIQServiceProtocol.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <functional>
#include <memory>

namespace {

const QString Chat = QStringLiteral("chat");
const QString Sent = QStringLiteral("sent");

struct EchoService : ZIQServiceProtocol
{
    QVariant onCall(const QString &method, const QVariantMap &param) override
    {
        return QStringList { method, param.value(QStringLiteral("n")).toString() };
    }
};

// Logs "name:key/sub-key" for each event, then runs `onCall`.
struct Listener : ZIQNotifyProtocol
{
    Listener(QString name, QStringList *log)
        : name(std::move(name))
        , log(log)
    {
    }

    void onNotifyEvent(const QString &key, const QString &subKey, QObject *object, const QVariantMap &param) override
    {
        log->append(name + QLatin1Char(':') + key + QLatin1Char('/') + subKey);
        lastObject = object;
        lastParam = param;
        if (onCall)
            onCall();
    }

    QString name;
    QStringList *log;
    QObject *lastObject = nullptr;
    QVariantMap lastParam;
    std::function<void()> onCall;
};

// Offers one item per "text:weight" pair.
struct Provider : ZIQExtensionProtocol
{
    explicit Provider(const QStringList &offers)
        : offers(offers)
    {
    }

    QList<ZIQExtensionInfo> onGetExtension(const QString &, const QVariantMap &param) override
    {
        ++asked;
        lastParam = param;
        QList<ZIQExtensionInfo> items;
        for (const QString &offer : offers)
            items.append({ offer.section(QLatin1Char(':'), 1).toInt(), offer.section(QLatin1Char(':'), 0, 0) });
        return items;
    }

    QStringList offers;
    int asked = 0;
    QVariantMap lastParam;
};

} // namespace

class ZIQCoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void callsServicesUntilTheyGo();
    void deliversBySubKey_data();
    void deliversBySubKey();
    void neverCallsDestroyedOrRemovedListeners();
    void collectsExtensionsHeaviestFirst();
    void pushExtensionIsTheEntityAsJson();
};

void ZIQCoreTest::callsServicesUntilTheyGo()
{
    const QString name = QStringLiteral("echo");
    QVERIFY(!ZIQCore::callService(name, QStringLiteral("ping"), {}).isValid());

    auto service = std::make_unique<EchoService>();
    ZIQCore::registerService(name, service.get());
    ZIQCore::registerService(QStringLiteral("alias"), service.get());
    QCOMPARE(ZIQCore::getService(name), service.get());
    QCOMPARE(ZIQCore::callService(name, QStringLiteral("ping"), { { QStringLiteral("n"), 7 } }).toStringList(),
        (QStringList { QStringLiteral("ping"), QStringLiteral("7") }));
    ZIQCore::unregisterService(name);
    QVERIFY(!ZIQCore::getService(name));

    service.reset();
    QVERIFY(!ZIQCore::getService(QStringLiteral("alias")));
    QVERIFY(!ZIQCore::callService(QStringLiteral("alias"), QStringLiteral("ping"), {}).isValid());
}

void ZIQCoreTest::deliversBySubKey_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("subKey");
    QTest::addColumn<bool>("delivered");

    QTest::newRow("same key and sub-key") << Chat << Sent << true;
    QTest::newRow("every sub-key of the key") << Chat << QString() << true;
    QTest::newRow("other sub-key") << Chat << QStringLiteral("read") << false;
    QTest::newRow("other key, every sub-key") << QStringLiteral("plugin") << QString() << false;
}

void ZIQCoreTest::deliversBySubKey()
{
    QFETCH(QString, key);
    QFETCH(QString, subKey);
    QFETCH(bool, delivered);
    QStringList log;
    Listener listener(QStringLiteral("l"), &log);
    ZIQCore::registerEvent(key, subKey, &listener);
    ZIQCore::registerEvent(key, subKey, &listener);

    QObject sender;
    ZIQCore::notifyEvent(Chat, Sent, &sender, { { QStringLiteral("code"), 0 } });
    QCOMPARE(log, delivered ? QStringList { QStringLiteral("l:chat/sent") } : QStringList());
    if (delivered) {
        QCOMPARE(listener.lastObject, &sender);
        QCOMPARE(listener.lastParam.value(QStringLiteral("code")), QVariant(0));
    }
}

void ZIQCoreTest::neverCallsDestroyedOrRemovedListeners()
{
    QStringList log;
    auto gone = std::make_unique<Listener>(QStringLiteral("gone"), &log);
    ZIQCore::registerEvent(Chat, Sent, gone.get());
    gone.reset();

    // The first listener tears down the ones after it while the event is being delivered.
    Listener first(QStringLiteral("first"), &log);
    auto destroyed = std::make_unique<Listener>(QStringLiteral("destroyed"), &log);
    Listener removed(QStringLiteral("removed"), &log);
    Listener last(QStringLiteral("last"), &log);
    for (Listener *listener : { &first, destroyed.get(), &removed, &last })
        ZIQCore::registerEvent(Chat, Sent, listener);
    first.onCall = [&] {
        destroyed.reset();
        ZIQCore::unRegisterEventByObject(&removed);
    };
    ZIQCore::notifyEvent(Chat, Sent, nullptr, {});
    QCOMPARE(log, (QStringList { QStringLiteral("first:chat/sent"), QStringLiteral("last:chat/sent") }));

    ZIQCore::unRegisterEventByObject(&first);
    log.clear();
    ZIQCore::notifyEvent(Chat, Sent, nullptr, {});
    QCOMPARE(log, QStringList { QStringLiteral("last:chat/sent") });
}

void ZIQCoreTest::collectsExtensionsHeaviestFirst()
{
    const QString more = QStringLiteral("more");
    Provider light({ QStringLiteral("file:100"), QStringLiteral("photo:300") });
    Provider heavy({ QStringLiteral("note:300"), QStringLiteral("call:500") });
    Provider elsewhere({ QStringLiteral("other:900") });
    auto gone = std::make_unique<Provider>(QStringList { QStringLiteral("gone:999") });
    ZIQCore::registerExtension(more, &light);
    ZIQCore::registerExtension(more, &heavy);
    ZIQCore::registerExtension(more, gone.get());
    ZIQCore::registerExtension(QStringLiteral("minimal"), &elsewhere);
    gone.reset();

    const QVariantMap param { { QStringLiteral("groupID"), QStringLiteral("g1") } };
    QStringList texts;
    for (const ZIQExtensionInfo &info : ZIQCore::getExtensionList(more, param))
        texts << info.text;
    // Equal weights keep the order their providers registered in.
    QCOMPARE(texts,
        (QStringList {
            QStringLiteral("call"), QStringLiteral("photo"), QStringLiteral("note"), QStringLiteral("file") }));
    QCOMPARE(heavy.lastParam, param);
    QCOMPARE(elsewhere.asked, 0);

    ZIQCore::unRegisterExtension(&light);
    ZIQCore::unRegisterExtension(&heavy);
    QVERIFY(ZIQCore::getExtensionList(more, {}).isEmpty());
}

void ZIQCoreTest::pushExtensionIsTheEntityAsJson()
{
    OfflinePushExtInfo info;
    info.entity = { 1, QStringLiteral("[投票]"), QStringLiteral("group-1"), QStringLiteral("Alice \"A\""), {}, 2 };

    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(info.toReportExtString().toUtf8(), &error);
    QCOMPARE(error.error, QJsonParseError::NoError);
    const QJsonObject expected {
        { QStringLiteral("action"), 1 },
        { QStringLiteral("content"), QStringLiteral("[投票]") },
        { QStringLiteral("sender"), QStringLiteral("group-1") },
        { QStringLiteral("nickname"), QStringLiteral("Alice \"A\"") },
        { QStringLiteral("faceUrl"), QString() },
        { QStringLiteral("chatType"), 2 },
    };
    QCOMPARE(document.object().value(QStringLiteral("entity")).toObject(), expected);
}

QTEST_GUILESS_MAIN(ZIQCoreTest)
#include "tst_ziqcore.moc"
