#include "kit/common/ZIQThemeManager.h"

#include "kit/common/ZIQTheme.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLoggingCategory>

namespace {

Q_LOGGING_CATEGORY(lcTheme, "ziq.kit.theme")

// The kit's own theme folder, compiled into the kit.
const QString CommonThemePath = QStringLiteral(":/VORCommonTheme.bundle");

// A phone's dark appearance: black screens, raised surfaces in dark greys, light text.
QPalette darkPalette()
{
    const QColor background(0x00, 0x00, 0x00);
    const QColor surface(0x1C, 0x1C, 0x1E);
    const QColor raised(0x2C, 0x2C, 0x2E);
    const QColor text(0xFF, 0xFF, 0xFF);
    const QColor secondaryText(0x8E, 0x8E, 0x93);
    QPalette palette(text, surface, raised.lighter(130), background, raised, text, surface);
    palette.setColor(QPalette::Window, background);
    palette.setColor(QPalette::AlternateBase, raised);
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::Button, raised);
    palette.setColor(QPalette::PlaceholderText, secondaryText);
    palette.setColor(QPalette::Highlight, QColor(0x0A, 0x84, 0xFF));
    palette.setColor(QPalette::HighlightedText, text);
    palette.setColor(QPalette::Link, QColor(0x0A, 0x84, 0xFF));
    palette.setColor(QPalette::ToolTipBase, raised);
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::Disabled, QPalette::Text, secondaryText);
    palette.setColor(QPalette::Disabled, QPalette::WindowText, secondaryText);
    palette.setColor(QPalette::Disabled, QPalette::ButtonText, secondaryText);
    return palette;
}

} // namespace

ZIQThemeManager *ZIQThemeManager::shareManager()
{
    // Never destroyed: widgets may still ask for colours while the process shuts down.
    static ZIQThemeManager *manager = [] {
        auto *created = new ZIQThemeManager;
        created->registerThemeResourcePath(CommonThemePath, ZIQThemeModuleCommon);
        created->applyApplicationPalette();
        return created;
    }();
    return manager;
}

void ZIQThemeManager::registerThemeResourcePath(const QString &path, int module)
{
    qCDebug(lcTheme) << "theme of module" << module << "at" << path;
    m_paths.insert(module, path);
    m_tables.remove(module);
    m_images.clear();
}

void ZIQThemeManager::applyTheme(const QString &themeID)
{
    if (themeID.isEmpty() || themeID == m_currentThemeID)
        return;
    qCInfo(lcTheme) << "theme" << m_currentThemeID << "->" << themeID;
    m_currentThemeID = themeID;
    m_tables.clear();
    m_images.clear();
    applyApplicationPalette();
    Q_EMIT themeChanged(themeID);
}

std::optional<QString> ZIQThemeManager::themeValue(const QString &key, int module)
{
    const ThemeTable &values = table(module);
    const auto found = values.constFind(key);
    if (found == values.constEnd())
        return std::nullopt;
    return *found;
}

QIcon ZIQThemeManager::themeImage(const QString &key, int module)
{
    const std::optional<QString> name = themeValue(key, module);
    if (!name || name->isEmpty())
        return {};
    const QString path = QDir(m_paths.value(module)).filePath(*name);
    auto cached = m_images.constFind(path);
    if (cached == m_images.constEnd()) {
        cached = m_images.insert(path, ZIQTheme::imageWithContentsOfFile(path));
        if (cached->isNull())
            qCWarning(lcTheme) << "image" << key << "of module" << module << "unreadable:" << path;
    }
    return *cached;
}

const ZIQThemeManager::ThemeTable &ZIQThemeManager::table(int module)
{
    auto found = m_tables.constFind(module);
    if (found != m_tables.constEnd())
        return *found;

    ThemeTable values;
    const auto path = m_paths.constFind(module);
    if (path != m_paths.constEnd()) {
        QFile file(QDir(*path).filePath(m_currentThemeID + QStringLiteral(".json")));
        QJsonParseError error {};
        const QJsonDocument document
            = file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll(), &error) : QJsonDocument();
        if (error.error != QJsonParseError::NoError || (file.isOpen() && !document.isObject()))
            qCWarning(lcTheme) << "theme file" << file.fileName() << "is not a JSON object:" << error.errorString();
        const QJsonObject object = document.object();
        for (auto it = object.begin(); it != object.end(); ++it) {
            if (it.value().isString())
                values.insert(it.key(), it.value().toString());
            else
                qCWarning(lcTheme) << "ignoring non-text entry" << it.key() << "of" << file.fileName();
        }
    }
    return *m_tables.insert(module, values);
}

void ZIQThemeManager::applyApplicationPalette()
{
    if (!qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
        return;
    if (!m_lightPalette) {
        // Links and selections in the phone's blue, as the dark palette has them.
        m_lightPalette = QGuiApplication::palette();
        m_lightPalette->setColor(QPalette::Link, QColor(0x00, 0x7A, 0xFF));
        m_lightPalette->setColor(QPalette::Highlight, QColor(0x00, 0x7A, 0xFF));
    }
    QGuiApplication::setPalette(isDark() ? darkPalette() : *m_lightPalette);
}
