#include "common_control.h"

#include "faults.h"
#include "ledger.h"

namespace nas {

std::optional<nlohmann::json> runCommonControl(Faults& faults, Ledger& ledger, const std::string& what,
                                               const std::string& body) {
    if (what == "GET /control/faults") {
        return nlohmann::json{{"faults", faults.toJson()}};
    }
    if (what == "POST /control/faults") {
        return nlohmann::json{{"id", faults.arm(parseFault(nlohmann::json::parse(body)))}};
    }
    if (what == "DELETE /control/faults") {
        faults.clear();
        return nlohmann::json::object();
    }
    if (what == "GET /control/requests") {
        return ledger.toJson();
    }
    if (what == "DELETE /control/requests") {
        ledger.clear();
        return nlohmann::json::object();
    }
    return std::nullopt;
}

}  // namespace nas
