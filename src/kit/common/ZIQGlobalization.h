// Localized texts by key, from the kit's string tables ("VORCommonLocalizable"), in English,
// Simplified Chinese or Traditional Chinese. Texts that take values use Qt's numbered
// placeholders ("%1", "%2") in the order the caller passes them to QString::arg().
#pragma once

#include <QString>

inline const QString VORCommonLocalizable = QStringLiteral("VORCommonLocalizable");

class ZIQGlobalization
{
public:
    /// The text of `key` in the current language; English when the language lacks it; the
    /// key itself when no table has it.
    static QString getLocalizedStringForKey(const QString &key, const QString &bundle = VORCommonLocalizable);
    /// "en", "zh-Hans" or "zh-Hant": the language set, else the system's first preferred UI
    /// language (Chinese in its script, anything else English).
    static QString getPreferredLanguage();
    /// Accepts a language or locale name ("zh-Hant", "zh_TW", "fr"); an empty one follows the
    /// system again.
    static void setPreferredLanguage(const QString &language);
    /// The language of the string tables in use; the same as getPreferredLanguage().
    static QString tk_localizableLanguageKey();
};
