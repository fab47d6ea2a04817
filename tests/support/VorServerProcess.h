// A `vor-server` the test runs itself: started on 127.0.0.1 with a port of its own choosing (or
// a given one, to come back on after a crash), killed as a crash would, restarted, stopped when
// the object goes.
#pragma once

#include <QProcess>
#include <QStringList>
#include <QUrl>

class VorServerProcess
{
public:
    struct Options
    {
        /// "memory" or "nats".
        QString store = QStringLiteral("memory");
        QString natsURL;
        QString secret = QStringLiteral("test-secret");
        QStringList extraArguments;
    };

    explicit VorServerProcess(Options options);
    ~VorServerProcess();

    VorServerProcess(const VorServerProcess &) = delete;
    VorServerProcess &operator=(const VorServerProcess &) = delete;

    /// Starts the server and waits (bounded) until it listens; whether it does.
    bool start();
    /// Kills the server with SIGKILL, as a crash would.
    void kill();
    /// Starts it again on the same port.
    bool restart();

    bool isRunning() const;
    QUrl url() const;
    quint16 port() const { return m_port; }
    QString secret() const { return m_options.secret; }
    /// What went wrong starting it, with the server's own output.
    QString error() const { return m_error; }

private:
    Options m_options;
    QProcess m_process;
    quint16 m_port = 0;
    QString m_error;
};
