#include "platform/SystemFont.h"

#include <QFontDatabase>
#include <QGuiApplication>

namespace platform {

namespace {

// Debian's fonts-inter, fonts-noto-cjk and fonts-noto-color-emoji, installed by the project's
// own install step. Inter is close in shape and metrics to a phone's system face.
const QString PrimaryFamily = QStringLiteral("Inter");
const QString CjkFamily = QStringLiteral("Noto Sans CJK SC");
const QString EmojiFamily = QStringLiteral("Noto Color Emoji");

} // namespace

QStringList SystemFont::families()
{
    return {PrimaryFamily, CjkFamily, EmojiFamily};
}

QFont SystemFont::font(int pointSize, QFont::Weight weight)
{
    QFont font;
    font.setFamilies(families());
    font.setPixelSize(qMax(1, pointSize));
    font.setWeight(weight);
    // Unhinted outlines give the same advances at every size and on every screen, so a width
    // measured once holds wherever the text is drawn.
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setStyleStrategy(QFont::PreferAntialias);
    return font;
}

void SystemFont::install()
{
    static bool installed = false;
    if (installed || !QGuiApplication::instance())
        return;
    installed = true;
    QFont::insertSubstitutions(PrimaryFamily, {CjkFamily, EmojiFamily});
    QGuiApplication::setFont(font(17));
}

bool SystemFont::isAvailable()
{
    return QFontDatabase::hasFamily(PrimaryFamily);
}

} // namespace platform
