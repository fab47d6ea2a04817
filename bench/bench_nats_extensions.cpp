// Extension writes against a NATS server of their own on loopback: a bare conditional write
// of one key in the extension bucket (the floor any path pays), then the whole server path of
// setExtensions for one key written over and over and for 20 keys in turn, each write naming
// the version the previous one answered, as an editing client does.
#include "sdk/SilentSession.h"
#include "server/nats/NatsBackend.h"
#include "server/nats/NatsStore.h"
#include "support/NatsServerProcess.h"

#include <QCoreApplication>
#include <benchmark/benchmark.h>

namespace {


NatsServerProcess &nats()
{
    static NatsServerProcess server;
    return server;
}

void BM_StoreWrite(benchmark::State &state)
{
    QString error;
    const auto store = NatsStore::connect(nats().url(), &error);
    quint64 revision = store->last(NatsStore::Extensions, "bench.raw").revision;
    for (auto _ : state)
        revision = store->update(NatsStore::Extensions, "bench.raw", "0\nvalue", revision).revision;
    state.SetItemsProcessed(state.iterations());
}

void BM_SetExtensions(benchmark::State &state)
{
    const int keys = int(state.range(0));
    QString error;
    const auto backend = NatsBackend::create(nats().url(), &error);
    SilentSession amy { QStringLiteral("amy") };
    backend->attach(&amy);
    backend->login(&amy, amy.sessionUserID(), {}, {});
    backend->createGroup(nullptr, QStringLiteral("g"), { amy.sessionUserID(), QStringLiteral("bob") }, {});
    auto note = std::make_shared<V2VORMessage>();
    note->setMsgID(backend->newMessageID());
    note->setSupportMessageExtension(true);
    backend->send(&amy, note, {}, QStringLiteral("g"), {}, {});
    QHash<QString, quint64> seen;
    int written = 0;
    for (auto _ : state) {
        const QString key = QStringLiteral("entry_%1").arg(written++ % keys);
        backend->setExtensions(
            &amy, note->msgID(), { { key, QStringLiteral("Saturday") } }, seen, [&](const ExtensionReply &reply) {
                if (reply.results.value(0).resultCode != 0)
                    state.SkipWithError("a write was refused");
                seen.insert(reply.versions);
            });
        QCoreApplication::processEvents();
    }
    state.SetItemsProcessed(state.iterations());
    backend->detach(&amy);
}

} // namespace

BENCHMARK(BM_StoreWrite)->Iterations(2000)->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_SetExtensions)->Arg(1)->Arg(20)->Iterations(2000)->UseRealTime()->Unit(benchmark::kMicrosecond);

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (!nats().isRunning()) {
        fprintf(stderr, "nats-server did not start: %s\n", qPrintable(nats().error()));
        return 1;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
