// Submission of a session's edits with the note's local rules, and the refresh of a note from
// the service (entries, settings and creator).
#include "plugin/provider/ZIQGroupNoteDataProvider.h"

#include "kit/common/ZIQGlobalization.h"
#include "kit/common/ZIQTool.h"
#include "platform/MainQueue.h"
#include "plugin/provider/ZIQGroupNoteLog.h"

#include <QPointer>

namespace {

// Changes one submission may carry: additions plus modifications, and deletions, each.
constexpr qsizetype kMaxChangesPerSubmission = 20;
// A new note message must be known to the service before extensions are written to it.
constexpr int kFirstExtensionWriteDelayMs = 500;

const QString kSendMessageFailDesc = QStringLiteral("ZIQGroupNote_Send_Message_Fail_Desc");
const QString kSetExtensionFailDesc = QStringLiteral("ZIQGroupNote_Set_Message_Extension_Fail_Desc");
const QString kSubmitExceedLimitKey = QStringLiteral("ZIQGroupNoteSubmitExceedLimit");
const QString kSubmitExceedLimitDesc = QStringLiteral("The count of group notes exceeds the upper limit");

} // namespace

void ZIQGroupNoteDataProvider::submitInGroup(const QString &groupID, bool isCreateNew, Completion completion)
{
    parseChangedOperationsByComparison();
    if (isCreateNew) {
        if (!refuseNewNote(completion))
            submitNewNote(groupID, std::move(completion));
    } else if (!refuseExistingNote(completion)) {
        submitChanges(groupID, std::move(completion));
    }
}

void ZIQGroupNoteDataProvider::refuse(
    const QString &localizationKey, const QString &desc, const Completion &completion) const
{
    ZIQTool::makeToast(ZIQGlobalization::getLocalizedStringForKey(localizationKey), 3.0, ZIQToastPosition::Center);
    if (completion)
        completion(-1, desc);
}

bool ZIQGroupNoteDataProvider::refuseNewNote(const Completion &completion) const
{
    if (m_info->isExceedDeadline()) {
        refuse(QStringLiteral("ZIQGroupNoteDeadlineMustBeLater"),
            QStringLiteral("The deadline must be later than the current time"), completion);
    } else if (m_addedItems.size() >= kMaxChangesPerSubmission) {
        refuse(kSubmitExceedLimitKey, kSubmitExceedLimitDesc, completion);
    } else {
        return false;
    }
    return true;
}

bool ZIQGroupNoteDataProvider::refuseExistingNote(const Completion &completion) const
{
    if (m_info->isExceedDeadline()) {
        refuse(QStringLiteral("ZIQGroupNoteExceedDeadline"), QStringLiteral("Exceed deadline, collection stopped"),
            completion);
    } else if (m_addedItems.size() + m_modifiedItems.size() >= kMaxChangesPerSubmission
        || m_deletedItems.size() >= kMaxChangesPerSubmission) {
        refuse(kSubmitExceedLimitKey, kSubmitExceedLimitDesc, completion);
    } else if (m_message && m_info->didSubmitOnce() && !m_addedItems.isEmpty()) {
        // Single submission: the member's stored entry may still be changed or emptied.
        refuse(QStringLiteral("ZIQGroupNoteSubmitOnce"), QStringLiteral("You are not allow to submit"), completion);
    } else if (m_addedItems.isEmpty() && m_modifiedItems.isEmpty() && m_deletedItems.isEmpty() && !m_isConfigChanged) {
        refuse(QStringLiteral("ZIQGroupNoteNotChanged"), QStringLiteral("Group note's content is not changed"),
            completion);
    } else {
        return false;
    }
    return true;
}

void ZIQGroupNoteDataProvider::submitNewNote(const QString &groupID, Completion completion)
{
    QPointer<ZIQGroupNoteDataProvider> self(this);
    const auto writeEntries = [self, completion] {
        self->setGroupNoteMessageExtensionWithCompletion([self, completion](int code, const QString &) {
            if (code == 0 && self)
                self->modifyShowLineNumOfMessage(self->m_message);
            // The same description on success too: it tells a failed entry write (the note
            // message exists) from a failed post.
            if (completion)
                completion(code, kSetExtensionFailDesc);
        });
    };
    sendGroupNoteMessageToGroup(
        groupID,
        [self, writeEntries] {
            if (self)
                platform::MainQueue::after(kFirstExtensionWriteDelayMs, self, writeEntries);
        },
        [completion](int code, const QString &) {
            if (completion)
                completion(code, kSendMessageFailDesc);
        });
}

void ZIQGroupNoteDataProvider::submitChanges(const QString &groupID, Completion completion)
{
    QPointer<ZIQGroupNoteDataProvider> self(this);
    setGroupNoteMessageExtensionWithCompletion([self, groupID, completion](int code, const QString &) {
        if (code != 0) {
            if (completion)
                completion(code, kSetExtensionFailDesc);
            return;
        }
        if (self) {
            self->modifyShowLineNumOfMessage(self->m_message);
            if (self->m_info->setting()->allowNotify() && self->m_isItemsChanged) {
                // The group is told of additions; a lost tips message only reaches the log.
                self->sendNoteNotifyMessageToGroup(groupID, {}, [](int code, const QString &desc) {
                    ZIQGroupNoteLog::warning("sendNoteNotifyMessage failed, code: %d, desc: %@", code, desc);
                });
            }
        }
        if (completion)
            completion(0, QString());
    });
}

void ZIQGroupNoteDataProvider::getNoteStatistics(InfoCompletion completion)
{
    if (isOriginMessage()) {
        if (m_message)
            getMessageExtension(m_message, std::move(completion));
        else if (completion)
            completion(-1, QStringLiteral("message is empty, get failed"), nullptr);
        return;
    }
    QPointer<ZIQGroupNoteDataProvider> self(this);
    withOriginMessage([self, completion](const V2VORMessagePtr &sentOrigin) {
        if (sentOrigin) {
            self->getMessageExtension(sentOrigin, completion);
            return;
        }
        const ZIQGroupNoteInfoPtr info = self->m_info;
        self->getMessageExtensionBySeq(info->originMsgSeq(),
            [info, completion](int code, const QString &desc, const QList<V2VORMessageExtension> &list) {
                if (code != 0) {
                    if (completion)
                        completion(code, desc, info);
                    return;
                }
                info->updateWithExtensionList(list, [info, completion](int code, const QString &desc) {
                    if (completion)
                        completion(code, desc, info);
                });
            });
    });
}

void ZIQGroupNoteDataProvider::refreshCreatorInfoWithCompletion(Completion completion)
{
    V2VORManager *sdk = manager();
    if (!sdk) {
        if (completion)
            completion(-1, ZIQGroupNoteExtensionClient::noClientDesc);
        return;
    }
    QPointer<ZIQGroupNoteDataProvider> self(this);
    sdk->getGroupMembersInfo(
        m_message ? m_message->groupID() : QString(), { m_info->creatorUserID() },
        [self, completion](const QList<V2VORGroupMemberFullInfo> &members) {
            if (self && !members.isEmpty()) {
                self->m_info->setCreatorUserName(ZIQGroupNoteInfo::displayedNameOfMemberInfo(members.first()));
                self->m_info->setCreatorUserAvatar(members.first().faceURL);
            }
            if (completion)
                completion(0, QString());
        },
        [completion](int code, const QString &desc) {
            if (completion)
                completion(code, desc);
        });
}
