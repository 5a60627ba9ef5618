#include "cloud/addresslist.h"

#include <QChar>
#include <algorithm>

namespace Lattice {

namespace {

std::wstring WithoutCase(std::wstring text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](wchar_t c) { return static_cast<wchar_t>(QChar::toCaseFolded(static_cast<uint>(c))); });
    return text;
}

}  // namespace

bool AddressList::FindStringInList(const std::wstring& address) const {
    return m_folded.count(WithoutCase(address)) != 0;
}

void AddressList::add(const std::wstring& address) {
    if (FindStringInList(address)) return;
    m_addresses.push_back(address);
    m_folded.insert(WithoutCase(address));
}

}  // namespace Lattice
