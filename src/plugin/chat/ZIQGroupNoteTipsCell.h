// A tips row of the chat: the kit's one-line system row, which opens the note's editor when
// tapped.
#pragma once

#include "kit/chat/ZIQSystemMessageCell.h"

namespace platform {
class NavigationController;
}

class ZIQGroupNoteTipsCell : public ZIQSystemMessageCell
{
    Q_OBJECT

public:
    Q_INVOKABLE explicit ZIQGroupNoteTipsCell(const QString &reuseIdentifier = {}, QWidget *parent = nullptr);

    /// Pushes the editor over the note `cell`'s tips message points at. The editor gets the
    /// tips row's message ID where a group ID goes and the tips message itself, and finds the
    /// note and its group from that message.
    void clickGroupNoteTipsMessage(ZIQGroupNoteTipsCell *cell, platform::NavigationController *nav);
};
