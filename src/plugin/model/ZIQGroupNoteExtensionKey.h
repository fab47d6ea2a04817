// The key scheme of a note's extensions: the "config" key of the settings, entry keys
// "userID_creationTime_generation", the deletion marker, and the generation arithmetic of
// writes made by group and sequence (which cut exactly two characters and read one digit).
#pragma once

#include <QString>

class ZIQGroupNoteExtensionKey
{
public:
    /// Key of the settings extension.
    static inline const QString configKey = QStringLiteral("config");
    /// Value of an entry whose newest generation was deleted through the sequence path.
    static inline const QString deletedMarker = QStringLiteral("__kZIQKit_GroupNoteDeleted__");

    /// "userID_timestamp_keySeq"; the timestamp printed as C's "%.0f" does (ties to even).
    static QString entryKey(const QString &userID, double timestampInMS, qint64 keySeq);
    /// "userID_timestamp".
    static QString entryKeyWithoutSeq(const QString &userID, double timestampInMS);

    struct EntryKeyParts
    {
        QString userID;
        double timestampInMS = 0;
        qint64 keySeq = 0;
    };
    /// Splits an entry key at its last two underscores; the user ID may itself contain
    /// underscores. Parts that are not numbers read as 0 (leading digits count, as C's strtoll
    /// reads them); a key with a single underscore gives an empty user ID and time 0. Answers
    /// false, leaving `parts` alone, for a key without any underscore: the system never writes
    /// one, and such a key is not taken for an entry.
    static bool parseEntryKey(const QString &key, EntryKeyParts *parts);
    /// As above, with the user ID left as a view into `key`, for readers of many keys.
    struct EntryKeyView
    {
        QStringView userID;
        double timestampInMS = 0;
        qint64 keySeq = 0;
    };
    static bool parseEntryKey(QStringView key, EntryKeyView *parts);

    /// The key without its last two characters (empty for shorter keys), whatever they are.
    static QString generationBase(const QString &key);
    /// The integer value of the key's last character alone: 0 to 9, 0 for anything else. A
    /// generation of 10 or more is misread so, as every other client of these notes misreads it:
    /// the keys one client writes must be the keys all others expect.
    static qint64 generationOf(const QString &key);
    /// generationBase(key) + "_" + generation.
    static QString keyWithGeneration(const QString &key, qint64 generation);
    /// The key a modification or a deletion writes on the sequence path: the next generation.
    static QString nextGenerationKey(const QString &key);
    /// The key an added entry (or anything without an operation, the settings included: "config"
    /// becomes "conf_0") is written under on the sequence path.
    static QString firstGenerationKey(const QString &key);
};
