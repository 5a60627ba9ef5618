#include "cloud/ZenoGetDeviceIDJson.h"

#include "cloud/cloudreturn.h"
#include "core/jsonfields.h"

using namespace Lattice;

int CZenoGetDeviceIDJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        const CloudReturn said = ReadCloudReturn(root);
        m_status = said.status();
        m_message = said.message;
        m_deviceID = JsonLongText(said.answer, "deviceId");
        m_actionTime = JsonLongText(said.answer, "actTime");
        return 1;
    });
}

int CZenoGetDeviceIDJson::GetCloudAPIResponseCode() const {
    return CloudResponseCode(m_message);
}
