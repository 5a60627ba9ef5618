#include "state/GetMaxLogJson.h"

#include <cstdlib>
#include <optional>

#include "core/replyfields.h"

using namespace Lattice;

namespace {

/// A number that travels as text; none for an absent or empty one.
std::optional<int64_t> NumberOf(const Json::Value& root, const char* key) {
    if (!IsPresent(root, key)) return std::nullopt;
    const std::string text = root[key].asString();
    if (text.empty()) return std::nullopt;
    return std::strtoll(text.c_str(), nullptr, 10);
}

}  // namespace

int CTorviGetMaxLogJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        status = TranslatedStatus(root, 0);
        if (status == WFM_PERMISSION_DENY) return 1;
        for (uint32_t i = 0; i < folderCount; ++i) {
            const auto number = NumberOf(root, ("max_log" + std::to_string(i)).c_str());
            if (number) folders.push_back({static_cast<int32_t>(i), *number});
        }
        if (folderCount == 0) {
            if (const auto overall = NumberOf(root, "max_log")) {
                folders.push_back({-1, *overall});
                maxLog = *overall;
            }
        }
        notify = NumberOf(root, "notify").value_or(-1);
        globalNotify = NumberOf(root, "global_notify").value_or(-1);
        syncSignal = NumberOf(root, "sync_signal").value_or(-1);
        return 1;
    });
}
