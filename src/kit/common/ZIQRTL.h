// The kit's right-to-left option: an application for right-to-left languages switches it on at
// start-up, and screens then align their texts to the right and adapt the strings they build.
#pragma once

#include <QString>

/// Off unless the application switched it on.
bool getRTLOption();
void setRTLOption(bool enabled);

/// `text` as a right-to-left paragraph when the option is on: enclosed in right-to-left marks,
/// so that a text built of left-to-right parts (names, numbers) still starts at the right and
/// keeps its trailing punctuation there. Unchanged when the option is off, when it is empty or
/// when it is enclosed already.
QString rtlString(const QString &text);
