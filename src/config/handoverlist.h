#pragma once

#include <new>
#include <type_traits>
#include <vector>

namespace Lattice {

/// A list of items that the caller frees. `make` gives a new item, or null where memory is short: then all
/// that was made goes back through `free`, the list is empty and the answer false.
template <class List, class Element, class Make, class Free>
bool HandOverList(List& list, const std::vector<Element>& elements, Make make, Free free) {
    using Item = std::remove_pointer_t<decltype(list.lppItems)>;
    list = {};
    if (elements.empty()) return true;
    list.lppItems = new (std::nothrow) Item[elements.size()]{};
    for (const Element& element : elements) {
        const Item item = list.lppItems != nullptr ? make(element) : nullptr;
        if (item == nullptr) {
            while (list.dwCount > 0) free(list.lppItems[--list.dwCount]);
            delete[] list.lppItems;
            list = {};
            return false;
        }
        list.lppItems[list.dwCount++] = item;
    }
    return true;
}

}  // namespace Lattice
