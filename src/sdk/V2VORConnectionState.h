// How a client stands with its messaging service: an in-process service is always connected;
// a server across the network may be reached, being (re)connected to, or not wanted at all.
#pragma once

enum V2VORConnectionState : int {
    /// The service is reached and the user proven: calls go out at once.
    V2VOR_CONNECTION_CONNECTED = 1,
    /// Connecting, or waiting to retry after a drop: calls wait for the connection.
    V2VOR_CONNECTION_CONNECTING = 2,
    /// Not connected and not trying (before login, after logout, or the user was refused).
    V2VOR_CONNECTION_DISCONNECTED = 3,
};
