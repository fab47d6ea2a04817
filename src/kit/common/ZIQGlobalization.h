// Localized texts by key, from the kit's string tables ("VORCommonLocalizable"), in English,
// Simplified Chinese or Traditional Chinese.
#pragma once

#include <QString>

inline const QString VORCommonLocalizable = QStringLiteral("VORCommonLocalizable");

class ZIQGlobalization
{
public:
    /// The text of `key` in the current language; English when the language lacks it; the
    /// key itself when no table has it.
    static QString getLocalizedStringForKey(const QString &key, const QString &bundle = VORCommonLocalizable);
    /// "en", "zh-Hans" or "zh-Hant".
    static QString getPreferredLanguage();
    static void setPreferredLanguage(const QString &language);
};
