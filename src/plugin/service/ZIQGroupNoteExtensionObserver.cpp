#include "plugin/service/ZIQGroupNoteExtensionObserver.h"

#include "kit/chat/ZIQBaseChatViewController.h"
#include "kit/chat/ZIQChatInputController.h"
#include "kit/common/ZIQGlobalization.h"
#include "kit/common/ZIQTheme.h"
#include "kit/common/ZIQThemeManager.h"
#include "kit/core/ZIQCore.h"
#include "kit/core/ZIQCoreDefines.h"
#include "platform/NavigationController.h"
#include "plugin/editor/ZIQGroupNoteViewController.h"
#include "plugin/service/ZIQGroupNoteBundle.h"

namespace {

// The host's parameters are read with a type check: a value of another type counts as absent.

bool flagParam(const QVariantMap &param, const QString &key)
{
    const QVariant value = param.value(key);
    switch (value.typeId()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::Float:
        return value.toBool();
    default:
        return false;
    }
}

QString stringParam(const QVariantMap &param, const QString &key)
{
    const QVariant value = param.value(key);
    return value.typeId() == QMetaType::QString ? value.toString() : QString();
}

template<typename T> T *objectParam(const QVariantMap &param, const QString &key)
{
    const QVariant value = param.value(key);
    if (!(value.metaType().flags() & QMetaType::PointerToQObject))
        return nullptr;
    return qobject_cast<T *>(qvariant_cast<QObject *>(value));
}

QIcon moreItemIcon()
{
    static ZIQGroupNoteBundle::PathCache commonBundleCache;
    const QString commonBundle
        = ZIQGroupNoteBundle::bundlePath(commonBundleCache, QStringLiteral("VORCommon"), QStringLiteral("VORConfig"));
    return ZIQTheme::dynamicImage(QStringLiteral("service_more_group_note_img"), ZIQThemeModuleCommon,
        ZIQTheme::imageWithContentsOfFile(commonBundle + QStringLiteral("/more_group_note")));
}

void openNewNote(const QString &groupID, const QVariantMap &param)
{
    if (auto *chat = objectParam<ZIQBaseChatViewController>(param, ZIQCore_ZIQChatExtension_InputViewMoreItem_VC)) {
        chat->inputController()->reset();
        chat->setNeedScrollToBottom(true);
    }
    auto *navigation
        = objectParam<platform::NavigationController>(param, ZIQCore_ZIQChatExtension_InputViewMoreItem_PushVC);
    if (navigation)
        navigation->pushViewController(new ZIQGroupNoteViewController(groupID, nullptr, true), true);
}

} // namespace

ZIQGroupNoteExtensionObserver *ZIQGroupNoteExtensionObserver::shareInstance()
{
    // Created once, safely from any thread; the kit core keeps a plain pointer to it.
    static ZIQGroupNoteExtensionObserver *observer = new ZIQGroupNoteExtensionObserver;
    return observer;
}

void ZIQGroupNoteExtensionObserver::load()
{
    ZIQCore::registerExtension(ZIQCore_ZIQChatExtension_InputViewMoreItem_ClassicExtensionID, shareInstance());
}

QList<ZIQExtensionInfo> ZIQGroupNoteExtensionObserver::onGetExtension(
    const QString &extensionID, const QVariantMap &param)
{
    if (extensionID == ZIQCore_ZIQChatExtension_InputViewMoreItem_ClassicExtensionID)
        return getInputViewMoreItemExtensionForClassicChat(param);
    if (extensionID == ZIQCore_ZIQChatExtension_InputViewMoreItem_MinimalistExtensionID)
        return getInputViewMoreItemExtensionForMinimalistChat(param);
    return {};
}

QList<ZIQExtensionInfo> ZIQGroupNoteExtensionObserver::getInputViewMoreItemExtensionForClassicChat(
    const QVariantMap &param) const
{
    if (flagParam(param, ZIQCore_ZIQChatExtension_InputViewMoreItem_FilterGroupNote))
        return {};
    const QString groupID = stringParam(param, ZIQCore_ZIQChatExtension_InputViewMoreItem_GroupID);
    if (groupID.isEmpty())
        return {};
    ZIQExtensionInfo item;
    item.weight = ItemWeight;
    item.text = ZIQGlobalization::getLocalizedStringForKey(QStringLiteral("ZIQKitMoreGroupNote"));
    item.icon = moreItemIcon();
    item.onClicked = [groupID](const QVariantMap &tapParam) { openNewNote(groupID, tapParam); };
    return { item };
}

QList<ZIQExtensionInfo> ZIQGroupNoteExtensionObserver::getInputViewMoreItemExtensionForMinimalistChat(
    const QVariantMap &) const
{
    return {};
}
