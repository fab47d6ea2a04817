#include "kit/common/ZIQConfig.h"

#include "kit/common/ZIQTheme.h"

ZIQConfig &ZIQConfig::defaultConfig()
{
    static ZIQConfig config;
    return config;
}

QIcon ZIQConfig::defaultAvatarImage() const
{
    return ZIQTheme::imageWithContentsOfFile(QStringLiteral(":/VORCommon.bundle/default_avatar"));
}
