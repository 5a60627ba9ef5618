#include "sharing/linkform.h"

#include <algorithm>

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

std::vector<std::wstring> FileItems(const wchar_t* text) {
    std::vector<std::wstring> items = LinkItems(text);
    const bool endsOpen = IsGiven(text) && TextOf(text).back() != L';';
    if (endsOpen && items.size() > 1) items.pop_back();
    return items;
}

}  // namespace Lattice
