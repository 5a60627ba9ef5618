// WebFileManRenameShareFolder: what is its own. What it shares with its sisters stands in
// sharefolders_wire_test.cpp, what every call shares in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>

#include "replies.h"
#include "sharefolders.h"

using namespace wire;

namespace {

HeaderList form(const std::string& folder, const std::string& oldName, const std::string& newName) {
    return {{"path", folder}, {"source_name", oldName}, {"dest_name", newName}, {"sn", "sid123"}};
}

}  // namespace

TEST(WebFileManRenameShareFolderWire, PostsFolderAndNamesAsAForm) {
    expectPostOnEveryRoute(
        "func=rename&sid=sid123", form("%2Fhome%2Fd", "old", "new"),
        [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t*) {
            RenameShareCall call;
            call.run(session, port);
        },
        {}, routesWithoutNode());
}

TEST(WebFileManRenameShareFolderWire, ThePathsAreSentAsTheyStandButForASlashAtTheirEnds) {
    expectShareFolderForms<RenameShareCall>(
        "/cgi-bin/torvi/torvisrv.cgi?func=rename&sid=sid123",
        {{L"/home/d/a/", L"/home/d/b", form("%2Fhome%2Fd", "a", "b")},
         {L"/home/d/a", L"/home/d/b/", form("%2Fhome%2Fd", "a", "b")},
         {L"home/a", L"home/b", form("home", "a", "b")},
         {L"/d//a", L"/d//b", form("%2Fd%2F", "a", "b")},
         {L"/home/b c&d/100% \x6587", L"/home/b c&d/x=y+z",
          form("%2Fhome%2Fb%20c%26d", "100%25%20%E6%96%87", "x%3Dy%2Bz")},
         // The server asks nothing of a name, and neither does the call.
         {L"/home/d/a", L"/home/d/a", form("%2Fhome%2Fd", "a", "a")},
         {L"/home/.Torvi/T/a", L"/home/.Torvi/T/b", form("%2Fhome%2F.Torvi%2FT", "a", "b")}});
}

TEST(WebFileManRenameShareFolderWire, AnotherFolderIs87WithoutARequest) {
    const std::pair<const wchar_t*, const wchar_t*> rows[] = {{L"/a/x", L"/b/y"},   {L"/a/x", L"/A/y"},
                                                              {L"/a/x", L"a/y"},    {L"/a/x", L"/a/b/x"},
                                                              {L"/a/b/x", L"/a/x"}, {L"/a/x", L"/a//y"}};
    for (const auto& [source, destination] : rows) {
        SCOPED_TRACE(testing::PrintToString(destination));
        RawServer server({Reply::json(R"({"success":"true"})")});
        RenameShareCall call(server);
        call.source = source;
        call.destination = destination;
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 87u);
        EXPECT_EQ(server.connectionCount(), 0u);
        log.expectNoLines();
    }
}

TEST(WebFileManRenameShareFolderWire, TheServersSuccessDecides) {
    const std::string name = "[WFMShare] WebFileManRenameShareFolder";
    const std::string denied = name + ": ERROR_ACCESS_DENIED";
    expectReplies<RenameShareCall>({
        {R"({"status":1,"success":"true"})", 0, 0, {}},
        {R"({"status":-3,"success":true})", 0, 0, {}},
        {R"({"success":"true"})", 0, 0, {}},
        {R"({"status":0,"success":"false"})", 0, 5, {denied}},
        {R"({"status":0})", 0, 5, {denied}},
        {"{}", 0, 5, {denied}},
        {"[]", 0, 5, {denied}},
        {R"({"success":["true"]})",
         14,
         -1,
         {name + ": WFM_PARSE_XML_FAIL", name + "(127.0.0.1:{port}) failed dwStatus(14)"}},
    });
}
