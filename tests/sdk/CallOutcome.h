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
        return [state = m_state](const T &value) {
            state->arrived = true;
            state->code = 0;
            state->value = value;
        };
    }
    /// For calls whose success carries nothing.
    V2VORSucc done() const
    {
        return [state = m_state] {
            state->arrived = true;
            state->code = 0;
        };
    }
    V2VORFail fail() const
    {
        return [state = m_state](int code, const QString &desc) {
            state->arrived = true;
            state->code = code;
            state->desc = desc;
        };
    }

    /// Spins the event loop until the answer arrives (bounded); says whether it did.
    bool wait(int timeoutMs = 5000) const
    {
        return QTest::qWaitFor([state = m_state] { return state->arrived; }, timeoutMs);
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
