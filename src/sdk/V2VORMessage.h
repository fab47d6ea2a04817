// A message as one client holds it. Each client has its own copies; the service is the single
// source of truth. Messages are shared (V2VORMessagePtr) and mutable, like the platform's.
#pragma once

#include "sdk/V2VORCustomElem.h"

#include <QMetaType>
#include <QString>
#include <memory>

enum V2VORMessageStatus : int {
    V2VOR_MSG_STATUS_SENDING = 1,
    V2VOR_MSG_STATUS_SEND_SUCC = 2,
    V2VOR_MSG_STATUS_SEND_FAIL = 3,
};

enum V2VORElemType : int {
    V2VOR_ELEM_TYPE_NONE = 0,
    V2VOR_ELEM_TYPE_TEXT = 1,
    V2VOR_ELEM_TYPE_CUSTOM = 2,
};

class V2VORMessage;
using V2VORMessagePtr = std::shared_ptr<V2VORMessage>;

class V2VORMessage
{
public:
    /// Assigned by the service when the message is sent.
    QString msgID() const { return m_msgID; }
    void setMsgID(const QString &msgID) { m_msgID = msgID; }
    /// Per-group sequence number, from 1, assigned when sent.
    quint64 seq() const { return m_seq; }
    void setSeq(quint64 seq) { m_seq = seq; }
    QString groupID() const { return m_groupID; }
    void setGroupID(const QString &groupID) { m_groupID = groupID; }
    /// The other user of a one-to-one message, as seen by the client holding this copy;
    /// empty for a group message.
    QString userID() const { return m_userID; }
    void setUserID(const QString &userID) { m_userID = userID; }
    /// User ID of the sender.
    QString sender() const { return m_sender; }
    void setSender(const QString &sender) { m_sender = sender; }
    QString nickName() const { return m_nickName; }
    void setNickName(const QString &nickName) { m_nickName = nickName; }
    QString faceURL() const { return m_faceURL; }
    void setFaceURL(const QString &faceURL) { m_faceURL = faceURL; }
    /// Milliseconds since 1970 at which the service accepted the message.
    double timestamp() const { return m_timestamp; }
    void setTimestamp(double timestamp) { m_timestamp = timestamp; }
    /// Whether the client holding this copy sent it.
    bool isSelf() const { return m_isSelf; }
    void setIsSelf(bool isSelf) { m_isSelf = isSelf; }

    int status() const { return m_status; }
    void setStatus(int status) { m_status = status; }
    int elemType() const { return m_elemType; }
    void setElemType(int elemType) { m_elemType = elemType; }

    /// The custom element; null unless elemType is V2VOR_ELEM_TYPE_CUSTOM.
    V2VORCustomElem *customElem() const { return m_customElem.get(); }
    void setCustomElem(std::unique_ptr<V2VORCustomElem> elem) { m_customElem = std::move(elem); }
    /// The text of a text message.
    QString text() const { return m_text; }
    void setText(const QString &text) { m_text = text; }

    bool supportMessageExtension() const { return m_supportMessageExtension; }
    void setSupportMessageExtension(bool support) { m_supportMessageExtension = support; }

    /// The service's modification version this copy was taken at; a modification made from
    /// an older copy is refused as a conflict.
    quint64 messageVersion() const { return m_messageVersion; }
    void setMessageVersion(quint64 version) { m_messageVersion = version; }

    /// An independent deep copy.
    V2VORMessagePtr clone() const;

private:
    QString m_msgID;
    quint64 m_seq = 0;
    QString m_groupID;
    QString m_userID;
    QString m_sender;
    QString m_nickName;
    QString m_faceURL;
    double m_timestamp = 0;
    bool m_isSelf = false;
    int m_status = V2VOR_MSG_STATUS_SENDING;
    int m_elemType = V2VOR_ELEM_TYPE_NONE;
    std::unique_ptr<V2VORCustomElem> m_customElem;
    QString m_text;
    bool m_supportMessageExtension = false;
    quint64 m_messageVersion = 0;
};

Q_DECLARE_METATYPE(V2VORMessagePtr)
