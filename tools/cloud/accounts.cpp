#include "accounts.h"

#include <limits>
#include <vector>

#include "nas/random.h"

namespace cloud {

namespace {

constexpr size_t kTokenBytes = 20;
constexpr int64_t kNever = std::numeric_limits<int64_t>::max();

// At most so many pieces; the last one takes the rest.
std::vector<std::string> split(const std::string& rule, size_t most) {
    std::vector<std::string> pieces;
    size_t from = 0;
    for (size_t colon = 0; pieces.size() + 1 < most && (colon = rule.find(':', from)) != std::string::npos;
         from = colon + 1) {
        pieces.push_back(rule.substr(from, colon - from));
    }
    pieces.push_back(rule.substr(from));
    return pieces;
}

void dropEnded(std::map<std::string, Grant>& grants, int64_t now) {
    for (auto it = grants.begin(); it != grants.end();) {
        it = it->second.ends <= now ? grants.erase(it) : std::next(it);
    }
}

nlohmann::json grantsToJson(const std::map<std::string, Grant>& grants) {
    nlohmann::json all = nlohmann::json::object();
    for (const auto& [token, grant] : grants) {
        all[token] = {
            {"app", grant.app}, {"user", grant.user}, {"refresh", grant.refresh}, {"ends", grant.ends}};
    }
    return all;
}

std::map<std::string, Grant> grantsFromJson(const nlohmann::json& all) {
    std::map<std::string, Grant> grants;
    for (const auto& [token, grant] : all.items()) {
        grants[token] = {grant.at("app"), grant.at("user"), grant.at("refresh"), grant.at("ends")};
    }
    return grants;
}

}  // namespace

void Accounts::addApp(const std::string& rule) {
    const auto pieces = split(rule, 2);
    if (pieces.size() != 2 || pieces[0].empty() || pieces[1].empty()) {
        throw std::invalid_argument("--app wants id:secret, not " + rule);
    }
    apps_[pieces[0]] = pieces[1];
}

void Accounts::addUser(const std::string& rule) {
    const auto pieces = split(rule, 4);
    if (pieces.size() < 2 || pieces[0].empty() || pieces[1].empty()) {
        throw std::invalid_argument("--user wants name:refresh-token[:mail[:display name]], not " + rule);
    }
    const std::string& name = pieces[0];
    users_[name] = {pieces.size() > 2 ? pieces[2] : name + "@cloud.example",
                    pieces.size() > 3 ? pieces[3] : name};
    refresh_[pieces[1]] = {"", name, "", kNever};
}

const std::string* Accounts::findSecret(const std::string& app) const {
    const auto it = apps_.find(app);
    return it == apps_.end() ? nullptr : &it->second;
}

User* Accounts::findUser(const std::string& name) {
    const auto it = users_.find(name);
    return it == users_.end() ? nullptr : &it->second;
}

void Accounts::requireApp(const std::string& app, const std::string& secret) const {
    const std::string* known = findSecret(app);
    if (!known || *known != secret) {
        throw OAuthError(401, "invalid_client",
                         known ? "The client secret is wrong." : "The client is unknown.");
    }
}

TokenPair Accounts::give(const Grant& grant, const std::string& refresh, const Lifetimes& lifetimes,
                         int64_t now) {
    dropEnded(access_, now);
    dropEnded(refresh_, now);
    TokenPair pair{nas::randomHex(kTokenBytes), refresh, lifetimes.access};
    if (pair.refresh.empty()) {
        pair.refresh = nas::randomHex(kTokenBytes);
        refresh_[pair.refresh] = {grant.app, grant.user, "", now + lifetimes.refresh * 1000};
    }
    access_[pair.access] = {grant.app, grant.user, pair.refresh, now + lifetimes.access * 1000};
    return pair;
}

TokenPair Accounts::signIn(const std::string& app, const Lifetimes& lifetimes, int64_t now) {
    return give({app, "", "", 0}, "", lifetimes, now);
}

TokenPair Accounts::refresh(const std::string& app, const std::string& token, const Lifetimes& lifetimes,
                            int64_t now) {
    const auto it = refresh_.find(token);
    if (it == refresh_.end() || it->second.ends <= now) {
        throw OAuthError(400, "invalid_grant", "The refresh token is unknown or expired.");
    }
    Grant grant = it->second;
    if (!grant.app.empty() && grant.app != app) {
        throw OAuthError(400, "invalid_grant", "The refresh token belongs to another client.");
    }
    const User* user = findUser(grant.user);
    if (!grant.user.empty() && (!user || user->suspended)) {
        throw OAuthError(403, "access_denied", "The account is suspended.");
    }
    grant.app = app;
    if (lifetimes.rotate) {
        refresh_.erase(it);
    }
    return give(grant, lifetimes.rotate ? "" : token, lifetimes, now);
}

std::string Accounts::grant(const std::string& user, const Lifetimes& lifetimes, int64_t now) {
    if (!findUser(user)) {
        throw std::invalid_argument("no user \"" + user + "\"");
    }
    const std::string token = nas::randomHex(kTokenBytes);
    refresh_[token] = {"", user, "", now + lifetimes.refresh * 1000};
    return token;
}

const Grant& Accounts::require(const std::string& access, const std::string& app, int64_t now) const {
    const auto it = access_.find(access);
    if (it == access_.end() || it->second.ends <= now) {
        throw OAuthError(401, "invalid_token", "The access token is unknown or expired.");
    }
    if (it->second.app != app) {
        throw OAuthError(403, "access_denied", "The access token belongs to another client.");
    }
    return it->second;
}

void Accounts::signOut(const std::string& access) {
    const auto it = access_.find(access);
    if (it != access_.end()) {
        const std::string refresh = it->second.refresh;
        refresh_.erase(refresh);
        for (auto other = access_.begin(); other != access_.end();) {
            other = other->second.refresh == refresh ? access_.erase(other) : std::next(other);
        }
    }
}

nlohmann::json Accounts::toJson() const {
    nlohmann::json users = nlohmann::json::object();
    for (const auto& [name, user] : users_) {
        users[name] = user.suspended;
    }
    return {{"users", users}, {"access", grantsToJson(access_)}, {"refresh", grantsToJson(refresh_)}};
}

void Accounts::load(const nlohmann::json& json) {
    // A first refresh token that was used up or signed out isn't good again after a restart.
    for (auto it = refresh_.begin(); it != refresh_.end();) {
        it = json.at("users").contains(it->second.user) ? refresh_.erase(it) : std::next(it);
    }
    refresh_.merge(grantsFromJson(json.at("refresh")));
    access_ = grantsFromJson(json.at("access"));
    for (auto& [name, user] : users_) {
        user.suspended = json.at("users").value(name, false);
    }
}

}  // namespace cloud
