#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>

#include "users.h"

namespace nas {

class Service;

struct Space {
    int64_t total = 0;
    int64_t free = 0;
};

// Of the disk that holds the root.
Space diskSpace(Service& service);
// What counts of a home, which is all but the work on versions.
int64_t usedInHome(Service& service, const std::string& user);
int64_t usedInShare(Service& service, const std::string& share);

// Sizes go out as whole numbers of a unit, each unit 1024 of the one before. This is the largest that leaves
// no remainder of the size; of several sizes, or them.
int exactUnit(int64_t size, int units);
std::string inUnit(int64_t size, int unit);

// The sizes of folders, as they were when somebody last had them counted.
class FolderSizes {
public:
    int64_t of(Service& service, const std::string& place, bool countAgain);

private:
    std::mutex mutex_;
    std::map<std::string, int64_t> sizes_;
};

}  // namespace nas
