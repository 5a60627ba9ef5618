#include <sys/stat.h>

#include <algorithm>

#include "calls.h"
#include "change_log.h"
#include "disk_space.h"

namespace nas {

namespace {

// What a user can sync: the own home and the shares. The folder of all homes is none.
std::vector<Entry> syncFolders(const Tree& tree, const User& user) {
    std::vector<Entry> folders = tree.list(user, tree.open(user, "/"));
    folders.erase(std::remove_if(folders.begin(), folders.end(),
                                 [](const Entry& entry) { return entry.name == "homes"; }),
                  folders.end());
    return folders;
}

void addSizes(Service& service, const User& user, const Entry& folder, bool countAgain,
              nlohmann::json& json) {
    static const char* const units[] = {"Byte", "KB", "MB", "GB", "TB", "PB", "EB"};
    const bool home = folder.name == "home";
    const Volume* volume = home ? nullptr : service.options().volumes.find(folder.name);
    const int64_t used =
        service.folderSizes().of(service, home ? "homes/" + user.name : folder.name, countAgain);
    Space space = diskSpace(service);
    const int64_t limit = home ? user.quota : volume ? volume->limit : -1;
    if (limit >= 0) {
        space = {limit, std::max<int64_t>(0, limit - used)};
    }
    const int usedUnit = exactUnit(used, std::size(units));
    // The free size has no unit of its own.
    const int unit = exactUnit(space.total | space.free, std::size(units));
    json["used_size"] = inUnit(used, usedUnit);
    json["used_unit"] = units[usedUnit];
    json["capacity"] = inUnit(space.total, unit);
    json["free_size"] = inUnit(space.free, unit);
    json["capacity_unit"] = units[unit];
}

Answer folderList(Service& service, Request& request, httplib::Response&) {
    requireNoPrefix(request);
    const User& user = service.authenticate(request, field(request.query, "sid"));
    nlohmann::json folders = nlohmann::json::array();
    for (const Entry& entry : syncFolders(service.tree(), user)) {
        const Volume* volume = service.options().volumes.find(entry.name);
        nlohmann::json json = {{"name", entry.name},
                               {"path", "/" + entry.name},
                               {"privilege", entry.access()},
                               {"volume_id", volume ? volume->id : kFirstVolume}};
        if (hasField(request.query, "detail")) {
            addSizes(service, user, entry, hasField(request.query, "refresh"), json);
        }
        folders.push_back(std::move(json));
    }
    const size_t total = folders.size();
    return {{{"status", 0}, {"admingroup", user.admin}, {"total", total}, {"folder", std::move(folders)}},
            false,
            std::to_string(total) + " folders"};
}

nlohmann::json foldersOf(Service& service, const Node& node, const User& user) {
    static const Users nobody;
    static const Shares none;
    nlohmann::json folders = nlohmann::json::array();
    std::vector<Entry> entries;
    if (node.slaveId == service.options().slaveId) {
        entries = syncFolders(service.tree(), user);
    } else {
        try {
            entries = syncFolders(Tree(node.root, nobody, none), user);
        } catch (const std::exception&) {
            // A node that was killed, and its folder removed.
        }
    }
    for (const Entry& entry : entries) {
        folders.push_back({{"name", entry.name}, {"path", "/" + entry.name}, {"permission", entry.access()}});
    }
    return folders;
}

Answer nodeList(Service& service, Request& request, httplib::Response&) {
    requireNoPrefix(request);
    const User& user = service.authenticate(request, field(request.query, "sid"));
    if (service.options().slaveId.empty()) {
        throw StatusError(Status::Missing, "this server isn't in a cluster");
    }
    nlohmann::json nodes = nlohmann::json::array();
    for (const Node& node : service.nodes().all()) {
        nodes.push_back({{"slave_id", node.slaveId},
                         {"hostname", node.hostName},
                         {"folder", foldersOf(service, node, user)}});
    }
    const size_t count = nodes.size();
    return {{{"status", 0}, {"admingroup", user.admin}, {"count", count}, {"slave", std::move(nodes)}},
            false,
            std::to_string(count) + " nodes"};
}

Answer syncStart(Service& service, Request& request, httplib::Response&) {
    requireNoPrefix(request);
    const int64_t channel = numberField(request.query, "channel");
    const User& user = service.authenticate(request, field(request.query, "sid"));
    service.syncRuns().begin(user.name, channel);
    return {{{"status", number(Status::Ok)}, {"success", "true"}}};
}

Answer syncDone(Service& service, Request& request, httplib::Response&) {
    requireNoPrefix(request);
    const int64_t run = numberField(request.query, "number");
    const User& user = service.authenticate(request, field(request.query, "sid"));
    if (!service.syncRuns().end(user.name, run)) {
        throw StatusError(Status::Missing, "no sync run " + std::to_string(run));
    }
    return {{{"status", number(Status::Ok)}, {"success", "true"}}};
}

// When something last changed at or below the folder, whatever times its files bear.
int64_t lastChange(const Folder& folder) {
    struct stat info {};
    int64_t newest = ::fstat(folder.fd.get(), &info) == 0 ? info.st_ctim.tv_sec : 0;
    eachName(folder.fd.get(), [&](const std::string& name) {
        if (folder.owns(name) || ::fstatat(folder.fd.get(), name.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0) {
            return true;
        }
        newest = std::max<int64_t>(newest, info.st_ctim.tv_sec);
        if (S_ISDIR(info.st_mode)) {
            try {
                Folder below;
                below.fd = openFolderAt(folder.fd.get(), name);
                newest = std::max(newest, lastChange(below));
            } catch (const StatusError&) {
                // Gone meanwhile.
            }
        }
        return true;
    });
    return newest;
}

Answer lastModified(Service& service, Request& request, httplib::Response&) {
    requireNoPrefix(request);
    const User& user = service.authenticate(request, field(request.query, "sid"));
    int64_t newest = 0;
    for (const Entry& folder : syncFolders(service.tree(), user)) {
        newest = std::max(newest, lastChange(service.tree().open(user, "/" + folder.name)));
    }
    return {{{"status", 0}, {"epochmt", newest}}};
}

Answer vetoFiles(Service& service, Request& request, httplib::Response&) {
    service.authenticate(request, field(request.query, "sid"));
    std::string list;
    for (const std::string& pattern : service.options().veto) {
        list += "/" + pattern;
    }
    return {{{"status", 0}, {"veto files", list.empty() ? list : list + "/"}}};
}

std::vector<Shape> listForms(const std::string& func) {
    return {{func, "sid"},
            {func, "sid", "detail=1"},
            {func, "sid", "refresh=1"},
            {func, "sid", "detail=1", "refresh=1"}};
}

}  // namespace

void addStateCalls(std::vector<Call>& calls) {
    addGet(calls, kBothCgis, listForms("func=nubo_get_syncing_folder_list"), folderList, notSuccess);
    addGet(calls, on(Endpoint::SyncCgi), listForms("func=nubo_get_cluster_node_list"), nodeList, notSuccess);
    addGet(calls, kBothCgis, {{"func=nubo_sync_start", "channel", "sid"}}, syncStart, understood);
    addGet(calls, kBothCgis, {{"func=nubo_sync_done", "sid", "number"}}, syncDone, understood);
    addGet(calls, kBothCgis, {{"func=nubo_get_last_modify_time", "sid"}}, lastModified, notSuccess);
    addGet(calls, kBothCgis, {{"func=nubo_get_veto_files", "sid"}}, vetoFiles, notSuccess);
}

}  // namespace nas
