#include "kit/core/ZIQExtensionProtocol.h"

#include "kit/core/ZIQCore.h"

ZIQExtensionProtocol::~ZIQExtensionProtocol()
{
    ZIQCore::unRegisterExtension(this);
}
