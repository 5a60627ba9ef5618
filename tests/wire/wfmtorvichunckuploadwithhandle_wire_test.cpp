#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "lines.h"
#include "uploads.h"

using namespace wire;

namespace {

constexpr int64_t kSlice = 1073741824;
const char* const kGood = R"({"status":1,"size":"10"})";
const std::string kName = "[WFM] WFMTorviChunckUploadwithHandle";

std::string reason(const std::string& text) {
    return kName + ": " + text;
}

std::string summary(int status) {
    return kName + "(127.0.0.1:{port}): (/home/.up)(/home/a.txt)failed (" + std::to_string(status) +
           ") (/home/a.txt)";
}

std::string refused() {
    return kName + "(127.0.0.1:80): WFM_PARSE_XML_INVALID_PARAMETER";
}

std::string abortLine(int verdict) {
    return "[WFM] HttpRequestWorker::uploadProgress abort(" + std::to_string(verdict) + ")";
}

const LogLine kStopped("Debug",
                       "[WFM] WFMTorviChunckUploadwithHandle: PROGRESS_STOP Resume, !DeleteUploadID");
const LogLine kDistrusted("Debug",
                          "[WFM] WFMTorviChunckUploadwithHandle: WFM_INVALID_DATA, !Resume, DeleteUploadID");
constexpr uint32_t kErrorAndDebug = 32 | 4;

/// What the two flags tell the caller to do with the upload id.
enum class Id { Rest, Resume, Delete, Both };

std::ostream& operator<<(std::ostream& out, Id id) {
    const char* const names[] = {"neither flag", "bResume", "bDeleteUploadID", "both flags"};
    return out << names[static_cast<int>(id)];
}

struct ChunkUploadCall : UploadArgs<ChunkUploadCall> {
    const wchar_t* uploadID = L"u-17";
    const wchar_t* uploadRoot = L"/home/.up";
    const wchar_t* renameTarget = nullptr;
    int64_t offset = 0;
    int64_t fileSize = 10;
    int64_t modifiedTime = 1700000000;
    bool stop = false;
    bool* stopFlag = &stop;
    // The opposite of what a call begins with.
    bool resume = true;
    bool deleteID = false;
    bool* resumeOut = &resume;
    bool* deleteOut = &deleteID;

    using UploadArgs::UploadArgs;
    uint32_t call() {
        return WFMTorviChunckUploadwithHandle(session.get(), server, port, slaveID, file, uploadID,
                                              uploadRoot, destination, renameTarget, offset, fileSize,
                                              modifiedTime, &progress, callback(), overwrite, stopFlag,
                                              resumeOut, deleteOut, resultWord);
    }
    Id id() const {
        if (resume) return deleteID ? Id::Both : Id::Resume;
        return deleteID ? Id::Delete : Id::Rest;
    }
    bool isUntouched() const { return result == 0xABCD && resume && !deleteID; }
    /// A file that holds nothing but `mark` at the call's offset, and takes no room on the disk.
    void makeSparse(qint64 size, const std::string& mark) {
        ASSERT_EQ(::truncate(local.file.fileName().toLocal8Bit().constData(), 0), 0);
        ASSERT_EQ(::truncate(local.file.fileName().toLocal8Bit().constData(), size), 0);
        QFile other(local.file.fileName());
        ASSERT_TRUE(other.open(QIODevice::ReadWrite));
        ASSERT_TRUE(other.seek(offset));
        other.write(mark.data(), static_cast<qint64>(mark.size()));
    }
};

struct Numbers {
    std::string time = "1700000000", offset = "0", size = "10", overwrite = "1";
};

/// The query of a call but for what a test says.
std::string query(const std::string& folder, const Numbers& numbers = {},
                  const std::string& behind = "&upload_root_dir=%2Fhome%2F.up") {
    return "func=chunked_upload&sid=sid123&upload_id=u-17&settime=1&mtime=" + numbers.time +
           "&offset=" + numbers.offset + "&filesize=" + numbers.size + "&dest_path=" + folder +
           "&overwrite=" + numbers.overwrite + behind;
}

std::vector<LogLine> filled(const std::vector<LogLine>& lines, uint32_t port) {
    std::vector<LogLine> all;
    for (const LogLine& line : lines) all.emplace_back(line.level, fillLine(line.text, "", port, 0, 0));
    return all;
}

}  // namespace

TEST(WFMTorviChunckUploadwithHandleWire, SendsTheFileAsOneMultipartPost) {
    RawServer server({Reply::json(kGood)});
    ChunkUploadCall call(server);
    LogCapture log(kErrorAndDebug);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.id(), Id::Rest);
    log.expectNoLines();
    const Request request = server.onlyRequest();
    expectRequestLine(request, "POST /cgi-bin/torvi/torvisrv.cgi?" + query("%2Fhome") + " HTTP/1.1");
    expectHeaders(request, transferHeaders(server, request));
    EXPECT_EQ(request.body, uploadBody(request, "a.txt", "0123456789", "chunked_upload"));
}

TEST(WFMTorviChunckUploadwithHandleWire, SendsFromTheOffset) {
    RawServer server({Reply::json(kGood)});
    ChunkUploadCall call(server);
    call.offset = 4;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.id(), Id::Rest);
    const Request request = server.onlyRequest();
    Numbers numbers;
    numbers.offset = "4";
    EXPECT_EQ(request.queryText(), query("%2Fhome", numbers));
    EXPECT_EQ(request.body, uploadBody(request, "a.txt", "456789", "chunked_upload"));
    EXPECT_EQ(
        call.progress.calls,
        (std::vector<Progress::Call>{{10, 0, 10, 0, 1, 1}, {10, 10, 10, 10, 1, 0}, {10, 10, 10, 10, 0, 0}}));
}

TEST(WFMTorviChunckUploadwithHandleWire, AnOffsetEqualToTheSizeSendsNoBytesAndMakesTheClosingCall) {
    RawServer server({Reply::json(kGood)});
    ChunkUploadCall call(server);
    call.offset = 10;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.id(), Id::Rest);
    const Request request = server.onlyRequest();
    EXPECT_EQ(request.body, uploadBody(request, "a.txt", "", "chunked_upload"));
    EXPECT_EQ(call.progress.calls,
              (std::vector<Progress::Call>{{10, 0, 10, 0, 1, 1}, {10, 10, 10, 10, 0, 0}}));
}

TEST(WFMTorviChunckUploadwithHandleWire, AnEmptyFileIsASuccess) {
    RawServer server({Reply::json(kGood)});
    ChunkUploadCall call(server);
    LocalFile empty("");
    call.file = &empty.file;
    call.fileSize = 0;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.id(), Id::Rest);
    EXPECT_EQ(call.progress.calls, (std::vector<Progress::Call>{{0, 0, 0, 0, 1, 1}, {0, 0, 0, 0, 0, 0}}));
}

TEST(WFMTorviChunckUploadwithHandleWire, SendsARenameTargetInItsOwnTemplate) {
    RawServer server({Reply::json(kGood)});
    ChunkUploadCall call(server);
    call.renameTarget = L"/home/b c.txt";
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(server.onlyRequest().queryText(),
              query("%2Fhome", {}, "&rename_dest=%2Fhome%2Fb%20c.txt&upload_root_dir=%2Fhome%2F.up"));
}

TEST(WFMTorviChunckUploadwithHandleWire, ARenamedSliceEndsWithItsMark) {
    RawServer server({Reply::json(kGood)});
    ChunkUploadCall call(server);
    call.renameTarget = L"/home/b";
    call.fileSize = kSlice + 1;
    EXPECT_EQ(call.run(), 0u);
    Numbers numbers;
    numbers.size = "1073741825";
    EXPECT_EQ(
        server.onlyRequest().queryText(),
        query("%2Fhome", numbers, "&rename_dest=%2Fhome%2Fb&upload_root_dir=%2Fhome%2F.up&multipart=1"));
}

TEST(WFMTorviChunckUploadwithHandleWire, AnEmptyRenameTargetIsNone) {
    RawServer server({Reply::json(kGood)});
    ChunkUploadCall call(server);
    call.renameTarget = L"";
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(server.onlyRequest().queryText(), query("%2Fhome"));
}

TEST(WFMTorviChunckUploadwithHandleWire, GoesToTheNodeAndFolderOfItsPath) {
    expectUploadRoutes<ChunkUploadCall>(kGood, "chunked_upload", [](const PathRoute& route) {
        return route.cgi() + "?" + query(route.sent);
    });
}

TEST(WFMTorviChunckUploadwithHandleWire, IdRootAndRenameTargetAreEncodedButNotMapped) {
    RawServer server({Reply::json(kGood)});
    ChunkUploadCall call(server);
    call.session = pathRouteSession();
    call.setDestination(L"/home/.Torvi/T/a.txt");
    call.uploadID = L"/home/.Torvi/T/a b";
    call.uploadRoot = L"/home/.Torvi/T/\x6587&";
    call.renameTarget = L"/home/.Torvi/T/100%";
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(server.onlyRequest().queryText(),
              "func=chunked_upload&sid=sid123&upload_id=%2Fhome%2F.Torvi%2FT%2Fa%20b&settime=1"
              "&mtime=1700000000&offset=0&filesize=10&dest_path=vtf%3A%2F%2FS&overwrite=1"
              "&rename_dest=%2Fhome%2F.Torvi%2FT%2F100%25"
              "&upload_root_dir=%2Fhome%2F.Torvi%2FT%2F%E6%96%87%26");
}

TEST(WFMTorviChunckUploadwithHandleWire, SendsItsNumbersInDecimalAsGiven) {
    struct {
        int64_t time, offset, size;
        Numbers sent;
        const char* suffix;
    } const rows[] = {
        {0, 0, 0, {"0", "0", "0"}, ""},
        {-1, 3, 5, {"-1", "3", "5"}, ""},
        {4294967296, 4294967296, 4294967296, {"4294967296", "4294967296", "4294967296"}, ""},
        {std::numeric_limits<int64_t>::min(),
         1,
         std::numeric_limits<int64_t>::max(),
         {"-9223372036854775808", "1", "9223372036854775807"},
         "&multipart=1"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.sent.size);
        RawServer server({Reply::json(kGood)});
        ChunkUploadCall call(server);
        call.modifiedTime = row.time;
        call.offset = row.offset;
        call.fileSize = row.size;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(server.onlyRequest().queryText(),
                  query("%2Fhome", row.sent, std::string("&upload_root_dir=%2Fhome%2F.up") + row.suffix));
    }
}

TEST(WFMTorviChunckUploadwithHandleWire, SendsTheLowByteOfOverwrite) {
    const std::pair<uint32_t, const char*> rows[] = {{0, "0"}, {255, "255"}, {256, "0"}, {0xFFFFFF80, "128"}};
    for (const auto& [overwrite, sent] : rows) {
        RawServer server({Reply::json(kGood)});
        ChunkUploadCall call(server);
        call.overwrite = overwrite;
        EXPECT_EQ(call.run(), 0u);
        Numbers numbers;
        numbers.overwrite = sent;
        EXPECT_EQ(server.onlyRequest().queryText(), query("%2Fhome", numbers));
    }
}

TEST(WFMTorviChunckUploadwithHandleWire, SendsNamesAsTheyAre) {
    expectNamesAsTheyAre<ChunkUploadCall>(kGood, "chunked_upload");
}

TEST(WFMTorviChunckUploadwithHandleWire, LeavesTheCallersHandleAlone) {
    expectTheHandleIsLeftAlone<ChunkUploadCall>(kGood, "chunked_upload");
}

// ---- The slice ----

TEST(WFMTorviChunckUploadwithHandleWire, ASliceIsAtMostOneGiBFromTheOffset) {
    struct {
        int64_t size, offset, fileBytes;
        const char* suffix;
    } const rows[] = {
        {kSlice, 0, kSlice, ""},
        {kSlice + 1, 0, kSlice, "&multipart=1"},
        {kSlice + 1, 1, kSlice, ""},
        {5 * kSlice, 0, kSlice, "&multipart=1"},
        {5 * kSlice, 4 * kSlice - 1, kSlice, "&multipart=1"},
        {5 * kSlice, 4 * kSlice, kSlice, ""},
        {2 * kSlice, kSlice + kSlice / 2, kSlice / 2, ""},
    };
    const std::string mark = "the slice begins here";
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.size) + " from " + std::to_string(row.offset));
        // The head tells what would come; the bytes needn't.
        RawServer server({Reply::resetDuringBody(4000)});
        ChunkUploadCall call(server);
        call.offset = row.offset;
        call.fileSize = row.size;
        call.makeSparse(row.size, mark);
        EXPECT_EQ(call.run(), 2u);
        const Request request = server.onlyRequest();
        Numbers numbers;
        numbers.offset = std::to_string(row.offset);
        numbers.size = std::to_string(row.size);
        EXPECT_EQ(request.queryText(),
                  query("%2Fhome", numbers, std::string("&upload_root_dir=%2Fhome%2F.up") + row.suffix));
        const std::string envelope = uploadBody(request, "a.txt", "@", "chunked_upload");
        EXPECT_EQ(request.header("Content-Length"),
                  std::to_string(static_cast<int64_t>(envelope.size()) - 1 + row.fileBytes));
        const size_t headSize = envelope.find("\r\n\r\n@") + 4;
        EXPECT_EQ(request.body.substr(0, headSize + mark.size()), envelope.substr(0, headSize) + mark);
    }
}

TEST(WFMTorviChunckUploadwithHandleWire, ASliceThatEndsTheFileAt1GiBIsASuccess) {
    RawServer server({Reply::json(kGood)});
    ChunkUploadCall call(server);
    call.fileSize = kSlice;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.id(), Id::Rest);
    EXPECT_EQ(call.progress.calls, callsOfASmallUpload(kSlice, 10));
}

TEST(WFMTorviChunckUploadwithHandleWire, ASliceWithMoreToComeIsMinus43) {
    for (const int64_t offset : {0, 4}) {
        RawServer server({Reply::json(kGood)});
        ChunkUploadCall call(server);
        call.offset = offset;
        call.fileSize = offset + kSlice + 1;
        LogCapture log(kErrorAndDebug);
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.signedResult(), -43);
        EXPECT_EQ(call.id(), Id::Rest);
        log.expectNoLines();
        // No closing call: the file goes on.
        const int64_t size = call.fileSize;
        EXPECT_EQ(call.progress.calls,
                  (std::vector<Progress::Call>{{size, 0, size, 0, 1, 1}, {size, 10, size, 10, 1, 0}}));
    }
}

// ---- Refused arguments ----

TEST(WFMTorviChunckUploadwithHandleWire, RefusesMissingArgumentsAndTouchesNothing) {
    void (*const spoilers[])(ChunkUploadCall&) = {
        [](ChunkUploadCall& call) { call.destination = nullptr; },
        [](ChunkUploadCall& call) { call.destination = L""; },
        [](ChunkUploadCall& call) { call.uploadID = nullptr; },
        [](ChunkUploadCall& call) { call.uploadID = L""; },
        [](ChunkUploadCall& call) { call.uploadRoot = nullptr; },
        [](ChunkUploadCall& call) { call.uploadRoot = L""; },
        [](ChunkUploadCall& call) { call.resultWord = nullptr; },
        [](ChunkUploadCall& call) { call.resumeOut = nullptr; },
        [](ChunkUploadCall& call) { call.deleteOut = nullptr; },
    };
    LogCapture log;
    int number = 0;
    for (const auto& spoil : spoilers) {
        SCOPED_TRACE(number++);
        ChunkUploadCall call;
        log.clear();
        spoil(call);
        EXPECT_EQ(call.run(), 8u);
        EXPECT_TRUE(call.isUntouched());
        EXPECT_TRUE(call.progress.calls.empty());
        log.expectLines({refused()});
    }
}

TEST(WFMTorviChunckUploadwithHandleWire, RefusesAnOffsetAboveTheSize) {
    RawServer server({Reply::json(kGood)});
    ChunkUploadCall call(server);
    call.offset = 11;
    LogCapture log;
    EXPECT_EQ(call.run(), 8u);
    EXPECT_TRUE(call.isUntouched());
    EXPECT_EQ(server.connectionCount(), 0u);
    log.expectLines({refusedLine("WFMTorviChunckUploadwithHandle", server.port())});
}

TEST(WFMTorviChunckUploadwithHandleWire, RefusesAFileThatCannotBeRead) {
    expectFileRefusals<ChunkUploadCall>(refused());
}

TEST(WFMTorviChunckUploadwithHandleWire, AFileThatCannotBeSentIs6) {
    expectAPipeIs6<ChunkUploadCall>({reason("FAIL(httpStatusCode=200)"), summary(6)});
}

// ---- What the server said ----

TEST(WFMTorviChunckUploadwithHandleWire, TheServersWordSetsTheFlags) {
    const auto both = [](const char* what, int code) {
        return reason(std::string(what) + "(" + std::to_string(code) + ")(/home/a.txt)");
    };
    const std::string tryAgain = both(" WFM_STATUS_FAILED||WFM_FILE_NO_EXIST", -2);
    const std::string noFile = both(" WFM_STATUS_FAILED||WFM_FILE_NO_EXIST", -4);
    const std::string homeGone = reason("WFM_HOME_FOLDER_NOT_AVAIL(/home/a.txt)");
    const std::string quota = reason(" WFM_QUOTA_ERROR(/home/a.txt)");
    const auto unknown = [&](int code) { return both("ERROR_UNKNOWN ", code); };
    struct {
        const char* reply;
        int32_t result;
        Id id;
        std::vector<std::string> lines;
    } const rows[] = {
        {R"({"status":1})", 0, Id::Rest, {}},
        {R"({"status":"1","home_folder_available":false})", 0, Id::Rest, {}},
        {R"({"status":9})", -6, Id::Rest, {quota}},
        {R"({"status":9,"home_folder_available":false})", -6, Id::Rest, {quota}},
        {R"({"status":0})", -2, Id::Resume, {tryAgain}},
        {R"({"status":0,"home_folder_available":false})", -2, Id::Resume, {tryAgain}},
        {R"({"status":5})", -4, Id::Resume, {noFile}},
        {R"({"status":5,"home_folder_available":true})", -4, Id::Resume, {noFile}},
        {R"({"status":-3})", -4, Id::Resume, {noFile}},
        {R"({"status":5,"home_folder_available":false})", -4, Id::Rest, {noFile, homeGone}},
        {R"({"status":-3,"home_folder_available":false})", -4, Id::Rest, {noFile, homeGone}},
        {R"({"status":7})", -5, Id::Delete, {both(" WFM_OPEN_FILE_FAILED||WFM_ILLEGAL_NAME", -5)}},
        {R"({"status":12})", -7, Id::Delete, {both(" WFM_OPEN_FILE_FAILED||WFM_ILLEGAL_NAME", -7)}},
        {R"({"status":4})", -3, Id::Delete, {unknown(-3)}},
        {R"({"status":3})", -29, Id::Delete, {unknown(-29)}},
        {R"({"status":2})", -15, Id::Delete, {unknown(-15)}},
        {R"({"status":-4})", -11, Id::Delete, {unknown(-11)}},
        {R"({"status":34})", -1, Id::Delete, {unknown(-1)}},
        {"{}", -1, Id::Delete, {unknown(-1)}},
    };
    // Only a success is another one when more of the file is to come.
    for (const int64_t size : {int64_t{10}, kSlice + 1}) {
        for (const auto& row : rows) {
            SCOPED_TRACE(std::string(row.reply) + " to a file of " + std::to_string(size));
            RawServer server({Reply::json(row.reply)});
            ChunkUploadCall call(server);
            call.fileSize = size;
            LogCapture log(kErrorAndDebug);
            EXPECT_EQ(call.run(), 0u);
            EXPECT_EQ(call.signedResult(), size > kSlice && row.result == 0 ? -43 : row.result);
            EXPECT_EQ(call.id(), row.id);
            EXPECT_EQ(log.lines(), std::vector<LogLine>(row.lines.begin(), row.lines.end()));
        }
    }
}

TEST(WFMTorviChunckUploadwithHandleWire, TheLinesCarryThePathAsGiven) {
    RawServer server({Reply::json(R"({"status":9})")});
    ChunkUploadCall call(server);
    call.session = pathRouteSession();
    call.setDestination(L"/home/.Torvi/T/100% {port} \x6587.txt");
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    log.expectLines({reason(" WFM_QUOTA_ERROR(/home/.Torvi/T/100% {port} \xE6\x96\x87.txt)")});
}

TEST(WFMTorviChunckUploadwithHandleWire, AnAnswerThatIsNotUnderstoodIs14AndTheIdIsGivenUp) {
    const std::vector<std::string> lines = {
        "[WFM] WFMTorviChunckUploadwithHandle(/home/a.txt): WFM_PARSE_XML_FAIL", summary(14)};
    expectReplies<ChunkUploadCall>(
        {
            {"sorry", 14, -1, lines},
            {"[]", 14, -1, lines},
            {R"({"status":1,"size":99999999999})", 14, -1, lines},
            {R"({"status":5,"home_folder_available":[]})", 14, -1, lines},
            {R"({"status":1)", 14, -1, lines},
        },
        [](const ChunkUploadCall& call) { EXPECT_EQ(call.id(), Id::Delete); });
}

TEST(WFMTorviChunckUploadwithHandleWire, AFailedExchangeGivesTheIdUp) {
    struct {
        Reply reply;
        uint32_t dwStatus;
        const char* word;
    } const rows[] = {
        {Reply::status(407), 11, "WFM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ"},
        {Reply::status(503), 12, "WFM_PARSE_XML_HTTPTRAN_SERVICE_UNAVAIL"},
        {Reply::status(500, kGood), 6, "FAIL(httpStatusCode=500)"},
        {Reply::closeBeforeReply(), 2, "FAIL(httpStatusCode=0)"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.word);
        RawServer server({row.reply});
        ChunkUploadCall call(server);
        call.offset = 4;
        LogCapture log(kErrorAndDebug);
        EXPECT_EQ(call.run(), row.dwStatus);
        EXPECT_EQ(call.signedResult(), -1);
        EXPECT_EQ(call.id(), Id::Delete);
        EXPECT_EQ(log.texts(),
                  withPort({reason(row.word), summary(static_cast<int>(row.dwStatus))}, server.port()));
    }
}

// ---- Stops ----

TEST(WFMTorviChunckUploadwithHandleWire, ACallbacksVerdictDecidesWhatBecomesOfTheId) {
    struct {
        const char* what;
        uint32_t opening, during, closing;
        int64_t offset;
        uint32_t dwStatus;
        int32_t result;
        Id id;
        size_t calls;
        std::vector<LogLine> lines;
    } const rows[] = {
        {"stop at the opening",
         1,
         0,
         0,
         0,
         2,
         -1,
         Id::Delete,
         1,
         {reason("FAIL(httpStatusCode=200)"), summary(2)}},
        {"distrust at the opening",
         2,
         0,
         0,
         4,
         2,
         -31,
         Id::Delete,
         1,
         {reason("FAIL(httpStatusCode=200)"), kDistrusted, summary(2)}},
        {"stop under way",
         0,
         1,
         0,
         0,
         2,
         -1,
         Id::Resume,
         2,
         {abortLine(1), reason("FAIL(httpStatusCode=0)"), kStopped, summary(2)}},
        {"stop under way from an offset",
         0,
         1,
         0,
         4,
         2,
         -1,
         Id::Resume,
         2,
         {abortLine(1), reason("FAIL(httpStatusCode=0)"), kStopped, summary(2)}},
        {"distrust under way",
         0,
         2,
         0,
         0,
         2,
         -31,
         Id::Delete,
         2,
         {abortLine(2), reason("FAIL(httpStatusCode=0)"), kDistrusted, summary(2)}},
        {"distrust under way from an offset",
         0,
         2,
         0,
         4,
         2,
         -31,
         Id::Delete,
         2,
         {abortLine(2), reason("FAIL(httpStatusCode=0)"), kDistrusted, summary(2)}},
        {"a verdict without a rule",
         0,
         3,
         0,
         4,
         2,
         -1,
         Id::Delete,
         2,
         {abortLine(3), reason("FAIL(httpStatusCode=0)"), summary(2)}},
        {"stop at the end",
         0,
         0,
         1,
         0,
         6,
         -1,
         Id::Resume,
         3,
         {reason("FAIL(httpStatusCode=200)"), kStopped, summary(6)}},
        {"distrust at the end",
         0,
         0,
         2,
         0,
         6,
         -31,
         Id::Delete,
         3,
         {reason("FAIL(httpStatusCode=200)"), kDistrusted, summary(6)}},
        {"a verdict without a rule at the end",
         0,
         0,
         3,
         0,
         6,
         -1,
         Id::Delete,
         3,
         {reason("FAIL(httpStatusCode=200)"), summary(6)}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        // An answer would race with the end of the body.
        RawServer server({row.during != 0 ? Reply::stall() : Reply::json(kGood)});
        ChunkUploadCall call(server);
        call.offset = row.offset;
        answerWith(call.progress, row.opening, row.during, row.closing);
        LogCapture log(kErrorAndDebug);
        EXPECT_EQ(call.run(), row.dwStatus);
        EXPECT_EQ(call.signedResult(), row.result);
        EXPECT_EQ(call.id(), row.id);
        EXPECT_EQ(call.progress.calls.size(), row.calls);
        EXPECT_EQ(log.lines(), filled(row.lines, server.port()));
    }
}

TEST(WFMTorviChunckUploadwithHandleWire, AnOpeningStopComesBeforeTheOffsetCounts) {
    RawServer server({Reply::json(kGood)});
    ChunkUploadCall call(server);
    call.offset = 4;
    answerWith(call.progress, 1, 0, 0);
    LogCapture log(kErrorAndDebug);
    EXPECT_EQ(call.run(), 2u);
    EXPECT_EQ(call.signedResult(), -1);
    EXPECT_EQ(call.id(), Id::Delete);
    EXPECT_EQ(log.texts(), withPort({reason("FAIL(httpStatusCode=200)"), summary(2)}, server.port()));
}

TEST(WFMTorviChunckUploadwithHandleWire, AStopFlagOutweighsTheServersAnswer) {
    struct {
        const char* what;
        Reply reply;
        int64_t offset;
        uint32_t dwStatus;
        const char* word;
    } const rows[] = {
        {"a success", Reply::json(kGood), 0, 6, "FAIL(httpStatusCode=200)"},
        {"a success from an offset", Reply::json(kGood), 4, 6, "FAIL(httpStatusCode=200)"},
        {"nothing left to send", Reply::json(kGood), 10, 6, "FAIL(httpStatusCode=200)"},
        {"a quota error", Reply::json(R"({"status":9})"), 4, 6, "FAIL(httpStatusCode=200)"},
        {"not understood", Reply::json("sorry"), 4, 6, "FAIL(httpStatusCode=200)"},
        {"407", Reply::status(407), 4, 11, "WFM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ"},
        {"503", Reply::status(503), 4, 12, "WFM_PARSE_XML_HTTPTRAN_SERVICE_UNAVAIL"},
        {"500", Reply::status(500), 4, 6, "FAIL(httpStatusCode=500)"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        RawServer server({row.reply});
        ChunkUploadCall call(server);
        call.offset = row.offset;
        call.stop = true;
        LogCapture log(kErrorAndDebug);
        EXPECT_EQ(call.run(), row.dwStatus);
        EXPECT_EQ(call.signedResult(), -1);
        EXPECT_EQ(call.id(), Id::Resume);
        EXPECT_EQ(log.lines(), filled({reason(row.word), kStopped, summary(static_cast<int>(row.dwStatus))},
                                      server.port()));
    }
}

TEST(WFMTorviChunckUploadwithHandleWire, AStopFlagAloneDoesNotAbort) {
    for (const int64_t offset : {0, 4}) {
        RawServer server({Reply::json(kGood)});
        ChunkUploadCall call(server);
        call.offset = offset;
        call.progress.verdict = [&](size_t, const Progress::Call&) {
            call.stop = true;
            return 0u;
        };
        EXPECT_EQ(call.run(), 6u);
        EXPECT_EQ(call.id(), Id::Resume);
        const Request request = server.onlyRequest();
        EXPECT_TRUE(request.complete);
        EXPECT_EQ(request.body, uploadBody(request, "a.txt", &"0123456789"[offset], "chunked_upload"));
    }
}

TEST(WFMTorviChunckUploadwithHandleWire, AStopFlagKeepsNoIdOfAnEmptyFile) {
    RawServer server({Reply::json(kGood)});
    ChunkUploadCall call(server);
    call.makeSparse(0, "");
    call.fileSize = 0;
    call.stop = true;
    LogCapture log(kErrorAndDebug);
    EXPECT_EQ(call.run(), 6u);
    EXPECT_EQ(call.signedResult(), -1);
    EXPECT_EQ(call.id(), Id::Delete);
    EXPECT_EQ(log.lines(), filled({reason("FAIL(httpStatusCode=200)"), summary(6)}, server.port()));
}

TEST(WFMTorviChunckUploadwithHandleWire, TheClosingVerdictDecidesAfterAFailedExchangeToo) {
    const struct {
        int httpStatus;
        uint32_t dwStatus;
        const char* word;
    } rows[] = {
        {407, 11, "WFM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ"},
        {503, 12, "WFM_PARSE_XML_HTTPTRAN_SERVICE_UNAVAIL"},
        {500, 6, "FAIL(httpStatusCode=500)"},
    };
    for (const auto& row : rows)
        for (const uint32_t verdict : {1U, 2U}) {
            SCOPED_TRACE(row.word);
            RawServer server({Reply::status(row.httpStatus)});
            ChunkUploadCall call(server);
            call.offset = 4;
            answerWith(call.progress, 0, 0, verdict);
            LogCapture log(kErrorAndDebug);
            EXPECT_EQ(call.run(), row.dwStatus);
            EXPECT_EQ(call.signedResult(), verdict == 1 ? -1 : -31);
            EXPECT_EQ(call.id(), verdict == 1 ? Id::Resume : Id::Delete);
            EXPECT_EQ(log.lines(), filled({reason(row.word), verdict == 1 ? kStopped : kDistrusted,
                                           summary(static_cast<int>(row.dwStatus))},
                                          server.port()));
        }
}

TEST(WFMTorviChunckUploadwithHandleWire, AnOffsetCountsAsSentWhereNothingWent) {
    struct {
        int64_t offset;
        Id id;
        std::vector<LogLine> lines;
    } const rows[] = {
        {0, Id::Delete, {reason("FAIL(httpStatusCode=0)"), summary(2)}},
        {4, Id::Resume, {reason("FAIL(httpStatusCode=0)"), kStopped, summary(2)}},
    };
    const RefusedPort nowhere;
    for (const auto& row : rows) {
        ChunkUploadCall call;
        call.port = nowhere.port();
        call.offset = row.offset;
        call.stop = true;
        LogCapture log(kErrorAndDebug);
        EXPECT_EQ(call.run(), 2u);
        EXPECT_EQ(call.signedResult(), -1);
        EXPECT_EQ(call.id(), row.id);
        EXPECT_EQ(log.lines(), filled(row.lines, nowhere.port()));
    }
}

TEST(WFMTorviChunckUploadwithHandleWire, DistrustOutweighsTheStopFlag) {
    RawServer server({Reply::json(kGood)});
    ChunkUploadCall call(server);
    call.offset = 4;
    call.stop = true;
    answerWith(call.progress, 0, 0, 2);
    EXPECT_EQ(call.run(), 6u);
    EXPECT_EQ(call.signedResult(), -31);
    EXPECT_EQ(call.id(), Id::Delete);
}

TEST(WFMTorviChunckUploadwithHandleWire, ANullStopFlagIsNeverSet) {
    RawServer server({Reply::json(kGood)});
    ChunkUploadCall call(server);
    call.stopFlag = nullptr;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
}

// ---- Broken connections ----

TEST(WFMTorviChunckUploadwithHandleWire, ABrokenConnectionIsMinus31WhereTheShortBodyTestRuns) {
    struct {
        const char* what;
        bool withCallback;
        int64_t offset, fileSize;
        int32_t result;
    } const rows[] = {
        {"the end of a file, a callback", true, 0, LocalFile::kHuge, -1},
        {"the end of a file, no callback", false, 0, LocalFile::kHuge, -31},
        {"a slice, a callback", true, 0, kSlice + 1, -31},
        {"a slice, no callback", false, 0, kSlice + 1, -31},
        {"a slice from a high offset", true, LocalFile::kHuge / 2, 2 * kSlice, -1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        RawServer server({Reply::resetDuringBody(1000)});
        ChunkUploadCall call(server);
        call.local.makeHuge();
        call.withCallback = row.withCallback;
        call.offset = row.offset;
        call.fileSize = row.fileSize;
        LogCapture log(kErrorAndDebug);
        EXPECT_EQ(call.run(), 2u);
        EXPECT_EQ(call.signedResult(), row.result);
        EXPECT_EQ(call.id(), Id::Delete);
        EXPECT_EQ(server.requestCount(), 1u);
        const auto lines = log.lines();
        EXPECT_EQ(std::count(lines.begin(), lines.end(), kDistrusted), row.result == -31 ? 1 : 0);
    }
}
