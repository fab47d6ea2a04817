// A group note played by the demo's other members: a little after start one of them posts a
// sign-up sheet in a group, and over the next seconds others put their names on it, each
// through their own client, so the user sees the note and its tips lines arrive live.
#pragma once

#include "sdk/V2VORMessage.h"

#include <QObject>
#include <QPointer>
#include <QStringList>

class DemoCast;
class ZIQGroupNoteContext;

class DemoNoteScene : public QObject
{
    Q_OBJECT

public:
    /// Until the note is posted, then between two members joining it.
    static constexpr int PostDelayMs = 4000;
    static constexpr int JoinPauseMs = 3000;

    struct Script
    {
        QString groupID;
        QString author;
        QString title;
        QString description;
        /// Members who join, in order.
        QStringList joiners;
        /// The author's own entry, then one for each joining member.
        QStringList entries;
    };

    DemoNoteScene(DemoCast *cast, const Script &script, QObject *parent = nullptr);

    /// Plays the script on the main queue's clock.
    void start();
    /// The script's joiners, one after another, add their entries to the note `msgID` someone
    /// else posted (the user, say); the script's first entry is not used.
    void joinNote(const QString &msgID);

Q_SIGNALS:
    /// The note message is in the group.
    void posted(const QString &msgID);
    /// `userID` added their entry.
    void joined(const QString &userID);
    /// Every joiner has had their turn.
    void finished();

private:
    void post();
    /// The joiner at `index` adds their entry, then the next one follows.
    void join(int index);
    void addEntryAs(int index, const ZIQGroupNoteContext &context, const V2VORMessagePtr &note);
    ZIQGroupNoteContext contextOf(const QString &userID) const;

    QPointer<DemoCast> m_cast;
    Script m_script;
    QString m_noteID;
};
