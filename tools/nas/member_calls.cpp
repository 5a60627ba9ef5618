#include <set>

#include "people.h"
#include "sharing.h"

namespace nas {

namespace {

// What "action" does with a member.
enum MemberAction : int64_t { Remove = 0, ReadOnly = 1, ReadWrite = 2 };

struct MemberChange {
    std::string name;
    int64_t action;     // a MemberAction, unless it is unknown
    int64_t event = 0;  // of the file manager's members; 0 for a new one
};

nlohmann::json memberJson(const Person& person, const Event* part) {
    nlohmann::json member = {{"name", person.name},
                             {"share_member", part ? 1 : 0},
                             {"event_status", part ? static_cast<int>(part->part) : 0},
                             {"event_id", part ? part->id : 0},
                             {"torviuser", person.sync ? 1 : 0}};
    if (!person.description.empty()) {
        member["description"] = person.description;
    }
    return member;
}

// Members whose account is gone stay members.
void addFormer(const Service& service, const ShareBook& book, const Share& share, const Fields& query,
               std::vector<nlohmann::json>& members) {
    if (!field(query, "netbios").empty() || field(query, "all_user") != "1") {
        return;
    }
    const std::string filter = lowerCase(field(query, "filter"));
    for (const Event& event : book.events) {
        if (event.share == share.id && event.live() && !service.options().users.find(event.receiver) &&
            lowerCase(event.receiver).find(filter) != std::string::npos) {
            members.push_back(memberJson({event.receiver, "", false}, &event));
        }
    }
}

Answer members(Service& service, Request& request, httplib::Response&) {
    const User& user = userHere(service, request);
    const Fields& query = request.query;
    if (numberField(query, "lower") >= numberField(query, "upper") && field(query, "upper") != "-1") {
        throw Refusal("lower is not below upper");
    }
    const auto book = service.shares().read();
    const Share& share = ownShare(*book, user, query);
    std::vector<nlohmann::json> members;
    for (const Person& person : choosePeople(service.options(), query)) {
        const Event* part = book->partIn(share.id, person.name);
        if (person.name == share.owner || (!part && hasField(query, "only_member"))) {
            continue;
        }
        members.push_back(memberJson(person, part));
    }
    addFormer(service, *book, share, query, members);
    return {{{"status", 0}, {"total", members.size()}, {"user", page(members, query)}},
            false,
            std::to_string(members.size()) + " people"};
}

void requireForm(const Fields& form, int64_t count, bool events) {
    if (count < 1 || count > static_cast<int64_t>(form.size())) {
        throw Refusal("form key \"user_number\" is out of its range");
    }
    Shape shape = {"sid", "share_id"};
    for (int64_t i = 0; i < count; ++i) {
        for (const char* key : {"event_id", "user", "action"}) {
            if (events || std::string(key) != "event_id") {
                shape.push_back(key + std::to_string(i));
            }
        }
    }
    shape.emplace_back("user_number");
    if (hasField(form, "nas_id")) {
        shape.emplace_back("nas_id");
    }
    requireShape(form, {shape}, "form");
}

std::vector<MemberChange> changesOf(const Fields& form, int64_t count, bool events) {
    std::vector<MemberChange> changes;
    for (int64_t i = 0; i < count; ++i) {
        const std::string index = std::to_string(i);
        changes.push_back({decodeTwice(field(form, "user" + index), "form key \"user" + index + "\""),
                           numberField(form, "action" + index),
                           events ? numberField(form, "event_id" + index) : 0});
    }
    return changes;
}

void requireChangeable(Service& service, const ShareBook& book, const User& user, const Share& share,
                       const MemberChange& change) {
    if (change.action < Remove || change.action > ReadWrite) {
        throw StatusError(Status::Denied, "no action " + std::to_string(change.action));
    }
    const Event* part = book.partIn(share.id, change.name);
    if (change.event != 0 && (!part || part->id != change.event)) {
        throw StatusError(Status::Missing,
                          "event " + std::to_string(change.event) + " isn't that of " + change.name);
    }
    if (change.action == Remove && !part) {
        throw StatusError(Status::Missing, change.name + " is no member");
    }
    if (!part) {
        requireInvitable(service, book, user, change.name);
    }
}

void carryOut(Service& service, ShareBook& book, const User& owner, const std::string& id,
              const std::vector<MemberChange>& changes) {
    const Share* share = book.find(id);
    if (!share) {
        throw StatusError(Status::Missing, "share " + id + " is gone");
    }
    for (const MemberChange& change : changes) {
        if (change.action != Remove) {
            if (!book.partIn(id, change.name)) {
                requireInvitable(service, book, owner, change.name);
            }
            book.invite(*share, change.name, change.action == ReadOnly);
        } else if (const Event* part = book.partIn(id, change.name)) {
            book.end(part->id, Part::TakenAway);
        }
    }
}

Answer setMembers(Service& service, Request& request, httplib::Response&) {
    const bool sync = request.endpoint == Endpoint::SyncCgi;
    const Fields form = readForm(request);
    const int64_t count = numberField(form, "user_number");
    requireForm(form, count, !sync);
    const std::vector<MemberChange> changes = changesOf(form, count, !sync);
    const User& user = userHere(service, request, field(form, "sid"));
    const auto book = service.shares().read();
    const Share& share = ownShare(*book, user, form);
    std::set<std::string> names;
    for (const MemberChange& change : changes) {
        requireChangeable(service, *book, user, share, change);
        if (!names.insert(change.name).second) {
            throw StatusError(Status::Denied, change.name + " is named twice");
        }
    }
    return startedShareJob(service, request, "members of " + leafOf(share.path),
                           [&service, &user, id = share.id, changes](ShareBook& later) {
                               carryOut(service, later, user, id, changes);
                           });
}

std::vector<Shape> memberForms(const std::string& func, bool node) {
    const Shape plain = {"func=" + func, "sid",     "user_type", "share_id", "lower", "upper",
                         "all_user",     "refresh", "netbios",   "domain",   "filter"};
    Shape only = plain;
    only.emplace_back("only_member=1");
    std::vector<Shape> shapes = {plain, only};
    for (const Shape& shape : {plain, only}) {
        if (node) {
            shapes.push_back(withNas(shape)[1]);
        }
    }
    return shapes;
}

}  // namespace

void addMemberCalls(std::vector<Call>& calls) {
    const unsigned sync = on(Endpoint::SyncCgi);
    const unsigned manager = on(Endpoint::ManagerCgi);
    addGet(calls, sync, memberForms("nubo_team_folder_get_member", true), members, notSuccess);
    addGet(calls, manager, memberForms("nubo_get_share_member", false), members, notSuccess);
    addForm(calls, sync, {"func=nubo_team_folder_set_member"}, setMembers);
    addForm(calls, manager, {"func=nubo_set_share_member"}, setMembers);
}

}  // namespace nas
