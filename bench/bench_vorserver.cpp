// vor-server on loopback in front of the in-process service: a request's round trip, and an
// entry written by one member until the other member's connection has heard of it.
#include "platform/MainQueue.h"
#include "sdk/LocalBackend.h"
#include "sdk/MessagingServer.h"
#include "sdk/ServiceProtocol.h"
#include "server/VorServer.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QJsonDocument>
#include <QTimer>
#include <QWebSocket>

namespace {

/// A raw client that counts the frames it has heard and waits for the next one of a kind.
class BenchClient
{
public:
    BenchClient(const QString &url, const QString &token)
    {
        QObject::connect(&socket, &QWebSocket::textMessageReceived, &socket, [this](const QString &text) {
            last = QJsonDocument::fromJson(text.toUtf8()).object();
            if (loop)
                loop->quit();
        });
        QEventLoop connected;
        QObject::connect(&socket, &QWebSocket::connected, &connected, &QEventLoop::quit);
        socket.open(QUrl(url));
        connected.exec();
        request(QStringLiteral("hello"), { { QStringLiteral("token"), token } });
    }

    QJsonObject request(const QString &op, const QJsonObject &args = {})
    {
        QElapsedTimer elapsed;
        elapsed.start();
        socket.sendTextMessage(QString::fromUtf8(ServiceProtocol::encodeRequest(++id, op, args)));
        const QJsonObject reply = waitFor([this] { return last.value(QLatin1String("re")).toInteger() == id; });
        slowestMs = std::max(slowestMs, elapsed.elapsed());
        return reply;
    }

    template<typename Done> QJsonObject waitFor(Done done)
    {
        QEventLoop waiting;
        loop = &waiting;
        QTimer::singleShot(20000, &waiting, [&waiting] { waiting.exit(1); });
        while (!done() && socket.isValid()) {
            if (waiting.exec() != 0) {
                ++timeouts;
                break;
            }
        }
        loop = nullptr;
        return last;
    }

    QWebSocket socket;
    QJsonObject last;
    QEventLoop *loop = nullptr;
    qint64 id = 0;
    /// Waits given up after 20 s, and the longest request's round trip.
    int timeouts = 0;
    qint64 slowestMs = 0;
};

struct Stage
{
    Stage()
    {
        service.addUser(QStringLiteral("amy"));
        service.addUser(QStringLiteral("ben"));
        service.createGroup(QStringLiteral("g"), { QStringLiteral("amy"), QStringLiteral("ben") });
        ServerOptions options;
        options.secret = "bench";
        options.limits.burst = 1e9;
        server.emplace(options, &backend);
        server->listen();
        const qint64 expiry = qint64(platform::MainQueue::now() / 1000) + 3600;
        amy.emplace(server->url(), server->authority().mint(QStringLiteral("amy"), expiry, false));
        ben.emplace(server->url(), server->authority().mint(QStringLiteral("ben"), expiry, false));
        const QJsonObject message { { QStringLiteral("msgID"), QStringLiteral("note") },
            { QStringLiteral("supportExtension"), true } };
        amy->request(QStringLiteral("sendMessage"),
            { { QStringLiteral("message"), message }, { QStringLiteral("groupID"), QStringLiteral("g") } });
    }

    MessagingServer service;
    LocalBackend backend { &service };
    std::optional<VorServer> server;
    std::optional<BenchClient> amy, ben;
};

void BM_PingRoundTrip(benchmark::State &state)
{
    Stage stage;
    for (auto _ : state)
        stage.amy->request(QStringLiteral("ping"));
    state.counters["slowestMs"] = double(stage.amy->slowestMs);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_PingRoundTrip)->Unit(benchmark::kMicrosecond);

void BM_EntryReachesTheOtherMember(benchmark::State &state)
{
    Stage stage;
    quint64 version = 0;
    for (auto _ : state) {
        const QJsonObject args { { QStringLiteral("msgID"), QStringLiteral("note") },
            { QStringLiteral("extensions"),
                QJsonArray { QJsonObject { { QStringLiteral("key"), QStringLiteral("1") },
                    { QStringLiteral("value"), QString::number(version) } } } },
            { QStringLiteral("seen"), QJsonObject { { QStringLiteral("1"), double(version) } } } };
        const QJsonObject reply = stage.amy->request(QStringLiteral("setExtensions"), args);
        version = quint64(reply.value(QLatin1String("result"))
                              .toObject()
                              .value(QLatin1String("versions"))
                              .toObject()
                              .value(QLatin1String("1"))
                              .toInteger());
        stage.ben->waitFor([&] {
            return stage.ben->last.value(QLatin1String("ev")).toString() == QLatin1String("extensionsChanged")
                && quint64(stage.ben->last.value(QLatin1String("data"))
                               .toObject()
                               .value(QLatin1String("versions"))
                               .toObject()
                               .value(QLatin1String("1"))
                               .toInteger())
                == version;
        });
    }
    state.counters["timeouts"] = stage.amy->timeouts + stage.ben->timeouts;
    state.counters["slowestMs"] = double(stage.amy->slowestMs);
    if (version != quint64(state.iterations()))
        state.SkipWithError(qPrintable(
            QStringLiteral("a write was refused: version %1 after %2 writes").arg(version).arg(state.iterations())));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_EntryReachesTheOtherMember)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
