// Where a module's resource bundle lives. The kit ships a bundle in one of three places, asked
// in this order:
//   1. the program itself: Qt resources compiled in, at ":/<bundle>.bundle";
//   2. files beside the program: "<program dir>/<bundle>.bundle", which a deployment may add
//      or use to override the compiled-in resources;
//   3. the framework folder of the module: "<program dir>/Frameworks/<framework>.framework/
//      <bundle>.bundle", returned even when nothing is there, so a look-up always yields a path.
// Each caller keeps its own cache of what it found, keyed by bundle and module.
#pragma once

#include <QHash>
#include <QString>

namespace ZIQGroupNoteBundle {

using PathCache = QHash<QString, QString>;

/// The framework that carries `moduleName`; empty for a module the kit does not know.
QString frameworkOfModule(const QString &moduleName);

/// The path of bundle `bundleName` of module `moduleName`, from `cache` when it holds one.
QString bundlePath(PathCache &cache, const QString &bundleName, const QString &moduleName);

} // namespace ZIQGroupNoteBundle

/// The path of the plug-in's image bundle ("ZIQGroupNote").
QString getZIQGetBundlePath();
