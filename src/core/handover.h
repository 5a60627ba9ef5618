#pragma once

#include <vector>

namespace Lattice {

/// Records as a list that the caller frees: an array from new[] of records from new; null for none.
template <class Record>
Record** HandOver(const std::vector<Record>& records) {
    if (records.empty()) return nullptr;
    auto** const list = new Record*[records.size()]();
    for (size_t i = 0; i < records.size(); ++i) list[i] = new Record(records[i]);
    return list;
}

}  // namespace Lattice
