// The user's conversations, groups and one-to-one chats, latest activity first, each with its
// last message and unread count, kept current by the messaging client's conversation events.
#pragma once

#include "kit/chat/ZIQConversationCellData.h"
#include "sdk/V2VORConversationListener.h"
#include "sdk/V2VORManager.h"

#include <QObject>
#include <QPointer>

class ZIQConversationList : public QObject, public V2VORConversationListener
{
    Q_OBJECT

public:
    /// The conversations of `client` (the shared client when null); empty until load().
    explicit ZIQConversationList(V2VORManager *client = nullptr, QObject *parent = nullptr);

    void load();
    int count() const { return int(m_rows.size()); }
    /// A default row outside the list.
    ZIQConversationCellData at(int row) const { return m_rows.value(row); }
    int rowOf(const QString &conversationID) const;
    int totalUnreadCount() const;

    /// Opens a row: marks the conversation read and says whom to chat with.
    ZIQChatConversation openConversation(int row);

    void onConversationChanged(const QList<V2VORConversation> &conversations) override;

Q_SIGNALS:
    /// Rows changed, came or moved; read the list again.
    void listChanged();
    void loadFinished(int code, const QString &desc);

private:
    static ZIQConversationCellData cellDataOf(const V2VORConversation &conversation);
    void sortRows();

    QPointer<V2VORManager> m_client;
    QList<ZIQConversationCellData> m_rows;
};
