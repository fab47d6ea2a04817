#include "plugin/model/ZIQGroupNoteItem.h"

#include "plugin/model/ZIQGroupNoteExtensionKey.h"

ZIQGroupNoteItem::ZIQGroupNoteItem(const QString &userID, double timestampInMS, qint64 keySeq, const QString &content)
    : m_userID(userID)
    , m_timestampInMS(timestampInMS)
    , m_content(content)
    , m_keySeq(keySeq)
{
}

QString ZIQGroupNoteItem::key() const
{
    return ZIQGroupNoteExtensionKey::entryKey(m_userID, m_timestampInMS, m_keySeq);
}

QString ZIQGroupNoteItem::keyWithoutSeq() const
{
    return ZIQGroupNoteExtensionKey::entryKeyWithoutSeq(m_userID, m_timestampInMS);
}

ZIQGroupNoteItemPtr ZIQGroupNoteItem::copy() const
{
    auto item = std::make_shared<ZIQGroupNoteItem>(m_userID, m_timestampInMS, m_keySeq, m_content);
    item->setUserName(m_userName);
    item->setIndex(m_index);
    item->setKey(key());
    item->setKeyWithoutSeq(keyWithoutSeq());
    return item;
}
