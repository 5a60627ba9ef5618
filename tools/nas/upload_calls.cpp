#include <memory>
#include <optional>

#include "calls.h"
#include "changes.h"
#include "multipart.h"
#include "temporary_file.h"

namespace nas {

namespace {

struct Plan {
    const User* user = nullptr;
    Folder target;
    Folder temporary;    // where the bytes grow; the target itself if this isn't open
    std::string rename;  // the final name, if it isn't the one in the body
    bool overwrite = false;
    int64_t mtime = -1;
    int64_t expected = -1;  // bytes that the file must have
    int64_t room = -1;      // bytes that the quota leaves
};

// Takes the body as it comes. A refused place doesn't end the reading: the body is checked to its end, and
// only then is the answer given.
class Receiver {
public:
    Receiver(Service& service, const std::function<Plan()>& makePlan) : service_(service) {
        guard([&] { plan_ = makePlan(); });
    }

    void begin(const std::string& name, bool hasFile) {
        guard([&] {
            name_ = plan_.rename.empty() ? name : plan_.rename;
            checkName(name_);
            if (!hasFile) {
                throw StatusError(Status::IllegalName, "no file in the body");
            }
            requireWritable(service_, *plan_.user, plan_.target);
            std::optional<Entry> old = service_.tree().lookup(*plan_.user, plan_.target, name_);
            if (old && old->isFolder) {
                throw StatusError(Status::FolderExists, name_ + " is a folder");
            }
            if (old && !plan_.overwrite) {
                throw StatusError(Status::Exists, name_ + " exists");
            }
            if (old && !old->writable()) {
                throw StatusError(Status::Denied, name_ + " may not be written");
            }
            plan_.room = roomIn(service_, plan_.target);
            if (plan_.room >= 0 && old) {
                plan_.room += old->size;
            }
            file_ = std::make_unique<TemporaryFile>(plan_.temporary.fd ? plan_.temporary.fd.get()
                                                                       : plan_.target.fd.get());
        });
    }

    void data(const char* bytes, size_t length) {
        guard([&] {
            if (plan_.room >= 0 && file_->size() + static_cast<int64_t>(length) > plan_.room) {
                throw StatusError(Status::Quota, "the quota of " + plan_.target.home + " is used up");
            }
            file_->write(bytes, length);
        });
        size_ += static_cast<int64_t>(length);
    }

    void commit() {
        guard([&] {
            if (plan_.expected >= 0 && plan_.expected != file_->size()) {
                throw StatusError(Status::Failed, "filesize says " + std::to_string(plan_.expected) + ", " +
                                                      std::to_string(file_->size()) + " bytes came");
            }
            file_->setTime(plan_.mtime);
            file_->commit(plan_.target.fd.get(), name_, plan_.overwrite);
        });
        if (failure_) {
            throw *failure_;
        }
    }

    int64_t size() const { return size_; }

private:
    // The first failure stands; what comes after it is skipped.
    template <typename Step>
    void guard(Step step) {
        if (failure_) {
            return;
        }
        try {
            step();
        } catch (const StatusError& error) {
            failure_ = error;
            file_.reset();
        }
    }

    Service& service_;
    Plan plan_;
    std::string name_;
    std::unique_ptr<TemporaryFile> file_;
    std::optional<StatusError> failure_;
    int64_t size_ = 0;
};

int64_t receive(Service& service, Request& request, const std::string& closing,
                const std::function<Plan()>& makePlan) {
    std::unique_ptr<Receiver> receiver;
    MultipartReader reader(request.contentType, closing,
                           {[&](const std::string& name, bool hasFile) { receiver->begin(name, hasFile); },
                            [&](const char* data, size_t length) { receiver->data(data, length); }});
    receiver = std::make_unique<Receiver>(service, makePlan);
    std::optional<Refusal> refusal;
    bool whole = request.body && (*request.body)([&](const char* data, size_t length) {
                     if (!refusal) {
                         try {
                             reader.feed(data, length);
                         } catch (const Refusal& found) {
                             refusal = found;
                             receiver.reset();
                         }
                     }
                     return true;
                 });
    if (refusal) {
        throw *refusal;
    }
    if (!whole) {
        throw Refusal("the body broke off");
    }
    reader.finish();
    receiver->commit();
    return receiver->size();
}

bool overwriteFlag(const Fields& query) {
    int64_t value = numberField(query, "overwrite");
    if (value < 0 || value > 255) {
        throw Refusal("query key \"overwrite\" is no byte");
    }
    return value != 0;
}

Answer upload(Service& service, Request& request, httplib::Response&) {
    bool overwrite = overwriteFlag(request.query);
    int64_t size = receive(service, request, "Upload", [&] {
        Plan plan;
        plan.user = &service.authenticate(request, field(request.query, "sid"));
        plan.target = service.tree().open(*plan.user, field(request.query, "dest_path"));
        plan.overwrite = overwrite;
        return plan;
    });
    return {{{"status", number(Status::Ok)}, {"success", "true"}, {"size", std::to_string(size)}},
            false,
            std::to_string(size) + " bytes"};
}

Answer uploadAndMove(Service& service, Request& request, httplib::Response&) {
    const Fields& query = request.query;
    bool overwrite = overwriteFlag(query);
    int64_t mtime = numberField(query, "mtime");
    int64_t expected = numberField(query, "filesize");
    if (mtime < 0 || expected < 0) {
        throw Refusal("mtime or filesize is negative");
    }
    if (field(query, "upload_root_dir").empty()) {
        throw Refusal("query key \"upload_root_dir\" is empty");
    }
    if (hasField(query, "rename_dest") && field(query, "rename_dest").empty()) {
        throw Refusal("query key \"rename_dest\" is empty");
    }
    bool homeless = false;
    int64_t size = 0;
    try {
        size = receive(service, request, "upload_and_move", [&] {
            Plan plan;
            plan.user = &service.authenticate(request, field(query, "sid"));
            plan.overwrite = overwrite;
            plan.mtime = mtime;
            plan.expected = expected;
            std::string folder = field(query, "dest_path");
            if (hasField(query, "rename_dest")) {
                // A bare name stays in the folder; a path names the folder as well.
                const std::string& rename = field(query, "rename_dest");
                size_t slash = rename.rfind('/');
                plan.rename = slash == std::string::npos ? rename : rename.substr(slash + 1);
                folder = slash == std::string::npos ? folder : rename.substr(0, slash);
            }
            homeless = folder.rfind("/home", 0) == 0 && !service.tree().homeExists(*plan.user);
            plan.target = service.tree().open(*plan.user, folder);
            try {
                plan.temporary = service.tree().open(*plan.user, field(query, "upload_root_dir"));
                requireWritable(service, *plan.user, plan.temporary);
            } catch (const StatusError& error) {
                // Not there yet: the bytes grow beside the target.
                if (error.status() != Status::Missing) {
                    throw;
                }
                plan.temporary = Folder();
            }
            return plan;
        });
    } catch (const StatusError& error) {
        if (!homeless) {
            throw;
        }
        return {{{"status", number(error.status())}, {"home_folder_available", 0}}, false, error.what()};
    }
    return {{{"status", number(Status::Ok)}, {"size", std::to_string(size)}},
            false,
            std::to_string(size) + " bytes"};
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
