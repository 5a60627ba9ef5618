#include "sharing/WebFileManCreateLinkXml.h"

#include "core/replyfields.h"

using namespace Lattice;

int CWebFileManCreateLinkXml::Parser(char* text) {
    constexpr int kMailFailed = 6;
    constexpr int kTimeFailed = 7;
    constexpr size_t kLongestResult = 259;
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return -1;
        if (JsonGetInt(root, "status", 0) == 1) status = 0;
        if (JsonGetInt(root, "email_error", 0) == 1) status = kMailFailed;
        if (JsonGetInt(root, "time_error", 0) == 1) status = kTimeFailed;
        result = JsonLongText(root, "result").substr(0, kLongestResult);
        return 1;
    });
}
