#pragma once

#include <string>

#include "disk.h"
#include "profile.h"
#include "tree.h"

namespace nas {

class Service;

// Something that is there, and where.
struct Place {
    Folder folder;
    std::string name;
    Entry entry;
};

// Finds it, checks what the client believes of it, and that it may be taken away from where it is.
Place findChangeable(Service& service, const User& user, const std::string& path, const std::string& name,
                     const Fields& form);

// Throws Denied unless entries may come and go in this folder.
void requireWritable(Service& service, const User& user, const Folder& folder);
// Throws Denied for the folders that the server keeps in a home.
void requireMovable(const Place& place);
// Throws Exists or FolderExists if the name is taken.
void requireFreeName(Service& service, const User& user, const Folder& folder, const std::string& name);
// The bytes that the quota of a folder's home, or its volume, leaves; -1 where there is no limit.
int64_t roomIn(Service& service, const Folder& folder);

// Takes something to another folder: at once where one volume holds both, else by copying it first.
void carry(const Place& place, const Folder& target, const Progress& progress);

// Takes it to the recycle folder of its home, under the steps that lead to it. What lies in no home, in one
// without a recycle bin, in the recycle folder or among the versions goes for good. Tells which it was.
bool discard(Service& service, const Place& place);

// Where something in a recycle folder was, as the steps below its home; throws Missing if it isn't in one.
std::vector<std::string> formerPlace(const Folder& folder);
// Throws unless the place is free, or holds a file that may be replaced by this one.
void requireRecoverable(Service& service, const Place& place, bool overwrite);
// Takes it back there, with the folders that it needs.
void recover(Service& service, const Place& place, bool overwrite, const Progress& progress);

}  // namespace nas
