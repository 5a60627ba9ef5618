#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "change_log.h"
#include "changes.h"
#include "growing_file.h"
#include "multipart.h"
#include "request.h"

namespace nas {

// Where an upload goes, and on what terms.
struct Plan {
    const User* user = nullptr;
    std::shared_ptr<const Folder> target;
    std::shared_ptr<const Folder> temporary;  // where the bytes grow, if not in the target itself
    std::unique_ptr<GrowingFile> file;        // what has come before
    std::string rename;                       // the final name, if it isn't the one in the body
    bool overwrite = false;
    bool more = false;  // this request doesn't end the file
    int64_t mtime = -1;
    int64_t expected = -1;  // bytes that the file must have
    int64_t most = -1;      // bytes of this request that are kept, if a fault says so
};

// Takes one file as it comes. A refused place doesn't end the reading: the body is checked to its end, and
// only then is the answer given.
class Receiver {
public:
    Receiver(Service& service, const std::function<Plan()>& makePlan);

    void begin(const std::string& name, bool hasFile);
    void data(const char* bytes, size_t length);
    // No more data.
    void settle();
    void commit(const Author& author);
    // The body isn't the protocol's: nothing of it counts.
    void discard();

    // All bytes that came, kept or not.
    int64_t received() const { return received_; }
    // The file's bytes, with those of earlier requests.
    int64_t size() const { return size_; }

private:
    // The first failure stands; what comes after it is skipped.
    template <typename Step>
    void guard(Step step);
    int64_t room(const std::optional<Entry>& old) const;

    Service& service_;
    Plan plan_;
    std::string name_;
    std::unique_ptr<GrowingFile> file_;
    std::optional<StatusError> failure_;
    int64_t room_ = -1;  // bytes that the quota leaves
    int64_t received_ = 0;
    int64_t size_ = 0;
};

// A body that ended before its end.
class BrokenBody : public Refusal {
public:
    BrokenBody() : Refusal("the body broke off") {}
};

// Reads the whole body, a wrong one too, so that the refusal isn't lost; `wrong` is told at once.
void readWhole(Request& request, const std::function<void(const char*, size_t)>& feed,
               const std::function<void()>& wrong);

// Receives the one file of the protocol's multipart body. Throws what became of it.
void receive(Request& request, const std::string& closing, Receiver& receiver);

// Of the calls that say where the file goes by "dest_path" and perhaps "rename_dest".
std::string targetFolder(const Fields& query, Plan& plan);
bool overwriteFlag(const Fields& query);
void requireText(const Fields& query, const std::string& key);
int64_t countField(const Fields& query, const std::string& key);
// Whether the path leads into the user's home, and there is none.
bool homeless(Service& service, const User& user, const std::string& path);

}  // namespace nas
