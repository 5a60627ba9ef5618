#pragma once

#include <vector>

#include "WebFileManAPI.h"

/// The reply of "nubo_get_sync_log": changes from a number on.
class TORVIAPI_EXPORT CGetTorviSyncLogJson {
public:
    CGetTorviSyncLogJson() = default;
    /// Keeps one record more than a caller has room for, and no flood of them.
    explicit CGetTorviSyncLogJson(uint32_t recordCapacity) : capacity(recordCapacity) {}

    int Parser(char* text);
    /// The server's own number.
    int GetStatus() const { return status; }
    bool IsEnd() const { return end; }

    int32_t status = -1;
    bool end = false;
    uint32_t capacity = UINT32_MAX;
    std::vector<_WFM_SYNC_LOG_INFORMATION> records;
};
