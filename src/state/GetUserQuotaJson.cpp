#include "state/GetUserQuotaJson.h"

#include <optional>

#include "core/replyfields.h"

using namespace Lattice;

namespace {

/// A size such as "1.5 GB" in bytes; none where there is no text.
std::optional<int64_t> SizeOf(const Json::Value& root, const char* key) {
    const std::wstring text = JsonText(root, key);
    if (text.empty()) return std::nullopt;
    long long size = 0;
    GetSizewithString(text, size);
    return size;
}

/// One volume's quota, and whether the reply tells enough of it.
struct Quota {
    USER_QUOTA_INFO record;
    bool valid;
};

Quota ReadQuota(const Json::Value& json) {
    const auto quota = SizeOf(json, "quota_size");
    const auto used = SizeOf(json, "used_quota_size");
    const auto available = SizeOf(json, "avaiable_quota_size");  // spelled so by the server
    USER_QUOTA_INFO record{};
    record.nVolumeID = JsonGetInt(json, "vol_id", 0);
    record.llQuotaSize = quota.value_or(-1);
    record.llUsedSize = used.value_or(-1);
    record.llAvailableSize = available.value_or(-1);
    const bool valid = quota && used;
    if (!available && valid && *used < *quota) record.llAvailableSize = *quota - *used;
    return {record, valid};
}

}  // namespace

int CGetUserQuotaJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        status = 0;  // this reply has none
        volumeFree = SizeOf(root, "volume_free_size").value_or(0);
        volumeTotal = SizeOf(root, "volume_total_size").value_or(0);
        quotaEnabled = JsonGetFlag(root, "quota_enable", false);
        if (!quotaEnabled) return 1;
        if (!IsPresent(root, "quota")) {
            quotas.push_back(ReadQuota(root).record);
            return 1;
        }
        if (!root["quota"].isArray()) return -1;
        for (const Json::Value& json : root["quota"]) {
            const Quota quota = ReadQuota(json);
            if (IsPresent(json, "vol_id") && quota.valid) quotas.push_back(quota.record);
        }
        return 1;
    });
}
