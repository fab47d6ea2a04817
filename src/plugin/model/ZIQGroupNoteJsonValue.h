// Lenient number and flag reads from JSON values, the way the note's readers take them: numbers
// are truncated, numeric strings read by their leading digits, anything else reads as 0 / false.
#pragma once

#include <QJsonValue>
#include <QStringView>

class ZIQGroupNoteJsonValue
{
public:
    static qint64 toInt64(const QJsonValue &value);
    /// As toInt64(), with negative values read as 0.
    static quint64 toUInt64(const QJsonValue &value);
    /// true, or a non-zero number.
    static bool toBool(const QJsonValue &value);
    /// The leading integer of `text` as C's strtoll reads it (spaces and a sign allowed,
    /// clamped on overflow); 0 when it does not start with one.
    static qint64 leadingInteger(QStringView text);
    /// A JSON number for a sequence: exact up to 2^63 - 1, the nearest double beyond (JSON values
    /// hold no larger integer).
    static QJsonValue fromUInt64(quint64 value);
};
