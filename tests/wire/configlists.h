#pragma once

#include <string>
#include <vector>

#include "support/configrecords.h"

namespace wire {

inline void freeItem(WFM_TORVI_GET_DEVICE_CONFIG_ITEM_INFO* item) {
    delete[] item->pszValue;
    delete item;
}
inline void freeItem(WFM_TORVI_CONFIG_NOTIFY_ITEM_INFO* item) {
    delete item;
}

/// A list record that a call fills: garbage until then, its items freed by its caller.
template <class List>
struct FilledList {
    using Items = decltype(List::lppItems);
    const Items garbage = reinterpret_cast<Items>(0xABCD);
    List record{0xABCD, garbage};

    FilledList() = default;
    FilledList(const FilledList&) = delete;
    FilledList& operator=(const FilledList&) = delete;
    ~FilledList() {
        if (isUntouched()) return;
        for (uint32_t i = 0; i < record.dwCount; ++i) freeItem(record.lppItems[i]);
        delete[] record.lppItems;
    }

    bool isUntouched() const { return record.dwCount == 0xABCD && record.lppItems == garbage; }
    bool isEmpty() const { return record.dwCount == 0 && record.lppItems == nullptr; }
    std::vector<std::string> texts() const {
        if (isUntouched()) return {"untouched"};
        std::vector<std::string> all;
        for (uint32_t i = 0; i < record.dwCount; ++i) all.push_back(describe(*record.lppItems[i]));
        return all;
    }
};

}  // namespace wire
