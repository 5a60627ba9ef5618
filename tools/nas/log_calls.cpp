#include "calls.h"
#include "log_view.h"

namespace nas {

namespace {

constexpr int64_t kMostFolders = 1000;

// Numbers travel as texts, for they may need 64 bits.
nlohmann::json overallNumbers(Service& service, const User& user) {
    const LogView view(service, user);
    const int64_t byOthers =
        view.newest([&](const Change& change) { return change.author.user != user.name; });
    return {{"status", number(Status::Ok)},
            {"max_log", std::to_string(view.newest())},
            {"notify", std::to_string(byOthers)},
            {"global_notify", std::to_string(service.changeLog().newest())},
            {"sync_signal", std::to_string(service.syncRuns().signals(user.name))}};
}

Answer maxLog(Service& service, Request& request, httplib::Response&) {
    const User& user = service.authenticate(request, field(request.query, "sid"));
    nlohmann::json reply = overallNumbers(service, user);
    if (hasField(request.query, "folder")) {
        const LogView view(service, user, field(request.query, "folder"));
        reply["max_log"] = std::to_string(view.newest());
    }
    return {reply, false, "up to " + reply["max_log"].get<std::string>()};
}

Shape folderForm(int64_t count) {
    Shape shape = {"folder_number"};
    for (int64_t i = 0; i < count; ++i) {
        shape.push_back("folder" + std::to_string(i));
    }
    return shape;
}

Answer maxLogs(Service& service, Request& request, httplib::Response&) {
    const Fields form = readForm(request);
    const int64_t count = numberField(form, "folder_number");
    if (count < 1 || count > kMostFolders) {
        throw Refusal("form key \"folder_number\" is not a number from 1 to " + std::to_string(kMostFolders));
    }
    requireShape(form, {folderForm(count)}, "form");
    for (const auto& [key, value] : form) {
        if (value.empty()) {
            throw Refusal("form key \"" + key + "\" is empty");
        }
    }
    const User& user = service.authenticate(request, field(request.query, "sid"));
    nlohmann::json reply = overallNumbers(service, user);
    std::string note;
    for (int64_t i = 0; i < count; ++i) {
        const std::string index = std::to_string(i);
        try {
            const LogView view(service, user, field(form, "folder" + index));
            reply["max_log" + index] = std::to_string(view.newest());
        } catch (const StatusError& error) {
            // The number of a folder that isn't the user's is left out.
            note += (note.empty() ? "" : "; ") + std::string(error.what());
        }
    }
    return {reply, false, note};
}

nlohmann::json recordOf(const Change& change) {
    nlohmann::json record = {{"log_id", std::to_string(change.id)},
                             {"filepath", change.place},
                             {"isfolder", change.isFolder ? 1 : 2},
                             {"action", static_cast<int>(change.action)}};
    if (!change.former.empty()) {
        record["old_filepath"] = change.former;
    }
    if (!change.author.device.empty()) {
        record["device"] = change.author.device;
    }
    return record;
}

Answer syncLog(Service& service, Request& request, httplib::Response&) {
    const Fields& query = request.query;
    const bool ofFolder = hasField(query, "syncing_folder");
    if (!ofFolder) {
        requireNoPrefix(request);
    }
    const int64_t lower = numberField(query, "lower");
    const int64_t most = numberField(query, "number");
    if (most < 1) {
        throw Refusal("query key \"number\" is not above 0");
    }
    const User& user = service.authenticate(request, field(query, "sid"));
    const LogView view =
        ofFolder ? LogView(service, user, field(query, "syncing_folder")) : LogView(service, user);
    nlohmann::json records = nlohmann::json::array();
    bool end = true;
    service.changeLog().eachFrom(lower, [&](const Change& change) {
        const std::optional<Change> shown = view.show(change);
        if (!shown) {
            return true;
        }
        end = static_cast<int64_t>(records.size()) < most;
        if (end) {
            records.push_back(recordOf(*shown));
        }
        return end;
    });
    const size_t count = records.size();
    return {{{"status", 0}, {"end", end ? 1 : 0}, {"number", count}, {"data", std::move(records)}},
            false,
            std::to_string(count) + " changes"};
}

}  // namespace

void addLogCalls(std::vector<Call>& calls) {
    const std::string name = "nubo_get_max_log";
    const Shape all = {"func=nubo_get_max_log", "sid"};
    const Shape folder = {"func=nubo_get_max_log", "sid", "folder"};
    calls.push_back({name,
                     on(Endpoint::SyncPrepare) | on(Endpoint::SyncFcgi) | on(Endpoint::ManagerPrepare),
                     "GET",
                     BodyKind::None,
                     true,
                     {all, folder},
                     maxLog,
                     {}});
    calls.push_back({name, on(Endpoint::SyncPrepare), "POST", BodyKind::Form, true, {all}, maxLogs, {}});
    calls.push_back({"nubo_get_sync_log",
                     kBothCgis,
                     "GET",
                     BodyKind::None,
                     true,
                     {{"func=nubo_get_sync_log", "sid", "lower", "number"},
                      {"func=nubo_get_sync_log", "sid", "lower", "number", "syncing_folder"}},
                     syncLog,
                     notSuccess});
}

}  // namespace nas
