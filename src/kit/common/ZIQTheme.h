// Colours and images by theme key, as every screen of the kit and its plug-ins draws with them:
// the current theme of the key's module answers, else the caller's default. Widgets re-apply
// their colours on a theme change through bind().
#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

#include <functional>

class QObject;

class ZIQTheme
{
public:
    /// Whether bind() also re-applies when the bound widget's palette changes.
    enum class Rebind { OnThemeChange, OnThemeAndPaletteChange };

    /// The colour the current theme of `module` gives `key`, else `defaultColor`. Colours are
    /// hexadecimal "RGB", "RRGGBB" or "AARRGGBB", with or without a leading "#". A default that
    /// is not such a colour gives transparent (and a warning), so a typo never crashes a screen.
    static QColor dynamicColor(const QString &key, int module, const QString &defaultColor);

    /// The image the current theme of `module` names for `key`, else `defaultImage`; also the
    /// default when the theme's file cannot be read.
    static QIcon dynamicImage(const QString &key, int module, const QIcon &defaultImage);

    /// The image in the file at `path`. A path without a suffix is looked up as a resource
    /// bundle names its images: "name.svg", else "name.png". A PNG comes with the "@2x" and
    /// "@3x" variants beside it, for sharper screens. A null icon when nothing readable is there.
    static QIcon imageWithContentsOfFile(const QString &path);

    /// The colour written in `hex` (see dynamicColor()); an invalid colour when it is none.
    static QColor colorWithHex(const QString &hex);

    /// Runs `apply` now and again after every theme change, until `context` is destroyed. With
    /// OnThemeAndPaletteChange and a widget as context, also after each change of its palette.
    static void bind(QObject *context, std::function<void()> apply, Rebind rebind = Rebind::OnThemeChange);

    /// The kit's system colours, with their light and dark appearance.
    static QColor d_systemGrayColor();
    static QColor d_systemBlueColor();
};
