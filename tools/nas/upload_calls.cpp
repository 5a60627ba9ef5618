#include "calls.h"
#include "receiver.h"

namespace nas {

namespace {

Answer upload(Service& service, Request& request, httplib::Response&) {
    const bool overwrite = overwriteFlag(request.query);
    Receiver receiver(service, [&] {
        Plan plan;
        plan.user = &service.authenticate(request, field(request.query, "sid"));
        plan.target =
            std::make_shared<Folder>(service.tree().open(*plan.user, field(request.query, "dest_path")));
        plan.overwrite = overwrite;
        return plan;
    });
    receive(request, "Upload", receiver);
    const std::string size = std::to_string(receiver.size());
    return {{{"status", number(Status::Ok)}, {"success", "true"}, {"size", size}}, false, size + " bytes"};
}

Answer uploadAndMove(Service& service, Request& request, httplib::Response&) {
    const Fields& query = request.query;
    const bool overwrite = overwriteFlag(query);
    const int64_t mtime = countField(query, "mtime");
    const int64_t expected = countField(query, "filesize");
    for (const char* key : {"upload_root_dir", "rename_dest"}) {
        requireText(query, key);
    }
    bool noHome = false;
    Receiver receiver(service, [&] {
        Plan plan;
        plan.user = &service.authenticate(request, field(query, "sid"));
        plan.overwrite = overwrite;
        plan.mtime = mtime;
        plan.expected = expected;
        const std::string folder = targetFolder(query, plan);
        noHome = homeless(service, *plan.user, folder);
        plan.target = std::make_shared<Folder>(service.tree().open(*plan.user, folder));
        try {
            plan.temporary =
                std::make_shared<Folder>(service.tree().open(*plan.user, field(query, "upload_root_dir")));
            requireWritable(service, *plan.user, *plan.temporary);
        } catch (const StatusError& error) {
            // Not there yet: the bytes grow beside the target.
            if (error.status() != Status::Missing) {
                throw;
            }
            plan.temporary = nullptr;
        }
        return plan;
    });
    try {
        receive(request, "upload_and_move", receiver);
    } catch (const StatusError& error) {
        if (!noHome) {
            throw;
        }
        return {{{"status", number(error.status())}, {"home_folder_available", 0}}, false, error.what()};
    }
    const std::string size = std::to_string(receiver.size());
    return {{{"status", number(Status::Ok)}, {"size", size}}, false, size + " bytes"};
}

}  // namespace

void addUploadCalls(std::vector<Call>& calls) {
    calls.push_back({"upload",
                     kBothCgis,
                     "POST",
                     BodyKind::Multipart,
                     false,
                     {{"func=upload", "sid", "dest_path", "overwrite"}},
                     upload,
                     understood});
    calls.push_back({"upload_and_move",
                     kBothCgis,
                     "POST",
                     BodyKind::Multipart,
                     false,
                     {{"func=upload_and_move", "sid", "settime=1", "mtime", "filesize", "dest_path",
                       "overwrite", "upload_root_dir"},
                      {"func=upload_and_move", "sid", "settime=1", "mtime", "filesize", "dest_path",
                       "overwrite", "rename_dest", "upload_root_dir"}},
                     uploadAndMove,
                     {}});
}

}  // namespace nas
