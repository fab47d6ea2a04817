// Mints and checks the tokens a client proves its user with when it says hello:
// base64url(payload) "." base64url(HMAC-SHA256(secret, base64url(payload))), the payload being
// {"sub": user ID, "exp": seconds since 1970, "op": operator}. Only the holder of the server's
// secret can mint one.
#pragma once

#include "sdk/ServiceReply.h"

#include <QByteArray>
#include <QString>

class TokenAuthority
{
public:
    enum class Failure { None, Missing, Malformed, Forged, Expired };

    struct Verdict
    {
        Failure failure = Failure::None;
        QString userID;
        bool isOperator = false;

        bool ok() const { return failure == Failure::None; }
        /// A 9506 naming why the token was refused (code 0 when it was accepted).
        CallError error() const;
    };

    explicit TokenAuthority(const QByteArray &secret);

    /// `expiresAt`: seconds since 1970.
    QString mint(const QString &userID, qint64 expiresAt, bool isOperator) const;
    /// Checks against the main queue's "now".
    Verdict verify(const QString &token) const;
    /// `nowMs`: milliseconds since 1970; a token is good until the second it expires.
    Verdict verify(const QString &token, double nowMs) const;

private:
    QByteArray signatureOf(const QByteArray &encodedPayload) const;

    QByteArray m_secret;
};
