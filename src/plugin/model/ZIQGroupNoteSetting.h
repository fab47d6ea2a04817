// The settings of one note: single or multiple entries per member, whether the group is told of
// changes, and the deadline. Stored on the service as the note message's "config" extension.
#pragma once

#include <QJsonObject>
#include <QString>
#include <memory>

class ZIQGroupNoteSetting;
using ZIQGroupNoteSettingPtr = std::shared_ptr<ZIQGroupNoteSetting>;

class ZIQGroupNoteSetting
{
public:
    /// The settings of a new note: multiple entries, notify, no deadline.
    ZIQGroupNoteSetting() = default;
    ZIQGroupNoteSetting(bool allowMultiSubmit, bool allowNotify, double deadlineTimestampInMS);

    bool allowMultiSubmit() const { return m_allowMultiSubmit; }
    void setAllowMultiSubmit(bool allow) { m_allowMultiSubmit = allow; }
    bool allowNotify() const { return m_allowNotify; }
    void setAllowNotify(bool allow) { m_allowNotify = allow; }
    /// Milliseconds since 1970; 0 or less means no deadline.
    double deadlineTimestampInMS() const { return m_deadlineTimestampInMS; }
    void setDeadlineTimestampInMS(double deadline) { m_deadlineTimestampInMS = deadline; }

    /// The object written as the "config" extension's value:
    /// {"multi_submit": bool, "notify": bool, "deadline": double}.
    QJsonObject configDictionary() const;
    /// configDictionary() as JSON text, ready to be the "config" value.
    QString configValue() const;

    /// Reads a "config" value. Absent or mistyped members read as false / 0, so a value that is
    /// not a JSON object gives both switches off and no deadline. The deadline is read as a
    /// whole number of milliseconds (fractions dropped, negatives read as 0).
    static ZIQGroupNoteSettingPtr settingWithConfigValue(const QString &value);

private:
    bool m_allowMultiSubmit = true;
    bool m_allowNotify = true;
    double m_deadlineTimestampInMS = 0;
};
