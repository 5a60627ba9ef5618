#include "teams.h"

#include <stdexcept>

namespace nas {

void Teams::add(const std::string& rule) {
    size_t first = rule.find(":/");
    size_t second = first == std::string::npos ? first : rule.find(':', first + 1);
    if (second == std::string::npos || first == 0 || second + 1 == rule.size()) {
        throw std::invalid_argument("--team wants owner:/path:receiver[:ro], not " + rule);
    }
    std::string owner = rule.substr(0, first);
    std::string path = rule.substr(first + 1, second - first - 1);
    std::string receiver = rule.substr(second + 1);
    bool readOnly = receiver.size() > 3 && receiver.compare(receiver.size() - 3, 3, ":ro") == 0;
    if (readOnly) {
        receiver.erase(receiver.size() - 3);
    }
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    std::string leaf = path.substr(path.rfind('/') + 1);
    if (leaf.empty()) {
        throw std::invalid_argument("a team folder needs a name: " + rule);
    }
    for (Team& team : teams_) {
        if (team.owner == owner && team.path == path) {
            team.receivers[receiver] = readOnly;
            return;
        }
    }
    teams_.push_back({owner, path, {{receiver, readOnly}}});
}

}  // namespace nas
