#pragma once

#include <WebFileManShareAPI.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "window.h"

namespace torvi {

// What the calls allocate within a record of the caller's.
template <typename Record>
void freeContent(Record&) {}
inline void freeContent(_WFM_TORVI_TEAM_FOLDER_INFORMATION& record) {
    for (uint32_t i = 0; i < record.dwReceiverCount; ++i) delete record.lppReceivers[i];
    delete[] record.lppReceivers;
}
inline void freeContent(_WFM_SHARE_MEMBER_INFORMATION& record) {
    delete[] record.pszDescription;
}
inline void freeContent(_WFM_USER_INFORMATION& record) {
    delete[] record.pszDescription;
}

/// An array of records for a call to fill.
template <typename Record>
class RecordPage {
public:
    explicit RecordPage(uint32_t capacity) : m_records(capacity), m_count(capacity) {
        for (Record& record : m_records) m_list.push_back(&record);
    }
    ~RecordPage() {
        for (Record& record : m_records) freeContent(record);
    }
    RecordPage(const RecordPage&) = delete;
    RecordPage& operator=(const RecordPage&) = delete;

    uint32_t capacity() const { return static_cast<uint32_t>(m_records.size()); }
    uint32_t* count() { return &m_count; }
    Record** list() { return m_list.data(); }
    const Record* begin() const { return m_records.data(); }
    const Record* end() const { return begin() + std::min<size_t>(m_count, m_records.size()); }

private:
    std::vector<Record> m_records;
    std::vector<Record*> m_list;
    uint32_t m_count;
};

/// Asks for one page after the other: `ask(lower, upper, page)` fills it and gives how many records there are
/// in all, `take(record)` gets each. Gives the last such number.
template <typename Record, typename Ask, typename Take>
uint32_t eachRecord(const Window& window, Ask ask, Take take) {
    uint32_t lower = window.offset;
    uint32_t left = window.limit;
    for (;;) {
        const uint32_t size = window.limit > 0 ? std::min(window.pageSize, left) : window.pageSize;
        RecordPage<Record> page(size);
        const uint32_t total = ask(lower, lower + size, page);
        for (const Record& record : page) take(record);
        lower += size;
        left -= window.limit > 0 ? size : 0;
        if (lower >= total || (window.limit > 0 && left == 0)) return total;
    }
}

}  // namespace torvi
