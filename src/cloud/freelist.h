#pragma once

#include <algorithm>
#include <cstdint>

namespace Lattice {

/// Takes back a list that was handed out, its entries first, and leaves none. A null list is empty whatever
/// the count.
template <class Entry, class Free>
void FreeList(Entry*& list, int32_t& count, Free free) {
    if (list != nullptr && count > 0) std::for_each(list, list + count, free);
    delete[] list;
    list = nullptr;
    count = 0;
}

}  // namespace Lattice
