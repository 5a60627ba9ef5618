#pragma once

#include <string>

namespace cloud {

// What "X-VEXA-CHECK" must be: the SHA-1 digest of secret, application, time and version as a client's text
// type makes of these bytes. It ends at the first zero byte, and whatever isn't UTF-8 becomes U+FFFD.
std::string checksumText(const std::string& secret, const std::string& app, const std::string& time,
                         const std::string& version);

}  // namespace cloud
