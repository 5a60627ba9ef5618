#pragma once

#include <json/value.h>

#include <string>
#include <vector>

#include "WebFileManAPI.h"

namespace Lattice {

/// Which fields of a record are wanted.
enum FieldMask : uint32_t {
    kFieldAccess = 0x01,
    kFieldModifiedTime = 0x02,
    kFieldSecondTime = 0x04,
    kFieldIsFolder = 0x08,
    kFieldSize = 0x10,
    kFieldName = 0x20,
    kFieldShare = 0x40,
    kFieldPrivilegeEx = 0x80,
    kFieldUploadPrivilege = 0x100,
    kFieldHasChild = 0x200,
};

/// Which entries of a folder are wanted.
enum TypeFilter : uint32_t { kTypeFiles = 1, kTypeFolders = 2, kTypeCheckChild = 4 };

/// The record that says nothing yet.
_WFM_PATH_INFORMATION EmptyPathRecord();

/// What an entry of a listing or a stat reply says of itself. All but the name is read when it is asked for:
/// what an entry that isn't wanted says elsewhere must not spoil the page.
struct PathEntry {
    explicit PathEntry(const Json::Value& entry);

    bool isFolder() const;  // an entry that doesn't say so is a file
    int64_t modifiedTime() const;
    /// An entry that tells neither its existence nor its time counts as gone.
    bool exists() const;
    /// Whether the type filter wants it.
    bool wantedBy(uint32_t typeFilter) const;
    /// Fills name, kind, access, size and times of a record, as far as they are wanted.
    void fill(_WFM_PATH_INFORMATION& record, uint32_t fieldMask) const;

    const Json::Value& json;
    std::wstring name;
};

/// The list as the caller gets it and deletes it; null when there is nothing to list.
_WFM_PATH_INFORMATION** HandOverList(const std::vector<_WFM_PATH_INFORMATION>& first,
                                     const std::vector<_WFM_PATH_INFORMATION>& second = {});

}  // namespace Lattice
