#include "kit/common/ZIQTool.h"
