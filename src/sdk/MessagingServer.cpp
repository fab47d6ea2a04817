#include "sdk/MessagingServer.h"
