// The note card's height two ways over 1,000 notes with random titles (Latin, Chinese, emoji,
// Arabic and Hebrew, some wrapping over several lines): measured from the note alone, as the
// chat sizes a note row, and by building a card and laying it out. Reports the cost of each per
// note, their ratio, and how many notes the two disagree on (which must be none).
#include "platform/Screen.h"
#include "platform/SystemFont.h"
#include "platform/TextMeasure.h"
#include "plugin/chat/ZIQGroupNotePreviewViewController.h"
#include "plugin/provider/ZIQGroupNoteDataProvider.h"

#include <QApplication>
#include <QLoggingCategory>
#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <random>

namespace {

constexpr int NoteCount = 1000;

QString randomTitle(std::mt19937 &random)
{
    static const QStringList words = { QStringLiteral("Lunch"), QStringLiteral("order"), QStringLiteral("Friday"),
        QStringLiteral("午餐"), QStringLiteral("接龙报名"), QStringLiteral("🍕"), QStringLiteral("🎉🎉"),
        QStringLiteral("مرحبا"), QStringLiteral("اجتماع"), QStringLiteral("שלום"), QStringLiteral("פגישה"),
        QStringLiteral("team"), QStringLiteral("meeting"), QStringLiteral("—") };
    const int count = std::uniform_int_distribution<int>(0, 14)(random);
    QStringList title;
    for (int i = 0; i < count; ++i)
        title.append(words.at(std::uniform_int_distribution<int>(0, int(words.size()) - 1)(random)));
    return title.join(QLatin1Char(' '));
}

std::vector<ZIQGroupNoteInfoPtr> randomNotes()
{
    std::mt19937 random(20240611);
    std::vector<ZIQGroupNoteInfoPtr> notes;
    for (int i = 0; i < NoteCount; ++i) {
        auto info = std::make_shared<ZIQGroupNoteInfo>();
        info->setTitle(randomTitle(random));
        info->setShowLineNum(std::uniform_int_distribution<int>(0, 2)(random));
        notes.push_back(info);
    }
    return notes;
}

/// The card's root height after laying `info` out.
int laidOutHeight(const ZIQGroupNoteInfoPtr &info)
{
    ZIQGroupNotePreviewViewController card;
    auto *provider = new ZIQGroupNoteDataProvider();
    provider->info()->setTitle(info->title());
    provider->info()->setShowLineNum(info->showLineNum());
    card.setDataProvider(provider);
    card.layoutViews();
    return card.view()->height();
}

/// Seconds `pass` takes; with `cold`, text measurements start from nothing remembered.
template<typename Pass> double timed(bool cold, Pass pass)
{
    if (cold)
        platform::TextMeasure::clearCache();
    const auto start = std::chrono::steady_clock::now();
    pass();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void BM_NoteCardHeight(benchmark::State &state)
{
    const platform::ScreenScope phone({ 375, 812 });
    const std::vector<ZIQGroupNoteInfoPtr> notes = randomNotes();
    std::vector<qreal> measured(notes.size());
    const auto measureAll = [&] {
        for (size_t i = 0; i < notes.size(); ++i)
            measured[i] = ZIQGroupNoteDataProvider::calcSizeOfInfo(notes[i], notes[i]->showLineNum()).height();
    };
    int mismatches = 0;
    const auto layOutAll = [&] {
        mismatches = 0;
        for (size_t i = 0; i < notes.size(); ++i)
            mismatches += laidOutHeight(notes[i]) != int(std::ceil(measured[i])) ? 1 : 0;
    };
    // Cold: the first time a chat meets these notes. Warm: the chat measuring them again on a
    // reload, with the titles' text measurements remembered.
    double measuredCold = 0, measuredWarm = 0, laidOutCold = 0, laidOutWarm = 0;
    for (auto _ : state) {
        const double seconds[] = { timed(true, measureAll), timed(false, measureAll), timed(true, layOutAll),
            timed(false, layOutAll) };
        measuredCold += seconds[0];
        measuredWarm += seconds[1];
        laidOutCold += seconds[2];
        laidOutWarm += seconds[3];
        state.SetIterationTime(seconds[0] + seconds[1] + seconds[2] + seconds[3]);
    }
    const double perNote = 1e6 / double(state.iterations() * NoteCount);
    state.counters["measured_cold_us"] = measuredCold * perNote;
    state.counters["measured_warm_us"] = measuredWarm * perNote;
    state.counters["laid_out_cold_us"] = laidOutCold * perNote;
    state.counters["laid_out_warm_us"] = laidOutWarm * perNote;
    state.counters["ratio_cold"] = laidOutCold / measuredCold;
    state.counters["ratio_warm"] = laidOutWarm / measuredWarm;
    state.counters["height_mismatches"] = mismatches;
}

} // namespace

BENCHMARK(BM_NoteCardHeight)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QLoggingCategory::setFilterRules(QStringLiteral("ziq.*.debug=false\nziq.*.info=false"));
    QApplication app(argc, argv);
    platform::SystemFont::install();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
