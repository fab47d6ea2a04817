// Scrolling a long table frame by frame, offscreen, on a phone-sized viewport: each frame moves
// the content, lays the rows out and renders the visible area into an image, as a screen would.
// Reports per-frame median and 99th percentile (wall clock and this thread's processor time), the cell widgets alive
// and resident memory.
#include "platform/SystemFont.h"
#include "platform/TableView.h"
#include "platform/TableViewCell.h"
#include "platform/TableViewDataSource.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QLabel>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>

namespace {

constexpr int Rows = 10000;
constexpr int RowHeight = 50;
const QSize Viewport(375, 812);

class TextCell : public platform::TableViewCell
{
public:
    explicit TextCell(const QString &identifier)
        : TableViewCell(identifier)
        , label(new QLabel(contentView()))
    {
        label->setFont(platform::SystemFont::regular(16));
        label->setGeometry(16, 0, Viewport.width() - 32, RowHeight);
    }
    QLabel *label;
};

class TextRows : public platform::TableViewDataSource
{
public:
    int numberOfRows(platform::TableView *, int) const override { return Rows; }
    platform::TableViewCell *cellForRow(platform::TableView *table, const platform::IndexPath &path) override
    {
        auto *cell = static_cast<TextCell *>(table->dequeueReusableCell(QStringLiteral("text")));
        cell->label->setText(QStringLiteral("Entry %1: a line of sign-up text").arg(path.row + 1));
        return cell;
    }
};

double residentMegabytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').value(0).toDouble() / 1024;
    }
    return 0;
}

// This thread's processor time: what a frame costs, whatever else the machine is running.
double threadCpuMs()
{
    timespec now {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

double percentile(std::vector<double> sorted, double fraction)
{
    std::sort(sorted.begin(), sorted.end());
    return sorted[std::min(sorted.size() - 1, size_t(fraction * double(sorted.size())))];
}

// Argument: points scrolled per frame (8: a slow drag; 120: a fast fling).
void BM_TableScrollFrame(benchmark::State &state)
{
    TextRows rows;
    platform::TableView table;
    table.resize(Viewport);
    table.setRowHeight(RowHeight);
    table.registerCell<TextCell>(QStringLiteral("text"));
    table.setDataSource(&rows);
    table.show();
    QImage frame(Viewport, QImage::Format_ARGB32_Premultiplied);
    const qreal step = qreal(state.range(0));
    const qreal end = table.contentSize().height() - Viewport.height();
    qreal offset = 0;
    std::vector<double> frameMs;
    std::vector<double> frameCpuMs;
    QElapsedTimer timer;
    for (auto _ : state) {
        timer.start();
        const double cpuStart = threadCpuMs();
        offset = offset + step > end ? 0 : offset + step;
        table.setContentOffset({ 0, offset });
        table.viewport()->render(&frame);
        frameMs.push_back(timer.nsecsElapsed() / 1e6);
        frameCpuMs.push_back(threadCpuMs() - cpuStart);
    }
    state.counters["p50_ms"] = percentile(frameMs, 0.5);
    state.counters["p99_ms"] = percentile(frameMs, 0.99);
    state.counters["p50_cpu_ms"] = percentile(frameCpuMs, 0.5);
    state.counters["p99_cpu_ms"] = percentile(frameCpuMs, 0.99);
    state.counters["cells"] = double(table.viewport()->findChildren<platform::TableViewCell *>().size());
    state.counters["widgets"] = double(table.findChildren<QWidget *>().size());
    state.counters["rss_MB"] = residentMegabytes();
}

} // namespace

BENCHMARK(BM_TableScrollFrame)->Arg(8)->Arg(120)->Iterations(5000)->Unit(benchmark::kMicrosecond);

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    platform::SystemFont::install();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
