#include "people.h"

#include <algorithm>
#include <set>
#include <stdexcept>

#include "options.h"
#include "rule_text.h"
#include "status.h"

namespace nas {

namespace {

constexpr int64_t kLocalUsers = 1;
constexpr int64_t kDirectoryUsers = 2;

std::pair<std::string, std::string> bothOf(const std::string& rule, const std::string& wanted) {
    const auto pieces = splitRule(rule, 2);
    if (pieces.size() != 2 || pieces[0].empty() || pieces[1].empty()) {
        throw std::invalid_argument(wanted + ", not " + rule);
    }
    return {pieces[0], pieces[1]};
}

bool flagField(const Fields& query, const std::string& key) {
    const int64_t flag = numberField(query, key);
    if (flag != 0 && flag != 1) {
        throw Refusal("query key \"" + key + "\" is neither 0 nor 1");
    }
    return flag == 1;
}

}  // namespace

const Domain* Directory::find(const std::string& netbios) const {
    for (const Domain& domain : domains_) {
        if (domain.netbios == netbios) {
            return &domain;
        }
    }
    return nullptr;
}

void Directory::addDomain(const std::string& rule) {
    const auto [netbios, name] = bothOf(rule, "--directory wants NETBIOS:domain");
    if (find(netbios)) {
        throw std::invalid_argument("directory given twice: " + netbios);
    }
    domains_.push_back({netbios, name});
}

void Directory::addUser(const std::string& rule) {
    const auto [netbios, name] = bothOf(rule, "--directory-user wants NETBIOS:name");
    if (!find(netbios)) {
        throw std::invalid_argument("--directory-user of an unknown directory: " + rule);
    }
    users_[netbios + "\\" + name] = netbios;
}

void Directory::describe(const std::string& rule) {
    const auto [name, text] = bothOf(rule, "--description wants name:text");
    descriptions_[name] = text;
}

std::string Directory::domainOf(const std::string& user) const {
    const size_t slash = user.find('\\');
    const Domain* domain = slash == std::string::npos ? nullptr : find(user.substr(0, slash));
    return domain ? domain->netbios : "";
}

std::vector<Person> Directory::people(const Options& options, const std::string& netbios) const {
    std::set<std::string> names;
    for (const auto& [name, domain] : users_) {
        if (domain == netbios) {
            names.insert(name);
        }
    }
    for (const auto& [name, user] : options.users.all()) {
        if (domainOf(name) == netbios) {
            names.insert(name);
        }
    }
    std::vector<Person> people;
    for (const std::string& name : names) {
        const auto text = descriptions_.find(name);
        const bool sync = options.users.find(name) && options.identity.withoutSync.count(name) == 0;
        people.push_back({name, text == descriptions_.end() ? "" : text->second, sync});
    }
    return people;
}

std::vector<Person> choosePeople(const Options& options, const Fields& query) {
    const int64_t type = numberField(query, "user_type");
    const std::string& netbios = field(query, "netbios");
    const std::string& domain = field(query, "domain");
    if (type != kLocalUsers && type != kDirectoryUsers) {
        throw Refusal("query key \"user_type\" is neither 1 nor 2");
    }
    if (type == kLocalUsers && !(netbios.empty() && domain.empty())) {
        throw Refusal("local users are in no domain");
    }
    const auto& domains = options.directory.domains();
    const bool known = std::any_of(domains.begin(), domains.end(), [&](const Domain& one) {
        return one.netbios == netbios && one.name == domain;
    });
    if (type == kDirectoryUsers && !known) {
        throw StatusError(Status::Missing, "no domain " + netbios + " (" + domain + ")");
    }
    flagField(query, "refresh");  // what is told is always new
    const bool all = flagField(query, "all_user");
    const std::string filter = lowerCase(field(query, "filter"));
    std::vector<Person> people = options.directory.people(options, netbios);
    people.erase(std::remove_if(people.begin(), people.end(),
                                [&](const Person& person) {
                                    return (!all && !person.sync) ||
                                           lowerCase(person.name).find(filter) == std::string::npos;
                                }),
                 people.end());
    return people;
}

}  // namespace nas
