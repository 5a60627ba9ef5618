#pragma once

#include "lib_support.h"
#include "support/nginx.h"

/// Two nodes of a cluster with one set of sessions.
namespace e2e {

inline constexpr const char* kMaster = "master";
inline constexpr const char* kOther = "node2";

Nas::Options nodeOptions(const TempDir& sessions, const std::string& id, std::vector<std::string> more = {});

struct Node {
    const Nas& nas;
    std::string id;
};
/// The front end at a node, which knows both by their ids and listens with TLS as well.
Nginx frontEnd(const Node& own, const Node& other);
std::uint16_t portOf(const Nginx& front, const Road& road);

}  // namespace e2e
