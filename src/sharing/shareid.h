#pragma once

#include "core/replyfields.h"

namespace Lattice {

/// The server's own number where a question about shares failed; such a reply has nothing more to say.
constexpr int kQuestionFailed = -3;

/// "share_id"; the server writes dashes for one that isn't there.
inline std::wstring ShareIDOf(const Json::Value& json) {
    const std::wstring id = JsonText(json, "share_id");
    return id == L"--------" ? std::wstring() : id;
}

}  // namespace Lattice
