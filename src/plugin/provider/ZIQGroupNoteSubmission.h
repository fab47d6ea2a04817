// One submission of an editing session: change detection, the note's local rules (deadline,
// single submission, at most 20 changes of each kind), then the writes. A new note is posted
// first and gets its entries half a second later; an existing note gets its changes written,
// its "show_line_num" rewritten and, when it notifies and entries were added, a tips message.
//
// A submission holds its sync and sender until its chain ends (ZIQGroupNoteGuard), so it runs to
// its end and answers its completion even when the screen that started it is gone.
#pragma once

#include "plugin/provider/ZIQGroupNoteGuard.h"
#include "plugin/provider/ZIQGroupNoteSender.h"
#include "plugin/provider/ZIQGroupNoteSync.h"

class ZIQGroupNoteSubmission : public std::enable_shared_from_this<ZIQGroupNoteSubmission>
{
public:
    using Completion = ZIQGroupNoteSync::Completion;

    /// Starts a submission; `completion` is called exactly once: -1 and a description for a local
    /// refusal (after a toast), else the service's answer.
    static void submit(const std::shared_ptr<ZIQGroupNoteSync> &sync, const std::shared_ptr<ZIQGroupNoteSender> &sender,
        const QString &groupID, bool isCreateNew, Completion completion);

    ZIQGroupNoteSubmission(std::shared_ptr<ZIQGroupNoteSync> sync, std::shared_ptr<ZIQGroupNoteSender> sender,
        const QString &groupID, Completion completion);

private:
    ZIQGroupNoteGuard<ZIQGroupNoteSubmission> chain()
    {
        return ZIQGroupNoteGuard<ZIQGroupNoteSubmission>(shared_from_this());
    }
    const ZIQGroupNoteEditingSession &session() const { return *m_sync->session(); }
    void refuse(const QString &localizationKey, const QString &desc);
    bool refuseNewNote();
    bool refuseExistingNote();
    void postNewNote();
    void writeChanges();
    void answer(int code, const QString &desc);

    std::shared_ptr<ZIQGroupNoteSync> m_sync;
    std::shared_ptr<ZIQGroupNoteSender> m_sender;
    QString m_groupID;
    Completion m_completion;
};
