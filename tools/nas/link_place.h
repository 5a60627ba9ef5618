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

// Of whatever node; null for an unknown one.
const Link* findLink(const ShareBook& book, const std::string& ssid);

}  // namespace nas
