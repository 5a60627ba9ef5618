#pragma once

#include <json/value.h>

#include <string>
#include <vector>

namespace Lattice {

/// What the services that are asked by checksum say in front of their answer:
/// {"return":{"StatusCode":{"code":"200","message":"..."},...}}, or both keys in "return" itself.
struct CloudReturn {
    int httpCode = 0;  ///< 0 if there is none
    std::wstring message;
    Json::Value answer;  ///< "return", with the other keys; null if there is none

    int status() const { return httpCode == 200 ? 0 : -1; }
};

/// May raise the JSON library's error.
CloudReturn ReadCloudReturn(const Json::Value& root);

/// What a message of theirs means.
struct CloudResponse {
    const wchar_t* message;
    int code;
};

/// The code of a message, by the ones that all of them have and those of one service alone; 1 for any other.
int CloudResponseCode(const std::wstring& message, const std::vector<CloudResponse>& ownMessages = {});

}  // namespace Lattice
