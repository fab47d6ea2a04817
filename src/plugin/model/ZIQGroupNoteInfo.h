// One group note as this client understands it: the head parsed from the note (or tips) message,
// the settings and the live entries merged from the message's extensions, and the flags that
// decide what the current user may do.
#pragma once

#include "plugin/model/ZIQGroupNoteContext.h"
#include "plugin/model/ZIQGroupNoteItem.h"
#include "plugin/model/ZIQGroupNoteSetting.h"
#include "sdk/V2VORGroupMemberFullInfo.h"
#include "sdk/V2VORMessage.h"
#include "sdk/V2VORMessageExtension.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

class ZIQGroupNoteInfo;
using ZIQGroupNoteInfoPtr = std::shared_ptr<ZIQGroupNoteInfo>;

class ZIQGroupNoteInfo
{
public:
    using Completion = std::function<void(int code, const QString &desc)>;

    /// An empty note read by `context`: no message, default settings, no entries.
    explicit ZIQGroupNoteInfo(const ZIQGroupNoteContext &context = ZIQGroupNoteContext::current());

    /// The note whose head the message's custom data carries (a note or a tips message alike),
    /// read by `context`; null when the message or its custom element is absent. A body that is
    /// not a JSON object gives a note with an empty head; a text member holding another JSON type
    /// reads as "".
    static ZIQGroupNoteInfoPtr initWithMessage(
        const V2VORMessagePtr &message, const ZIQGroupNoteContext &context = ZIQGroupNoteContext::current());

    /// Rebuilds settings, entries, numbering and participant count from the message's full
    /// extension list, then names the entries' authors through the group member look-up of the
    /// message's group on the context's client. `completion` is always called, later, with 0 and "" (also when the
    /// look-up fails). The look-up holds the entries it names, never the note, so the note may
    /// be destroyed while it runs.
    void updateWithExtensionList(const QList<V2VORMessageExtension> &list, Completion completion = {});
    /// The synchronous part of updateWithExtensionList(): everything but the name look-up.
    /// Returns the distinct authors of the live entries, in the order first met.
    QStringList mergeExtensionList(const QList<V2VORMessageExtension> &list);
    /// Keys of extensionList() that hold superseded generations of an entry, in list order.
    QStringList redundantKeysInExtensionList() const;

    /// Name card, else friend remark, else nick name, else user ID.
    static QString displayedNameOfMemberInfo(const V2VORGroupMemberFullInfo &member);

    /// The client and user this note is read by; "mine" and member names are theirs.
    const ZIQGroupNoteContext &context() const { return m_context; }
    void setContext(const ZIQGroupNoteContext &context) { m_context = context; }
    V2VORMessagePtr message() const { return m_message; }
    void setMessage(const V2VORMessagePtr &message) { m_message = message; }
    QString title() const { return m_title; }
    void setTitle(const QString &title) { m_title = title; }
    QString desc() const { return m_desc; }
    void setDesc(const QString &desc) { m_desc = desc; }
    /// The format example shown above the entries.
    QString example() const { return m_example; }
    void setExample(const QString &example) { m_example = example; }
    /// Entry rows of the collapsed card, 0 to 2.
    qint64 showLineNum() const { return m_showLineNum; }
    void setShowLineNum(qint64 showLineNum) { m_showLineNum = showLineNum; }
    QString creatorUserID() const { return m_creatorUserID; }
    void setCreatorUserID(const QString &userID) { m_creatorUserID = userID; }
    QString creatorUserName() const { return m_creatorUserName; }
    void setCreatorUserName(const QString &name) { m_creatorUserName = name; }
    QString creatorUserAvatar() const { return m_creatorUserAvatar; }
    void setCreatorUserAvatar(const QString &url) { m_creatorUserAvatar = url; }
    /// For a message that re-posts a note (a tips message), the first note message's ID and
    /// sequence; empty and 0 when this note was read from the first message itself.
    QString originMsgID() const { return m_originMsgID; }
    void setOriginMsgID(const QString &msgID) { m_originMsgID = msgID; }
    quint64 originMsgSeq() const { return m_originMsgSeq; }
    void setOriginMsgSeq(quint64 seq) { m_originMsgSeq = seq; }
    bool isCreatedByMyself() const { return m_isCreatedByMyself; }
    void setIsCreatedByMyself(bool mine) { m_isCreatedByMyself = mine; }

    /// Never null: a default setting is created on first read.
    ZIQGroupNoteSettingPtr setting() const;
    void setSetting(const ZIQGroupNoteSettingPtr &setting) { m_setting = setting; }

    /// The live entries in display order; the editor appends to this list.
    const QList<ZIQGroupNoteItemPtr> &items() const { return m_items; }
    QList<ZIQGroupNoteItemPtr> &items() { return m_items; }
    void setItems(const QList<ZIQGroupNoteItemPtr> &items) { m_items = items; }
    /// The same entry objects as items() at the last refresh; the note card reads this list
    /// while the editor changes items().
    const QList<ZIQGroupNoteItemPtr> &previewItems() const { return m_previewItems; }
    QList<ZIQGroupNoteItemPtr> &previewItems() { return m_previewItems; }
    void setPreviewItems(const QList<ZIQGroupNoteItemPtr> &items) { m_previewItems = items; }
    /// The raw list the entries and settings were last built from.
    const QList<V2VORMessageExtension> &extensionList() const { return m_extensionList; }
    void setExtensionList(const QList<V2VORMessageExtension> &list) { m_extensionList = list; }

    /// Distinct authors among the live entries (the name keeps the spelling other clients use).
    quint64 paticipantCount() const { return m_paticipantCount; }
    void setPaticipantCount(quint64 count) { m_paticipantCount = count; }
    /// The number the newest entry displays; kept by a refresh to an empty list.
    qint64 lastIndex() const { return m_lastIndex; }
    void setLastIndex(qint64 lastIndex) { m_lastIndex = lastIndex; }
    /// A stored live entry is the current user's; a refresh only ever sets it.
    bool isMyselfSubmitted() const { return m_isMyselfSubmitted; }
    void setIsMyselfSubmitted(bool submitted) { m_isMyselfSubmitted = submitted; }
    /// The current user added an entry in this editing session; never touched by a refresh.
    bool isMyselfCreated() const { return m_isMyselfCreated; }
    void setIsMyselfCreated(bool created) { m_isMyselfCreated = created; }
    /// A free state slot; nothing assigns it.
    int status() const { return m_status; }
    void setStatus(int status) { m_status = status; }

    /// Whether the current user may add an entry now. Always computed; the setter only stores.
    bool canSubmit() const;
    void setCanSubmit(bool canSubmit) { m_storedCanSubmit = canSubmit; }
    /// Single submission applies and the current user already has a stored entry. Always
    /// computed; the setter only stores.
    bool didSubmitOnce() const;
    void setDidSubmitOnce(bool didSubmitOnce) { m_storedDidSubmitOnce = didSubmitOnce; }
    /// A deadline is set and the main queue's clock has reached it.
    bool isExceedDeadline() const;

private:
    void numberEntries(const std::vector<std::pair<double, ZIQGroupNoteItemPtr>> &sorted);
    void resolveMemberNames(const QStringList &authors, Completion completion) const;

    ZIQGroupNoteContext m_context;
    V2VORMessagePtr m_message;
    QString m_title;
    QString m_desc;
    QString m_example;
    qint64 m_showLineNum = 0;
    QString m_creatorUserID;
    QString m_creatorUserName;
    QString m_creatorUserAvatar;
    QString m_originMsgID;
    quint64 m_originMsgSeq = 0;
    bool m_isCreatedByMyself = false;
    mutable ZIQGroupNoteSettingPtr m_setting;
    QList<ZIQGroupNoteItemPtr> m_items;
    QList<ZIQGroupNoteItemPtr> m_previewItems;
    QList<V2VORMessageExtension> m_extensionList;
    quint64 m_paticipantCount = 0;
    qint64 m_lastIndex = 0;
    bool m_isMyselfSubmitted = false;
    bool m_isMyselfCreated = false;
    int m_status = 0;
    bool m_storedCanSubmit = false;
    bool m_storedDidSubmitOnce = false;
};
