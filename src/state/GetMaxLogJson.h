#pragma once

#include <vector>

#include "WebFileManAPI.h"

/// The newest change of one folder of a request.
struct _TORVI_MAX_LOG_JSON_INFO {
    int32_t nFolderIndex;  ///< -1: overall
    int64_t llMaxLog;
};

namespace Lattice {

/// A number below 0 is one that the server didn't give.
inline void TakeLogNumber(int64_t& out, int64_t number) {
    if (number >= 0) out = number;
}

}  // namespace Lattice

/// The reply of "nubo_get_max_log": the numbers of the newest changes.
class TORVIAPI_EXPORT CTorviGetMaxLogJson {
public:
    explicit CTorviGetMaxLogJson(uint32_t folderCount = 0) : folderCount(folderCount) {}

    int Parser(char* text);
    int GetStatus() const { return status; }

    uint32_t folderCount;
    int32_t status = -1;
    std::vector<_TORVI_MAX_LOG_JSON_INFO> folders;
    int64_t maxLog = -1;
    int64_t notify = -1;
    int64_t globalNotify = -1;
    int64_t syncSignal = -1;
};
