#include "state/GetUserQuotaJson.h"

#include "core/replyfields.h"

using namespace Lattice;

namespace {

/// A size such as "1.5 GB".
struct Size {
    enum Kind { Absent, Unreadable, Read } kind = Absent;
    int64_t bytes = 0;
};

Size SizeOf(const Json::Value& root, const char* key) {
    const std::wstring text = JsonLongText(root, key);
    if (text.empty()) return {};
    if (text.size() >= kJsonTextCapacity) return {Size::Unreadable};
    long long bytes = 0;
    GetSizewithString(text, bytes);
    return {Size::Read, bytes};
}

int64_t BytesOr(const Size& size, int64_t absent) {
    return size.kind == Size::Read ? size.bytes : absent;
}

/// Texts may name sizes that lie further apart than 64 bits reach.
int64_t Difference(int64_t quota, int64_t used) {
    int64_t left;
    return __builtin_sub_overflow(quota, used, &left) ? INT64_MAX : left;
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
    record.llQuotaSize = BytesOr(quota, -1);
    record.llUsedSize = BytesOr(used, -1);
    record.llAvailableSize = BytesOr(available, -1);
    const bool told = quota.kind == Size::Read && used.kind == Size::Read;
    if (available.kind == Size::Absent && told && used.bytes < quota.bytes)
        record.llAvailableSize = Difference(quota.bytes, used.bytes);
    return {record, told && available.kind != Size::Unreadable};
}

}  // namespace

int CGetUserQuotaJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        status = 0;  // this reply has none
        const Size free = SizeOf(root, "volume_free_size");
        const Size total = SizeOf(root, "volume_total_size");
        if (free.kind == Size::Unreadable || total.kind == Size::Unreadable) status = -1;
        volumeFree = BytesOr(free, 0);
        volumeTotal = BytesOr(total, 0);
        quotaEnabled = JsonGetFlag(root, "quota_enable", false);
        if (!quotaEnabled) return 1;
        if (!IsPresent(root, "quota")) {
            quotas.push_back(ReadQuota(root).record);
            return 1;
        }
        if (!root["quota"].isArray()) return -1;
        for (const Json::Value& json : root["quota"]) {
            if (!json.isObject() || !IsPresent(json, "vol_id")) continue;
            const Quota quota = ReadQuota(json);
            if (quota.valid) quotas.push_back(quota.record);
        }
        return 1;
    });
}
