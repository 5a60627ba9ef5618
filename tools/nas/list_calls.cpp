#include <algorithm>

#include "calls.h"
#include "change_log.h"
#include "entry_json.h"
#include "shared_folders.h"

namespace nas {

namespace {

Answer getList(Service& service, Request& request, httplib::Response&) {
    const Fields& query = request.query;
    const User& user = service.authenticate(request, field(query, "sid"));
    int64_t limit = numberField(query, "limit");
    int64_t start = numberField(query, "start");
    int64_t noSort = numberField(query, "no_sort");
    if (limit < 0 || start < 0 || noSort < 0 || noSort > 1) {
        throw Refusal("limit, start or no_sort is out of its range");
    }
    std::string path = field(query, "path");
    if (path.empty()) {
        throw Refusal("query key \"path\" is empty");
    }
    std::vector<Entry> entries;
    Folder folder;
    try {
        folder = service.tree().open(user, path);
        entries = service.tree().list(user, folder);
    } catch (const StatusError& error) {
        // The team area is there for everyone, though no folder need stand for it.
        const bool teamArea = path == kTeamArea || path == std::string(kTeamArea) + "/";
        if (!teamArea || error.status() != Status::Missing || !service.tree().homeExists(user)) {
            throw;
        }
    }
    if (hasField(query, "type")) {
        entries.erase(
            std::remove_if(entries.begin(), entries.end(), [](const Entry& e) { return !e.isFolder; }),
            entries.end());
    }
    if (noSort == 0) {
        std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
            return a.mtime != b.mtime ? a.mtime > b.mtime : a.name < b.name;
        });
    }
    const SharedFolders shared(*service.shares().read(), service.shares().nas(), user.name);
    nlohmann::json datas = nlohmann::json::array();
    for (int64_t i = start; i < static_cast<int64_t>(entries.size()) && i - start < limit; ++i) {
        const Entry& entry = entries[static_cast<size_t>(i)];
        nlohmann::json json = entryJson(entry);
        shared.tell(placeOf(folder, entry.name), json);
        if (hasField(query, "check_child")) {
            json["have_child"] = service.tree().hasChild(user, folder, entry.name) ? 1 : 0;
        }
        datas.push_back(std::move(json));
    }
    return {{{"status", number(Status::Ok)}, {"total", entries.size()}, {"datas", datas}}};
}

Answer getTree(Service& service, Request& request, httplib::Response&) {
    const User& user = service.authenticate(request, field(request.query, "sid"));
    std::string node = field(request.query, "node");
    if (node.empty()) {
        throw Refusal("query key \"node\" is empty");
    }
    std::string path = node == "share_root" ? "/" : node;
    std::vector<Entry> entries = service.tree().list(user, service.tree().open(user, path));
    std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) { return a.name < b.name; });
    nlohmann::json reply = nlohmann::json::array();
    for (const Entry& entry : entries) {
        if (entry.isFolder) {
            std::string id = path.back() == '/' ? path + entry.name : path + "/" + entry.name;
            const char* cls = entry.access() == 2 ? "w" : entry.access() == 1 ? "r" : "";
            reply.push_back({{"text", entry.name}, {"id", id}, {"cls", cls}, {"iconCls", "folder"}});
        }
    }
    return {reply};
}

}  // namespace

void addListCalls(std::vector<Call>& calls) {
    const Shape files = {"func=get_list", "sid",   "is_iso=0", "list_mode=all", "path",
                         "dir=DESC",      "limit", "sort=mt",  "start",         "no_sort"};
    const Shape folders = {"func=get_list", "sid",     "is_iso=0", "list_mode=all", "path",   "dir=DESC",
                           "limit",         "sort=mt", "start",    "type=4",        "no_sort"};
    Shape children = folders;
    children.push_back("check_child=4");
    calls.push_back({"get_list",
                     on(Endpoint::SyncCgi),
                     "GET",
                     BodyKind::None,
                     true,
                     {files, folders, children},
                     getList,
                     {}});
    // The file manager has no place for check_child.
    calls.push_back(
        {"get_list", on(Endpoint::ManagerCgi), "GET", BodyKind::None, true, {files, folders}, getList, {}});
    calls.push_back({"get_tree",
                     kBothCgis,
                     "GET",
                     BodyKind::None,
                     true,
                     {{"func=get_tree", "sid", "is_iso=0", "node"}},
                     getTree,
                     {}});
}

}  // namespace nas
