// The kinds of date picker: 0 … 3 are Qt's own date and time editors, the others are wheels of
// the named columns (Y year, M month, D day, H hour, M minute, S second).
#pragma once

enum class ZIQBRDatePickerMode {
    Date = 0,
    DateAndTime = 1,
    Time = 2,
    CountDownTimer = 3,
    YMDHMS = 4,
    YMDHM = 5,
    YMDH = 6,
    MDHM = 7,
    YMD = 8,
    YM = 9,
    Y = 10,
    MD = 11,
    HMS = 12,
    HM = 13,
    MS = 14,
};
