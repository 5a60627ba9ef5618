#include "disk_space.h"

#include <sys/statvfs.h>

#include <algorithm>
#include <cerrno>

#include "disk.h"
#include "service.h"

namespace nas {

Space diskSpace(Service& service) {
    struct statvfs info {};
    if (::statvfs(service.options().root.c_str(), &info) != 0) {
        throw errnoError(errno, "the disk");
    }
    const auto block = static_cast<int64_t>(info.f_frsize);
    return {static_cast<int64_t>(info.f_blocks) * block, static_cast<int64_t>(info.f_bavail) * block};
}

int64_t usedInHome(Service& service, const std::string& user) {
    Fd home = service.tree().openHome(user);
    int64_t used = sumBelow(home.get());
    try {
        used -= sumBelow(openFolderAt(home.get(), kVersions).get());
    } catch (const StatusError&) {
        // No versions yet.
    }
    return used;
}

int64_t usedInShare(Service& service, const std::string& share) {
    return sumBelow(service.tree().openRootFolder(share).get());
}

int exactUnit(int64_t size, int units) {
    int unit = 0;
    while (unit + 1 < units && size != 0 && size % 1024 == 0) {
        size /= 1024;
        ++unit;
    }
    return unit;
}

std::string inUnit(int64_t size, int unit) {
    return std::to_string(size >> 10 * unit);
}

int64_t FolderSizes::of(Service& service, const std::string& place, bool countAgain) {
    std::lock_guard<std::mutex> lock(mutex_);
    auto it = sizes_.find(place);
    if (it == sizes_.end() || countAgain) {
        const std::string homes = "homes/";
        const int64_t size = place.rfind(homes, 0) == 0 ? usedInHome(service, place.substr(homes.size()))
                                                        : usedInShare(service, place);
        it = sizes_.insert_or_assign(place, size).first;
    }
    return it->second;
}

}  // namespace nas
