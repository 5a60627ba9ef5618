#include "cloud/PeltGetNASInfoJson.h"

#include "cloud/cloudreturn.h"
#include "core/jsonfields.h"

using namespace Lattice;

int CPeltGetNASInfoJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        const CloudReturn said = ReadCloudReturn(root);
        m_httpCode = said.httpCode;
        m_status = said.status();
        m_message = said.message;
        m_vlinkID = JsonLongText(said.answer, "vlinkId");
        m_vlinkType = JsonLongText(said.answer, "vlinkType");
        m_vlinkVersion = JsonLongText(said.answer, "vlinkVersion");
        m_lanIPs = JsonLongText(said.answer, "lanIp");
        m_gatewayIP = JsonLongText(said.answer, "lanGW");
        m_wanIP = JsonLongText(said.answer, "wanIp");
        m_actionTime = JsonLongText(said.answer, "actTime");
        return 1;
    });
}

int CPeltGetNASInfoJson::GetCloudAPIResponseCode() const {
    return CloudResponseCode(m_message, {{L"Get device name failed.", 5},
                                         {L"The device status is not found.", 5},
                                         {L"Get device failed.", 5},
                                         {L"The vlink configuration is not found.", 6}});
}
