#include "DemoApp.h"

#include "DemoCast.h"
#include "DemoNoteScene.h"
#include "DemoScreenshots.h"
#include "DemoTour.h"
#include "DemoWorld.h"

#include "kit/chat/ZIQBaseChatViewController.h"
#include "kit/chat/ZIQChatService.h"
#include "kit/chat/ZIQConversationList.h"
#include "kit/chat/ZIQConversationListViewController.h"
#include "kit/common/ZIQGlobalization.h"
#include "kit/common/ZIQLogin.h"
#include "kit/common/ZIQThemeManager.h"
#include "platform/MainQueue.h"
#include "platform/ManualClock.h"
#include "platform/NavigationController.h"
#include "platform/Screen.h"
#include "platform/SystemFont.h"
#include "plugin/service/ZIQGroupNotePlugin.h"
#include "sdk/MessagingServer.h"
#include "sdk/NetworkBackend.h"
#include "sdk/V2VORErrorCode.h"
#include "sdk/V2VORManager.h"

#include <QApplication>
#include <QDateTime>
#include <QDebug>
#include <QWidget>

DemoApp::DemoApp(const DemoOptions &options, QObject *parent)
    : QObject(parent)
    , m_options(options)
{
}

namespace {

/// How long before the start the demo's hiking group posted its sign-up sheet, in pictures.
constexpr double NoteAgoMs = 60.0 * 60.0 * 1000.0;

/// The tour always happens on the same Saturday morning, so its pictures show the same times.
double tourStartMs()
{
    return double(QDateTime(QDate(2026, 5, 16), QTime(8, 0), Qt::UTC).toMSecsSinceEpoch());
}

} // namespace

DemoApp::~DemoApp()
{
    // Screens first: they listen to the client, which listens to the service.
    m_navigation.reset();
    if (V2VORManager::sharedInstance() == m_client)
        V2VORManager::setSharedInstance(nullptr);
    delete m_cast;
    delete m_client;
}

void DemoApp::start()
{
    if (!m_options.tourDir.isEmpty())
        m_tourClock = std::make_unique<platform::ManualClock>(tourStartMs());
    setUpPlatform();
    ZIQChatService::registerInCore();
    ZIQGroupNotePlugin::load();
    ZIQBaseChatViewController::registerKitCells();
    if (!m_options.server.isEmpty())
        return startOnServer();
    populate();
    m_client = new V2VORManager(m_server.get());
    V2VORManager::setSharedInstance(m_client);
    ZIQLogin::login(
        m_options.userID,
        [this] {
            playNoteIntoHistory();
            showScreens();
        },
        [](int code, const QString &desc) {
            qCritical().noquote() << "login failed:" << code << desc;
            QCoreApplication::exit(1);
        });
}

void DemoApp::startOnServer()
{
    m_client = new V2VORManager(std::make_unique<NetworkBackend>(m_options.server));
    m_client->setLoginToken(m_options.token);
    V2VORManager::setSharedInstance(m_client);
    connect(m_client, &V2VORManager::connectionStateChanged, this, &DemoApp::showConnectionState);
    showScreens();
    loginOnServer();
}

void DemoApp::loginOnServer()
{
    const QPointer<DemoApp> self(this);
    ZIQLogin::login(
        m_options.userID,
        [self] {
            if (self && self->m_list)
                self->m_list->conversationList()->load();
        },
        [self](int code, const QString &desc) {
            qWarning().noquote() << "login at the server failed:" << code << desc;
            // A refused token stays refused; an unreachable server may come up later.
            if (self && code != V2VOR_ERR_AUTH_FAILED)
                platform::MainQueue::after(5000, self, [self] { self->loginOnServer(); });
            if (self)
                self->showConnectionState();
        });
}

void DemoApp::showConnectionState()
{
    if (!m_list)
        return;
    QString title = listTitle();
    if (m_client->connectionState() == V2VOR_CONNECTION_CONNECTING)
        title = inLanguage("Connecting…", "连接中…", "連線中…");
    else if (m_client->connectionState() == V2VOR_CONNECTION_DISCONNECTED)
        title = inLanguage("Offline", "未连接", "未連線");
    m_list->setTitle(title);
}

void DemoApp::setUpPlatform()
{
    platform::Screen::setMainScreen(m_options.size);
    platform::SystemFont::install();
    if (!m_options.language.isEmpty())
        ZIQGlobalization::setPreferredLanguage(m_options.language);
    ZIQThemeManager::shareManager()->applyTheme(m_options.theme);
}

void DemoApp::populate()
{
    m_server = std::make_unique<MessagingServer>();
    DemoWorld::createDirectory(*m_server);
    if (!m_options.seed)
        return;
    {
        DemoCast history(m_server.get(), *m_options.seed);
        DemoWorld::playHistory(history, platform::MainQueue::now());
    }
    m_cast = new DemoCast(m_server.get(), *m_options.seed);
    DemoWorld::castOthers(*m_cast, m_options.userID);
    connect(m_cast, &DemoCast::posted, this, [](const QString &userID, const ZIQChatConversation &chat, const QString &text) {
        qInfo().noquote() << userID << "in" << chat.conversationID() << "says:" << text;
    });
    // Pictures show the history as it stands; nobody speaks while they are taken.
    if (isPictureRun())
        return;
    m_cast->start();
    const DemoNoteScene::Script note = DemoWorld::noteScript(m_options.userID);
    if (!note.groupID.isEmpty())
        (new DemoNoteScene(m_cast, note, m_cast))->start();
}

void DemoApp::showScreens()
{
    auto *list = new ZIQConversationListViewController;
    m_list = list;
    list->setTitle(listTitle());
    if (!m_options.server.isEmpty())
        showConnectionState();
    list->setChatFactory([this](const ZIQChatConversation &conversation) { return openChat(conversation); });
    m_navigation = std::make_unique<platform::NavigationController>(list);
    QWidget *window = m_navigation->view();
    window->setWindowTitle(QStringLiteral("Group notes"));
    window->setFixedSize(m_options.size);
    window->show();
    if (isPictureRun())
        takePictures(list);
}

void DemoApp::playNoteIntoHistory()
{
    // The screenshots find the group's note already in the history (the tour plays its own).
    // The note goes out once the user's client is the process's, as it would on a phone.
    const DemoNoteScene::Script note = DemoWorld::noteScript(m_options.userID);
    if (m_options.screenshotDir.isEmpty() || !m_cast || note.groupID.isEmpty())
        return;
    if (!DemoWorld::playNote(*m_cast, note, platform::MainQueue::now() - NoteAgoMs))
        qWarning() << "the group's note did not play to its end";
}

bool DemoApp::isPictureRun() const
{
    return !m_options.screenshotDir.isEmpty() || !m_options.tourDir.isEmpty();
}

void DemoApp::takePictures(ZIQConversationListViewController *list)
{
    const auto quit = [](bool written) { QCoreApplication::exit(written ? 0 : 1); };
    if (!m_options.screenshotDir.isEmpty()) {
        (new DemoScreenshots(m_navigation.get(), list, m_options.screenshotDir, this))->take(quit);
        return;
    }
    if (!m_cast || DemoWorld::noteScript(m_options.userID).groupID.isEmpty()) {
        qCritical().noquote() << "the tour needs a user in the hiking group with its other members";
        return quit(false);
    }
    auto *tour = new DemoTour(
        m_tourClock.get(), m_navigation.get(), list, m_cast, m_options.userID, m_options.tourDir, this);
    tour->run(quit);
}

platform::ViewController *DemoApp::openChat(const ZIQChatConversation &conversation)
{
    return new ZIQBaseChatViewController(conversation, m_client);
}

QString DemoApp::inLanguage(const char *english, const char *simplified, const char *traditional)
{
    const QString language = ZIQGlobalization::getPreferredLanguage();
    if (language == QLatin1String("zh-Hans"))
        return QString::fromUtf8(simplified);
    if (language == QLatin1String("zh-Hant"))
        return QString::fromUtf8(traditional);
    return QString::fromUtf8(english);
}

QString DemoApp::listTitle() const
{
    return inLanguage("Chats", "消息", "訊息");
}
