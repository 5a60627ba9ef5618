#include "json_text.h"

namespace nas {

std::string dumped(const nlohmann::json& json) {
    return json.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace nas
