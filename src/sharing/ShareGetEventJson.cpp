#include "sharing/ShareGetEventJson.h"

#include "core/qclogger.h"
#include "core/replyfields.h"

using namespace Lattice;

int CShareGetEventJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return 1;
        status = TranslatedStatus(root, 0);
        if (status != 0)
            LogLine(Logger::Error, "[WFMShare] CShareGetEventJson: Status(%d) m_nStatus(%d)",
                    JsonGetInt(root, "status", 0), status);
        const int told = JsonGetInt(root, "total", 0);
        if (told < 1) return 1;
        total = static_cast<uint32_t>(told);
        if (!IsPresent(root, "event")) return 1;
        if (!root["event"].isArray()) return -1;
        for (const Json::Value& json : root["event"]) {
            if (!json.isObject() || number++ >= room) continue;
            _WFM_TORVI_EVENT_INFORMATION event{};
            event.nEventID = JsonGetInt(json, "event_id", 0);
            CopyTextCut(event.szTargetName, JsonText(json, "target_name"));
            event.nEventType = JsonGetInt(json, "event_type", 0);
            event.nEventStatus = JsonGetInt(json, "event_status", 0);
            CopyText(event.szShareID, JsonText(json, "share_id"));
            CopyTextCut(event.szFile, JsonText(json, "file"));
            CopyTextCut(event.szDate, JsonText(json, "date"));
            CopyTextCut(event.szTime, JsonText(json, "time"));
            events.push_back(event);
        }
        return 1;
    });
}
