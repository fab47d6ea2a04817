#include "plugin/provider/ZIQGroupNoteSubmission.h"

#include "kit/common/ZIQGlobalization.h"
#include "kit/common/ZIQTool.h"
#include "platform/MainQueue.h"
#include "plugin/provider/ZIQGroupNoteLog.h"

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

void ZIQGroupNoteSubmission::submit(const std::shared_ptr<ZIQGroupNoteSync> &sync,
    const std::shared_ptr<ZIQGroupNoteSender> &sender, const QString &groupID, bool isCreateNew, Completion completion)
{
    sync->session()->parseChangedOperationsByComparison();
    const auto submission = std::make_shared<ZIQGroupNoteSubmission>(sync, sender, groupID, std::move(completion));
    if (isCreateNew) {
        if (!submission->refuseNewNote())
            submission->postNewNote();
    } else if (!submission->refuseExistingNote()) {
        submission->writeChanges();
    }
}

ZIQGroupNoteSubmission::ZIQGroupNoteSubmission(std::shared_ptr<ZIQGroupNoteSync> sync,
    std::shared_ptr<ZIQGroupNoteSender> sender, const QString &groupID, Completion completion)
    : m_sync(std::move(sync))
    , m_sender(std::move(sender))
    , m_groupID(groupID)
    , m_completion(std::move(completion))
{
}

void ZIQGroupNoteSubmission::answer(int code, const QString &desc)
{
    if (m_completion)
        m_completion(code, desc);
}

void ZIQGroupNoteSubmission::refuse(const QString &localizationKey, const QString &desc)
{
    ZIQTool::makeToast(ZIQGlobalization::getLocalizedStringForKey(localizationKey), 3.0, ZIQToastPosition::Center);
    answer(-1, desc);
}

bool ZIQGroupNoteSubmission::refuseNewNote()
{
    if (session().info()->isExceedDeadline()) {
        refuse(QStringLiteral("ZIQGroupNoteDeadlineMustBeLater"),
            QStringLiteral("The deadline must be later than the current time"));
    } else if (session().addedItems().size() >= kMaxChangesPerSubmission) {
        refuse(kSubmitExceedLimitKey, kSubmitExceedLimitDesc);
    } else {
        return false;
    }
    return true;
}

bool ZIQGroupNoteSubmission::refuseExistingNote()
{
    const ZIQGroupNoteEditingSession &changes = session();
    if (changes.info()->isExceedDeadline()) {
        refuse(QStringLiteral("ZIQGroupNoteExceedDeadline"), QStringLiteral("Exceed deadline, collection stopped"));
    } else if (changes.addedItems().size() + changes.modifiedItems().size() >= kMaxChangesPerSubmission
        || changes.deletedItems().size() >= kMaxChangesPerSubmission) {
        refuse(kSubmitExceedLimitKey, kSubmitExceedLimitDesc);
    } else if (changes.message() && changes.info()->didSubmitOnce() && !changes.addedItems().isEmpty()) {
        // Single submission: the member's stored entry may still be changed or emptied.
        refuse(QStringLiteral("ZIQGroupNoteSubmitOnce"), QStringLiteral("You are not allow to submit"));
    } else if (changes.addedItems().isEmpty() && changes.modifiedItems().isEmpty() && changes.deletedItems().isEmpty()
        && !changes.isConfigChanged()) {
        refuse(QStringLiteral("ZIQGroupNoteNotChanged"), QStringLiteral("Group note's content is not changed"));
    } else {
        return false;
    }
    return true;
}

void ZIQGroupNoteSubmission::postNewNote()
{
    const auto writeEntries = chain().step([](ZIQGroupNoteSubmission &submission) {
        submission.m_sync->setGroupNoteMessageExtensionWithCompletion(
            submission.chain().step([](ZIQGroupNoteSubmission &submission, int code, const QString &) {
                if (code == 0)
                    submission.m_sync->modifyShowLineNumOfMessage(submission.session().message());
                // The same description on success too: it tells a failed entry write (the note
                // message exists) from a failed post.
                submission.answer(code, kSetExtensionFailDesc);
            }));
    });
    m_sender->sendGroupNoteMessageToGroup(
        m_groupID, [writeEntries] { platform::MainQueue::after(kFirstExtensionWriteDelayMs, writeEntries); },
        chain().step([](ZIQGroupNoteSubmission &submission, int code, const QString &) {
            submission.answer(code, kSendMessageFailDesc);
        }));
}

void ZIQGroupNoteSubmission::writeChanges()
{
    m_sync->setGroupNoteMessageExtensionWithCompletion(
        chain().step([](ZIQGroupNoteSubmission &submission, int code, const QString &) {
            if (code != 0) {
                submission.answer(code, kSetExtensionFailDesc);
                return;
            }
            const ZIQGroupNoteEditingSession &session = submission.session();
            submission.m_sync->modifyShowLineNumOfMessage(session.message());
            if (session.info()->setting()->allowNotify() && session.isItemsChanged()) {
                // The group is told of additions; a lost tips message only reaches the log.
                submission.m_sender->sendNoteNotifyMessageToGroup(
                    submission.m_groupID, {}, [](int code, const QString &desc) {
                        ZIQGroupNoteLog::warning("sendNoteNotifyMessage failed, code: %d, desc: %@", code, desc);
                    });
            }
            submission.answer(0, QString());
        }));
}
