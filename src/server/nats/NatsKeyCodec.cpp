#include "server/nats/NatsKeyCodec.h"

namespace {

constexpr auto kOptions = QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals;
const QByteArray kEmpty = QByteArrayLiteral("=");

} // namespace

QByteArray NatsKeyCodec::encode(const QString &text)
{
    return text.isEmpty() ? kEmpty : text.toUtf8().toBase64(kOptions);
}

std::optional<QString> NatsKeyCodec::decode(const QByteArray &token)
{
    if (token == kEmpty)
        return QString();
    auto decoded = QByteArray::fromBase64Encoding(token, kOptions | QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded || token.isEmpty() || decoded.decoded.toBase64(kOptions) != token)
        return std::nullopt;
    return QString::fromUtf8(decoded.decoded);
}
