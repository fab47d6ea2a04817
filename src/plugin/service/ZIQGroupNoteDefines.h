// Names that fix the plug-in's identity in the kit: its service, its resource bundles and its
// theme module.
#pragma once

#include <QString>

/// The plug-in's service name; also the module name its bundles are looked up under.
inline const QString ZIQGroupNoteServiceName = QStringLiteral("ZIQGroupNoteService");
/// The bundle of the plug-in's images.
inline const QString ZIQGroupNoteBundleName = QStringLiteral("ZIQGroupNote");
/// The bundle of the plug-in's theme files.
inline const QString ZIQGroupNoteThemeBundleName = QStringLiteral("ZIQGroupNoteTheme");

/// The plug-in's own theme module (the kit's common module is ZIQThemeModuleCommon).
constexpr int ZIQGroupNoteThemeModule = 131072;
