// The "group note" item of a group chat's "more" panel: the one way a user starts a new note.
// Offered to the classic chat style only; tapping it puts the input bar away and pushes the
// editor for a new note in that group.
#pragma once

#include "kit/core/ZIQExtensionProtocol.h"

class ZIQGroupNoteExtensionObserver : public ZIQExtensionProtocol
{
public:
    /// Weight of the item among the panel's items (heavier ones come first).
    static constexpr int ItemWeight = 300;

    static ZIQGroupNoteExtensionObserver *shareInstance();
    /// Offers the item at the classic chat's "more" panel. The minimalist style is left without
    /// it on purpose.
    static void load();

    QList<ZIQExtensionInfo> onGetExtension(const QString &extensionID, const QVariantMap &param) override;

    /// The item for a chat asking with `param`; empty outside group chats and when the host
    /// filters it out.
    QList<ZIQExtensionInfo> getInputViewMoreItemExtensionForClassicChat(const QVariantMap &param) const;
    /// Always empty.
    QList<ZIQExtensionInfo> getInputViewMoreItemExtensionForMinimalistChat(const QVariantMap &param) const;

private:
    ZIQGroupNoteExtensionObserver() = default;
};
