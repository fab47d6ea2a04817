#include "sdk/V2VORManager.h"
