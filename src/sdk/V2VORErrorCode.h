// Result codes of the messaging client library. 0 is success; every failure carries one of
// these codes and a readable description.
#pragma once

enum V2VORErrorCode : int {
    V2VOR_SUCC = 0,
    /// A call made before login, or after logout.
    V2VOR_ERR_NOT_LOGGED_IN = 6014,
    /// Missing or ill-typed arguments, unknown experimental API.
    V2VOR_ERR_INVALID_PARAMETERS = 6017,
    /// No message with that ID (or group and sequence) exists on the service.
    V2VOR_ERR_MESSAGE_NOT_FOUND = 7001,
    /// A message body (custom element data) is larger than 12 KB.
    V2VOR_ERR_MESSAGE_BODY_TOO_LARGE = 8001,
    /// The message was modified by someone else since this copy was taken; the service's
    /// current message comes back with this code.
    V2VOR_ERR_MESSAGE_MODIFY_CONFLICT = 8006,
    /// The caller is not a member of the message's group.
    V2VOR_ERR_NOT_GROUP_MEMBER = 10007,
    /// Extensions work only on sent messages created with extension support.
    V2VOR_ERR_EXTENSION_NOT_SUPPORTED = 23001,
    /// More than 20 extensions (or keys) in one call.
    V2VOR_ERR_EXTENSION_TOO_MANY_IN_CALL = 23002,
    /// Per key: the key is empty or longer than 100 bytes.
    V2VOR_ERR_EXTENSION_KEY_INVALID = 23003,
    /// Per key: the value is longer than 1024 bytes.
    V2VOR_ERR_EXTENSION_VALUE_TOO_LONG = 23004,
    /// Per key: the message already holds 300 keys.
    V2VOR_ERR_EXTENSION_KEY_LIMIT_REACHED = 23005,
    /// Per key: the key changed since this client last saw it; the result carries the latest value.
    V2VOR_ERR_EXTENSION_VERSION_CONFLICT = 23006,

    // A service across the network.
    /// A frame that is not a JSON request of the protocol (bad JSON, missing or ill-typed members).
    V2VOR_ERR_PROTOCOL_MALFORMED = 9501,
    /// A frame larger than the server accepts.
    V2VOR_ERR_PROTOCOL_FRAME_TOO_LARGE = 9502,
    /// A protocol version the server does not speak.
    V2VOR_ERR_PROTOCOL_VERSION = 9503,
    /// An operation the protocol does not have.
    V2VOR_ERR_PROTOCOL_UNKNOWN_OP = 9504,
    /// Too many requests on one connection; retry later.
    V2VOR_ERR_RATE_LIMITED = 9505,
    /// A missing, forged or expired token, or a request before the connection proved its user.
    V2VOR_ERR_AUTH_FAILED = 9506,
    /// A directory change by someone who is not an operator of the service.
    V2VOR_ERR_NOT_PERMITTED = 9507,
    /// The service cannot be reached (connection down, storage unavailable); the call may be retried.
    V2VOR_ERR_SERVICE_UNAVAILABLE = 9508,
};

/// Limits the service enforces.
namespace V2VORLimits {
constexpr int kMaxExtensionsPerCall = 20;
constexpr int kMaxExtensionKeyBytes = 100;
constexpr int kMaxExtensionValueBytes = 1024;
constexpr int kMaxExtensionKeysPerMessage = 300;
constexpr int kMaxMessageBodyBytes = 12 * 1024;
} // namespace V2VORLimits
