// Tokens: what a server accepts, and why it refuses the rest.
#include "platform/ManualClock.h"
#include "server/TokenAuthority.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QMessageAuthenticationCode>
#include <QTest>

namespace {

const QByteArray kSecret = "correct horse battery staple";
constexpr qint64 kExpiry = 1800000000; // seconds since 1970
constexpr double kBeforeExpiryMs = (kExpiry - 1) * 1000.0;

QByteArray b64(const QByteArray &bytes)
{
    return bytes.toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals);
}

/// A token written from the documented format alone, without TokenAuthority.
QString signedToken(const QByteArray &payload, const QByteArray &secret = kSecret)
{
    const QByteArray encoded = b64(payload);
    return QString::fromLatin1(
        encoded + '.' + b64(QMessageAuthenticationCode::hash(encoded, secret, QCryptographicHash::Sha256)));
}

} // namespace

class TestTokenAuthority : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void verify_data()
    {
        QTest::addColumn<QString>("token");
        QTest::addColumn<double>("nowMs");
        QTest::addColumn<int>("failure");
        QTest::addColumn<QString>("userID");
        QTest::addColumn<bool>("isOperator");

        const TokenAuthority authority(kSecret);
        const QString amy = authority.mint(QStringLiteral("amy"), kExpiry, false);
        const auto [payload, signature] = [&] {
            const QStringList parts = amy.split(QLatin1Char('.'));
            return std::pair { parts.value(0), parts.value(1) };
        }();
        using F = TokenAuthority::Failure;
        QTest::newRow("member") << amy << kBeforeExpiryMs << int(F::None) << "amy" << false;
        QTest::newRow("operator") << authority.mint(QStringLiteral("op"), kExpiry, true) << kBeforeExpiryMs
                                  << int(F::None) << "op" << true;
        QTest::newRow("written by hand, no op member")
            << signedToken(R"({"sub":"ben","exp":1800000000})") << kBeforeExpiryMs << int(F::None) << "ben" << false;
        QTest::newRow("expires this second") << amy << kExpiry * 1000.0 << int(F::Expired) << "" << false;
        QTest::newRow("long expired") << amy << (kExpiry + 86400) * 1000.0 << int(F::Expired) << "" << false;
        QTest::newRow("other secret") << TokenAuthority("guess").mint(QStringLiteral("amy"), kExpiry, true)
                                      << kBeforeExpiryMs << int(F::Forged) << "" << false;
        QTest::newRow("payload raised to operator")
            << QString::fromLatin1(b64(R"({"exp":1800000000,"op":true,"sub":"amy"})")) + QLatin1Char('.') + signature
            << kBeforeExpiryMs << int(F::Forged) << "" << false;
        QTest::newRow("signature cut short") << amy.chopped(4) << kBeforeExpiryMs << int(F::Forged) << "" << false;
        QTest::newRow("no signature") << payload + QLatin1Char('.') << kBeforeExpiryMs << int(F::Forged) << "" << false;
        QTest::newRow("missing") << QString() << kBeforeExpiryMs << int(F::Missing) << "" << false;
        QTest::newRow("no dot") << payload << kBeforeExpiryMs << int(F::Malformed) << "" << false;
        QTest::newRow("three parts") << amy + QStringLiteral(".x") << kBeforeExpiryMs << int(F::Malformed) << ""
                                     << false;
        QTest::newRow("signature not base64")
            << payload + QStringLiteral(".!!!!") << kBeforeExpiryMs << int(F::Malformed) << "" << false;
        QTest::newRow("signed, not JSON")
            << signedToken("sub=amy") << kBeforeExpiryMs << int(F::Malformed) << "" << false;
        QTest::newRow("signed, no user") << signedToken(R"({"exp":1800000000})") << kBeforeExpiryMs << int(F::Malformed)
                                         << "" << false;
        QTest::newRow("signed, empty user")
            << signedToken(R"({"sub":"","exp":1800000000})") << kBeforeExpiryMs << int(F::Malformed) << "" << false;
        QTest::newRow("signed, expiry a string") << signedToken(R"({"sub":"amy","exp":"1800000000"})")
                                                 << kBeforeExpiryMs << int(F::Malformed) << "" << false;
        QTest::newRow("signed, no expiry")
            << signedToken(R"({"sub":"amy"})") << kBeforeExpiryMs << int(F::Malformed) << "" << false;
        QTest::newRow("signed, op a string") << signedToken(R"({"sub":"amy","exp":1800000000,"op":"yes"})")
                                             << kBeforeExpiryMs << int(F::Malformed) << "" << false;
    }

    void verify()
    {
        QFETCH(QString, token);
        QFETCH(double, nowMs);
        QFETCH(int, failure);
        QFETCH(QString, userID);
        QFETCH(bool, isOperator);
        const TokenAuthority::Verdict verdict = TokenAuthority(kSecret).verify(token, nowMs);
        QCOMPARE(int(verdict.failure), failure);
        QCOMPARE(verdict.userID, userID);
        QCOMPARE(verdict.isOperator, isOperator);
        QCOMPARE(verdict.error().code, failure == 0 ? 0 : 9506);
    }

    void mintWritesTheDocumentedPayload()
    {
        const QString token = TokenAuthority(kSecret).mint(QStringLiteral("chloé"), kExpiry, true);
        const QStringList parts = token.split(QLatin1Char('.'));
        QCOMPARE(parts.size(), 2);
        QCOMPARE(token, signedToken(QByteArray::fromBase64(parts[0].toLatin1(), QByteArray::Base64UrlEncoding)));
        const QJsonObject payload
            = QJsonDocument::fromJson(QByteArray::fromBase64(parts[0].toLatin1(), QByteArray::Base64UrlEncoding))
                  .object();
        QCOMPARE(payload.value(QLatin1String("sub")).toString(), QStringLiteral("chloé"));
        QCOMPARE(payload.value(QLatin1String("exp")).toDouble(), double(kExpiry));
        QCOMPARE(payload.value(QLatin1String("op")).toBool(), true);
        QVERIFY(!token.contains(QLatin1Char('=')) && !token.contains(QLatin1Char('+')));
    }

    void verifyReadsTheMainQueueClock()
    {
        platform::ManualClock clock(kBeforeExpiryMs);
        const TokenAuthority authority(kSecret);
        const QString token = authority.mint(QStringLiteral("amy"), kExpiry, false);
        QVERIFY(authority.verify(token).ok());
        clock.advance(1000);
        QCOMPARE(authority.verify(token).failure, TokenAuthority::Failure::Expired);
    }
};

QTEST_GUILESS_MAIN(TestTokenAuthority)
#include "tst_tokenauthority.moc"
