// Shared pieces of the data provider's tests: a stand-in of the chat module's send service
// registered with the kit core, a recorder of completions, and helpers that post and open
// notes through the real clients of a GroupFixture.
#pragma once

#include "kit/core/ZIQCore.h"
#include "kit/core/ZIQCoreDefines.h"
#include "kit/core/ZIQServiceProtocol.h"
#include "platform/ManualClock.h"
#include "plugin/provider/ZIQGroupNoteDataProvider.h"
#include "support/GroupFixture.h"

#include <QTest>

/// Sends what it is handed to the open group chat as the current user, then answers with the
/// chat module's send-result event, as the chat screen does.
class ChatServiceDouble : public ZIQServiceProtocol
{
public:
    explicit ChatServiceDouble(const QString &groupID)
        : m_groupID(groupID)
    {
        ZIQCore::registerService(ZIQCore_ZIQChatService, this);
    }
    ~ChatServiceDouble() override { ZIQCore::unregisterService(ZIQCore_ZIQChatService); }

    QVariant onCall(const QString &, const QVariantMap &param) override
    {
        handedOver.append(param.value(ZIQCore_ZIQChatService_SendMessageMethod_MsgKey).value<V2VORMessagePtr>());
        if (m_groupID.isEmpty())
            return {};
        V2VORManager::sharedInstance()->sendMessage(
            handedOver.last(), {}, m_groupID, V2VOR_PRIORITY_DEFAULT, false, std::nullopt, {}, [] { answer(0, {}); },
            [](int code, const QString &desc) { answer(code, desc); });
        return {};
    }

    static void answer(int code, const QString &desc)
    {
        ZIQCore::notifyEvent(ZIQCore_ZIQChatNotify, ZIQCore_ZIQChatNotify_SendMessageSubKey, nullptr,
            { { ZIQCore_ZIQChatNotify_SendMessageSubKey_Code, code },
                { ZIQCore_ZIQChatNotify_SendMessageSubKey_Desc, desc } });
    }

    QList<V2VORMessagePtr> handedOver;

private:
    QString m_groupID; // empty: only takes the messages, tests answer themselves
};

/// What a completion was called with, and how often.
class Outcome
{
public:
    ZIQGroupNoteDataProvider::Completion callback() const
    {
        return [state = m_state](int code, const QString &desc) {
            state->code = code;
            state->desc = desc;
            ++state->calls;
        };
    }
    int code() const { return m_state->code; }
    QString desc() const { return m_state->desc; }
    int calls() const { return m_state->calls; }

private:
    struct State
    {
        int code = -12345;
        QString desc;
        int calls = 0;
    };
    std::shared_ptr<State> m_state = std::make_shared<State>();
};

/// `client`'s own copy of a message from its local history; null when it has none.
inline V2VORMessagePtr localCopy(V2VORManager *client, const QString &msgID)
{
    auto found = std::make_shared<std::optional<V2VORMessagePtr>>();
    client->findMessages(
        { msgID }, [found](const QList<V2VORMessagePtr> &list) { *found = list.value(0); },
        [found](int, const QString &) { *found = nullptr; });
    return QTest::qWaitFor([found] { return found->has_value(); }) ? found->value() : nullptr;
}

/// Fetches the newest entries and settings; the code the fetch answered.
inline int fetch(ZIQGroupNoteDataProvider &provider)
{
    auto code = std::make_shared<std::optional<int>>();
    provider.getNoteStatistics([code](int result, const QString &, const ZIQGroupNoteInfoPtr &) { *code = result; });
    return QTest::qWaitFor([code] { return code->has_value(); }) ? code->value() : -12345;
}

/// Submits and waits for the answer, driving the clock over the wait before the first write.
inline Outcome submit(
    ZIQGroupNoteDataProvider &provider, platform::ManualClock &clock, const QString &groupID, bool isCreateNew)
{
    Outcome outcome;
    provider.submitInGroup(groupID, isCreateNew, outcome.callback());
    const bool answered = QTest::qWaitFor([&] { return clock.advance(500), outcome.calls() > 0; });
    Q_UNUSED(answered) // an unanswered submission shows as an outcome without calls
    return outcome;
}

inline ZIQGroupNoteItemPtr addLine(ZIQGroupNoteDataProvider &provider, const QString &content)
{
    provider.addNewItem();
    provider.info()->items().constLast()->setContent(content);
    return provider.info()->items().constLast();
}

inline QStringList lines(int count, const QString &prefix = QStringLiteral("line "))
{
    QStringList result;
    for (int i = 1; i <= count; ++i)
        result.append(prefix + QString::number(i));
    return result;
}

/// `creator` posts a note with one line per entry; the note message's ID, empty on failure.
inline QString postNote(GroupFixture &group, platform::ManualClock &clock, const QString &creator,
    const QStringList &entries, bool allowMultiSubmit = true, double deadline = 0)
{
    group.actAs(creator);
    ZIQGroupNoteDataProvider provider;
    provider.editTitle(QStringLiteral("Lunch order"));
    provider.switchMultiSubmit(allowMultiSubmit);
    provider.setDeadline(deadline);
    for (const QString &entry : entries)
        addLine(provider, entry);
    return submit(provider, clock, group.groupID(), true).code() == 0 ? provider.message()->msgID() : QString();
}

/// `member` adds a line through the note; the tips message the chat service was handed.
inline V2VORMessagePtr joinNote(GroupFixture &group, platform::ManualClock &clock, ChatServiceDouble &chat,
    const QString &member, const QString &msgID, const QString &line)
{
    group.actAs(member);
    ZIQGroupNoteDataProvider provider(localCopy(group.client(member), msgID));
    if (fetch(provider) != 0)
        return nullptr;
    addLine(provider, line);
    if (submit(provider, clock, group.groupID(), false).code() != 0)
        return nullptr;
    const V2VORMessagePtr tips = chat.handedOver.value(chat.handedOver.size() - 1);
    return QTest::qWaitFor([tips] { return tips && tips->status() == V2VOR_MSG_STATUS_SEND_SUCC; }) ? tips : nullptr;
}

/// The contents of the service's live entries of a message (settings left out), in write order.
inline QStringList storedEntries(GroupFixture &group, const QString &msgID)
{
    QStringList contents;
    for (const V2VORMessageExtension &extension : group.server()->extensionsOf(msgID)) {
        if (!extension.extensionKey.startsWith(QLatin1String("conf")))
            contents.append(extension.extensionValue);
    }
    return contents;
}
