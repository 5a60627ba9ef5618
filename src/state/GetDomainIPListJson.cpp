#include "state/GetDomainIPListJson.h"

#include "core/replyfields.h"

using namespace Lattice;

int CGetDomainIPListJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        status = TranslatedStatus(root, -1);
        peltnetHostName = JsonText(root, "peltnet_hn");
        ddnsHostName = JsonText(root, "ddns_hn");
        externalIP = JsonText(root, "external_ip");
        localIP = JsonText(root, "local_ip");
        hostIP = JsonText(root, "host_ip");
        localIPList = JsonLongText(root, "local_ip_list");
        port = JsonGetInt(root, "port", 0);
        sslPort = JsonGetInt(root, "sslPort", 0);
        extPort = JsonGetInt(root, "extPort", 0);
        extSslPort = JsonGetInt(root, "extSslPort", 0);
        return 1;
    });
}
