#include "server/DirectoryFile.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <memory>

namespace {

QString str(const QJsonObject &object, const char *name)
{
    return object.value(QLatin1String(name)).toString();
}

/// Why `list` (an array of objects whose `required` members are non-empty strings and whose
/// `optional` ones, when present, strings) is not that; empty when it is.
QString checkList(const QJsonObject &root, const char *list, const QStringList &required, const QStringList &optional)
{
    const QJsonValue value = root.value(QLatin1String(list));
    if (value.isUndefined())
        return {};
    if (!value.isArray())
        return QStringLiteral("\"%1\" must be an array").arg(QLatin1String(list));
    const QJsonArray array = value.toArray();
    for (qsizetype i = 0; i < array.size(); ++i) {
        const QJsonObject item = array.at(i).toObject();
        const QString where = QStringLiteral("%1[%2]").arg(QLatin1String(list)).arg(i);
        if (!array.at(i).isObject())
            return where + QStringLiteral(" must be an object");
        for (const QString &name : required) {
            if (item.value(name).toString().isEmpty())
                return QStringLiteral("%1 needs a \"%2\"").arg(where, name);
        }
        for (const QString &name : optional) {
            if (item.contains(name) && !item.value(name).isString())
                return QStringLiteral("%1.%2 must be a string").arg(where, name);
        }
    }
    return {};
}

QString checkGroupMembers(const QJsonArray &groups)
{
    for (qsizetype i = 0; i < groups.size(); ++i) {
        const QJsonObject group = groups.at(i).toObject();
        const QJsonValue members = group.value(QLatin1String("members"));
        const QJsonValue cards = group.value(QLatin1String("nameCards"));
        const bool membersOk = members.isUndefined()
            || (members.isArray()
                && std::all_of(members.toArray().begin(), members.toArray().end(),
                    [](const QJsonValue &member) { return member.isString(); }));
        const QJsonObject cardsObject = cards.toObject();
        const bool cardsOk = cards.isUndefined()
            || (cards.isObject() && std::all_of(cardsObject.begin(), cardsObject.end(), [](const QJsonValue &card) {
                   return card.isString();
               }));
        if (!membersOk)
            return QStringLiteral("groups[%1].members must be an array of user IDs").arg(i);
        if (!cardsOk)
            return QStringLiteral("groups[%1].nameCards must map user IDs to names").arg(i);
    }
    return {};
}

} // namespace

std::optional<DirectoryFile> DirectoryFile::read(const QString &path, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error)
            *error = QStringLiteral("%1: %2").arg(path, file.errorString());
        return std::nullopt;
    }
    std::optional<DirectoryFile> directory = fromJson(file.readAll(), error);
    if (!directory && error)
        *error = QStringLiteral("%1: %2").arg(path, *error);
    return directory;
}

std::optional<DirectoryFile> DirectoryFile::fromJson(const QByteArray &json, QString *error)
{
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(json, &parseError);
    QString why;
    if (!document.isObject())
        why = QStringLiteral("not a JSON object (%1)").arg(parseError.errorString());
    const QJsonObject root = document.object();
    if (why.isEmpty())
        why = checkList(
            root, "users", { QStringLiteral("userID") }, { QStringLiteral("nickName"), QStringLiteral("faceURL") });
    if (why.isEmpty())
        why = checkList(
            root, "groups", { QStringLiteral("groupID") }, { QStringLiteral("groupName"), QStringLiteral("faceURL") });
    if (why.isEmpty())
        why = checkGroupMembers(root.value(QLatin1String("groups")).toArray());
    if (why.isEmpty())
        why = checkList(
            root, "remarks", { QStringLiteral("viewerID"), QStringLiteral("targetID") }, { QStringLiteral("remark") });
    if (!why.isEmpty()) {
        if (error)
            *error = why;
        return std::nullopt;
    }
    DirectoryFile directory;
    directory.m_json = root;
    return directory;
}

int DirectoryFile::userCount() const
{
    return int(m_json.value(QLatin1String("users")).toArray().size());
}

int DirectoryFile::groupCount() const
{
    return int(m_json.value(QLatin1String("groups")).toArray().size());
}

QList<DirectoryFile::Step> DirectoryFile::steps(MessagingBackend *backend, MessagingSession *session) const
{
    QList<Step> steps;
    for (const QJsonValue &value : m_json.value(QLatin1String("users")).toArray()) {
        const QJsonObject user = value.toObject();
        steps.append([=](auto done) {
            backend->addUser(session, str(user, "userID"), str(user, "nickName"), str(user, "faceURL"), done);
        });
    }
    for (const QJsonValue &value : m_json.value(QLatin1String("groups")).toArray()) {
        const QJsonObject group = value.toObject();
        const QString groupID = str(group, "groupID");
        const QStringList members = group.value(QLatin1String("members")).toVariant().toStringList();
        steps.append([=](auto done) { backend->createGroup(session, groupID, members, done); });
        steps.append([=](auto done) {
            backend->setGroupInfo(session, groupID, str(group, "groupName"), str(group, "faceURL"), done);
        });
        const QJsonObject cards = group.value(QLatin1String("nameCards")).toObject();
        for (auto card = cards.begin(); card != cards.end(); ++card) {
            const QString userID = card.key(), nameCard = card.value().toString();
            steps.append([=](auto done) { backend->setNameCard(session, groupID, userID, nameCard, done); });
        }
    }
    for (const QJsonValue &value : m_json.value(QLatin1String("remarks")).toArray()) {
        const QJsonObject remark = value.toObject();
        steps.append([=](auto done) {
            backend->setFriendRemark(
                session, str(remark, "viewerID"), str(remark, "targetID"), str(remark, "remark"), done);
        });
    }
    return steps;
}

void DirectoryFile::apply(MessagingBackend *backend, MessagingSession *operatorSession,
    const std::function<void(const CallError &)> &done) const
{
    auto run = std::make_shared<Run>();
    run->steps = steps(backend, operatorSession);
    run->done = done;
    Run::next(run);
}

void DirectoryFile::Run::next(const std::shared_ptr<Run> &run)
{
    // One change after another, each waiting for the backend's answer to the last. Answers that
    // come inside the call continue the loop here rather than nesting a call per change.
    while (!run->steps.isEmpty()) {
        const Step step = run->steps.takeFirst();
        auto inCall = std::make_shared<bool>(true);
        auto answered = std::make_shared<bool>(false);
        step([run, inCall, answered](const CallError &error) {
            *answered = true;
            if (error) {
                run->steps.clear();
                if (const auto done = std::exchange(run->done, nullptr))
                    done(error);
                return;
            }
            if (!*inCall)
                next(run);
        });
        *inCall = false;
        if (!*answered)
            return;
        if (!run->done)
            return;
    }
    if (const auto done = std::exchange(run->done, nullptr))
        done(CallError {});
}
