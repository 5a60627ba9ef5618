#pragma once

// What the replies on device configuration share.

#include <utility>

#include "core/replyfields.h"

namespace Lattice {

constexpr int kConfigRefused = -3;

/// The body of a parser: `read` gets a reply without "status", which is how the server says that it agrees.
/// A refusal is understood and ends the parse; a reply of any other status isn't understood.
template <class Read>
int ParseConfigReply(const char* text, int32_t& status, Read&& read) {
    return ParseReply(text, [&](const Json::Value& root) {
        if (!root.isObject()) return -1;
        if (root.isMember("status")) {
            const bool isRefusal = JsonGetInt(root, "status", kNoStatus) == kConfigRefused;
            status = isRefusal ? WFM_STATUS_FAILED : WFM_NOTHING_LEARNT;
            return isRefusal ? 1 : -1;
        }
        status = 0;
        return std::forward<Read>(read)(root);
    });
}

/// Hands the objects of an array to `read`; an absent one has none. What a parser answers then.
template <class Read>
int ReadObjects(const Json::Value& root, const char* key, Read&& read) {
    if (!IsPresent(root, key)) return 1;
    if (!root[key].isArray()) return -1;
    for (const Json::Value& json : root[key])
        if (json.isObject()) read(json);
    return 1;
}

}  // namespace Lattice
