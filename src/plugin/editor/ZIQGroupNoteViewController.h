// The note's editor screen. For now it only shows which note it was opened over; the card's
// join button, a tips row and the "more" panel item already open it through the one entry
// point the full editor keeps.
#pragma once

#include "plugin/provider/ZIQGroupNoteDataProvider.h"

#include "platform/ViewController.h"

class ZIQGroupNoteViewController : public platform::ViewController
{
    Q_OBJECT

public:
    /// `groupID` is where the note is submitted; `message` is the note (or a tips message that
    /// points at it), null for a new note.
    ZIQGroupNoteViewController(
        const QString &groupID, const V2VORMessagePtr &message, bool isCreateNew, QObject *parent = nullptr);

    QString groupID() const { return m_groupID; }
    bool isCreateNew() const { return m_isCreateNew; }
    ZIQGroupNoteDataProvider *dataProvider() const { return m_dataProvider; }

protected:
    void viewDidLoad() override;

private:
    QString m_groupID;
    bool m_isCreateNew = false;
    ZIQGroupNoteDataProvider *m_dataProvider = nullptr;
};
