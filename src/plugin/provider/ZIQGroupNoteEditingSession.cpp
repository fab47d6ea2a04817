#include "plugin/provider/ZIQGroupNoteEditingSession.h"

#include "kit/common/ZIQGlobalization.h"
#include "platform/MainQueue.h"
#include "plugin/model/ZIQGroupNoteExtensionKey.h"

#include <QSet>

namespace {

constexpr qsizetype kCollapsedPreviewRows = 2;

} // namespace

ZIQGroupNoteEditingSession::ZIQGroupNoteEditingSession(
    const V2VORMessagePtr &message, const ZIQGroupNoteContext &context)
    : m_message(message)
{
    if (message)
        m_info = ZIQGroupNoteInfo::initWithMessage(message, context);
    if (!m_info) {
        // A new note, or a message that carries none: an empty note either way.
        m_info = std::make_shared<ZIQGroupNoteInfo>(context);
        if (!message)
            m_info->setCreatorUserID(context.userID);
    }
    convertInfoToCellData();
}

void ZIQGroupNoteEditingSession::adoptPostedMessage(const V2VORMessagePtr &message)
{
    m_customMessage = message;
    m_message = message;
    m_info->setMessage(message);
}

void ZIQGroupNoteEditingSession::switchMultiSubmit(bool allow)
{
    if (m_info->setting()->allowMultiSubmit() == allow)
        return;
    m_info->setting()->setAllowMultiSubmit(allow);
    m_isConfigChanged = true;
}

void ZIQGroupNoteEditingSession::switchNotify(bool allow)
{
    if (m_info->setting()->allowNotify() == allow)
        return;
    m_info->setting()->setAllowNotify(allow);
    m_isConfigChanged = true;
}

void ZIQGroupNoteEditingSession::setDeadline(double deadlineTimestampInMS)
{
    if (m_info->setting()->deadlineTimestampInMS() == deadlineTimestampInMS)
        return;
    m_info->setting()->setDeadlineTimestampInMS(deadlineTimestampInMS);
    m_isConfigChanged = true;
}

void ZIQGroupNoteEditingSession::addNewItemFromOld(const ZIQGroupNoteItemPtr &oldItem)
{
    const QString userID = context().userID;
    const QString nickName = context().nickName;
    auto item = std::make_shared<ZIQGroupNoteItem>();
    item->setUserID(userID);
    item->setUserName(nickName);
    // Without a template the line starts with the author's name; the user types after it.
    item->setContent(oldItem ? oldItem->content() : (nickName.isEmpty() ? userID : nickName) + QLatin1Char(' '));
    item->setTimestampInMS(freeTimestamp(userID));

    m_info->setLastIndex(m_info->lastIndex() + 1);
    item->setIndex(m_info->lastIndex());
    m_info->items().append(item);
    m_dataList.append(std::make_shared<ZIQGroupNoteTextFieldCellData>(item));
    if (context().isCurrentUser(item->userID()))
        m_info->setIsMyselfCreated(true);
}

double ZIQGroupNoteEditingSession::freeTimestamp(const QString &userID) const
{
    // The creation time is the entry's identity: two lines added within one millisecond would
    // share a key and one would overwrite the other, so a clash moves on by a millisecond.
    QSet<QString> taken;
    taken.reserve(m_info->items().size());
    for (const ZIQGroupNoteItemPtr &other : m_info->items())
        taken.insert(other->keyWithoutSeq());
    double timestamp = platform::MainQueue::now();
    while (taken.contains(ZIQGroupNoteExtensionKey::entryKeyWithoutSeq(userID, timestamp)))
        timestamp += 1;
    return timestamp;
}

bool ZIQGroupNoteEditingSession::isOriginMessage() const
{
    return m_info->originMsgID().isEmpty() && m_info->originMsgSeq() == 0;
}

QString ZIQGroupNoteEditingSession::originMessageID() const
{
    if (!isOriginMessage())
        return m_info->originMsgID();
    return m_message ? m_message->msgID() : QString();
}

void ZIQGroupNoteEditingSession::convertInfoToCellData()
{
    m_dataList.clear();
    for (qsizetype i = 0; i < m_info->items().size(); ++i) {
        if (auto row = createCellDataFromInfo(m_info, i))
            m_dataList.append(row);
    }
    restorePreviewDataList();
}

void ZIQGroupNoteEditingSession::restorePreviewDataList()
{
    m_previewDataList.clear();
    const qsizetype count = m_info->previewItems().size();
    if (!m_isExpandAll && count > kCollapsedPreviewRows) {
        // Collapsed: the expand control, then the newest entry.
        auto expand = std::make_shared<ZIQGroupNoteItem>();
        expand->setContent(ZIQGlobalization::getLocalizedStringForKey(QStringLiteral("ZIQGroupNoteExpand")));
        expand->setIndex(-1);
        m_previewDataList.append(std::make_shared<ZIQGroupNotePreviewCellData>(expand));
        m_previewDataList.append(createPreviewCellDataFromInfo(m_info, count - 1));
        return;
    }
    for (qsizetype i = 0; i < count; ++i) {
        if (auto row = createPreviewCellDataFromInfo(m_info, i))
            m_previewDataList.append(row);
    }
}

ZIQGroupNoteTextFieldCellDataPtr ZIQGroupNoteEditingSession::createCellDataFromInfo(
    const ZIQGroupNoteInfoPtr &info, qsizetype index) const
{
    if (!info || index < 0 || index >= info->items().size())
        return nullptr;
    return std::make_shared<ZIQGroupNoteTextFieldCellData>(info->items().at(index));
}

ZIQGroupNotePreviewCellDataPtr ZIQGroupNoteEditingSession::createPreviewCellDataFromInfo(
    const ZIQGroupNoteInfoPtr &info, qsizetype index) const
{
    if (!info || index < 0 || index >= info->previewItems().size())
        return nullptr;
    return std::make_shared<ZIQGroupNotePreviewCellData>(info->previewItems().at(index));
}

void ZIQGroupNoteEditingSession::parseChangedOperationsByComparison()
{
    const QList<ZIQGroupNoteItemPtr> &current = m_info->items();
    const qsizetype snapshotCount = m_cachedLastItems.size();
    for (qsizetype i = 0; i < std::max(snapshotCount, current.size()); ++i) {
        const ZIQGroupNoteItemPtr old = i < snapshotCount ? m_cachedLastItems.at(i) : nullptr;
        const ZIQGroupNoteItemPtr now = i < current.size() ? current.at(i) : nullptr;
        if (!old) {
            if (now && !now->content().isEmpty())
                m_addedItems.append(now);
        } else if (now && old->keyWithoutSeq() == now->keyWithoutSeq() && old->content() != now->content()) {
            // Entries are never removed from the list: an emptied line is a deletion.
            if (now->content().isEmpty()) {
                now->setContent(ZIQGroupNoteExtensionKey::deletedMarker);
                m_deletedItems.append(now);
            } else {
                m_modifiedItems.append(now);
            }
        }
    }
    // Counts on from the previous value, as every client of these notes does, so a second
    // detection in one session counts the entries again; readers clamp the count to the two
    // rows a collapsed card shows, so an overcount never reaches a card.
    m_localShowLineNum += snapshotCount + m_addedItems.size() - m_deletedItems.size();
}

void ZIQGroupNoteEditingSession::refreshSnapshot()
{
    convertInfoToCellData();
    m_cachedLastItems.clear();
    for (const ZIQGroupNoteItemPtr &item : m_info->items())
        m_cachedLastItems.append(item->copy());
}

QList<V2VORMessageExtension> ZIQGroupNoteEditingSession::changedExtensions(OperationDict *operationDict)
{
    QList<V2VORMessageExtension> extensions;
    for (const ZIQGroupNoteItemPtr &item : std::as_const(m_addedItems)) {
        extensions.append({ item->key(), item->content() });
        operationDict->insert(item->key(), 0);
    }
    // Only additions are announced to the group: a tips message for every corrected typo would
    // flood the chat.
    if (!m_addedItems.isEmpty())
        m_isItemsChanged = true;
    for (const ZIQGroupNoteItemPtr &item : std::as_const(m_modifiedItems)) {
        extensions.append({ item->key(), item->content() });
        operationDict->insert(item->key(), 1);
    }
    if (m_isConfigChanged)
        extensions.append({ ZIQGroupNoteExtensionKey::configKey, m_info->setting()->configValue() });
    return extensions;
}

QStringList ZIQGroupNoteEditingSession::deletedKeys() const
{
    QStringList keys;
    for (const ZIQGroupNoteItemPtr &item : m_deletedItems)
        keys.append(item->key());
    return keys;
}
