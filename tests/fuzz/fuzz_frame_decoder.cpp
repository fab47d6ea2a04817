// Feeds arbitrary bytes to the server's reading of client frames: the frame decoder, the reading
// of each operation's arguments, and the run of what was read on an in-process service for a
// member of a group, as a connection would. Inputs starting with byte 1 skip the frame: the
// next byte picks the operation and the rest is its "args" JSON.
//
// Nothing may crash; a decoded frame must survive being written and read again; a refusal names
// why with a protocol code; every operation the protocol has is known; every request run is
// answered exactly once with a reply a client can read.
#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "FuzzSession.h"
#include "sdk/LocalBackend.h"
#include "sdk/MessagingServer.h"
#include "sdk/ServiceProtocol.h"
#include "server/RequestArgs.h"
#include "server/RequestDispatcher.h"
#include "sdk/SilentSession.h"

#include <QCoreApplication>
#include <QJsonDocument>

namespace {

ServiceProtocol::Request readRequest(const QByteArray &data)
{
    if (data.startsWith('\x01')) {
        FuzzInput in(reinterpret_cast<const uint8_t *>(data.constData()) + 1, size_t(data.size() - 1));
        const QStringList operations = RequestArgs::operations();
        const QString op = operations.at(qsizetype(in.pick(unsigned(operations.size()))));
        return { 1, op, QJsonDocument::fromJson(in.rest()).object() };
    }
    const ServiceProtocol::DecodedRequest decoded = ServiceProtocol::decodeRequest(data);
    if (data.size() > ServiceProtocol::kMaxFrameBytes)
        FUZZ_CHECK(decoded.error.code == V2VOR_ERR_PROTOCOL_FRAME_TOO_LARGE, decoded.error.code);
    if (decoded.error) {
        FUZZ_CHECK(decoded.error.code >= 9501 && decoded.error.code <= 9503 && !decoded.error.desc.isEmpty(),
            decoded.error.code << decoded.error.desc);
        return {};
    }
    const ServiceProtocol::Request &request = decoded.request;
    const ServiceProtocol::DecodedRequest again
        = ServiceProtocol::decodeRequest(ServiceProtocol::encodeRequest(request.id, request.op, request.args));
    FUZZ_CHECK(!again.error && again.request.id == request.id && again.request.op == request.op
            && again.request.args == request.args,
        "a decoded request read differently once written again");
    return request;
}

/// Runs `args` for alice, a member of group-1, on a service of its own.
void run(const RequestArgs::Args &args)
{
    MessagingServer service;
    service.addUser(QStringLiteral("alice"));
    service.addUser(QStringLiteral("bob"));
    service.createGroup(QStringLiteral("group-1"), { QStringLiteral("alice"), QStringLiteral("bob") });
    LocalBackend backend(&service);
    SilentSession alice(QStringLiteral("alice"));
    backend.attach(&alice);
    int answers = 0;
    RequestDispatcher(&backend, &alice).dispatch(args, [&answers](const CallError &error, const QJsonObject &result) {
        ++answers;
        const ServiceProtocol::ServerFrame reply
            = ServiceProtocol::decodeServerFrame(ServiceProtocol::encodeReply(1, error, result));
        FUZZ_CHECK(reply.kind == ServiceProtocol::ServerFrame::Reply && reply.replyTo == 1
                && reply.error.code == error.code && reply.result == result,
            "a reply a client cannot read back");
    });
    FUZZ_CHECK(answers == 1, answers);
    backend.detach(&alice);
    // Events for alice's session go with it; nothing piles up from one input to the next.
    QCoreApplication::processEvents();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    FuzzSession::startApplication(argc, argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    const QByteArray data(reinterpret_cast<const char *>(bytes), qsizetype(size));
    const ServiceProtocol::Request request = readRequest(data);
    if (request.op.isNull())
        return 0;
    const RequestArgs::Parsed parsed = RequestArgs::parseArgs(request.op, request.args);
    const bool known = RequestArgs::operations().contains(request.op);
    FUZZ_CHECK(parsed.args.has_value() == !parsed.error, parsed.error.desc);
    if (parsed.error) {
        FUZZ_CHECK(parsed.error.code == (known ? V2VOR_ERR_PROTOCOL_MALFORMED : V2VOR_ERR_PROTOCOL_UNKNOWN_OP)
                && parsed.error.desc.contains(QLatin1Char('"')),
            parsed.error.code << parsed.error.desc);
        return 0;
    }
    FUZZ_CHECK(known, request.op);
    run(*parsed.args);
    return 0;
}
