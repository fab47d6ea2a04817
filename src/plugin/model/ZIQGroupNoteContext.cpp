#include "plugin/model/ZIQGroupNoteContext.h"

#include "kit/common/ZIQLogin.h"

ZIQGroupNoteContext ZIQGroupNoteContext::current()
{
    return { V2VORManager::sharedInstance(), ZIQLogin::getUserID(), ZIQLogin::getNickName() };
}
