#include "sdk/RequestTable.h"

#include "platform/MainQueue.h"

using ServiceProtocol::ServerFrame;

RequestTable::RequestTable(QObject *context, int waitLimitMs)
    : m_context(context)
    , m_waitLimitMs(waitLimitMs)
{
}

void RequestTable::setWaitLimit(int ms)
{
    m_waitLimitMs = ms;
}

int RequestTable::waitLimit() const
{
    return m_waitLimitMs;
}

qint64 RequestTable::reserveID()
{
    return m_nextID++;
}

qint64 RequestTable::add(const QString &op, const QJsonObject &args, Answer answer)
{
    const qint64 id = m_nextID++;
    Pending &pending = m_pending[id];
    pending.op = op;
    pending.args = args;
    pending.answer = std::move(answer);
    armWaitLimit(id, pending);
    return id;
}

QList<QByteArray> RequestTable::takeWaiting()
{
    QList<QByteArray> frames;
    for (auto &[id, pending] : m_pending) {
        if (pending.out)
            continue;
        pending.out = true;
        ++pending.attempts;
        frames.append(ServiceProtocol::encodeRequest(id, pending.op, pending.args));
    }
    return frames;
}

void RequestTable::requeueOut()
{
    for (auto &[id, pending] : m_pending) {
        if (!pending.out)
            continue;
        pending.out = false;
        armWaitLimit(id, pending);
    }
}

bool RequestTable::answer(const ServerFrame &frame)
{
    if (!m_pending.count(frame.replyTo))
        return false;
    answerWith(frame.replyTo, frame);
    return true;
}

void RequestTable::failAll(const CallError &error)
{
    ServerFrame failure;
    failure.kind = ServerFrame::Reply;
    failure.error = error;
    while (!m_pending.empty()) {
        failure.replyTo = m_pending.begin()->first;
        answerWith(failure.replyTo, failure);
    }
}

int RequestTable::size() const
{
    return int(m_pending.size());
}

void RequestTable::armWaitLimit(qint64 id, Pending &pending)
{
    pending.spell = m_nextSpell++;
    if (!m_context)
        return;
    platform::MainQueue::after(m_waitLimitMs, m_context, [this, id, spell = pending.spell] {
        auto found = m_pending.find(id);
        if (found == m_pending.end() || found->second.out || found->second.spell != spell)
            return;
        ServerFrame timedOut;
        timedOut.kind = ServerFrame::Reply;
        timedOut.replyTo = id;
        timedOut.error = { V2VOR_ERR_SERVICE_UNAVAILABLE,
            QStringLiteral("no connection to the messaging server for %1 s").arg(m_waitLimitMs / 1000.0) };
        answerWith(id, timedOut);
    });
}

void RequestTable::answerWith(qint64 id, const ServerFrame &frame)
{
    // The answer may file new requests or clear the table: take the request out first.
    auto found = m_pending.find(id);
    Pending pending = std::move(found->second);
    m_pending.erase(found);
    if (pending.answer)
        pending.answer(frame, pending.attempts);
}
