#include "kit/common/ZIQConfig.h"

ZIQConfig &ZIQConfig::defaultConfig()
{
    static ZIQConfig config;
    return config;
}
