#include "sharing.h"

namespace nas {

namespace {

// A folder that the user may share, by the path that the book would have for it.
struct Found {
    std::string path;
    std::string mark;
};

Found findFolder(Service& service, const User& user, const std::string& path) {
    const Folder folder = service.tree().open(user, path);
    if (folder.below.empty()) {
        throw StatusError(Status::Denied, path + " can't be shared");
    }
    return {pathFor(user.name, placeOf(folder, "")), markOf(folder)};
}

// The user's share that was this folder, or else the only one of that name whose folder isn't there.
const Share& lostShare(Service& service, const ShareBook& book, const User& user, const Found& found) {
    const Share* lost = nullptr;
    for (const Share& share : book.shares) {
        if (share.owner != user.name || share.nas != service.shares().nas()) {
            continue;
        }
        if (share.folder == found.mark) {
            return share;
        }
        if (leafOf(share.path) == leafOf(found.path) && !isThere(service, share)) {
            if (lost) {
                throw StatusError(Status::Denied, "several shares lost a folder " + leafOf(share.path));
            }
            lost = &share;
        }
    }
    if (!lost) {
        throw StatusError(Status::Missing, "no share lost its folder " + found.path);
    }
    return *lost;
}

Answer updateLink(Service& service, Request& request, httplib::Response&) {
    const Fields form = readForm(request);
    requireShape(form, {{"dest_path", "source_file", "sn"}}, "form");
    requireSameSession(request, form);
    try {
        const User& user = service.authenticate(request, field(request.query, "sid"));
        const Found found =
            findFolder(service, user, field(form, "dest_path") + "/" + field(form, "source_file"));
        service.shares().change([&](ShareBook& book) {
            book.relocate(lostShare(service, book, user, found).id, found.path, found.mark);
        });
        return doneWithZero(found.path);
    } catch (const StatusError& error) {
        return sharedRefusal(error);
    }
}

Answer fixLink(Service& service, Request& request, httplib::Response&) {
    const User& user = userHere(service, request);
    const Found found = findFolder(service, user, field(request.query, "path"));
    const auto book = service.shares().read();
    const Share& share = lostShare(service, *book, user, found);
    if (share.path == found.path && share.folder == found.mark) {
        return doneWithZero(found.path + " needs nothing");
    }
    service.shares().change(
        [&, id = share.id](ShareBook& later) { later.relocate(id, found.path, found.mark); });
    return {{{"status", number(Status::Ok)}, {"success", "true"}}, false, found.path + " is shared again"};
}

}  // namespace

void addFolderLinkCalls(std::vector<Call>& calls) {
    addForm(calls, on(Endpoint::ManagerCgi), {"func=update_link", "sid"}, updateLink, notDone);
    calls.back().prefix = true;
    const Shape fix = {"func=nubo_fix_team_folder_link", "sid", "path"};
    Shape fixOnSync = fix;
    fixOnSync.emplace_back("type=4");
    addGet(calls, on(Endpoint::SyncCgi), {fixOnSync}, fixLink, notDone);
    addGet(calls, on(Endpoint::ManagerCgi), {fix}, fixLink, notDone);
}

}  // namespace nas
