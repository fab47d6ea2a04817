// A note's extension traffic with the messaging client, below any editing session: writes,
// deletions and reads of extensions by message object and by group and message sequence, and
// look-ups of messages by ID. Every call is logged and answers exactly once through its
// completion (when one is given). Nothing here refers back to the caller, so a completion is
// honoured even when whoever asked is gone by then.
//
// Entries written by sequence cannot overwrite or remove a key: each write goes under the
// entry's next generation, and a deletion writes the deletion marker there.
#pragma once

#include "sdk/V2VORManager.h"

#include <QHash>
#include <QPointer>
#include <functional>

class ZIQGroupNoteExtensionClient
{
public:
    using Completion = std::function<void(int code, const QString &desc)>;
    using ResultsCompletion
        = std::function<void(int code, const QString &desc, const QList<V2VORMessageExtensionResult> &results)>;
    using ListCompletion = std::function<void(int code, const QString &desc, const QList<V2VORMessageExtension> &list)>;
    using MessageCompletion = std::function<void(int code, const QString &desc, const V2VORMessagePtr &message)>;
    /// Extension key -> 0 for an added entry, 1 for a modified one; deletions are never listed.
    using OperationDict = QHash<QString, int>;

    /// Talks to `manager` alone: once it is gone every call answers -1 with noClientDesc, rather
    /// than reaching another user's client.
    explicit ZIQGroupNoteExtensionClient(V2VORManager *manager);

    /// The client calls go to; null once it is gone.
    V2VORManager *manager() const { return m_manager; }

    void setMessageExtension(
        const V2VORMessagePtr &message, const QList<V2VORMessageExtension> &extensions, Completion completion) const;
    /// An empty key list answers 0 at once without a call.
    void deleteMessageExtension(const V2VORMessagePtr &message, const QStringList &keys, Completion completion) const;
    void getMessageExtensions(const V2VORMessagePtr &message, ListCompletion completion) const;

    /// Writes the list under rewritten keys: an added entry (and anything the dictionary does not
    /// name) under generation 0, a modified one under its next generation.
    void setMessageExtensionBySeq(const QString &groupID, quint64 seq, const QList<V2VORMessageExtension> &extensions,
        const OperationDict &operationDict, ResultsCompletion completion) const;
    /// Writes the deletion marker under each key's next generation.
    void deleteMessageExtensionBySeq(
        const QString &groupID, quint64 seq, const QStringList &keys, ResultsCompletion completion) const;
    /// Writes the list as it is. A success without a result list never answers.
    void setSDKMessageExtensionBySeq(const QString &groupID, quint64 seq,
        const QList<V2VORMessageExtension> &extensions, ResultsCompletion completion) const;
    void getMessageExtensionsBySeq(const QString &groupID, quint64 seq, ListCompletion completion) const;

    /// Looks a message up in the local history.
    void findMessageByMsgID(const QString &msgID, MessageCompletion completion) const;

    static QList<V2VORMessageExtension> sequenceWriteList(
        const QList<V2VORMessageExtension> &extensions, const OperationDict &operationDict);
    static QList<V2VORMessageExtension> sequenceDeletionList(const QStringList &keys);

    /// Reported when no messaging client exists at all.
    static inline const QString noClientDesc = QStringLiteral("messaging client is not available");

private:
    static QVariantMap sequenceParam(const QString &groupID, quint64 seq);

    /// The client to call, or null after answering `completion` with -1 and the given empty
    /// trailing values.
    template<typename Callback, typename... Empty>
    V2VORManager *readyClient(const Callback &completion, Empty &&...empty) const
    {
        V2VORManager *sdk = manager();
        if (!sdk && completion)
            completion(-1, noClientDesc, std::forward<Empty>(empty)...);
        return sdk;
    }

    QPointer<V2VORManager> m_manager;
};
