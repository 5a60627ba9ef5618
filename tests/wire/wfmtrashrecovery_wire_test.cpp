// WFMTrashRecovery: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <algorithm>
#include <cwchar>
#include <iterator>
#include <string>
#include <vector>

// For a session in a cluster whose team folders have no nodes, which no login makes.
#include "../../src/core/authcontext.h"
#include "routes.h"
#include "support/logcapture.h"
#include "support/rawserver.h"
#include "support/session.h"
#include "support/wire.h"
#include "teamfolders.h"

using namespace wire;

namespace {

const char* const kGood = R"({"status":1,"pid":"4711"})";

struct RecoveryCall {
    const wchar_t* slaveID = nullptr;
    uint32_t mode = 1;
    const wchar_t* path = L"/home/@Recycle";
    const wchar_t* file = L"a.txt";
    wchar_t pid[300];
    wchar_t* buffer = pid;
    uint32_t capacity = 260;
    uint32_t result = 0xABCD;
    uint32_t* resultWord = &result;

    RecoveryCall() { std::fill(std::begin(pid), std::end(pid), L'#'); }
    RecoveryCall(const RecoveryCall&) = delete;
    RecoveryCall& operator=(const RecoveryCall&) = delete;

    uint32_t run(_WFM_AUTH_CONTEXT* session, uint32_t port) {
        return WFMTrashRecovery(session, kServer, port, slaveID, mode, path, file, nullptr, buffer, capacity,
                                resultWord);
    }
    bool isPidUntouched() const {
        return std::all_of(std::begin(pid), std::end(pid), [](wchar_t c) { return c == L'#'; });
    }
    /// No character behind the terminator was written.
    bool isUntouchedBehind(size_t length) const {
        return std::all_of(std::begin(pid) + length + 1, std::end(pid), [](wchar_t c) { return c == L'#'; });
    }
};

std::string query(const std::string& path, const std::string& file, const std::string& mode = "1") {
    return "func=trash_recovery&sid=sid123&source_file=" + file + "&mode=" + mode +
           "&source_total=1&source_path=" + path;
}

const std::string kName = "[WFMShare] WFMTrashRecovery";

std::string summary(uint32_t port, int dwStatus) {
    return kName + "(127.0.0.1:" + std::to_string(port) + ") failed dwStatus(" + std::to_string(dwStatus) +
           ")";
}

class WFMTrashRecoveryWire : public testing::Test {
protected:
    /// A session without a cluster but with team folders.
    SessionPtr teams(const std::vector<TeamFolder>& folders = {{L"/home/.Torvi/T/", L"vtf://S/"}}) {
        return makeTeamSession(folders, "");
    }
    void expectRefused(const wchar_t* path, const wchar_t* file, const SessionPtr& context,
                       const std::string& texts) {
        SCOPED_TRACE(texts);
        RawServer server({Reply::json(kGood)});
        RecoveryCall call;
        call.path = path;
        call.file = file;
        log.clear();
        EXPECT_EQ(call.run(context.get(), server.port()), 14u);
        EXPECT_EQ(call.result, 0xFFFFFFFFu);
        EXPECT_TRUE(call.isPidUntouched());
        EXPECT_EQ(server.connectionCount(), 0u);
        log.expectLines(
            {kName + ": Receiver team folder not support recovery file" + texts, summary(server.port(), 14)});
    }
    void expectAsked(const wchar_t* path, const wchar_t* file, const SessionPtr& context,
                     const std::string& sentPath, const std::string& sentFile) {
        SCOPED_TRACE(sentPath);
        RawServer server({Reply::json(kGood)});
        RecoveryCall call;
        call.path = path;
        call.file = file;
        EXPECT_EQ(call.run(context.get(), server.port()), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_STREQ(std::wstring(call.pid, 4).c_str(), L"4711");
        EXPECT_EQ(server.onlyRequest().queryText(), query(sentPath, sentFile));
    }

    SessionPtr session = makeSession();
    LogCapture log;
};

}  // namespace

TEST_F(WFMTrashRecoveryWire, AsksForTheFileEncodedOnEveryRoute) {
    expectOnEveryRoute(query("%2Fhome%2F%40Recycle%2Fb%20c", "d%26e%20%E6%96%87", "7"),
                       [](_WFM_AUTH_CONTEXT* context, uint32_t port, const wchar_t* slaveID) {
                           RecoveryCall call;
                           call.path = L"/home/@Recycle/b c";
                           call.file = L"d&e \x6587";
                           call.mode = 7;
                           call.slaveID = slaveID;
                           call.run(context, port);
                       });
}

TEST_F(WFMTrashRecoveryWire, AnyModeGoesOut) {
    const std::pair<uint32_t, const char*> rows[] = {
        {0, "0"}, {2147483647, "2147483647"}, {0xFFFFFFFF, "-1"}};
    for (const auto& [mode, sent] : rows) {
        RawServer server({Reply::json(kGood)});
        RecoveryCall call;
        call.mode = mode;
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(server.onlyRequest().queryText(), query("%2Fhome%2F%40Recycle", "a.txt", sent));
    }
}

TEST_F(WFMTrashRecoveryWire, WhatAReceiverDeletedInATeamFolderIsRefused) {
    const SessionPtr context = teams();
    expectRefused(L"/home/@Recycle/.Torvi/T", L"a &", context, "(path=/home/@Recycle/.Torvi/T)(file=a &)");
    expectRefused(L"/home/@Recycle/.Torvi/T/d", L"\x6587", context,
                  "(path=/home/@Recycle/.Torvi/T/d)(file=\xE6\x96\x87)");
    expectRefused(L"/home/@Recycle/.Torvi", L"T", context, "(path=/home/@Recycle/.Torvi)(file=T)");
    // No second slash comes between or behind the two.
    expectRefused(L"/home/@Recycle/.Torvi/T/", L"a", context, "(path=/home/@Recycle/.Torvi/T/)(file=a)");
    expectRefused(L"/home/@Recycle/.Torvi/", L"T/", context, "(path=/home/@Recycle/.Torvi/)(file=T/)");
}

TEST_F(WFMTrashRecoveryWire, ARefusalLooksAtEveryTeamFolderThatHasAPlace) {
    SessionPtr context = teams({{L"/home/.Torvi/A/", L"vtf://1/"}, {L"/home/.Torvi/T/", L"vtf://2/"}});
    expectRefused(L"/home/@Recycle/.Torvi/T", L"a", context, "(path=/home/@Recycle/.Torvi/T)(file=a)");
    // A list that ends early leaves null entries.
    context = teams({{L"/home/.Torvi/T/", L"vtf://1/"}, {L"", L"vtf://2/"}});
    expectRefused(L"/home/@Recycle/.Torvi/T", L"a", context, "(path=/home/@Recycle/.Torvi/T)(file=a)");
    expectAsked(L"/home/@Recycle/.Torvi/X", L"a", context, "%2Fhome%2F%40Recycle%2F.Torvi%2FX", "a");
}

TEST_F(WFMTrashRecoveryWire, ARefusalNeedsNoNodes) {
    std::wstring clientPath = L"/home/.Torvi/T/", serverPath = L"vtf://S/";
    wchar_t* clientPaths[] = {clientPath.data()};
    wchar_t* serverPaths[] = {serverPath.data()};
    WFMUpdateTeamFolderInfo(session.get(), 1, clientPaths, serverPaths, nullptr);
    expectRefused(L"/home/@Recycle/.Torvi/T", L"a", session, "(path=/home/@Recycle/.Torvi/T)(file=a)");
    std::wcscpy(session->szSlaveID, L"node1");
    expectRefused(L"/home/@Recycle/.Torvi/T", L"a", session, "(path=/home/@Recycle/.Torvi/T)(file=a)");
}

TEST_F(WFMTrashRecoveryWire, OnlyTheFirstRecycleFolderIsTakenOutOfThePath) {
    expectRefused(L"/home/@Recycle/.Torvi/@Recycle", L"a", teams({{L"/home/.Torvi/@Recycle/", L"vtf://S/"}}),
                  "(path=/home/@Recycle/.Torvi/@Recycle)(file=a)");
    expectRefused(L"/home/@Recycle/.Torvi/T", L"@Recycle", teams(),
                  "(path=/home/@Recycle/.Torvi/T)(file=@Recycle)");
}

TEST_F(WFMTrashRecoveryWire, WithoutTeamFoldersTheServerIsAsked) {
    const wchar_t* const path = L"/home/@Recycle/.Torvi/T";
    const char* const sent = "%2Fhome%2F%40Recycle%2F.Torvi%2FT";
    expectAsked(path, L"a", session, sent, "a");
    const SessionPtr fileManager = teams();
    useFileManager(*fileManager);
    expectAsked(path, L"a", fileManager, sent, "a");
    log.expectNoLines();
}

TEST_F(WFMTrashRecoveryWire, WhatIsInNoTeamFolderIsAskedFor) {
    const SessionPtr context = teams();
    expectAsked(L"/home/@Recycle/.Torvi/TT", L"a", context, "%2Fhome%2F%40Recycle%2F.Torvi%2FTT", "a");
    expectAsked(L"/home/@Recycle/a/long/folder/name", L"a", context,
                "%2Fhome%2F%40Recycle%2Fa%2Flong%2Ffolder%2Fname", "a");
    expectAsked(L"home/@Recycle/.Torvi/T", L"a", context, "home%2F%40Recycle%2F.Torvi%2FT", "a");
    expectAsked(L"/share/@Recycle/.Torvi/T", L"a", context, "%2Fshare%2F%40Recycle%2F.Torvi%2FT", "a");
    log.expectNoLines();
}

TEST_F(WFMTrashRecoveryWire, ATeamFolderOutsideTheRecycleFolderIsNeitherRefusedNorMapped) {
    expectAsked(L"/home/.Torvi/T/deep/in/it", L"a", teams(), "%2Fhome%2F.Torvi%2FT%2Fdeep%2Fin%2Fit", "a");
}

TEST_F(WFMTrashRecoveryWire, ThePlaceOfDeletedTeamFoldersItselfIsNotTested) {
    const SessionPtr context = teams({{L"/home/.Torvi/", L"vtf://S/"}});
    expectAsked(L"/home/@Recycle", L".Torvi", context, "%2Fhome%2F%40Recycle", ".Torvi");
    expectAsked(L"/home/@Recycle/", L".Torvi/", context, "%2Fhome%2F%40Recycle%2F", ".Torvi%2F");
    expectRefused(L"/home/@Recycle/.Torvi", L"x", context, "(path=/home/@Recycle/.Torvi)(file=x)");
}

TEST_F(WFMTrashRecoveryWire, TheResultIsTheClientCodeAndThePidIsCopied) {
    const struct {
        const char* reply;
        int32_t result;
        const wchar_t* pid;
    } rows[] = {{kGood, 0, L"4711"},
                {R"({"status":1,"pid":4711})", 0, L"4711"},
                {R"({"status":"1","pid":"job-\u6587"})", 0, L"job-\x6587"},
                {R"({"status":1})", 0, L""},
                // Only a success has a pid.
                {R"({"status":4,"pid":"4711"})", -3, L""},
                {R"({"status":5,"pid":"4711"})", -4, L""},
                {R"({"status":3})", -29, L""},
                {R"({"status":0,"pid":"4711"})", -2, L""},
                {R"({"status":34})", -1, L""}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        RawServer server({Reply::json(row.reply)});
        RecoveryCall call;
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(static_cast<int32_t>(call.result), row.result);
        const size_t length = std::wstring(row.pid).size();
        EXPECT_EQ(std::wstring(call.pid, length + 1), std::wstring(row.pid, length + 1));
        EXPECT_TRUE(call.isUntouchedBehind(length));
    }
    log.expectNoLines();
}

TEST_F(WFMTrashRecoveryWire, APidThatDoesNotFitIsMinus23) {
    for (const uint32_t capacity : {1u, 3u, 4u}) {
        SCOPED_TRACE(capacity);
        RawServer server({Reply::json(kGood)});
        RecoveryCall call;
        call.path = L"/home/@Recycle/d&";
        call.capacity = capacity;
        log.clear();
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(static_cast<int32_t>(call.result), -23);
        EXPECT_TRUE(call.isPidUntouched());
        log.expectLines({kName + ": WFM_INSUFFICIENT_BUFFER(path=/home/@Recycle/d&)(file=a.txt)"});
    }
}

TEST_F(WFMTrashRecoveryWire, APidOfAllButOneOfTheCapacityFits) {
    for (const size_t length : {size_t{4}, size_t{259}}) {
        RawServer server({Reply::json(R"({"status":1,"pid":")" + std::string(length, '7') + "\"}")});
        RecoveryCall call;
        call.capacity = static_cast<uint32_t>(length) + 1;
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_EQ(std::wstring(call.pid, length + 1), std::wstring(length, L'7') + L'\0');
        EXPECT_TRUE(call.isUntouchedBehind(length));
    }
}

TEST_F(WFMTrashRecoveryWire, AReplyThatIsNotUnderstoodIs14) {
    for (const char* reply : {"{}", R"({"pid":"4711"})", R"({"status":null,"pid":"4711"})",
                              R"({"status":1,"pid":[]})", "[]", "no", ""}) {
        SCOPED_TRACE(reply);
        RawServer server({Reply::json(reply)});
        RecoveryCall call;
        call.path = L"/home/@Recycle/d&";
        log.clear();
        EXPECT_EQ(call.run(session.get(), server.port()), 14u);
        EXPECT_EQ(call.result, 0xFFFFFFFFu);
        EXPECT_TRUE(call.isPidUntouched());
        log.expectLines(
            {kName + ": WFM_PARSE_XML_FAIL(path=/home/@Recycle/d&)(file=a.txt)", summary(server.port(), 14)});
    }
}

TEST_F(WFMTrashRecoveryWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    void (*const spoilers[])(RecoveryCall&) = {
        [](RecoveryCall& call) { call.path = nullptr; },      [](RecoveryCall& call) { call.path = L""; },
        [](RecoveryCall& call) { call.file = nullptr; },      [](RecoveryCall& call) { call.file = L""; },
        [](RecoveryCall& call) { call.buffer = nullptr; },    [](RecoveryCall& call) { call.capacity = 0; },
        [](RecoveryCall& call) { call.resultWord = nullptr; }};
    for (const auto& spoil : spoilers) {
        RecoveryCall call;
        spoil(call);
        log.clear();
        EXPECT_EQ(call.run(session.get(), 80), 8u);
        EXPECT_EQ(call.result, 0xABCDu);
        EXPECT_TRUE(call.isPidUntouched());
        log.expectLines({kName + "(127.0.0.1:80): WFM_PARSE_XML_INVALID_PARAMETER"});
    }
}
