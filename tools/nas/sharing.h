#pragma once

#include <set>
#include <string>
#include <vector>

#include "calls.h"

namespace nas {

// What the calls about shares have in common.

// Shares what the command line says, each rule once in the life of the root or cluster.
void addTeams(Service& service, const Teams& teams);

// The user of a call that takes no slave prefix.
const User& userHere(Service& service, Request& request);
const User& userHere(Service& service, Request& request, const std::string& sid);

constexpr const char* kNoShare = "--------";

// Whether the shared folder is where the book says. Of another node's nothing else is known.
bool isThere(Service& service, const Share& share);
// Whether a folder that was never shared stands in its place.
bool isReplaced(Service& service, const Share& share);

// The shape, and with the node of the share at its end.
std::vector<Shape> withNas(const Shape& shape);
// "share_id", which says something.
const std::string& shareId(const Fields& fields);
// The share, of which the user is the owner. Throws Missing for strangers, Denied for members.
const Share& ownShare(const ShareBook& book, const User& user, const Fields& fields);
// Throws Missing if a "nas_id" is given that isn't the share's.
void requireNas(const Share& share, const Fields& fields);
// Throws unless the user may be invited by the owner.
void requireInvitable(Service& service, const ShareBook& book, const User& owner, const std::string& name);

// From "lower" up to "upper", which isn't among them; -1 is no end.
nlohmann::json page(const std::vector<nlohmann::json>& all, const Fields& query);

// "status" 1 and the process id as text.
Answer startedShareJob(Service& service, const Request& request, const std::string& name,
                       std::function<void(ShareBook&)> act);
// The same for a call whose reply has no process id that clients read: unless jobs are slowed down, the reply
// waits for the end and tells how it went.
Answer endedShareJob(Service& service, const Request& request, const std::string& name,
                     std::function<void(ShareBook&)> act);

// The sharing client names the session in the form as well, and no node.
void requireSameSession(const Request& request, const Fields& form);
// The shares at or below a place whose folders are there, by their ids.
std::set<std::string> sharesBelow(Service& service, const std::string& place);
// These shares went from one place to another, with their folders or with copies of them.
void followFolder(Service& service, const std::set<std::string>& shares, const std::string& from,
                  const std::string& to);
// The sharing client reads "success", and -3 as the word for what is denied.
Answer sharedRefusal(const StatusError& error);

}  // namespace nas
