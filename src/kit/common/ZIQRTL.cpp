#include "kit/common/ZIQRTL.h"

namespace {

constexpr QChar RightToLeftMark(0x200F);

bool &rtlOption()
{
    static bool enabled = false;
    return enabled;
}

} // namespace

bool getRTLOption()
{
    return rtlOption();
}

void setRTLOption(bool enabled)
{
    rtlOption() = enabled;
}

QString rtlString(const QString &text)
{
    if (!rtlOption() || text.isEmpty())
        return text;
    if (text.size() >= 2 && text.front() == RightToLeftMark && text.back() == RightToLeftMark)
        return text;
    return RightToLeftMark + text + RightToLeftMark;
}
