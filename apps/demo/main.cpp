// The demo: group chats on a phone-sized screen, with other members played in the same
// process. Run with --help for its options.
#include "DemoApp.h"
#include "DemoOptions.h"

#include <QApplication>

int main(int argc, char **argv)
{
    // Screenshots need no display.
    if (DemoOptions::wantsScreenshots(argc, argv) && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // Options are read before the application exists, so --help needs no display either.
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    int exitCode = 0;
    const std::optional<DemoOptions> options = DemoOptions::parse(arguments, exitCode);
    if (!options)
        return exitCode;
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("group-notes-demo"));
    DemoApp demo(*options);
    demo.start();
    return QApplication::exec();
}
