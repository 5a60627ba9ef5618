#pragma once

#include <QByteArray>

#include "core/Utils.h"

namespace Lattice {

/// The password travels as base64 of its UTF-8 bytes: no hash and no salt, TLS is what protects it.
inline QByteArray EncodedPassword(const wchar_t* password) {
    return ToUtf8(password).toBase64();
}

/// Milliseconds that a login waits when its caller doesn't say.
inline constexpr uint32_t kLoginTimeoutMs = 15000;

inline uint32_t LoginTimeout(const uint32_t* timeoutMs) {
    return timeoutMs != nullptr && *timeoutMs != 0 ? *timeoutMs : kLoginTimeoutMs;
}

}  // namespace Lattice
