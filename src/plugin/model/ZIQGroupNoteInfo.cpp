#include "plugin/model/ZIQGroupNoteInfo.h"

#include "kit/common/ZIQTool.h"
#include "platform/MainQueue.h"
#include "plugin/model/ZIQGroupNoteExtensionKey.h"
#include "plugin/model/ZIQGroupNoteJsonValue.h"

#include <QHash>
#include <QJsonObject>
#include <algorithm>
#include <vector>

namespace {

// The collapsed card never shows more than two entry rows.
constexpr qint64 maxShowLineNum = 2;

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

// Marks the extensions that hold a superseded generation of an entry. Keys of one entry share
// everything but their last two characters ("_" and a one-digit generation); within such a
// group only the highest generation is current. Keys without an underscore are no entry's.
std::vector<bool> supersededExtensions(const QList<V2VORMessageExtension> &list)
{
    std::vector<qint64> newestOfGroup;
    QHash<QStringView, qsizetype> groupOfBase;
    groupOfBase.reserve(list.size());
    std::vector<qsizetype> groupOf(list.size(), -1);
    for (qsizetype i = 0; i < list.size(); ++i) {
        const QString &key = list[i].extensionKey;
        if (key == ZIQGroupNoteExtensionKey::configKey || !key.contains(QLatin1Char('_')))
            continue;
        const QStringView base = QStringView(key).chopped(std::min<qsizetype>(2, key.size()));
        auto group = groupOfBase.constFind(base);
        if (group == groupOfBase.cend()) {
            group = groupOfBase.insert(base, qsizetype(newestOfGroup.size()));
            newestOfGroup.push_back(0);
        }
        groupOf[i] = *group;
        newestOfGroup[*group] = std::max(newestOfGroup[*group], ZIQGroupNoteExtensionKey::generationOf(key));
    }
    // A key alone in its group is its own newest generation.
    std::vector<bool> superseded(list.size(), false);
    for (qsizetype i = 0; i < list.size(); ++i) {
        superseded[i] = groupOf[i] >= 0
            && ZIQGroupNoteExtensionKey::generationOf(list[i].extensionKey) != newestOfGroup[groupOf[i]];
    }
    return superseded;
}

} // namespace

ZIQGroupNoteInfo::ZIQGroupNoteInfo(const ZIQGroupNoteContext &context)
    : m_context(context)
{
}

ZIQGroupNoteInfoPtr ZIQGroupNoteInfo::initWithMessage(
    const V2VORMessagePtr &message, const ZIQGroupNoteContext &context)
{
    if (!message || !message->customElem())
        return nullptr;
    const QJsonObject body = ZIQTool::jsonData2Dictionary(message->customElem()->data);
    auto info = std::make_shared<ZIQGroupNoteInfo>(context);
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
    info->m_isCreatedByMyself = context.isCurrentUser(info->m_creatorUserID);
    return info;
}

void ZIQGroupNoteInfo::updateWithExtensionList(const QList<V2VORMessageExtension> &list, Completion completion)
{
    resolveMemberNames(mergeExtensionList(list), std::move(completion));
}

QStringList ZIQGroupNoteInfo::mergeExtensionList(const QList<V2VORMessageExtension> &list)
{
    m_extensionList = list;
    const std::vector<bool> superseded = supersededExtensions(list);

    // Sorted with their times beside them: comparing through the pointers would visit every
    // entry on the heap at each step.
    std::vector<std::pair<double, ZIQGroupNoteItemPtr>> entries;
    entries.reserve(list.size());
    QStringList authors;
    // One shared user ID string per author, found by the view into each key.
    QHash<QStringView, QString> authorIDs;
    for (qsizetype i = 0; i < list.size(); ++i) {
        const V2VORMessageExtension &extension = list[i];
        if (extension.extensionKey == ZIQGroupNoteExtensionKey::configKey) {
            m_setting = ZIQGroupNoteSetting::settingWithConfigValue(extension.extensionValue);
            continue;
        }
        ZIQGroupNoteExtensionKey::EntryKeyView parts;
        if (superseded[i] || extension.extensionValue == ZIQGroupNoteExtensionKey::deletedMarker
            || !ZIQGroupNoteExtensionKey::parseEntryKey(QStringView(extension.extensionKey), &parts))
            continue;
        auto author = authorIDs.constFind(parts.userID);
        if (author == authorIDs.cend()) {
            author = authorIDs.insert(parts.userID, parts.userID.toString());
            authors.append(*author);
        }
        entries.emplace_back(parts.timestampInMS,
            std::make_shared<ZIQGroupNoteItem>(*author, parts.timestampInMS, parts.keySeq, extension.extensionValue));
    }
    m_paticipantCount = static_cast<quint64>(authors.size());
    std::sort(entries.begin(), entries.end(), [](const auto &a, const auto &b) { return a.first < b.first; });
    numberEntries(entries);
    return authors;
}

void ZIQGroupNoteInfo::numberEntries(const std::vector<std::pair<double, ZIQGroupNoteItemPtr>> &sorted)
{
    QList<ZIQGroupNoteItemPtr> items;
    items.reserve(qsizetype(sorted.size()));
    for (const auto &[timestamp, item] : sorted) {
        items.append(item);
        item->setIndex(items.size());
        if (m_context.isCurrentUser(item->userID()))
            m_isMyselfSubmitted = true;
    }
    if (!items.isEmpty())
        m_lastIndex = items.size();
    m_items = items;
    m_previewItems = items;
}

QStringList ZIQGroupNoteInfo::redundantKeysInExtensionList() const
{
    const std::vector<bool> superseded = supersededExtensions(m_extensionList);
    QStringList redundant;
    for (qsizetype i = 0; i < m_extensionList.size(); ++i) {
        if (superseded[i])
            redundant.append(m_extensionList[i].extensionKey);
    }
    return redundant;
}

void ZIQGroupNoteInfo::resolveMemberNames(const QStringList &authors, Completion completion) const
{
    auto finish = [completion = std::move(completion)] {
        if (completion)
            completion(0, QString());
    };
    V2VORManager *client = m_context.client;
    if (authors.isEmpty() || !client) {
        platform::MainQueue::async(finish);
        return;
    }
    // The answer names the entries of this refresh; holding them rather than the note keeps a
    // note that is destroyed or refreshed again meanwhile out of reach.
    const QList<ZIQGroupNoteItemPtr> entries = m_items;
    const QString groupID = m_message ? m_message->groupID() : QString();
    client->getGroupMembersInfo(
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
