#include "kit/common/ZIQGlobalization.h"
