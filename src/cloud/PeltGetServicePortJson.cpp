#include "cloud/PeltGetServicePortJson.h"

#include "cloud/cloudreturn.h"
#include "core/jsonfields.h"

using namespace Lattice;

int CPeltGetServicePortJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        const CloudReturn said = ReadCloudReturn(root);
        m_status = said.status();
        m_message = said.message;
        const Json::Value& mapping = said.answer["portMapping"];
        if (!mapping.isNull() && !mapping.isArray()) return -1;
        for (const Json::Value& entry : mapping) {
            if (!JsonTextIs(entry, "serviceName", "WebAdministration") || !JsonTextIs(entry, "proto", "TCP"))
                continue;
            const bool isSecured = JsonTextIs(entry, "subServiceName", "Secured");
            (isSecured ? m_internalHttpsPort : m_internalHttpPort) = JsonGetInt(entry, "internalPort", 0);
            (isSecured ? m_externalHttpsPort : m_externalHttpPort) = JsonGetInt(entry, "externalPort", 0);
        }
        m_actionTime = JsonLongText(said.answer, "actTime");
        return 1;
    });
}
