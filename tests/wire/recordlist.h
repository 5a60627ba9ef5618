#pragma once

#include <string>
#include <vector>

#include "lists.h"

namespace wire {

/// A list that the caller gives: records full of garbage, and the pointers to them.
template <class Record>
struct CallersList {
    explicit CallersList(size_t size = 3) : records(size) {
        for (Garbage<Record>& record : records) pointers.push_back(&record.record);
    }
    CallersList(const CallersList&) = delete;
    CallersList& operator=(const CallersList&) = delete;

    Record** data() { return pointers.data(); }
    std::vector<std::string> texts() const {
        std::vector<std::string> all;
        for (const Garbage<Record>& record : records) all.push_back(record.text());
        return all;
    }
    bool isUntouched() const { return texts() == std::vector<std::string>(records.size(), "untouched"); }

    std::vector<Garbage<Record>> records;
    std::vector<Record*> pointers;
};

}  // namespace wire
