// The plug-in's entry into the chat kit: at start-up it tells the chat which cells draw note and
// tips messages, hands the theme manager the plug-in's theme files, and writes the plug-in's
// version into the messaging client's log whenever a user is logged in.
#pragma once

#include <QObject>

class ZIQGroupNoteService : public QObject
{
    Q_OBJECT

public:
    /// The start-up steps: the single service (cells registered, logins observed), the theme
    /// files for ZIQGroupNoteThemeModule, and the version line at once when a user is logged in.
    static void load();
    /// The single service, created on first use.
    static ZIQGroupNoteService *sharedInstance();

    /// Registers the note and tips message kinds with the chat service, note first.
    void registerCustomMessageCell();
    /// Every successful login writes the version line again.
    void onLoginSucceeded();

    /// Writes "ZIQGroupNote version: <version>, build: <build>" as a JSON log record through the
    /// shared messaging client's "writeLog"; the outcome only goes to the plain log.
    static void logPluginVersion();

private:
    ZIQGroupNoteService();
};
