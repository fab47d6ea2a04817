#include "kit/core/ZIQServiceProtocol.h"

#include "kit/core/ZIQCore.h"

ZIQServiceProtocol::~ZIQServiceProtocol()
{
    ZIQCore::unRegisterServiceByObject(this);
}
