// What a person can ask of the demo on its command line.
#pragma once

#include <QSize>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <optional>

struct DemoOptions
{
    QString userID;
    QSize size { 375, 812 };
    /// Empty: the system's language.
    QString language;
    QString theme = QStringLiteral("light");
    /// Unset ("off"): no history and no played members.
    std::optional<quint32> seed = 1;
    /// Where screenshots go; empty for an interactive run.
    QString screenshotDir;
    /// Where the note tour's pictures go; empty for no tour.
    QString tourDir;
    /// A messaging server (ws://HOST:PORT) to run the user's phone against instead of the
    /// embedded world; empty for the embedded world.
    QUrl server;
    /// The user's token for the server (--token, else the environment's VOR_TOKEN).
    QString token;

    /// Parses `arguments` (the program's, its name first); prints --help or an error and
    /// gives nothing when the program should end (with `exitCode`).
    static std::optional<DemoOptions> parse(const QStringList &arguments, int &exitCode);
    /// Whether the arguments ask for screenshots or the tour, read before the application exists.
    static bool wantsScreenshots(int argc, char **argv);
};
