#include "auth_query.h"

#include <algorithm>

#include "status.h"

namespace nas {

namespace {

// What URLs hold unencoded in a query, beside letters, digits and the "?" that the relay encodes.
const std::string kTyped = "-._~!$'()*+,;=:@/[]";

// Encodes what was typed, so that the strict decoder takes it.
std::string typedEncoded(const std::string& value) {
    static const char* const digits = "0123456789ABCDEF";
    std::string out;
    for (char c : value) {
        if (kTyped.find(c) == std::string::npos) {
            out += c;
        } else {
            out += {'%', digits[static_cast<unsigned char>(c) >> 4], digits[c & 15]};
        }
    }
    return out;
}

}  // namespace

Fields decodeAuthQuery(const std::string& raw) {
    const std::string mail = "send_mail=";
    if (raw.rfind(mail, 0) == 0) {
        const size_t doubled = raw.find("&&");
        if (doubled == std::string::npos) {
            throw Refusal("the \"&\" behind query key \"send_mail\" is not doubled");
        }
        return decodeFields(std::string(raw).erase(doubled, 1), "query");
    }
    for (const std::string& key : {std::string("security_code="), std::string("security_answer=")}) {
        if (raw.rfind(key, 0) == 0) {
            const size_t end = std::min(raw.find('&'), raw.size());
            return decodeFields(
                key + typedEncoded(raw.substr(key.size(), end - key.size())) + raw.substr(end), "query");
        }
    }
    return decodeFields(raw, "query");
}

}  // namespace nas
