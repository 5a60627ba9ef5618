#include "change_log.h"
#include "link_place.h"

namespace nas {

namespace {

const User& ownerOf(Service& service, const Link& link) {
    const User* owner = service.findUser(Endpoint::SharePage, link.owner);
    if (!owner) {
        throw Refusal("the owner of the link is gone", 404);
    }
    return *owner;
}

// The links of this node's files.
const Link* linkHere(Service& service, const ShareBook& book, const std::string& ssid) {
    const Link* link = findLink(book, ssid);
    return link && link->nas == service.shares().nas() ? link : nullptr;
}

Answer listed(const nlohmann::json& datas) {
    return {{{"total", datas.size()}, {"datas", datas}}};
}

Answer linkedItems(Service& service, const Link& link) {
    nlohmann::json datas = nlohmann::json::array();
    for (const std::string& file : link.files) {
        try {
            const LinkItem item = openItem(service, ownerOf(service, link), wholePath(link, file));
            const std::string name = file.empty() ? leafOf(link.path) : file;
            datas.push_back({{"filename", name}, {"isfolder", item.entry.isFolder ? 1 : 0}});
        } catch (const StatusError&) {
            // Gone since.
        }
    }
    return listed(datas);
}

// Clients ask without a session, and without the code.
Answer itemList(Service& service, Request& request, httplib::Response&) {
    const auto book = service.shares().read();
    const Link* link = linkHere(service, *book, field(request.query, "ssid"));
    return link && !link->over() ? linkedItems(service, *link) : listed(nlohmann::json::array());
}

// Of an item of the link, or of what lies below one.
std::string pathOf(const Link& link, const std::string& file) {
    for (const std::string& item : link.files) {
        if (liesBelow(file, item)) {
            return wholePath(link, item) + file.substr(item.size());
        }
    }
    throw Refusal("the link has no file " + file, 404);
}

Answer openFile(Service& service, const Link& link, const std::string& file, httplib::Response& response) {
    const User& owner = ownerOf(service, link);
    const std::string path = pathOf(link, file);
    const LinkItem item = openItem(service, owner, path);
    if (!item.entry.isFolder) {
        return sendFile(service.tree().openFile(item.folder, item.name), 0, response);
    }
    const std::string above = file.empty() ? "" : file + "/";
    nlohmann::json datas = nlohmann::json::array();
    for (const Entry& entry : service.tree().list(owner, service.tree().open(owner, path))) {
        datas.push_back({{"filename", above + entry.name}, {"isfolder", entry.isFolder ? 1 : 0}});
    }
    return listed(datas);
}

// What a browser opens: a single item comes at once, of several the one that is asked for.
Answer openLink(Service& service, Request& request, httplib::Response& response) {
    const Fields& query = request.query;
    const auto book = service.shares().read();
    const Link* link = linkHere(service, *book, field(query, "ssid"));
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
    try {
        if (hasField(query, "file")) {
            return openFile(service, *link, field(query, "file"), response);
        }
        return link->files.size() == 1 ? openFile(service, *link, link->files[0], response)
                                       : linkedItems(service, *link);
    } catch (const StatusError& error) {
        throw Refusal(error.what(), 404);
    }
}

}  // namespace

void addLinkPageCalls(std::vector<Call>& calls) {
    addGet(calls, on(Endpoint::SharePage), {{"func=get_list", "ssid"}}, itemList);
    calls.push_back({"share",
                     on(Endpoint::SharePage),
                     "GET",
                     BodyKind::None,
                     true,
                     {{"ssid"},
                      {"ssid", "access_code"},
                      {"ssid", "file"},
                      {"ssid", "access_code", "file"},
                      {"ssid", "file", "access_code"}},
                     openLink,
                     {},
                     true,
                     true});
}

}  // namespace nas
