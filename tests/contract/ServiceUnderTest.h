// One way of running the messaging service for the contract suite: in this process, on NATS
// directly, or behind one or more servers across loopback. The suite's tests are the same for
// every way; each test executable links exactly one of them (makeServiceUnderTest()).
#pragma once

#include "sdk/MessagingBackend.h"

#include <QString>
#include <memory>

class ServiceUnderTest
{
public:
    virtual ~ServiceUnderTest() = default;

    /// Why the service could not be started; empty when it runs.
    virtual QString startError() const { return {}; }
    /// A backend for a new client. Ways with several servers spread clients over them by `index`.
    virtual std::unique_ptr<MessagingBackend> newBackend(int index) = 0;
    /// Where the service keeps its state when that is a server of its own (a NATS URL); empty
    /// otherwise.
    virtual QString storeURL() const { return {}; }
    /// The proof of identity a client of `userID` presents; empty where none is asked for.
    virtual QString tokenFor(const QString &userID, bool isOperator = false) const
    {
        Q_UNUSED(userID);
        Q_UNUSED(isOperator);
        return {};
    }
};

std::unique_ptr<ServiceUnderTest> makeServiceUnderTest();
