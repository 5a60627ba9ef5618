#include <gtest/gtest.h>

#include <limits>

#include "uploads.h"

using namespace wire;

namespace {

const char* const kGood = R"({"status":1,"size":"10"})";
const char* const kName = "[WFM] WFMTorviUploadandMovewithHandle";

std::string reason(const std::string& text) {
    return std::string(kName) + "(/home/a.txt): " + text;
}

std::string summary(int status) {
    return std::string(kName) + "(127.0.0.1:{port}): (/home/a.txt)failed (" + std::to_string(status) +
           ")(/home/a.txt)";
}

std::string refused(const std::string& destination = "/home/a.txt") {
    return std::string(kName) + "(127.0.0.1:80): WFM_PARSE_XML_INVALID_PARAMETER(" + destination + ")";
}

struct UploadAndMoveCall : UploadArgs<UploadAndMoveCall> {
    const wchar_t* uploadRoot = L"/home/.up";
    const wchar_t* renameTarget = nullptr;
    int64_t fileSize = 10;
    int64_t modifiedTime = 1700000000;

    using UploadArgs::UploadArgs;
    uint32_t call() {
        return WFMTorviUploadandMovewithHandle(session.get(), server, port, slaveID, file, destination,
                                               uploadRoot, renameTarget, fileSize, modifiedTime, &progress,
                                               callback(), overwrite, nullptr, resultWord);
    }
};

/// The query of a call on "/home/a.txt" but for what a test says.
std::string query(const std::string& folder, const std::string& time = "1700000000",
                  const std::string& size = "10", const std::string& overwrite = "1",
                  const std::string& behind = "&upload_root_dir=%2Fhome%2F.up") {
    return "func=upload_and_move&sid=sid123&settime=1&mtime=" + time + "&filesize=" + size +
           "&dest_path=" + folder + "&overwrite=" + overwrite + behind;
}

std::string errorStatus(int code) {
    return reason("get error status(" + std::to_string(code) + ")");
}

}  // namespace

TEST(WFMTorviUploadandMovewithHandleWire, SendsTheFileAsOneMultipartPost) {
    RawServer server({Reply::json(kGood)});
    UploadAndMoveCall call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    log.expectNoLines();
    const Request request = server.onlyRequest();
    expectRequestLine(request, "POST /cgi-bin/torvi/torvisrv.cgi?" + query("%2Fhome") + " HTTP/1.1");
    expectHeaders(request, transferHeaders(server, request));
    EXPECT_EQ(request.body, uploadBody(request, "a.txt", "0123456789", "upload_and_move"));
}

TEST(WFMTorviUploadandMovewithHandleWire, SendsARenameTargetInItsOwnTemplate) {
    RawServer server({Reply::json(kGood)});
    UploadAndMoveCall call(server);
    call.renameTarget = L"/home/b c.txt";
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(server.onlyRequest().queryText(),
              query("%2Fhome", "1700000000", "10", "1",
                    "&rename_dest=%2Fhome%2Fb%20c.txt&upload_root_dir=%2Fhome%2F.up"));
}

TEST(WFMTorviUploadandMovewithHandleWire, AnEmptyRenameTargetIsNone) {
    RawServer server({Reply::json(kGood)});
    UploadAndMoveCall call(server);
    call.renameTarget = L"";
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(server.onlyRequest().queryText(), query("%2Fhome"));
}

TEST(WFMTorviUploadandMovewithHandleWire, GoesToTheNodeAndFolderOfItsPath) {
    expectUploadRoutes<UploadAndMoveCall>(kGood, "upload_and_move", [](const PathRoute& route) {
        return route.cgi() + "?" + query(route.sent);
    });
}

TEST(WFMTorviUploadandMovewithHandleWire, UploadRootAndRenameTargetAreEncodedButNotMapped) {
    RawServer server({Reply::json(kGood)});
    UploadAndMoveCall call(server);
    call.session = pathRouteSession();
    call.setDestination(L"/home/.Torvi/T/a.txt");
    call.uploadRoot = L"/home/.Torvi/T/\x6587&";
    call.renameTarget = L"/home/.Torvi/T/100%";
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(server.onlyRequest().queryText(),
              query("vtf%3A%2F%2FS", "1700000000", "10", "1",
                    "&rename_dest=%2Fhome%2F.Torvi%2FT%2F100%25"
                    "&upload_root_dir=%2Fhome%2F.Torvi%2FT%2F%E6%96%87%26"));
}

TEST(WFMTorviUploadandMovewithHandleWire, SendsTimeAndSizeInDecimalAsGiven) {
    struct {
        int64_t time, size;
        const char *sentTime, *sentSize;
    } const rows[] = {
        {0, 0, "0", "0"},
        {-1, 5, "-1", "5"},
        {std::numeric_limits<int64_t>::min(), std::numeric_limits<int64_t>::max(), "-9223372036854775808",
         "9223372036854775807"},
        {4294967296, 4294967296, "4294967296", "4294967296"},
    };
    for (const auto& row : rows) {
        RawServer server({Reply::json(kGood)});
        UploadAndMoveCall call(server);
        call.modifiedTime = row.time;
        call.fileSize = row.size;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(server.onlyRequest().queryText(), query("%2Fhome", row.sentTime, row.sentSize));
    }
}

TEST(WFMTorviUploadandMovewithHandleWire, SendsTheLowByteOfOverwrite) {
    const std::pair<uint32_t, const char*> rows[] = {{0, "0"}, {255, "255"}, {256, "0"}, {0xFFFFFF80, "128"}};
    for (const auto& [overwrite, sent] : rows) {
        RawServer server({Reply::json(kGood)});
        UploadAndMoveCall call(server);
        call.overwrite = overwrite;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(server.onlyRequest().queryText(), query("%2Fhome", "1700000000", "10", sent));
    }
}

TEST(WFMTorviUploadandMovewithHandleWire, SendsNamesAsTheyAre) {
    expectNamesAsTheyAre<UploadAndMoveCall>(kGood, "upload_and_move");
}

TEST(WFMTorviUploadandMovewithHandleWire, LeavesTheCallersHandleAlone) {
    expectTheHandleIsLeftAlone<UploadAndMoveCall>(kGood, "upload_and_move");
}

TEST(WFMTorviUploadandMovewithHandleWire, RefusesMissingArgumentsAndTouchesNothing) {
    UploadAndMoveCall call;
    LogCapture log;
    for (const wchar_t* text : {static_cast<const wchar_t*>(nullptr), L""}) {
        call.destination = text;
        EXPECT_EQ(call.run(), 8u);
        call.destination = L"/home/a.txt";
        call.uploadRoot = text;
        EXPECT_EQ(call.run(), 8u);
        call.uploadRoot = L"/home/.up";
    }
    call.resultWord = nullptr;
    EXPECT_EQ(call.run(), 8u);
    EXPECT_EQ(call.result, 0xABCDu);
    log.expectLines({refused(""), refused(), refused(""), refused(), refused()});
}

TEST(WFMTorviUploadandMovewithHandleWire, RefusesAFileThatCannotBeRead) {
    expectFileRefusals<UploadAndMoveCall>(refused());
}

TEST(WFMTorviUploadandMovewithHandleWire, AFileThatCannotBeSentIs6) {
    expectAPipeIs6<UploadAndMoveCall>({reason("FAIL(httpStatusCode=200)"), summary(6)});
}

TEST(WFMTorviUploadandMovewithHandleWire, ANegativeSizeIs6AndSendsNothing) {
    RawServer server({Reply::json(kGood)});
    UploadAndMoveCall call(server);
    call.fileSize = -1;
    LogCapture log;
    EXPECT_EQ(call.run(), 6u);
    EXPECT_EQ(call.signedResult(), -1);
    EXPECT_EQ(server.connectionCount(), 0u);
    EXPECT_EQ(log.texts(), withPort({reason("FAIL(httpStatusCode=200)"), summary(6)}, server.port()));
}

TEST(WFMTorviUploadandMovewithHandleWire, TheResultWordIsTheClientCode) {
    expectReplies<UploadAndMoveCall>({
        {R"({"status":1})", 0, 0, {}},
        {R"({"status":"1"})", 0, 0, {}},
        {R"({"status":2})", 0, -15, {errorStatus(-15)}},
        {R"({"status":3})", 0, -29, {errorStatus(-29)}},
        {R"({"status":4})", 0, -3, {errorStatus(-3)}},
        {R"({"status":5})", 0, -4, {errorStatus(-4)}},
        {R"({"status":9})", 0, -6, {errorStatus(-6)}},
        {R"({"status":12})", 0, -7, {errorStatus(-7)}},
        {R"({"status":0})", 0, -2, {errorStatus(-2)}},
        {R"({"status":34})", 0, -1, {errorStatus(-1)}},
        {"{}", 0, -1, {errorStatus(-1)}},
        {R"({"status":null})", 0, -1, {errorStatus(-1)}},
        {R"({"status":[]})", 0, -1, {errorStatus(-1)}},
    });
}

TEST(WFMTorviUploadandMovewithHandleWire, AMissingHomeFolderIsMinus44) {
    const std::string homeGone = reason("home folder not available (WFM_HOME_FOLDER_NOT_AVAIL)");
    expectReplies<UploadAndMoveCall>({
        {R"({"status":5,"home_folder_available":false})", 0, -44, {errorStatus(-4), homeGone}},
        {R"({"status":-3,"home_folder_available":false})", 0, -44, {errorStatus(-4), homeGone}},
        {R"({"status":5,"home_folder_available":true})", 0, -4, {errorStatus(-4)}},
        {R"({"status":4,"home_folder_available":false})", 0, -3, {errorStatus(-3)}},
        {R"({"status":1,"home_folder_available":false})", 0, 0, {}},
    });
}

TEST(WFMTorviUploadandMovewithHandleWire, HostileRepliesAre14) {
    const std::vector<std::string> failed = {reason("WFM_PARSE_XML_FAIL"), summary(14)};
    expectReplies<UploadAndMoveCall>({
        {R"({"status":1,"size":99999999999})", 14, -1, failed},
        {R"({"status":1e300})", 14, -1, failed},
        {R"({"status":5,"home_folder_available":[]})", 14, -1, failed},
        {R"({"status":1)", 14, -1, failed},
        {"null", 14, -1, failed},
    });
}

TEST(WFMTorviUploadandMovewithHandleWire, TellsTheCallbackOfTheOpeningTheBytesAndTheEnd) {
    RawServer server({Reply::json(kGood)});
    UploadAndMoveCall call(server);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.progress.calls, callsOfASmallUpload(10, 10));
}

TEST(WFMTorviUploadandMovewithHandleWire, AFileThatGrewIsSentWholeAndToldByItsOldSize) {
    RawServer server({Reply::json(kGood)});
    UploadAndMoveCall call(server);
    call.local.append("abcde");
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    const Request request = server.onlyRequest();
    EXPECT_EQ(request.queryText(), query("%2Fhome"));
    EXPECT_EQ(request.body, uploadBody(request, "a.txt", "0123456789abcde", "upload_and_move"));
    EXPECT_EQ(call.progress.calls, callsOfASmallUpload(10, 15));
}

TEST(WFMTorviUploadandMovewithHandleWire, AnEmptyFileIsASuccessWithoutProgress) {
    RawServer server({Reply::json(kGood)});
    UploadAndMoveCall call(server);
    LocalFile empty("");
    call.file = &empty.file;
    call.fileSize = 0;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.progress.calls, (std::vector<Progress::Call>{{0, 0, 0, 0, 1, 1}, {0, 0, 0, 0, 0, 0}}));
    const Request request = server.onlyRequest();
    EXPECT_EQ(request.body, uploadBody(request, "a.txt", "", "upload_and_move"));
}

TEST(WFMTorviUploadandMovewithHandleWire, OnlyDistrustOutweighsTheServersWord) {
    const std::vector<std::string> opening = {reason("FAIL(httpStatusCode=200)"), summary(2)};
    const auto during = [](const char* verdict) {
        return std::vector<std::string>{
            std::string("[WFM] HttpRequestWorker::uploadProgress abort(") + verdict + ")",
            reason("FAIL(httpStatusCode=0)"), summary(2)};
    };
    expectVerdicts<UploadAndMoveCall>(kGood, {
                                                 {"go on", 0, 0, 0, 0, 0, 3, {}},
                                                 {"stop at the opening", 1, 0, 0, 2, -1, 1, opening},
                                                 {"distrust at the opening", 2, 0, 0, 2, -31, 1, opening},
                                                 {"stop under way", 0, 1, 0, 2, -1, 2, during("1")},
                                                 {"distrust under way", 0, 2, 0, 2, -31, 2, during("2")},
                                                 {"stop at the end", 0, 0, 1, 0, 0, 3, {}},
                                                 {"distrust at the end", 0, 0, 2, 0, -31, 3, {}},
                                             });
    expectVerdicts<UploadAndMoveCall>(
        R"({"status":5,"home_folder_available":false})",
        {{"distrust of a refusal",
          0,
          0,
          2,
          0,
          -31,
          3,
          {errorStatus(-4), reason("home folder not available (WFM_HOME_FOLDER_NOT_AVAIL)")}}});
    expectVerdicts<UploadAndMoveCall>("sorry", {{"distrust of an answer that isn't understood",
                                                 0,
                                                 0,
                                                 2,
                                                 14,
                                                 -31,
                                                 3,
                                                 {reason("WFM_PARSE_XML_FAIL"), summary(14)}}});
}

TEST(WFMTorviUploadandMovewithHandleWire, ABrokenConnectionIsMinus1WithACallbackAndMinus31Without) {
    expectABrokenUpload<UploadAndMoveCall>(true, -1);
    expectABrokenUpload<UploadAndMoveCall>(false, -31);
}
