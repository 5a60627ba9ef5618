#include "entry_json.h"

#include <limits>

namespace nas {

nlohmann::json entryJson(const Entry& entry) {
    nlohmann::json json = {{"filename", entry.name},
                           {"isfolder", entry.isFolder ? 1 : 0},
                           {"filesize", std::to_string(entry.size)},
                           {"exist", 1},
                           {"privilege", entry.privilege()}};
    if (entry.mtime > std::numeric_limits<int32_t>::max() ||
        entry.mtime < std::numeric_limits<int32_t>::min()) {
        json["epochmt"] = std::to_string(entry.mtime);
    } else {
        json["epochmt"] = entry.mtime;
    }
    return json;
}

}  // namespace nas
