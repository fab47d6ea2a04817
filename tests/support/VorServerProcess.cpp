#include "VorServerProcess.h"

#include <QDeadlineTimer>
#include <QProcessEnvironment>
#include <QRegularExpression>

namespace {

constexpr int kStartMs = 15000;

} // namespace

VorServerProcess::VorServerProcess(Options options)
    : m_options(std::move(options))
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
}

VorServerProcess::~VorServerProcess()
{
    if (!isRunning())
        return;
    m_process.terminate();
    if (!m_process.waitForFinished(5000))
        kill();
}

bool VorServerProcess::start()
{
    QStringList arguments { QStringLiteral("--listen"), QStringLiteral("127.0.0.1"), QStringLiteral("--port"),
        QString::number(m_port), QStringLiteral("--store"), m_options.store };
    if (!m_options.natsURL.isEmpty())
        arguments << QStringLiteral("--nats") << m_options.natsURL;
    arguments << m_options.extraArguments;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("VOR_SECRET"), m_options.secret);
    m_process.setProcessEnvironment(environment);
    m_process.start(QStringLiteral(VOR_SERVER_EXECUTABLE), arguments);

    // The first line the server prints names where it listens.
    static const QRegularExpression listening(QStringLiteral("^listening ws://[^:]+:(\\d+)"));
    const QDeadlineTimer deadline(kStartMs);
    while (!deadline.hasExpired() && m_process.state() != QProcess::NotRunning) {
        if (!m_process.canReadLine() && !m_process.waitForReadyRead(int(deadline.remainingTime())))
            continue;
        const QRegularExpressionMatch match = listening.match(QString::fromUtf8(m_process.readLine()));
        if (match.hasMatch()) {
            m_port = quint16(match.captured(1).toUInt());
            return true;
        }
    }
    m_error = QStringLiteral("vor-server did not start: %1 %2")
                  .arg(QString::fromUtf8(m_process.readAllStandardOutput()),
                      QString::fromUtf8(m_process.readAllStandardError()));
    return false;
}

void VorServerProcess::kill()
{
    m_process.kill();
    m_process.waitForFinished(5000);
}

bool VorServerProcess::restart()
{
    if (isRunning())
        kill();
    return start();
}

bool VorServerProcess::isRunning() const
{
    return m_process.state() != QProcess::NotRunning;
}

QUrl VorServerProcess::url() const
{
    return QUrl(QStringLiteral("ws://127.0.0.1:%1").arg(m_port));
}
