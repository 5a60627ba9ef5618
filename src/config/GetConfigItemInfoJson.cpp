#include "config/GetConfigItemInfoJson.h"

#include "config/configitems.h"
#include "config/configreply.h"

using namespace Lattice;

namespace {

std::string Utf8Text(const Json::Value& object, const char* key) {
    return ToUtf8(JsonText(object, key)).toStdString();
}

}  // namespace

int CGetConfigItemInfoJson::Parser(char* text) {
    return ParseConfigReply(text, status, [this](const Json::Value& root) {
        deviceName = JsonText(root, "device");
        deviceUID = JsonText(root, "duid");
        total = JsonGetInt(root, "total", 0);
        return ReadObjects(root, "config", [this](const Json::Value& json) {
            const uint32_t flag = GetConfigItemFlag(Utf8Text(json, "section"), Utf8Text(json, "key"));
            if (flag != 0) items.push_back({flag, DecodedConfigValue(flag, JsonLongText(json, "value"))});
        });
    });
}
