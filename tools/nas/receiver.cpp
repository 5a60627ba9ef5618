#include "receiver.h"

#include "service.h"

namespace nas {

Receiver::Receiver(Service& service, const std::function<Plan()>& makePlan) : service_(service) {
    guard([&] { plan_ = makePlan(); });
}

template <typename Step>
void Receiver::guard(Step step) {
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

void Receiver::begin(const std::string& name, bool hasFile) {
    guard([&] {
        name_ = plan_.rename.empty() ? name : plan_.rename;
        checkName(name_);
        if (!hasFile) {
            throw StatusError(Status::IllegalName, "no file in the body");
        }
        requireWritable(service_, *plan_.user, *plan_.target);
        std::optional<Entry> old = service_.tree().lookup(*plan_.user, *plan_.target, name_);
        if (old && old->isFolder) {
            throw StatusError(Status::FolderExists, name_ + " is a folder");
        }
        if (old && !plan_.overwrite) {
            throw StatusError(Status::Exists, name_ + " exists");
        }
        if (old && !old->writable()) {
            throw StatusError(Status::Denied, name_ + " may not be written");
        }
        service_.locks().requireFree(plan_.user->name, *plan_.target, name_);
        room_ = room(old);
        file_ = std::move(plan_.file);
        if (!file_) {
            file_ = std::make_unique<TemporaryFile>(plan_.temporary ? plan_.temporary : plan_.target);
        }
        size_ = file_->size();
    });
}

int64_t Receiver::room(const std::optional<Entry>& old) const {
    const int64_t left = roomIn(service_, *plan_.target);
    return left >= 0 && old ? left + old->size : left;
}

void Receiver::data(const char* bytes, size_t length) {
    const int64_t before = received_;
    received_ += static_cast<int64_t>(length);
    guard([&] {
        if (plan_.most >= 0 && received_ > plan_.most) {
            file_->write(bytes, static_cast<size_t>(plan_.most - before));
            throw StatusError(Status::Failed,
                              "no more than " + std::to_string(plan_.most) + " bytes are kept");
        }
        size_ = file_->size() + static_cast<int64_t>(length);
        if (plan_.expected >= 0 && size_ > plan_.expected) {
            file_->discard();
            throw StatusError(Status::Failed, "more bytes come than the " + std::to_string(plan_.expected) +
                                                  " that filesize says");
        }
        if (room_ >= 0 && size_ > room_) {
            throw StatusError(Status::Quota, "the quota of " + plan_.target->home + " is used up");
        }
        file_->write(bytes, length);
    });
}

void Receiver::settle() {
    guard([&] { file_->settle(); });
}

void Receiver::commit(const Author& author) {
    if (!failure_ && plan_.more && size_ == plan_.expected) {
        discard();
        throw Refusal("query key \"multipart\" on the slice that ends the file");
    }
    guard([&] {
        if (plan_.more) {
            file_->settle();
            file_.reset();
            return;
        }
        if (plan_.expected >= 0 && plan_.expected != size_) {
            throw StatusError(Status::Failed, "filesize says " + std::to_string(plan_.expected) + ", " +
                                                  std::to_string(size_) + " bytes came");
        }
        // Others may have taken the room meanwhile.
        const std::optional<Entry> old = service_.tree().lookup(*plan_.user, *plan_.target, name_);
        if (room_ >= 0 && size_ > room(old)) {
            throw StatusError(Status::Quota, "the quota of " + plan_.target->home + " is used up");
        }
        service_.locks().requireFree(plan_.user->name, *plan_.target, name_);
        file_->commit(plan_.target->fd.get(), name_, plan_.overwrite, plan_.mtime);
        service_.changeLog().add(
            {old ? Action::NewContent : Action::Made, false, placeOf(*plan_.target, name_), "", author});
    });
    if (failure_) {
        throw *failure_;
    }
}

void Receiver::discard() {
    if (file_) {
        file_->discard();
    }
    file_.reset();
    if (!failure_) {
        failure_ = StatusError(Status::Failed, "a body that isn't the protocol's");
    }
}

void readWhole(Request& request, const std::function<void(const char*, size_t)>& feed,
               const std::function<void()>& wrong) {
    std::optional<Refusal> refusal;
    bool whole = request.body && (*request.body)([&](const char* data, size_t length) {
                     if (!refusal) {
                         try {
                             feed(data, length);
                         } catch (const Refusal& found) {
                             refusal = found;
                             wrong();
                         }
                     }
                     return true;
                 });
    if (refusal) {
        throw *refusal;
    }
    if (!whole) {
        throw BrokenBody();
    }
}

void receive(Request& request, const std::string& closing, Receiver& receiver) {
    MultipartReader reader(request.contentType, closing,
                           {[&](const std::string& name, bool hasFile) { receiver.begin(name, hasFile); },
                            [&](const char* data, size_t length) { receiver.data(data, length); }});
    readWhole(
        request, [&](const char* data, size_t length) { reader.feed(data, length); },
        [&] { receiver.discard(); });
    try {
        reader.finish();
    } catch (const Refusal&) {
        receiver.discard();
        throw;
    }
    receiver.commit(authorOf(request));
}

std::string targetFolder(const Fields& query, Plan& plan) {
    if (!hasField(query, "rename_dest")) {
        return field(query, "dest_path");
    }
    // A bare name stays in the folder; a path names the folder as well.
    const std::string& rename = field(query, "rename_dest");
    const size_t slash = rename.rfind('/');
    plan.rename = slash == std::string::npos ? rename : rename.substr(slash + 1);
    return slash == std::string::npos ? field(query, "dest_path") : rename.substr(0, slash);
}

bool overwriteFlag(const Fields& query) {
    int64_t value = numberField(query, "overwrite");
    if (value < 0 || value > 255) {
        throw Refusal("query key \"overwrite\" is no byte");
    }
    return value != 0;
}

void requireText(const Fields& query, const std::string& key) {
    if (hasField(query, key) && field(query, key).empty()) {
        throw Refusal("query key \"" + key + "\" is empty");
    }
}

int64_t countField(const Fields& query, const std::string& key) {
    int64_t value = numberField(query, key);
    if (value < 0) {
        throw Refusal("query key \"" + key + "\" is negative");
    }
    return value;
}

bool homeless(Service& service, const User& user, const std::string& path) {
    return (path == "/home" || path.rfind("/home/", 0) == 0) && !service.tree().homeExists(user);
}

}  // namespace nas
