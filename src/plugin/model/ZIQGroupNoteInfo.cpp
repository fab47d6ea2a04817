#include "plugin/model/ZIQGroupNoteInfo.h"

#include "kit/common/ZIQLogin.h"
#include "platform/MainQueue.h"
#include "plugin/model/ZIQGroupNoteExtensionKey.h"
#include "plugin/model/ZIQGroupNoteJsonValue.h"
#include "sdk/V2VORManager.h"

#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <algorithm>

namespace {

// The collapsed card never shows more than two entry rows.
constexpr qint64 maxShowLineNum = 2;

bool isCurrentUser(const QString &userID, const QString &currentUserID)
{
    return !currentUserID.isEmpty() && userID == currentUserID;
}

void applyMemberNames(const QList<ZIQGroupNoteItemPtr> &entries, const QList<V2VORGroupMemberFullInfo> &members)
{
    QHash<QString, QString> names;
    for (const V2VORGroupMemberFullInfo &member : members) {
        if (!names.contains(member.userID))
            names.insert(member.userID, ZIQGroupNoteInfo::displayedNameOfMemberInfo(member));
    }
    for (const ZIQGroupNoteItemPtr &entry : entries) {
        const auto name = names.constFind(entry->userID());
        if (name != names.cend())
            entry->setUserName(*name);
    }
}

} // namespace

ZIQGroupNoteInfoPtr ZIQGroupNoteInfo::initWithMessage(const V2VORMessagePtr &message)
{
    if (!message || !message->customElem())
        return nullptr;
    const QJsonObject body = QJsonDocument::fromJson(message->customElem()->data).object();
    auto info = std::make_shared<ZIQGroupNoteInfo>();
    info->m_title = body.value(QLatin1String("title")).toString();
    info->m_desc = body.value(QLatin1String("description")).toString();
    info->m_showLineNum
        = std::min(ZIQGroupNoteJsonValue::toInt64(body.value(QLatin1String("show_line_num"))), maxShowLineNum);

    const QJsonObject content = body.value(QLatin1String("content")).toObject();
    if (content.contains(QLatin1String("creator")))
        info->m_creatorUserID = content.value(QLatin1String("creator")).toString();
    if (content.contains(QLatin1String("original_msg_id")) && content.contains(QLatin1String("original_msg_seq"))) {
        info->m_originMsgID = content.value(QLatin1String("original_msg_id")).toString();
        info->m_originMsgSeq = ZIQGroupNoteJsonValue::toUInt64(content.value(QLatin1String("original_msg_seq")));
    }
    if (content.contains(QLatin1String("format")))
        info->m_example = content.value(QLatin1String("format")).toString();

    info->m_message = message;
    info->m_isCreatedByMyself = isCurrentUser(info->m_creatorUserID, ZIQLogin::getUserID());
    return info;
}

void ZIQGroupNoteInfo::updateWithExtensionList(const QList<V2VORMessageExtension> &list, Completion completion)
{
    resolveMemberNames(mergeExtensionList(list), std::move(completion));
}

QStringList ZIQGroupNoteInfo::mergeExtensionList(const QList<V2VORMessageExtension> &list)
{
    m_extensionList = list;
    const QStringList redundant = redundantKeysInExtensionList();
    const QSet<QString> redundantKeys(redundant.cbegin(), redundant.cend());

    QList<ZIQGroupNoteItemPtr> entries;
    entries.reserve(list.size());
    QStringList authors;
    QSet<QString> knownAuthors;
    for (const V2VORMessageExtension &extension : list) {
        if (extension.extensionKey == ZIQGroupNoteExtensionKey::configKey) {
            m_setting = ZIQGroupNoteSetting::settingWithConfigValue(extension.extensionValue);
            continue;
        }
        if (extension.extensionValue == ZIQGroupNoteExtensionKey::deletedMarker
            || redundantKeys.contains(extension.extensionKey))
            continue;
        ZIQGroupNoteExtensionKey::EntryKeyParts parts;
        if (!ZIQGroupNoteExtensionKey::parseEntryKey(extension.extensionKey, &parts))
            continue;
        entries.append(std::make_shared<ZIQGroupNoteItem>(
            parts.userID, parts.timestampInMS, parts.keySeq, extension.extensionValue));
        if (!knownAuthors.contains(parts.userID)) {
            knownAuthors.insert(parts.userID);
            authors.append(parts.userID);
        }
    }
    m_paticipantCount = static_cast<quint64>(authors.size());

    std::stable_sort(entries.begin(), entries.end(), [](const ZIQGroupNoteItemPtr &a, const ZIQGroupNoteItemPtr &b) {
        return a->timestampInMS() < b->timestampInMS();
    });
    const QString currentUserID = ZIQLogin::getUserID();
    for (qsizetype i = 0; i < entries.size(); ++i) {
        entries[i]->setIndex(i + 1);
        m_lastIndex = i + 1;
        if (isCurrentUser(entries[i]->userID(), currentUserID))
            m_isMyselfSubmitted = true;
    }
    m_items = entries;
    m_previewItems = entries;
    return authors;
}

QStringList ZIQGroupNoteInfo::redundantKeysInExtensionList() const
{
    // Keys of one entry share everything but their last two characters ("_" and a one-digit
    // generation); within such a group only the highest generation is current.
    QStringList bases;
    QHash<QString, QStringList> keysByBase;
    for (const V2VORMessageExtension &extension : m_extensionList) {
        const QString &key = extension.extensionKey;
        if (key == ZIQGroupNoteExtensionKey::configKey || !key.contains(QLatin1Char('_')))
            continue;
        const QString base = ZIQGroupNoteExtensionKey::generationBase(key);
        QStringList &group = keysByBase[base];
        if (group.isEmpty())
            bases.append(base);
        group.append(key);
    }

    QStringList redundant;
    for (const QString &base : std::as_const(bases)) {
        const QStringList &group = keysByBase[base];
        if (group.size() < 2)
            continue;
        qint64 newest = 0;
        for (const QString &key : group)
            newest = std::max(newest, ZIQGroupNoteExtensionKey::generationOf(key));
        for (const QString &key : group) {
            if (ZIQGroupNoteExtensionKey::generationOf(key) != newest)
                redundant.append(key);
        }
    }
    return redundant;
}

void ZIQGroupNoteInfo::resolveMemberNames(const QStringList &authors, Completion completion) const
{
    auto finish = [completion = std::move(completion)] {
        if (completion)
            completion(0, QString());
    };
    V2VORManager *manager = V2VORManager::sharedInstance();
    if (authors.isEmpty() || !manager) {
        platform::MainQueue::async(finish);
        return;
    }
    // The answer names the entries of this refresh; holding them rather than the note keeps a
    // note that is destroyed or refreshed again meanwhile out of reach.
    const QList<ZIQGroupNoteItemPtr> entries = m_items;
    const QString groupID = m_message ? m_message->groupID() : QString();
    manager->getGroupMembersInfo(
        groupID, authors,
        [entries, finish](const QList<V2VORGroupMemberFullInfo> &members) {
            applyMemberNames(entries, members);
            finish();
        },
        [finish](int, const QString &) { finish(); });
}

QString ZIQGroupNoteInfo::displayedNameOfMemberInfo(const V2VORGroupMemberFullInfo &member)
{
    for (const QString *name : { &member.nameCard, &member.friendRemark, &member.nickName }) {
        if (!name->isEmpty())
            return *name;
    }
    return member.userID;
}

ZIQGroupNoteSettingPtr ZIQGroupNoteInfo::setting() const
{
    if (!m_setting)
        m_setting = std::make_shared<ZIQGroupNoteSetting>();
    return m_setting;
}

bool ZIQGroupNoteInfo::isExceedDeadline() const
{
    const double deadline = setting()->deadlineTimestampInMS();
    return deadline > 0 && platform::MainQueue::now() >= deadline;
}

bool ZIQGroupNoteInfo::canSubmit() const
{
    if (isExceedDeadline())
        return false;
    if (setting()->allowMultiSubmit())
        return true;
    if (m_isMyselfSubmitted)
        return false;
    return !m_isMyselfCreated;
}

bool ZIQGroupNoteInfo::didSubmitOnce() const
{
    return !setting()->allowMultiSubmit() && m_isMyselfSubmitted;
}
