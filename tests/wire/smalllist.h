#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "recordlist.h"
#include "support/logcapture.h"
#include "support/wire.h"

namespace wire {

/// What doesn't fit into the caller's list is 122 with the server's total alone; `listOf` makes a reply of
/// so many records and a total of 9.
template <class Args, class Record, class ListOf>
void expectTooSmallListIs122(const ListOf& listOf, CallersList<Record> Args::*records,
                             const std::string& line) {
    const struct {
        uint32_t capacity;
        int records;
        bool fits;
    } rows[] = {{3, 3, true}, {0, 0, true}, {3, 4, false}, {2, 3, false}, {0, 1, false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.records) + " records for " + std::to_string(row.capacity));
        RawServer server({Reply::json(listOf(row.records))});
        Args call(server);
        call.count = row.capacity;
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.total, 9u);
        if (row.fits) {
            EXPECT_EQ(call.result, 0u);
            EXPECT_EQ(call.count, row.capacity);
            log.expectNoLines();
        } else {
            EXPECT_EQ(call.result, 122u);
            EXPECT_EQ(call.count, 0u);
            EXPECT_TRUE((call.*records).isUntouched());
            log.expectLines({line});
        }
    }
}

}  // namespace wire
