#include "plugin/model/ZIQGroupNoteJsonValue.h"

#include <cmath>
#include <limits>

namespace {

qint64 truncated(double value)
{
    if (std::isnan(value))
        return 0;
    if (value >= 9223372036854775807.0)
        return std::numeric_limits<qint64>::max();
    if (value <= -9223372036854775808.0)
        return std::numeric_limits<qint64>::min();
    return static_cast<qint64>(value);
}

} // namespace

qint64 ZIQGroupNoteJsonValue::toInt64(const QJsonValue &value)
{
    switch (value.type()) {
    case QJsonValue::Double: {
        const qint64 integer = value.toInteger(std::numeric_limits<qint64>::min());
        return integer != std::numeric_limits<qint64>::min() ? integer : truncated(value.toDouble());
    }
    case QJsonValue::String:
        return leadingInteger(value.toString());
    case QJsonValue::Bool:
        return value.toBool() ? 1 : 0;
    default:
        return 0;
    }
}

quint64 ZIQGroupNoteJsonValue::toUInt64(const QJsonValue &value)
{
    const qint64 integer = toInt64(value);
    return integer > 0 ? static_cast<quint64>(integer) : 0;
}

bool ZIQGroupNoteJsonValue::toBool(const QJsonValue &value)
{
    if (value.isBool())
        return value.toBool();
    if (value.isDouble())
        return value.toDouble() != 0;
    return false;
}

qint64 ZIQGroupNoteJsonValue::leadingInteger(QStringView text)
{
    // Keys are short and read by the thousand; a copy for strtoll would cost more than the read.
    text = text.trimmed();
    const bool negative = text.startsWith(u'-');
    if (negative || text.startsWith(u'+'))
        text = text.mid(1);
    quint64 magnitude = 0;
    const quint64 limit = negative ? quint64(1) << 63 : (quint64(1) << 63) - 1;
    for (const QChar c : text) {
        if (c < u'0' || c > u'9')
            break;
        const unsigned digit = c.unicode() - u'0';
        if (magnitude > (limit - digit) / 10)
            return negative ? std::numeric_limits<qint64>::min() : std::numeric_limits<qint64>::max();
        magnitude = magnitude * 10 + digit;
    }
    return negative ? static_cast<qint64>(0 - magnitude) : static_cast<qint64>(magnitude);
}

QJsonValue ZIQGroupNoteJsonValue::fromUInt64(quint64 value)
{
    if (value <= static_cast<quint64>(std::numeric_limits<qint64>::max()))
        return QJsonValue(static_cast<qint64>(value));
    return QJsonValue(static_cast<double>(value));
}
