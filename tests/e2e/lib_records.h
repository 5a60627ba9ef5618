#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace e2e {

/// Zeroed records of the caller's, and the list of pointers to them that a call fills.
template <class Record>
class OwnRecords {
public:
    explicit OwnRecords(std::uint32_t capacity) : m_records(capacity) {
        for (Record& record : m_records) m_list.push_back(&record);
        m_list.push_back(nullptr);  // also an empty list has an address
    }
    Record** list() { return m_list.data(); }
    Record* begin() { return m_records.data(); }
    Record* end() { return m_records.data() + m_records.size(); }
    Record& operator[](std::size_t index) { return m_records[index]; }

private:
    std::vector<Record> m_records;
    std::vector<Record*> m_list;
};

/// A window of a list: the rows from the lower one up to the upper one, which isn't among them, and what the
/// server says of all of them.
struct Window {
    std::uint32_t lower = 0, upper = 0xFFFFFFFF;
    std::uint32_t capacity = 10;
    std::uint32_t total = 0xABCD, count = 0xABCD;
};

}  // namespace e2e
