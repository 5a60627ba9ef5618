#include "accounts.h"

#include <stdexcept>

#include "nas/rule_text.h"
#include "oauth_error.h"

namespace cloud {

namespace {

template <typename Value>
const Value* findIn(const std::map<std::string, Value>& map, const std::string& key) {
    const auto it = map.find(key);
    return it == map.end() ? nullptr : &it->second;
}

}  // namespace

void Accounts::addApp(const std::string& rule) {
    const auto pieces = nas::splitRule(rule, 2);
    if (pieces.size() != 2 || pieces[0].empty() || pieces[1].empty()) {
        throw std::invalid_argument("--app wants id:secret, not " + rule);
    }
    apps_[pieces[0]] = pieces[1];
}

void Accounts::addUser(const std::string& rule) {
    const auto pieces = nas::splitRule(rule, 4);
    if (pieces.size() < 2 || pieces[0].empty() || pieces[1].empty()) {
        throw std::invalid_argument("--user wants name:refresh-token[:mail[:display name]], not " + rule);
    }
    const std::string& name = pieces[0];
    users_[name] = {pieces.size() > 2 ? pieces[2] : name + "@cloud.example",
                    pieces.size() > 3 ? pieces[3] : name};
    first_[pieces[1]] = name;
}

const std::string* Accounts::findSecret(const std::string& app) const {
    return findIn(apps_, app);
}

const User* Accounts::findUser(const std::string& name) const {
    return findIn(users_, name);
}

const std::string* Accounts::findFirst(const std::string& refresh) const {
    return findIn(first_, refresh);
}

void Accounts::requireApp(const std::string& app, const std::string& secret) const {
    const std::string* known = findSecret(app);
    if (!known || *known != secret) {
        throw OAuthError(401, "invalid_client",
                         known ? "The client secret is wrong." : "The client is unknown.");
    }
}

}  // namespace cloud
