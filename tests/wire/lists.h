#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "WebFileManAPI.h"
#include "support/pathrecord.h"

namespace wire {

/// A list that a call hands out: garbage until the call fills it, deleted by its caller.
struct RecordList {
    _WFM_PATH_INFORMATION** list = reinterpret_cast<_WFM_PATH_INFORMATION**>(0xABCD);
    uint32_t count = 0xABCD;

    bool isUntouched() const {
        return count == 0xABCD && list == reinterpret_cast<_WFM_PATH_INFORMATION**>(0xABCD);
    }
    bool isEmpty() const { return count == 0 && list == nullptr; }

    /// The records as text; the list is deleted.
    std::vector<std::string> take() {
        if (isUntouched()) return {"untouched"};
        std::vector<std::string> texts;
        for (uint32_t i = 0; i < count; ++i) {
            texts.push_back(describe(*list[i]));
            delete list[i];
        }
        delete[] list;
        list = nullptr;
        count = 0;
        return texts;
    }
};

/// A record full of garbage.
struct GarbageRecord {
    GarbageRecord() { std::memset(static_cast<void*>(&record), 0x5A, sizeof record); }
    /// As the call left it. Garbage that the call left alone shows.
    std::string text() const { return isUntouched() ? "untouched" : describe(record); }
    bool isUntouched() const {
        GarbageRecord other;
        return std::memcmp(&record, &other.record, sizeof record) == 0;
    }

    _WFM_PATH_INFORMATION record;
};

}  // namespace wire
