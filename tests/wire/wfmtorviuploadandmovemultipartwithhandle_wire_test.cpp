#include <gtest/gtest.h>

#include <memory>

#include "lines.h"
#include "replies.h"
#include "sessioncall.h"
#include "uploads.h"

using namespace wire;

namespace {

const std::string kName = "[WFM] WFMTorviUploadandMoveMultiPartwithHandle";
constexpr int32_t kUntouched = -77;

/// One file of a batch, on disk and in the caller's record.
struct BatchFile {
    BatchFile(const std::wstring& name, const std::string& content) : local(content) {
        std::fill(std::begin(record.szName), std::end(record.szName), L'\0');
        std::copy(name.begin(), name.end(), record.szName);
        std::fill(std::begin(record.szModifiedTime), std::end(record.szModifiedTime), L'#');
        record.szModifiedTime[259] = L'\0';
        record.nResult = kUntouched;
        record.pFile = &local.file;
        record.llSize = static_cast<int64_t>(content.size());
        record.llModifiedTime = 1700000000;
    }
    LocalFile local;
    _WFM_MULTI_PART_FILE_INFO record;
};

struct BatchCall : SessionCall<BatchCall> {
    std::vector<std::unique_ptr<BatchFile>> files;
    std::vector<_WFM_MULTI_PART_FILE_INFO*> records;
    _WFM_MULTI_PART_FILE_INFO** list = nullptr;
    int32_t count = 0;
    const wchar_t* folder = L"/home/d";

    /// Two files, until a test changes that.
    BatchCall() { addTwo(); }
    explicit BatchCall(const RawServer& at) : SessionCall(at) { addTwo(); }

    void add(const std::wstring& name, const std::string& content) {
        files.push_back(std::make_unique<BatchFile>(name, content));
        records.push_back(&files.back()->record);
        list = records.data();
        count = static_cast<int32_t>(records.size());
    }
    uint32_t call() {
        return WFMTorviUploadandMoveMultiPartwithHandle(session, kServer, port, slaveID, list, count, folder,
                                                        nullptr, nullptr, nullptr, nullptr, resultWord);
    }
    _WFM_MULTI_PART_FILE_INFO& record(size_t number) { return files[number]->record; }
    /// What the batch's files came to, in its order.
    std::vector<int32_t> results() const {
        std::vector<int32_t> all;
        for (const auto& file : files) all.push_back(file->record.nResult);
        return all;
    }
    bool hasTime(size_t number) const { return files[number]->record.szModifiedTime[0] != L'#'; }
    bool isUntouched() const {
        return result == 0xABCD && results() == std::vector<int32_t>(files.size(), kUntouched) &&
               !hasTime(0) && !hasTime(1);
    }

private:
    void addTwo() {
        add(L"a.txt", "0123456789");
        add(L"b.txt", "abc");
    }
};

/// Name, time and content of a file as they are sent.
struct SentFile {
    std::string name, content;
    std::string time = "1700000000";
};

std::string field(const std::string& boundary, const std::string& name, const std::string& value) {
    return "--" + boundary + "\r\nContent-Disposition: form-data; name=\"" + name + "\"\r\n\r\n" + value +
           "\r\n";
}

/// The body of a batch, byte for byte.
std::string batchBody(const Request& request, const std::string& folder, const std::vector<SentFile>& files) {
    const std::string boundary = request.multipart().boundary;
    std::string body = field(boundary, "sid", "sid123");
    for (size_t i = 0; i < files.size(); ++i) body += field(boundary, "dest_path[]", folder);
    for (const SentFile& file : files) body += field(boundary, "mtime[]", file.time);
    for (const SentFile& file : files)
        body += "--" + boundary + "\r\nContent-Disposition: form-data; name=\"files[]\"; filename=\"" +
                file.name + "\"\r\nContent-Type: application/octet-stream\r\n" +
                "Content-Transfer-Encoding: binary\r\n\r\n" + file.content + "\r\n";
    return body + "--" + boundary + "--";
}

const std::vector<SentFile> kTwo = {{"a.txt", "0123456789"}, {"b.txt", "abc"}};
const char* const kGood =
    R"({"status":1,"files":[{"name":"a.txt","status":1,"size":10},{"name":"b.txt","status":1,"size":3}]})";

std::string uploadFailed(const char* name, int code) {
    return kName + ": upload failed(" + name + ")(" + std::to_string(code) + ")";
}

}  // namespace

TEST(WFMTorviUploadandMoveMultiPartwithHandleWire, SendsTheBatchAsOneMultipartPost) {
    RawServer server({Reply::json(kGood)});
    BatchCall call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.results(), (std::vector<int32_t>{0, 0}));
    log.expectNoLines();
    const Request request = server.onlyRequest();
    expectRequestLine(request, "POST /cgi-bin/torvi/upload.php HTTP/1.1");
    expectHeaders(request, uploadHeaders(server, request));
    EXPECT_EQ(request.body, batchBody(request, "/home/d/", kTwo));
}

TEST(WFMTorviUploadandMoveMultiPartwithHandleWire, ABatchOfOneIsABatch) {
    RawServer server({Reply::json(kGood)});
    BatchCall call(server);
    call.count = 1;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.results(), (std::vector<int32_t>{0, kUntouched}));
    const Request request = server.onlyRequest();
    EXPECT_EQ(request.body, batchBody(request, "/home/d/", {kTwo[0]}));
}

TEST(WFMTorviUploadandMoveMultiPartwithHandleWire, GoesToTheNodeAndFolderOfItsPath) {
    struct {
        const char* what;
        const char* ownSlaveID;
        const wchar_t* slaveID;
        const wchar_t* folder;
        const char* prefix;
        const char* sent;
        bool fileManager = false;
    } const rows[] = {
        {"a slash goes to its end", "", nullptr, L"/home/d", "", "/home/d/"},
        {"one is enough", "", nullptr, L"/home/d/", "", "/home/d/"},
        {"nothing is put in front", "", nullptr, L"home/d", "", "home/d/"},
        {"another node", "node1", L"n5", L"/home", "n5/", "/home/"},
        {"the own node", "node1", L"NODE1", L"/home", "", "/home/"},
        {"no node", "node1", L"", L"/home", "", "/home/"},
        {"a node, but no cluster", "", L"n5", L"/home", "", "/home/"},
        {"a team folder", "node1", L"n5", L"/home/.Torvi/T", "n2/", "vtf://S"},
        {"a team folder with its slash", "node1", nullptr, L"/home/.Torvi/T/", "n2/", "vtf://S"},
        {"deep in a team folder", "node1", nullptr, L"/home/.Torvi/T/d/e", "n2/", "vtf://S/d/e"},
        {"a team folder of the own node", "node1", L"n5", L"/home/.Torvi/Own/d", "", "vtf://O/d"},
        {"a team folder, but no cluster", "", L"n5", L"/home/.Torvi/T", "", "vtf://S"},
        {"a name that only begins like one", "node1", L"n5", L"/home/.Torvi/TT", "n5/", "/home/.Torvi/TT/"},
        {"the team area itself", "node1", L"n5", L"/home/.Torvi", "n5/", "/home/.Torvi/"},
        {"the web file manager", "node1", L"n5", L"/home/.Torvi/T", "", "/home/.Torvi/T/", true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        PathRoute route = pathRoutes().front();
        route.ownSlaveID = row.ownSlaveID;
        route.fileManager = row.fileManager;
        RawServer server({Reply::json(kGood)});
        BatchCall call(server);
        const SessionPtr session = route.session();
        call.slaveID = row.slaveID;
        call.folder = row.folder;
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        const Request request = server.onlyRequest();
        expectRequestLine(request, row.fileManager ? "POST /cgi-bin/filemanager/upload.php HTTP/1.1"
                                                   : "POST /" + std::string(row.prefix) +
                                                         "cgi-bin/torvi/upload.php HTTP/1.1");
        EXPECT_EQ(request.body, batchBody(request, row.sent, kTwo));
    }
}

TEST(WFMTorviUploadandMoveMultiPartwithHandleWire, SendsFolderNamesAndTimesAsTheyAre) {
    RawServer server({Reply::json(R"({"status":1})")});
    BatchCall call(server);
    call.folder = L"/100% & \x6587";
    call.add(L"100%1 %2 \"hi\";'1'.txt", "x");
    call.record(2).llModifiedTime = -1;
    call.add(L"\x6587\x1F600.txt", "");
    call.record(3).llModifiedTime = 9223372036854775807;
    EXPECT_EQ(call.run(), 0u);
    const Request request = server.onlyRequest();
    EXPECT_EQ(request.body, batchBody(request, "/100% & \xE6\x96\x87/",
                                      {kTwo[0],
                                       kTwo[1],
                                       {"100%1 %2 \"hi\";'1'.txt", "x", "-1"},
                                       {"\xE6\x96\x87\xF0\x9F\x98\x80.txt", "", "9223372036854775807"}}));
    EXPECT_STREQ(call.record(0).szModifiedTime, L"1700000000");
    EXPECT_STREQ(call.record(2).szModifiedTime, L"-1");
    EXPECT_STREQ(call.record(3).szModifiedTime, L"9223372036854775807");
}

TEST(WFMTorviUploadandMoveMultiPartwithHandleWire, LeavesTheCallersHandlesAlone) {
    RawServer server({Reply::json(kGood)});
    BatchCall call(server);
    ASSERT_TRUE(call.record(0).pFile->seek(3));
    EXPECT_EQ(call.run(), 0u);
    EXPECT_TRUE(call.record(0).pFile->isOpen());
    EXPECT_EQ(call.record(0).pFile->pos(), 3);
    const Request request = server.onlyRequest();
    EXPECT_EQ(request.body, batchBody(request, "/home/d/", kTwo));
}

TEST(WFMTorviUploadandMoveMultiPartwithHandleWire, AFileIsSentAtItsLiveSizeAndJudgedByTheRecords) {
    RawServer server({Reply::json(kGood)});
    BatchCall call(server);
    call.files[0]->local.append("XY");
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.results(), (std::vector<int32_t>{0, 0}));
    const Request request = server.onlyRequest();
    EXPECT_EQ(request.body, batchBody(request, "/home/d/", {{"a.txt", "0123456789XY"}, kTwo[1]}));
}

TEST(WFMTorviUploadandMoveMultiPartwithHandleWire, EachFileGetsItsOwnResult) {
    struct {
        const char* what;
        std::string files;
        std::vector<int32_t> results;
        std::vector<std::string> lines;
    } const rows[] = {
        {"both are there",
         R"({"name":"b.txt","status":"1","size":3},{"name":"a.txt","status":1,"size":10})",
         {0, 0},
         {}},
        {"another letter case",
         R"({"name":"A.TXT","status":1,"size":10},{"name":"B.txt","status":1,"size":3})",
         {0, 0},
         {}},
        {"one failed",
         R"({"name":"a.txt","status":9,"size":10},{"name":"b.txt","status":1,"size":3})",
         {-6, 0},
         {uploadFailed("a.txt", -6)}},
        {"both failed, in the batch's order",
         R"({"name":"b.txt","status":"5","size":3},{"name":"a.txt","status":4,"size":10})",
         {-3, -4},
         {uploadFailed("a.txt", -3), uploadFailed("b.txt", -4)}},
        {"a status of no name",
         R"({"name":"a.txt","status":34,"size":10},{"name":"b.txt","status":1,"size":3})",
         {-1, 0},
         {uploadFailed("a.txt", -1)}},
        {"a byte too many",
         R"({"name":"a.txt","status":1,"size":11},{"name":"b.txt","status":1,"size":3})",
         {13, 0},
         {"[WFM] FMTorviUploadandMoveMultiPartwithHandle: ERROR_INVALID_DATA(a.txt)(10)(11)"}},
        {"a byte too few, and the other failed",
         R"({"name":"a.txt","status":4,"size":10},{"name":"b.txt","status":1,"size":2})",
         {-3, 13},
         {uploadFailed("a.txt", -3),
          "[WFM] FMTorviUploadandMoveMultiPartwithHandle: ERROR_INVALID_DATA(b.txt)(3)(2)"}},
        {"the size outweighs the status",
         R"({"name":"a.txt","status":4,"size":0},{"name":"b.txt","status":1,"size":3})",
         {13, 0},
         {"[WFM] FMTorviUploadandMoveMultiPartwithHandle: ERROR_INVALID_DATA(a.txt)(10)(0)"}},
        {"a size of 64 bits",
         R"({"name":"a.txt","status":1,"size":5000000010},{"name":"b.txt","status":1,"size":3})",
         {13, 0},
         {"[WFM] FMTorviUploadandMoveMultiPartwithHandle: ERROR_INVALID_DATA(a.txt)(10)(5000000010)"}},
        {"one isn't named", R"({"name":"b.txt","status":1,"size":3})", {kUntouched, 0}, {}},
        {"none is named", "", {kUntouched, kUntouched}, {}},
        {"others are named",
         R"({"name":"a.tx","status":9,"size":10},{"name":"a.txtx","status":9,"size":10})",
         {kUntouched, kUntouched},
         {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        RawServer server({Reply::json(R"({"status":1,"files":[)" + row.files + "]}")});
        BatchCall call(server);
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_EQ(call.results(), row.results);
        EXPECT_EQ(log.texts(), row.lines);
    }
}

TEST(WFMTorviUploadandMoveMultiPartwithHandleWire, ARefusedBatchLeavesTheFilesResults) {
    const auto line = [](int code) { return kName + ": get error status(" + std::to_string(code) + ")"; };
    const char* const files = R"(,"files":[{"name":"a.txt","status":9,"size":11}]})";
    const auto refused = [&](const char* status) { return std::string(R"({"status":)") + status + files; };
    expectReplies<BatchCall>(
        {
            {refused("4"), 0, -3, {line(-3)}},
            {refused("5"), 0, -4, {line(-4)}},
            {refused(R"("9")"), 0, -6, {line(-6)}},
            {refused("0"), 0, -2, {line(-2)}},
            {refused("34"), 0, -1, {line(-1)}},
            {refused("null"), 0, -1, {line(-1)}},
            {"{}", 0, -1, {line(-1)}},
        },
        [](const BatchCall& call) {
            EXPECT_EQ(call.results(), (std::vector<int32_t>{kUntouched, kUntouched}));
        });
}

TEST(WFMTorviUploadandMoveMultiPartwithHandleWire, AReplyThatCannotBeReadIs14) {
    const std::vector<std::string> lines = {kName + ": WFM_PARSE_XML_FAIL",
                                            kName + "(127.0.0.1:{port}) failed dwStatus(14) (/home/d)"};
    expectReplies<BatchCall>(
        {
            {R"({"status":1,"files":[{"name":"a.txt","status":1,"size":[]}]})", 14, -1, lines},
            {R"({"status":1,"files":[{"name":"a.txt","status":[],"size":10}]})", 14, -1, lines},
            {R"({"status":1,"files":[{"name":[],"status":1,"size":10}]})", 14, -1, lines},
            {R"({"status":1,"files":["a.txt"]})", 14, -1, lines},
        },
        [](const BatchCall& call) {
            EXPECT_EQ(call.results(), (std::vector<int32_t>{kUntouched, kUntouched}));
        });
}

TEST(WFMTorviUploadandMoveMultiPartwithHandleWire, AnHttpFailureTellsItsReasonAndTheFolderAsGiven) {
    RawServer server({Reply::status(500)});
    BatchCall call(server);
    const SessionPtr session = pathRouteSession();
    call.folder = L"/home/.Torvi/T";
    LogCapture log;
    EXPECT_EQ(call.run(session.get(), server.port()), 6u);
    EXPECT_EQ(call.signedResult(), -1);
    EXPECT_EQ(log.texts(), withPort({kName + " FAIL(httpStatusCode=500)",
                                     kName + "(127.0.0.1:{port}) failed dwStatus(6) (/home/.Torvi/T)"},
                                    server.port()));
}

TEST(WFMTorviUploadandMoveMultiPartwithHandleWire, ARecordThatCannotBeSentIs87AndNothingGoesOut) {
    static QFile missing(QStringLiteral("/no/such/file"));
    struct {
        const char* what;
        void (*spoil)(BatchCall& call);
    } const rows[] = {
        {"a null record", [](BatchCall& call) { call.records[1] = nullptr; }},
        {"no name", [](BatchCall& call) { call.record(1).szName[0] = L'\0'; }},
        {"no file", [](BatchCall& call) { call.record(1).pFile = nullptr; }},
        {"a file that isn't there", [](BatchCall& call) { call.record(1).pFile = &missing; }},
        {"a file that isn't open", [](BatchCall& call) { call.record(1).pFile->close(); }},
        {"a file open for writing",
         [](BatchCall& call) {
             call.record(1).pFile->close();
             call.record(1).pFile->open(QIODevice::WriteOnly);
         }},
        {"a file that isn't a plain one",
         [](BatchCall& call) {
             static QFile null(QStringLiteral("/dev/null"));
             null.open(QIODevice::ReadOnly);
             call.record(1).pFile = &null;
         }},
        {"a file that is gone", [](BatchCall& call) { QFile::remove(call.record(1).pFile->fileName()); }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        RawServer server({Reply::json(kGood)});
        BatchCall call(server);
        call.add(L"c.txt", "c");
        row.spoil(call);
        LogCapture log;
        EXPECT_EQ(call.run(), 87u);
        EXPECT_EQ(call.signedResult(), -1);
        EXPECT_EQ(server.connectionCount(), 0u);
        EXPECT_EQ(call.results(), (std::vector<int32_t>{kUntouched, kUntouched, kUntouched}));
        // The check ends at the bad record.
        EXPECT_STREQ(call.record(0).szModifiedTime, L"1700000000");
        EXPECT_FALSE(call.hasTime(1));
        EXPECT_FALSE(call.hasTime(2));
        EXPECT_EQ(log.texts(),
                  withPort({kName + "(127.0.0.1:{port}) failed dwStatus(87) (/home/d)"}, server.port()));
    }
}

TEST(WFMTorviUploadandMoveMultiPartwithHandleWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    void (*const spoilers[])(BatchCall&) = {
        [](BatchCall& call) { call.list = nullptr; }, [](BatchCall& call) { call.count = 0; },
        [](BatchCall& call) { call.count = -1; },     [](BatchCall& call) { call.folder = nullptr; },
        [](BatchCall& call) { call.folder = L""; },   [](BatchCall& call) { call.resultWord = nullptr; },
    };
    LogCapture log;
    int number = 0;
    for (const auto& spoil : spoilers) {
        SCOPED_TRACE(number++);
        BatchCall call;
        log.clear();
        spoil(call);
        EXPECT_EQ(call.run(), 8u);
        EXPECT_TRUE(call.isUntouched());
        log.expectLines({refusedLine("WFMTorviUploadandMoveMultiPartwithHandle", 80)});
    }
}
