#include "calls.h"
#include "receiver.h"

namespace nas {

namespace {

// The folder need not be there yet, but the user must be able to have it.
void requireRootFolder(Service& service, const User& user, std::string path) {
    if (!isTeamPath(path) && path[0] != '/') {
        throw StatusError(Status::NoPath, "upload_root_dir is no path: " + path);
    }
    for (std::string missing;;) {
        try {
            Folder folder = service.tree().open(user, path);
            if (!missing.empty() && (folder.shares || service.tree().lookup(user, folder, missing))) {
                throw StatusError(Status::NotMade, (path + "/").append(missing).append(" can be no folder"));
            }
            requireWritable(service, user, folder);
            return;
        } catch (const StatusError& error) {
            const size_t slash = path.rfind('/');
            if (error.status() != Status::Missing || slash == std::string::npos || path.size() == 1) {
                throw;
            }
            missing = path.substr(slash + 1);
            path.erase(std::max<size_t>(slash, 1));
        }
    }
}

void requireId(const Fields& query) {
    requireText(query, "upload_id");
    requireText(query, "upload_root_dir");
}

Answer startChunked(Service& service, Request& request, httplib::Response&) {
    const std::string& root = field(request.query, "upload_root_dir");
    requireText(request.query, "upload_root_dir");
    const User& user = service.authenticate(request, field(request.query, "sid"));
    const bool noHome = homeless(service, user, root);
    try {
        requireRootFolder(service, user, root);
    } catch (const StatusError& error) {
        const bool notMade = noHome || error.status() == Status::Missing || error.status() == Status::NotMade;
        nlohmann::json reply = {{"status", number(notMade ? Status::NotMade : error.status())}};
        if (notMade) {
            reply["home_folder_available"] = noHome ? 0 : 1;
        }
        return {reply, false, error.what()};
    }
    return {{{"status", 0}, {"upload_id", service.partials().begin(user.name, root)}}};
}

Answer chunkedStatus(Service& service, Request& request, httplib::Response&) {
    const Fields& query = request.query;
    requireId(query);
    const User& user = service.authenticate(request, field(query, "sid"));
    const std::string size = std::to_string(
        service.partials().size(user.name, field(query, "upload_id"), field(query, "upload_root_dir")));
    return {{{"status", 0}, {"size", size}}, false, size + " bytes"};
}

Answer deleteChunked(Service& service, Request& request, httplib::Response&) {
    const Fields& query = request.query;
    requireId(query);
    const User& user = service.authenticate(request, field(query, "sid"));
    service.partials().remove(user.name, field(query, "upload_id"), field(query, "upload_root_dir"));
    return {{{"status", number(Status::Ok)}, {"success", "true"}}};
}

Answer chunkedUpload(Service& service, Request& request, httplib::Response&) {
    const Fields& query = request.query;
    const bool overwrite = overwriteFlag(query);
    const int64_t mtime = countField(query, "mtime");
    const int64_t offset = countField(query, "offset");
    const int64_t expected = countField(query, "filesize");
    if (offset > expected) {
        throw Refusal("query key \"offset\" lies behind filesize");
    }
    requireId(query);
    requireText(query, "rename_dest");
    bool noHome = false;
    Receiver receiver(service, [&] {
        Plan plan;
        plan.user = &service.authenticate(request, field(query, "sid"));
        plan.overwrite = overwrite;
        plan.more = hasField(query, "multipart");
        plan.mtime = mtime;
        plan.expected = expected;
        if (std::optional<Fault> fault = service.fault(FaultKind::ShortSlice, request)) {
            plan.most = fault->bytes;
        }
        const std::string folder = targetFolder(query, plan);
        noHome = homeless(service, *plan.user, folder);
        plan.target = std::make_shared<Folder>(service.tree().open(*plan.user, folder));
        plan.file = service.partials().open(plan.user->name, field(query, "upload_id"),
                                            field(query, "upload_root_dir"), offset);
        if (plan.file->size() != offset) {
            throw StatusError(Status::Failed, "offset " + std::to_string(offset) + ", but " +
                                                  std::to_string(plan.file->size()) + " bytes are held");
        }
        return plan;
    });
    try {
        receive(request, "chunked_upload", receiver);
    } catch (const StatusError& error) {
        if (!noHome) {
            throw;
        }
        return {{{"status", number(error.status())}, {"home_folder_available", 0}}, false, error.what()};
    }
    const std::string size = std::to_string(receiver.size());
    return {{{"status", number(Status::Ok)}, {"size", size}}, false, size + " bytes held"};
}

}  // namespace

void addChunkCalls(std::vector<Call>& calls) {
    calls.push_back({"start_chunked_upload",
                     kBothCgis,
                     "GET",
                     BodyKind::None,
                     true,
                     {{"func=start_chunked_upload", "sid", "upload_root_dir"}},
                     startChunked,
                     notSuccess});
    calls.push_back({"get_chunked_upload_status",
                     kBothCgis,
                     "GET",
                     BodyKind::None,
                     true,
                     {{"func=get_chunked_upload_status", "sid", "upload_id", "upload_root_dir"}},
                     chunkedStatus,
                     notSuccess});
    calls.push_back({"delete_chunked_upload_file",
                     kBothCgis,
                     "GET",
                     BodyKind::None,
                     true,
                     {{"func=delete_chunked_upload_file", "sid", "upload_id", "upload_root_dir"}},
                     deleteChunked,
                     understood});
    std::vector<Shape> shapes;
    for (const char* rename : {"", "rename_dest"}) {
        for (const char* more : {"", "multipart=1"}) {
            Shape shape = {
                "func=chunked_upload", "sid",      "upload_id", "settime=1", "mtime", "offset", "filesize",
                "dest_path",           "overwrite"};
            for (const char* key : {rename, "upload_root_dir", more}) {
                if (*key) {
                    shape.push_back(key);
                }
            }
            shapes.push_back(shape);
        }
    }
    calls.push_back(
        {"chunked_upload", kBothCgis, "POST", BodyKind::Multipart, false, shapes, chunkedUpload, {}});
}

}  // namespace nas
