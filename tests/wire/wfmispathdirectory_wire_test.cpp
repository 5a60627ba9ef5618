// WFMIsPathDirectory: what is its own. What every call shares stands in everycall_wire_test.cpp, and what
// becomes of the path in wfmgetpathinformation_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "lines.h"
#include "refusals.h"
#include "routes.h"
#include "support/logcapture.h"
#include "support/rawserver.h"
#include "support/session.h"
#include "support/wire.h"
#include "teamfolders.h"

using namespace wire;

namespace {

struct IsDirectoryCall {
    const wchar_t* slaveID = nullptr;
    const wchar_t* path = L"/home/a";
    uint32_t result = 0xABCD;
    bool isDirectory = true;
    uint32_t* resultWord = &result;
    bool* out = &isDirectory;

    IsDirectoryCall() = default;
    IsDirectoryCall(const IsDirectoryCall&) = delete;
    IsDirectoryCall& operator=(const IsDirectoryCall&) = delete;

    uint32_t run(_WFM_AUTH_CONTEXT* session, uint32_t port) {
        return WFMIsPathDirectory(session, kServer, port, slaveID, path, nullptr, resultWord, out);
    }
    bool isUntouched() const { return result == 0xABCD && isDirectory; }
};

std::string failedLine(int dwStatus, int result) {
    return "[WFM] WFMIsPathDirectory: WFMGetPathInformation failed(dwParseStatus=" +
           std::to_string(dwStatus) + ")(dwStatus=" + std::to_string(result) + ")";
}

class WFMIsPathDirectoryWire : public testing::Test {
protected:
    SessionPtr session = makeTeamSession();
    LogCapture log;
};

}  // namespace

TEST_F(WFMIsPathDirectoryWire, AsksForThePathSplitAtItsLastSlash) {
    expectOnEveryRoute(
        "func=stat&path=%2Fhome%2Fb%20c&file_total=1&file_name=a&sid=sid123",
        [](_WFM_AUTH_CONTEXT* context, uint32_t port, const wchar_t* slaveID) {
            IsDirectoryCall call;
            call.path = L"/home/b c/a";
            call.slaveID = slaveID;
            call.run(context, port);
        },
        routes("torvisrv.fcgi"));
}

TEST_F(WFMIsPathDirectoryWire, LeavesTheMappingToTheStat) {
    RawServer server({Reply::json(R"({"total":1,"datas":[{"filename":"S","isfolder":1,"exist":1}]})")});
    IsDirectoryCall call;
    call.path = L"/home/.Torvi/T";
    EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_TRUE(call.isDirectory);
    expectRequestLine(server.onlyRequest(),
                      "GET /Node/cgi-bin/torvi/torvisrv.cgi?func=stat&path=vtf%3A%2F%2FS&file_total=1&"
                      "file_name=&sid=sid123 HTTP/1.1");
}

TEST_F(WFMIsPathDirectoryWire, TellsFoldersFromFilesAndQuietlyFromNothing) {
    const struct {
        const char* reply;
        uint32_t result;
        bool isDirectory;
    } rows[] = {{R"({"total":1,"datas":[{"filename":"a","isfolder":1,"exist":1}]})", 0, true},
                {R"({"total":1,"datas":[{"filename":"a","isfolder":0,"exist":1}]})", 0, false},
                {R"({"total":1,"datas":[{"filename":"a","exist":1}]})", 0, false},
                {R"({"total":1,"datas":[{"filename":"a","isfolder":1,"exist":0}]})", 3, false},
                {R"({"total":1,"datas":[{"filename":"b","isfolder":1,"exist":1}]})", 3, false},
                {R"({"status":5})", 3, false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        RawServer server({Reply::json(row.reply)});
        IsDirectoryCall call;
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(call.result, row.result);
        EXPECT_EQ(call.isDirectory, row.isDirectory);
    }
    log.expectNoLines();
}

TEST_F(WFMIsPathDirectoryWire, OtherOutcomesAreNoFolderAndAreLogged) {
    struct Row {
        const char* reply;
        uint32_t dwStatus;
        int32_t result;
        std::vector<LogLine> before;
    };
    const Row rows[] = {
        {R"({"status":4})", 0, 5, {}},
        {R"({"status":3})", 0, -1, {"[WFM] WFMGetPathInformation: ERROR_UNKNOWN Status(-29)"}},
        {"{}", 14, -1, {"[WFM] WFMGetPathInformation: Get path num (0) != 1", "summary"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.reply);
        RawServer server({Reply::json(row.reply)});
        IsDirectoryCall call;
        log.clear();
        EXPECT_EQ(call.run(session.get(), server.port()), row.dwStatus);
        EXPECT_EQ(static_cast<int32_t>(call.result), row.result);
        EXPECT_FALSE(call.isDirectory);
        std::vector<LogLine> expected = row.before;
        if (row.dwStatus != 0) expected.back() = summaryLine("WFMGetPathInformation", server.port(), 14);
        expected.emplace_back(failedLine(static_cast<int>(row.dwStatus), row.result));
        EXPECT_EQ(log.lines(), expected);
    }
}

TEST_F(WFMIsPathDirectoryWire, SharesBareNamesAndASlashAtTheEndAreRefusedByTheStat) {
    for (const wchar_t* path : {L"/share", L"name", L"/home/a/", L"/"}) {
        log.clear();
        IsDirectoryCall call;
        call.path = path;
        EXPECT_EQ(call.run(session.get(), 80), 8u);
        EXPECT_EQ(call.result, 0xFFFFFFFFu);
        EXPECT_FALSE(call.isDirectory);
        log.expectLines({refusedLine("WFMGetPathInformation", 80), failedLine(8, -1)});
    }
}

TEST_F(WFMIsPathDirectoryWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    expectRefusals<IsDirectoryCall>(
        log, session.get(), "WFMIsPathDirectory",
        {[](IsDirectoryCall& call) { call.path = nullptr; }, [](IsDirectoryCall& call) { call.path = L""; },
         [](IsDirectoryCall& call) { call.resultWord = nullptr; },
         [](IsDirectoryCall& call) { call.out = nullptr; }});
}
