// Look-up of the kit's resource bundles over compiled-in resources, files beside the program and
// the module's framework folder.
#include "plugin/service/ZIQGroupNoteBundle.h"

#include "plugin/service/ZIQGroupNoteDefines.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <array>
#include <utility>

namespace ZIQGroupNoteBundle {

namespace {

// First match wins; the kit's modules by service name and the framework that carries each.
constexpr std::array<std::pair<const char *, const char *>, 9> moduleFrameworks { {
    { "ZIQCore", "ZIQCore" },
    { "ZIQChatService", "ZIQChat" },
    { "ZIQConversationService", "ZIQConversation" },
    { "ZIQContactService", "ZIQContact" },
    { "ZIQGroupService", "ZIQGroup" },
    { "ZIQSearchService", "ZIQSearch" },
    { "ZIQReactionService", "ZIQReactionPlugin" },
    { "ZIQGroupNoteService", "ZIQGroupNotePlugin" },
    { "VORConfig", "VORCommon" },
} };

QString programDir()
{
    return QCoreApplication::instance() ? QCoreApplication::applicationDirPath() : QString();
}

QString existingDir(const QString &path)
{
    return QFileInfo(path).isDir() ? path : QString();
}

} // namespace

QString frameworkOfModule(const QString &moduleName)
{
    for (const auto &[module, framework] : moduleFrameworks) {
        if (moduleName == QLatin1String(module))
            return QString::fromLatin1(framework);
    }
    return {};
}

QString bundlePath(PathCache &cache, const QString &bundleName, const QString &moduleName)
{
    const QString key = bundleName + QLatin1Char('_') + moduleName;
    QString path = cache.value(key);
    if (!path.isEmpty())
        return path;
    const QString bundleFile = bundleName + QLatin1String(".bundle");
    path = existingDir(QLatin1String(":/") + bundleFile);
    if (path.isEmpty())
        path = existingDir(programDir() + QLatin1Char('/') + bundleFile);
    if (path.isEmpty()) {
        path = programDir() + QLatin1String("/Frameworks/") + frameworkOfModule(moduleName)
            + QLatin1String(".framework/") + bundleFile;
    }
    if (!key.isEmpty() && !path.isEmpty())
        cache.insert(key, path);
    return path;
}

} // namespace ZIQGroupNoteBundle

QString getZIQGetBundlePath()
{
    static ZIQGroupNoteBundle::PathCache cache;
    return ZIQGroupNoteBundle::bundlePath(cache, ZIQGroupNoteBundleName, ZIQGroupNoteServiceName);
}
