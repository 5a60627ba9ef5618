#include "sharing/linkform.h"

namespace Lattice {

std::vector<std::wstring> LinkItems(const wchar_t* text) {
    std::vector<std::wstring> items;
    const std::wstring whole = TextOf(text);
    for (size_t at = 0; at <= whole.size();) {
        const size_t end = std::min(whole.find(L';', at), whole.size());
        if (end > at) items.push_back(whole.substr(at, end - at));
        at = end + 1;
    }
    return items;
}

}  // namespace Lattice
