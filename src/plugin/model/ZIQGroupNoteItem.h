// One numbered entry of a note. An entry lives in its note message's extensions under a key made
// of its author, its creation time and its edit generation (ZIQGroupNoteExtensionKey).
#pragma once

#include <QString>
#include <memory>

class ZIQGroupNoteItem;
using ZIQGroupNoteItemPtr = std::shared_ptr<ZIQGroupNoteItem>;

class ZIQGroupNoteItem
{
public:
    ZIQGroupNoteItem() = default;
    ZIQGroupNoteItem(const QString &userID, double timestampInMS, qint64 keySeq, const QString &content);

    QString userID() const { return m_userID; }
    void setUserID(const QString &userID) { m_userID = userID; }
    /// Display name of the author, once the member look-up has answered.
    QString userName() const { return m_userName; }
    void setUserName(const QString &userName) { m_userName = userName; }
    /// Creation instant in ms since 1970; part of the entry's identity, never changed by an edit.
    double timestampInMS() const { return m_timestampInMS; }
    void setTimestampInMS(double timestamp) { m_timestampInMS = timestamp; }
    QString content() const { return m_content; }
    void setContent(const QString &content) { m_content = content; }
    /// 1-based line number in the note, assigned after sorting.
    qint64 index() const { return m_index; }
    void setIndex(qint64 index) { m_index = index; }
    /// Edit generation: 0 when created, one more for each rewrite through the sequence path.
    qint64 keySeq() const { return m_keySeq; }
    void setKeySeq(qint64 keySeq) { m_keySeq = keySeq; }

    /// "userID_timestamp_keySeq", always computed from the three fields; what setKey() stored is
    /// kept but never read back, so an entry has exactly one current key.
    QString key() const;
    void setKey(const QString &key) { m_storedKey = key; }
    /// "userID_timestamp": the entry's identity across generations; computed like key().
    QString keyWithoutSeq() const;
    void setKeyWithoutSeq(const QString &key) { m_storedKeyWithoutSeq = key; }

    /// An independent entry with the same fields (the editor compares against such copies).
    ZIQGroupNoteItemPtr copy() const;
    /// The same as copy().
    ZIQGroupNoteItemPtr mutableCopy() const { return copy(); }

private:
    QString m_userID;
    QString m_userName;
    double m_timestampInMS = 0;
    QString m_content;
    qint64 m_index = 0;
    qint64 m_keySeq = 0;
    QString m_storedKey;
    QString m_storedKeyWithoutSeq;
};
