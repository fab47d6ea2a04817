// vor-server: the messaging service for clients across the network. Prints
// "listening ws://ADDR:PORT" as its first line once it takes connections; SIGTERM or SIGINT stop it.
#include "QuitOnSignal.h"
#include "ServerCommandLine.h"

#include "platform/MainQueue.h"
#include "server/DirectoryFile.h"
#include "sdk/SilentSession.h"
#include "server/StoreFactory.h"
#include "server/VorServer.h"

#include <QCoreApplication>

#include <cmath>
#include <cstdio>

namespace {

int fail(const QString &why)
{
    std::fprintf(stderr, "vor-server: %s\n", qPrintable(why));
    return 1;
}

void printLine(const QString &line)
{
    std::fputs(qPrintable(line + QLatin1Char('\n')), stdout);
    std::fflush(stdout);
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("vor-server"));
    QString error;
    const auto line = ServerCommandLine::parse(app.arguments(), qgetenv("VOR_SECRET"), &error);
    if (!line)
        return fail(error);
    if (!line->mintUser.isEmpty()) {
        const qint64 expiresAt = qint64(std::floor(platform::MainQueue::now() / 1000)) + line->mintTtlSeconds;
        printLine(TokenAuthority(line->options.secret).mint(line->mintUser, expiresAt, line->mintOperator));
        return 0;
    }

    std::optional<DirectoryFile> directory;
    if (!line->directoryPath.isEmpty() && !(directory = DirectoryFile::read(line->directoryPath, &error)))
        return fail(error);
    StoreFactory factory;
    const std::unique_ptr<MessagingBackend> backend = factory.makeStore(line->options, &error);
    if (!backend)
        return fail(error);
    VorServer server(line->options, backend.get());
    QuitOnSignal quitOnSignal;
    SilentSession seeder(QStringLiteral("vor-server"));

    const auto start = [&](const CallError &seeded) {
        if (seeded)
            error = QStringLiteral("seeding the directory: %1 (%2)").arg(seeded.desc).arg(seeded.code);
        else if (server.listen(&error))
            return printLine(QStringLiteral("listening ") + server.url());
        QCoreApplication::exit(1);
    };
    // Inside the event loop, so that a failure can end it.
    platform::MainQueue::async(&app, [&] {
        if (directory)
            directory->apply(backend.get(), &seeder, start);
        else
            start(CallError {});
    });
    const int code = app.exec();
    return code == 0 ? 0 : fail(error);
}
