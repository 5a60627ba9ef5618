#include <gtest/gtest.h>

#include <QFile>
#include <chrono>
#include <functional>
#include <limits>
#include <optional>
#include <thread>

#include "calltable.h"
#include "pathroutes.h"
#include "support/logcapture.h"
#include "support/progress.h"
#include "support/tempdir.h"
#include "support/wire.h"

using namespace wire;

namespace {

using Calls = std::vector<Progress::Call>;

const std::string kName = "[WFM] WFMDownloadFileToHandle";
const std::string kMismatch = "[WFM] HttpRequestWorker::downloadProgress size not match";
constexpr uint32_t kStopped = 1237;

struct DownloadCall {
    SessionPtr session = makeSession();
    TempDir folder;
    QFile file{QString::fromStdString(folder.file("local.bin"))};
    QFile* target = &file;
    uint32_t port = 80;
    const wchar_t* slaveID = nullptr;
    std::wstring path = L"/home/a.bin";
    std::optional<int64_t> offset, size;
    Progress progress;
    bool withCallback = true;
    bool stop = false;
    uint32_t result = 0xABCD;

    DownloadCall() = default;
    explicit DownloadCall(const RawServer& at) : port(at.port()) {}
    uint32_t run() {
        return WFMDownloadFileToHandle(session.get(), kServer, port, slaveID, path.c_str(), target,
                                       offset ? &*offset : nullptr, size ? &*size : nullptr, &progress,
                                       withCallback ? Progress::callback : nullptr, &stop, &result);
    }
    int32_t signedResult() const { return static_cast<int32_t>(result); }
    std::string content() const { return folder.read("local.bin"); }
    void setContent(const std::string& bytes) { folder.write("local.bin", bytes); }
    /// A target that can't be opened for writing.
    void refuseTarget() { file.setFileName(QString::fromStdString(folder.string())); }
    /// The callback's verdict on the opening call and on every other.
    void answerWith(uint32_t opening, uint32_t during) {
        progress.verdict = [=](size_t number, const Progress::Call&) {
            return number == 0 ? opening : during;
        };
    }
};

/// The form of a download without offset, from "/home/a.bin" if a test says nothing else.
HeaderList form(const std::string& sentFolder = "%2Fhome", const std::string& sentName = "a.bin") {
    return {{"isfolder", "0"},
            {"sid", "sid123"},
            {"source_total", "1"},
            {"source_path", sentFolder},
            {"source_file", sentName}};
}

std::string statReply(const std::string& size) {
    return R"({"status":1,"total":1,"datas":[{"filename":"a.bin","isfolder":0,"epochmt":"5","filesize":")" +
           size + "\"}]}";
}

std::string summary(uint32_t port, int status) {
    return kName + "(127.0.0.1:" + std::to_string(port) + ") failed dwStatus(" + std::to_string(status) + ")";
}

/// Lets the transport's first tenth of a second pass, in which it reports no progress.
Reply afterTheFirstProgress(Reply reply) {
    std::this_thread::sleep_for(std::chrono::milliseconds(250));
    return reply;
}

}  // namespace

TEST(WFMDownloadFileToHandleWire, AsksWithAFormAndFillsTheFile) {
    RawServer server({Reply::text("0123456789")});
    DownloadCall call(server);
    call.size = 10;
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    log.expectNoLines();
    const Request request = server.onlyRequest();
    expectRequestLine(request, "POST /cgi-bin/torvi/torvisrv.cgi?func=download HTTP/1.1");
    expectHeaders(request, without(formHeaders(server, request.body.size()), "Pragma"));
    expectForm(request, form());
    EXPECT_EQ(call.content(), "0123456789");
    EXPECT_FALSE(call.file.isOpen());
}

TEST(WFMDownloadFileToHandleWire, GoesToTheNodeAndFolderOfItsPath) {
    for (const PathRoute& route : pathRoutes()) {
        SCOPED_TRACE(route.what);
        RawServer server({Reply::text("0123456789")});
        DownloadCall call(server);
        call.session = route.session();
        call.slaveID = route.slaveID;
        call.path = route.path();
        call.size = 10;
        const bool isWhole = *route.sent != '\0' && *route.sentName != '\0';
        EXPECT_EQ(call.run(), isWhole ? 0u : 14u);
        EXPECT_EQ(call.result, isWhole ? 0u : 2u);
        ASSERT_EQ(server.requestCount(), isWhole ? 1u : 0u);
        if (!isWhole) continue;
        const Request request = server.onlyRequest();
        expectRequestLine(request, "POST " + route.cgi() + "?func=download HTTP/1.1");
        expectForm(request, form(route.sent, route.sentName));
    }
}

TEST(WFMDownloadFileToHandleWire, APathWithoutFolderOrNameIsNotFound) {
    const std::pair<const wchar_t*, const char*> rows[] = {
        {L"a.bin", "()()"},       {L"home/a.bin", "()()"}, {L"/a.bin", "(a.bin)()"},
        {L"/home/", "()(/home)"}, {L"/", "()()"},          {L"/home/.Torvi/T", "()(vtf://S)"},
    };
    for (const auto& [path, texts] : rows) {
        SCOPED_TRACE(texts);
        RawServer server({Reply::text("0123456789")});
        DownloadCall call(server);
        call.session = pathRouteSession();
        call.path = path;
        LogCapture log;
        EXPECT_EQ(call.run(), 14u);
        EXPECT_EQ(call.result, 2u);
        EXPECT_EQ(server.connectionCount(), 0u);
        log.expectLines({kName + ": ERROR_FILE_NOT_FOUND" + texts, summary(server.port(), 14)});
    }
}

TEST(WFMDownloadFileToHandleWire, SendsNamesOfEveryKind) {
    const std::pair<const wchar_t*, const char*> rows[] = {
        {L"100%1 %2.txt", "100%251%20%252.txt"}, {L"say \"hi\";x='1'", "say%20%22hi%22%3Bx%3D%271%27"},
        {L"\x6587\x4EF6", "%E6%96%87%E4%BB%B6"}, {L"\x1F600", "%F0%9F%98%80"},
        {L"a&b=c+d~e", "a%26b%3Dc%2Bd~e"},
    };
    for (const auto& [name, sent] : rows) {
        SCOPED_TRACE(sent);
        RawServer server({Reply::text("0123456789")});
        DownloadCall call(server);
        call.path = std::wstring(L"/home/") + name;
        call.size = 10;
        EXPECT_EQ(call.run(), 0u);
        expectForm(server.onlyRequest(), form("%2Fhome", sent));
    }
}

TEST(WFMDownloadFileToHandleWire, TheOffsetTravelsAsGivenAndANullOneNotAtAll) {
    const std::pair<std::optional<int64_t>, const char*> rows[] = {
        {0, "0"}, {3, "3"}, {4294967296, "4294967296"}, {-1, "-1"}};
    for (const auto& [offset, sent] : rows) {
        SCOPED_TRACE(sent);
        RawServer server({Reply::json(statReply("10")), Reply::text("0123456789")});
        DownloadCall call(server);
        call.offset = offset;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        expectForm(server.request(1), with(form(), "offset", sent));
    }
}

TEST(WFMDownloadFileToHandleWire, ANegativeOffsetWritesFromTheBeginning) {
    RawServer server({Reply::json(statReply("10")), Reply::text("0123456789")});
    DownloadCall call(server);
    call.offset = -7;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.content(), "0123456789");
    EXPECT_EQ(call.progress.calls, (Calls{{10, 0, 10, 0, 1, 1}, {10, 10, 10, 10, 1, 0}}));
}

TEST(WFMDownloadFileToHandleWire, RefusesBadArgumentsAndTouchesNothing) {
    DownloadCall call;
    int64_t offset = 5, size = 4;
    LogCapture log;
    const auto run = [&](const wchar_t* path, const int64_t* from, uint32_t* result) {
        return WFMDownloadFileToHandle(call.session.get(), kServer, 80, nullptr, path, &call.file, from,
                                       &size, nullptr, nullptr, nullptr, result);
    };
    EXPECT_EQ(run(nullptr, nullptr, &call.result), 8u);
    EXPECT_EQ(run(L"", nullptr, &call.result), 8u);
    EXPECT_EQ(run(L"/home/a.bin", nullptr, nullptr), 8u);
    EXPECT_EQ(run(L"/home/a.bin", &offset, &call.result), 8u);
    EXPECT_EQ(call.result, 0xABCDu);
    EXPECT_FALSE(call.file.exists());
    const std::string line = kName + "(127.0.0.1:80): WFM_PARSE_XML_INVALID_PARAMETER";
    log.expectLines({line, line, line, line});
}

TEST(WFMDownloadFileToHandleWire, ASizeBelow1FetchesNothing) {
    for (const int64_t size : {int64_t{0}, int64_t{-1}, std::numeric_limits<int64_t>::min()}) {
        RawServer server({Reply::text("0123456789")});
        DownloadCall call(server);
        call.size = size;
        call.stop = true;
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_EQ(server.connectionCount(), 0u);
        EXPECT_FALSE(call.file.exists());
        EXPECT_TRUE(call.progress.calls.empty());
        log.expectNoLines();
    }
}

// ---- The size query ----

TEST(WFMDownloadFileToHandleWire, WithoutASizeAsksForIt) {
    RawServer server({Reply::json(statReply("10")), Reply::text("0123456789")});
    DownloadCall call(server);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    ASSERT_EQ(server.requestCount(), 2u);
    expectGet(server.request(0),
              "/cgi-bin/torvi/torvisrv.cgi?func=stat&path=%2Fhome&file_total=1&file_name=a.bin&sid=sid123",
              baseHeaders(server));
    expectForm(server.request(1), form());
    EXPECT_EQ(call.content(), "0123456789");
}

TEST(WFMDownloadFileToHandleWire, TheSizeQueryHasItsOwnEndpoint) {
    const std::string query = "?func=stat&path=%2Fhome&file_total=1&file_name=a.bin&sid=sid123";
    SessionOptions fcgi, fileManager;
    fcgi.fcgi = true;
    fileManager.fileManager = true;
    struct {
        SessionOptions options;
        const char *asked, *fetched;
    } const rows[] = {
        {fcgi, "/cgi-bin/torvi/torvisrv.fcgi", "/cgi-bin/torvi/torvisrv.cgi"},
        {fileManager, "/cgi-bin/filemanager/utilRequest.cgi", "/cgi-bin/filemanager/utilRequest.cgi"},
    };
    for (const auto& row : rows) {
        RawServer server({Reply::json(statReply("10")), Reply::text("0123456789")});
        DownloadCall call(server);
        call.session = makeSession(row.options);
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(server.request(0).target(), row.asked + query);
        EXPECT_EQ(server.request(1).target(), row.fetched + std::string("?func=download"));
    }
}

TEST(WFMDownloadFileToHandleWire, TheSizeQueryMapsAndRoutesThePathOnce) {
    RawServer server({Reply::json(statReply("10")), Reply::text("0123456789")});
    DownloadCall call(server);
    call.session = makeTeamSession({{L"/home/.Torvi/T/", L"vtf://home/.Torvi/T/", L"n2"}});
    call.slaveID = L"n5";
    call.path = L"/home/.Torvi/T/d/a.bin";
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(server.request(0).target(),
              "/n2/cgi-bin/torvi/torvisrv.cgi?func=stat&path=vtf%3A%2F%2Fhome%2F.Torvi%2FT%2Fd&file_total=1"
              "&file_name=a.bin&sid=sid123");
    expectForm(server.request(1), form("vtf%3A%2F%2Fhome%2F.Torvi%2FT%2Fd"));

    RawServer other({Reply::json(statReply("10")), Reply::text("0123456789")});
    call.port = other.port();
    call.path = L"/home/a.bin";
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(other.request(0).path(), "/n5/cgi-bin/torvi/torvisrv.cgi");
    EXPECT_EQ(other.request(1).path(), "/n5/cgi-bin/torvi/torvisrv.cgi");
}

TEST(WFMDownloadFileToHandleWire, WithoutASizeAnAbsentOrEmptyFileFetchesNothing) {
    const std::string folder =
        R"({"status":1,"total":1,"datas":[{"filename":"a.bin","isfolder":1,"epochmt":"5","filesize":"9"}]})";
    const std::pair<std::string, int32_t> rows[] = {
        {statReply("0"), 0},    {statReply("-5"), 0},    {R"({"status":5})", 3},
        {R"({"status":4})", 5}, {R"({"status":9})", -1}, {folder, 3},
    };
    for (const auto& [reply, result] : rows) {
        SCOPED_TRACE(reply);
        RawServer server({Reply::json(reply)});
        DownloadCall call(server);
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.signedResult(), result);
        EXPECT_EQ(server.requestCount(), 1u);
        EXPECT_FALSE(call.file.exists());
    }
}

TEST(WFMDownloadFileToHandleWire, ASizeQueryThatFailsIsTheCallsFailure) {
    struct {
        Reply reply;
        uint32_t dwStatus;
        const char* reason;
    } const rows[] = {
        {Reply::status(407), 11, "WFM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ"},
        {Reply::status(503), 12, "WFM_PARSE_XML_HTTPTRAN_SERVICE_UNAVAIL"},
        {Reply::status(500), 6, "FAIL(httpStatusCode=500)"},
        {Reply::closeBeforeReply(), 2, "FAIL(httpStatusCode=0)"},
        {Reply::text("sorry"), 14, "WFM_PARSE_XML_FAIL"},
        {Reply::json(R"({"status":1,"total":0})"), 14, "Get path num (0) != 1"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reason);
        RawServer server({row.reply});
        DownloadCall call(server);
        LogCapture log;
        EXPECT_EQ(call.run(), row.dwStatus);
        EXPECT_EQ(call.signedResult(), -1);
        EXPECT_FALSE(call.file.exists());
        const std::string port = std::to_string(server.port()), status = std::to_string(row.dwStatus);
        log.expectLines(
            {std::string("[WFM] WFMGetPathInformation: ") + row.reason,
             "[WFM] WFMGetPathInformation(127.0.0.1:" + port + ") failed dwStatus(" + status + ")",
             summary(server.port(), static_cast<int>(row.dwStatus))});
    }
}

// ---- Sizes that match and sizes that don't ----

TEST(WFMDownloadFileToHandleWire, AnAnnouncedSizeOneByteOffIs13) {
    for (const char* body : {"01234567890", "012345678", ""}) {
        SCOPED_TRACE(body);
        RawServer server({Reply::text(body)});
        DownloadCall call(server);
        call.size = 10;
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 13u);
        const std::vector<std::string> lines = log.texts();
        ASSERT_FALSE(lines.empty());
        EXPECT_EQ(lines[0], kMismatch + "(" + std::to_string(std::string(body).size()) + ")(0)");
        for (const std::string& line : lines) EXPECT_EQ(line.find(kMismatch), 0u) << line;
    }
}

TEST(WFMDownloadFileToHandleWire, AnErrorPageIs13WhateverItsStatus) {
    for (const int status : {302, 401, 403, 404, 407, 500, 503}) {
        SCOPED_TRACE(status);
        RawServer server({Reply::status(status, "sorry")});
        DownloadCall call(server);
        call.size = 10;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 13u);
        EXPECT_EQ(server.requestCount(), 1u);
    }
}

TEST(WFMDownloadFileToHandleWire, AnErrorPageOfTheFilesSizePassesAsTheFile) {
    for (const int status : {302, 403, 404, 500, 503}) {
        SCOPED_TRACE(status);
        RawServer server({Reply::status(status, "error page")});
        DownloadCall call(server);
        call.size = 10;
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_EQ(call.content(), "error page");
        log.expectNoLines();
    }
}

TEST(WFMDownloadFileToHandleWire, AServerThatCannotBeReachedIs13) {
    RefusedPort nobody;
    RawServer server({Reply::closeBeforeReply()});
    for (const uint16_t port : {nobody.port(), server.port()}) {
        DownloadCall call;
        call.port = port;
        call.size = 10;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 13u);
    }
    EXPECT_EQ(server.requestCount(), 1u);
}

TEST(WFMDownloadFileToHandleWire, AReplyWithoutAKnownLengthIs13) {
    for (const bool chunked : {true, false}) {
        RawServer server([=](const Request&) {
            Reply reply = Reply::text("0123456789");
            return afterTheFirstProgress(chunked ? reply.chunked() : reply.untilClose());
        });
        DownloadCall call(server);
        call.size = 10;
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 13u);
        EXPECT_EQ(log.texts().at(0), kMismatch + "(-1)(0)");
    }
}

TEST(WFMDownloadFileToHandleWire, AnEmptyAnswerToAnOffsetAtTheEndAnnouncesTheWrongSize) {
    RawServer server({Reply::text("")});
    DownloadCall call(server);
    call.setContent("0123456789");
    call.offset = call.size = 10;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 13u);
    expectForm(server.onlyRequest(), with(form(), "offset", "10"));
    EXPECT_EQ(call.content(), "0123456789");
}

TEST(WFMDownloadFileToHandleWire, AResumeNeedsTheRestAsItsSize) {
    // 4 of 10 bytes are here; the server announces the other 6.
    struct {
        int64_t size;
        uint32_t result;
    } const rows[] = {{10, 13}, {6, 0}};
    for (const auto& row : rows) {
        RawServer server({Reply::text("456789")});
        DownloadCall call(server);
        call.setContent("0123");
        call.offset = 4;
        call.size = row.size;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, row.result);
        expectForm(server.onlyRequest(), with(form(), "offset", "4"));
        if (row.result == 0) {
            EXPECT_EQ(call.content(), "0123456789");
            // Counted from the start of the file, so past the size that was told.
            EXPECT_EQ(call.progress.calls, (Calls{{6, 0, 6, 0, 1, 1}, {6, 10, 6, 10, 1, 0}}));
        }
    }
}

TEST(WFMDownloadFileToHandleWire, AResumeWithAReplyOfTheWholeSizeWritesBehindTheOffset) {
    RawServer server({Reply::text("0123456789")});
    DownloadCall call(server);
    call.setContent("abcd");
    call.offset = 4;
    call.size = 10;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.content(), "abcd0123456789");
}

TEST(WFMDownloadFileToHandleWire, TheTargetIsNotTruncated) {
    const std::pair<int64_t, const char*> rows[] = {{0, "01abcdefgh"}, {3, "abc01fgh"}, {5, "abcde01h"}};
    const std::string before[] = {"xxabcdefgh", "abcdefgh", "abcdefgh"};
    for (size_t i = 0; i < 3; ++i) {
        RawServer server({Reply::json(statReply("2")), Reply::text("01")});
        DownloadCall call(server);
        call.setContent(before[i]);
        call.offset = rows[i].first;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_EQ(call.content(), rows[i].second);
    }
}

TEST(WFMDownloadFileToHandleWire, AnOpenTargetIsReopenedAndClosed) {
    RawServer server({Reply::text("0123456789")});
    DownloadCall call(server);
    ASSERT_TRUE(call.file.open(QIODevice::WriteOnly));
    call.file.write("abcdefghijklm");
    call.size = 10;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_FALSE(call.file.isOpen());
    EXPECT_EQ(call.content(), "0123456789klm");
}

TEST(WFMDownloadFileToHandleWire, ADownloadThatBreaksOffIsASuccessWithAShortFile) {
    RawServer server({Reply::text("0123456789").closeAfterBodyBytes(4)});
    DownloadCall call(server);
    call.size = 10;
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.content(), "0123");
    log.expectNoLines();
}

// ---- Callback and stop flag ----

TEST(WFMDownloadFileToHandleWire, TellsTheCallbackOfTheOpeningAndTheBytes) {
    RawServer server({Reply::text("0123456789")});
    DownloadCall call(server);
    call.size = 10;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.progress.calls, (Calls{{10, 0, 10, 0, 1, 1}, {10, 10, 10, 10, 1, 0}}));
}

TEST(WFMDownloadFileToHandleWire, NoCallbackAndNoStopFlagAreASuccessToo) {
    RawServer server({Reply::text("0123456789")});
    DownloadCall call(server);
    const int64_t size = 10;
    EXPECT_EQ(WFMDownloadFileToHandle(call.session.get(), kServer, call.port, nullptr, L"/home/a.bin",
                                      &call.file, nullptr, &size, nullptr, nullptr, nullptr, &call.result),
              0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.content(), "0123456789");
}

TEST(WFMDownloadFileToHandleWire, TheLastVerdictDecidesAWholeFile) {
    struct {
        uint32_t opening, during, result;
    } const rows[] = {{0, 0, 0}, {0, 1, kStopped}, {0, 2, 13}, {0, 3, 0}, {1, 0, 0}, {2, 0, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.opening) + ", " + std::to_string(row.during));
        RawServer server({Reply::text("0123456789")});
        DownloadCall call(server);
        call.size = 10;
        call.answerWith(row.opening, row.during);
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, row.result);
        EXPECT_EQ(call.content(), "0123456789");
        log.expectNoLines();
    }
}

TEST(WFMDownloadFileToHandleWire, AnOpeningVerdictStandsWhereNoBytesCome) {
    // Nothing is left to be counted: the offset is the whole size.
    for (const auto& [opening, result] :
         {std::pair<uint32_t, uint32_t>{0, 0}, {1, kStopped}, {2, 13}, {3, 0}}) {
        RawServer server({Reply::text("0123456789")});
        DownloadCall call(server);
        call.offset = call.size = 10;
        call.answerWith(opening, 0);
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, result);
        EXPECT_EQ(call.progress.calls, (Calls{{10, 0, 10, 0, 1, 1}}));
    }
}

TEST(WFMDownloadFileToHandleWire, AVerdictUnderWayAbortsTheTransfer) {
    struct {
        uint32_t verdict, result;
    } const rows[] = {{1, kStopped}, {2, 13}, {3, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.verdict);
        RawServer server([](const Request&) {
            return afterTheFirstProgress(Reply::text("0123456789").stallAfterBodyBytes(4));
        });
        DownloadCall call(server);
        call.size = 10;
        call.answerWith(0, row.verdict);
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, row.result);
        EXPECT_EQ(call.progress.calls.front(), (Progress::Call{10, 0, 10, 0, 1, 1}));
        EXPECT_LT(call.file.size(), 10);
        EXPECT_TRUE(server.waitUntilAllClosed());
    }
}

TEST(WFMDownloadFileToHandleWire, TheStopFlagIsReadAfterTheTransfer) {
    for (const bool before : {true, false}) {
        RawServer server({Reply::text("0123456789")});
        DownloadCall call(server);
        call.size = 10;
        call.stop = before;
        call.progress.verdict = [&](size_t, const Progress::Call&) {
            call.stop = true;
            return 0u;
        };
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, kStopped);
        EXPECT_EQ(call.content(), "0123456789");
        EXPECT_EQ(call.progress.calls.size(), 2u);
    }
}

TEST(WFMDownloadFileToHandleWire, AStopOutweighsATargetThatIsRefused) {
    RawServer server({Reply::text("0123456789")});
    DownloadCall call(server);
    call.refuseTarget();
    call.size = 10;
    call.stop = true;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, kStopped);
    EXPECT_EQ(server.connectionCount(), 0u);
}

TEST(WFMDownloadFileToHandleWire, AMismatchOutweighsTheStopFlag) {
    RawServer server({Reply::text("0123")});
    DownloadCall call(server);
    call.size = 10;
    call.stop = true;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 13u);
}

// ---- A target that can't be written ----

namespace {

/// What the library says of a target that it can't write, when the server then says `reply` of the file.
void expectRefusedTarget(const Reply& reply, int32_t result, std::vector<LogLine> answer,
                         const std::function<void(DownloadCall&)>& change = {}) {
    RawServer server({reply});
    DownloadCall call(server);
    call.refuseTarget();
    call.size = 10;
    if (change) change(call);
    LogCapture log(63);
    EXPECT_EQ(call.run(), 6u);
    EXPECT_EQ(call.signedResult(), result);
    std::vector<LogLine> expected = {kName + " FAIL(httpStatusCode=200)",
                                     kName + " ERROR_INVALID_DATA(a.bin) llResponseFileSize=0"};
    for (LogLine& line : answer) {
        line.text = fillLine(line.text, "", server.port(), 0, 0);
        expected.push_back(line);
    }
    expected.push_back(summary(server.port(), 6));
    EXPECT_EQ(log.lines(), expected);
    EXPECT_EQ(server.requestCount(), 1u);
    EXPECT_EQ(server.request(0).query().front().value, "stat");
    EXPECT_TRUE(call.progress.calls.empty());
}

const LogLine kSize10{"Debug", kName + ": WFMGetPathInformation(a.bin) filesize(10)"};

}  // namespace

TEST(WFMDownloadFileToHandleWire, ATargetThatCannotBeWrittenIsDeniedIfTheFileIsThere) {
    expectRefusedTarget(Reply::json(statReply("10")), 5, {kSize10, kName + ": (a.bin) ACCESS_DENIED"});
}

TEST(WFMDownloadFileToHandleWire, NoTargetIsATargetThatCannotBeWritten) {
    expectRefusedTarget(Reply::json(statReply("10")), 5, {kSize10, kName + ": (a.bin) ACCESS_DENIED"},
                        [](DownloadCall& call) { call.target = nullptr; });
}

TEST(WFMDownloadFileToHandleWire, ATargetThatCannotBeWrittenIsMinus1OtherwiseAndStays6) {
    expectRefusedTarget(Reply::json(statReply("0")), -1,
                        {{"Debug", kName + ": WFMGetPathInformation(a.bin) filesize(0)"}});
    expectRefusedTarget(Reply::json(R"({"status":5})"), -1, {});
    expectRefusedTarget(Reply::json(R"({"status":4})"), -1,
                        {{"Debug", "[WFM] WFMGetPathInformation: WFM_PERMISSION_DENY"}});
    expectRefusedTarget(Reply::status(500), -1,
                        {"[WFM] WFMGetPathInformation: FAIL(httpStatusCode=500)",
                         "[WFM] WFMGetPathInformation(127.0.0.1:{port}) failed dwStatus(6)"});
}

TEST(WFMDownloadFileToHandleWire, ARefusedTargetIsAskedForBeforeTheMapping) {
    expectRefusedTarget(Reply::json(statReply("10")), 5, {kSize10, kName + ": (a.bin) ACCESS_DENIED"},
                        [](DownloadCall& call) {
                            call.session = pathRouteSession();
                            call.path = L"/home/.Torvi/T/a.bin";
                        });
}
