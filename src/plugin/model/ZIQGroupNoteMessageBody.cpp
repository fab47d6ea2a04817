#include "plugin/model/ZIQGroupNoteMessageBody.h"

#include "kit/common/ZIQTool.h"
#include "plugin/model/ZIQGroupNoteInfo.h"
#include "plugin/model/ZIQGroupNoteJsonValue.h"

#include <QJsonObject>

namespace {

const QString businessIDKey = QStringLiteral("businessID");
const QString contentKey = QStringLiteral("content");
const QString originalMsgIDKey = QStringLiteral("original_msg_id");
const QString originalMsgSeqKey = QStringLiteral("original_msg_seq");
const QString showLineNumKey = QStringLiteral("show_line_num");

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
    return ZIQTool::dictionary2JsonData(QJsonObject {
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
    QJsonObject body = ZIQTool::jsonData2Dictionary(noteBody);
    body.insert(businessIDKey, tipsBusinessID);
    QJsonObject content = body.value(contentKey).toObject();
    content.insert(originalMsgIDKey, originMsgID);
    content.insert(originalMsgSeqKey, ZIQGroupNoteJsonValue::fromUInt64(originMsgSeq));
    body.insert(contentKey, content);
    return ZIQTool::dictionary2JsonData(body);
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
    QJsonObject object = ZIQTool::jsonData2Dictionary(body);
    object.insert(showLineNumKey, showLineNum);
    return ZIQTool::dictionary2JsonData(object);
}
