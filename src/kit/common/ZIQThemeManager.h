// The kit's theme registry. Every module (the kit's common module, each plug-in) brings a theme
// folder: a directory or a Qt resource prefix holding one JSON file per theme ("light.json",
// "dark.json"), each an object from theme key to a colour ("#RRGGBB" or "#AARRGGBB") or to an
// image file named relative to that folder. One theme is current for the whole process.
#pragma once

#include <QHash>
#include <QIcon>
#include <QObject>
#include <QPalette>
#include <QString>

#include <optional>

/// The kit's common module, whose theme holds the kit's own colours and images. Modules are bit
/// values; a plug-in names its own.
inline constexpr int ZIQThemeModuleCommon = 262144;

inline const QString ZIQThemeLight = QStringLiteral("light");
inline const QString ZIQThemeDark = QStringLiteral("dark");

class ZIQThemeManager : public QObject
{
    Q_OBJECT

public:
    static ZIQThemeManager *shareManager();

    /// Where `module`'s theme files live ("/path/Theme.bundle" or ":/Theme.bundle"). A later
    /// registration replaces an earlier one. The path need not exist: lookups then give defaults.
    void registerThemeResourcePath(const QString &path, int module);
    QString themeResourcePath(int module) const { return m_paths.value(module); }

    /// "light" until an application applies another theme.
    QString currentThemeID() const { return m_currentThemeID; }
    bool isDark() const { return m_currentThemeID == ZIQThemeDark; }

    /// Makes `themeID` current for every module and, with a GUI application, sets a matching
    /// application palette. Emits themeChanged() when the theme really changes.
    void applyTheme(const QString &themeID);

    /// The text `module`'s current theme gives `key`; nothing when the module, its file or the
    /// key is missing.
    std::optional<QString> themeValue(const QString &key, int module);
    /// The image `module`'s current theme names for `key`; a null icon when there is none or it
    /// cannot be read.
    QIcon themeImage(const QString &key, int module);

Q_SIGNALS:
    void themeChanged(const QString &themeID);

private:
    ZIQThemeManager() = default;

    using ThemeTable = QHash<QString, QString>;
    const ThemeTable &table(int module);
    void applyApplicationPalette();

    QString m_currentThemeID = ZIQThemeLight;
    QHash<int, QString> m_paths;
    // Tables and images of the current theme, read on first use.
    QHash<int, ThemeTable> m_tables;
    QHash<QString, QIcon> m_images;
    std::optional<QPalette> m_lightPalette;
};
