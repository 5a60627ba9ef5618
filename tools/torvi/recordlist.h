#pragma once

#include <cstdint>
#include <vector>

namespace torvi {

/// The array that a call hands over, with its records.
template <typename Record>
class RecordList {
public:
    RecordList() = default;
    ~RecordList() {
        for (const Record* record : records()) delete record;
        delete[] m_list;
    }
    RecordList(const RecordList&) = delete;
    RecordList& operator=(const RecordList&) = delete;

    uint32_t* count() { return &m_count; }
    Record*** list() { return &m_list; }
    std::vector<const Record*> records() const {
        if (m_list == nullptr) return {};
        return {m_list, m_list + m_count};
    }

private:
    uint32_t m_count = 0;
    Record** m_list = nullptr;
};

}  // namespace torvi
