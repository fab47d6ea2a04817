#include "DemoOptions.h"

#include "DemoWorld.h"

#include <QCommandLineParser>
#include <QRegularExpression>
#include <cstring>
#include <iostream>

namespace {

std::optional<QSize> sizeOf(const QString &text)
{
    static const QRegularExpression pattern(QStringLiteral("^(\\d{3,4})x(\\d{3,4})$"));
    const QRegularExpressionMatch match = pattern.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    return QSize(match.captured(1).toInt(), match.captured(2).toInt());
}

bool fail(const QString &message, int &exitCode)
{
    std::cerr << qPrintable(message) << "\n(see --help)" << std::endl;
    exitCode = 2;
    return false;
}

/// A server run: any user the server knows, no pictures (they show the embedded world).
bool readServer(const QCommandLineParser &parser, DemoOptions &options, int &exitCode)
{
    options.server = QUrl(parser.value("server"), QUrl::StrictMode);
    const QString scheme = options.server.scheme();
    if (!options.server.isValid() || options.server.host().isEmpty() || (scheme != "ws" && scheme != "wss"))
        return fail(QStringLiteral("server is ws://HOST:PORT or wss://HOST:PORT"), exitCode);
    options.token = parser.isSet("token") ? parser.value("token") : qEnvironmentVariable("VOR_TOKEN");
    if (!parser.isSet("screenshot") && !parser.isSet("tour"))
        return true;
    return fail(QStringLiteral("screenshots and the tour show the embedded world, not a server"), exitCode);
}

bool readValues(const QCommandLineParser &parser, DemoOptions &options, int &exitCode)
{
    options.userID = parser.value("user");
    if (parser.isSet("server") && !readServer(parser, options, exitCode))
        return false;
    if (options.server.isEmpty() && !DemoWorld::hasPerson(options.userID))
        return fail(QStringLiteral("unknown user: %1").arg(options.userID), exitCode);
    const std::optional<QSize> size = sizeOf(parser.value("size"));
    if (!size)
        return fail(QStringLiteral("size is WIDTHxHEIGHT in points, e.g. 375x812"), exitCode);
    options.size = *size;
    options.language = parser.value("language");
    if (!options.language.isEmpty() && !QStringList { "en", "zh-Hans", "zh-Hant" }.contains(options.language))
        return fail(QStringLiteral("language is en, zh-Hans or zh-Hant"), exitCode);
    options.theme = parser.value("theme");
    if (options.theme != "light" && options.theme != "dark")
        return fail(QStringLiteral("theme is light or dark"), exitCode);
    const QString seed = parser.value("seed");
    bool isNumber = false;
    const uint number = seed.toUInt(&isNumber);
    if (seed != "off" && !isNumber)
        return fail(QStringLiteral("seed is a number or off"), exitCode);
    options.seed = isNumber ? std::optional<quint32>(number) : std::nullopt;
    options.screenshotDir = parser.value("screenshot");
    options.tourDir = parser.value("tour");
    if (!options.screenshotDir.isEmpty() && !options.tourDir.isEmpty())
        return fail(QStringLiteral("screenshots and the tour are separate runs"), exitCode);
    if (!options.tourDir.isEmpty() && !options.seed)
        return fail(QStringLiteral("the tour needs the other members (a seed)"), exitCode);
    return true;
}

} // namespace

std::optional<DemoOptions> DemoOptions::parse(const QStringList &arguments, int &exitCode)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Group chats on a phone-sized screen, with people who answer. Everything runs in this "
        "process: the messaging service, the other members and the chat screens."));
    parser.addHelpOption();
    parser.addOptions({
        { "user", "Log in as <id>: amy, ben, chloe, dan, emma or mum.", "id", DemoWorld::defaultUserID() },
        { "size", "The phone's screen in points.", "WxH", "375x812" },
        { "language", "Texts in en, zh-Hans or zh-Hant (default: the system's).", "language" },
        { "theme", "light or dark.", "theme", "light" },
        { "seed", "Seed of the other members' chatter, or off: no history and no other members.", "N|off",
          "1" },
        { "screenshot", "Take the screenshots into <dir> and exit.", "dir" },
        { "tour", "Play a group note step by step, write a picture of each step into <dir> and exit.",
          "dir" },
        { "server",
            "Run the user's phone against the messaging server at <url> (ws://HOST:PORT) instead "
            "of the embedded world.",
            "url" },
        { "token", "The user's token for --server (default: the environment's VOR_TOKEN).", "token" },
    });
    exitCode = 0;
    if (!parser.parse(arguments)) {
        fail(parser.errorText(), exitCode);
        return std::nullopt;
    }
    if (parser.isSet("help")) {
        QString help = parser.helpText();
        help.replace(QStringLiteral("<executable_name>"), QStringLiteral("group-notes-demo"));
        std::cout << qPrintable(help) << std::endl;
        return std::nullopt;
    }
    DemoOptions options;
    if (!readValues(parser, options, exitCode))
        return std::nullopt;
    return options;
}

bool DemoOptions::wantsScreenshots(int argc, char **argv)
{
    for (int i = 1; i < argc; ++i) {
        if (std::strncmp(argv[i], "--screenshot", 12) == 0 || std::strncmp(argv[i], "--tour", 6) == 0)
            return true;
    }
    return false;
}
