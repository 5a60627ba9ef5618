#include <gtest/gtest.h>

#include "uploads.h"

using namespace wire;

namespace {

const char* const kGood = R"({"status":1,"success":"true"})";
const char* const kFailed = "[WFM] WFMUploadFilewithHandle FAIL(httpStatusCode=0)";
const char* const kRefused = "[WFM] WFMUploadFilewithHandle: WFM_PARSE_XML_INVALID_PARAMETER";

std::string summary(int status) {
    return "[WFM] WFMUploadFilewithHandle(127.0.0.1:{port}): (/home/a.txt)failed (" + std::to_string(status) +
           ") (/home/a.txt)";
}

struct UploadCall : UploadArgs<UploadCall> {
    using UploadArgs::UploadArgs;
    uint32_t call() {
        return WFMUploadFilewithHandle(session.get(), server, port, slaveID, file, destination, &progress,
                                       callback(), overwrite, nullptr, resultWord);
    }
};

std::string errorStatus(int code) {
    return "[WFM] WFMUploadFilewithHandle: get error status = " + std::to_string(code);
}

}  // namespace

TEST(WFMUploadFilewithHandleWire, SendsTheFileAsOneMultipartPost) {
    RawServer server({Reply::json(kGood)});
    UploadCall call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    log.expectNoLines();
    const Request request = server.onlyRequest();
    expectRequestLine(
        request,
        "POST /cgi-bin/torvi/torvisrv.cgi?func=upload&sid=sid123&dest_path=%2Fhome&overwrite=1 HTTP/1.1");
    expectHeaders(request, transferHeaders(server, request));
    EXPECT_EQ(request.body, uploadBody(request, "a.txt", "0123456789", "Upload"));
}

TEST(WFMUploadFilewithHandleWire, GoesToTheNodeAndFolderOfItsPath) {
    expectUploadRoutes<UploadCall>(kGood, "Upload", [](const PathRoute& route) {
        return route.cgi() + "?func=upload&sid=sid123&dest_path=" + route.sent + "&overwrite=1";
    });
}

TEST(WFMUploadFilewithHandleWire, EncodesTheFolder) {
    RawServer server({Reply::json(kGood)});
    UploadCall call(server);
    call.setDestination(L"/100% & ~ \x6587\x1F600/a.txt");
    EXPECT_EQ(call.run(), 0u);
    // The tilde is encoded and decoded again on its way.
    EXPECT_EQ(server.onlyRequest().queryText(),
              "func=upload&sid=sid123&dest_path=%2F100%25%20%26%20~%20%E6%96%87%F0%9F%98%80&overwrite=1");
}

TEST(WFMUploadFilewithHandleWire, SendsNamesAsTheyAre) {
    expectNamesAsTheyAre<UploadCall>(kGood, "Upload");
}

TEST(WFMUploadFilewithHandleWire, SendsTheLowByteOfOverwrite) {
    const std::pair<uint32_t, const char*> rows[] = {{0, "0"},     {1, "1"},   {2, "2"},
                                                     {255, "255"}, {256, "0"}, {0xFFFFFF80, "128"}};
    for (const auto& [overwrite, sent] : rows) {
        RawServer server({Reply::json(kGood)});
        UploadCall call(server);
        call.overwrite = overwrite;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(server.onlyRequest().query().back().rawValue, sent);
    }
}

TEST(WFMUploadFilewithHandleWire, LeavesTheCallersHandleAlone) {
    expectTheHandleIsLeftAlone<UploadCall>(kGood, "Upload");
}

TEST(WFMUploadFilewithHandleWire, RefusesMissingArgumentsAndTouchesNothing) {
    UploadCall call;
    LogCapture log;
    for (const wchar_t* destination : {static_cast<const wchar_t*>(nullptr), L""}) {
        call.destination = destination;
        EXPECT_EQ(call.run(), 8u);
    }
    call.destination = L"/home/a.txt";
    call.resultWord = nullptr;
    EXPECT_EQ(call.run(), 8u);
    EXPECT_EQ(call.result, 0xABCDu);
    log.expectLines({kRefused, kRefused, kRefused});
}

TEST(WFMUploadFilewithHandleWire, RefusesAFileThatCannotBeRead) {
    expectFileRefusals<UploadCall>(kRefused);
}

TEST(WFMUploadFilewithHandleWire, AFileThatCannotBeSentIs6) {
    expectAPipeIs6<UploadCall>({"[WFM] WFMUploadFilewithHandle FAIL(httpStatusCode=200)", summary(6)});
}

TEST(WFMUploadFilewithHandleWire, JudgesTheStatusByItsTable) {
    expectReplies<UploadCall>({
        {R"({"status":1,"success":"true"})", 0, 0, {}},
        {R"({"status":4,"success":"true"})", 0, 5, {errorStatus(-3)}},
        {R"({"status":9,"success":"true"})", 0, 112, {errorStatus(-6)}},
        {R"({"status":5,"success":"true"})", 0, -1, {errorStatus(-4)}},
        {R"({"status":12,"success":"true"})", 0, -1, {errorStatus(-7)}},
        {R"({"status":3,"success":"true"})", 0, -1, {errorStatus(-29)}},
        {R"({"status":0,"success":"true"})", 0, -1, {errorStatus(-2)}},
        {R"({"status":34,"success":"true"})", 0, -1, {errorStatus(-1)}},
        {R"({"status":"9","success":"true"})", 0, 112, {errorStatus(-6)}},
        {R"({"success":"true"})", 0, -1, {errorStatus(-1)}},
    });
}

TEST(WFMUploadFilewithHandleWire, OnlySuccessTrueIsASuccess) {
    const std::vector<std::string> failed = {"[WFM] WFMUploadFilewithHandle: WFM_PARSE_XML_FAIL",
                                             summary(14)};
    const std::string longText = R"({"status":1,"success":")" + std::string(5000, 't') + "\"}";
    expectReplies<UploadCall>({
        {R"({"status":1,"success":true})", 0, 0, {}},
        {R"({"status":1,"success":"true"})", 0, 0, {}},
        {R"({"status":1})", 14, -1, failed},
        {R"({"status":1,"success":false})", 14, -1, failed},
        {R"({"status":1,"success":"True"})", 14, -1, failed},
        {R"({"status":1,"success":"true "})", 14, -1, failed},
        {R"({"status":1,"success":""})", 14, -1, failed},
        {R"({"status":1,"success":1})", 14, -1, failed},
        {R"({"status":1,"success":null})", 14, -1, failed},
        {R"({"status":1,"success":["true"]})", 14, -1, failed},
        {R"({"status":1,"success":{"true":"true"}})", 14, -1, failed},
        {R"({"status":4,"success":"false"})", 14, -1, failed},
        {longText.c_str(), 14, -1, failed},
    });
}

TEST(WFMUploadFilewithHandleWire, TellsTheCallbackOfTheOpeningTheBytesAndTheEnd) {
    RawServer server({Reply::json(kGood)});
    UploadCall call(server);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.progress.calls, callsOfASmallUpload(10, 10));
}

TEST(WFMUploadFilewithHandleWire, AnEmptyFileIsASuccessWithoutProgress) {
    RawServer server({Reply::json(kGood)});
    UploadCall call(server);
    LocalFile empty("");
    call.file = &empty.file;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.progress.calls, (std::vector<Progress::Call>{{0, 0, 0, 0, 1, 1}, {0, 0, 0, 0, 0, 0}}));
    const Request request = server.onlyRequest();
    EXPECT_EQ(request.body, uploadBody(request, "a.txt", "", "Upload"));
}

TEST(WFMUploadFilewithHandleWire, NoCallbackIsASuccessToo) {
    RawServer server({Reply::json(kGood)});
    UploadCall call(server);
    call.withCallback = false;
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    log.expectNoLines();
}

TEST(WFMUploadFilewithHandleWire, AVerdictOutweighsWhatTheServerAccepted) {
    const std::vector<std::string> opening = {"[WFM] WFMUploadFilewithHandle FAIL(httpStatusCode=200)",
                                              summary(2)};
    const auto during = [](const char* verdict) {
        return std::vector<std::string>{
            std::string("[WFM] HttpRequestWorker::uploadProgress abort(") + verdict + ")", kFailed,
            summary(2)};
    };
    expectVerdicts<UploadCall>(kGood, {
                                          {"go on", 0, 0, 0, 0, 0, 3, {}},
                                          {"stop at the opening", 1, 0, 0, 2, 1235, 1, opening},
                                          {"distrust at the opening", 2, 0, 0, 2, 13, 1, opening},
                                          {"no rule at the opening", 3, 0, 0, 2, -1, 1, opening},
                                          {"stop under way", 0, 1, 0, 2, 1235, 2, during("1")},
                                          {"distrust under way", 0, 2, 0, 2, 13, 2, during("2")},
                                          {"no rule under way", 0, 7, 0, 2, -1, 2, during("7")},
                                          {"stop at the end", 0, 0, 1, 0, 1235, 3, {}},
                                          {"distrust at the end", 0, 0, 2, 0, 13, 3, {}},
                                          {"no rule at the end", 0, 0, 3, 0, 0, 3, {}},
                                      });
}

TEST(WFMUploadFilewithHandleWire, AVerdictOutweighsARefusal) {
    struct {
        const char* status;
        uint32_t closing;
        int32_t result;
    } const rows[] = {{"4", 1, 1235}, {"4", 2, 13}, {"9", 1, 1235}, {"9", 2, 13},
                      {"5", 1, 1235}, {"5", 2, 13}, {"4", 3, 5},    {"5", 3, -1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.status) + ", verdict " + std::to_string(row.closing));
        RawServer server({Reply::json(std::string(R"({"success":"true","status":)") + row.status + "}")});
        UploadCall call(server);
        answerWith(call.progress, 0, 0, row.closing);
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.signedResult(), row.result);
    }
}

TEST(WFMUploadFilewithHandleWire, AVerdictOutweighsAnAnswerThatIsNotUnderstood) {
    for (const auto& [verdict, result] : {std::pair<uint32_t, int32_t>{1, 1235}, {2, 13}, {3, -1}}) {
        RawServer server({Reply::text("sorry")});
        UploadCall call(server);
        answerWith(call.progress, 0, 0, verdict);
        EXPECT_EQ(call.run(), 14u);
        EXPECT_EQ(call.signedResult(), result);
    }
}

TEST(WFMUploadFilewithHandleWire, ABrokenConnectionIsMinus1WithACallbackAnd13Without) {
    expectABrokenUpload<UploadCall>(true, -1);
    expectABrokenUpload<UploadCall>(false, 13);
}

namespace {

/// A file that tells another size than it has, as one that changed since it was asked.
class FileOfAnotherSize : public QFile {
public:
    using QFile::QFile;
    qint64 size() const override { return QFile::size() + 2; }
};

}  // namespace

TEST(WFMUploadFilewithHandleWire, AShortTransferIs1235AndOneThatIsNotTrusted13) {
    for (const auto& [verdict, result] :
         {std::pair<uint32_t, int32_t>{0, 1235}, {1, 1235}, {2, 13}, {3, 1235}}) {
        SCOPED_TRACE(verdict);
        RawServer server({Reply::json(kGood)});
        const LocalFile local;
        FileOfAnotherSize file(local.file.fileName());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        UploadCall call(server);
        call.file = &file;
        answerWith(call.progress, 0, 0, verdict);
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.signedResult(), result);
    }
}
