#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace nas {

// Files of one folder that anybody may fetch who knows the address, and the code if there is one.
struct Link {
    std::string ssid;
    std::string owner;
    std::string nas;   // the slave id of its node
    std::string path;  // of the folder, as the owner names it
    std::vector<std::string> files;
    std::string name;
    std::string url;
    std::string code;
    int64_t expires = kNever;

    static constexpr int64_t kNever = -1;
    bool over() const;
    // "2026/12/31 18:00" or another format, empty for never.
    std::string expireText(const char* format = "%Y/%m/%d %H:%M") const;
};

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(Link, ssid, owner, nas, path, files, name, url, code, expires)

}  // namespace nas
