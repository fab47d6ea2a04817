#include "server/TokenAuthority.h"

#include "platform/MainQueue.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QMessageAuthenticationCode>

namespace {

constexpr auto kBase64Url = QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals;

std::optional<QByteArray> fromBase64Url(const QByteArray &text)
{
    auto decoded
        = QByteArray::fromBase64Encoding(text, QByteArray::Base64UrlEncoding | QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded)
        return std::nullopt;
    return *decoded;
}

/// Compares in time that depends on the lengths only, so a forger learns nothing from timing.
bool sameBytes(const QByteArray &a, const QByteArray &b)
{
    if (a.size() != b.size())
        return false;
    unsigned char difference = 0;
    for (qsizetype i = 0; i < a.size(); ++i)
        difference |= static_cast<unsigned char>(a[i] ^ b[i]);
    return difference == 0;
}

TokenAuthority::Verdict refused(TokenAuthority::Failure failure)
{
    TokenAuthority::Verdict verdict;
    verdict.failure = failure;
    return verdict;
}

} // namespace

CallError TokenAuthority::Verdict::error() const
{
    switch (failure) {
    case Failure::None:
        return {};
    case Failure::Missing:
        return { V2VOR_ERR_AUTH_FAILED, QStringLiteral("hello needs a \"token\"") };
    case Failure::Malformed:
        return { V2VOR_ERR_AUTH_FAILED, QStringLiteral("the token is not one this server issues") };
    case Failure::Forged:
        return { V2VOR_ERR_AUTH_FAILED, QStringLiteral("the token's signature does not match") };
    case Failure::Expired:
        return { V2VOR_ERR_AUTH_FAILED, QStringLiteral("the token has expired") };
    }
    return { V2VOR_ERR_AUTH_FAILED, QString() };
}

TokenAuthority::TokenAuthority(const QByteArray &secret)
    : m_secret(secret)
{
}

QString TokenAuthority::mint(const QString &userID, qint64 expiresAt, bool isOperator) const
{
    const QJsonObject payload { { QStringLiteral("sub"), userID }, { QStringLiteral("exp"), double(expiresAt) },
        { QStringLiteral("op"), isOperator } };
    const QByteArray encoded = QJsonDocument(payload).toJson(QJsonDocument::Compact).toBase64(kBase64Url);
    return QString::fromLatin1(encoded + '.' + signatureOf(encoded).toBase64(kBase64Url));
}

TokenAuthority::Verdict TokenAuthority::verify(const QString &token) const
{
    return verify(token, platform::MainQueue::now());
}

TokenAuthority::Verdict TokenAuthority::verify(const QString &token, double nowMs) const
{
    if (token.isEmpty())
        return refused(Failure::Missing);
    const QByteArray text = token.toLatin1();
    const QList<QByteArray> parts = text.split('.');
    if (parts.size() != 2 || parts[0].isEmpty())
        return refused(Failure::Malformed);
    const std::optional<QByteArray> signature = fromBase64Url(parts[1]);
    if (!signature)
        return refused(Failure::Malformed);
    // The signature is checked before the payload is read: nothing of a forged token is trusted.
    if (!sameBytes(*signature, signatureOf(parts[0])))
        return refused(Failure::Forged);
    const std::optional<QByteArray> json = fromBase64Url(parts[0]);
    const QJsonObject payload = json ? QJsonDocument::fromJson(*json).object() : QJsonObject();
    const QJsonValue sub = payload.value(QLatin1String("sub"));
    const QJsonValue exp = payload.value(QLatin1String("exp"));
    const QJsonValue op = payload.value(QLatin1String("op"));
    if (!sub.isString() || sub.toString().isEmpty() || !exp.isDouble() || !(op.isBool() || op.isUndefined()))
        return refused(Failure::Malformed);
    if (nowMs / 1000.0 >= exp.toDouble())
        return refused(Failure::Expired);
    Verdict verdict;
    verdict.userID = sub.toString();
    verdict.isOperator = op.toBool();
    return verdict;
}

QByteArray TokenAuthority::signatureOf(const QByteArray &encodedPayload) const
{
    return QMessageAuthenticationCode::hash(encodedPayload, m_secret, QCryptographicHash::Sha256);
}
