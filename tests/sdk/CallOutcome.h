// Records the answer of one asynchronous messaging call: whether it arrived, its code and
// description, and the value handed to the success callback.
#pragma once

#include "sdk/V2VORCallbacks.h"

#include <QTest>

#include <memory>

template<typename T = bool> class CallOutcome
{
public:
    V2VORValueSucc<T> succ() const
    {
        return [s = m_state](const T &value) { *s = { true, 0, {}, value }; };
    }
    /// For calls whose success carries nothing.
    V2VORSucc done() const
    {
        return [s = m_state] { *s = { true, 0, {}, {} }; };
    }
    V2VORFail fail() const
    {
        return [s = m_state](int code, const QString &desc) { *s = { true, code, desc, {} }; };
    }
    /// Spins the event loop until the answer arrives (bounded); says whether it did.
    bool wait() const
    {
        return QTest::qWaitFor([s = m_state] { return s->arrived; }, 5000);
    }

    bool arrived() const { return m_state->arrived; }
    int code() const { return m_state->code; }
    QString desc() const { return m_state->desc; }
    T value() const { return m_state->value; }

private:
    struct State
    {
        bool arrived = false;
        int code = -1;
        QString desc;
        T value {};
    };
    std::shared_ptr<State> m_state = std::make_shared<State>();
};
