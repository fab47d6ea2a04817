// A group played through whatever service the contract suite runs against: users with their
// own logged-in clients, a group holding them, and an operator that keeps the directory. Every
// fixture makes IDs of its own (the service may outlive the test: a NATS store does), so tests
// never see each other's users, groups or messages.
#pragma once

#include "ServiceUnderTest.h"

#include "sdk/V2VORManager.h"

#include <QHash>
#include <QStringList>
#include <memory>

class ContractFixture
{
public:
    explicit ContractFixture(ServiceUnderTest &service,
        const QStringList &names = { QStringLiteral("alice"), QStringLiteral("bob"), QStringLiteral("carol") });
    ~ContractFixture();

    ContractFixture(const ContractFixture &) = delete;
    ContractFixture &operator=(const ContractFixture &) = delete;

    /// Whether the directory was set up and every client logged in.
    bool isReady() const { return m_ready; }
    QString groupID() const { return m_groupID; }
    /// The user ID this fixture gave the user called `name`.
    QString id(const QString &name) const { return m_prefix + name; }
    V2VORManager *client(const QString &name) const { return m_clients.value(name).get(); }

    /// A user outside the group, with a logged-in client of their own.
    V2VORManager *addOutsider(const QString &name);
    /// Another group of the given members (names); its ID.
    QString addGroup(const QString &name, const QStringList &memberNames);
    /// A second client of an existing user, as on another device.
    std::unique_ptr<V2VORManager> newDevice(const QString &name);

private:
    class Operator;
    V2VORManager *addClient(const QString &name);
    std::unique_ptr<V2VORManager> loggedInClient(const QString &name);

    ServiceUnderTest &m_service;
    QString m_prefix;
    QString m_groupID;
    std::unique_ptr<Operator> m_operator;
    QHash<QString, std::shared_ptr<V2VORManager>> m_clients;
    int m_clientCount = 0;
    bool m_ready = true;
};
