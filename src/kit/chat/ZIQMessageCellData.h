// The data of one row of a chat's message list: which message it shows, which way it points,
// how far its sending got and the reactions members gave it. Every kind of row (the kit's own
// and those plug-ins register) derives from this; a cell class draws it.
#pragma once

#include "kit/chat/ZIQMessageReactions.h"
#include "sdk/V2VORMessage.h"

#include <QObject>
#include <memory>

enum class ZIQMessageDirection {
    Incoming,
    Outgoing,
};

enum class ZIQMessageStatus {
    Sending,
    Sent,
    Failed,
};

class ZIQMessageCellData : public QObject
{
    Q_OBJECT

public:
    explicit ZIQMessageCellData(ZIQMessageDirection direction, QObject *parent = nullptr);
    ~ZIQMessageCellData() override;

    /// Outgoing for the current user's own messages.
    static ZIQMessageDirection directionOf(const V2VORMessage &message);

    ZIQMessageDirection direction() const { return m_direction; }

    QString msgID() const { return m_msgID; }
    void setMsgID(const QString &msgID) { m_msgID = msgID; }
    /// The messaging client's message behind the row. A modified message replaces it in place.
    V2VORMessagePtr innerMessage() const { return m_innerMessage; }
    void setInnerMessage(const V2VORMessagePtr &message) { m_innerMessage = message; }
    /// From the inner message: sending until the service answers, then sent or failed.
    ZIQMessageStatus status() const;

    /// The name of the cell class that draws this row.
    QString cellClassName() const { return m_cellClassName; }
    void setCellClassName(const QString &name) { m_cellClassName = name; }

    const ZIQMessageReactions &reactions() const { return m_reactions; }
    void setReactions(const ZIQMessageReactions &reactions) { m_reactions = reactions; }

private:
    ZIQMessageDirection m_direction;
    QString m_msgID;
    V2VORMessagePtr m_innerMessage;
    QString m_cellClassName;
    ZIQMessageReactions m_reactions;
};

using ZIQMessageCellDataPtr = std::shared_ptr<ZIQMessageCellData>;
