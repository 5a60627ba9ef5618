#include "profile.h"

namespace nas {

namespace {

// Without doubled slashes; one in front goes without saying.
std::string plain(const std::string& path) {
    std::string out = isTeamPath(path) ? kTeamScheme : "/";
    for (size_t i = out.size() > 1 ? out.size() : 0; i < path.size(); ++i) {
        if (path[i] != '/' || out.back() != '/') {
            out += path[i];
        }
    }
    return out;
}

std::string told(const std::string& key, const std::string& belief, const std::string& truth) {
    return "the profile's " + key + " is " + belief + ", not " + truth;
}

}  // namespace

std::vector<Shape> withProfile(const Shape& plain) {
    Shape folder = plain;
    for (const char* key : {"check_nubo_file_profile=1", "check_nubo_file_path", "check_nubo_file_exist=1"}) {
        folder.push_back(key);
    }
    Shape file = folder;
    folder.push_back("check_nubo_file_type=1");
    for (const char* key : {"check_nubo_file_type=0", "check_nubo_file_size", "check_nubo_file_time"}) {
        file.push_back(key);
    }
    return {plain, folder, file};
}

void checkProfile(const Fields& form, const std::string& path, const std::string& name,
                  const std::optional<Entry>& found) {
    if (!hasField(form, "check_nubo_file_profile")) {
        return;
    }
    const bool wantsFolder = field(form, "check_nubo_file_type") == "1";
    const int64_t size = wantsFolder ? 0 : numberField(form, "check_nubo_file_size");
    const int64_t time = wantsFolder ? 0 : numberField(form, "check_nubo_file_time");
    const std::string belief = plain(field(form, "check_nubo_file_path"));
    const std::string truth = plain(path + "/" + name);
    if (belief != truth) {
        throw StatusError(Status::OtherPath, told("path", belief, truth));
    }
    if (!found) {
        throw StatusError(Status::Gone, "nothing is at the profile's path " + truth);
    }
    if (wantsFolder != found->isFolder) {
        throw StatusError(Status::OtherType, told("type", field(form, "check_nubo_file_type"),
                                                  found->isFolder ? "a folder" : "a file"));
    }
    if (!wantsFolder && size != found->size) {
        throw StatusError(Status::OtherContent,
                          told("size", std::to_string(size), std::to_string(found->size)));
    }
    if (!wantsFolder && time != found->mtime) {
        throw StatusError(Status::OtherContent,
                          told("time", std::to_string(time), std::to_string(found->mtime)));
    }
}

}  // namespace nas
