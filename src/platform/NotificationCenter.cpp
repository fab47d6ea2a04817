#include "platform/NotificationCenter.h"

#include <algorithm>

namespace platform {

NotificationCenter &NotificationCenter::defaultCenter()
{
    static NotificationCenter center;
    return center;
}

void NotificationCenter::addObserver(QObject *observer, const QString &name, Handler handler)
{
    if (!observer || !handler)
        return;
    m_entries.push_back({m_nextId++, observer, name, std::move(handler)});
}

void NotificationCenter::removeObserver(QObject *observer)
{
    std::erase_if(m_entries, [observer](const Entry &e) { return e.observer.isNull() || e.observer == observer; });
}

void NotificationCenter::removeObserver(QObject *observer, const QString &name)
{
    std::erase_if(m_entries, [&](const Entry &e) {
        return e.observer.isNull() || (e.observer == observer && e.name == name);
    });
}

void NotificationCenter::post(const QString &name, const QVariantMap &userInfo, QObject *object)
{
    std::erase_if(m_entries, [](const Entry &e) { return e.observer.isNull(); });
    // Handlers may add or remove observers; walk a snapshot and re-check each one.
    std::vector<Entry> snapshot;
    std::copy_if(m_entries.begin(), m_entries.end(), std::back_inserter(snapshot),
                 [&](const Entry &e) { return e.name == name; });
    const Notification notification{name, object, userInfo};
    for (const Entry &entry : snapshot) {
        if (entry.observer && isRegistered(entry.id))
            entry.handler(notification);
    }
}

int NotificationCenter::observerCount(const QString &name) const
{
    return static_cast<int>(std::count_if(m_entries.begin(), m_entries.end(), [&](const Entry &e) {
        return e.name == name && !e.observer.isNull();
    }));
}

bool NotificationCenter::isRegistered(quint64 id) const
{
    return std::any_of(m_entries.begin(), m_entries.end(), [id](const Entry &e) { return e.id == id; });
}

} // namespace platform
