// The demo program put together: the messaging service with its people and history, the user
// logged in on the process's client, the other members played beside them, and the phone's
// screens in a window of the phone's size.
#pragma once

#include "DemoOptions.h"

#include <QObject>
#include <QPointer>
#include <memory>

class DemoCast;
class MessagingServer;
class V2VORManager;
class ZIQConversationListViewController;
struct ZIQChatConversation;

namespace platform {
class ManualClock;
class NavigationController;
class ViewController;
}

class DemoApp : public QObject
{
    Q_OBJECT

public:
    explicit DemoApp(const DemoOptions &options, QObject *parent = nullptr);
    ~DemoApp() override;

    /// Sets up the service, logs in and shows the screens; with screenshots or the tour asked
    /// for, quits the application once they are written (exit code 1 when one failed).
    void start();

    DemoCast *cast() const { return m_cast; }

private:
    void setUpPlatform();
    /// One member's phone against a server: the screens show at once, titled with the
    /// connection's state until the user is logged in and connected.
    void startOnServer();
    void loginOnServer();
    void showConnectionState();
    void populate();
    void playNoteIntoHistory();
    void showScreens();
    /// Pictures asked for on the command line, then the application ends.
    void takePictures(ZIQConversationListViewController *list);
    bool isPictureRun() const;
    platform::ViewController *openChat(const ZIQChatConversation &conversation);
    QString listTitle() const;
    /// The demo's own few texts in the preferred language.
    static QString inLanguage(const char *english, const char *simplified, const char *traditional);

    DemoOptions m_options;
    /// The tour's time, installed for the whole run.
    std::unique_ptr<platform::ManualClock> m_tourClock;
    std::unique_ptr<MessagingServer> m_server;
    V2VORManager *m_client = nullptr;
    DemoCast *m_cast = nullptr;
    std::unique_ptr<platform::NavigationController> m_navigation;
    QPointer<ZIQConversationListViewController> m_list;
};
