#include "tokens.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

#include "nas/random.h"
#include "oauth_error.h"

namespace cloud {

namespace {

constexpr size_t kTokenBytes = 20;
constexpr size_t kMostTokens = 1000;
constexpr int64_t kNever = std::numeric_limits<int64_t>::max();

template <typename Wanted>
void drop(std::map<std::string, Grant>& grants, Wanted wanted) {
    for (auto it = grants.begin(); it != grants.end();) {
        it = wanted(it->second) ? grants.erase(it) : std::next(it);
    }
}

void dropFirstToEnd(std::map<std::string, Grant>& grants) {
    grants.erase(std::min_element(grants.begin(), grants.end(), [](const auto& a, const auto& b) {
        return a.second.ends < b.second.ends;
    }));
}

}  // namespace

void to_json(nlohmann::json& json, const Grant& grant) {
    json = {{"app", grant.app}, {"user", grant.user}, {"family", grant.family}, {"ends", grant.ends}};
}

void from_json(const nlohmann::json& json, Grant& grant) {
    json.at("app").get_to(grant.app);
    json.at("user").get_to(grant.user);
    json.at("family").get_to(grant.family);
    json.at("ends").get_to(grant.ends);
}

std::string Tokens::newToken(Grants& grants, Grant grant, int64_t seconds, int64_t now) {
    drop(grants, [now](const Grant& old) { return old.ends <= now; });
    if (grants.size() >= kMostTokens) {
        dropFirstToEnd(grants);
    }
    std::string token = nas::randomHex(kTokenBytes);
    if (grant.family.empty()) {
        grant.family = token;
    }
    grant.ends = now + seconds * 1000;
    grants[token] = grant;
    return token;
}

TokenPair Tokens::give(const Grant& grant, const std::string& refresh, const Lifetimes& lifetimes,
                       int64_t now) {
    return {newToken(access_, grant, lifetimes.access, now), refresh, lifetimes.access};
}

TokenPair Tokens::signIn(const std::string& app, const Lifetimes& lifetimes, int64_t now) {
    const std::string refresh = newToken(refresh_, {app, "", "", 0}, lifetimes.refresh, now);
    return give(refresh_[refresh], refresh, lifetimes, now);
}

Grant Tokens::requireRefresh(const std::string& token, const std::string& app, const Accounts& accounts,
                             int64_t now) const {
    Grant grant;
    const auto it = refresh_.find(token);
    const std::string* user = accounts.findFirst(token);
    if (it != refresh_.end() && it->second.ends > now) {
        grant = it->second;
    } else if (user && spent_.count(token) == 0) {
        grant = {"", *user, token, kNever};
    } else {
        throw OAuthError(400, "invalid_grant", "The refresh token is unknown or expired.");
    }
    if (!grant.app.empty() && grant.app != app) {
        throw OAuthError(400, "invalid_grant", "The refresh token belongs to another client.");
    }
    grant.app = app;
    return grant;
}

TokenPair Tokens::refresh(const std::string& token, const Grant& grant, const Lifetimes& lifetimes,
                          int64_t now) {
    if (!lifetimes.rotate) {
        return give(grant, token, lifetimes, now);
    }
    if (refresh_.erase(token) == 0) {
        spent_.insert(token);
    }
    return give(grant, newToken(refresh_, grant, lifetimes.refresh, now), lifetimes, now);
}

std::string Tokens::grant(const std::string& user, const Lifetimes& lifetimes, int64_t now) {
    return newToken(refresh_, {"", user, "", 0}, lifetimes.refresh, now);
}

Grant Tokens::require(const std::string& access, const std::string& app, int64_t now) const {
    const auto it = access_.find(access);
    if (it == access_.end() || it->second.ends <= now) {
        throw OAuthError(401, "invalid_token", "The access token is unknown or expired.");
    }
    if (it->second.app != app) {
        throw OAuthError(403, "access_denied", "The access token belongs to another client.");
    }
    return it->second;
}

void Tokens::signOut(const std::string& access, const Accounts& accounts) {
    const std::string family = access_.at(access).family;
    const auto related = [&](const Grant& grant) { return grant.family == family; };
    drop(access_, related);
    drop(refresh_, related);
    if (accounts.findFirst(family)) {
        spent_.insert(family);
    }
}

void Tokens::keepOnly(const Accounts& accounts) {
    const auto orphaned = [&](const Grant& grant) {
        return (!grant.app.empty() && !accounts.findSecret(grant.app)) ||
               (!grant.user.empty() && !accounts.findUser(grant.user));
    };
    drop(access_, orphaned);
    drop(refresh_, orphaned);
}

void to_json(nlohmann::json& json, const Tokens& tokens) {
    json = {{"access", tokens.access_}, {"refresh", tokens.refresh_}, {"spent", tokens.spent_}};
}

void from_json(const nlohmann::json& json, Tokens& tokens) {
    json.at("access").get_to(tokens.access_);
    json.at("refresh").get_to(tokens.refresh_);
    json.at("spent").get_to(tokens.spent_);
}

}  // namespace cloud
