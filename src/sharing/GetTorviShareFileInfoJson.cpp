#include "sharing/GetTorviShareFileInfoJson.h"

#include "core/qclogger.h"
#include "sharing/shareid.h"

using namespace Lattice;

int CGetTorviShareFileInfoJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        status = TranslatedStatus(root, 0);
        if (status != 0) {
            LogLine(Logger::Error, "[WFMShare] CGetTorviShareFileInfoJson: nStatus(%d) m_nStatus(%d)",
                    JsonGetInt(root, "status", 0), status);
            return 1;
        }
        // The first complaint counts.
        const auto complain = [this](uint32_t what, const char* line) {
            if (folderStatus == 0) folderStatus = what;
            if (line != nullptr) LogLine(Logger::Error, "%s", line);
        };
        fileExists = JsonGetInt(root, "file_exist", 0) == 1;
        if (!IsPresent(root, "file_exist"))
            complain(ERROR_INVALID_DATA,
                     "[WFMShare] CGetTorviShareFileInfoJson::Parser ERROR_INVALID_DATA(file_exist)");
        else if (!fileExists)
            complain(ERROR_FILE_NOT_FOUND, nullptr);
        nuboType = JsonGetInt(root, "nubo_type", 0);
        if (!IsPresent(root, "nubo_type"))
            complain(ERROR_INVALID_DATA,
                     "[WFMShare] CGetTorviShareFileInfoJson::Parser ERROR_INVALID_DATA(nubo_type)");
        eventStatus = JsonGetInt(root, "event_status", 0);
        if (!IsPresent(root, "event_status"))
            complain(ERROR_INVALID_DATA,
                     "[WFMShare] CGetTorviShareFileInfoJson::Parser ERROR_INVALID_DATA(event_status)");
        shareID = ShareIDOf(root);
        if (!IsPresent(root, "share_id"))
            complain(ERROR_INVALID_DATA,
                     "[WFMShare] CGetTorviShareFileInfoJson: ERROR_INVALID_DATA share_id is NULL");
        else if (shareID.empty() || shareID.size() >= 260)
            complain(ERROR_INVALID_DATA, nullptr);
        nasID = FieldText(root, "nas_id");
        if (BeginsWith(nasID, L"-")) nasID.clear();
        eventID = JsonGetInt(root, "event_id", 0);
        shareIDStatus = JsonGetInt(root, "share_id_status", 0);
        return 1;
    });
}
