// The kit's switches an application sets at start-up, and the kit's stock images.
#pragma once

#include <QIcon>

class ZIQConfig
{
public:
    static ZIQConfig &defaultConfig();

    bool enableCustomRing() const { return m_enableCustomRing; }
    void setEnableCustomRing(bool enable) { m_enableCustomRing = enable; }

    /// The avatar shown while a user's own picture loads or when they have none: a person's
    /// silhouette on a grey disc.
    QIcon defaultAvatarImage() const;

private:
    bool m_enableCustomRing = false;
};
