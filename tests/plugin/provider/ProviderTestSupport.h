// Shared pieces of the data provider's tests: a stand-in of the chat module's send service
// registered with the kit core, a recorder of completions, and helpers that post, open and
// join notes through the real clients of a GroupFixture.
#pragma once

#include "kit/core/ZIQCore.h"
#include "kit/core/ZIQCoreDefines.h"
#include "kit/core/ZIQServiceProtocol.h"
#include "platform/ManualClock.h"
#include "plugin/provider/ZIQGroupNoteDataProvider.h"
#include "support/GroupFixture.h"

#include <QPointer>
#include <QTest>
#include <optional>

/// Sends what it is handed to the group chat through `sender` (the client of the device's user),
/// then answers with the chat module's send-result event, as the chat screen does. Without a
/// group it only takes messages.
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
        if (!m_groupID.isEmpty() && sender)
            sender->sendMessage(
                handedOver.last(), {}, m_groupID, V2VOR_PRIORITY_DEFAULT, false, std::nullopt, {},
                [] { answer(0, {}); }, answer);
        return {};
    }

    static void answer(int code, const QString &desc)
    {
        ZIQCore::notifyEvent(ZIQCore_ZIQChatNotify, ZIQCore_ZIQChatNotify_SendMessageSubKey, nullptr,
            { { ZIQCore_ZIQChatNotify_SendMessageSubKey_Code, code },
                { ZIQCore_ZIQChatNotify_SendMessageSubKey_Desc, desc } });
    }

    QList<V2VORMessagePtr> handedOver;
    QPointer<V2VORManager> sender;

private:
    QString m_groupID;
};

/// What a completion was called with, and how often.
struct Answer
{
    int code = -12345;
    QString desc;
    int calls = 0;
    bool operator==(const Answer &) const = default;
};
/// A completion recording into `answer`.
inline ZIQGroupNoteDataProvider::Completion record(const std::shared_ptr<Answer> &answer)
{
    return [answer](int code, const QString &desc) { *answer = { code, desc, answer->calls + 1 }; };
}

inline ZIQGroupNoteItemPtr addLine(ZIQGroupNoteDataProvider &provider, const QString &content)
{
    provider.addNewItem();
    provider.info()->items().constLast()->setContent(content);
    return provider.info()->items().constLast();
}

/// A group chat of real clients (Alice, Bob and Carol) with the chat service in place.
struct Scene
{
    GroupFixture group;
    platform::ManualClock clock;
    ChatServiceDouble chat { group.groupID() };

    /// Who reads a note on `user`'s device.
    ZIQGroupNoteContext contextOf(const QString &user) const
    {
        return { group.client(user), user, GroupFixture::nickNameOf(user) };
    }

    /// `user`'s own copy of a message; null when their history does not hold it.
    V2VORMessagePtr find(const QString &user, const QString &msgID) const
    {
        auto found = std::make_shared<std::optional<V2VORMessagePtr>>();
        group.client(user)->findMessages(
            { msgID }, [found](const QList<V2VORMessagePtr> &list) { *found = list.value(0); },
            [found](int, const QString &) { *found = nullptr; });
        (void)QTest::qWaitFor([found] { return found->has_value(); });
        return found->value_or(nullptr);
    }

    /// `user`'s screen over their own copy of a message, fetched as a screen does on opening, or
    /// over a new note; the chat screen sends as `user` from now on.
    std::unique_ptr<ZIQGroupNoteDataProvider> open(const QString &user, const QString &msgID = {})
    {
        chat.sender = group.client(user);
        auto provider = std::make_unique<ZIQGroupNoteDataProvider>(
            msgID.isEmpty() ? nullptr : find(user, msgID), contextOf(user));
        auto fetched = std::make_shared<bool>(false); // a new note answers at once
        provider->getNoteStatistics([fetched](int, const QString &, const ZIQGroupNoteInfoPtr &) { *fetched = true; });
        (void)QTest::qWaitFor([fetched] { return *fetched; });
        return provider;
    }

    /// Submits and waits for the answer, driving the clock over the wait before the first write.
    std::shared_ptr<Answer> submit(ZIQGroupNoteDataProvider &provider, bool isCreateNew)
    {
        const auto outcome = std::make_shared<Answer>();
        // The group argument goes unused: messages go to the open chat or to their own group.
        provider.submitInGroup(QString(), isCreateNew, record(outcome));
        (void)QTest::qWaitFor([&] { return clock.advance(500), outcome->calls > 0; });
        return outcome;
    }

    /// Alice posts a note with the lines "line 1" to "line <count>" (past the 19 a new note may
    /// carry, the rest in a second submission); its ID, empty on failure.
    QString post(int count = 1, bool allowMultiSubmit = true, double deadline = 0)
    {
        const auto provider = open("alice");
        provider->switchMultiSubmit(allowMultiSubmit);
        provider->setDeadline(deadline);
        const auto addLines = [count](ZIQGroupNoteDataProvider &to, int from, int last) {
            for (int i = from; i <= std::min(count, last); ++i)
                addLine(to, QStringLiteral("line %1").arg(i));
        };
        addLines(*provider, 1, 19);
        if (submit(*provider, true)->code != 0)
            return {};
        const QString msgID = provider->message()->msgID();
        if (count > 19) {
            const auto more = open("alice", msgID);
            addLines(*more, 20, count);
            if (submit(*more, false)->code != 0)
                return {};
        }
        return msgID;
    }

    /// `user` adds a line through the message `msgID`; the tips message the chat service sent.
    V2VORMessagePtr join(const QString &user, const QString &msgID, const QString &line)
    {
        const auto provider = open(user, msgID);
        if (addLine(*provider, line), submit(*provider, false)->code != 0)
            return nullptr;
        const V2VORMessagePtr tips = chat.handedOver.constLast();
        return QTest::qWaitFor([tips] { return tips->status() == V2VOR_MSG_STATUS_SEND_SUCC; }) ? tips : nullptr;
    }

    /// The contents of the service's live entries of a message (settings left out), in write order.
    QStringList stored(const QString &msgID) const
    {
        QStringList contents;
        for (const V2VORMessageExtension &extension : group.server()->extensionsOf(msgID)) {
            if (!extension.extensionKey.startsWith(QLatin1String("conf")))
                contents.append(extension.extensionValue);
        }
        return contents;
    }
};
