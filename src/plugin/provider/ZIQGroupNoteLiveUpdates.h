// Follows remote changes of one session's note: modifications of the note message (its
// "show_line_num"), changes of its extensions, and the in-process "groupNoteUpdated" notice that
// a screen posts after a submission. It decides which of them concern the note and says so by
// its signals; it lives exactly as long as its screen's provider.
#pragma once

#include "plugin/provider/ZIQGroupNoteEditingSession.h"
#include "sdk/V2VORAdvancedMsgListener.h"

#include <QObject>
#include <memory>

namespace platform {
struct Notification;
}

class ZIQGroupNoteLiveUpdates : public QObject, public V2VORAdvancedMsgListener
{
    Q_OBJECT

public:
    /// Listens on the client of the session's context and on the default notification centre.
    explicit ZIQGroupNoteLiveUpdates(std::shared_ptr<ZIQGroupNoteEditingSession> session, QObject *parent = nullptr);
    ~ZIQGroupNoteLiveUpdates() override;

    /// Extension changes ask for a refresh only while this is set (the editor sets it while its
    /// screen is not shown, since it shows its own edits meanwhile).
    bool needUpdateDataListSynchronously() const { return m_needUpdateDataListSynchronously; }
    void setNeedUpdateDataListSynchronously(bool need) { m_needUpdateDataListSynchronously = need; }

    void onRecvMessageModified(const V2VORMessagePtr &message) override;
    void onRecvMessageExtensionsChanged(const QString &msgID, const QList<V2VORMessageExtension> &extensions) override;
    void onReceivedGroupNoteUpdated(const platform::Notification &notification);

Q_SIGNALS:
    /// The note's entries changed on the service; the note wants fetching anew.
    void refreshNeeded();
    /// The note message's "show_line_num" was modified; the note holds the new value already.
    void showLineNumChanged(qint64 oldValue, qint64 newValue);

private:
    bool concernsMessage(const QString &msgID) const;

    std::shared_ptr<ZIQGroupNoteEditingSession> m_session;
    bool m_needUpdateDataListSynchronously = false;
};
