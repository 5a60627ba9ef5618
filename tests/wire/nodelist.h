#pragma once

#include "lists.h"
#include "support/wire.h"

namespace wire {

/// The arguments of WFMGetNodeList, good ones until a test changes them, and what came back. The same object
/// asks for one page after the other.
struct NodeListCall {
    const wchar_t* slaveID = nullptr;
    const wchar_t* pattern = L"*";
    const wchar_t* path = L"/home";
    uint32_t typeFilter = 3;
    uint32_t fieldMask = 0x20;
    bool* cancel = nullptr;
    uint32_t limit = 10;
    bool wantSort = true;

    uint32_t result = 0xABCD;
    uint32_t total = 0xABCD;
    uint32_t start = 0;
    uint32_t teamIndex = 0;
    uint32_t teamCount = 0;
    RecordList records;

    // What a test of the refusals sets to null.
    uint32_t* resultWord = &result;
    uint32_t* totalOut = &total;
    uint32_t* startInOut = &start;
    uint32_t* countOut = &records.count;
    uint32_t* teamIndexInOut = &teamIndex;
    uint32_t* teamCountInOut = &teamCount;
    _WFM_PATH_INFORMATION*** listOut = &records.list;

    NodeListCall() = default;
    NodeListCall(const NodeListCall&) = delete;
    NodeListCall& operator=(const NodeListCall&) = delete;

    uint32_t run(_WFM_AUTH_CONTEXT* session, uint32_t port) {
        result = total = 0xABCD;
        records = {};
        return WFMGetNodeList(session, kServer, port, slaveID, pattern, path, typeFilter, fieldMask, cancel,
                              limit, wantSort, resultWord, totalOut, startInOut, countOut, teamIndexInOut,
                              teamCountInOut, listOut);
    }

    bool isUntouched() const {
        return result == 0xABCD && total == 0xABCD && start == 0 && teamIndex == 0 && teamCount == 0 &&
               records.isUntouched();
    }

    /// The two numbers.
    void expectNumbers(uint32_t dwStatus, int32_t resultWordValue, _WFM_AUTH_CONTEXT* session, uint32_t port,
                       const char* file = __builtin_FILE(), int where = __builtin_LINE()) {
        const testing::ScopedTrace trace(file, where, "numbers of WFMGetNodeList");
        EXPECT_EQ(run(session, port), dwStatus);
        EXPECT_EQ(static_cast<int32_t>(result), resultWordValue);
    }
};

}  // namespace wire
