#include "users.h"

#include <openssl/crypto.h>

#include <stdexcept>

namespace nas {

bool sameSecret(const std::string& one, const std::string& other) {
    return one.size() == other.size() && CRYPTO_memcmp(one.data(), other.data(), one.size()) == 0;
}

void Users::add(const std::string& rule) {
    size_t colon = rule.find(':');
    if (colon == std::string::npos || colon == 0) {
        throw std::invalid_argument("--user wants name:password[:admin], not " + rule);
    }
    User user;
    user.name = rule.substr(0, colon);
    user.password = rule.substr(colon + 1);
    const std::string mark = ":admin";
    if (user.password.size() >= mark.size() &&
        user.password.compare(user.password.size() - mark.size(), mark.size(), mark) == 0) {
        user.admin = true;
        user.password.erase(user.password.size() - mark.size());
    }
    // The name is the name of the user's folder.
    if (user.name == "." || user.name == ".." || user.name.find('/') != std::string::npos) {
        throw std::invalid_argument("not a user name: " + user.name);
    }
    if (!users_.emplace(user.name, user).second) {
        throw std::invalid_argument("user given twice: " + user.name);
    }
}

void Users::setQuota(const std::string& rule) {
    size_t colon = rule.rfind(':');
    auto it = users_.find(rule.substr(0, colon));
    if (colon == std::string::npos || it == users_.end()) {
        throw std::invalid_argument("--quota wants name:bytes of a known user, not " + rule);
    }
    it->second.quota = std::stoll(rule.substr(colon + 1));
}

void Users::addSecondFactor(const std::string& rule) {
    size_t colon = rule.find(':');
    auto it = users_.find(rule.substr(0, colon));
    if (colon == std::string::npos || it == users_.end()) {
        throw std::invalid_argument("--second-factor wants name:factor of a known user, not " + rule);
    }
    it->second.second.add(rule.substr(colon + 1));
}

Users Users::asSeenByManager() const {
    Users users = *this;
    for (auto& [name, user] : users.users_) {
        user.seesTeamArea = true;
    }
    return users;
}

const User* Users::find(const std::string& name) const {
    auto it = users_.find(name);
    return it == users_.end() ? nullptr : &it->second;
}

const User* Users::check(const std::string& name, const std::string& password) const {
    const User* user = find(name);
    return user && sameSecret(user->password, password) ? user : nullptr;
}

}  // namespace nas
