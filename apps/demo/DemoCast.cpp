#include "DemoCast.h"

#include "platform/MainQueue.h"
#include "sdk/MessagingServer.h"
#include "sdk/V2VORManager.h"

#include <QDebug>

DemoCast::DemoCast(MessagingServer *server, quint32 seed, QObject *parent)
    : QObject(parent)
    , m_server(server)
    , m_random(seed)
{
}

DemoCast::~DemoCast() = default;

void DemoCast::addMember(const QString &userID)
{
    if (m_members.contains(userID))
        return;
    auto *client = new V2VORManager(m_server, this);
    client->login(userID, {}, [userID](int code, const QString &desc) {
        qWarning().noquote() << "played member" << userID << "could not log in:" << code << desc;
    });
    m_members.insert(userID, { client, {} });
    m_order.append(userID);
}

void DemoCast::addChat(const QString &userID, const ZIQChatConversation &chat, const QStringList &lines)
{
    auto found = m_members.find(userID);
    if (found != m_members.end())
        found->stages.append({ chat, lines });
}

V2VORManager *DemoCast::client(const QString &userID) const
{
    return m_members.value(userID).client;
}

void DemoCast::start()
{
    if (m_running)
        return;
    m_running = true;
    scheduleNext();
}

void DemoCast::stop()
{
    m_running = false;
    ++m_generation;
}

void DemoCast::post(const QString &userID, const ZIQChatConversation &chat, const QString &text,
                    std::function<void(bool sent)> done)
{
    V2VORManager *speaker = client(userID);
    if (!speaker) {
        if (done)
            done(false);
        return;
    }
    markRead(userID, chat);
    QPointer<DemoCast> self(this);
    speaker->sendMessage(
        speaker->createTextMessage(text), chat.userID, chat.groupID, 0, false, std::nullopt, {},
        [self, userID, chat, text, done] {
            if (self)
                Q_EMIT self->posted(userID, chat, text);
            if (done)
                done(true);
        },
        [done](int, const QString &) {
            if (done)
                done(false);
        });
}

void DemoCast::markRead(const QString &userID, const ZIQChatConversation &chat)
{
    V2VORManager *reader = client(userID);
    if (!reader)
        return;
    if (chat.isGroup())
        reader->markGroupMessageAsRead(chat.groupID, {}, {});
    else
        reader->markC2CMessageAsRead(chat.userID, {}, {});
}

void DemoCast::scheduleNext()
{
    const int pause = MinPauseMs + pick(MaxPauseMs - MinPauseMs + 1);
    const quint64 generation = m_generation;
    platform::MainQueue::after(pause, this, [this, generation] {
        if (!m_running || generation != m_generation)
            return;
        playOnce();
        scheduleNext();
    });
}

void DemoCast::playOnce()
{
    QList<QPair<QString, const Stage *>> choices;
    for (const QString &userID : std::as_const(m_order)) {
        for (const Stage &stage : m_members[userID].stages) {
            if (!stage.lines.isEmpty())
                choices.append({ userID, &stage });
        }
    }
    if (choices.isEmpty())
        return;
    const auto &[userID, stage] = choices.at(pick(int(choices.size())));
    post(userID, stage->chat, stage->lines.at(pick(int(stage->lines.size()))));
}

int DemoCast::pick(int count)
{
    return std::uniform_int_distribution<int>(0, count - 1)(m_random);
}
