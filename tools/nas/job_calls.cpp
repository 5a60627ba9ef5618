#include <memory>

#include "calls.h"
#include "changes.h"
#include "sharing.h"

namespace nas {

namespace {

// What the job works on lives as long as its work does.
struct Haul {
    Place place;
    Folder target;
};

Haul planMove(Service& service, Request& request, const Fields& form) {
    const User& user = service.authenticate(request, field(request.query, "sid"));
    Haul haul;
    haul.place = findChangeable(service, user, field(form, "source_path"), field(form, "source_file"), form);
    requireMovable(haul.place);
    const Place& place = haul.place;
    haul.target = service.tree().open(user, field(form, "dest_path"));
    requireWritable(service, user, haul.target);
    requireFreeName(service, user, haul.target, place.name);
    if (place.entry.isFolder &&
        liesWithin(haul.target.fd.get(), openFolderAt(place.folder.fd.get(), place.name).get())) {
        throw StatusError(Status::Failed, place.name + " can't go into itself");
    }
    if (!place.folder.sameVolume(haul.target)) {
        const int64_t room = roomIn(service, haul.target);
        if (room >= 0 && service.tree().totalSize(user, place.folder, place.name) > room) {
            throw StatusError(Status::Quota, "the quota of " + haul.target.home + " is used up");
        }
    }
    return haul;
}

void carryAndTell(Service& service, const Haul& haul, const Author& author, const Progress& progress) {
    const Place& place = haul.place;
    carry(place, haul.target, progress);
    service.changeLog().add({Action::Moved, place.entry.isFolder, placeOf(haul.target, place.name),
                             placeOf(place.folder, place.name), author});
}

void recoverAndTell(Service& service, const Place& place, bool overwrite, const Author& author,
                    const Progress& progress) {
    recover(service, place, overwrite, progress);
    Folder former;
    former.share = place.folder.share;
    former.home = place.folder.home;
    former.below = formerPlace(place.folder);
    service.changeLog().add(
        {Action::Recovered, place.entry.isFolder, placeOf(former, place.name), "", author});
}

// The sharing client's: at once, and shared folders stay shared.
Answer moveShared(Service& service, Request& request, const Fields& form) {
    try {
        requireSameSession(request, form);
        const Haul haul = planMove(service, request, form);
        const std::string from = placeOf(haul.place.folder, haul.place.name);
        const std::set<std::string> shares = sharesBelow(service, from);
        carryAndTell(service, haul, authorOf(request), [](int64_t, int64_t) {});
        followFolder(service, shares, from, placeOf(haul.target, haul.place.name));
        return doneWithZero(haul.place.name + " at once");
    } catch (const StatusError& error) {
        return sharedRefusal(error);
    }
}

Answer move(Service& service, Request& request, httplib::Response&) {
    static const Shape plain = {"source_file", "source_total=1", "source_path", "dest_path", "mode=0"};
    static const Shape shared = {"source_file", "source_total=1", "source_path", "dest_path", "mode=1", "sn"};
    bool atOnce = false;
    if (hasField(request.query, "no_fork")) {
        const std::string& noFork = field(request.query, "no_fork");
        if (noFork != "0" && noFork != "1") {
            throw Refusal("query key \"no_fork\" is neither 0 nor 1");
        }
        atOnce = noFork == "1";
    }
    Fields form = readForm(request);
    if (hasField(form, "sn") && !hasField(request.query, "no_fork")) {
        requireShape(form, {shared}, "form");
        return moveShared(service, request, form);
    }
    if (request.endpoint == Endpoint::SyncCgi && !hasField(request.query, "no_fork")) {
        throw Refusal("query key \"no_fork\" is missing");
    }
    requireShape(form, withProfile(plain), "form");
    auto haul = std::make_shared<Haul>(planMove(service, request, form));
    const Author author = authorOf(request);
    nlohmann::json reply = {{"status", number(Status::Ok)}, {"success", "true"}};
    if (atOnce) {
        carryAndTell(service, *haul, author, [](int64_t, int64_t) {});
        return {reply, false, haul->place.name + " at once"};
    }
    const int pid =
        startJob(service, request, haul->place.name, [&service, haul, author](const Progress& progress) {
            carryAndTell(service, *haul, author, progress);
        });
    reply["pid"] = pid;
    return {reply, false, haul->place.name + " as job " + std::to_string(pid)};
}

Answer trashRecovery(Service& service, Request& request, httplib::Response&) {
    const User& user = service.authenticate(request, field(request.query, "sid"));
    const int64_t mode = numberField(request.query, "mode");
    if (mode != 0 && mode != 1) {
        throw StatusError(Status::Failed, "no such mode: " + std::to_string(mode));
    }
    auto place = std::make_shared<Place>();
    place->folder = service.tree().open(user, field(request.query, "source_path"));
    place->name = field(request.query, "source_file");
    std::optional<Entry> entry = service.tree().lookup(user, place->folder, place->name);
    formerPlace(place->folder);
    if (!entry || place->name.empty()) {
        throw StatusError(Status::Missing, "nothing named " + place->name + " in the recycle folder");
    }
    place->entry = *entry;
    requireRecoverable(service, *place, mode == 1);
    const int pid = startJob(service, request, place->name,
                             [&service, place, mode, author = authorOf(request)](const Progress& progress) {
                                 recoverAndTell(service, *place, mode == 1, author, progress);
                             });
    return {{{"status", number(Status::Ok)}, {"pid", std::to_string(pid)}},
            false,
            place->name + " as job " + std::to_string(pid)};
}

std::optional<Jobs::State> findJob(Service& service, Request& request) {
    const User& user = service.authenticate(request, field(request.query, "sid"));
    return service.jobs().look(user.name, numberField(request.query, "pid"));
}

Answer noJob(const Request& request) {
    throw StatusError(Status::Missing, "no job " + field(request.query, "pid"));
}

Answer moveStatus(Service& service, Request& request, httplib::Response&) {
    if (service.fault(FaultKind::LateJob, request)) {
        service.authenticate(request, field(request.query, "sid"));
        return {{{"status", number(Status::Ok)}, {"filename", ""}, {"percent", -1}}};
    }
    std::optional<Jobs::State> job = findJob(service, request);
    if (!job) {
        return noJob(request);
    }
    if (job->done && job->status != Status::Ok) {
        throw StatusError(job->status, job->name + " failed");
    }
    return {{{"status", number(Status::Ok)}, {"filename", job->name}, {"percent", job->percent}},
            false,
            std::to_string(job->percent) + "%"};
}

Answer syncProgress(Service& service, Request& request, httplib::Response&) {
    std::optional<Jobs::State> job = findJob(service, request);
    if (!job) {
        return noJob(request);
    }
    nlohmann::json reply = {{"status", number(Status::Ok)}, {"copying", 0}, {"percent", job->percent}};
    if (job->done && job->status != Status::Ok) {
        // 0 would say that all is well.
        reply["copying"] = job->status == Status::Failed ? -1 : number(job->status);
        reply.erase("percent");
    }
    return {reply, false, reply.dump()};
}

Answer daemonList(Service& service, Request& request, httplib::Response&) {
    const User& user = service.authenticate(request, field(request.query, "sid"));
    if (!service.jobs().drop(user.name, numberField(request.query, "pid"))) {
        return noJob(request);
    }
    return {{{"status", number(Status::Ok)}, {"success", "true"}}};
}

}  // namespace

int startJob(Service& service, const Request& request, const std::string& name, Jobs::Work work) {
    const bool keep = request.endpoint == Endpoint::ManagerCgi;
    return service.jobs().start(request.userName, name, keep, std::move(work));
}

void addJobCalls(std::vector<Call>& calls) {
    // The file manager always moves as a job.
    calls.push_back({"move",
                     on(Endpoint::SyncCgi),
                     "POST",
                     BodyKind::Form,
                     true,
                     {{"func=move", "sid", "no_fork"}, {"func=move", "sid"}},
                     move,
                     understood});
    calls.push_back({"move",
                     on(Endpoint::ManagerCgi),
                     "POST",
                     BodyKind::Form,
                     true,
                     {{"func=move", "sid"}},
                     move,
                     understood});
    calls.push_back({"get_move_status",
                     kBothCgis,
                     "GET",
                     BodyKind::None,
                     true,
                     {{"func=get_move_status", "sid", "pid"}},
                     moveStatus,
                     {}});
    calls.push_back({"daemon_list",
                     kBothCgis,
                     "GET",
                     BodyKind::None,
                     true,
                     {{"func=daemon_list", "sid", "subfunc=delete", "pid"}},
                     daemonList,
                     understood});
    calls.push_back({"nubo_get_progress",
                     kBothCgis,
                     "GET",
                     BodyKind::None,
                     true,
                     {{"func=nubo_get_progress", "sid", "pid"}},
                     syncProgress,
                     {}});
    calls.push_back({"trash_recovery",
                     kBothCgis,
                     "GET",
                     BodyKind::None,
                     true,
                     {{"func=trash_recovery", "sid", "source_file", "mode", "source_total=1", "source_path"}},
                     trashRecovery,
                     {}});
}

}  // namespace nas
