// Callback shapes of the messaging client library. Every callback arrives on the main queue,
// later than the call that asked for it, never inside it.
#pragma once

#include <QString>
#include <functional>

using V2VORSucc = std::function<void()>;
using V2VORFail = std::function<void(int code, const QString &desc)>;
using V2VORProgress = std::function<void(quint32 progress)>;
template<typename T>
using V2VORValueSucc = std::function<void(const T &value)>;
