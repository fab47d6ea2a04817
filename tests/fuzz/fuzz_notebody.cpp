// Reads arbitrary bytes as the custom data of a note message, then derives from it what the
// system writes: the tips body announcing the note, the body with a new row count, and a fresh
// note body. Whatever the bytes, reading must not fail, and every derived body must carry the
// same head as the one it came from.
#include "FuzzCheck.h"
#include "FuzzSession.h"
#include "plugin/model/ZIQGroupNoteInfo.h"
#include "plugin/model/ZIQGroupNoteMessageBody.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <array>
#include <limits>

namespace {

V2VORMessagePtr noteMessage(const QByteArray &data)
{
    auto message = std::make_shared<V2VORMessage>();
    message->setGroupID(FuzzSession::groupID());
    message->setMsgID(QStringLiteral("msg-note"));
    message->setSeq(7);
    message->setCustomElem(std::make_unique<V2VORCustomElem>(V2VORCustomElem { data, {}, {} }));
    return message;
}

ZIQGroupNoteInfoPtr read(const QByteArray &data)
{
    const ZIQGroupNoteInfoPtr info = ZIQGroupNoteInfo::initWithMessage(noteMessage(data));
    FUZZ_CHECK(info, "a message with a custom element gave no note");
    return info;
}

// The head a reader shows: everything a body carries except the origin.
QStringList head(const ZIQGroupNoteInfo &info)
{
    return { info.title(), info.desc(), info.example(), info.creatorUserID(), QString::number(info.showLineNum()) };
}

void checkNote(const ZIQGroupNoteInfo &info, const QByteArray &data)
{
    FUZZ_CHECK(info.showLineNum() <= 2, info.showLineNum());
    FUZZ_CHECK(
        info.isCreatedByMyself() == (info.creatorUserID() == FuzzSession::currentUserID()), info.creatorUserID());
    // The origin is taken only when the content names both the first message and its sequence.
    const QJsonObject content = QJsonDocument::fromJson(data).object().value(QLatin1String("content")).toObject();
    if (!content.contains(QLatin1String("original_msg_id")) || !content.contains(QLatin1String("original_msg_seq")))
        FUZZ_CHECK(info.originMsgID().isEmpty() && info.originMsgSeq() == 0, info.originMsgID() << info.originMsgSeq());
}

void checkTips(const QByteArray &data, const QStringList &noteHead, quint64 seq)
{
    const QByteArray tips = ZIQGroupNoteMessageBody::tipsBody(data, QStringLiteral("msg-first"), seq);
    FUZZ_CHECK(QJsonDocument::fromJson(tips).object().value(QLatin1String("businessID")).toString()
            == ZIQGroupNoteMessageBody::tipsBusinessID,
        tips);
    const ZIQGroupNoteInfoPtr info = read(tips);
    FUZZ_CHECK(head(*info) == noteHead, head(*info) << noteHead);
    FUZZ_CHECK(info->originMsgID() == QLatin1String("msg-first"), info->originMsgID());
    // A sequence is written exactly as long as JSON holds it as an integer.
    if (seq <= quint64(std::numeric_limits<qint64>::max()))
        FUZZ_CHECK(info->originMsgSeq() == seq, info->originMsgSeq() << seq);
}

void checkRewrites(const QByteArray &data, const ZIQGroupNoteInfo &note)
{
    for (const qint64 rows : { qint64(0), qint64(1), qint64(5), qint64(-3) }) {
        const ZIQGroupNoteInfoPtr info = read(ZIQGroupNoteMessageBody::bodyWithShowLineNum(data, rows));
        QStringList expected = head(note);
        expected.last() = QString::number(std::min<qint64>(rows, 2));
        FUZZ_CHECK(head(*info) == expected, head(*info) << expected);
    }
    const ZIQGroupNoteInfoPtr fresh = read(ZIQGroupNoteMessageBody::noteBody(note, note.showLineNum()));
    FUZZ_CHECK(head(*fresh) == head(note), head(*fresh) << head(note));
    FUZZ_CHECK(fresh->originMsgID().isEmpty() && fresh->originMsgSeq() == 0, fresh->originMsgID());
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    FuzzSession::startGroup(argc, argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    const QByteArray data(reinterpret_cast<const char *>(bytes), qsizetype(size));
    const ZIQGroupNoteInfoPtr note = read(data);
    checkNote(*note, data);

    static constexpr std::array<quint64, 5> sequences { 1, 4096, (quint64(1) << 53) + 1,
        quint64(std::numeric_limits<qint64>::max()), std::numeric_limits<quint64>::max() };
    checkTips(data, head(*note), sequences[qHash(data) % sequences.size()]);
    checkRewrites(data, *note);
    return 0;
}
