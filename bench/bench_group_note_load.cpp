// A group of 200 members writing one group note at once, as in a busy group chat: a real
// nats-server with JetStream, two vor-servers sharing it as their store, and every member's
// client (half on each server) in this process, all on loopback and all started here.
//
// "burst": every member adds one entry of their own at a random moment within one second.
// Figures: acknowledged entries missing when a fresh client reads the note afterwards (must be
// 0), how long each entry takes from the writer's call until the next member's client (on
// the other server) hears of it, and writes per second.
// "saturate": every member rewrites its entry back to back for three seconds; whole-path
// writes per second against bare revision-checked key/value updates on the same nats-server
// with as many writers as servers, and how long entries take to be heard meanwhile.
//
// Processor time per write of this process (the clients), the servers and nats-server tells
// where the time goes.
#include "BenchFigures.h"
#include "contract/ContractFixture.h"
#include "contract/ServiceUnderTest.h"

#include "sdk/V2VORAdvancedMsgListener.h"

#include <benchmark/benchmark.h>
#include <nats/nats.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QTimer>

#include <atomic>
#include <optional>
#include <thread>
#include <unistd.h>

namespace {

constexpr int kDefaultMembers = 200;
constexpr int kBurstWindowMs = 1000;
constexpr int kSaturateMs = 3000;
constexpr int kSettleMs = 30000;

/// The group's size: 200, or BENCH_MEMBERS (to see how the costs grow with the group).
const int kMembers = qEnvironmentVariableIntValue("BENCH_MEMBERS") > 1 ? qEnvironmentVariableIntValue("BENCH_MEMBERS")
                                                                      : kDefaultMembers;

QElapsedTimer &benchClock()
{
    static QElapsedTimer clock;
    return clock;
}

double nowMs()
{
    return double(benchClock().nsecsElapsed()) / 1e6;
}

/// Runs the event loop until `done` holds or `ms` pass; whether it holds.
bool waitUntil(const std::function<bool()> &done, int ms)
{
    QEventLoop loop;
    QTimer poll;
    poll.setInterval(2);
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        if (done())
            loop.quit();
    });
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    if (!done()) {
        poll.start();
        loop.exec();
    }
    return done();
}

/// Processor time of this process and of each program it started (nats-server, the servers).
struct CpuSample
{
    double benchMs = 0;
    QHash<QString, double> childMs;

    static CpuSample take()
    {
        CpuSample sample;
        sample.benchMs = cpuMs();
        const double tickMs = 1000.0 / double(sysconf(_SC_CLK_TCK));
        const QString tasks = QStringLiteral("/proc/%1/task").arg(getpid());
        for (const QString &task : QDir(tasks).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
            QFile children(tasks + QLatin1Char('/') + task + QStringLiteral("/children"));
            if (!children.open(QIODevice::ReadOnly))
                continue;
            for (const QByteArray &pid : children.readAll().split(' ')) {
                QFile stat(QStringLiteral("/proc/%1/stat").arg(QString::fromLatin1(pid.trimmed())));
                if (pid.trimmed().isEmpty() || !stat.open(QIODevice::ReadOnly))
                    continue;
                const QByteArray line = stat.readAll();
                const qsizetype close = line.lastIndexOf(')');
                const QString name = QString::fromLatin1(line.mid(line.indexOf('(') + 1, close - line.indexOf('(') - 1));
                const QList<QByteArray> fields = line.mid(close + 2).split(' ');
                // utime and stime are fields 14 and 15 of the line, 12 and 13 after the name.
                sample.childMs[name] += (fields.value(11).toDouble() + fields.value(12).toDouble()) * tickMs;
            }
        }
        return sample;
    }
};

/// Writes on their way to the member who watches for them: when each was made, and how long
/// it took until the watcher's client heard of it.
class Visibility
{
public:
    void expect(int watcher, const QString &key, const QString &value) { m_pending.insert(id(watcher, key, value), nowMs()); }
    void forget(int watcher, const QString &key, const QString &value) { m_pending.remove(id(watcher, key, value)); }
    void heard(int member, const QString &key, const QString &value)
    {
        const auto pending = m_pending.constFind(id(member, key, value));
        if (pending == m_pending.constEnd())
            return;
        m_delays.push_back(nowMs() - *pending);
        m_pending.erase(pending);
    }
    qsizetype unheard() const { return m_pending.size(); }
    const std::vector<double> &delays() const { return m_delays; }
    void reset()
    {
        m_pending.clear();
        m_delays.clear();
    }

private:
    static QString id(int watcher, const QString &key, const QString &value)
    {
        return QString::number(watcher) + QLatin1Char('\n') + key + QLatin1Char('\n') + value;
    }

    QHash<QString, double> m_pending;
    std::vector<double> m_delays;
};

/// What one member's client hears.
class Ear : public V2VORAdvancedMsgListener
{
public:
    Ear(int member, Visibility *visibility)
        : m_member(member)
        , m_visibility(visibility)
    {
    }
    void onRecvNewMessage(const V2VORMessagePtr &) override { ++notesHeard; }
    void onRecvMessageExtensionsChanged(const QString &, const QList<V2VORMessageExtension> &extensions) override
    {
        for (const V2VORMessageExtension &extension : extensions)
            m_visibility->heard(m_member, extension.extensionKey, extension.extensionValue);
    }

    int notesHeard = 0;

private:
    int m_member;
    Visibility *m_visibility;
};

/// The answers to one case's writes.
struct Tally
{
    int calls = 0;
    int acked = 0;
    int refused = 0;
    double firstCallMs = -1;
    double lastAckMs = 0;
    QHash<QString, QString> acknowledged;
    /// Called with the member whose write was acknowledged (saturation writes the next one).
    std::function<void(int member)> next;

    int answered() const { return acked + refused; }
    double writesPerSecond() const
    {
        return lastAckMs > firstCallMs ? acked * 1000.0 / (lastAckMs - firstCallMs) : 0;
    }
};

QString memberName(int member)
{
    return QStringLiteral("m%1").arg(member, 3, 10, QLatin1Char('0'));
}

/// nats-server, the two servers, the group and its members' clients, for the whole run.
class Stage
{
public:
    static Stage &get()
    {
        static Stage stage;
        return stage;
    }

    QString error() const { return m_error; }
    /// Where nats-server listens.
    QString natsURL() const { return m_service->storeURL(); }
    Visibility &visibility() { return m_visibility; }

    /// Member 0 posts a new note; null when it could not, or not every member heard of it.
    V2VORMessagePtr postNote();
    /// Starts member `member`'s write of its own entry; the next member watches for it.
    void write(int member, const V2VORMessagePtr &note, const QString &value, const std::shared_ptr<Tally> &tally);
    /// Acknowledged entries a fresh client does not read back as written; -1 when it cannot read.
    int lost(const V2VORMessagePtr &note, const QHash<QString, QString> &acknowledged);

private:
    Stage();
    V2VORManager *member(int index) const { return m_fixture->client(memberName(index)); }

    std::unique_ptr<ServiceUnderTest> m_service;
    std::optional<ContractFixture> m_fixture;
    Visibility m_visibility;
    std::vector<std::unique_ptr<Ear>> m_ears;
    QString m_error;
};

Stage::Stage()
    : m_service(makeServiceUnderTest())
{
    if (!(m_error = m_service->startError()).isEmpty())
        return;
    QStringList names;
    for (int i = 0; i < kMembers; ++i)
        names.append(memberName(i));
    m_fixture.emplace(*m_service, names);
    if (!m_fixture->isReady()) {
        m_error = QStringLiteral("the group could not be set up");
        return;
    }
    for (int i = 0; i < kMembers; ++i) {
        m_ears.push_back(std::make_unique<Ear>(i, &m_visibility));
        member(i)->addAdvancedMsgListener(m_ears.back().get());
    }
}

V2VORMessagePtr Stage::postNote()
{
    const QJsonObject body { { QStringLiteral("businessID"), QStringLiteral("group_note") },
        { QStringLiteral("title"), QStringLiteral("Saturday clean-up: who brings what") },
        { QStringLiteral("version"), 1 } };
    V2VORMessagePtr note = member(0)->createCustomMessage(QJsonDocument(body).toJson(QJsonDocument::Compact));
    note->setSupportMessageExtension(true);
    auto sent = std::make_shared<std::optional<bool>>();
    const auto heard = [this] {
        int sum = 0;
        for (const auto &ear : m_ears)
            sum += ear->notesHeard;
        return sum;
    };
    const int before = heard();
    member(0)->sendMessage(note, {}, m_fixture->groupID(), V2VOR_PRIORITY_DEFAULT, false, std::nullopt, {},
        [sent] { *sent = true; }, [sent](int, const QString &) { *sent = false; });
    // Everyone but the sender hears the note as a new message.
    waitUntil([&] { return (sent->has_value() && !**sent) || (sent->value_or(false) && heard() - before == kMembers - 1); },
        kSettleMs);
    return sent->value_or(false) && heard() - before == kMembers - 1 ? note : nullptr;
}

void Stage::write(int index, const V2VORMessagePtr &note, const QString &value, const std::shared_ptr<Tally> &tally)
{
    const QString key = memberName(index) + QStringLiteral("_1_0");
    const int watcher = (index + 1) % kMembers;
    m_visibility.expect(watcher, key, value);
    ++tally->calls;
    if (tally->firstCallMs < 0)
        tally->firstCallMs = nowMs();
    const auto refuse = [this, tally, watcher, key, value] {
        ++tally->refused;
        m_visibility.forget(watcher, key, value);
    };
    member(index)->setMessageExtensions(note, { { key, value } },
        [tally, index, key, value, refuse](const QList<V2VORMessageExtensionResult> &results) {
            tally->lastAckMs = nowMs();
            if (results.value(0).resultCode != 0)
                return refuse();
            ++tally->acked;
            tally->acknowledged.insert(key, value);
            if (tally->next)
                tally->next(index);
        },
        [refuse](int, const QString &) { refuse(); });
}

int Stage::lost(const V2VORMessagePtr &note, const QHash<QString, QString> &acknowledged)
{
    const std::unique_ptr<V2VORManager> reader = m_fixture->newDevice(memberName(kMembers / 2));
    std::optional<QList<V2VORMessageExtension>> read;
    bool failed = false;
    reader->getMessageExtensions(
        note, [&](const QList<V2VORMessageExtension> &extensions) { read = extensions; },
        [&](int, const QString &) { failed = true; });
    waitUntil([&] { return read.has_value() || failed; }, kSettleMs);
    if (!read)
        return -1;
    QHash<QString, QString> stored;
    for (const V2VORMessageExtension &extension : std::as_const(*read))
        stored.insert(extension.extensionKey, extension.extensionValue);
    int missing = 0;
    for (auto it = acknowledged.constBegin(); it != acknowledged.constEnd(); ++it)
        missing += stored.value(it.key()) != it.value() ? 1 : 0;
    return missing;
}

/// Figures of one case for the table printed at the end.
QStringList &table()
{
    static QStringList rows;
    return rows;
}

/// Processor time per acknowledged write of each part, as counters and as a table cell.
QString reportCpu(benchmark::State &state, const CpuSample &before, int writes)
{
    const CpuSample after = CpuSample::take();
    const double perWrite = writes > 0 ? 1000.0 / writes : 0;
    const double bench = (after.benchMs - before.benchMs) * perWrite;
    const double servers = (after.childMs.value(QStringLiteral("vor-server"))
                               - before.childMs.value(QStringLiteral("vor-server")))
        * perWrite;
    const double nats
        = (after.childMs.value(QStringLiteral("nats-server")) - before.childMs.value(QStringLiteral("nats-server")))
        * perWrite;
    state.counters["cpuClientsUsPerWrite"] = bench;
    state.counters["cpuServersUsPerWrite"] = servers;
    state.counters["cpuNatsUsPerWrite"] = nats;
    return QStringLiteral("cpu µs/write clients %1, servers %2, nats %3")
        .arg(bench, 0, 'f', 0)
        .arg(servers, 0, 'f', 0)
        .arg(nats, 0, 'f', 0);
}

/// Visibility percentiles as counters; the table cell.
QString reportVisibility(benchmark::State &state, const Visibility &visibility)
{
    const double p50 = percentile(visibility.delays(), 0.5);
    const double p99 = percentile(visibility.delays(), 0.99);
    const double max = percentile(visibility.delays(), 1.0);
    state.counters["visibleP50Ms"] = p50;
    state.counters["visibleP99Ms"] = p99;
    state.counters["visibleMaxMs"] = max;
    state.counters["unheard"] = double(visibility.unheard());
    return QStringLiteral("visible p50 %1 ms p99 %2 ms max %3 ms (unheard %4)")
        .arg(p50, 0, 'f', 1)
        .arg(p99, 0, 'f', 1)
        .arg(max, 0, 'f', 1)
        .arg(visibility.unheard());
}

/// One case's note, its tally and where processor time stood as it began.
struct Round
{
    V2VORMessagePtr note;
    std::shared_ptr<Tally> tally = std::make_shared<Tally>();
    CpuSample cpu;
};

/// A new note for a case, or nothing after skipping the case with the reason.
std::optional<Round> startRound(benchmark::State &state)
{
    Stage &stage = Stage::get();
    if (!stage.error().isEmpty()) {
        state.SkipWithError(qPrintable(stage.error()));
        return std::nullopt;
    }
    Round round { stage.postNote() };
    if (!round.note) {
        state.SkipWithError("the note was not posted to every member");
        return std::nullopt;
    }
    stage.visibility().reset();
    round.cpu = CpuSample::take();
    return round;
}

void BM_Burst(benchmark::State &state)
{
    for (auto _ : state) {
        const std::optional<Round> round = startRound(state);
        if (!round)
            return;
        Stage &stage = Stage::get();
        const V2VORMessagePtr note = round->note;
        const std::shared_ptr<Tally> tally = round->tally;
        QObject context;
        for (int i = 0; i < kMembers; ++i) {
            QTimer::singleShot(QRandomGenerator::global()->bounded(kBurstWindowMs), Qt::PreciseTimer, &context,
                [&stage, i, note, tally] { stage.write(i, note, QStringLiteral("Brings %1 chairs").arg(i), tally); });
        }
        const double started = nowMs();
        waitUntil([&] { return tally->answered() == kMembers && stage.visibility().unheard() == 0; },
            kBurstWindowMs + kSettleMs);
        state.SetIterationTime((nowMs() - started) / 1000);
        const QString cpuCell = reportCpu(state, round->cpu, tally->acked);
        const int lost = stage.lost(note, tally->acknowledged);
        state.counters["lostAcked"] = lost;
        state.counters["refused"] = tally->refused + (kMembers - tally->answered());
        state.counters["writesPerSecond"] = tally->writesPerSecond();
        table().append(QStringLiteral("burst     | lost %1 of %2 acked | %3 | %4 writes/s | %5")
                           .arg(lost)
                           .arg(tally->acked)
                           .arg(reportVisibility(state, stage.visibility()))
                           .arg(tally->writesPerSecond(), 0, 'f', 0)
                           .arg(cpuCell));
    }
}

/// Bare revision-checked updates of a file-stored, history-1 bucket on nats-server, one key and
/// one connection per writer thread, for `ms`; updates per second, or an error text.
struct RawResult
{
    double perSecond = 0;
    QString error;
};

RawResult rawUpdates(const QString &url, int writers, int ms)
{
    std::atomic<long> updates { 0 };
    std::atomic<bool> failed { false };
    const auto writer = [&](int index) {
        natsConnection *connection = nullptr;
        jsCtx *js = nullptr;
        kvStore *kv = nullptr;
        kvConfig config;
        kvConfig_Init(&config);
        config.Bucket = "bench_raw";
        config.History = 1;
        config.StorageType = js_FileStorage;
        natsStatus s = natsConnection_ConnectTo(&connection, url.toUtf8().constData());
        if (s == NATS_OK)
            s = natsConnection_JetStream(&js, connection, nullptr);
        if (s == NATS_OK && js_KeyValue(&kv, js, config.Bucket) != NATS_OK)
            s = js_CreateKeyValue(&kv, js, &config);
        const QByteArray key = "writer_" + QByteArray::number(index);
        const QByteArray value = "0\nBrings some chairs";
        uint64_t revision = 0;
        if (s == NATS_OK)
            s = kvStore_Put(&revision, kv, key.constData(), value.constData(), int(value.size()));
        const double end = nowMs() + ms;
        while (s == NATS_OK && nowMs() < end) {
            s = kvStore_Update(&revision, kv, key.constData(), value.constData(), int(value.size()), revision);
            updates += s == NATS_OK ? 1 : 0;
        }
        failed = failed || s != NATS_OK;
        kvStore_Destroy(kv);
        jsCtx_Destroy(js);
        natsConnection_Destroy(connection);
    };
    // The bucket is made once before the writers race for it.
    std::thread(writer, writers).join();
    const double started = nowMs();
    std::vector<std::thread> threads;
    for (int i = 0; i < writers; ++i)
        threads.emplace_back(writer, i);
    for (std::thread &thread : threads)
        thread.join();
    if (failed)
        return { 0, QStringLiteral("a bare update failed") };
    return { double(updates) * 1000.0 / (nowMs() - started), {} };
}

void BM_Saturate(benchmark::State &state)
{
    for (auto _ : state) {
        const std::optional<Round> round = startRound(state);
        if (!round)
            return;
        Stage &stage = Stage::get();
        const V2VORMessagePtr note = round->note;
        const std::shared_ptr<Tally> tally = round->tally;
        const double end = nowMs() + kSaturateMs;
        tally->next = [&stage, note, end, weak = std::weak_ptr<Tally>(tally)](int member) {
            if (const std::shared_ptr<Tally> tally = weak.lock(); tally && nowMs() < end)
                stage.write(member, note, QStringLiteral("Rewrite %1").arg(tally->calls), tally);
        };
        for (int i = 0; i < kMembers; ++i)
            stage.write(i, note, QStringLiteral("Rewrite %1").arg(i), tally);
        const double started = nowMs();
        waitUntil([&] { return nowMs() >= end && tally->answered() == tally->calls; }, kSaturateMs + kSettleMs);
        // Events still on their way are heard before the figures are taken.
        waitUntil([&] { return stage.visibility().unheard() == 0; }, kSettleMs);
        state.SetIterationTime((nowMs() - started) / 1000);
        const QString cpuCell = reportCpu(state, round->cpu, tally->acked);
        const QString visibleCell = reportVisibility(state, stage.visibility());
        const RawResult raw = rawUpdates(stage.natsURL(), 2, kSaturateMs);
        if (!raw.error.isEmpty())
            state.SkipWithError(qPrintable(raw.error));
        const double ratio = raw.perSecond > 0 ? tally->writesPerSecond() / raw.perSecond : 0;
        state.counters["writesPerSecond"] = tally->writesPerSecond();
        state.counters["rawUpdatesPerSecond"] = raw.perSecond;
        state.counters["wholeToRaw"] = ratio;
        state.counters["refused"] = tally->refused;
        table().append(QStringLiteral("saturate  | %1 writes/s whole, %2 raw, ratio %3 | %4 | %5")
                           .arg(tally->writesPerSecond(), 0, 'f', 0)
                           .arg(raw.perSecond, 0, 'f', 0)
                           .arg(ratio, 0, 'f', 3)
                           .arg(visibleCell, cpuCell));
    }
}

} // namespace

BENCHMARK(BM_Burst)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Saturate)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

int main(int argc, char **argv)
{
    benchClock().start();
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    printf("\n%d members, two vor-servers on one nats-server\n", kMembers);
    for (const QString &row : std::as_const(table()))
        printf("%s\n", qPrintable(row));
    return 0;
}
