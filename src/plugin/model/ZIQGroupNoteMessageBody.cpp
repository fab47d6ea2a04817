#include "plugin/model/ZIQGroupNoteMessageBody.h"

#include "plugin/model/ZIQGroupNoteInfo.h"
#include "plugin/model/ZIQGroupNoteJsonValue.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace {

const QString businessIDKey = QStringLiteral("businessID");
const QString contentKey = QStringLiteral("content");
const QString originalMsgIDKey = QStringLiteral("original_msg_id");
const QString originalMsgSeqKey = QStringLiteral("original_msg_seq");
const QString showLineNumKey = QStringLiteral("show_line_num");

QByteArray serialized(const QJsonObject &body)
{
    return QJsonDocument(body).toJson(QJsonDocument::Indented);
}

QJsonObject parsed(const QByteArray &body)
{
    return QJsonDocument::fromJson(body).object();
}

} // namespace

QByteArray ZIQGroupNoteMessageBody::noteBody(const ZIQGroupNoteInfo &info, qint64 showLineNum)
{
    const QJsonObject content {
        { QStringLiteral("creator"), info.creatorUserID() },
        { QStringLiteral("format"), info.example() },
        { originalMsgIDKey, QString() },
        { originalMsgSeqKey, 0 },
    };
    // QJsonValue(QString()) writes "", never null, so absent texts need no special case.
    return serialized(QJsonObject {
        { businessIDKey, noteBusinessID },
        { QStringLiteral("title"), info.title() },
        { QStringLiteral("description"), info.desc() },
        { showLineNumKey, showLineNum },
        { contentKey, content },
    });
}

QByteArray ZIQGroupNoteMessageBody::tipsBody(
    const QByteArray &noteBody, const QString &originMsgID, quint64 originMsgSeq)
{
    QJsonObject body = parsed(noteBody);
    body.insert(businessIDKey, tipsBusinessID);
    QJsonObject content = body.value(contentKey).toObject();
    content.insert(originalMsgIDKey, originMsgID);
    content.insert(originalMsgSeqKey, ZIQGroupNoteJsonValue::fromUInt64(originMsgSeq));
    body.insert(contentKey, content);
    return serialized(body);
}

QByteArray ZIQGroupNoteMessageBody::tipsBody(const V2VORMessagePtr &message, const ZIQGroupNoteInfo &info)
{
    if (!message || !message->customElem())
        return {};
    const bool isFirstMessage = info.originMsgID().isEmpty() && info.originMsgSeq() == 0;
    return tipsBody(message->customElem()->data, isFirstMessage ? message->msgID() : info.originMsgID(),
        isFirstMessage ? message->seq() : info.originMsgSeq());
}

QByteArray ZIQGroupNoteMessageBody::bodyWithShowLineNum(const QByteArray &body, qint64 showLineNum)
{
    QJsonObject object = parsed(body);
    object.insert(showLineNumKey, showLineNum);
    return serialized(object);
}
