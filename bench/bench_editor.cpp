// The editor over a note of 300 entries on the phone's screen: opening it (built, laid out and
// rendered) and typing into one entry, one key a frame (key handled, row redrawn, the screen
// rendered). Frame times on the wall clock and as this process's processor time, since the
// machine may be busy with other work.
#include "BenchSupport.h"
#include "support/GroupFixture.h"

#include "plugin/editor/ZIQGroupNoteContentView.h"
#include "plugin/editor/ZIQGroupNoteTextFieldCell.h"
#include "plugin/editor/ZIQGroupNoteViewController.h"

#include "platform/NavigationController.h"
#include "platform/Screen.h"
#include "platform/SystemFont.h"
#include "platform/TableView.h"
#include "platform/TextField.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLoggingCategory>
#include <QTest>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>

namespace {

constexpr int Entries = 300;
const QSize Phone = PhoneBenchApplication::Phone;

/// A phone with the editor of a new note holding 300 entries of the current user.
struct EditorPhone
{
    EditorPhone()
        : navigation(new platform::ViewController)
    {
        editor = new ZIQGroupNoteViewController(QStringLiteral("group-1"), nullptr, true);
        for (int i = 0; i < Entries; ++i) {
            editor->dataProvider()->addNewItem();
            editor->dataProvider()->info()->items().constLast()->setContent(QStringLiteral("Entry %1").arg(i + 1));
        }
        editor->dataProvider()->convertInfoToCellData();
        navigation.view()->resize(Phone);
        navigation.view()->show();
    }
    void open()
    {
        navigation.pushViewController(editor, false);
        navigation.finishTransition();
        frame.fill(Qt::transparent);
        navigation.view()->render(&frame);
    }

    platform::NavigationController navigation;
    ZIQGroupNoteViewController *editor;
    QImage frame { Phone, QImage::Format_ARGB32_Premultiplied };
};

void BM_OpenEditor(benchmark::State &state)
{
    std::vector<double> wall, cpu;
    for (auto _ : state) {
        EditorPhone phone;
        QElapsedTimer timer;
        const double cpuStart = cpuMs();
        timer.start();
        phone.open();
        wall.push_back(double(timer.nsecsElapsed()) / 1e6);
        cpu.push_back(cpuMs() - cpuStart);
        state.SetIterationTime(wall.back() / 1e3);
    }
    state.counters["rows"] = Entries;
    state.counters["open_p50_ms"] = percentile(wall, 0.5);
    state.counters["open_max_ms"] = percentile(wall, 1.0);
    state.counters["open_p50_cpu_ms"] = percentile(cpu, 0.5);
}
BENCHMARK(BM_OpenEditor)->Iterations(10)->UseManualTime()->Unit(benchmark::kMillisecond);

void BM_TypeIntoEntry(benchmark::State &state)
{
    EditorPhone phone;
    phone.open();
    platform::TableView *table = phone.editor->contentView()->itemTableView();
    auto *cell = qobject_cast<ZIQGroupNoteTextFieldCell *>(table->cellForRow({ 0, 2 }));
    if (!cell) {
        state.SkipWithError("no visible entry row");
        return;
    }
    platform::TextField *field = cell->textField();
    field->setFocus();
    std::vector<double> wall, cpu;
    int typed = 0;
    for (auto _ : state) {
        QElapsedTimer timer;
        const double cpuStart = cpuMs();
        timer.start();
        // Stay within the entry's length limit: type a letter, then take it back.
        QTest::keyClick(field, typed++ % 2 ? Qt::Key_Backspace : Qt::Key_A);
        QCoreApplication::sendPostedEvents();
        phone.frame.fill(Qt::transparent);
        phone.navigation.view()->render(&phone.frame);
        wall.push_back(double(timer.nsecsElapsed()) / 1e6);
        cpu.push_back(cpuMs() - cpuStart);
        state.SetIterationTime(wall.back() / 1e3);
    }
    state.counters["frames"] = double(wall.size());
    state.counters["p50_ms"] = percentile(wall, 0.5);
    state.counters["p99_ms"] = percentile(wall, 0.99);
    state.counters["max_ms"] = percentile(wall, 1.0);
    state.counters["p99_cpu_ms"] = percentile(cpu, 0.99);
}
BENCHMARK(BM_TypeIntoEntry)->Iterations(400)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    PhoneBenchApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    GroupFixture group;
    group.actAs(QStringLiteral("alice"));
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
