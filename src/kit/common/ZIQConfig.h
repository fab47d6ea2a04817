// The kit's switches an application sets at start-up.
#pragma once

class ZIQConfig
{
public:
    static ZIQConfig &defaultConfig();

    bool enableCustomRing() const { return m_enableCustomRing; }
    void setEnableCustomRing(bool enable) { m_enableCustomRing = enable; }

private:
    bool m_enableCustomRing = false;
};
