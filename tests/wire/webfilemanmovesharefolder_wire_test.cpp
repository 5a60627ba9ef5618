// WebFileManMoveShareFolder: what is its own. What it shares with its sisters stands in
// sharefolders_wire_test.cpp, what every call shares in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "replies.h"
#include "sharefolders.h"

using namespace wire;

namespace {

HeaderList form(const std::string& from, const std::string& name, const std::string& to) {
    return {{"source_file", name}, {"source_total", "1"}, {"source_path", from},
            {"dest_path", to},     {"mode", "1"},         {"sn", "sid123"}};
}

const std::string kCgi = "/cgi-bin/torvi/torvisrv.cgi";
const std::string kName = "[WFMShare] WebFileManMoveShareFolder";
const std::string kRenameName = "[WFMShare] WebFileManRenameShareFolder";

const char* const kMoved = R"({"status":0})";

/// From "/home/d/old" to "/home/e", under its old name or under "new".
struct ToOtherFolder : MoveShareCall {
    explicit ToOtherFolder(const RawServer& server, bool rename = false) : MoveShareCall(server) {
        destination = rename ? L"/home/e/new" : L"/home/e/old";
    }
};

std::string renameFailed(int dwStatus, int result) {
    return kName + ": WebFileManRenameShareFolder failed(" + std::to_string(dwStatus) + ")(" +
           std::to_string(result) + ")";
}

std::string summary(const std::string& name, int dwStatus) {
    return name + "(127.0.0.1:{port}) failed dwStatus(" + std::to_string(dwStatus) + ")";
}

}  // namespace

// ---- The move ----

TEST(WebFileManMoveShareFolderWire, PostsFoldersAndNameAsAForm) {
    expectPostOnEveryRoute(
        "func=move&sid=sid123", form("%2Fhome%2Fd", "old", "%2Fhome%2Fe"),
        [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t*) {
            MoveShareCall call;
            call.destination = L"/home/e/old";
            call.run(session, port);
        },
        {}, routesWithoutNode());
}

TEST(WebFileManMoveShareFolderWire, ThePathsAreSentAsTheyStandButForASlashAtTheirEnds) {
    expectShareFolderForms<MoveShareCall>(
        kCgi + "?func=move&sid=sid123",
        {{L"/home/d/a/", L"/home/e/a", form("%2Fhome%2Fd", "a", "%2Fhome%2Fe")},
         {L"/home/d/a", L"/home/e/a/", form("%2Fhome%2Fd", "a", "%2Fhome%2Fe")},
         {L"home/a", L"other/a", form("home", "a", "other")},
         {L"/home/b c&d/100% \x6587", L"/home/x=y/100% \x6587",
          form("%2Fhome%2Fb%20c%26d", "100%25%20%E6%96%87", "%2Fhome%2Fx%3Dy")},
         // A new name stays out of the move.
         {L"/home/d/a", L"/home/e/b", form("%2Fhome%2Fd", "a", "%2Fhome%2Fe")},
         {L"/home/d/a", L"/home/d/b", form("%2Fhome%2Fd", "a", "%2Fhome%2Fd")},
         {L"/home/.Torvi/T/a", L"/home/.Torvi/U/a",
          form("%2Fhome%2F.Torvi%2FT", "a", "%2Fhome%2F.Torvi%2FU")}});
}

TEST(WebFileManMoveShareFolderWire, TheSamePathIs87WithALineAndNoRequest) {
    for (const wchar_t* destination : {L"/home/d/old", L"/home/d/old/"}) {
        RawServer server({Reply::json(kMoved)});
        MoveShareCall call(server);
        call.destination = destination;
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 87u);
        EXPECT_EQ(server.connectionCount(), 0u);
        log.expectLines({kName + ": ERROR_INVALID_PARAMETER"});
    }
}

TEST(WebFileManMoveShareFolderWire, TheServersOwnStatusDecides) {
    const auto unknown = [](int status) {
        return std::vector<std::string>{kName + ": ERROR_UNKNOWN(" + std::to_string(status) + ")"};
    };
    expectReplies<ToOtherFolder>({
        {R"({"status":0,"success":"true"})", 0, 0, {}},
        {R"({"status":"0","success":"false"})", 0, 0, {}},
        {R"({"status":-3,"success":"true"})", 0, 5, {kName + ": ERROR_ACCESS_DENIED"}},
        // The 1 by which other replies tell success is none here.
        {R"({"status":1,"success":"true"})", 0, -1, unknown(1)},
        {R"({"status":4,"success":"true"})", 0, -1, unknown(4)},
        {R"({"status":-4})", 0, -1, unknown(-4)},
        {R"({"success":"true"})", 0, -1, unknown(-1)},
        {"[]", 0, -1, unknown(-1)},
    });
}

// ---- The new name ----

TEST(WebFileManMoveShareFolderWire, AnotherNameIsGivenWhereTheFolderLiesNow) {
    const struct {
        const wchar_t *source, *destination;
        HeaderList rename;
    } rows[] = {{L"/home/d/old",
                 L"/home/e/new/",
                 {{"path", "%2Fhome%2Fe"}, {"source_name", "old"}, {"dest_name", "new"}}},
                {L"/home/d/old/",
                 L"/home/d/new",
                 {{"path", "%2Fhome%2Fd"}, {"source_name", "old"}, {"dest_name", "new"}}},
                {L"/d/\x6587", L"e/Old", {{"path", "e"}, {"source_name", "%E6%96%87"}, {"dest_name", "Old"}}},
                {L"/d/a", L"/e/A", {{"path", "%2Fe"}, {"source_name", "a"}, {"dest_name", "A"}}}};
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.destination));
        RawServer server({Reply::json(kMoved), Reply::json(R"({"success":"true"})")});
        MoveShareCall call(server);
        call.source = row.source;
        call.destination = row.destination;
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        ASSERT_EQ(server.requestCount(), 2u);
        expectRequestLine(server.request(0), "POST " + kCgi + "?func=move&sid=sid123 HTTP/1.1");
        expectPost(server, server.request(1), kCgi + "?func=rename&sid=sid123",
                   joined(row.rename, {{"sn", "sid123"}}));
        log.expectNoLines();
    }
}

TEST(WebFileManMoveShareFolderWire, TheFileManagerIsAskedForBoth) {
    RawServer server({Reply::json(kMoved), Reply::json(R"({"success":"true"})")});
    ToOtherFolder call(server, true);
    useFileManager(*call.session);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    ASSERT_EQ(server.requestCount(), 2u);
    const std::string cgi = "/cgi-bin/filemanager/utilRequest.cgi";
    EXPECT_EQ(server.request(0).target(), cgi + "?func=move&sid=sid123");
    EXPECT_EQ(server.request(1).target(), cgi + "?func=rename&sid=sid123");
}

TEST(WebFileManMoveShareFolderWire, AMoveThatFailedGivesNoName) {
    const Reply replies[] = {Reply::json(R"({"status":-3})"), Reply::json(R"({"status":1})"),
                             Reply::status(503)};
    for (const Reply& reply : replies) {
        RawServer server({reply, Reply::json(R"({"success":"true"})")});
        ToOtherFolder call(server, true);
        call.run();
        EXPECT_NE(call.result, 0u);
        EXPECT_EQ(server.requestCount(), 1u);
    }
}

TEST(WebFileManMoveShareFolderWire, ANameThatFailedIsTheOutcome) {
    const struct {
        Reply reply;
        uint32_t dwStatus;
        int32_t result;
        std::vector<std::string> lines;
    } rows[] = {
        {Reply::json("{}"), 0, 5, {kRenameName + ": ERROR_ACCESS_DENIED", renameFailed(0, 5)}},
        {Reply::status(503),
         12,
         -1,
         {kRenameName + ": WFM_PARSE_XML_HTTPTRAN_SERVICE_UNAVAIL", summary(kRenameName, 12),
          renameFailed(12, -1), summary(kName, 12)}},
        {Reply::json("no"),
         14,
         -1,
         {kRenameName + ": WFM_PARSE_XML_FAIL", summary(kRenameName, 14), renameFailed(14, -1),
          summary(kName, 14)}},
    };
    for (const auto& row : rows) {
        RawServer server({Reply::json(kMoved), row.reply});
        ToOtherFolder call(server, true);
        LogCapture log;
        EXPECT_EQ(call.run(), row.dwStatus);
        EXPECT_EQ(call.signedResult(), row.result);
        EXPECT_EQ(server.requestCount(), 2u);
        EXPECT_EQ(log.texts(), withPort(row.lines, server.port()));
    }
}
