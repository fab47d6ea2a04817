#include "plugin/chat/ZIQGroupNoteTipsCell.h"

#include "kit/core/ZIQCoreDefines.h"
#include "platform/NavigationController.h"
#include "plugin/editor/ZIQGroupNoteViewController.h"

#include <QPointer>

ZIQGroupNoteTipsCell::ZIQGroupNoteTipsCell(const QString &reuseIdentifier, QWidget *parent)
    : ZIQSystemMessageCell(reuseIdentifier, parent)
{
    // The chat hands every plug-in row's tap to every such row; only this row's own tap counts.
    pluginMsgSelectCallback = [weakSelf = QPointer<ZIQGroupNoteTipsCell>(this)](const QVariantMap &param) {
        // Compared before it is looked into: the tapped row may be any row, even a gone one.
        const QObject *tapped = param.value(ZIQCore_ZIQPluginNotify_PluginCustomCellClick_Cell).value<QObject *>();
        if (!weakSelf || tapped != weakSelf.data())
            return;
        const QVariant navValue = param.value(ZIQCore_ZIQPluginNotify_PluginCustomCellClick_PushVC);
        if (auto *nav = qobject_cast<platform::NavigationController *>(navValue.value<QObject *>()))
            weakSelf->clickGroupNoteTipsMessage(weakSelf, nav);
    };
}

void ZIQGroupNoteTipsCell::clickGroupNoteTipsMessage(ZIQGroupNoteTipsCell *cell, platform::NavigationController *nav)
{
    const ZIQMessageCellDataPtr data = cell ? cell->messageData() : nullptr;
    if (!data || !nav)
        return;
    nav->pushViewController(new ZIQGroupNoteViewController(data->msgID(), data->innerMessage(), false), true);
}
