// The requests a network client has made and not yet had answered, by request ID. A request
// is either out on the current connection or waiting for one; a drop puts every request that
// was out back to waiting, so it goes out again once the connection is back. A request that
// waits longer than the wait limit (on the main queue's clock) is answered "unavailable".
#pragma once

#include "sdk/ServiceProtocol.h"

#include <QJsonObject>
#include <QPointer>
#include <functional>
#include <map>

class RequestTable
{
public:
    /// `attempts`: how many times the request went out (more than 1 after a drop).
    using Answer = std::function<void(const ServiceProtocol::ServerFrame &frame, int attempts)>;

    /// Wait-limit checks run only while `context` lives.
    explicit RequestTable(QObject *context, int waitLimitMs = 30000);

    void setWaitLimit(int ms);
    int waitLimit() const;

    /// An ID no request of the table carries, for a request answered outside it.
    qint64 reserveID();
    /// Files a new waiting request and answers its ID.
    qint64 add(const QString &op, const QJsonObject &args, Answer answer);
    /// The encoded frames of every waiting request, oldest first, now marked as out.
    QList<QByteArray> takeWaiting();
    /// The connection dropped: what was out waits again.
    void requeueOut();
    /// Answers request `frame.replyTo` with `frame` and forgets it; false for an unknown ID.
    bool answer(const ServiceProtocol::ServerFrame &frame);
    /// Answers every request with `error` (logout, the user refused).
    void failAll(const CallError &error);
    int size() const;

private:
    struct Pending
    {
        QString op;
        QJsonObject args;
        Answer answer;
        bool out = false;
        int attempts = 0;
        /// Tells the wait-limit check of one waiting spell from a later one.
        quint64 spell = 0;
    };

    void armWaitLimit(qint64 id, Pending &pending);
    void answerWith(qint64 id, const ServiceProtocol::ServerFrame &frame);

    QPointer<QObject> m_context;
    int m_waitLimitMs;
    qint64 m_nextID = 1;
    quint64 m_nextSpell = 1;
    std::map<qint64, Pending> m_pending;
};
