#include <memory>

#include "calls.h"
#include "receiver.h"
#include "versions.h"

namespace nas {

namespace {

// Of sig and delta: both count as success, and tell that the work was done, or is under way.
constexpr int kMadeAlready = 33;
constexpr int kBeingMade = 34;

Answer probe(Service& service, Request& request, httplib::Response&) {
    service.authenticate(request, field(request.query, "sid"));
    const bool on = service.options().versioning;
    return {{{"status", number(Status::Ok)},
             {"versioning_enable", on ? 1 : 0},
             {"nubo_versioning_enable", on ? 1 : 0},
             {"versioning_version", on ? "1.0" : ""}}};
}

// The file that a call speaks of, and its user.
struct Subject {
    const User* user = nullptr;
    std::shared_ptr<Folder> folder;
    std::string name;
};

Subject subjectOf(Service& service, Request& request) {
    const Fields& query = request.query;
    Subject subject;
    subject.user = &service.authenticate(request, field(query, "sid"));
    if (!service.options().versioning) {
        throw StatusError(Status::Failed, "this server keeps no versions");
    }
    subject.folder =
        std::make_shared<Folder>(service.tree().open(*subject.user, field(query, "source_path")));
    subject.name = field(query, "source_file");
    checkName(subject.name);
    return subject;
}

Version versionOf(Service& service, const Subject& subject, const std::string& id) {
    return Version::find(service, *subject.user, id, *subject.folder, subject.name);
}

// The lock that the query names, and its version.
Locks::Lock lockOf(Service& service, Request& request, const Subject& subject) {
    const Fields& query = request.query;
    Locks::Lock lock =
        service.locks().use(field(query, "lockid"), subject.user->name, *subject.folder, subject.name);
    if (hasField(query, "version_id") && (lock.abandoned || lock.version != field(query, "version_id"))) {
        throw StatusError(Status::Missing, "the lock isn't one of this version");
    }
    return lock;
}

bool runs(Service& service, const Locks::Lock& lock) {
    std::optional<Jobs::State> job = lock.job ? service.jobs().peek(lock.user, lock.job) : std::nullopt;
    return job && !job->done;
}

Answer takeLock(Service& service, Request& request, httplib::Response&) {
    const Subject subject = subjectOf(service, request);
    if (hasField(request.query, "check_version")) {
        const Locks::Lock lock = lockOf(service, request, subject);
        versionOf(service, subject, lock.version);
        return {{{"status", number(Status::Ok)}, {"lockid", lock.id}, {"version_id", lock.version}},
                false,
                "still locked"};
    }
    Place file =
        findChangeable(service, *subject.user, field(request.query, "source_path"), subject.name, {});
    if (file.entry.isFolder) {
        throw StatusError(Status::FolderExists, subject.name + " is a folder");
    }
    const std::string lock = service.locks().take(subject.user->name, *subject.folder, subject.name);
    try {
        const Version version = Version::make(service, *subject.user, file);
        service.locks().setVersion(lock, version.id());
        return {{{"status", number(Status::Ok)}, {"lockid", lock}, {"version_id", version.id()}},
                false,
                "locked " + subject.name};
    } catch (...) {
        service.locks().release(lock);
        throw;
    }
}

Answer unlock(Service& service, Request& request, httplib::Response&) {
    const Subject subject = subjectOf(service, request);
    const Locks::Lock lock = lockOf(service, request, subject);
    if (runs(service, lock)) {
        throw StatusError(Status::Failed, "a job still works under the lock");
    }
    if (!lock.abandoned) {
        versionOf(service, subject, lock.version).close();
    }
    service.locks().release(lock.id);
    return {{{"status", number(Status::Ok)}}, false, "unlocked " + subject.name};
}

Answer clean(Service& service, Request& request, httplib::Response&) {
    const Subject subject = subjectOf(service, request);
    const Locks::Lock lock = lockOf(service, request, subject);
    if (runs(service, lock)) {
        throw StatusError(Status::Failed, "a job still works under the lock");
    }
    versionOf(service, subject, lock.version).close();
    // Whoever cleans may unlock as well, or not.
    service.locks().abandon(lock.id);
    return {{{"status", number(Status::Ok)}}, false, "cleaned a version of " + subject.name};
}

Answer startWork(Service& service, Request& request, const Locks::Lock& lock, const std::string& name,
                 int status, Jobs::Work work) {
    const bool keep = request.endpoint == Endpoint::ManagerCgi;
    const int pid = service.jobs().start(lock.user, name, keep, std::move(work));
    service.locks().noteJob(lock.id, pid);
    return {{{"status", status}, {"pid", std::to_string(pid)}, {"version_id", lock.version}},
            false,
            "job " + std::to_string(pid)};
}

Answer beingMade(const Locks::Lock& lock) {
    return {{{"status", kBeingMade}, {"pid", std::to_string(lock.job)}, {"version_id", lock.version}}};
}

Answer signature(Service& service, Request& request, httplib::Response&) {
    const Subject subject = subjectOf(service, request);
    const Locks::Lock lock = lockOf(service, request, subject);
    const Version version = versionOf(service, subject, lock.version);
    if (runs(service, lock)) {
        return beingMade(lock);
    }
    if (version.has("signature")) {
        return startWork(service, request, lock, subject.name, kMadeAlready, [](const Progress&) {});
    }
    return startWork(service, request, lock, subject.name, number(Status::Ok),
                     [version](const Progress& progress) { version.makeSignature(progress); });
}

Answer delta(Service& service, Request& request, httplib::Response&) {
    const Subject subject = subjectOf(service, request);
    const Locks::Lock lock = lockOf(service, request, subject);
    const Version version = versionOf(service, subject, lock.version);
    if (runs(service, lock)) {
        return beingMade(lock);
    }
    return startWork(service, request, lock, subject.name, number(Status::Ok),
                     [version](const Progress& progress) { version.makeDelta(progress); });
}

Answer statDelta(Service& service, Request& request, httplib::Response&) {
    const Subject subject = subjectOf(service, request);
    const Version version = versionOf(service, subject, field(request.query, "version_id"));
    nlohmann::json reply = {{"status", number(Status::Ok)}, {"exist", version.has("delta") ? 1 : 0}};
    if (version.has("delta")) {
        reply["size"] = std::to_string(version.sizeOf("delta"));
    }
    return {reply};
}

Answer commit(Service& service, Request& request, httplib::Response&) {
    const int64_t mtime = countField(request.query, "mtime");
    const Subject subject = subjectOf(service, request);
    const Locks::Lock lock = lockOf(service, request, subject);
    const Version version = versionOf(service, subject, lock.version);
    if (runs(service, lock)) {
        throw StatusError(Status::Failed, "a job still works under the lock");
    }
    const Place file =
        findChangeable(service, *subject.user, field(request.query, "source_path"), subject.name, {});
    if (!version.changed(*subject.folder, subject.name)) {
        throw StatusError(Status::Missing, "nothing was uploaded under the lock");
    }
    const int64_t left = roomIn(service, *subject.folder);
    const int64_t room = left >= 0 ? left + file.entry.size : left;
    return startWork(
        service, request, lock, subject.name, number(Status::Ok),
        [&service, version, mtime, room, folder = subject.folder, name = subject.name,
         author = authorOf(request)](const Progress& progress) {
            version.commit(folder, name, mtime, room, progress);
            service.changeLog().add({Action::NewContent, false, placeOf(*folder, name), "", author});
        });
}

// Clients read nothing but "exist".
void nothingThere(nlohmann::json& reply) {
    reply["exist"] = 0;
}

}  // namespace

void addVersionCalls(std::vector<Call>& calls) {
    const auto add = [&](const std::string& name, std::vector<Shape> shapes,
                         std::function<Answer(Service&, Request&, httplib::Response&)> serve,
                         std::function<void(nlohmann::json&)> refusal = {}) {
        calls.push_back({name, kBothCgis, "GET", BodyKind::None, true, std::move(shapes), std::move(serve),
                         std::move(refusal)});
    };
    add("versioning_probe", {{"func=versioning_probe", "sid"}}, probe);
    add("versioning_lock",
        {{"func=versioning_lock", "create_version=1", "sid", "source_path", "source_file"},
         {"func=versioning_lock", "check_version=1", "sid", "source_path", "source_file", "version_id",
          "lockid"}},
        takeLock);
    add("versioning_unlock", {{"func=versioning_unlock", "sid", "source_path", "source_file", "lockid"}},
        unlock);
    add("versioning_clean_version",
        {{"func=versioning_clean_version", "sid", "source_path", "source_file", "lockid", "version_id"}},
        clean);
    add("versioning_gen_sig",
        {{"func=versioning_gen_sig", "sid", "source_path", "source_file", "lockid", "version_id"}},
        signature);
    add("versioning_gen_delta",
        {{"func=versioning_gen_delta", "sid", "source_path", "source_file", "lockid", "version_id"}}, delta);
    add("versioning_stat_delta",
        {{"func=versioning_stat_delta", "sid", "source_path", "source_file", "version_id"}}, statDelta,
        nothingThere);
    add("versioning_commit_upload",
        {{"func=versioning_commit_upload", "sid", "settime=1", "mtime", "source_path", "source_file",
          "lockid", "version_id"}},
        commit);
}

}  // namespace nas
