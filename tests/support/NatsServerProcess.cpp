#include "support/NatsServerProcess.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTcpSocket>

namespace {

QString serverProgram()
{
    for (const QString &path : { QStringLiteral("/usr/bin/nats-server"), QStringLiteral("/usr/sbin/nats-server") }) {
        if (QFile::exists(path))
            return path;
    }
    return QStandardPaths::findExecutable(QStringLiteral("nats-server"));
}

quint16 freePort()
{
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    return probe.serverPort();
}

} // namespace

NatsServerProcess::NatsServerProcess()
{
    m_port = freePort();
    start();
}

NatsServerProcess::~NatsServerProcess()
{
    if (m_process.state() != QProcess::NotRunning) {
        m_process.terminate();
        if (!m_process.waitForFinished(5000))
            kill();
    }
}

bool NatsServerProcess::start()
{
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    m_process.start(serverProgram(),
        { QStringLiteral("-js"), QStringLiteral("-a"), QStringLiteral("127.0.0.1"), QStringLiteral("-p"),
            QString::number(m_port), QStringLiteral("-sd"), m_store.path() });
    if (!m_process.waitForStarted(5000)) {
        m_error = QStringLiteral("nats-server did not start: %1").arg(m_process.errorString());
        return false;
    }
    // Accepting connections is the sign it is ready; a startup is bounded to ten seconds.
    const QDeadlineTimer deadline(10000);
    while (!deadline.hasExpired() && m_process.state() == QProcess::Running) {
        QTcpSocket probe;
        probe.connectToHost(QHostAddress::LocalHost, m_port);
        if (probe.waitForConnected(200))
            return true;
        m_process.waitForFinished(50);
    }
    m_error
        = QStringLiteral("nats-server did not accept connections: %1").arg(QString::fromLocal8Bit(m_process.readAll()));
    return false;
}

void NatsServerProcess::kill()
{
    m_process.kill();
    m_process.waitForFinished(5000);
}

bool NatsServerProcess::isRunning() const
{
    return m_process.state() == QProcess::Running && m_error.isEmpty();
}

QString NatsServerProcess::error() const
{
    return m_error;
}

QString NatsServerProcess::url() const
{
    return QStringLiteral("nats://127.0.0.1:%1").arg(m_port);
}

bool NatsServerProcess::restart()
{
    kill();
    m_error.clear();
    return start();
}
