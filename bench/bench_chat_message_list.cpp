// A long chat: what a live message and a plug-in's size change cost when the list holds
// thousands of rows, and what building a row's cell data by businessID costs.
#include "kit/chat/ZIQChatClassRegistry.h"
#include "kit/chat/ZIQChatMessageList.h"
#include "kit/core/ZIQCore.h"
#include "kit/core/ZIQCoreDefines.h"

#include <QCoreApplication>
#include <QLoggingCategory>

#include <benchmark/benchmark.h>

namespace {

V2VORMessagePtr groupMessage(int number)
{
    auto message = std::make_shared<V2VORMessage>();
    message->setElemType(V2VOR_ELEM_TYPE_CUSTOM);
    message->setCustomElem(std::make_unique<V2VORCustomElem>(
        V2VORCustomElem { R"({"businessID":"poll","title":"Lunch on Saturday?"})", {}, {} }));
    message->setMsgID(QStringLiteral("msg-%1").arg(number));
    message->setGroupID(QStringLiteral("group-1"));
    message->setSeq(quint64(number));
    message->setStatus(V2VOR_MSG_STATUS_SEND_SUCC);
    return message;
}

std::unique_ptr<ZIQChatMessageList> listOf(int rows)
{
    auto list = std::make_unique<ZIQChatMessageList>(ZIQChatConversation { QStringLiteral("group-1"), {} });
    for (int number = 1; number <= rows; ++number)
        list->onRecvNewMessage(groupMessage(number));
    return list;
}

void BM_LiveMessageArrives(benchmark::State &state)
{
    const int rows = int(state.range(0));
    auto list = listOf(rows);
    int number = rows;
    for (auto _ : state)
        list->onRecvNewMessage(groupMessage(++number));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_LiveMessageArrives)->Arg(100)->Arg(5000);

void BM_SizeChangeOfOldestRow(benchmark::State &state)
{
    auto list = listOf(int(state.range(0)));
    const QVariantMap param { { ZIQCore_ZIQPluginNotify_PluginViewSizeChangedSubKey_Message,
        QVariant::fromValue(groupMessage(1)) } };
    for (auto _ : state)
        ZIQCore::notifyEvent(
            ZIQCore_ZIQPluginNotify, ZIQCore_ZIQPluginNotify_PluginViewSizeChangedSubKey, nullptr, param);
}
BENCHMARK(BM_SizeChangeOfOldestRow)->Arg(100)->Arg(5000);

void BM_CellDataForCustomMessage(benchmark::State &state)
{
    const V2VORMessagePtr message = groupMessage(1);
    for (auto _ : state)
        benchmark::DoNotOptimize(ZIQChatClassRegistry::instance().cellDataForMessage(message));
}
BENCHMARK(BM_CellDataForCustomMessage);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    // Unknown kinds are reported in debug output; here they are the point.
    QLoggingCategory::setFilterRules(QStringLiteral("ziq.*.debug=false"));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
