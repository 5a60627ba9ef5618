#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "WebFileManAPI.h"
#include "support/pathrecord.h"

namespace wire {

/// A list that a call hands out: garbage until the call fills it, deleted by its caller.
template <class Record>
struct ListOf {
    Record** list = reinterpret_cast<Record**>(0xABCD);
    uint32_t count = 0xABCD;

    bool isUntouched() const { return count == 0xABCD && list == reinterpret_cast<Record**>(0xABCD); }
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

using RecordList = ListOf<_WFM_PATH_INFORMATION>;

/// A record full of garbage.
template <class Record>
struct Garbage {
    Garbage() { std::memset(static_cast<void*>(&record), 0x5A, sizeof record); }
    /// As the call left it. Garbage that the call left alone shows.
    std::string text() const { return isUntouched() ? "untouched" : describe(record); }
    bool isUntouched() const {
        Garbage other;
        return std::memcmp(&record, &other.record, sizeof record) == 0;
    }

    Record record;
};

using GarbageRecord = Garbage<_WFM_PATH_INFORMATION>;

}  // namespace wire
