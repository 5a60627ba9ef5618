#include "cloud/ZenoAPIGetPublicIPJson.h"

#include "cloud/cloudstatus.h"
#include "core/replyfields.h"

using namespace Lattice;

int CZenoAPIGetPublicIPJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        code = CloudCodeOf(root);
        status = CloudStatusOf(code);
        message = JsonText(root, "message");
        if (status == 0) publicIP = JsonText(root["result"], "public_ip");
        return 1;
    });
}
