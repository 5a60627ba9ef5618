#include <map>
#include <memory>
#include <vector>

#include "batch_reader.h"
#include "calls.h"
#include "receiver.h"

namespace nas {

namespace {

struct Item {
    std::string name;
    std::unique_ptr<Receiver> receiver;
};

Answer batch(Service& service, Request& request, httplib::Response&) {
    // Each descriptor counts: a batch may be long.
    std::map<std::string, std::shared_ptr<const Folder>> folders;
    std::vector<Item> items;
    const User* user = nullptr;
    std::optional<StatusError> stranger;
    // Assigned below: the sink asks the reader for what stands before the files.
    std::unique_ptr<BatchReader> reader;
    const auto begin = [&](const std::string& name) {
        const size_t index = items.size();
        const int64_t mtime = countField({{"mtime[]", reader->times()[index]}}, "mtime[]");
        try {
            user = user ? user : &service.authenticate(request, reader->sid());
        } catch (const StatusError& error) {
            stranger = error;
        }
        items.push_back({name, nullptr});
        if (stranger) {
            return;
        }
        items.back().receiver = std::make_unique<Receiver>(service, [&] {
            Plan plan;
            plan.user = user;
            std::shared_ptr<const Folder>& folder = folders[reader->folders()[index]];
            if (!folder) {
                folder = std::make_shared<Folder>(service.tree().open(*user, reader->folders()[index]));
            }
            plan.target = folder;
            plan.overwrite = true;
            plan.mtime = mtime;
            return plan;
        });
        items.back().receiver->begin(name, true);
    };
    const auto data = [&](const char* bytes, size_t length) {
        if (items.back().receiver) {
            items.back().receiver->data(bytes, length);
        }
    };
    const auto end = [&] {
        if (items.back().receiver) {
            items.back().receiver->settle();
        }
    };
    reader = std::make_unique<BatchReader>(request.contentType, BatchReader::Sink{begin, data, end});
    readWhole(
        request, [&](const char* bytes, size_t length) { reader->feed(bytes, length); },
        [&] { items.clear(); });
    reader->finish();
    if (stranger) {
        throw *stranger;
    }
    // Only a body that is whole puts anything in its place.
    nlohmann::json files = nlohmann::json::array();
    std::string note = std::to_string(items.size()) + " files";
    for (Item& item : items) {
        Status status = Status::Ok;
        try {
            item.receiver->commit(authorOf(request));
        } catch (const StatusError& error) {
            status = error.status();
            note += "; " + item.name + ": " + error.what();
        }
        // The bytes that came, kept or not: a client looks at the status only if the size is right.
        files.push_back({{"name", item.name},
                         {"status", std::to_string(number(status))},
                         {"size", item.receiver->received()}});
    }
    return {{{"status", number(Status::Ok)}, {"files", files}}, false, note};
}

}  // namespace

void addBatchCalls(std::vector<Call>& calls) {
    calls.push_back({"upload.php",
                     on(Endpoint::SyncBatch) | on(Endpoint::ManagerBatch),
                     "POST",
                     BodyKind::Multipart,
                     true,
                     {{}},
                     batch,
                     {}});
}

}  // namespace nas
