#pragma once

#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <string>

#include "accounts.h"

namespace cloud {

// Who an access or refresh token stands for. Without a user it is the application itself.
struct Grant {
    std::string app;  // empty in a refresh token that any application may use
    std::string user;
    std::string family;  // the refresh token with which it began
    int64_t ends = 0;    // milliseconds since the epoch
};

struct Lifetimes {
    int64_t access = 3600;  // seconds
    int64_t refresh = int64_t{30} * 86400;
    bool rotate = false;  // a refresh token serves once
};

struct TokenPair {
    std::string access;
    std::string refresh;
    int64_t seconds = 0;
};

// The tokens that serve, and which of the users' first ones serve no more.
class Tokens {
public:
    TokenPair signIn(const std::string& app, const Lifetimes& lifetimes, int64_t now);
    // What a refresh token stands for in the hands of that application.
    Grant requireRefresh(const std::string& token, const std::string& app, const Accounts& accounts,
                         int64_t now) const;
    TokenPair refresh(const std::string& token, const Grant& grant, const Lifetimes& lifetimes, int64_t now);
    // A refresh token for a user who agreed to it elsewhere.
    std::string grant(const std::string& user, const Lifetimes& lifetimes, int64_t now);
    // Whom the access token stands for, in the hands of that application.
    Grant require(const std::string& access, const std::string& app, int64_t now) const;
    // Ends the access token and all tokens of its family.
    void signOut(const std::string& access, const Accounts& accounts);
    void endAccessTokens() { access_.clear(); }
    // Ends the tokens of applications and users that there are no more.
    void keepOnly(const Accounts& accounts);

private:
    using Grants = std::map<std::string, Grant>;

    TokenPair give(const Grant& grant, const std::string& refresh, const Lifetimes& lifetimes, int64_t now);
    std::string newToken(Grants& grants, Grant grant, int64_t seconds, int64_t now);

    friend void to_json(nlohmann::json& json, const Tokens& tokens);
    friend void from_json(const nlohmann::json& json, Tokens& tokens);

    Grants access_;
    Grants refresh_;
    std::set<std::string> spent_;  // first refresh tokens that were used up or signed out
};

void to_json(nlohmann::json& json, const Tokens& tokens);
void from_json(const nlohmann::json& json, Tokens& tokens);

}  // namespace cloud
