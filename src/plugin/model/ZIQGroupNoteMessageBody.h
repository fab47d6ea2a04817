// The JSON bodies of the two custom messages: the note message ("group_note"), which carries a
// note's head, and the tips message ("group_note_tips"), a copy of the note message's body that
// points back at the note's first message. Writers are pretty-printed; readers take any spacing.
#pragma once

#include "sdk/V2VORMessage.h"

#include <QByteArray>
#include <QString>

class ZIQGroupNoteInfo;

class ZIQGroupNoteMessageBody
{
public:
    static inline const QString noteBusinessID = QStringLiteral("group_note");
    static inline const QString tipsBusinessID = QStringLiteral("group_note_tips");

    /// The body of a new note message: title, description, creator and format from `info`
    /// (absent texts as ""), "show_line_num" as given, and no origin ("" and 0).
    static QByteArray noteBody(const ZIQGroupNoteInfo &info, qint64 showLineNum);

    /// `noteBody` with "businessID" set to "group_note_tips" and the content's origin set to the
    /// given first message; every other member passes through. A body that is not a JSON object
    /// is taken as an empty one, and a "content" that is not an object is replaced.
    static QByteArray tipsBody(const QByteArray &noteBody, const QString &originMsgID, quint64 originMsgSeq);
    /// The tips body for the note message `message` whose parsed note is `info`: the origin is
    /// `message` itself when `info` names no origin (ID empty and sequence 0), otherwise the
    /// origin `info` names. Empty when `message` has no custom element.
    static QByteArray tipsBody(const V2VORMessagePtr &message, const ZIQGroupNoteInfo &info);

    /// `body` with "show_line_num" replaced, every other member left as it was.
    static QByteArray bodyWithShowLineNum(const QByteArray &body, qint64 showLineNum);
};
