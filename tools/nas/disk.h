#pragma once

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <string>

#include "fd.h"
#include "random.h"
#include "write_all.h"

namespace nas {

// Work on folders by descriptor. Symbolic links are never followed.

// Told how far a work is. May take its time, and may throw to end it.
using Progress = std::function<void(int64_t done, int64_t total)>;

Fd openFolderAt(int at, const std::string& name);
// Opens a folder that is made first if it isn't there.
Fd makeFolderAt(int at, const std::string& name);

// The server's own: unfinished uploads and its notes.
bool hiddenName(const std::string& name);
// Calls back with each name, without the hidden ones, until the callback says false.
void eachName(int folder, const std::function<bool(const std::string&)>& visit);

// The bytes of all files below a folder.
int64_t sumBelow(int folder);
// Whether the first folder is the second one or lies below it.
bool liesWithin(int folder, int other);

// Throws Denied if something in a folder may not be removed by the owner's permission bits.
void requireRemovable(int at, const std::string& name);
// A file, a link or a folder with all that it holds. What isn't there is no error.
void removeTree(int at, const std::string& name);
// Takes a copy with times and permissions; holes stay holes. Nothing is left if it fails.
void copyTree(int from, const std::string& name, int to, const std::string& newName,
              const Progress& progress);

}  // namespace nas
