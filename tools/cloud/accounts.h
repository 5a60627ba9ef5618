#pragma once

#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

namespace cloud {

struct User {
    std::string mail;
    std::string displayName;
    bool suspended = false;
};

// Who an access or refresh token stands for. Without a user it is the application itself.
struct Grant {
    std::string app;  // empty in a refresh token that any application may use
    std::string user;
    std::string refresh;  // the refresh token beside an access token
    int64_t ends = 0;     // milliseconds since the epoch
};

// A refusal in the words of OAuth.
class OAuthError : public std::runtime_error {
public:
    OAuthError(int http, const std::string& error, const std::string& why)
        : std::runtime_error(why), http_(http), error_(error) {}
    int http() const { return http_; }
    const std::string& error() const { return error_; }

private:
    int http_;
    std::string error_;
};

struct Lifetimes {
    int64_t access = 3600;  // seconds
    int64_t refresh = 30 * 86400;
    bool rotate = false;  // a refresh token serves once
};

struct TokenPair {
    std::string access;
    std::string refresh;
    int64_t seconds = 0;
};

// Applications, users and their tokens.
class Accounts {
public:
    // "id:secret"; "name:refresh token[:mail[:display name]]". Both throw std::invalid_argument.
    void addApp(const std::string& rule);
    void addUser(const std::string& rule);

    const std::string* findSecret(const std::string& app) const;
    User* findUser(const std::string& name);
    const std::map<std::string, User>& users() const { return users_; }

    void requireApp(const std::string& app, const std::string& secret) const;
    TokenPair signIn(const std::string& app, const Lifetimes& lifetimes, int64_t now);
    TokenPair refresh(const std::string& app, const std::string& token, const Lifetimes& lifetimes,
                      int64_t now);
    // A refresh token for a user who agreed to it elsewhere.
    std::string grant(const std::string& user, const Lifetimes& lifetimes, int64_t now);
    // Whom the access token stands for, in the hands of that application.
    const Grant& require(const std::string& access, const std::string& app, int64_t now) const;
    // Ends the access token and the refresh token behind it.
    void signOut(const std::string& access);
    void endAccessTokens() { access_.clear(); }

    nlohmann::json toJson() const;
    void load(const nlohmann::json& json);

private:
    TokenPair give(const Grant& grant, const std::string& refresh, const Lifetimes& lifetimes, int64_t now);

    std::map<std::string, std::string> apps_;
    std::map<std::string, User> users_;
    std::map<std::string, Grant> access_;
    std::map<std::string, Grant> refresh_;
};

}  // namespace cloud
