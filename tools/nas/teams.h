#pragma once

#include <map>
#include <string>
#include <vector>

namespace nas {

// A folder that the command line shares.
struct Team {
    std::string owner;
    std::string path;                       // as the owner names it, "/home/Plans"
    std::map<std::string, bool> receivers;  // name, and whether for reading only
};

class Teams {
public:
    // "owner:/path:receiver" or "owner:/path:receiver:ro". Throws std::invalid_argument.
    void add(const std::string& rule);
    const std::vector<Team>& all() const { return teams_; }

private:
    std::vector<Team> teams_;
};

}  // namespace nas
