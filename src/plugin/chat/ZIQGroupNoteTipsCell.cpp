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
        const QVariant cellValue = param.value(ZIQCore_ZIQPluginNotify_PluginCustomCellClick_Cell);
        const QVariant navValue = param.value(ZIQCore_ZIQPluginNotify_PluginCustomCellClick_PushVC);
        auto *cell = qobject_cast<ZIQGroupNoteTipsCell *>(cellValue.value<QObject *>());
        auto *nav = qobject_cast<platform::NavigationController *>(navValue.value<QObject *>());
        if (weakSelf && cell == weakSelf && nav)
            weakSelf->clickGroupNoteTipsMessage(cell, nav);
    };
}

void ZIQGroupNoteTipsCell::clickGroupNoteTipsMessage(ZIQGroupNoteTipsCell *cell, platform::NavigationController *nav)
{
    const ZIQMessageCellDataPtr data = cell ? cell->messageData() : nullptr;
    if (!data || !nav)
        return;
    nav->pushViewController(new ZIQGroupNoteViewController(data->msgID(), data->innerMessage(), false), true);
}
