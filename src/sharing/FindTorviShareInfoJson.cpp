#include "sharing/FindTorviShareInfoJson.h"

#include "sharing/shareid.h"

using namespace Lattice;

namespace {

constexpr int kShareEvent = 4;

bool LiesBelow(const std::wstring& file, const std::wstring& filter) {
    return ToQString(file).startsWith(ToQString(filter), Qt::CaseInsensitive);
}

}  // namespace

int CFindTorviShareInfoJson::Parser(char* text) {
    if (filter.empty()) return -1;
    filter = WithTrailingSlash(filter);
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        status = TranslatedStatus(root, 0);
        if (status != 0 || JsonGetInt(root, "total", 0) == 0 || !IsPresent(root, "event")) return 1;
        if (!root["event"].isArray()) return -1;
        for (const Json::Value& json : root["event"]) {
            if (!json.isObject()) continue;
            const std::wstring file = JsonText(json, "file");
            if (file.empty() || !LiesBelow(file, filter)) continue;
            if (!IsPresent(json, "event_type") || JsonGetInt(json, "event_type", 0) != kShareEvent) continue;
            if (!IsPresent(json, "event_status")) continue;
            _WFM_TORVI_SHARE_INFORMATION share{};
            if (!CopyText(share.szShareID, ShareIDOf(json)) || share.szShareID[0] == L'\0') continue;
            share.nEventType = kShareEvent;
            share.nEventStatus = JsonGetInt(json, "event_status", 0);
            CopyTextCut(share.szFile, file);
            shares.push_back(share);
        }
        return 1;
    });
}
