#include "kit/core/ZIQNotifyProtocol.h"

#include "kit/core/ZIQCore.h"

ZIQNotifyProtocol::~ZIQNotifyProtocol()
{
    ZIQCore::unRegisterEventByObject(this);
}
