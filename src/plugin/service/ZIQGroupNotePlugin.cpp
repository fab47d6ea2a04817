#include "plugin/service/ZIQGroupNotePlugin.h"

#include "plugin/service/ZIQGroupNoteExtensionObserver.h"
#include "plugin/service/ZIQGroupNoteService.h"

void ZIQGroupNotePlugin::load()
{
    ZIQGroupNoteService::load();
    ZIQGroupNoteExtensionObserver::load();
}
