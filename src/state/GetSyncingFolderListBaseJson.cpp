#include "state/GetSyncingFolderListBaseJson.h"

#include <algorithm>
#include <array>

#include "core/Utils.h"

using namespace Lattice;

namespace {

constexpr std::array<const char*, 7> kUnits{"Byte", "KB", "MB", "GB", "TB", "PB", "EB"};

/// The power of 1024 that a unit is, or -1.
int PowerOf(const std::wstring& unit) {
    const auto found = std::find_if(kUnits.begin(), kUnits.end(), [&](const char* name) {
        return ToQString(unit).compare(QLatin1String(name), Qt::CaseInsensitive) == 0;
    });
    return found != kUnits.end() ? static_cast<int>(found - kUnits.begin()) : -1;
}

}  // namespace

bool CGetSyncingFolderListBaseJson::IsValidSizeUnit(std::wstring unit) const {
    return PowerOf(unit) >= 0;
}

int64_t CGetSyncingFolderListBaseJson::GetFileSizeByte(std::wstring unit, std::wstring number) const {
    const qlonglong value = ToQString(number).toLongLong();
    if (value == 0) return 0;
    const int power = PowerOf(unit);
    if (value < 0 || power < 0) return -1;
    return static_cast<int64_t>(static_cast<uint64_t>(value) << (10 * power));
}
