#pragma once

#include "links.h"
#include "sharing.h"

namespace nas {

// A file or folder that a link holds; the name is empty for the root of a team folder.
struct LinkItem {
    Folder folder;
    std::string name;
    Entry entry;
};

// An item is a name in the folder of the link, or a whole path.
std::string wholePath(const Link& link, const std::string& item);
// By the owner's eyes. Throws Missing.
LinkItem openItem(Service& service, const User& owner, const std::string& whole);
// Its first file's; of a team folder as a whole there is nothing but the path.
std::string shownName(const Link& link);

// Of whatever node; null for an unknown one.
const Link* findLink(const ShareBook& book, const std::string& ssid);
// The user's own, at least one. Throws Missing.
std::vector<Link> ownLinks(Service& service, const User& user, const std::vector<std::string>& ssids);

}  // namespace nas
