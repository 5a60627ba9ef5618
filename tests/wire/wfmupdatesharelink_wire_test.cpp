// WFMUpdateShareLink: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>

#include "links.h"

using namespace wire;

namespace {

struct UpdateLinkCall : SessionCall<UpdateLinkCall> {
    uint32_t downloadType = 2;
    uint32_t durationType = 1;
    uint32_t networkType = 1;
    uint32_t hostPort = 0;
    const wchar_t* hostname = L"nas.example";
    const wchar_t* accessCode = nullptr;
    const wchar_t* datetime = nullptr;
    bool secureLink = false;
    bool option = false;
    bool hostForm = false;
    const wchar_t* expireTime = L"7";
    const wchar_t* ssids = L"s1";
    const wchar_t* linkName = nullptr;
    const wchar_t* further = L"not sent";
    bool nameOnly = false;
    uint32_t capacity = 299;
    uint32_t* capacityInOut = &capacity;
    MarkedBuffer link;
    wchar_t* linkOut = link.data();

    using SessionCall::SessionCall;
    uint32_t call() {
        return WFMUpdateShareLink(session, kServer, port, slaveID, downloadType, durationType, networkType,
                                  hostPort, hostname, accessCode, datetime, secureLink, option, hostForm,
                                  expireTime, ssids, linkName, further, nameOnly, nullptr, capacityInOut,
                                  linkOut, resultWord);
    }
    bool isUntouched() const { return result == 0xABCD && capacity == 299 && link.isUntouched(); }
};

const char* const kQuery = "func=update_share_link&sid=sid123";

/// "ht" and "hostname" as they are sent, in their order.
HeaderList hostOf(const UpdateLinkCall& like, bool onOtherNode) {
    const RawServer server({Reply::json("{}")});
    SessionOptions options;
    options.slaveID = "Own";
    const SessionPtr session = makeSession(options);
    UpdateLinkCall call(server);
    call.session = session.get();
    call.slaveID = onOtherNode ? L"Node" : L"oWN";
    call.hostname = like.hostname;
    call.hostPort = like.hostPort;
    call.hostForm = like.hostForm;
    call.nameOnly = like.nameOnly;
    EXPECT_EQ(call.run(), 0u);
    HeaderList fields;
    for (const Field& field : server.onlyRequest().form())
        if (field.rawKey == "ht" || field.rawKey == "hostname")
            fields.emplace_back(field.rawKey, field.rawValue);
    return fields;
}

std::string replyOf(const std::string& result) {
    return R"({"status":1,"result":")" + result + "\"}";
}

}  // namespace

// ---- The request ----

TEST(WFMUpdateShareLinkWire, GoesToTheNodeAndNamesItInTheHost) {
    for (const Route& route : routesToFileManager()) {
        SCOPED_TRACE(route.name);
        const RawServer server({Reply::json("{}")});
        const SessionPtr session = makeSession(route.options);
        UpdateLinkCall call;
        call.slaveID = route.slaveID;
        call.run(session.get(), server.port());
        const bool isOther = route.options.slaveID == "Own" && route.slaveID != nullptr &&
                             std::wstring(route.slaveID) == L"Node";
        const HeaderList host = isOther ? HeaderList{{"ht", "10"}, {"hostname", "nas.example%2FNode"}}
                                        : HeaderList{{"hostname", "nas.example"}};
        expectPost(
            server, server.onlyRequest(), route.cgi + "?" + kQuery,
            joined(
                joined({{"download_type", "create_download_link"},
                        {"option", "1"},
                        {"valid_duration", "forever"},
                        {"file_total", "1"},
                        {"access_code", ""},
                        {"access_enabled", "false"}},
                       host),
                {{"ssl", "false"}, {"include_access_code", "false"}, {"expire_time", "7"}, {"ssids", "s1"}}),
            "agent");
    }
}

TEST(WFMUpdateShareLinkWire, PostsAllItsFieldsInTheirOrder) {
    EXPECT_EQ(formOf<UpdateLinkCall>([](UpdateLinkCall& call) {
                  call.downloadType = 1;
                  call.durationType = 2;
                  call.networkType = 2;
                  call.hostPort = 8081;
                  call.accessCode = L"c&d";
                  call.datetime = L"2026/12/24";
                  call.secureLink = call.option = call.hostForm = true;
                  call.ssids = L"s1;s2";
                  call.linkName = L"for bob";
              }),
              (HeaderList{{"download_type", "email_download_link"},
                          {"option", "3"},
                          {"valid_duration", "specific_time"},
                          {"datetime", "2026%2F12%2F24"},
                          {"file_total", "1"},
                          {"access_code", "c%26d"},
                          {"access_enabled", "true"},
                          {"hostname", "nas.example%3A8081"},
                          {"ht", "10"},
                          {"ssl", "true"},
                          {"include_access_code", "true"},
                          {"expire_time", "7"},
                          {"ssids", "s1%3Bs2"},
                          {"link_name", "for%20bob"}}));
}

TEST(WFMUpdateShareLinkWire, TheHostIsSentInOneOfItsForms) {
    const struct {
        bool hostForm;
        uint32_t port;
        bool otherNode;
        HeaderList sent;
    } rows[] = {
        {true, 0, false, {{"hostname", "nas.example"}, {"ht", "10"}}},
        {true, 8081, false, {{"hostname", "nas.example%3A8081"}, {"ht", "10"}}},
        {true, 0, true, {{"hostname", "nas.example%3A0%2FNode"}, {"ht", "10"}}},
        {true, 8081, true, {{"hostname", "nas.example%3A8081%2FNode"}, {"ht", "10"}}},
        {false, 0, false, {{"hostname", "nas.example"}}},
        {false, 8081, false, {{"hostname", "nas.example"}}},
        {false, 0, true, {{"ht", "10"}, {"hostname", "nas.example%2FNode"}}},
        {false, 8081, true, {{"ht", "10"}, {"hostname", "nas.example%3A8081%2FNode"}}},
    };
    UpdateLinkCall like;
    for (const auto& row : rows) {
        like.hostForm = row.hostForm;
        like.hostPort = row.port;
        EXPECT_EQ(hostOf(like, row.otherNode), row.sent) << row.hostForm << row.port << row.otherNode;
    }
}

TEST(WFMUpdateShareLinkWire, WithTheNameAloneNoHostIsSent) {
    UpdateLinkCall like;
    like.nameOnly = true;
    for (const wchar_t* hostname : {L"nas.example", L"", static_cast<const wchar_t*>(nullptr)})
        for (const bool form : {false, true})
            for (const bool otherNode : {false, true}) {
                like.hostname = hostname;
                like.hostForm = form;
                EXPECT_EQ(hostOf(like, otherNode), (HeaderList{{"ht", "11"}}));
            }
}

TEST(WFMUpdateShareLinkWire, WithTheNameAloneTheTypesMayBeAnything) {
    EXPECT_EQ(formOf<UpdateLinkCall>([](UpdateLinkCall& call) {
                  call.nameOnly = true;
                  call.downloadType = 0;
                  call.durationType = 4;
                  call.networkType = 3;
                  call.hostname = call.expireTime = call.further = nullptr;
                  call.linkName = L"n";
                  call.capacityInOut = nullptr;
                  call.linkOut = nullptr;
              }),
              (HeaderList{{"download_type", ""},
                          {"option", "1"},
                          {"valid_duration", ""},
                          {"file_total", "1"},
                          {"access_code", ""},
                          {"access_enabled", "false"},
                          {"ht", "11"},
                          {"ssl", "false"},
                          {"include_access_code", "false"},
                          {"expire_time", ""},
                          {"ssids", "s1"},
                          {"link_name", "n"}}));
}

TEST(WFMUpdateShareLinkWire, TheDateBelongsToASpecificTime) {
    expectDateBelongsToSpecificTime<UpdateLinkCall>();
}

// ---- The reply ----

TEST(WFMUpdateShareLinkWire, ATimeErrorGoesBeforeAMailErrorBeforeTheStatus) {
    expectLinkOutcomes<UpdateLinkCall>("WFMUpdateShareLink");
}

TEST(WFMUpdateShareLinkWire, TheLinkIsCopiedWhereItIsShorterThanTheCapacity) {
    RawServer server({Reply::json(replyOf(R"(https:\/\/nas.example\/share.cgi?ssid=s1)"))});
    UpdateLinkCall call(server);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.capacity, 299u);
    EXPECT_EQ(call.link.text(), L"https://nas.example/share.cgi?ssid=s1");

    RawServer again({Reply::json(replyOf(std::string(100, 'l')))});
    UpdateLinkCall tight(again);
    tight.capacity = 101;
    EXPECT_EQ(tight.run(), 0u);
    EXPECT_EQ(tight.capacity, 101u);
    EXPECT_EQ(tight.link.text(), std::wstring(100, L'l'));
}

TEST(WFMUpdateShareLinkWire, ALinkAsLongAsTheCapacityIs7AndTellsTheCapacity) {
    const struct {
        size_t length;
        uint32_t capacity;
    } rows[] = {{100, 100}, {100, 99}, {100, 0}, {0, 0}};
    for (const auto& row : rows)
        for (const bool nameOnly : {false, true}) {
            SCOPED_TRACE(std::to_string(row.length) + "/" + std::to_string(row.capacity));
            RawServer server({Reply::json(replyOf(std::string(row.length, 'l')))});
            UpdateLinkCall call(server);
            call.capacity = row.capacity;
            call.nameOnly = nameOnly;
            LogCapture log;
            EXPECT_EQ(call.run(), 7u);
            EXPECT_EQ(call.result, 0u);
            EXPECT_EQ(call.capacity, row.length + 1);
            EXPECT_TRUE(call.link.isUntouched());
            log.expectLines({"[WFMShare] WFMUpdateShareLink: WFM_PARSE_XML_BUFFER_NOT_ENOUGH",
                             summaryLine("WFMUpdateShareLink", server.port(), 7, kSharePrefix)});
        }
}

TEST(WFMUpdateShareLinkWire, ALinkOfMoreThan259CharactersIsCut) {
    RawServer server({Reply::json(replyOf(std::string(300, 'l')))});
    UpdateLinkCall call(server);
    call.capacity = 260;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.link.text(), std::wstring(259, L'l'));
}

TEST(WFMUpdateShareLinkWire, WithTheNameAloneTheBufferMayBeMissing) {
    for (const bool hasCapacity : {false, true}) {
        RawServer server({Reply::json(replyOf("l"))});
        UpdateLinkCall call(server);
        call.nameOnly = true;
        call.linkOut = nullptr;
        if (!hasCapacity) call.capacityInOut = nullptr;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_EQ(call.capacity, 299u);
    }
    RawServer server({Reply::json(replyOf("l"))});
    UpdateLinkCall call(server);
    call.nameOnly = true;
    call.capacityInOut = nullptr;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_TRUE(call.link.isUntouched());
}

TEST(WFMUpdateShareLinkWire, ARefusalLeavesTheBufferAlone) {
    RawServer server({Reply::json(R"({"status":0,"result":"l"})")});
    UpdateLinkCall call(server);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.signedResult(), -1);
    EXPECT_EQ(call.capacity, 299u);
    EXPECT_TRUE(call.link.isUntouched());
}

// ---- Refused ----

TEST(WFMUpdateShareLinkWire, AHostTextOf260CharactersIsRefused) {
    const std::wstring fits(259, L'h');
    const std::wstring tooLong(260, L'h');
    RawServer server({Reply::json("{}")});
    UpdateLinkCall call(server);
    call.hostname = fits.c_str();
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(server.requestCount(), 1u);

    LogCapture log;
    UpdateLinkCall longer(server);
    longer.hostname = tooLong.c_str();
    EXPECT_EQ(longer.run(), 8u);
    EXPECT_TRUE(longer.isUntouched());
    // With a port the same host is too long.
    longer.hostname = fits.c_str();
    longer.hostForm = true;
    longer.hostPort = 1;
    EXPECT_EQ(longer.run(), 8u);
    EXPECT_TRUE(longer.isUntouched());
    EXPECT_EQ(server.requestCount(), 1u);
    const std::string line = refusedLine("WFMUpdateShareLink", server.port(), kSharePrefix);
    log.expectLines({line, line});
}

TEST(WFMUpdateShareLinkWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<UpdateLinkCall>(
        log, session.get(), "WFMUpdateShareLink",
        {[](UpdateLinkCall& call) { call.ssids = nullptr; }, [](UpdateLinkCall& call) { call.ssids = L""; },
         [](UpdateLinkCall& call) { call.resultWord = nullptr; },
         [](UpdateLinkCall& call) { call.hostname = nullptr; },
         [](UpdateLinkCall& call) { call.hostname = L""; },
         [](UpdateLinkCall& call) { call.expireTime = nullptr; },
         [](UpdateLinkCall& call) { call.expireTime = L""; },
         [](UpdateLinkCall& call) { call.further = nullptr; },
         [](UpdateLinkCall& call) { call.further = L""; },
         [](UpdateLinkCall& call) { call.capacityInOut = nullptr; },
         [](UpdateLinkCall& call) { call.linkOut = nullptr; },
         [](UpdateLinkCall& call) { call.downloadType = 0; },
         [](UpdateLinkCall& call) { call.downloadType = 3; },
         [](UpdateLinkCall& call) { call.durationType = 0; },
         [](UpdateLinkCall& call) { call.durationType = 4; },
         [](UpdateLinkCall& call) { call.networkType = 0; },
         [](UpdateLinkCall& call) { call.networkType = 3; },
         // With the name alone these two must be given all the same.
         [](UpdateLinkCall& call) {
             call.nameOnly = true;
             call.ssids = L"";
         },
         [](UpdateLinkCall& call) {
             call.nameOnly = true;
             call.resultWord = nullptr;
         }},
        kSharePrefix);
}
