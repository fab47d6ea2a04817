#include "kit/common/ZIQConfig.h"
