// The editing session: construction, edits, rows and change detection against the snapshot.
#include "plugin/provider/ZIQGroupNoteDataProvider.h"

#include "kit/common/ZIQGlobalization.h"
#include "kit/common/ZIQLogin.h"
#include "kit/core/ZIQCore.h"
#include "kit/core/ZIQCoreDefines.h"
#include "platform/MainQueue.h"
#include "platform/NotificationCenter.h"
#include "plugin/model/ZIQGroupNoteExtensionKey.h"
#include "plugin/provider/ZIQGroupNoteDataProviderDelegate.h"

namespace {

const QString kGroupNoteUpdated = QStringLiteral("groupNoteUpdated");
constexpr qsizetype kCollapsedPreviewRows = 2;

} // namespace

ZIQGroupNoteDataProvider::ZIQGroupNoteDataProvider(const V2VORMessagePtr &message, QObject *parent)
    : QObject(parent)
    , m_message(message)
    , m_extensions(V2VORManager::sharedInstance())
{
    if (message)
        m_info = ZIQGroupNoteInfo::initWithMessage(message);
    if (!m_info) {
        // A new note, or a message that carries none: an empty note either way.
        m_info = std::make_shared<ZIQGroupNoteInfo>();
        if (!message)
            m_info->setCreatorUserID(ZIQLogin::getUserID());
    }
    if (V2VORManager *sdk = manager())
        sdk->addAdvancedMsgListener(this);
    convertInfoToCellData();
    setupNotification();
}

ZIQGroupNoteDataProvider::~ZIQGroupNoteDataProvider()
{
    ZIQCore::unRegisterEventByObject(this);
    platform::NotificationCenter::defaultCenter().removeObserver(this);
    if (V2VORManager *sdk = manager())
        sdk->removeAdvancedMsgListener(this);
}

void ZIQGroupNoteDataProvider::setupNotification()
{
    ZIQCore::registerEvent(ZIQCore_ZIQChatNotify, ZIQCore_ZIQChatNotify_SendMessageSubKey, this);
    platform::NotificationCenter::defaultCenter().addObserver(this, kGroupNoteUpdated,
        [this](const platform::Notification &notification) { onReceivedGroupNoteUpdated(notification); });
}

ZIQGroupNoteDataProviderDelegate *ZIQGroupNoteDataProvider::delegate() const
{
    return m_delegateLifetime.expired() ? nullptr : m_delegate;
}

void ZIQGroupNoteDataProvider::setDelegate(ZIQGroupNoteDataProviderDelegate *delegate)
{
    m_delegate = delegate;
    m_delegateLifetime = delegate ? delegate->m_lifetime : std::weak_ptr<const bool>();
}

void ZIQGroupNoteDataProvider::switchMultiSubmit(bool allow)
{
    if (m_info->setting()->allowMultiSubmit() == allow)
        return;
    m_info->setting()->setAllowMultiSubmit(allow);
    m_isConfigChanged = true;
}

void ZIQGroupNoteDataProvider::switchNotify(bool allow)
{
    if (m_info->setting()->allowNotify() == allow)
        return;
    m_info->setting()->setAllowNotify(allow);
    m_isConfigChanged = true;
}

void ZIQGroupNoteDataProvider::setDeadline(double deadlineTimestampInMS)
{
    if (m_info->setting()->deadlineTimestampInMS() == deadlineTimestampInMS)
        return;
    m_info->setting()->setDeadlineTimestampInMS(deadlineTimestampInMS);
    m_isConfigChanged = true;
}

void ZIQGroupNoteDataProvider::editTitle(const QString &title)
{
    m_info->setTitle(title);
}

void ZIQGroupNoteDataProvider::editDesc(const QString &desc)
{
    m_info->setDesc(desc);
}

void ZIQGroupNoteDataProvider::addExample(const QString &example)
{
    m_info->setExample(example);
}

void ZIQGroupNoteDataProvider::editItem(const ZIQGroupNoteItemPtr &)
{
}

void ZIQGroupNoteDataProvider::addNewItem()
{
    addNewItemFromOld(nullptr);
}

void ZIQGroupNoteDataProvider::repeatItem(const ZIQGroupNoteItemPtr &item)
{
    addNewItemFromOld(item);
}

void ZIQGroupNoteDataProvider::addNewItemFromOld(const ZIQGroupNoteItemPtr &oldItem)
{
    const QString userID = ZIQLogin::getUserID();
    const QString nickName = ZIQLogin::getNickName();
    auto item = std::make_shared<ZIQGroupNoteItem>();
    item->setUserID(userID);
    item->setUserName(nickName);
    // Without a template the line starts with the author's name; the user types after it.
    item->setContent(oldItem ? oldItem->content() : (nickName.isEmpty() ? userID : nickName) + QLatin1Char(' '));

    // The creation time is the entry's identity: two lines added within one millisecond would
    // share a key and one would overwrite the other, so a clash moves on by a millisecond.
    double timestamp = platform::MainQueue::now();
    const auto clashes = [&](double time) {
        const QString identity = ZIQGroupNoteExtensionKey::entryKeyWithoutSeq(userID, time);
        return std::any_of(m_info->items().cbegin(), m_info->items().cend(),
            [&](const ZIQGroupNoteItemPtr &other) { return other->keyWithoutSeq() == identity; });
    };
    while (clashes(timestamp))
        timestamp += 1;
    item->setTimestampInMS(timestamp);

    m_info->setLastIndex(m_info->lastIndex() + 1);
    item->setIndex(m_info->lastIndex());
    m_info->items().append(item);
    m_dataList.append(std::make_shared<ZIQGroupNoteTextFieldCellData>(item));
    if (item->userID() == ZIQLogin::getUserID())
        m_info->setIsMyselfCreated(true);
}

bool ZIQGroupNoteDataProvider::isOriginMessage() const
{
    return m_info->originMsgID().isEmpty() && m_info->originMsgSeq() == 0;
}

QString ZIQGroupNoteDataProvider::originMessageID() const
{
    if (!isOriginMessage())
        return m_info->originMsgID();
    return m_message ? m_message->msgID() : QString();
}

QString ZIQGroupNoteDataProvider::displayedNameOfMemberInfo(const V2VORGroupMemberFullInfo &member)
{
    return ZIQGroupNoteInfo::displayedNameOfMemberInfo(member);
}

void ZIQGroupNoteDataProvider::convertInfoToCellData()
{
    m_dataList.clear();
    for (qsizetype i = 0; i < m_info->items().size(); ++i) {
        if (auto row = createCellDataFromInfo(m_info, i))
            m_dataList.append(row);
    }
    restorePreviewDataList();
}

void ZIQGroupNoteDataProvider::restorePreviewDataList()
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

ZIQGroupNoteTextFieldCellDataPtr ZIQGroupNoteDataProvider::createCellDataFromInfo(
    const ZIQGroupNoteInfoPtr &info, qsizetype index) const
{
    if (!info || index < 0 || index >= info->items().size())
        return nullptr;
    return std::make_shared<ZIQGroupNoteTextFieldCellData>(info->items().at(index));
}

ZIQGroupNotePreviewCellDataPtr ZIQGroupNoteDataProvider::createPreviewCellDataFromInfo(
    const ZIQGroupNoteInfoPtr &info, qsizetype index) const
{
    if (!info || index < 0 || index >= info->previewItems().size())
        return nullptr;
    return std::make_shared<ZIQGroupNotePreviewCellData>(info->previewItems().at(index));
}

ZIQGroupNotePreviewCellDataPtr ZIQGroupNoteDataProvider::createEmptyPreviewCellData() const
{
    return std::make_shared<ZIQGroupNotePreviewCellData>();
}

void ZIQGroupNoteDataProvider::parseChangedOperationsByComparison()
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
    // Counts on from the previous value on purpose: a second detection counts again.
    m_localShowLineNum += snapshotCount + m_addedItems.size() - m_deletedItems.size();
}

void ZIQGroupNoteDataProvider::refreshSnapshot()
{
    convertInfoToCellData();
    m_cachedLastItems.clear();
    for (const ZIQGroupNoteItemPtr &item : m_info->items())
        m_cachedLastItems.append(item->copy());
}
