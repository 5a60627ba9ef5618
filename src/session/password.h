#pragma once

#include <QByteArray>

#include "core/Utils.h"

namespace Lattice {

/// The password travels as base64 of its UTF-8 bytes: no hash and no salt, TLS is what protects it.
inline QByteArray EncodedPassword(const wchar_t* password) {
    return ToUtf8(password).toBase64();
}

}  // namespace Lattice
