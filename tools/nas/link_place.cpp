#include "link_place.h"

#include <algorithm>

namespace nas {

std::string wholePath(const Link& link, const std::string& item) {
    return item.find('/') == std::string::npos ? link.path + "/" + item : item;
}

LinkItem openItem(Service& service, const User& owner, const std::string& whole) {
    const size_t slash = whole.rfind('/');
    LinkItem found;
    if (slash == std::string::npos || slash == 0) {
        throw StatusError(Status::Missing, "no path: " + whole);
    }
    if (whole.substr(0, slash) == "vtf:/") {
        found.folder = service.tree().open(owner, whole);
    } else {
        found.folder = service.tree().open(owner, whole.substr(0, slash));
        found.name = whole.substr(slash + 1);
    }
    const std::optional<Entry> entry = service.tree().lookup(owner, found.folder, found.name);
    if (!entry) {
        throw StatusError(Status::Missing, "nothing at " + whole);
    }
    found.entry = *entry;
    return found;
}

std::string shownName(const Link& link) {
    return leafOf(link.files[0].empty() ? link.path : link.files[0]);
}

const Link* findLink(const ShareBook& book, const std::string& ssid) {
    const auto it = std::find_if(book.links.begin(), book.links.end(),
                                 [&](const Link& link) { return link.ssid == ssid; });
    return it == book.links.end() ? nullptr : &*it;
}

std::vector<Link> ownLinks(Service& service, const User& user, const std::vector<std::string>& ssids) {
    const auto book = service.shares().read();
    std::vector<Link> links;
    for (const std::string& ssid : ssids) {
        const Link* link = findLink(*book, ssid);
        if (!link || link->owner != user.name) {
            throw StatusError(Status::Missing, user.name + " has no link " + ssid);
        }
        links.push_back(*link);
    }
    if (links.empty()) {
        throw StatusError(Status::Missing, "no link is named");
    }
    return links;
}

}  // namespace nas
