#include "kit/common/ZIQTheme.h"

#include "kit/common/ZIQThemeManager.h"

#include <QEvent>
#include <QFileInfo>
#include <QImageReader>
#include <QLoggingCategory>
#include <QPixmap>
#include <QRegularExpression>

namespace {

Q_LOGGING_CATEGORY(lcTheme, "ziq.kit.theme")

QColor dynamicSystemColor(const QColor &light, const QColor &dark)
{
    return ZIQThemeManager::shareManager()->isDark() ? dark : light;
}

// "name.png", "name@2x.png" and "name@3x.png", each drawn at its own device pixel ratio.
QIcon scaledPngImage(const QString &basePath)
{
    QIcon icon;
    for (int scale = 1; scale <= 3; ++scale) {
        const QString suffix = scale == 1 ? QStringLiteral(".png") : QStringLiteral("@%1x.png").arg(scale);
        QImageReader reader(basePath + suffix);
        QImage image = reader.read();
        if (image.isNull())
            continue;
        image.setDevicePixelRatio(scale);
        icon.addPixmap(QPixmap::fromImage(std::move(image)));
    }
    return icon;
}

// Runs a bound apply function; lives as a child of the bound object.
class ThemeBinding : public QObject
{
public:
    ThemeBinding(QObject *context, std::function<void()> apply, ZIQTheme::Rebind rebind)
        : QObject(context)
        , m_apply(std::move(apply))
    {
        connect(ZIQThemeManager::shareManager(), &ZIQThemeManager::themeChanged, this, [this] { run(); });
        if (rebind == ZIQTheme::Rebind::OnThemeAndPaletteChange && context->isWidgetType())
            context->installEventFilter(this);
        run();
    }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (watched == parent() && event->type() == QEvent::PaletteChange)
            run();
        return false;
    }

private:
    // An apply function that sets the palette itself must not run itself again.
    void run()
    {
        if (m_running)
            return;
        m_running = true;
        m_apply();
        m_running = false;
    }

    std::function<void()> m_apply;
    bool m_running = false;
};

} // namespace

QColor ZIQTheme::colorWithHex(const QString &hex)
{
    static const QRegularExpression format(QStringLiteral("^#?([0-9A-Fa-f]{3}|[0-9A-Fa-f]{6}|[0-9A-Fa-f]{8})$"));
    const QRegularExpressionMatch match = format.match(hex.trimmed());
    if (!match.hasMatch())
        return {};
    return QColor(QLatin1Char('#') + match.captured(1));
}

QColor ZIQTheme::dynamicColor(const QString &key, int module, const QString &defaultColor)
{
    if (const std::optional<QString> themed = ZIQThemeManager::shareManager()->themeValue(key, module)) {
        const QColor color = colorWithHex(*themed);
        if (color.isValid())
            return color;
        qCWarning(lcTheme) << "theme colour" << key << "of module" << module << "unreadable:" << *themed;
    }
    const QColor color = colorWithHex(defaultColor);
    if (color.isValid())
        return color;
    qCWarning(lcTheme) << "default colour" << defaultColor << "of" << key << "unreadable, using transparent";
    return QColor(Qt::transparent);
}

QIcon ZIQTheme::dynamicImage(const QString &key, int module, const QIcon &defaultImage)
{
    const QIcon themed = ZIQThemeManager::shareManager()->themeImage(key, module);
    return themed.isNull() ? defaultImage : themed;
}

QIcon ZIQTheme::imageWithContentsOfFile(const QString &path)
{
    const QFileInfo file(path);
    const QString suffix = file.suffix().toLower();
    if (suffix == QLatin1String("png"))
        return scaledPngImage(path.chopped(suffix.size() + 1));
    // Qt's SVG icon engine draws an SVG sharp at every size; an unreadable file gives a null icon.
    if (file.isFile())
        return QIcon(path);
    if (QFileInfo::exists(path + QStringLiteral(".svg")))
        return QIcon(path + QStringLiteral(".svg"));
    return scaledPngImage(path);
}

void ZIQTheme::bind(QObject *context, std::function<void()> apply, Rebind rebind)
{
    if (!context || !apply)
        return;
    new ThemeBinding(context, std::move(apply), rebind);
}

QColor ZIQTheme::d_systemGrayColor()
{
    // A phone's system grey reads on light and on dark backgrounds alike.
    return QColor(0x8E, 0x8E, 0x93);
}

QColor ZIQTheme::d_systemBlueColor()
{
    return dynamicSystemColor(QColor(0x00, 0x7A, 0xFF), QColor(0x0A, 0x84, 0xFF));
}
