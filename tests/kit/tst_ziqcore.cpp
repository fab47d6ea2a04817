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
const QString Read = QStringLiteral("read");

class EchoService : public ZIQServiceProtocol
{
public:
    QVariant onCall(const QString &method, const QVariantMap &param) override
    {
        return QVariantMap { { QStringLiteral("method"), method }, { QStringLiteral("param"), param } };
    }
};

class Listener : public ZIQNotifyProtocol
{
public:
    explicit Listener(QString name, QStringList *log)
        : m_name(std::move(name))
        , m_log(log)
    {
    }

    void onNotifyEvent(const QString &key, const QString &subKey, QObject *object, const QVariantMap &param) override
    {
        m_log->append(m_name + QLatin1Char(':') + key + QLatin1Char('/') + subKey);
        lastObject = object;
        lastParam = param;
        if (onCall)
            onCall();
    }

    QObject *lastObject = nullptr;
    QVariantMap lastParam;
    std::function<void()> onCall;

private:
    QString m_name;
    QStringList *m_log;
};

class Provider : public ZIQExtensionProtocol
{
public:
    explicit Provider(QList<ZIQExtensionInfo> items)
        : m_items(std::move(items))
    {
    }

    QList<ZIQExtensionInfo> onGetExtension(const QString &extensionID, const QVariantMap &param) override
    {
        askedFor << extensionID;
        lastParam = param;
        return m_items;
    }

    QStringList askedFor;
    QVariantMap lastParam;

private:
    QList<ZIQExtensionInfo> m_items;
};

ZIQExtensionInfo item(const QString &text, int weight)
{
    ZIQExtensionInfo info;
    info.text = text;
    info.weight = weight;
    return info;
}

QStringList texts(const QList<ZIQExtensionInfo> &items)
{
    QStringList result;
    for (const ZIQExtensionInfo &info : items)
        result << info.text;
    return result;
}

} // namespace

class ZIQCoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void callsRegisteredServices();
    void destroyedServicesLeaveTheRegistry();
    void deliversBySubKey_data();
    void deliversBySubKey();
    void deliversInRegistrationOrderOnce();
    void neverCallsDestroyedOrRemovedListeners();
    void collectsExtensionsHeaviestFirst();
    void destroyedProvidersAreNotAsked();
    void pushExtensionIsTheEntityAsJson();
};

void ZIQCoreTest::callsRegisteredServices()
{
    const QString name = QStringLiteral("echo");
    QVERIFY(!ZIQCore::getService(name));
    QVERIFY(!ZIQCore::callService(name, QStringLiteral("ping"), {}).isValid());

    EchoService service;
    ZIQCore::registerService(name, &service);
    QCOMPARE(ZIQCore::getService(name), &service);
    const QVariantMap answer
        = ZIQCore::callService(name, QStringLiteral("ping"), { { QStringLiteral("n"), 1 } }).toMap();
    QCOMPARE(answer.value(QStringLiteral("method")).toString(), QStringLiteral("ping"));
    QCOMPARE(answer.value(QStringLiteral("param")).toMap().value(QStringLiteral("n")).toInt(), 1);

    ZIQCore::unregisterService(name);
    QVERIFY(!ZIQCore::getService(name));
}

void ZIQCoreTest::destroyedServicesLeaveTheRegistry()
{
    auto service = std::make_unique<EchoService>();
    ZIQCore::registerService(QStringLiteral("a"), service.get());
    ZIQCore::registerService(QStringLiteral("b"), service.get());
    service.reset();
    QVERIFY(!ZIQCore::getService(QStringLiteral("a")));
    QVERIFY(!ZIQCore::callService(QStringLiteral("b"), QStringLiteral("ping"), {}).isValid());
}

void ZIQCoreTest::deliversBySubKey_data()
{
    QTest::addColumn<QString>("registeredKey");
    QTest::addColumn<QString>("registeredSubKey");
    QTest::addColumn<bool>("delivered");

    QTest::newRow("same key and sub-key") << Chat << Sent << true;
    QTest::newRow("every sub-key of the key") << Chat << QString() << true;
    QTest::newRow("other sub-key") << Chat << Read << false;
    QTest::newRow("other key") << QStringLiteral("plugin") << Sent << false;
    QTest::newRow("other key, every sub-key") << QStringLiteral("plugin") << QString() << false;
}

void ZIQCoreTest::deliversBySubKey()
{
    QFETCH(QString, registeredKey);
    QFETCH(QString, registeredSubKey);
    QFETCH(bool, delivered);
    QStringList log;
    Listener listener(QStringLiteral("l"), &log);
    ZIQCore::registerEvent(registeredKey, registeredSubKey, &listener);

    QObject sender;
    ZIQCore::notifyEvent(Chat, Sent, &sender, { { QStringLiteral("code"), 0 } });
    QCOMPARE(log.size(), delivered ? 1 : 0);
    if (delivered) {
        QCOMPARE(log.first(), QStringLiteral("l:chat/sent"));
        QCOMPARE(listener.lastObject, &sender);
        QCOMPARE(listener.lastParam.value(QStringLiteral("code")), QVariant(0));
    }
}

void ZIQCoreTest::deliversInRegistrationOrderOnce()
{
    QStringList log;
    Listener second(QStringLiteral("second"), &log);
    Listener first(QStringLiteral("first"), &log);
    ZIQCore::registerEvent(Chat, Sent, &second);
    ZIQCore::registerEvent(Chat, Sent, &first);
    ZIQCore::registerEvent(Chat, Sent, &second);
    ZIQCore::notifyEvent(Chat, Sent, nullptr, {});
    QCOMPARE(log, (QStringList { QStringLiteral("second:chat/sent"), QStringLiteral("first:chat/sent") }));
}

void ZIQCoreTest::neverCallsDestroyedOrRemovedListeners()
{
    QStringList log;
    auto gone = std::make_unique<Listener>(QStringLiteral("gone"), &log);
    ZIQCore::registerEvent(Chat, Sent, gone.get());
    gone.reset();
    ZIQCore::notifyEvent(Chat, Sent, nullptr, {});
    QVERIFY(log.isEmpty());

    // One listener tears down the next ones while the event is being delivered.
    Listener first(QStringLiteral("first"), &log);
    auto destroyed = std::make_unique<Listener>(QStringLiteral("destroyed"), &log);
    Listener removed(QStringLiteral("removed"), &log);
    ZIQCore::registerEvent(Chat, QString(), &first);
    ZIQCore::registerEvent(Chat, Sent, destroyed.get());
    ZIQCore::registerEvent(Chat, Sent, &removed);
    first.onCall = [&] {
        destroyed.reset();
        ZIQCore::unRegisterEventByObject(&removed);
    };
    ZIQCore::notifyEvent(Chat, Sent, nullptr, {});
    QCOMPARE(log, QStringList { QStringLiteral("first:chat/sent") });

    ZIQCore::unRegisterEventByObject(&first);
    ZIQCore::notifyEvent(Chat, Sent, nullptr, {});
    QCOMPARE(log.size(), 1);
}

void ZIQCoreTest::collectsExtensionsHeaviestFirst()
{
    const QString more = QStringLiteral("more");
    Provider light({ item(QStringLiteral("file"), 100), item(QStringLiteral("photo"), 300) });
    Provider heavy({ item(QStringLiteral("note"), 300), item(QStringLiteral("call"), 500) });
    Provider elsewhere({ item(QStringLiteral("other"), 900) });
    ZIQCore::registerExtension(more, &light);
    ZIQCore::registerExtension(more, &heavy);
    ZIQCore::registerExtension(QStringLiteral("minimal"), &elsewhere);

    const QVariantMap param { { QStringLiteral("groupID"), QStringLiteral("g1") } };
    const QList<ZIQExtensionInfo> items = ZIQCore::getExtensionList(more, param);
    // Equal weights keep the order their providers registered in.
    QCOMPARE(texts(items),
        (QStringList {
            QStringLiteral("call"), QStringLiteral("photo"), QStringLiteral("note"), QStringLiteral("file") }));
    QCOMPARE(heavy.lastParam, param);
    QVERIFY(elsewhere.askedFor.isEmpty());
    QVERIFY(ZIQCore::getExtensionList(QStringLiteral("unknown"), {}).isEmpty());

    ZIQCore::unRegisterExtension(&light);
    ZIQCore::unRegisterExtension(&heavy);
    ZIQCore::unRegisterExtension(&elsewhere);
}

void ZIQCoreTest::destroyedProvidersAreNotAsked()
{
    const QString more = QStringLiteral("more");
    auto provider = std::make_unique<Provider>(QList<ZIQExtensionInfo> { item(QStringLiteral("note"), 300) });
    ZIQCore::registerExtension(more, provider.get());
    QCOMPARE(ZIQCore::getExtensionList(more, {}).size(), 1);
    provider.reset();
    QVERIFY(ZIQCore::getExtensionList(more, {}).isEmpty());
}

void ZIQCoreTest::pushExtensionIsTheEntityAsJson()
{
    OfflinePushExtInfo info;
    info.entity.action = 1;
    info.entity.content = QStringLiteral("[投票]");
    info.entity.sender = QStringLiteral("group-1");
    info.entity.nickname = QStringLiteral("Alice \"A\"");
    info.entity.chatType = 2;

    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(info.toReportExtString().toUtf8(), &error);
    QCOMPARE(error.error, QJsonParseError::NoError);
    const QJsonObject entity = document.object().value(QStringLiteral("entity")).toObject();
    QCOMPARE(entity.value(QStringLiteral("action")).toInt(), 1);
    QCOMPARE(entity.value(QStringLiteral("content")).toString(), info.entity.content);
    QCOMPARE(entity.value(QStringLiteral("sender")).toString(), info.entity.sender);
    QCOMPARE(entity.value(QStringLiteral("nickname")).toString(), info.entity.nickname);
    QCOMPARE(entity.value(QStringLiteral("faceUrl")).toString(), QString());
    QCOMPARE(entity.value(QStringLiteral("chatType")).toInt(), 2);
}

QTEST_GUILESS_MAIN(ZIQCoreTest)
#include "tst_ziqcore.moc"
