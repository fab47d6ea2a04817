// The extensions of one message as the service keeps them: a map from key to value that
// remembers the order in which keys were first written and a version per key, so that a
// write made from an outdated view of a key can be told apart from a fresh one.
#pragma once

#include "sdk/V2VORMessageExtension.h"
#include "sdk/V2VORMessageExtensionResult.h"

#include <QHash>
#include <QStringList>

class ExtensionStore
{
public:
    /// The live extensions, in the order their keys were first written.
    QList<V2VORMessageExtension> list() const;
    QHash<QString, quint64> versions() const;
    /// 0 for a key never written.
    quint64 version(const QString &key) const;
    bool contains(const QString &key) const;
    int size() const;

    /// Writes one key, checking its size, the per-message key limit and that `seenVersion`
    /// is the key's current version.
    V2VORMessageExtensionResult set(const V2VORMessageExtension &extension, quint64 seenVersion);
    /// Removes one key from the live map; removing an absent key succeeds and changes nothing.
    V2VORMessageExtensionResult remove(const QString &key);

    /// Why `key` cannot be used at all; 0 when it can.
    static int checkKey(const QString &key);

private:
    QStringList m_order;
    QHash<QString, QString> m_values;
    QHash<QString, quint64> m_versions;
};
