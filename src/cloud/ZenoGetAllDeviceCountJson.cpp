#include "cloud/ZenoGetAllDeviceCountJson.h"

#include <algorithm>

#include "cloud/cloudstatus.h"
#include "core/replyfields.h"

using namespace Lattice;

int CZenoGetAllDeviceCountJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        code = CloudCodeOf(root);
        status = CloudStatusOf(code);
        if (status == 0) count = std::max(0, JsonGetInt(root, "result", 0));
        return 1;
    });
}
