// Message kinds of the chat by name. A plug-in registers its cell-data class and its cell
// class once (by their meta-object class names) and ties them to the "businessID" its custom
// message bodies carry; the chat then builds, describes and measures those rows through the
// class operations registered here without knowing their types. Anything it cannot resolve is
// shown as the kit's "unsupported message" row.
//
// A cell-data class offers
//     static std::shared_ptr<T> getCellData(const V2VORMessagePtr &message);   // null: cannot
//     static QString getDisplayString(const V2VORMessagePtr &message);          // optional
//     static bool canForward();                                                 // optional, true
// and a cell class offers
//     static QSizeF getContentSize(ZIQMessageCellData *cellData);  // or a ZIQMessageCellDataPtr
// Both must carry Q_OBJECT, so that their class names are their own.
#pragma once

#include "kit/chat/ZIQMessageCellData.h"

#include <QHash>
#include <QSizeF>
#include <functional>
#include <optional>
#include <type_traits>

class ZIQChatClassRegistry
{
public:
    struct CellDataClass
    {
        std::function<ZIQMessageCellDataPtr(const V2VORMessagePtr &)> getCellData;
        std::function<QString(const V2VORMessagePtr &)> getDisplayString;
        std::function<bool()> canForward;
    };
    struct CellClass
    {
        const QMetaObject *metaObject = nullptr;
        std::function<QSizeF(const ZIQMessageCellDataPtr &)> getContentSize;
    };
    /// A custom message kind: the cell and cell-data class names for a "businessID".
    struct CustomMessage
    {
        QString cellClassName;
        QString cellDataClassName;
    };

    // Class names of the kit's own rows; their cells are registered by the chat's screens.
    static inline const QString textCellName = QStringLiteral("ZIQTextMessageCell");
    static inline const QString systemCellName = QStringLiteral("ZIQSystemMessageCell");
    static inline const QString unsupportedCellName = QStringLiteral("ZIQUnsupportedMessageCell");

    static ZIQChatClassRegistry &instance();

    template<typename T> void registerCellDataClass();
    template<typename T> void registerCellClass();
    void registerCellDataClass(const QString &name, const CellDataClass &operations);
    void registerCellClass(const QString &name, const CellClass &operations);
    void unregisterClass(const QString &name);
    /// The operations registered under a class name; null for an unknown name.
    const CellDataClass *cellDataClass(const QString &name) const;
    const CellClass *cellClass(const QString &name) const;

    /// Ties a "businessID" to its classes; a later registration of the same ID replaces it.
    void appendCustomMessage(const QString &businessID, const QString &cellClassName, const QString &cellDataClassName);
    std::optional<CustomMessage> customMessage(const QString &businessID) const;
    void removeCustomMessage(const QString &businessID);

    /// The "businessID" of a custom message's JSON body; empty for any other message.
    static QString businessIDOf(const V2VORMessage &message);

    /// The row for a message, with its cell class name set; never null for a message.
    ZIQMessageCellDataPtr cellDataForMessage(const V2VORMessagePtr &message) const;
    /// What a conversation's last-message line says about the message.
    QString displayStringForMessage(const V2VORMessagePtr &message) const;
    bool canForwardMessage(const V2VORMessagePtr &message) const;
    /// The content size the row's cell class measures; invalid while no cell class of that
    /// name is registered.
    QSizeF contentSizeOf(const ZIQMessageCellDataPtr &cellData) const;

private:
    ZIQChatClassRegistry();
    /// The cell-data class and cell class name for a message.
    std::pair<const CellDataClass *, QString> classesFor(const V2VORMessage &message) const;

    QHash<QString, CellDataClass> m_cellDataClasses;
    QHash<QString, CellClass> m_cellClasses;
    QHash<QString, CustomMessage> m_customMessages;
};

template<typename T> void ZIQChatClassRegistry::registerCellDataClass()
{
    static_assert(std::is_base_of_v<ZIQMessageCellData, T> && QtPrivate::HasQ_OBJECT_Macro<T>::Value,
        "a cell-data class derives from ZIQMessageCellData and carries Q_OBJECT");
    CellDataClass operations;
    operations.getCellData
        = [](const V2VORMessagePtr &message) -> ZIQMessageCellDataPtr { return T::getCellData(message); };
    if constexpr (requires(const V2VORMessagePtr &m) { T::getDisplayString(m); })
        operations.getDisplayString = [](const V2VORMessagePtr &message) { return T::getDisplayString(message); };
    if constexpr (requires { T::canForward(); })
        operations.canForward = [] { return T::canForward(); };
    registerCellDataClass(QString::fromLatin1(T::staticMetaObject.className()), operations);
}

template<typename T> void ZIQChatClassRegistry::registerCellClass()
{
    static_assert(QtPrivate::HasQ_OBJECT_Macro<T>::Value, "a cell class carries Q_OBJECT");
    CellClass operations;
    operations.metaObject = &T::staticMetaObject;
    operations.getContentSize = [](const ZIQMessageCellDataPtr &data) -> QSizeF {
        if constexpr (requires(ZIQMessageCellData * d) { T::getContentSize(d); })
            return T::getContentSize(data.get());
        else
            return T::getContentSize(data);
    };
    registerCellClass(QString::fromLatin1(T::staticMetaObject.className()), operations);
}
