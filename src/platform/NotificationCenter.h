// Process-wide, synchronous notifications by name, as screens use them to tell each other of
// changes. An observer is a QObject: once destroyed it is never called again.
#pragma once

#include "platform/Notification.h"

#include <QPointer>
#include <functional>
#include <vector>

namespace platform {

class NotificationCenter
{
public:
    using Handler = std::function<void(const Notification &)>;

    static NotificationCenter &defaultCenter();

    void addObserver(QObject *observer, const QString &name, Handler handler);
    void removeObserver(QObject *observer);
    void removeObserver(QObject *observer, const QString &name);

    /// Calls every live observer of `name` at once, in the order they were added.
    void post(const QString &name, const QVariantMap &userInfo = {}, QObject *object = nullptr);

    int observerCount(const QString &name) const;

private:
    struct Entry
    {
        quint64 id;
        QPointer<QObject> observer;
        QString name;
        Handler handler;
    };

    bool isRegistered(quint64 id) const;

    std::vector<Entry> m_entries;
    quint64 m_nextId = 1;
};

} // namespace platform
