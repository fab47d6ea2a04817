// Conversions between Qt's and ICU's date and text types, shared by the picker's sources.
#pragma once

#include <QDateTime>
#include <QString>

#include <unicode/locid.h>
#include <unicode/unistr.h>
#include <unicode/utypes.h>

namespace ZIQBRIcu {

inline UDate toUDate(const QDateTime &date)
{
    return static_cast<UDate>(date.toMSecsSinceEpoch());
}

inline QDateTime fromUDate(UDate date)
{
    return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(date), Qt::UTC);
}

inline icu::UnicodeString toUnicode(const QString &text)
{
    return icu::UnicodeString(reinterpret_cast<const char16_t *>(text.utf16()), static_cast<int32_t>(text.size()));
}

inline QString fromUnicode(const icu::UnicodeString &text)
{
    return QString(reinterpret_cast<const QChar *>(text.getBuffer()), text.length());
}

/// The ICU locale of a BCP 47 language tag such as "zh-Hans" or "en".
inline icu::Locale localeForLanguage(const QString &language)
{
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale locale = icu::Locale::forLanguageTag(language.toStdString(), status);
    return U_SUCCESS(status) ? locale : icu::Locale::getRoot();
}

} // namespace ZIQBRIcu
