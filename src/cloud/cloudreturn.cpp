#include "cloud/cloudreturn.h"

#include <cwchar>

#include "core/replyfields.h"

namespace Lattice {

namespace {

constexpr int kOtherMessage = 1;

/// The services say by their messages alone what went wrong.
constexpr CloudResponse kMessages[] = {
    {L"Access successfully.", 0},
    {L"X-VEXA-TIME is invalid.", 2},
    {L"The device is not found.", 5},
    {L"The app id is not found.", 7},
    {L"The checksum X-VEXA-CHECK is invalid.", 8},
};

}  // namespace

CloudReturn ReadCloudReturn(const Json::Value& root) {
    CloudReturn said;
    said.answer = root["return"];
    const bool isNested = IsPresent(said.answer, "StatusCode");
    const Json::Value status = isNested ? said.answer["StatusCode"] : said.answer;
    said.httpCode = static_cast<int>(std::wcstol(JsonText(status, "code").c_str(), nullptr, 10));
    said.message = JsonLongText(status, "message");
    return said;
}

int CloudResponseCode(const std::wstring& message, const std::vector<CloudResponse>& ownMessages) {
    for (const CloudResponse& known : kMessages) {
        if (message == known.message) return known.code;
    }
    for (const CloudResponse& known : ownMessages) {
        if (message == known.message) return known.code;
    }
    return kOtherMessage;
}

}  // namespace Lattice
