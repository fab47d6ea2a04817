#include "GroupFixture.h"

#include "kit/common/ZIQLogin.h"

#include <QTest>

GroupFixture::GroupFixture(const QStringList &userIDs, const QString &groupID)
    : m_server(std::make_unique<MessagingServer>())
    , m_groupID(groupID)
    , m_previousShared(V2VORManager::sharedInstance())
{
    for (const QString &userID : userIDs)
        m_server->addUser(userID, nickNameOf(userID), faceURLOf(userID));
    m_server->createGroup(groupID, userIDs);
    for (const QString &userID : userIDs)
        addClient(userID);
}

GroupFixture::~GroupFixture()
{
    V2VORManager::setSharedInstance(m_previousShared);
    qDeleteAll(m_clients);
}

void GroupFixture::actAs(const QString &userID)
{
    V2VORManager::setSharedInstance(client(userID));
    ZIQLogin::setProfile(userID, nickNameOf(userID), faceURLOf(userID));
}

V2VORManager *GroupFixture::addLateMember(const QString &userID)
{
    m_server->addUser(userID, nickNameOf(userID), faceURLOf(userID));
    m_server->addGroupMember(m_groupID, userID);
    return addClient(userID);
}

V2VORManager *GroupFixture::addOutsider(const QString &userID)
{
    m_server->addUser(userID, nickNameOf(userID), faceURLOf(userID));
    return addClient(userID);
}

QString GroupFixture::nickNameOf(const QString &userID)
{
    return userID.left(1).toUpper() + userID.mid(1);
}

V2VORManager *GroupFixture::addClient(const QString &userID)
{
    if (V2VORManager *existing = client(userID))
        return existing;
    auto *manager = new V2VORManager(m_server.get());
    m_clients.insert(userID, manager);
    m_userIDs.append(userID);
    auto done = std::make_shared<bool>(false);
    manager->login(
        userID, [done] { *done = true; }, [done](int, const QString &) { *done = true; });
    // Spins the event loop until the login answer arrives.
    if (!QTest::qWaitFor([done] { return *done; }, 5000) || manager->getLoginStatus() != V2VOR_STATUS_LOGINED)
        m_ready = false;
    return manager;
}
