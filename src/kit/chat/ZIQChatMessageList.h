// The messages of one open chat as rows, oldest at the top and newest at the bottom: history
// loaded page by page, new and modified messages arriving live, the user's own sends shown at
// once as sending and then as sent or failed, and reactions following the messages'
// extensions. Each message has exactly one cell data for as long as the list lives; a change
// updates it in place and names its row. Row sizes are measured by the rows' cell classes
// before a row is drawn and cached until something about the row changes.
#pragma once

#include "kit/chat/ZIQChatConversation.h"
#include "kit/chat/ZIQMessageCellData.h"
#include "kit/chat/ZIQSendMessageAppendParams.h"
#include "kit/core/ZIQNotifyProtocol.h"
#include "sdk/V2VORAdvancedMsgListener.h"
#include "sdk/V2VORCallbacks.h"
#include "sdk/V2VORManager.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QSizeF>
#include <functional>
#include <vector>

class ZIQChatMessageList : public QObject, public V2VORAdvancedMsgListener, public ZIQNotifyProtocol
{
    Q_OBJECT

public:
    /// A list of `conversation` on `client` (the shared client when null). Nothing is loaded
    /// until loadMessages().
    explicit ZIQChatMessageList(
        const ZIQChatConversation &conversation, V2VORManager *client = nullptr, QObject *parent = nullptr);
    ~ZIQChatMessageList() override;

    ZIQChatConversation conversation() const { return m_conversation; }
    V2VORManager *client() const { return m_client; }

    int count() const { return int(m_rows.size()); }
    /// Null outside the rows.
    ZIQMessageCellDataPtr cellData(int row) const;
    /// -1 when the message has no row.
    int rowOfMessage(const QString &msgID) const;

    /// Loads `count` messages older than the oldest row (the latest ones at first) and puts
    /// them on top; the chat is marked read.
    void loadMessages(int count = 20);
    /// False once a load came back short.
    bool hasMoreMessages() const { return m_hasMore; }
    /// Marks everything in the conversation read for this client.
    void markRead();

    /// The content size the row's cell class gives, measured on first use after a change.
    QSizeF contentSize(int row);
    bool needsMeasure(int row) const;
    void invalidateSize(int row);

    /// Shows the message at the bottom as sending and sends it (to its own group when it names
    /// one, else to this chat); the row turns sent or failed before `succ` or `fail` is called.
    QString sendMessage(const V2VORMessagePtr &message, const ZIQSendMessageAppendParams &params, V2VORSucc succ = {},
        V2VORFail fail = {});
    /// A text message from the input bar, sent as the chat sends everything.
    QString sendTextMessage(const QString &text, V2VORSucc succ = {}, V2VORFail fail = {});

    /// Sets the current user's reaction to a message; an empty emoji takes it back. Rows
    /// change when the messaging client reports the change, for every member alike.
    void setReaction(const QString &msgID, const QString &emoji, V2VORSucc succ = {}, V2VORFail fail = {});

    // Messaging client events.
    void onRecvNewMessage(const V2VORMessagePtr &message) override;
    void onRecvMessageModified(const V2VORMessagePtr &message) override;
    void onRecvMessageExtensionsChanged(const QString &msgID, const QList<V2VORMessageExtension> &extensions) override;
    void onRecvMessageExtensionsDeleted(const QString &msgID, const QStringList &extensionKeys) override;
    // Kit events: a plug-in's view of a message changed its size.
    void onNotifyEvent(const QString &key, const QString &subKey, QObject *object, const QVariantMap &param) override;

Q_SIGNALS:
    /// `count` rows now stand from `first` on.
    void rowsInserted(int first, int count);
    /// The row's cell data changed in place (status, content, reactions).
    void rowChanged(int row);
    /// The row must be measured again before it is drawn.
    void rowSizeInvalidated(int row);
    /// A page of history arrived (code 0) or could not be loaded.
    void loadFinished(int code, const QString &desc);

private:
    struct Row
    {
        ZIQMessageCellDataPtr data;
        QSizeF size;
        bool measured = false;
    };

    /// Rows come on top (older history) or at the bottom (live and sent messages) only.
    void insertRows(bool onTop, const QList<V2VORMessagePtr> &messages);
    void appendMessage(const V2VORMessagePtr &message);
    void changeRow(int row, bool sizeChanged);
    void fetchReactions(const QList<V2VORMessagePtr> &messages);
    /// Runs `change` on a copy of the message's reactions and keeps it when it says it changed.
    void updateReactions(const QString &msgID, const std::function<bool(ZIQMessageReactions &)> &change);
    void writeReaction(
        const V2VORMessagePtr &message, const QString &emoji, bool retryConflict, V2VORSucc succ, V2VORFail fail);

    ZIQChatConversation m_conversation;
    QPointer<V2VORManager> m_client;
    std::vector<Row> m_rows;
    /// Rows are never removed and only added at either end, so a message's row is its
    /// position key minus the top row's key, and stays so as history arrives above it.
    QHash<QString, qint64> m_positionOfMsgID;
    qint64 m_topPosition = 0;
    bool m_hasMore = true;
    bool m_loading = false;
};
