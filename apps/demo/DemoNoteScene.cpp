#include "DemoNoteScene.h"

#include "DemoCast.h"
#include "DemoWorld.h"

#include "platform/MainQueue.h"
#include "plugin/model/ZIQGroupNoteContext.h"
#include "plugin/model/ZIQGroupNoteInfo.h"
#include "plugin/model/ZIQGroupNoteItem.h"
#include "plugin/provider/ZIQGroupNoteDataProvider.h"

#include <QDebug>

namespace {

/// Adds the member's own line with `text` to the session.
void addEntry(ZIQGroupNoteDataProvider &provider, const QString &text)
{
    provider.addNewItem();
    provider.info()->items().constLast()->setContent(text);
}

} // namespace

DemoNoteScene::DemoNoteScene(DemoCast *cast, const Script &script, QObject *parent)
    : QObject(parent)
    , m_cast(cast)
    , m_script(script)
{
}

void DemoNoteScene::start()
{
    platform::MainQueue::after(PostDelayMs, this, [this] { post(); });
}

void DemoNoteScene::joinNote(const QString &msgID)
{
    m_noteID = msgID;
    join(0);
}

ZIQGroupNoteContext DemoNoteScene::contextOf(const QString &userID) const
{
    return { m_cast ? m_cast->client(userID) : nullptr, userID, DemoWorld::nickNameOf(userID) };
}

void DemoNoteScene::post()
{
    auto *provider = new ZIQGroupNoteDataProvider(nullptr, contextOf(m_script.author), this);
    provider->editTitle(m_script.title);
    provider->editDesc(m_script.description);
    provider->switchNotify(true);
    if (!m_script.entries.isEmpty())
        addEntry(*provider, m_script.entries.first());
    // A started submission answers even after the scene is gone; only a living scene goes on.
    QPointer<DemoNoteScene> self(this);
    provider->submitInGroup(m_script.groupID, true, [self, provider](int code, const QString &desc) {
        if (!self)
            return;
        provider->deleteLater();
        if (code != 0) {
            qWarning().noquote() << self->m_script.author << "could not post the note:" << code << desc;
            return;
        }
        self->m_noteID = provider->message()->msgID();
        Q_EMIT self->posted(self->m_noteID);
        platform::MainQueue::after(JoinPauseMs, self, [self] { self->join(0); });
    });
}

void DemoNoteScene::join(int index)
{
    const QString userID = m_script.joiners.value(index);
    const ZIQGroupNoteContext context = contextOf(userID);
    if (userID.isEmpty() || !context.client) {
        Q_EMIT finished();
        return;
    }
    // Each member opens the note from their own copy of the message, as their chat shows it.
    QPointer<DemoNoteScene> self(this);
    context.client->findMessages(
        { m_noteID },
        [self, index, context](const QList<V2VORMessagePtr> &found) {
            if (self)
                self->addEntryAs(index, context, found.value(0));
        },
        [userID](int code, const QString &desc) {
            qWarning().noquote() << userID << "does not see the note:" << code << desc;
        });
}

void DemoNoteScene::addEntryAs(int index, const ZIQGroupNoteContext &context, const V2VORMessagePtr &note)
{
    auto *provider = new ZIQGroupNoteDataProvider(note, context, this);
    const QString entry = m_script.entries.value(index + 1);
    QPointer<DemoNoteScene> self(this);
    const auto submitted = [self, provider, index, userID = context.userID](int code, const QString &desc) {
        if (!self)
            return;
        provider->deleteLater();
        if (code == 0)
            Q_EMIT self->joined(userID);
        else
            qWarning().noquote() << userID << "could not join the note:" << code << desc;
        platform::MainQueue::after(JoinPauseMs, self, [self, index] { self->join(index + 1); });
    };
    // The entries as they stand come first, so the new line adds to them.
    provider->getNoteStatistics([self, provider, entry, submitted](int, const QString &, const ZIQGroupNoteInfoPtr &) {
        if (!self)
            return;
        addEntry(*provider, entry);
        provider->submitInGroup(self->m_script.groupID, false, submitted);
    });
}
