// WFMDeleteShareLink: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>

#include "links.h"

using namespace wire;

namespace {

struct DeleteLinkCall : SessionCall<DeleteLinkCall> {
    const wchar_t* path = L"/home/d/a.txt";
    const wchar_t* downloadLink = nullptr;
    const wchar_t* ssids = L"s1";

    using SessionCall::SessionCall;
    uint32_t call() {
        return WFMDeleteShareLink(session, kServer, port, slaveID, path, downloadLink, ssids, nullptr,
                                  resultWord);
    }
    bool isUntouched() const { return result == 0xABCD; }
};

}  // namespace

TEST(WFMDeleteShareLinkWire, WithIdsItNamesThemAlone) {
    for (const wchar_t* downloadLink : {static_cast<const wchar_t*>(nullptr), L"", L"http://nas/"})
        expectOnEveryRoute(
            "func=delete_share&sid=sid123&ssids=s1%3Bs%262&file_total=1",
            [downloadLink](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t* slaveID) {
                DeleteLinkCall call;
                call.slaveID = slaveID;
                call.ssids = L"s1;s&2";
                call.downloadLink = downloadLink;
                call.run(session, port);
            },
            routesToFileManager());
}

TEST(WFMDeleteShareLinkWire, WithoutIdsItNamesPathAndUrl) {
    for (const wchar_t* ssids : {static_cast<const wchar_t*>(nullptr), L""})
        expectOnEveryRoute(
            "func=delete_share&sid=sid123&filename=%2Fhome%2Fb%20c%2F%E6%96%87&"
            "download_link=http%3A%2F%2Fnas%2Fshare.cgi%3Fssid%3Ds1&file_total=1",
            [ssids](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t* slaveID) {
                DeleteLinkCall call;
                call.slaveID = slaveID;
                call.path = L"/home/b c/\x6587";
                call.ssids = ssids;
                call.downloadLink = L"http://nas/share.cgi?ssid=s1";
                call.run(session, port);
            },
            routesToFileManager());
}

TEST(WFMDeleteShareLinkWire, ThePathTellsTheNodeAndIsSentAsGiven) {
    for (const PathRoute& route : pathRoutes()) {
        SCOPED_TRACE(route.what);
        RawServer server({Reply::json(R"({"status":0})")});
        const SessionPtr session = route.session();
        const std::wstring path = route.path();
        DeleteLinkCall call(server);
        call.path = path.c_str();
        call.slaveID = route.slaveID;
        call.ssids = nullptr;
        call.downloadLink = L"u";
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(server.onlyRequest().path(),
                  "/" + std::string(route.prefix) + "cgi-bin/filemanager/utilRequest.cgi");
        EXPECT_EQ(server.onlyRequest().query()[2].value, std::string(path.begin(), path.end()));
    }
}

TEST(WFMDeleteShareLinkWire, WithIdsThePathTellsTheNodeToo) {
    for (const TeamFolder& folder : teamFoldersOfNodes()) {
        SCOPED_TRACE(testing::PrintToString(folder.clientPath));
        RawServer server({Reply::json(R"({"status":0})")});
        const SessionPtr session = makeTeamSession(teamFoldersOfNodes());
        const std::wstring path = folder.clientPath + std::wstring(L"a.txt");
        DeleteLinkCall call;
        call.path = path.c_str();
        call.slaveID = L"Other";
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(
            server.onlyRequest().target(),
            "/Node/cgi-bin/filemanager/utilRequest.cgi?func=delete_share&sid=sid123&ssids=s1&file_total=1");
    }
}

TEST(WFMDeleteShareLinkWire, OnlyAStatusOf0IsASuccess) {
    const auto line = [](const std::string& status) {
        return std::vector<std::string>{"[WFMShare] WFMDeleteShareLink: get error status=" + status};
    };
    const std::vector<std::string> unreadable = {
        "[WFMShare] WFMDeleteShareLink: WFM_PARSE_XML_FAIL",
        "[WFMShare] WFMDeleteShareLink(127.0.0.1:{port}) failed dwStatus(14)"};
    expectReplies<DeleteLinkCall>({
        {R"({"status":0})", 0, 0, {}},
        {R"({"status":"0","success":"false"})", 0, 0, {}},
        {R"({"status":1,"success":"true"})", 0, -1, line("1")},
        {R"({"status":4})", 0, -1, line("4")},
        {R"({"status":-3})", 0, -1, line("-3")},
        {"{}", 0, -1, line("-1")},
        {"[]", 0, -1, line("-1")},
        {"sorry", 14, -1, unreadable},
        {R"({"status":99999999999})", 14, -1, unreadable},
    });
}

TEST(WFMDeleteShareLinkWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<DeleteLinkCall>(
        log, session.get(), "WFMDeleteShareLink",
        {[](DeleteLinkCall& call) { call.path = nullptr; }, [](DeleteLinkCall& call) { call.path = L""; },
         [](DeleteLinkCall& call) { call.ssids = nullptr; },
         [](DeleteLinkCall& call) { call.ssids = call.downloadLink = L""; },
         [](DeleteLinkCall& call) { call.resultWord = nullptr; }},
        kSharePrefix);
}
