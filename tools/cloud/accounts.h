#pragma once

#include <map>
#include <string>

namespace cloud {

struct User {
    std::string mail;
    std::string displayName;
};

// The applications and users that the command line gives.
class Accounts {
public:
    // "id:secret"; "name:refresh token[:mail[:display name]]". Both throw std::invalid_argument.
    void addApp(const std::string& rule);
    void addUser(const std::string& rule);

    const std::string* findSecret(const std::string& app) const;
    const User* findUser(const std::string& name) const;
    // Whose first refresh token it is; null if it is nobody's.
    const std::string* findFirst(const std::string& refresh) const;
    const std::map<std::string, User>& users() const { return users_; }

    void requireApp(const std::string& app, const std::string& secret) const;

private:
    std::map<std::string, std::string> apps_;
    std::map<std::string, User> users_;
    std::map<std::string, std::string> first_;  // users by their first refresh tokens
};

}  // namespace cloud
