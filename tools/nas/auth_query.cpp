#include "auth_query.h"

#include "status.h"

namespace nas {

Fields decodeAuthQuery(const std::string& raw) {
    const std::string mail = "send_mail=";
    if (raw.rfind(mail, 0) == 0) {
        const size_t doubled = raw.find("&&");
        if (doubled == std::string::npos) {
            throw Refusal("the \"&\" behind query key \"send_mail\" is not doubled");
        }
        return decodeFields(std::string(raw).erase(doubled, 1), "query");
    }
    return decodeTyped(raw, "query", {"security_code", "security_answer"});
}

}  // namespace nas
