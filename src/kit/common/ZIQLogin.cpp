#include "kit/common/ZIQLogin.h"
