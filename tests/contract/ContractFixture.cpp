#include "ContractFixture.h"

#include <QObject>
#include <QRandomGenerator>
#include <QTest>

namespace {

constexpr int kWaitMs = 10000;

QString nickNameOf(const QString &name)
{
    return name.left(1).toUpper() + name.mid(1);
}

} // namespace

/// A session that keeps the directory: logs in as an operator and waits for each change.
class ContractFixture::Operator : public MessagingSession
{
public:
    Operator(std::unique_ptr<MessagingBackend> backend, const QString &userID, const QString &token)
        : m_backend(std::move(backend))
        , m_userID(userID)
    {
        m_backend->attach(this);
        m_ready = run([&](MessagingBackend::Done done) { m_backend->login(this, userID, token, done); });
    }
    ~Operator() override { m_backend->detach(this); }

    bool isReady() const { return m_ready; }
    MessagingBackend &backend() { return *m_backend; }

    /// Runs one directory call and waits for its answer; whether it succeeded.
    bool run(const std::function<void(MessagingBackend::Done)> &call)
    {
        auto answer = std::make_shared<std::optional<CallError>>();
        call([answer](const CallError &error) { *answer = error; });
        return QTest::qWaitFor([answer] { return answer->has_value(); }, kWaitMs) && !answer->value();
    }

    QString sessionUserID() const override { return m_userID; }
    QObject *sessionContext() override { return &m_context; }
    void receiveNewMessage(const V2VORMessagePtr &) override { }
    void receiveModified(const V2VORMessagePtr &) override { }
    void receiveExtensionsChanged(const QString &, const QList<V2VORMessageExtension> &,
        const QHash<QString, quint64> &) override { }
    void receiveExtensionsDeleted(const QString &, const QStringList &, const QHash<QString, quint64> &) override { }
    void receiveConversationChanged(const V2VORConversation &) override { }

private:
    std::unique_ptr<MessagingBackend> m_backend;
    QString m_userID;
    QObject m_context;
    bool m_ready = false;
};

ContractFixture::ContractFixture(ServiceUnderTest &service, const QStringList &names)
    : m_service(service)
    , m_prefix(QStringLiteral("t%1-").arg(QRandomGenerator::global()->generate64(), 0, 36))
{
    m_operator = std::make_unique<Operator>(
        service.newBackend(0), id(QStringLiteral("operator")), service.tokenFor(id(QStringLiteral("operator")), true));
    m_ready = m_operator->isReady();
    m_groupID = addGroup(QStringLiteral("group"), names);
    for (const QString &name : names)
        addClient(name);
}

ContractFixture::~ContractFixture() = default;

QString ContractFixture::addGroup(const QString &name, const QStringList &memberNames)
{
    const QString groupID = id(name);
    QStringList memberIDs;
    for (const QString &member : memberNames) {
        memberIDs.append(id(member));
        m_ready = m_ready && m_operator->run([&](MessagingBackend::Done done) {
            m_operator->backend().addUser(m_operator.get(), id(member), nickNameOf(member), {}, done);
        });
    }
    m_ready = m_ready && m_operator->run([&](MessagingBackend::Done done) {
        m_operator->backend().createGroup(m_operator.get(), groupID, memberIDs, done);
    });
    return groupID;
}

V2VORManager *ContractFixture::addOutsider(const QString &name)
{
    m_ready = m_ready && m_operator->run([&](MessagingBackend::Done done) {
        m_operator->backend().addUser(m_operator.get(), id(name), nickNameOf(name), {}, done);
    });
    return addClient(name);
}

std::unique_ptr<V2VORManager> ContractFixture::newDevice(const QString &name)
{
    return loggedInClient(name);
}

V2VORManager *ContractFixture::addClient(const QString &name)
{
    std::shared_ptr<V2VORManager> client = loggedInClient(name);
    m_clients.insert(name, client);
    return client.get();
}

std::unique_ptr<V2VORManager> ContractFixture::loggedInClient(const QString &name)
{
    auto client = std::make_unique<V2VORManager>(m_service.newBackend(++m_clientCount));
    client->setLoginToken(m_service.tokenFor(id(name)));
    auto done = std::make_shared<bool>(false);
    client->login(id(name), [done] { *done = true; }, [done](int, const QString &) { *done = true; });
    if (!QTest::qWaitFor([done] { return *done; }, kWaitMs) || client->getLoginStatus() != V2VOR_STATUS_LOGINED)
        m_ready = false;
    return client;
}
