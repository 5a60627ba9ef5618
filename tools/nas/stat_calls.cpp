#include "calls.h"
#include "change_log.h"
#include "entry_json.h"
#include "shared_folders.h"

namespace nas {

namespace {

// An empty name speaks of a team folder itself, which answers to its path without the scheme.
std::string shownName(const std::string& path, const std::string& name) {
    if (!name.empty()) {
        return name;
    }
    if (!isTeamPath(path)) {
        throw StatusError(Status::IllegalName, "empty name outside of a team folder");
    }
    return path.substr(kTeamScheme.size());
}

nlohmann::json oneEntry(const nlohmann::json& entry) {
    return {{"status", number(Status::Ok)}, {"total", 1}, {"datas", nlohmann::json::array({entry})}};
}

Answer stat(Service& service, Request& request, httplib::Response&) {
    const Fields& query = request.query;
    const User& user = service.authenticate(request, field(query, "sid"));
    const std::string& path = field(query, "path");
    const std::string& name = field(query, "file_name");
    const std::string shown = shownName(path, name);
    Folder folder = service.tree().open(user, path);
    if (hasField(query, "settime")) {
        if (folder.fd && !folder.shares && !name.empty()) {
            service.locks().requireFree(user.name, folder, name);
        }
        service.tree().setTime(user, folder, name, numberField(query, "mtime"));
    }
    std::optional<Entry> entry = service.tree().lookup(user, folder, name);
    if (hasField(query, "settime") && entry) {
        const Folder itself = folder.shares ? service.tree().open(user, "/" + name) : Folder();
        service.changeLog().add({Action::TimeSet, entry->isFolder,
                                 folder.shares ? placeOf(itself, "") : placeOf(folder, name), "",
                                 authorOf(request)});
    }
    nlohmann::json json;
    if (entry) {
        entry->name = shown;
        json = entryJson(*entry);
        const SharedFolders shared(*service.shares().read(), service.shares().nas(), user.name);
        shared.tell(placeOf(folder, name), json);
    } else {
        json = {{"filename", shown}, {"isfolder", 0}, {"filesize", "0"}, {"epochmt", 0}, {"exist", 0}};
    }
    if (hasField(query, "get_privilege")) {
        int access = entry ? entry->access() : 0;
        if (hasField(query, "check_upload") && !entry && !folder.shares) {
            access = service.tree().lookup(user, folder, "")->access();
        }
        json["privilege_ex"] = access;
    }
    return {oneEntry(json)};
}

Answer properties(Service& service, Request& request, httplib::Response&) {
    const User& user = service.authenticate(request, field(request.query, "sid"));
    const std::string& path = field(request.query, "path");
    const std::string& name = field(request.query, "name");
    shownName(path, name);
    int64_t size = service.tree().totalSize(user, service.tree().open(user, path), name);
    return {{{"status", number(Status::Ok)}, {"size", std::to_string(size)}}};
}

// May a file of this name be put into this folder?
Answer checkPermission(Service& service, Request& request, httplib::Response&) {
    const User& user = service.authenticate(request, field(request.query, "sid"));
    Folder folder = service.tree().open(user, field(request.query, "path"));
    const std::string& name = field(request.query, "file_name");
    std::optional<Entry> entry = name.empty() ? std::nullopt : service.tree().lookup(user, folder, name);
    bool allowed = !folder.shares && service.tree().lookup(user, folder, "")->writable() &&
                   (!entry || entry->writable());
    if (!allowed) {
        throw StatusError(Status::Denied, "no writing here");
    }
    return {{{"status", number(Status::Ok)}}};
}

}  // namespace

void addStatCalls(std::vector<Call>& calls) {
    const Shape plain = {"func=stat", "path", "file_total=1", "file_name", "sid"};
    const Shape privilege = {"func=stat", "path", "file_total=1", "file_name", "get_privilege=1", "sid"};
    const Shape upload = {"func=stat",       "path",           "file_total=1", "file_name",
                          "get_privilege=1", "check_upload=1", "sid"};
    const Shape settime = {"func=stat", "sid", "settime=1", "mtime", "path", "file_total=1", "file_name"};
    calls.push_back(
        {"stat", kBothCgis, "GET", BodyKind::None, true, {plain, privilege, upload, settime}, stat, {}});
    calls.push_back(
        {"stat", on(Endpoint::SyncFcgi), "GET", BodyKind::None, true, {plain, privilege, upload}, stat, {}});
    calls.push_back({"properties",
                     kBothCgis,
                     "GET",
                     BodyKind::None,
                     true,
                     {{"func=properties", "sid", "path", "total=1", "name"}},
                     properties,
                     {}});
    calls.push_back({"nubo_check_permission",
                     kBothCgis,
                     "GET",
                     BodyKind::None,
                     true,
                     {{"func=nubo_check_permission", "sid", "path", "file_name", "check_upload=1"}},
                     checkPermission,
                     {}});
}

}  // namespace nas
