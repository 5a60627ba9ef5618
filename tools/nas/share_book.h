#pragma once

#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "links.h"

namespace nas {

// What became of an invitation; the number is the "event_status" of the wire.
enum class Part { Waiting = 1, Accepted = 2, Denied = 3, Left = 4, TakenAway = 5 };

// A folder of one user that others reach as vtf://<team>/ on its node.
struct Share {
    std::string id;    // known to every node
    std::string team;  // known to its node
    std::string nas;   // the slave id of its node, empty for a lone server
    std::string owner;
    std::string path;    // as the owner names it, "/home/Plans"
    std::string folder;  // which folder that is, whatever it is called
};

// What a share is to a user; the "type", "event_type" and "nubo_type" of the wire.
enum class Role { Invited = 1, Ended = 2, Owner = 4, Receiver = 8 };

// An invitation, and what came of it.
struct Event {
    int64_t id = 0;
    std::string share;
    std::string owner;
    std::string receiver;
    std::string file;  // the owner's path, also when the share is gone
    bool readOnly = false;
    Part part = Part::Waiting;
    std::string display;  // the receiver's name for the folder
    int64_t time = 0;     // of the invitation or of what ended it
    std::set<std::string> removedBy;

    // The receiver is a member or may become one.
    bool live() const { return part == Part::Waiting || part == Part::Accepted; }
    Role roleOf(const std::string& user) const;
};

// What a user does with what others share.
enum class Policy { Ask = 0, Accept = 1, Refuse = 2 };

struct ShareSettings {
    int recycleBin = 1;
    int policy = static_cast<int>(Policy::Ask);
};

// All shares, with what users said to them, and the links. A plain value.
struct ShareBook {
    std::vector<Share> shares;
    std::vector<Event> events;
    std::vector<Link> links;
    std::map<std::string, ShareSettings> settings;
    std::set<std::string> rules;  // of the command line, carried out once
    int64_t lastEvent = 0;

    const Share* find(const std::string& id) const;
    const Share* findTeam(const std::string& nas, const std::string& team) const;
    const Event* findEvent(int64_t id) const;
    // What the user received and accepted on that node.
    std::vector<const Event*> receivedBy(const std::string& nas, const std::string& user) const;
    // The live event of that user; null if there is none.
    const Event* partIn(const std::string& share, const std::string& user) const;
    ShareSettings settingsOf(const std::string& user) const;
    // Owner or member.
    bool hasTeamFolder(const std::string& user) const;

    // The share of that folder, made if there is none; one that was lost from the path stays lost.
    Share& share(const std::string& nas, const std::string& owner, const std::string& path,
                 const std::string& folder);
    // Invites, or changes the permission of one who is invited. The receiver's policy may accept at once.
    void invite(const Share& share, const std::string& receiver, bool readOnly);
    // Throws Exists if the receiver has a folder of that name. Without a name it gets the folder's own, or a
    // free one like it.
    void accept(int64_t event, const std::string& display);
    void end(int64_t event, Part how);
    void unshare(const std::string& id);
    // The event goes from this user's list.
    void forget(int64_t event, const std::string& user);
    // The shared folder is now another one, or somewhere else.
    void relocate(const std::string& id, const std::string& path, const std::string& folder);

private:
    bool displayTaken(const std::string& user, const std::string& display) const;
    void dropOldest();
};

void to_json(nlohmann::json& json, const ShareBook& book);
void from_json(const nlohmann::json& json, ShareBook& book);

std::string leafOf(const std::string& path);
// The receiver's path: clients show team folders side by side there.
constexpr const char* kTeamArea = "/home/.Torvi";
std::string teamAreaPath(const Event& event);
// The path by which a user names something that lies at a place below the root, and back.
std::string pathFor(const std::string& user, const std::string& place);
std::string placeFor(const std::string& user, const std::string& path);

}  // namespace nas
