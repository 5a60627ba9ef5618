#include "config/GetConfigNotifyItemInfoJson.h"

#include "config/configreply.h"
#include "core/qclogger.h"

using namespace Lattice;

namespace {

bool Differs(const std::wstring& told, const std::wstring& asked) {
    return !asked.empty() && told != asked;
}

}  // namespace

int CGetConfigNotifyItemInfoJson::Parser(char* text) {
    return ParseConfigReply(text, status, [this](const Json::Value& root) {
        count = JsonGetInt(root, "count", 0);
        return ReadObjects(root, "event", [this](const Json::Value& json) {
            _GET_CONFIG_NOTIFY_ITEM_INFO event;
            event.eventID = std::stoi(JsonText(json, "event_id"));
            event.user = JsonText(json, "event_user");
            event.deviceUID = JsonText(json, "event_duid");
            if (Differs(event.user, user)) {
                LogLine(Logger::Error,
                        "[WFMShare] CGetConfigNotifyItemInfoJson::Parser username not match(%ls)(%ls)",
                        event.user.c_str(), user.c_str());
                return;
            }
            if (Differs(event.deviceUID, deviceUID)) {
                LogLine(Logger::Error,
                        "[WFMShare] CGetConfigNotifyItemInfoJson::Parser deviceUID not match(%ls)(%ls)",
                        event.deviceUID.c_str(), deviceUID.c_str());
                return;
            }
            event.action = JsonText(json, "event_action");
            event.type = JsonText(json, "event_type");
            event.status = JsonText(json, "event_status");
            event.time = JsonText(json, "event_time");
            event.modifier = JsonText(json, "event_modifier");
            event.value = JsonText(json, "event_value");
            events.push_back(std::move(event));
        });
    });
}
