#include "state/GetNASStaticInfoJson.h"

#include "core/replyfields.h"

using namespace Lattice;

int CTorviGetNASStaticInfoJson::Parser(char* text) {
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        status = TranslatedStatus(root, -1);
        model = JsonText(root, "model");
        firmwareVersion = JsonText(root, "fw_version");
        queueLimit = JsonGetSize(root, "queue_num_limit", 0);
        messageQueueLimit = JsonGetSize(root, "msg_queue_num_limit", 0);
        return 1;
    });
}
