#pragma once

#include "core/replyfields.h"

namespace Lattice {

/// "share_id"; the server writes dashes for one that isn't there.
inline std::wstring ShareIDOf(const Json::Value& json) {
    const std::wstring id = JsonText(json, "share_id");
    return id == L"--------" ? std::wstring() : id;
}

}  // namespace Lattice
