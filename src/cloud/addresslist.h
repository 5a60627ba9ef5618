#pragma once

#include <string>
#include <unordered_set>
#include <vector>

namespace Lattice {

/// Addresses in the order in which they came, none of them twice; case doesn't count.
class AddressList {
public:
    bool FindStringInList(const std::wstring& address) const;
    void add(const std::wstring& address);
    const std::vector<std::wstring>& all() const { return m_addresses; }

private:
    std::vector<std::wstring> m_addresses;
    std::unordered_set<std::wstring> m_folded;
};

}  // namespace Lattice
