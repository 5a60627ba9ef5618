#pragma once

namespace torvi {

/// Exit codes of the program. Scripts rely on them: numbers are added, never changed.
enum class Exit : int {
    Ok = 0,
    Refused = 1,           ///< the server refused, or its answer made no sense
    Usage = 2,             ///< wrong arguments, or something needed was not given
    CannotConnect = 3,     ///< the server or the proxy can't be reached, or has no such service
    NotAuthenticated = 4,  ///< the login was refused, or the session is gone
    NotFound = 5,
    Denied = 6,
    Cancelled = 7,
    Incomplete = 8,  ///< a transfer or a listing ended early
    Local = 9,       ///< a file on this machine can't be read or written
    AlreadyExists = 10,
    NoSpace = 11,  ///< the user's quota or the server's disk is exhausted
    Changed = 12,  ///< what was to be changed isn't what it was when it was looked at
};

}  // namespace torvi
