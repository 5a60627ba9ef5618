#pragma once

#include <cstdint>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "WebFileManAPI.h"

/// Where a row's call goes, and how.
struct CloudTarget {
    const wchar_t* server;
    bool secure = false;
    uint32_t proxyMode = 0;
    const wchar_t* proxyHost = nullptr;
    const wchar_t* proxyUser = nullptr;
    const wchar_t* proxyPassword = nullptr;
};

/// Every call on the cloud, as a row: how it is called, and how it words its failures. A row here gives a
/// call all tests of the shared road (everycloudcall_wire_test.cpp). Lines stand whole; those that a row
/// leaves out are the family's usual ones, with a colon. {http} and {status} are filled in.
struct CloudRow {
    const char* name;
    /// Calls it with good arguments.
    std::function<uint32_t(const CloudTarget&)> run;
    const char* goodReply;
    const char* goodLine = nullptr;       ///< what `goodReply` leaves in the log, at level Debug
    const char* proxyRefused = nullptr;   ///< HTTP 407
    const char* unavailable = nullptr;    ///< HTTP 503
    const char* failed = nullptr;         ///< an HTTP status that isn't tested
    const char* notUnderstood = nullptr;  ///< the line of 14
    const char* summary = nullptr;        ///< empty: none
    bool has404 = false;                  ///< tells 404 (10) from other failures
    bool readsReply = true;               ///< an answer that isn't understood is 14
};

inline void PrintTo(const CloudRow& row, std::ostream* out) {
    *out << row.name;
}

/// The rows by family; together they are the table.
std::vector<CloudRow> cloudAccountRows();
std::vector<CloudRow> cloudDeviceRows();
