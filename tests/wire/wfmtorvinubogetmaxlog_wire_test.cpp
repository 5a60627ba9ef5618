// WFMTorviNuboGetMaxLog: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "forms.h"
#include "refusals.h"
#include "replies.h"
#include "sessioncall.h"

using namespace wire;

namespace {

constexpr int64_t kUntouched = -77;

struct MaxLogOfFoldersCall : SessionCall<MaxLogOfFoldersCall> {
    std::vector<_TORVI_MAX_LOG_FOLDER> folders;
    std::vector<_TORVI_MAX_LOG_FOLDER*> list;
    _TORVI_MAX_LOG_INFORMATION record{};
    _TORVI_MAX_LOG_INFORMATION* out = &record;

    explicit MaxLogOfFoldersCall(const std::vector<const wchar_t*>& paths = {L"/home/a", L"/share/b"}) {
        ask(paths);
    }
    explicit MaxLogOfFoldersCall(const RawServer& at) : MaxLogOfFoldersCall() { port = at.port(); }

    void ask(const std::vector<const wchar_t*>& paths) {
        folders.assign(paths.size(), {});
        list.clear();
        for (size_t i = 0; i < paths.size(); ++i) {
            std::wstring(paths[i]).copy(folders[i].szPath, 259);
            folders[i].llMaxLog = kUntouched;
            list.push_back(&folders[i]);
        }
        record = {static_cast<uint32_t>(paths.size()), kUntouched, kUntouched, kUntouched, list.data()};
    }
    uint32_t call() {
        return WFMTorviNuboGetMaxLog(session, kServer, port, slaveID, nullptr, out, resultWord);
    }

    /// The numbers of the record, then those of its folders.
    std::vector<int64_t> numbers() const {
        std::vector<int64_t> all{record.llMaxLog, record.llNotify, record.llGlobalNotify};
        for (const _TORVI_MAX_LOG_FOLDER& folder : folders) all.push_back(folder.llMaxLog);
        return all;
    }
    bool isUntouched() const {
        return result == 0xABCD && numbers() == std::vector<int64_t>(3 + folders.size(), kUntouched);
    }
};

const std::string kQuery = "func=nubo_get_max_log&sid=sid123";

std::string errorStatus(int status) {
    return "[WFMShare] WFMTorviNuboGetMaxLog: Get error status=" + std::to_string(status);
}

}  // namespace

TEST(WFMTorviNuboGetMaxLogWire, SendsItsFoldersToTheSyncServiceOfTheNodeOnEverySession) {
    const std::string cgi = "torvisrvPrepare.cgi";
    expectPostOnEveryRoute(
        kQuery,
        {{"folder_number", "3"},
         {"folder0", "%2Fhome%2Fa%20b%26c"},
         {"folder1", "%2F%E6%96%87"},
         {"folder2", "100%25"}},
        [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t* slaveID) {
            MaxLogOfFoldersCall call({L"/home/a b&c", L"/\x6587", L"100%"});
            call.slaveID = slaveID;
            call.run(session, port);
        },
        {}, routesTo(cgi, cgi, "/Node/cgi-bin/torvi/torvisrvPrepare.cgi"));
}

TEST(WFMTorviNuboGetMaxLogWire, AFileManagerOutsideAClusterIsAskedAtTheSyncServiceToo) {
    SessionOptions options;
    options.fileManager = true;
    const SessionPtr session = makeSession(options);
    RawServer server({Reply::json("{}")});
    MaxLogOfFoldersCall call({L"/a"});
    call.slaveID = L"Node";
    EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    expectPost(server, server.onlyRequest(), "/cgi-bin/torvi/torvisrvPrepare.cgi?" + kQuery,
               {{"folder_number", "1"}, {"folder0", "%2Fa"}});
}

TEST(WFMTorviNuboGetMaxLogWire, FoldersAreCountedFromZeroAndMayBeMany) {
    const std::vector<const wchar_t*> paths(120, L"/p");
    HeaderList fields{{"folder_number", "120"}};
    for (int i = 0; i < 120; ++i) fields.emplace_back("folder" + std::to_string(i), "%2Fp");
    RawServer server({Reply::json(R"({"max_log119":"7"})")});
    MaxLogOfFoldersCall call(paths);
    call.port = server.port();
    EXPECT_EQ(call.run(), 0u);
    expectForm(server.onlyRequest(), fields);
    EXPECT_EQ(call.folders[119].llMaxLog, 7);
    EXPECT_EQ(call.folders[118].llMaxLog, -1);
}

TEST(WFMTorviNuboGetMaxLogWire, EachNumberThatTheServerGivesFindsItsPlace) {
    const struct {
        const char* reply;
        std::vector<int64_t> numbers;  // overall, notify, global notify, the folders
    } rows[] = {
        {R"({"status":1,"max_log0":"5","max_log1":"6","notify":"7","global_notify":"8","sync_signal":"9"})",
         {-1, 7, 8, 5, 6}},
        {R"({"max_log1":"6"})", {-1, -1, -1, -1, 6}},
        {R"({"max_log0":"9223372036854775807","max_log1":5000000000})", {-1, -1, -1, INT64_MAX, 5000000000}},
        {R"({"max_log0":"0","max_log1":"-5","notify":"0","global_notify":"-2"})", {-1, 0, -1, 0, -1}},
        {R"({"max_log0":"","max_log1":null,"notify":""})", {-1, -1, -1, -1, -1}},
        {R"({"max_log":"9","max_log2":"9","max_log-1":"9"})", {-1, -1, -1, -1, -1}},
        {R"({"max_log0":"99999999999999999999","notify":"many"})", {-1, 0, -1, INT64_MAX, -1}},
        {"{}", {-1, -1, -1, -1, -1}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        RawServer server({Reply::json(row.reply)});
        MaxLogOfFoldersCall call(server);
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_EQ(call.numbers(), row.numbers);
        EXPECT_EQ(call.record.dwFolderCount, 2u);
        EXPECT_STREQ(call.folders[0].szPath, L"/home/a");
        log.expectNoLines();
    }
}

TEST(WFMTorviNuboGetMaxLogWire, AnyOtherStatusIsTheResultAndLeavesTheNumbersUnknown) {
    const std::string numbers = R"(,"max_log0":"5","max_log1":"6","notify":"7"})";
    expectReplies<MaxLogOfFoldersCall>(
        {
            {R"({"status":4)" + numbers, 0, -3, {errorStatus(-3)}},
            {R"({"status":"3")" + numbers, 0, -29, {errorStatus(-29)}},
            {R"({"status":0)" + numbers, 0, -2, {errorStatus(-2)}},
            {R"({"status":34)" + numbers, 0, -1, {errorStatus(-1)}},
            {R"({"max_log0":"5","max_log1":["6"]})",
             14,
             -1,
             {"[WFMShare] WFMTorviNuboGetMaxLog: WFM_PARSE_XML_FAIL",
              "[WFMShare] WFMTorviNuboGetMaxLog(127.0.0.1:{port}) failed dwStatus(14)"}},
        },
        [](const MaxLogOfFoldersCall& call) { EXPECT_EQ(call.numbers(), std::vector<int64_t>(5, -1)); });
}

TEST(WFMTorviNuboGetMaxLogWire, AFailedCallLeavesTheNumbersUnknown) {
    RawServer server({Reply::status(503)});
    MaxLogOfFoldersCall call(server);
    EXPECT_EQ(call.run(), 12u);
    EXPECT_EQ(call.numbers(), std::vector<int64_t>(5, -1));
}

TEST(WFMTorviNuboGetMaxLogWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<MaxLogOfFoldersCall>(log, session.get(), "WFMTorviNuboGetMaxLog",
                                        {[](MaxLogOfFoldersCall& call) { call.resultWord = nullptr; },
                                         [](MaxLogOfFoldersCall& call) { call.out = nullptr; },
                                         [](MaxLogOfFoldersCall& call) { call.record.dwFolderCount = 0; },
                                         [](MaxLogOfFoldersCall& call) { call.record.lppFolders = nullptr; },
                                         [](MaxLogOfFoldersCall& call) { call.list[0] = nullptr; },
                                         [](MaxLogOfFoldersCall& call) { call.list[1] = nullptr; },
                                         [](MaxLogOfFoldersCall& call) { call.ask({L""}); },
                                         [](MaxLogOfFoldersCall& call) {
                                             call.ask({L"/home/a", L""});
                                         }},
                                        kSharePrefix);
}
