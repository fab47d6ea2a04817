#include "QuitOnSignal.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int g_pipe[2] = { -1, -1 };

} // namespace

QuitOnSignal::QuitOnSignal(QObject *parent)
    : QObject(parent)
{
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, g_pipe) != 0)
        return;
    m_notifier = new QSocketNotifier(g_pipe[1], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, [this] {
        m_notifier->setEnabled(false);
        char byte = 0;
        [[maybe_unused]] const ssize_t read = ::read(g_pipe[1], &byte, 1);
        QCoreApplication::quit();
    });
    struct sigaction action = {};
    action.sa_handler = &QuitOnSignal::handle;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGTERM, &action, nullptr);
    ::sigaction(SIGINT, &action, nullptr);
}

QuitOnSignal::~QuitOnSignal()
{
    std::signal(SIGTERM, SIG_DFL);
    std::signal(SIGINT, SIG_DFL);
    ::close(g_pipe[0]);
    ::close(g_pipe[1]);
}

void QuitOnSignal::handle(int)
{
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(g_pipe[0], &byte, 1);
}
