#pragma once

#include <sys/stat.h>

#include <chrono>
#include <memory>
#include <string>

#include "changes.h"

namespace nas {

// One version of a file: a folder in "@Versions" of the home of the user who works on it. There lie
//   content          the file as it was when the version was made; nobody may change it
//   signature        of the content, once it was asked for
//   delta            what makes the file of local.signature into the content
//   local.signature, upload, upload.delta    what the client puts there by ordinary uploads
// and a hidden note that tells whose version it is.
class Version {
public:
    // Keeps the file as it is now.
    static Version make(Service& service, const User& user, const Place& file);
    // Throws Missing if it isn't this user's version of this file.
    static Version find(Service& service, const User& user, const std::string& id, const Folder& folder,
                        const std::string& name);
    // Drops what was neither committed nor closed for so long.
    static void dropOld(Service& service, std::chrono::seconds longest);

    const std::string& id() const { return id_; }
    bool has(const std::string& name) const;
    int64_t sizeOf(const std::string& name) const;
    // Whether there is anything to commit: an upload here, or straight into the file's place.
    bool changed(const Folder& target, const std::string& name) const;

    // These work long.
    void makeSignature(const Progress& progress) const;
    void makeDelta(const Progress& progress) const;
    // Puts what was uploaded in the place of the file, if it takes no more than the room; -1 is no limit.
    void commit(const std::shared_ptr<const Folder>& target, const std::string& name, int64_t mtime,
                int64_t room, const Progress& progress) const;

    // The work is over: leaves the content of a version that another one followed, and nothing else.
    void close() const;

private:
    Version(std::string id, Fd parent, Fd folder);
    Fd open(const std::string& name) const;
    void writeNote(int folder, const std::string& name, const struct stat& file, bool committed) const;

    std::string id_;
    std::shared_ptr<Fd> parent_;
    std::shared_ptr<Folder> folder_;
};

}  // namespace nas
