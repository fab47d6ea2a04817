#include "sdk/V2VORAdvancedMsgListener.h"
