// One WebSocket to a messaging server that comes back by itself: after a drop (or a failed
// attempt) it connects again after a back-off delay that doubles from `initialMs` up to
// `maxMs`, each delay shortened by a random part of up to `jitter`, so that many clients
// dropped at once do not all come back in the same instant. Every delay runs on the main
// queue's clock.
#pragma once

#include "sdk/V2VORConnectionState.h"

#include <QObject>
#include <QUrl>

class QWebSocket;

class NetworkConnection : public QObject
{
    Q_OBJECT

public:
    struct Backoff
    {
        int initialMs = 500;
        int maxMs = 30000;
        /// 0 to 1: the share of each delay that may be taken off at random.
        double jitter = 0.25;

        /// The delay before attempt `failures` + 1 after `failures` failed or dropped ones.
        int delayAfter(int failures) const;
    };

    explicit NetworkConnection(const QUrl &url, QObject *parent = nullptr);
    ~NetworkConnection() override;

    QUrl url() const;
    void setBackoff(const Backoff &backoff);
    Backoff backoff() const;

    /// Starts connecting unless already connected or trying; keeps trying until close().
    void open();
    void close();
    /// The socket is up (the server may not know the user yet).
    bool isOpen() const;
    /// Attempts that failed or dropped since the connection was last up.
    int failures() const;
    void sendFrame(const QByteArray &frame);

Q_SIGNALS:
    void opened();
    /// The socket went down while it was up; another attempt follows.
    void dropped();
    void frameReceived(const QByteArray &frame);
    /// The next attempt starts after `delayMs`.
    void retryScheduled(int delayMs);

private:
    void attempt();
    void onDisconnected();
    void scheduleRetry();

    QUrl m_url;
    Backoff m_backoff;
    QWebSocket *m_socket;
    bool m_wanted = false;
    bool m_up = false;
    bool m_retryPending = false;
    int m_failures = 0;
};
