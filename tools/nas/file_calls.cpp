#include <sys/stat.h>

#include <cerrno>

#include "calls.h"
#include "changes.h"
#include "growing_file.h"
#include "sharing.h"

namespace nas {

namespace {

Answer done(const std::string& note) {
    return {{{"status", number(Status::Ok)}, {"success", "true"}}, false, note};
}

Answer createDir(Service& service, Request& request, httplib::Response&) {
    const User& user = service.authenticate(request, field(request.query, "sid"));
    Folder folder = service.tree().open(user, field(request.query, "dest_path"));
    const std::string& name = field(request.query, "dest_folder");
    checkName(name);
    requireWritable(service, user, folder);
    requireFreeName(service, user, folder, name);
    if (::mkdirat(folder.fd.get(), name.c_str(), 0755) != 0) {
        throw errnoError(errno, name);
    }
    service.changeLog().add({Action::Made, true, placeOf(folder, name), "", authorOf(request)});
    return done("made " + name);
}

std::vector<Shape> deleteForms() {
    std::vector<Shape> shapes = withProfile({"file_name", "file_total=1", "path"});
    // The thumbnails are spoken of only where the profile is.
    for (size_t i = 1; i <= 2; ++i) {
        Shape thumbs = shapes[i];
        thumbs.push_back("clean_thumb=1");
        shapes.push_back(thumbs);
    }
    return shapes;
}

Answer remove(Service& service, Request& request, httplib::Response&) {
    static const std::vector<Shape> shapes = deleteForms();
    Fields form = readForm(request);
    requireShape(form, shapes, "form");
    const User& user = service.authenticate(request, field(request.query, "sid"));
    Place place = findChangeable(service, user, field(form, "path"), field(form, "file_name"), form);
    bool kept = discard(service, place);
    service.changeLog().add(
        {Action::Deleted, place.entry.isFolder, placeOf(place.folder, place.name), "", authorOf(request)});
    return done(place.name + (kept ? " to the recycle folder" : " for good"));
}

Answer renameIn(Service& service, Request& request, const Fields& form) {
    const User& user = service.authenticate(request, field(request.query, "sid"));
    Place place = findChangeable(service, user, field(form, "path"), field(form, "source_name"), form);
    const std::string& name = field(form, "dest_name");
    requireMovable(place);
    requireFreeName(service, user, place.folder, name);
    const std::string from = placeOf(place.folder, place.name);
    const std::string to = placeOf(place.folder, name);
    const bool follows = hasField(form, "sn");
    const std::set<std::string> shares = follows ? sharesBelow(service, from) : std::set<std::string>();
    renameInto(place.folder.fd.get(), place.name, place.folder.fd.get(), name, false);
    service.changeLog().add({Action::Renamed, place.entry.isFolder, to, from, authorOf(request)});
    if (follows) {
        followFolder(service, shares, from, to);
    }
    return done(place.name + " to " + name);
}

std::vector<Shape> renameForms() {
    std::vector<Shape> shapes = withProfile({"path", "source_name", "dest_name"});
    shapes.push_back({"path", "source_name", "dest_name", "sn"});
    return shapes;
}

Answer rename(Service& service, Request& request, httplib::Response&) {
    static const std::vector<Shape> shapes = renameForms();
    const Fields form = readForm(request);
    requireShape(form, shapes, "form");
    if (!hasField(form, "sn")) {
        return renameIn(service, request, form);
    }
    // The sharing client's: shared folders stay shared.
    try {
        requireSameSession(request, form);
        return renameIn(service, request, form);
    } catch (const StatusError& error) {
        return sharedRefusal(error);
    }
}

}  // namespace

void addFileCalls(std::vector<Call>& calls) {
    calls.push_back({"createdir",
                     kBothCgis,
                     "GET",
                     BodyKind::None,
                     true,
                     {{"func=createdir", "sid", "dest_folder", "dest_path"}},
                     createDir,
                     understood});
    calls.push_back(
        {"delete", kBothCgis, "POST", BodyKind::Form, true, {{"func=delete", "sid"}}, remove, understood});
    calls.push_back(
        {"rename", kBothCgis, "POST", BodyKind::Form, true, {{"func=rename", "sid"}}, rename, understood});
}

}  // namespace nas
