// A test's client of a vor-server: a raw WebSocket that sends frames as they are given and
// keeps every frame the server sends, in order.
#pragma once

#include "sdk/ServiceProtocol.h"

#include <QEventLoop>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QWebSocket>

class WireClient
{
public:
    WireClient()
    {
        QObject::connect(&socket, &QWebSocket::textMessageReceived, &socket,
            [this](const QString &text) { frames.append(QJsonDocument::fromJson(text.toUtf8()).object()); });
    }

    bool open(const QString &url)
    {
        QSignalSpy connected(&socket, &QWebSocket::connected);
        socket.open(QUrl(url));
        return connected.wait(5000);
    }

    qint64 send(const QString &op, const QJsonObject &args = {})
    {
        const qint64 id = ++lastID;
        socket.sendTextMessage(QString::fromUtf8(ServiceProtocol::encodeRequest(id, op, args)));
        return id;
    }

    void sendRaw(const QByteArray &frame) { socket.sendTextMessage(QString::fromUtf8(frame)); }

    /// Index in `frames` of the reply to `id` (null for "re": null), -1 if none came in time.
    int waitReply(const QJsonValue &id)
    {
        // Woken by each frame rather than polling, so a test's many round trips stay quick.
        QEventLoop loop;
        QTimer::singleShot(5000, &loop, &QEventLoop::quit);
        QObject::connect(&socket, &QWebSocket::textMessageReceived, &loop, [&] {
            if (replyIndex(id) >= 0)
                loop.quit();
        });
        if (replyIndex(id) < 0)
            loop.exec();
        return replyIndex(id);
    }

    int replyIndex(const QJsonValue &id) const
    {
        for (int i = 0; i < frames.size(); ++i) {
            if (frames[i].contains(QLatin1String("re")) && frames[i].value(QLatin1String("re")) == id)
                return i;
        }
        return -1;
    }

    /// The reply to `id`, waited for; an empty object when none came.
    QJsonObject reply(qint64 id)
    {
        const int index = waitReply(id);
        return index < 0 ? QJsonObject() : frames[index];
    }

    static int code(const QJsonObject &reply) { return reply.value(QLatin1String("code")).toInt(-1); }

    /// Sends `op` and answers the reply's code (-1 when no reply came).
    int call(const QString &op, const QJsonObject &args = {}) { return code(reply(send(op, args))); }

    int eventIndex(const QString &event) const
    {
        for (int i = 0; i < frames.size(); ++i) {
            if (frames[i].value(QLatin1String("ev")).toString() == event)
                return i;
        }
        return -1;
    }

    QWebSocket socket;
    QList<QJsonObject> frames;
    qint64 lastID = 0;
};
