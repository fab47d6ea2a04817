// A client writing back to back, as a user filling a note in a hurry: each write goes out when
// the one before it is answered. Writes are numbered from 0; a write is either an entry (the
// extension key "entry-<n>" of one note) or a text message "write <n>" to a group. Every answer
// is kept, so a test can tell which writes were acknowledged and whether any was answered twice.
#pragma once

#include "sdk/V2VORManager.h"

#include <QHash>
#include <QList>
#include <QPointer>
#include <memory>

class BackToBackWriter
{
public:
    struct Answer
    {
        int write = -1;
        int code = -1;
    };

    /// Writes entries of `note` when given, else text messages to `groupID`.
    BackToBackWriter(V2VORManager *client, const QString &groupID, const V2VORMessagePtr &note = {});
    /// Answers still to come find the writer gone and are dropped.
    ~BackToBackWriter() { *m_alive = false; }
    BackToBackWriter(const BackToBackWriter &) = delete;
    BackToBackWriter &operator=(const BackToBackWriter &) = delete;

    static QString keyOf(int write) { return QStringLiteral("entry-%1").arg(write); }
    static QString textOf(int write) { return QStringLiteral("write %1").arg(write); }

    void start();
    /// No write goes out after the one under way.
    void stop() { m_stopped = true; }
    /// Stopped, and the last write answered.
    bool isIdle() const { return m_stopped && m_answered.size() == m_issued; }

    /// A write is out and not answered yet.
    bool isWaiting() const { return m_answered.size() < m_issued; }
    int issued() const { return m_issued; }
    const QList<Answer> &answers() const { return m_answers; }
    /// Writes answered with success, in the order they went out.
    QList<int> acknowledged() const;
    /// Successes among the writes issued from `write` on.
    int acknowledgedFrom(int write) const;

private:
    void next();
    void answer(int write, int code);

    QPointer<V2VORManager> m_client;
    QString m_groupID;
    V2VORMessagePtr m_note;
    int m_issued = 0;
    bool m_stopped = false;
    QHash<int, int> m_answered;
    QList<Answer> m_answers;
    std::shared_ptr<bool> m_alive = std::make_shared<bool>(true);
};
