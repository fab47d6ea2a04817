#include "kit/chat/ZIQChatClassRegistry.h"

#include "kit/chat/ZIQTextMessageCellData.h"
#include "kit/chat/ZIQUnsupportedMessageCellData.h"
#include "kit/common/ZIQTool.h"

#include <QLoggingCategory>

namespace {

Q_LOGGING_CATEGORY(lcChat, "ziq.kit.chat")

const QString kBusinessID = QStringLiteral("businessID");

} // namespace

ZIQChatClassRegistry::ZIQChatClassRegistry()
{
    registerCellDataClass<ZIQTextMessageCellData>();
    registerCellDataClass<ZIQUnsupportedMessageCellData>();
}

ZIQChatClassRegistry &ZIQChatClassRegistry::instance()
{
    // Never destroyed: plug-ins register at load and may look classes up until exit.
    static ZIQChatClassRegistry *registry = new ZIQChatClassRegistry;
    return *registry;
}

void ZIQChatClassRegistry::registerCellDataClass(const QString &name, const CellDataClass &operations)
{
    if (!name.isEmpty() && operations.getCellData)
        m_cellDataClasses.insert(name, operations);
}

void ZIQChatClassRegistry::registerCellClass(const QString &name, const CellClass &operations)
{
    if (!name.isEmpty() && operations.getContentSize)
        m_cellClasses.insert(name, operations);
}

void ZIQChatClassRegistry::unregisterClass(const QString &name)
{
    m_cellDataClasses.remove(name);
    m_cellClasses.remove(name);
}

const ZIQChatClassRegistry::CellDataClass *ZIQChatClassRegistry::cellDataClass(const QString &name) const
{
    auto found = m_cellDataClasses.constFind(name);
    return found == m_cellDataClasses.constEnd() ? nullptr : &*found;
}

const ZIQChatClassRegistry::CellClass *ZIQChatClassRegistry::cellClass(const QString &name) const
{
    auto found = m_cellClasses.constFind(name);
    return found == m_cellClasses.constEnd() ? nullptr : &*found;
}

void ZIQChatClassRegistry::appendCustomMessage(
    const QString &businessID, const QString &cellClassName, const QString &cellDataClassName)
{
    if (!businessID.isEmpty())
        m_customMessages.insert(businessID, { cellClassName, cellDataClassName });
}

std::optional<ZIQChatClassRegistry::CustomMessage> ZIQChatClassRegistry::customMessage(const QString &businessID) const
{
    auto found = m_customMessages.constFind(businessID);
    return found == m_customMessages.constEnd() ? std::nullopt : std::optional(*found);
}

void ZIQChatClassRegistry::removeCustomMessage(const QString &businessID)
{
    m_customMessages.remove(businessID);
}

QString ZIQChatClassRegistry::businessIDOf(const V2VORMessage &message)
{
    if (message.elemType() != V2VOR_ELEM_TYPE_CUSTOM || !message.customElem())
        return {};
    return ZIQTool::jsonData2Dictionary(message.customElem()->data).value(kBusinessID).toString();
}

std::pair<const ZIQChatClassRegistry::CellDataClass *, QString> ZIQChatClassRegistry::classesFor(
    const V2VORMessage &message) const
{
    static const QString textData = QString::fromLatin1(ZIQTextMessageCellData::staticMetaObject.className());
    if (message.elemType() == V2VOR_ELEM_TYPE_TEXT)
        return { cellDataClass(textData), textCellName };
    const QString businessID = businessIDOf(message);
    const std::optional<CustomMessage> kind = customMessage(businessID);
    const CellDataClass *dataClass = kind ? cellDataClass(kind->cellDataClassName) : nullptr;
    if (!dataClass) {
        if (message.elemType() == V2VOR_ELEM_TYPE_CUSTOM)
            qCDebug(lcChat) << "no cell data class for businessID" << businessID << "of" << message.msgID();
        return { nullptr, unsupportedCellName };
    }
    return { dataClass, kind->cellClassName };
}

ZIQMessageCellDataPtr ZIQChatClassRegistry::cellDataForMessage(const V2VORMessagePtr &message) const
{
    if (!message)
        return nullptr;
    auto [dataClass, cellName] = classesFor(*message);
    ZIQMessageCellDataPtr data = dataClass ? dataClass->getCellData(message) : nullptr;
    if (!data) {
        data = ZIQUnsupportedMessageCellData::getCellData(message);
        cellName = unsupportedCellName;
    }
    // Plug-ins need not fill what the chat itself relies on.
    if (!data->innerMessage())
        data->setInnerMessage(message);
    if (data->msgID().isEmpty())
        data->setMsgID(message->msgID());
    data->setCellClassName(cellName);
    return data;
}

QString ZIQChatClassRegistry::displayStringForMessage(const V2VORMessagePtr &message) const
{
    if (!message)
        return {};
    const CellDataClass *dataClass = classesFor(*message).first;
    if (dataClass && dataClass->getDisplayString)
        return dataClass->getDisplayString(message);
    return ZIQUnsupportedMessageCellData::getDisplayString(message);
}

bool ZIQChatClassRegistry::canForwardMessage(const V2VORMessagePtr &message) const
{
    const CellDataClass *dataClass = message ? classesFor(*message).first : nullptr;
    return dataClass && (!dataClass->canForward || dataClass->canForward());
}

QSizeF ZIQChatClassRegistry::contentSizeOf(const ZIQMessageCellDataPtr &cellData) const
{
    const CellClass *operations = cellData ? cellClass(cellData->cellClassName()) : nullptr;
    return operations ? operations->getContentSize(cellData) : QSizeF();
}
