// A long group chat on the phone's screen: 5,000 messages on the in-process messaging service,
// a fifth of them a plug-in's cards of varying heights. Measures opening the chat (first page
// loaded, laid out and rendered), loading the rest of its history, and scrolling it from the
// bottom to the top frame by frame (move, lay out, render the visible area into an image).
// Frame times are given on the wall clock and as this thread's processor time, since the
// machine may be busy with other work; resident memory is read from /proc/self/statm.
#include "BenchSupport.h"
#include "sdk/ClientCalls.h"
#include "support/GroupFixture.h"

#include "kit/chat/ZIQBaseChatViewController.h"
#include "kit/chat/ZIQBubbleMessageCell.h"
#include "kit/chat/ZIQBubbleMessageCellData.h"
#include "kit/chat/ZIQChatClassRegistry.h"
#include "kit/chat/ZIQChatMessageList.h"
#include "kit/chat/ZIQChatService.h"
#include "kit/common/ZIQTool.h"
#include "kit/core/ZIQCore.h"
#include "kit/core/ZIQCoreDefines.h"
#include "platform/NavigationController.h"
#include "platform/Screen.h"
#include "platform/SystemFont.h"
#include "platform/TableView.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QJsonObject>
#include <QLoggingCategory>
#include <QTest>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>
#include <unistd.h>

/// A plug-in's card: as tall as its body's "height" says.
class CardCellData : public ZIQBubbleMessageCellData
{
    Q_OBJECT

public:
    using ZIQBubbleMessageCellData::ZIQBubbleMessageCellData;
    static std::shared_ptr<CardCellData> getCellData(const V2VORMessagePtr &message)
    {
        return std::make_shared<CardCellData>(directionOf(*message));
    }
    static QString getDisplayString(const V2VORMessagePtr &) { return QStringLiteral("[Card]"); }
};

class CardCell : public ZIQBubbleMessageCell
{
    Q_OBJECT

public:
    Q_INVOKABLE explicit CardCell(const QString &reuseIdentifier = {}, QWidget *parent = nullptr)
        : ZIQBubbleMessageCell(reuseIdentifier, parent)
    {
    }
    static QSizeF getContentSize(ZIQMessageCellData *data)
    {
        const QJsonObject body = ZIQTool::jsonData2Dictionary(data->innerMessage()->customElem()->data);
        return QSizeF(220, body.value(QStringLiteral("height")).toInt(40));
    }
};

namespace {

constexpr int Messages = 5000;
const QSize Phone = PhoneBenchApplication::Phone;

GroupFixture *fixture = nullptr;

/// The group's history: three members talking, every fifth message a card between 40 and 200
/// points tall.
void sendHistory()
{
    const QStringList senders = fixture->userIDs();
    for (int i = 0; i < Messages; ++i) {
        V2VORManager *client = fixture->client(senders.at(i % senders.size()));
        const bool sent = i % 5 == 4
            ? bool(sendToGroup(client, fixture->groupID(),
                QStringLiteral(R"({"businessID":"card","height":%1})").arg(40 + (i * 37) % 161).toUtf8()))
            : bool(sendText(client, fixture->groupID(),
                QStringLiteral("Message %1: who brings what to the picnic on Saturday?").arg(i)));
        if (!sent)
            qFatal("sending message %d failed", i);
    }
}

/// The chat as bob opens it, kept from the opening to the scroll.
struct OpenChat
{
    explicit OpenChat(V2VORManager *client)
        : chat(new ZIQBaseChatViewController({ fixture->groupID(), {} }, client))
        , navigation(chat)
    {
        navigation.view()->resize(Phone);
        navigation.view()->show();
    }
    ZIQBaseChatViewController *chat;
    platform::NavigationController navigation;
};
std::unique_ptr<OpenChat> opened;

bool waitForRows(int rows)
{
    return QTest::qWaitFor([&] { return opened->chat->messageList()->count() >= rows; }, 60000);
}

void BM_OpenChat(benchmark::State &state)
{
    QImage frame(Phone, QImage::Format_ARGB32_Premultiplied);
    for (auto _ : state) {
        opened.reset();
        QElapsedTimer timer;
        timer.start();
        const double cpuStart = cpuMs(CLOCK_PROCESS_CPUTIME_ID);
        opened = std::make_unique<OpenChat>(fixture->client(QStringLiteral("bob")));
        if (!waitForRows(1))
            state.SkipWithError("the first page never arrived");
        opened->navigation.view()->render(&frame);
        state.SetIterationTime(double(timer.nsecsElapsed()) / 1e9);
        state.counters["open_ms"] = double(timer.nsecsElapsed()) / 1e6;
        state.counters["open_cpu_ms"] = cpuMs(CLOCK_PROCESS_CPUTIME_ID) - cpuStart;
        state.counters["rss_MB"] = residentMegabytes();

        // The rest of the history, as scrolling to the top would fetch it.
        timer.start();
        const double historyCpu = cpuMs(CLOCK_PROCESS_CPUTIME_ID);
        opened->chat->messageList()->loadMessages(Messages);
        if (!waitForRows(Messages))
            state.SkipWithError("the history never arrived");
        opened->navigation.view()->render(&frame);
        state.counters["history_ms"] = double(timer.nsecsElapsed()) / 1e6;
        state.counters["history_cpu_ms"] = cpuMs(CLOCK_PROCESS_CPUTIME_ID) - historyCpu;
        state.counters["rss_loaded_MB"] = residentMegabytes();
    }
}
BENCHMARK(BM_OpenChat)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

// Argument: points scrolled per frame.
void BM_ScrollBottomToTop(benchmark::State &state)
{
    if (!opened || opened->chat->messageList()->count() < Messages) {
        state.SkipWithError("run BM_OpenChat first");
        return;
    }
    platform::TableView *table = opened->chat->tableView();
    QImage frame(table->viewport()->size(), QImage::Format_ARGB32_Premultiplied);
    const qreal step = qreal(state.range(0));
    std::vector<double> frameMs;
    std::vector<double> frameCpuMs;
    for (auto _ : state) {
        table->setContentOffset({ 0, table->contentSize().height() });
        QElapsedTimer total;
        total.start();
        for (qreal offset = table->contentOffset().y(); offset > 0;) {
            QElapsedTimer timer;
            timer.start();
            const double cpuStart = cpuMs(CLOCK_THREAD_CPUTIME_ID);
            offset = std::max<qreal>(offset - step, 0);
            table->setContentOffset({ 0, offset });
            table->viewport()->render(&frame);
            frameMs.push_back(double(timer.nsecsElapsed()) / 1e6);
            frameCpuMs.push_back(cpuMs(CLOCK_THREAD_CPUTIME_ID) - cpuStart);
        }
        state.SetIterationTime(double(total.nsecsElapsed()) / 1e9);
    }
    state.counters["frames"] = double(frameMs.size());
    state.counters["p50_ms"] = percentile(frameMs, 0.5);
    state.counters["p99_ms"] = percentile(frameMs, 0.99);
    state.counters["max_ms"] = percentile(frameMs, 1.0);
    state.counters["p50_cpu_ms"] = percentile(frameCpuMs, 0.5);
    state.counters["p99_cpu_ms"] = percentile(frameCpuMs, 0.99);
    state.counters["cells"] = double(table->viewport()->findChildren<platform::TableViewCell *>().size());
    state.counters["rss_MB"] = residentMegabytes();
}
BENCHMARK(BM_ScrollBottomToTop)->Arg(40)->Iterations(1)->UseManualTime()->Unit(benchmark::kMillisecond);

void registerCards()
{
    ZIQChatClassRegistry::instance().registerCellDataClass<CardCellData>();
    ZIQChatClassRegistry::instance().registerCellClass<CardCell>();
    ZIQChatService::registerInCore();
    ZIQBaseChatViewController::registerKitCells();
    ZIQCore::callService(ZIQCore_ZIQChatService, ZIQCore_ZIQChatService_AppendCustomMessageMethod,
        { { QStringLiteral("businessID"), QStringLiteral("card") },
            { QStringLiteral("TMessageCell_Name"), QStringLiteral("CardCell") },
            { QStringLiteral("TMessageCell_Data_Name"), QStringLiteral("CardCellData") } });
}

} // namespace

int main(int argc, char **argv)
{
    PhoneBenchApplication application(argc, argv);
    registerCards();
    benchmark::Initialize(&argc, argv);
    GroupFixture group;
    fixture = &group;
    sendHistory();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    opened.reset();
    return 0;
}

#include "bench_chat_scroll.moc"
