// A NATS server with JetStream for tests: runs nats-server on a free loopback port with its
// store in a temporary directory, and stops it when destroyed. restart() kills it without
// warning and starts it again on the same port and store, as after a crash.
#pragma once

#include <QProcess>
#include <QString>
#include <QTemporaryDir>

class NatsServerProcess
{
public:
    NatsServerProcess();
    ~NatsServerProcess();

    /// False when the server did not accept connections in time (see error()).
    bool isRunning() const;
    QString error() const;
    /// "nats://127.0.0.1:<port>"
    QString url() const;
    bool restart();
    /// Kills it without warning; start() brings it back on the same port and store.
    void kill();
    bool start();

private:

    QTemporaryDir m_store;
    QProcess m_process;
    quint16 m_port = 0;
    QString m_error;
};
