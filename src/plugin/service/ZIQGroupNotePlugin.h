// The plug-in's single start-up call. Where the chat kit runs as loadable frameworks, each
// class's load hook runs as the framework loads; a statically linked C++ program has no such
// hook, so the program calls load() once at start-up, after the kit's chat service is
// registered and before any chat opens.
#pragma once

class ZIQGroupNotePlugin
{
public:
    /// Starts the plug-in service, then offers the "more" panel item.
    static void load();
};
