#include "ServerCommandLine.h"

#include <QCommandLineParser>
#include <QFile>

namespace {

QList<QCommandLineOption> optionList()
{
    return {
        { QStringLiteral("listen"), QStringLiteral("Address to listen on."), QStringLiteral("ADDR"),
            QStringLiteral("127.0.0.1") },
        { QStringLiteral("port"), QStringLiteral("Port to listen on; 0 picks a free one."), QStringLiteral("N"),
            QStringLiteral("0") },
        { QStringLiteral("secret-file"), QStringLiteral("File holding the token secret (else $VOR_SECRET)."),
            QStringLiteral("PATH") },
        { QStringLiteral("store"), QStringLiteral("memory or nats."), QStringLiteral("STORE"),
            QStringLiteral("memory") },
        { QStringLiteral("nats"), QStringLiteral("NATS server URL."), QStringLiteral("URL"),
            QStringLiteral("nats://127.0.0.1:4222") },
        { QStringLiteral("directory"), QStringLiteral("JSON file of users and groups to seed."),
            QStringLiteral("FILE") },
        { QStringLiteral("rate"), QStringLiteral("Requests a second per connection."), QStringLiteral("N"),
            QStringLiteral("500") },
        { QStringLiteral("burst"), QStringLiteral("Requests a connection may make at once."), QStringLiteral("N"),
            QStringLiteral("1000") },
        { QStringLiteral("mint-token"), QStringLiteral("Print a token for USER and exit."), QStringLiteral("USER") },
        { QStringLiteral("operator"), QStringLiteral("The minted token may change the directory.") },
        { QStringLiteral("ttl"), QStringLiteral("Seconds the minted token lasts."), QStringLiteral("SECONDS"),
            QStringLiteral("86400") },
    };
}

std::optional<double> positive(const QString &text)
{
    bool ok = false;
    const double value = text.toDouble(&ok);
    return ok && value > 0 ? std::optional(value) : std::nullopt;
}

/// The secret: the file's content without a trailing newline, or the environment's.
std::optional<QByteArray> readSecret(const QString &path, const QByteArray &environment, QString *error)
{
    QByteArray secret = environment;
    if (!path.isEmpty()) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            *error = QStringLiteral("cannot read %1: %2").arg(path, file.errorString());
            return std::nullopt;
        }
        secret = file.readAll();
        while (secret.endsWith('\n') || secret.endsWith('\r'))
            secret.chop(1);
    }
    if (secret.isEmpty()) {
        *error = QStringLiteral("no secret: give --secret-file or set VOR_SECRET");
        return std::nullopt;
    }
    return secret;
}

} // namespace

std::optional<ServerCommandLine> ServerCommandLine::parse(
    const QStringList &arguments, const QByteArray &environmentSecret, QString *error)
{
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOptions(optionList());
    if (!parser.parse(arguments)) {
        *error = parser.errorText();
        return std::nullopt;
    }
    ServerCommandLine line;
    ServerOptions &options = line.options;
    bool portOk = false;
    const uint port = parser.value(QStringLiteral("port")).toUInt(&portOk);
    const auto rate = positive(parser.value(QStringLiteral("rate")));
    const auto burst = positive(parser.value(QStringLiteral("burst")));
    const auto ttl = positive(parser.value(QStringLiteral("ttl")));
    if (!options.listenAddress.setAddress(parser.value(QStringLiteral("listen"))))
        *error = QStringLiteral("--listen takes an IP address");
    else if (!portOk || port > 65535)
        *error = QStringLiteral("--port takes a number from 0 to 65535");
    else if (!rate || !burst || !ttl)
        *error = QStringLiteral("--rate, --burst and --ttl take positive numbers");
    if (!error->isEmpty())
        return std::nullopt;
    const auto secret = readSecret(parser.value(QStringLiteral("secret-file")), environmentSecret, error);
    if (!secret)
        return std::nullopt;
    options.port = quint16(port);
    options.secret = *secret;
    options.limits.rate = *rate;
    options.limits.burst = *burst;
    options.store = parser.value(QStringLiteral("store"));
    options.natsURL = parser.value(QStringLiteral("nats"));
    line.directoryPath = parser.value(QStringLiteral("directory"));
    line.mintUser = parser.value(QStringLiteral("mint-token"));
    line.mintOperator = parser.isSet(QStringLiteral("operator"));
    line.mintTtlSeconds = qint64(*ttl);
    return line;
}
