#include "plugin/provider/ZIQGroupNoteLog.h"

Q_LOGGING_CATEGORY(lcZIQGroupNote, "ziq.groupnote")
