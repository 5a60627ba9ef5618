#pragma once

#include <map>
#include <string>
#include <vector>

#include "wire_text.h"

namespace nas {

struct Options;

// A domain of a directory service.
struct Domain {
    std::string netbios;
    std::string name;
};

struct Person {
    std::string name;
    std::string description;
    bool sync = false;  // has an account that may sync
};

// Whom the server knows besides its accounts. Users of a directory are called NETBIOS\name; with an account
// of that name they can log in.
class Directory {
public:
    // "NETBIOS:domain". Throws std::invalid_argument.
    void addDomain(const std::string& rule);
    // "NETBIOS:name".
    void addUser(const std::string& rule);
    // "name:text", of anybody.
    void describe(const std::string& rule);

    const std::vector<Domain>& domains() const { return domains_; }
    // Of one domain by name, or of none if it is empty.
    std::vector<Person> people(const Options& options, const std::string& netbios) const;

private:
    const Domain* find(const std::string& netbios) const;
    std::string domainOf(const std::string& user) const;

    std::vector<Domain> domains_;
    std::map<std::string, std::string> users_;  // full name, domain
    std::map<std::string, std::string> descriptions_;
};

// The people that a query asks for by "user_type" and the rest. Throws Missing for an unknown domain.
std::vector<Person> choosePeople(const Options& options, const Fields& query);

}  // namespace nas
