#include "kit/core/OfflinePushExtInfo.h"
