#include <algorithm>

#include "link_calls.h"
#include "link_form.h"

namespace nas {

namespace {

// Of a text "a;b".
std::vector<std::string> splitIds(const std::string& text) {
    std::vector<std::string> ids;
    for (size_t from = 0; from <= text.size();) {
        const size_t to = std::min(text.find(';', from), text.size());
        if (to > from) {
            ids.push_back(text.substr(from, to - from));
        }
        from = to + 1;
    }
    return ids;
}

Shape updateShape(const Fields& form) {
    Shape shape = {"download_type", "option"};
    appendDuration(shape, form);
    append(shape, {"file_total=1", "access_code", "access_enabled"});
    // Either of the two may come first.
    for (const auto& [key, value] : form) {
        if (key == "ht" || key == "hostname") {
            shape.push_back(key);
        }
    }
    append(shape, {"ssl", "include_access_code", "expire_time", "ssids"});
    if (hasField(form, "link_name")) {
        shape.emplace_back("link_name");
    }
    return shape;
}

Answer updateLinks(Service& service, Request& request, httplib::Response&) {
    const Fields form = readForm(request);
    requireShape(form, {updateShape(form)}, "form");
    requireHostKind(form);
    if (!hasField(form, "ht") && !hasField(form, "hostname")) {
        throw Refusal("form key \"hostname\" is missing");
    }
    requireOneOf(form, "option", {"1", "3"});
    // Without a host only the name changes, and the rest may be anything.
    const bool nameOnly = !hasField(form, "hostname") && hasField(form, "ht");
    if (!nameOnly) {
        requireTypes(form);
    }
    const int64_t expires = nameOnly ? Link::kNever : expiryOf(form);
    const User& user = service.authenticate(request, field(request.query, "sid"));
    const std::vector<Link> links = ownLinks(service, user, splitIds(field(form, "ssids")));
    std::string first;
    service.shares().change([&](ShareBook& book) {
        for (Link& link : book.links) {
            const bool meant = std::any_of(links.begin(), links.end(),
                                           [&](const Link& one) { return one.ssid == link.ssid; });
            if (!meant) {
                continue;
            }
            if (hasField(form, "link_name")) {
                link.name = field(form, "link_name");
            }
            if (!nameOnly) {
                link.code = field(form, "access_code");
                link.expires = expires;
                link.url = urlOf(service, request, form, link);
            }
            first = link.ssid == links[0].ssid ? link.url : first;
        }
    });
    return linkResult(first, true, true);
}

bool holds(const Link& link, const std::string& path) {
    return std::any_of(link.files.begin(), link.files.end(), [&](const std::string& file) {
        return (file.empty() ? link.path : wholePath(link, file)) == path;
    });
}

Answer deleteLinks(Service& service, Request& request, httplib::Response&) {
    const Fields& query = request.query;
    const User& user = service.authenticate(request, field(query, "sid"));
    std::vector<std::string> ssids;
    if (hasField(query, "ssids")) {
        ssids = splitIds(field(query, "ssids"));
    } else {
        if (field(query, "filename").empty() || field(query, "download_link").empty()) {
            throw Refusal("query key \"filename\" or \"download_link\" is empty");
        }
        const auto book = service.shares().read();
        for (const Link& link : book->links) {
            if (link.owner == user.name && link.url == field(query, "download_link") &&
                holds(link, field(query, "filename"))) {
                ssids.push_back(link.ssid);
            }
        }
    }
    const std::vector<Link> links = ownLinks(service, user, ssids);
    service.shares().change([&](ShareBook& book) {
        const auto gone = [&](const Link& link) {
            return std::any_of(links.begin(), links.end(),
                               [&](const Link& one) { return one.ssid == link.ssid; });
        };
        book.links.erase(std::remove_if(book.links.begin(), book.links.end(), gone), book.links.end());
    });
    return doneWithZero(std::to_string(links.size()) + " links");
}

bool holdsFolder(Service& service, const User& user, const Link& link) {
    try {
        return openItem(service, user, wholePath(link, link.files[0])).entry.isFolder;
    } catch (const StatusError&) {
        return false;
    }
}

Answer linkList(Service& service, Request& request, httplib::Response&) {
    constexpr int kMostFiles = 1000;
    const User& user = service.authenticate(request, field(request.query, "sid"));
    const int64_t limit = numberField(request.query, "limit");
    const int64_t start = numberField(request.query, "start");
    if (limit < 1 || start < 0) {
        throw Refusal("limit or start is out of its range");
    }
    const auto book = service.shares().read();
    std::vector<const Link*> links;
    for (const Link& link : book->links) {
        if (link.owner == user.name && link.nas == service.shares().nas()) {
            links.push_back(&link);
        }
    }
    std::stable_sort(links.begin(), links.end(),
                     [](const Link* a, const Link* b) { return a->files[0] < b->files[0]; });
    nlohmann::json datas = nlohmann::json::array();
    for (int64_t i = start; i < static_cast<int64_t>(links.size()) && i - start < limit; ++i) {
        const Link& link = *links[static_cast<size_t>(i)];
        datas.push_back({{"ssid", link.ssid},
                         {"filename", shownName(link)},
                         {"download_link", link.url},
                         {"creator", link.owner},
                         {"link_name", link.name},
                         {"isfolder", holdsFolder(service, user, link) ? 1 : 0},
                         {"multiple", link.files.size() > 1 ? 1 : 0}});
    }
    return {{{"status", number(Status::Ok)},
             {"max_share_file", kMostFiles},
             {"total", links.size()},
             {"datas", std::move(datas)}}};
}

}  // namespace

void addLinkChangeCalls(std::vector<Call>& calls) {
    const unsigned manager = on(Endpoint::ManagerCgi);
    addForm(calls, manager, {"func=update_share_link", "sid"}, updateLinks);
    addGet(calls, manager,
           {{"func=delete_share", "sid", "ssids", "file_total=1"},
            {"func=delete_share", "sid", "filename", "download_link", "file_total=1"}},
           deleteLinks, notDone);
    addGet(calls, manager, {{"func=get_share_list", "sid", "dir=ASC", "limit", "sort=filename", "start"}},
           linkList);
}

}  // namespace nas
