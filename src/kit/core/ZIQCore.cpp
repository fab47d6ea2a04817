#include "kit/core/ZIQCore.h"
