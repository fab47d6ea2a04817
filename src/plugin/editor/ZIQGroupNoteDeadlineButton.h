// The deadline chip of the note page: "Deadline: <date>" on a tinted, rounded chip, or "Stopped"
// once the deadline has passed. While a note is composed a tap on it opens the deadline picker.
#pragma once

#include "plugin/model/ZIQGroupNoteInfo.h"

#include <QPushButton>

class ZIQGroupNoteDeadlineButton : public QPushButton
{
    Q_OBJECT

public:
    static constexpr int Height = 24;

    explicit ZIQGroupNoteDeadlineButton(QWidget *parent = nullptr);

    /// Shows `info`'s deadline and takes the width for it.
    void refreshWithInfo(const ZIQGroupNoteInfo &info);
    /// The width the last refresh took.
    float buttonWidth() const { return m_buttonWidth; }

    /// "Stopped" once `info`'s deadline has passed, else "Deadline: <date>".
    static QString deadlineButtonTitle(const ZIQGroupNoteInfo &info);
    /// The chip is sized for `title` in bold, though it draws it regular: a little spare room.
    static float deadlineButtonWidth(const QString &title);
    /// `timestampInMS` as "YYYY-MM-dd HH:mm" in the device's time zone; empty for 0 or less.
    /// The year is the week-based one, so the last days of December may show the next year.
    static QString dateStringFromTimestamp(double timestampInMS);

private:
    void applyTheme();

    float m_buttonWidth = 0;
};
