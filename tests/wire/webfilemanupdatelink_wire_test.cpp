// WebFileManUpdateLink: what is its own. What it shares with its sisters stands in
// sharefolders_wire_test.cpp, what every call shares in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "replies.h"
#include "sharefolders.h"

using namespace wire;

namespace {

HeaderList form(const std::string& folder, const std::string& name) {
    return {{"dest_path", folder}, {"source_file", name}, {"sn", "sid123"}};
}

}  // namespace

TEST(WebFileManUpdateLinkWire, PostsNewFolderAndOldNameToTheFileManager) {
    expectPostOnEveryRoute(
        "func=update_link&sid=sid123", form("%2Fhome%2Fe", "old"),
        [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t* slaveID) {
            UpdateLinkCall call;
            call.destination = L"/home/e/new";
            call.slaveID = slaveID;
            call.run(session, port);
        },
        {}, routesToFileManager());
}

TEST(WebFileManUpdateLinkWire, ThePathsAreSentAsTheyStandButForASlashAtTheirEnds) {
    expectShareFolderForms<UpdateLinkCall>(
        "/cgi-bin/filemanager/utilRequest.cgi?func=update_link&sid=sid123",
        {{L"/home/d/a/", L"/home/e/b", form("%2Fhome%2Fe", "a")},
         {L"/home/d/a", L"/home/e/b/", form("%2Fhome%2Fe", "a")},
         {L"/home/d/a", L"/home/d/a", form("%2Fhome%2Fd", "a")},
         {L"d/100% \x6587", L"x=y/a", form("x%3Dy", "100%25%20%E6%96%87")},
         {L"/home/.Torvi/T/a", L"/home/.Torvi/T/b/a", form("%2Fhome%2F.Torvi%2FT%2Fb", "a")}});
}

TEST(WebFileManUpdateLinkWire, TheServersOwnStatusDecides) {
    const std::string name = "[WFMShare] WebFileManUpdateLink";
    const auto unknown = [&name](int status) {
        return std::vector<std::string>{name + ": ERROR_KNOWN(" + std::to_string(status) + ")"};
    };
    expectReplies<UpdateLinkCall>({
        {R"({"status":0,"success":"true"})", 0, 0, {}},
        {R"({"status":"0","success":"false"})", 0, 0, {}},
        {R"({"status":-3,"success":"true"})", 0, 5, {name + ": ERROR_ACCESS_DENIED"}},
        // The 1 by which other replies tell success is none here.
        {R"({"status":1,"success":"true"})", 0, -1, unknown(1)},
        {R"({"status":4,"success":"true"})", 0, -1, unknown(4)},
        {R"({"status":-4})", 0, -1, unknown(-4)},
        {R"({"success":"true"})", 0, -1, unknown(-1)},
        {"[]", 0, -1, unknown(-1)},
        {R"({"status":99999999999})",
         14,
         -1,
         {name + ": WFM_PARSE_XML_FAIL", name + "(127.0.0.1:{port}) failed dwStatus(14)"}},
    });
}
