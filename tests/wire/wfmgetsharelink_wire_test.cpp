// WFMGetShareLink: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>

#include "links.h"

using namespace wire;

namespace {

struct GetLinkCall : SessionCall<GetLinkCall> {
    uint32_t downloadType = 2;
    uint32_t durationType = 1;
    uint32_t networkType = 1;
    const wchar_t* hostname = L"nas.example";
    const wchar_t* addressee = nullptr;
    const wchar_t* path = L"/home/d/a.txt";
    const wchar_t* accessCode = nullptr;
    const wchar_t* datetime = nullptr;
    const wchar_t* expireTime = nullptr;
    bool secureLink = false;
    uint32_t capacity = 299;
    uint32_t* capacityInOut = &capacity;
    MarkedBuffer link;
    wchar_t* linkOut = link.data();
    MarkedBuffer expires;
    wchar_t* expiresOut = expires.data();

    using SessionCall::SessionCall;
    uint32_t call() {
        return WFMGetShareLink(session, kServer, port, slaveID, downloadType, durationType, networkType,
                               hostname, addressee, path, accessCode, datetime, expireTime, secureLink,
                               nullptr, capacityInOut, linkOut, expiresOut, resultWord);
    }
    bool isUntouched() const {
        return result == 0xABCD && capacity == 299 && link.isUntouched() && expires.isUntouched();
    }
};

const char* const kQuery = "func=get_share_link&sid=sid123";

std::string replyOf(const std::string& url, const std::string& expires = "2026/12/24") {
    return R"({"status":"1","link_url":")" + url + R"(","expire_time":")" + expires + "\"}";
}

}  // namespace

TEST(WFMGetShareLinkWire, PostsItsFieldsInTheirOrder) {
    expectLinkPost(kQuery,
                   {{"download_type", "create_download_link"},
                    {"valid_duration", "forever"},
                    {"file_total", "1"},
                    {"access_code", ""},
                    {"access_enabled", "false"},
                    {"hostname", "nas.example"},
                    {"ssl", "false"},
                    {"include_access_code", "false"},
                    {"file_name", "a.txt"},
                    {"path", "%2Fhome%2Fd"},
                    {"network_type", "internet"},
                    {"expire_time", ""}},
                   [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t* slaveID) {
                       GetLinkCall call;
                       call.slaveID = slaveID;
                       call.run(session, port);
                   });
}

TEST(WFMGetShareLinkWire, WithAnAddresseeADateAndACodeTheFormHasAllItsFields) {
    expectLinkPost(
        kQuery,
        {{"download_type", "email_download_link"},
         {"addressee", "bob%40nas.example"},
         {"subject", "To%20Share%20with%20You%21"},
         {"content",
          "I%27ve%20shared%20the%20following%20file%28s%29%20with%20you%20using%20VEXA%20Rapido%20WFM%3A"},
         {"valid_duration", "specific_time"},
         {"datetime", "2026%2F12%2F24"},
         {"file_total", "1"},
         {"access_code", "c%26d"},
         {"access_enabled", "true"},
         {"hostname", "nas.example"},
         {"ssl", "true"},
         {"include_access_code", "true"},
         {"file_name", "100%25%20%E6%96%87"},
         {"path", "%2Fhome%2Fb%20c"},
         {"network_type", "local"},
         {"expire_time", "7"}},
        [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t* slaveID) {
            GetLinkCall call;
            call.slaveID = slaveID;
            call.downloadType = 1;
            call.durationType = 2;
            call.networkType = 2;
            call.addressee = L"bob@nas.example";
            call.path = L"/home/b c/100% \x6587";
            call.accessCode = L"c&d";
            call.datetime = L"2026/12/24";
            call.expireTime = L"7";
            call.secureLink = true;
            call.run(session, port);
        });
}

TEST(WFMGetShareLinkWire, AnEmptyCodeAndAnEmptyAddresseeAreNone) {
    const HeaderList bare = formOf<GetLinkCall>([](GetLinkCall&) {});
    EXPECT_EQ(valueOf(bare, "access_enabled"), "false");
    EXPECT_EQ(valueOf(bare, "include_access_code"), "false");
    EXPECT_EQ(valueOf(bare, "addressee") + valueOf(bare, "subject") + valueOf(bare, "content"),
              "nonenonenone");
    EXPECT_EQ(formOf<GetLinkCall>([](GetLinkCall& call) { call.addressee = call.accessCode = L""; }), bare);
}

TEST(WFMGetShareLinkWire, TheTypesAreWordsAndRefusedOutOfRange) {
    expectTypesAreWords<GetLinkCall>("WFMGetShareLink");
}

TEST(WFMGetShareLinkWire, TheDateBelongsToASpecificTime) {
    expectDateBelongsToSpecificTime<GetLinkCall>();
}

TEST(WFMGetShareLinkWire, ThePathIsSplitAndMapped) {
    expectPathIsSplitAndMapped<GetLinkCall>(kQuery, "WFMGetShareLink");
}

TEST(WFMGetShareLinkWire, TheLinkArrivesWithoutBackslashesAndWithItsExpiry) {
    RawServer server({Reply::json(replyOf(R"(https:\/\/nas.example:8081\/share.cgi?ssid=s1)"))});
    GetLinkCall call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.capacity, 299u);
    EXPECT_EQ(call.link.text(), L"https://nas.example:8081/share.cgi?ssid=s1");
    EXPECT_EQ(call.expires.text(), L"2026/12/24");
    log.expectNoLines();
}

TEST(WFMGetShareLinkWire, ALinkAsLongAsTheCapacityIsCopiedWithoutATerminator) {
    RawServer server({Reply::json(replyOf(std::string(100, 'l')))});
    GetLinkCall call(server);
    call.capacity = 100;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.capacity, 100u);
    EXPECT_EQ(std::wstring(call.linkOut, 101), std::wstring(100, L'l') + L"#");

    GetLinkCall roomier(server);
    roomier.capacity = 101;
    EXPECT_EQ(roomier.run(), 0u);
    EXPECT_EQ(roomier.link.text(), std::wstring(100, L'l'));
}

TEST(WFMGetShareLinkWire, ALongerLinkIs9AndTellsTheCapacity) {
    for (const uint32_t capacity : {0u, 1u, 100u, 299u}) {
        SCOPED_TRACE(capacity);
        RawServer server({Reply::json(replyOf(std::string(300, 'l')))});
        GetLinkCall call(server);
        call.capacity = capacity;
        LogCapture log;
        EXPECT_EQ(call.run(), 9u);
        EXPECT_EQ(call.result, 0u);
        EXPECT_EQ(call.capacity, 301u);
        EXPECT_TRUE(call.link.isUntouched());
        EXPECT_EQ(call.expires.text(), L"2026/12/24");
        log.expectLines({"[WFMShare] WFMGetShareLink: WFM_PARSE_XML_INSUFFICIENT_BUFFER",
                         summaryLine("WFMGetShareLink", server.port(), 9, kSharePrefix)});
    }
}

TEST(WFMGetShareLinkWire, WithoutABufferTheLinkIsMadeAndTheExpiryTold) {
    RawServer server({Reply::json(replyOf(std::string(300, 'l')))});
    GetLinkCall call(server);
    call.linkOut = nullptr;
    call.capacity = 0;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.capacity, 0u);
    EXPECT_EQ(call.expires.text(), L"2026/12/24");
}

TEST(WFMGetShareLinkWire, TheLongestTextsFit) {
    RawServer server({Reply::json(replyOf(std::string(2047, 'l'), std::string(255, 'e')))});
    GetLinkCall call(server);
    MarkedBuffer large(2048);
    call.linkOut = large.data();
    call.capacity = 2048;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(large.text(), std::wstring(2047, L'l'));
    EXPECT_EQ(call.expires.text(), std::wstring(255, L'e'));
}

TEST(WFMGetShareLinkWire, ASuccessMayTellNeitherText) {
    RawServer server({Reply::json(R"({"status":1})")});
    GetLinkCall call(server);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.link.text(), L"");
    EXPECT_EQ(call.expires.text(), L"");
}

TEST(WFMGetShareLinkWire, EverythingButStatusOneIsMinus1AndFillsNothing) {
    const std::vector<std::string> lines = {"[WFMShare] WFMGetShareLink: Get error code(-1)"};
    const std::string rest = R"(,"link_url":"l","expire_time":"e"})";
    expectReplies<GetLinkCall>(
        {
            {R"({"status":"0")" + rest, 0, -1, lines},
            {R"({"status":4)" + rest, 0, -1, lines},
            {R"({"status":"")" + rest, 0, -1, lines},
            {R"({"state":"1")" + rest, 0, -1, lines},
            {"", 0, -1, lines},
            {"sorry", 0, -1, lines},
            {"<html></html>", 0, -1, lines},
        },
        [](const GetLinkCall& call) {
            EXPECT_EQ(call.capacity, 299u);
            EXPECT_TRUE(call.link.isUntouched());
            EXPECT_TRUE(call.expires.isUntouched());
        });
}

TEST(WFMGetShareLinkWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<GetLinkCall>(
        log, session.get(), "WFMGetShareLink",
        {[](GetLinkCall& call) { call.hostname = nullptr; }, [](GetLinkCall& call) { call.hostname = L""; },
         [](GetLinkCall& call) { call.path = nullptr; }, [](GetLinkCall& call) { call.path = L""; },
         [](GetLinkCall& call) { call.capacityInOut = nullptr; },
         [](GetLinkCall& call) { call.expiresOut = nullptr; },
         [](GetLinkCall& call) { call.resultWord = nullptr; }},
        kSharePrefix);
}
