#include <algorithm>

#include "link_place.h"

namespace nas {

namespace {

bool holds(const Link& link, const std::string& file) {
    return std::find(link.files.begin(), link.files.end(), file) != link.files.end();
}

const User& ownerOf(Service& service, const Link& link) {
    const User* owner = service.options().users.find(link.owner);
    if (!owner) {
        throw Refusal("the owner of the link is gone", 404);
    }
    return *owner;
}

// Clients ask without a session, and without the code.
Answer itemList(Service& service, Request& request, httplib::Response&) {
    const auto book = service.shares().read();
    const Link* link = findLink(*book, field(request.query, "ssid"));
    nlohmann::json datas = nlohmann::json::array();
    if (link && !link->over()) {
        for (const std::string& file : link->files) {
            try {
                const LinkItem item = openItem(service, ownerOf(service, *link), link->path, file);
                datas.push_back({{"filename", file}, {"isfolder", item.entry.isFolder ? 1 : 0}});
            } catch (const StatusError&) {
                // Gone since.
            }
        }
    }
    return {{{"total", datas.size()}, {"datas", datas}}};
}

// What a browser opens: a single file comes at once, of several the one that is asked for.
Answer openLink(Service& service, Request& request, httplib::Response& response) {
    const Fields& query = request.query;
    const auto book = service.shares().read();
    const Link* link = findLink(*book, field(query, "ssid"));
    if (!link) {
        throw Refusal("no such link", 404);
    }
    if (link->over()) {
        throw Refusal("the link has expired", 410);
    }
    const std::string code = hasField(query, "access_code") ? field(query, "access_code") : "";
    if (!link->code.empty() && !sameSecret(link->code, code)) {
        throw Refusal("the link wants its access code", 403);
    }
    const std::string file = hasField(query, "file")   ? field(query, "file")
                             : link->files.size() == 1 ? link->files[0]
                                                       : "";
    try {
        if (!file.empty()) {
            if (!holds(*link, file)) {
                throw Refusal("the link has no file " + file, 404);
            }
            const LinkItem item = openItem(service, ownerOf(service, *link), link->path, file);
            if (!item.entry.isFolder) {
                return sendFile(service.tree().openFile(item.folder, item.name), 0, response);
            }
        }
    } catch (const StatusError& error) {
        throw Refusal(error.what(), 404);
    }
    return itemList(service, request, response);
}

}  // namespace

void addLinkPageCalls(std::vector<Call>& calls) {
    addGet(calls, on(Endpoint::SharePage), {{"func=get_list", "ssid"}}, itemList);
    calls.push_back({"share",
                     on(Endpoint::SharePage),
                     "GET",
                     BodyKind::None,
                     true,
                     {{"ssid"}, {"ssid", "access_code"}, {"ssid", "file"}, {"ssid", "access_code", "file"}},
                     openLink,
                     {},
                     true,
                     true});
}

}  // namespace nas
