// WFMGetandCreateShareLink: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "links.h"
#include "lists.h"
#include "support/timers.h"
#include "teamfolders.h"

using namespace wire;

namespace {

struct GetAndCreateCall : SessionCall<GetAndCreateCall> {
    uint32_t timeoutMs = 0;
    const wchar_t* hostname = L"nas.example";
    const wchar_t* fileList = L"/home/d/a.txt;";
    const wchar_t* accessCode = nullptr;
    const wchar_t* expireTime = nullptr;
    const wchar_t* datetime = nullptr;
    const wchar_t* linkName = nullptr;
    bool secureLink = false;
    uint32_t durationType = 1;
    bool newShare = false;
    Garbage<_WFM_SHARE_LINK_RESULT> information;
    _WFM_SHARE_LINK_RESULT* informationOut = &information.record;

    using SessionCall::SessionCall;
    uint32_t call() {
        return WFMGetandCreateShareLink(session, kServer, port, slaveID, timeoutMs, hostname, nullptr,
                                        fileList, accessCode, expireTime, datetime, linkName, secureLink,
                                        durationType, newShare, informationOut);
    }
    std::string text() const { return information.text(); }
    bool isUntouched() const { return information.isUntouched(); }
};

const char* const kName = "WFMGetandCreateShareLink";
const std::string kQuery = "func=get_share_link&sid=sid123";
const std::string kPlace = "/cgi-bin/filemanager/utilRequest.cgi";
const std::string kTarget = kPlace + "?" + kQuery;

/// The fields of a request for one file; `host` are "ht" and "hostname".
HeaderList fieldsOf(const HeaderList& host, const std::string& path = "%2Fhome%2Fd") {
    return joined(joined({{"valid_duration", "forever"}, {"access_code", ""}}, host), {{"ssl", "false"},
                                                                                       {"file_name", "a.txt"},
                                                                                       {"path", path},
                                                                                       {"new_share", "0"},
                                                                                       {"expire_time", ""},
                                                                                       {"c", "1"},
                                                                                       {"file_total", "1"}});
}

/// "ht" and "hostname" of a link on another node, which name the port of the request.
HeaderList hostOn(const std::string& node, uint32_t port) {
    return {{"ht", "10"}, {"hostname", "nas.example%3A" + std::to_string(port) + "%2F" + node}};
}

/// The values of the "file_name" fields that a list gives.
std::vector<std::string> namesOf(const wchar_t* fileList) {
    std::vector<std::string> names;
    for (const auto& [key, value] :
         formOf<GetAndCreateCall>([fileList](GetAndCreateCall& call) { call.fileList = fileList; }))
        if (key == "file_name") names.push_back(value);
    return names;
}

/// What a call on that session sends, and names as the link's node.
struct Sent {
    std::string path;
    HeaderList fields;
    std::string record;
    uint32_t port;
};
Sent sentBy(_WFM_AUTH_CONTEXT* session, void (*change)(GetAndCreateCall&)) {
    const RawServer server({Reply::json("{}")});
    GetAndCreateCall call;
    change(call);
    EXPECT_EQ(call.run(session, server.port()), 0u);
    const Request request = server.onlyRequest();
    return {request.path(), rawFields(request), call.text(), server.port()};
}

/// What a reply leaves in the record.
std::string recordOf(const std::string& reply) {
    RawServer server({Reply::json(reply)});
    GetAndCreateCall call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    log.expectNoLines();
    return call.text();
}

}  // namespace

// ---- The request ----

TEST(WFMGetandCreateShareLinkWire, GoesToTheNodeAndNamesItInTheHost) {
    for (const Route& route : routesToFileManager()) {
        SCOPED_TRACE(route.name);
        const RawServer server({Reply::json("{}")});
        const SessionPtr session = makeSession(route.options);
        GetAndCreateCall call;
        call.slaveID = route.slaveID;
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        const std::wstring node = route.slaveID != nullptr ? route.slaveID : L"";
        const bool isOther = route.options.slaveID == "Own" && node == L"Node";
        expectPost(
            server, server.onlyRequest(), route.cgi + "?" + kQuery,
            fieldsOf(isOther ? hostOn("Node", server.port()) : HeaderList{{"hostname", "nas.example"}}),
            "agent");
        const std::string& own = route.options.slaveID;
        const std::string holder = node.empty() ? own : std::string(node.begin(), node.end());
        EXPECT_EQ(call.text(), holder.empty() ? "" : "slave=" + holder);
    }
}

TEST(WFMGetandCreateShareLinkWire, PostsAllItsFieldsInTheirOrder) {
    EXPECT_EQ(formOf<GetAndCreateCall>([](GetAndCreateCall& call) {
                  call.fileList = L"/home/b c/100% \x6587;/home/b c/b;";
                  call.accessCode = L"c&d";
                  call.expireTime = L"7";
                  call.datetime = L"2026/12/24";
                  call.linkName = L"not sent";
                  call.secureLink = true;
                  call.durationType = 2;
              }),
              (HeaderList{{"valid_duration", "specific_time"},
                          {"datetime", "2026%2F12%2F24"},
                          {"access_code", "c%26d"},
                          {"hostname", "nas.example"},
                          {"ssl", "true"},
                          {"file_name", "100%25%20%E6%96%87"},
                          {"file_name", "b"},
                          {"path", "%2Fhome%2Fb%20c"},
                          {"new_share", "0"},
                          {"expire_time", "7"},
                          {"c", "1"},
                          {"file_total", "2"}}));
}

TEST(WFMGetandCreateShareLinkWire, TheDurationIsAWordAndEmptyOutOfRange) {
    const std::pair<uint32_t, const char*> rows[] = {
        {0, ""}, {1, "forever"}, {2, "specific_time"}, {3, "period_of_time"}, {4, ""}};
    for (const auto& [type, word] : rows) {
        const HeaderList fields =
            formOf<GetAndCreateCall>([type = type](GetAndCreateCall& call) { call.durationType = type; });
        EXPECT_EQ(valueOf(fields, "valid_duration"), word);
        EXPECT_EQ(valueOf(fields, "datetime"), type == 2 ? "" : "none");
    }
}

TEST(WFMGetandCreateShareLinkWire, AFileNeedsItsSemicolonUnlessItIsAlone) {
    using Names = std::vector<std::string>;
    EXPECT_EQ(namesOf(L"/home/a"), Names({"a"}));
    EXPECT_EQ(namesOf(L"/home/a;/home/b"), Names({"a"}));
    EXPECT_EQ(namesOf(L"/home/a;;/home/b;"), Names({"a", "b"}));
    // The folder is that of the first.
    const HeaderList fields =
        formOf<GetAndCreateCall>([](GetAndCreateCall& call) { call.fileList = L"/home/x/a;/home/y/b;"; });
    EXPECT_EQ(valueOf(fields, "path"), "%2Fhome%2Fx");
    EXPECT_EQ(valueOf(fields, "file_total"), "2");
}

TEST(WFMGetandCreateShareLinkWire, AFolderInATeamFolderIsNamedAtItsPlaceAndNode) {
    for (const wchar_t* fileList : {L"/home/.Torvi/T/a.txt;", L"/home/.Torvi/T/d/e/a.txt;"}) {
        const RawServer server({Reply::json("{}")});
        const SessionPtr session = makeTeamSession();
        GetAndCreateCall call;
        call.fileList = fileList;
        call.slaveID = L"Other";
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        const bool isDeep = std::wstring(fileList).find(L"/d/e") != std::wstring::npos;
        expectPost(
            server, server.onlyRequest(), "/Node" + kTarget,
            fieldsOf(hostOn("Node", server.port()), isDeep ? "vtf%3A%2F%2FS%2Fd%2Fe" : "vtf%3A%2F%2FS"),
            "agent");
        EXPECT_EQ(call.text(), "slave=Node");
    }
}

TEST(WFMGetandCreateShareLinkWire, TeamFoldersThemselvesAreNamedWholeAndInReverse) {
    const RawServer server({Reply::json("{}")});
    const SessionPtr session =
        makeTeamSession({{L"/home/.Torvi/T/", L"vtf://S/"}, {L"/home/.Torvi/U/", L"vtf://V/"}});
    GetAndCreateCall call;
    call.fileList = L"/home/.Torvi/T;/home/.Torvi/U;";
    EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    expectPost(
        server, server.onlyRequest(), "/Node" + kTarget,
        joined(joined({{"valid_duration", "forever"}, {"access_code", ""}}, hostOn("Node", server.port())),
               {{"ssl", "false"},
                {"file_name", "vtf%3A%2F%2FV"},
                {"file_name", "vtf%3A%2F%2FS"},
                {"path", "%2Fhome%2F.Torvi"},
                {"new_share", "0"},
                {"expire_time", ""},
                {"c", "1"},
                {"file_total", "2"}}),
        "agent");
    EXPECT_EQ(call.text(), "slave=Node");
}

TEST(WFMGetandCreateShareLinkWire, TeamFoldersOnTwoNodesGoToThatOfTheFirstMetAndTheOtherStaysAsItIs) {
    const SessionPtr session = makeTeamSession(
        {{L"/home/.Torvi/T/", L"vtf://S/", L"Node"}, {L"/home/.Torvi/U/", L"vtf://V/", L"Node2"}});
    const Sent sent = sentBy(session.get(), [](GetAndCreateCall& call) {
        call.fileList = L"/home/.Torvi/T;/home/.Torvi/U;";
        call.slaveID = L"Other";
    });
    EXPECT_EQ(sent.path, "/Node2" + kPlace);
    EXPECT_EQ(sent.fields,
              joined(joined({{"valid_duration", "forever"}, {"access_code", ""}}, hostOn("Node2", sent.port)),
                     {{"ssl", "false"},
                      {"file_name", "vtf%3A%2F%2FV"},
                      {"file_name", "%2Fhome%2F.Torvi%2FT"},
                      {"path", "%2Fhome%2F.Torvi"},
                      {"new_share", "0"},
                      {"expire_time", ""},
                      {"c", "1"},
                      {"file_total", "2"}}));
    EXPECT_EQ(sent.record, "slave=Node2");
}

TEST(WFMGetandCreateShareLinkWire, WhereThereIsNoClusterATeamFoldersNodeIsToldToTheCallerAlone) {
    const SessionPtr session = makeTeamSession("");
    const Sent sent = sentBy(session.get(), [](GetAndCreateCall& call) {
        call.fileList = L"/home/.Torvi/T/a.txt;";
        call.slaveID = L"Other";
    });
    EXPECT_EQ(sent.path, kPlace);
    EXPECT_EQ(sent.fields, fieldsOf({{"hostname", "nas.example"}}, "vtf%3A%2F%2FS"));
    EXPECT_EQ(sent.record, "slave=Node");
}

TEST(WFMGetandCreateShareLinkWire, ATeamFolderOfNoKnownNodeIsMappedAndLeavesTheCallersNode) {
    const SessionPtr session = makeTeamSession({{L"/home/.Torvi/T/", L"vtf://S/", nullptr}});
    const Sent sent = sentBy(session.get(), [](GetAndCreateCall& call) {
        call.fileList = L"/home/.Torvi/T/a.txt;";
        call.slaveID = L"Other";
    });
    EXPECT_EQ(sent.path, "/Other" + kPlace);
    EXPECT_EQ(sent.fields, fieldsOf(hostOn("Other", sent.port), "vtf%3A%2F%2FS"));
    EXPECT_EQ(sent.record, "slave=Other");
}

TEST(WFMGetandCreateShareLinkWire, TheFileManagerMapsNothing) {
    const SessionPtr session = makeTeamSession();
    useFileManager(*session);
    Sent sent =
        sentBy(session.get(), [](GetAndCreateCall& call) { call.fileList = L"/home/.Torvi/T/a.txt;"; });
    EXPECT_EQ(sent.path, kPlace);
    EXPECT_EQ(sent.fields, fieldsOf({{"hostname", "nas.example"}}, "%2Fhome%2F.Torvi%2FT"));
    EXPECT_EQ(sent.record, "slave=Own");
    sent = sentBy(session.get(), [](GetAndCreateCall& call) { call.fileList = L"/home/.Torvi/T;"; });
    EXPECT_EQ(sent.path, kPlace);
    EXPECT_EQ(valueOf(sent.fields, "file_name"), "T");
    EXPECT_EQ(valueOf(sent.fields, "path"), "%2Fhome%2F.Torvi");
    EXPECT_EQ(sent.record, "slave=Own");
}

TEST(WFMGetandCreateShareLinkWire, ATeamFolderOfTheOwnNodeNeedsNoNode) {
    const RawServer server({Reply::json("{}")});
    const SessionPtr session = makeTeamSession("nODE");
    GetAndCreateCall call;
    call.fileList = L"/home/.Torvi/T/a.txt;";
    call.slaveID = L"Other";
    EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    expectPost(server, server.onlyRequest(), kTarget,
               fieldsOf({{"hostname", "nas.example"}}, "vtf%3A%2F%2FS"), "agent");
    EXPECT_EQ(call.text(), "slave=Node");
}

TEST(WFMGetandCreateShareLinkWire, ANewShareNeedsNeitherHostNorFiles) {
    const HeaderList bare = {
        {"valid_duration", "forever"}, {"access_code", ""}, {"ssl", "false"},   {"new_share", "1"},
        {"expire_time", ""},           {"c", "1"},          {"file_total", "0"}};
    EXPECT_EQ(formOf<GetAndCreateCall>([](GetAndCreateCall& call) {
                  call.newShare = true;
                  call.hostname = call.fileList = nullptr;
              }),
              bare);
    EXPECT_EQ(formOf<GetAndCreateCall>([](GetAndCreateCall& call) {
                  call.newShare = true;
                  call.hostname = call.fileList = call.linkName = L"";
              }),
              bare);
}

TEST(WFMGetandCreateShareLinkWire, ANewShareHasANameInPlaceOfAFolder) {
    EXPECT_EQ(formOf<GetAndCreateCall>([](GetAndCreateCall& call) {
                  call.newShare = true;
                  call.linkName = L"for bob";
              }),
              (HeaderList{{"valid_duration", "forever"},
                          {"access_code", ""},
                          {"hostname", "nas.example"},
                          {"ssl", "false"},
                          {"file_name", "a.txt"},
                          {"link_name", "for%20bob"},
                          {"new_share", "1"},
                          {"expire_time", ""},
                          {"c", "1"},
                          {"file_total", "1"}}));
}

TEST(WFMGetandCreateShareLinkWire, AnEmptyHostWithFilesIsKind11OnAnyNode) {
    const HeaderList fields = {{"valid_duration", "forever"},
                               {"access_code", ""},
                               {"ht", "11"},
                               {"ssl", "false"},
                               {"file_name", "a.txt"},
                               {"new_share", "1"},
                               {"expire_time", ""},
                               {"c", "1"},
                               {"file_total", "1"}};
    const SessionPtr session = makeTeamSession();
    Sent sent = sentBy(session.get(), [](GetAndCreateCall& call) {
        call.newShare = true;
        call.hostname = L"";
    });
    EXPECT_EQ(sent.path, kPlace);
    EXPECT_EQ(sent.fields, fields);
    sent = sentBy(session.get(), [](GetAndCreateCall& call) {
        call.newShare = true;
        call.hostname = nullptr;
        call.slaveID = L"Other";
    });
    EXPECT_EQ(sent.path, "/Other" + kPlace);
    EXPECT_EQ(sent.fields, fields);
}

TEST(WFMGetandCreateShareLinkWire, ANewShareMapsTeamFoldersThemselvesAndNotWhatLiesInThem) {
    const SessionPtr session = makeTeamSession();
    Sent sent = sentBy(session.get(), [](GetAndCreateCall& call) {
        call.newShare = true;
        call.fileList = L"/home/.Torvi/T/a.txt;";
        call.slaveID = L"Other";
    });
    EXPECT_EQ(sent.path, "/Other" + kPlace);
    EXPECT_EQ(valueOf(sent.fields, "file_name"), "a.txt");
    EXPECT_EQ(valueOf(sent.fields, "hostname"), hostOn("Other", sent.port)[1].second);
    EXPECT_EQ(sent.record, "slave=Other");

    sent = sentBy(session.get(), [](GetAndCreateCall& call) {
        call.newShare = true;
        call.fileList = L"/home/.Torvi/T;";
        call.slaveID = L"Other";
    });
    EXPECT_EQ(sent.path, "/Node" + kPlace);
    EXPECT_EQ(valueOf(sent.fields, "file_name"), "vtf%3A%2F%2FS");
    EXPECT_EQ(valueOf(sent.fields, "hostname"), hostOn("Node", sent.port)[1].second);
    EXPECT_EQ(sent.record, "slave=Node");
}

TEST(WFMGetandCreateShareLinkWire, ANodeThatDoesNotFitIsNotToldToTheCaller) {
    for (const size_t length : {size_t{259}, size_t{260}}) {
        const std::wstring node(length, L'n');
        const RawServer server({Reply::json("{}")});
        const SessionPtr session = makeTeamSession();
        GetAndCreateCall call;
        call.slaveID = node.c_str();
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(call.text(), length < 260 ? "slave=" + std::string(length, 'n') : "");
    }
}

TEST(WFMGetandCreateShareLinkWire, ATimeoutBelowAMinuteIsAMinute) {
    const std::pair<uint32_t, int> rows[] = {
        {0, 60000}, {1000, 60000}, {60000, 60000}, {60001, 60001}, {90000, 90000}};
    for (const auto& [given, used] : rows) {
        RawServer server({Reply::json("{}")});
        GetAndCreateCall call(server);
        call.timeoutMs = given;
        const TimerCapture timers;
        call.run();
        EXPECT_EQ(timers.started(), std::vector<int>{used});
    }
}

// ---- The reply ----

TEST(WFMGetandCreateShareLinkWire, TheRecordIsFilled) {
    EXPECT_EQ(recordOf(R"({"status":1,"link_name":"for bob","expire_time":"2026/12/24","ssid":"s1",
                           "multiple":2,"links":[{"ssid":"s0","link_url":"http://no/"},
                           {"ssid":"s1","link_url":"http://nas/share.cgi?ssid=s1&x=1"}]})"),
              "multiple=1 link=http://nas/share.cgi?ssid=s1 name=for bob expires=2026/12/24 ssid=s1");
    EXPECT_EQ(recordOf(R"({"ssid":"s1","links":[{"ssid":"s2","link_url":"http://no/"}],"protocol":"https",
                           "host":"nas.example","port":8081})"),
              "link=https://nas.example:8081/share.cgi?ssid=s1 ssid=s1");
    EXPECT_EQ(recordOf(R"({"status":1,"link_name":"n"})"), "name=n");
    EXPECT_EQ(recordOf("{}"), "");
}

TEST(WFMGetandCreateShareLinkWire, TextsAreCutToTheirFields) {
    const std::string text(3000, 'x');
    EXPECT_EQ(recordOf(R"({"link_name":")" + text + R"(","expire_time":")" + text + R"(","ssid":"s1",
                           "links":[{"ssid":"s1","link_url":")" +
                       text + "\"}]}"),
              "link=" + text.substr(0, 2047) + " name=" + text.substr(0, 259) +
                  " expires=" + text.substr(0, 259) + " ssid=s1");
}

TEST(WFMGetandCreateShareLinkWire, WithAnIdThatDoesNotFitThereIsNoUrl) {
    const auto linked = [](const std::string& id) {
        return recordOf(R"({"ssid":")" + id + R"(","links":[{"ssid":")" + id +
                        R"(","link_url":"http://b/"}]})");
    };
    const auto placed = [](const std::string& id) {
        return recordOf(R"({"protocol":"http","host":"nas","port":"80","ssid":")" + id + "\"}");
    };
    const std::string longest(259, 's');
    EXPECT_EQ(linked(longest), "link=http://b/ ssid=" + longest);
    EXPECT_EQ(placed(longest), "link=http://nas:80/share.cgi?ssid=" + longest + " ssid=" + longest);
    EXPECT_EQ(linked(longest + "s"), "");
    EXPECT_EQ(placed(longest + "s"), "");
}

TEST(WFMGetandCreateShareLinkWire, IdsAreComparedByteByByte) {
    const auto linked = [](const std::string& id) {
        return recordOf("{\"ssid\":\"s\xFF\",\"links\":[{\"ssid\":\"" + id +
                        "\",\"link_url\":\"http://b/\"}]}");
    };
    const std::string shown = "ssid=s\xEF\xBF\xBD";
    EXPECT_EQ(linked("s\xFF"), "link=http://b/ " + shown);
    EXPECT_EQ(linked("s\xFE"), shown);
}

TEST(WFMGetandCreateShareLinkWire, ARefusalIsTheClientCodeAndFillsNothing) {
    const std::pair<const char*, int> rows[] = {{"0", -2}, {"3", -29}, {"4", -3}, {"-3", -4}, {"99", -1}};
    for (const auto& [status, code] : rows) {
        SCOPED_TRACE(status);
        RawServer server({Reply::json(R"({"ssid":"s1","link_name":"n","multiple":1,"status":)" +
                                      std::string(status) + "}")});
        GetAndCreateCall call(server);
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.text(), "result=" + std::to_string(code));
        log.expectLines(
            {"[WFMShare] WFMGetandCreateShareLink: Get error code(" + std::to_string(code) + ")"});
    }
}

TEST(WFMGetandCreateShareLinkWire, AFailedCallLeavesTheRecordEmptyButForTheNode) {
    const std::pair<Reply, uint32_t> rows[] = {
        {Reply::status(503), 12}, {Reply::json(R"({"ssid":"s1","link_name":"n","links":5})"), 14}};
    for (const auto& [reply, dwStatus] : rows) {
        RawServer server({reply});
        GetAndCreateCall call(server);
        EXPECT_EQ(call.run(), dwStatus);
        EXPECT_EQ(call.text(), "result=-1");
        call.slaveID = L"n5";
        EXPECT_EQ(call.run(), dwStatus);
        EXPECT_EQ(call.text(), "result=-1 slave=n5");
    }
}

// ---- Refused ----

TEST(WFMGetandCreateShareLinkWire, APathWithoutAFolderIs8WithoutARequest) {
    for (const wchar_t* fileList : {L"a.txt;", L"/a.txt;", L";;"}) {
        SCOPED_TRACE(testing::PrintToString(fileList));
        RawServer server({Reply::json("{}")});
        GetAndCreateCall call(server);
        call.fileList = fileList;
        LogCapture log;
        EXPECT_EQ(call.run(), 8u);
        EXPECT_EQ(call.text(), "result=-1");
        EXPECT_EQ(server.connectionCount(), 0u);
        log.expectLines({refusedLine(kName, server.port(), kSharePrefix)});

        // A new share has no folder anyway.
        GetAndCreateCall share(server);
        share.fileList = fileList;
        share.newShare = true;
        EXPECT_EQ(share.run(), 0u);
    }
}

TEST(WFMGetandCreateShareLinkWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<GetAndCreateCall>(log, session.get(), kName,
                                     {[](GetAndCreateCall& call) { call.hostname = nullptr; },
                                      [](GetAndCreateCall& call) { call.hostname = L""; },
                                      [](GetAndCreateCall& call) { call.fileList = nullptr; },
                                      [](GetAndCreateCall& call) { call.fileList = L""; },
                                      [](GetAndCreateCall& call) { call.informationOut = nullptr; }},
                                     kSharePrefix);
}
