#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "second_factor.h"

namespace nas {

struct User {
    std::string name;
    std::string password;
    bool admin = false;
    int64_t quota = -1;  // bytes that the home may hold; -1 is no limit
    // By way of the file manager, whose clients leave paths of the team area as they are.
    bool seesTeamArea = false;
    SecondFactor second;
};

// Takes as long whether they differ early or late.
bool sameSecret(const std::string& one, const std::string& other);

class Users {
public:
    // "name:password" or "name:password:admin". Throws std::invalid_argument.
    void add(const std::string& rule);
    // "name:bytes".
    void setQuota(const std::string& rule);
    // "name:" and what SecondFactor takes.
    void addSecondFactor(const std::string& rule);

    // The same users, who come by way of the file manager.
    Users asSeenByManager() const;

    const User* find(const std::string& name) const;
    // The user, if the password is right.
    const User* check(const std::string& name, const std::string& password) const;
    const std::map<std::string, User>& all() const { return users_; }

private:
    std::map<std::string, User> users_;
};

}  // namespace nas
