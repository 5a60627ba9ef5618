// Beyond filemanagerlogins_wire_test.cpp.

#include <gtest/gtest.h>

#include "forms.h"
#include "loginargs.h"
#include "loginproxy.h"
#include "replies.h"
// What no request shows is read where it lies.
#include "../../src/core/authcontext.h"
#include "support/logcapture.h"

using namespace wire;

namespace {

const char* const kGood = R"({"status":1,"sid":"abc","admingroup":"1","servername":"nas-1"})";
const char* const kPlace = "/cgi-bin/filemanager/wfm2Login.cgi";
const char* const kRefusedLine = "[WFM] WFMLogin: Failed to allocate memory pSid";
const char* const kSummary14 = "[WFM] WFMLogin failed dwStatus(14)";

/// What a login that the server refused leaves besides.
std::vector<std::string> refusalLines(const std::string& first = {}) {
    if (first.empty()) return {kRefusedLine, kSummary14};
    return {first, kRefusedLine, kSummary14};
}

}  // namespace

TEST(WFMLoginWire, PostsItsFieldsInOrder) {
    const RawServer server({Reply::json(kGood)});
    FileManagerLogin login(server);
    login.user = L"J\u00f6rg & co";
    login.password = L"p\u4e2d\U0001F600~";
    login.computer = L"my pc";
    login.uid = L"{u+1}";
    login.deviceType = 4000000000U;
    LogCapture log;
    ASSERT_EQ(login.run(), 0u);
    expectPost(server, server.onlyRequest(), kPlace,
               {{"user", "J%C3%B6rg%20%26%20co"},
                {"pwd", "cOS4rfCfmIB%2B"},
                {"nubo_user", "1"},
                {"nubo_computer", "my%20pc"},
                {"uid", "%7Bu%2B1%7D"},
                {"nubo_device_type", "4000000000"},
                {"Torvi_client_version", "5.1"}});
    log.expectNoLines();
}

TEST(WFMLoginWire, WithoutADeviceItSendsTwoFields) {
    const struct {
        const wchar_t *computer, *uid;
    } rows[] = {{L"", L"uid"}, {nullptr, L"uid"}, {L"computer", L""}, {L"computer", nullptr}, {L"", L""}};
    for (const auto& row : rows) {
        const RawServer server({Reply::json(kGood)});
        FileManagerLogin login(server);
        login.computer = row.computer;
        login.uid = row.uid;
        EXPECT_EQ(login.run(), 0u);
        expectPost(server, server.onlyRequest(), kPlace, {{"user", "user"}, {"pwd", "cGFzc3dvcmQ%3D"}});
    }
}

TEST(WFMLoginWire, AnEmptyPasswordIsAPassword) {
    const RawServer server({Reply::json(kGood)});
    FileManagerLogin login(server);
    login.password = L"";
    login.computer = nullptr;
    EXPECT_EQ(login.run(), 0u);
    expectPost(server, server.onlyRequest(), kPlace, {{"user", "user"}, {"pwd", ""}});
}

TEST(WFMLoginWire, ANullClientVersionIsAnEmptyText) {
    for (const wchar_t* version : {static_cast<const wchar_t*>(nullptr), L""}) {
        const RawServer server({Reply::json(kGood)});
        FileManagerLogin login(server);
        login.clientVersion = version;
        EXPECT_EQ(login.run(), 0u);
        const std::vector<Field> form = server.onlyRequest().form();
        ASSERT_EQ(form.size(), 7u);
        EXPECT_EQ(form[6].key, "Torvi_client_version");
        EXPECT_EQ(form[6].rawValue, "");
    }
}

TEST(WFMLoginWire, TellsALocalServerForWhomItActsButDoesNotKeepIt) {
    const RawServer server({Reply::json(kGood)});
    FileManagerLogin login(server);
    login.forwardedFor = L"10.1.2.3";
    ASSERT_EQ(login.run(), 0u);
    EXPECT_EQ(server.onlyRequest().header("X-Forwarded-For"), "10.1.2.3");
    EXPECT_EQ(nextRequestOf(login.made).headerCount("X-Forwarded-For"), 0u);
}

TEST(WFMLoginWire, TellsNoOtherHostForWhomItActs) {
    const RawServer server({Reply::json(kGood)});
    FileManagerLogin login(server);
    login.server = L"localhost";
    login.forwardedFor = L"10.1.2.3";
    ASSERT_EQ(login.run(), 0u);
    EXPECT_EQ(server.onlyRequest().headerCount("X-Forwarded-For"), 0u);
}

TEST(WFMLoginWire, TheSessionKeepsItsAgentIfThatFits) {
    for (const auto& [length, kept] : {std::pair{259, true}, {260, false}}) {
        const RawServer server({Reply::json(kGood)});
        const std::wstring agent(length, L'a');
        FileManagerLogin login(server);
        login.agent = agent.c_str();
        ASSERT_EQ(login.run(), 0u);
        EXPECT_EQ(server.onlyRequest().header("User-Agent"), std::string(length, 'a'));
        EXPECT_EQ(nextRequestOf(login.made).header("User-Agent"),
                  kept ? std::string(259, 'a') : "VEXA Torvi");
    }
}

TEST(WFMLoginWire, TheSessionKeepsProxyTextsThatFit) {
    for (const auto& [length, kept] : {std::pair{259, true}, {260, false}}) {
        const RawServer server({Reply::json(kGood)});
        const std::wstring text(length, L'p');
        FileManagerLogin login(server);
        login.proxyMode = 1;  // reads none of them
        login.proxyHost = login.proxyUser = login.proxyPassword = text.c_str();
        ASSERT_EQ(login.run(), 0u);
        EXPECT_EQ(login.made->dwProxyMode, 1u);
        const std::wstring expected = kept ? text : std::wstring();
        EXPECT_EQ(login.made->szProxyHost, expected);
        EXPECT_EQ(login.made->szProxyUser, expected);
        EXPECT_EQ(login.made->szProxyPassword, expected);
    }
}

TEST(WFMLoginWire, TheSessionKeepsItsProxy) {
    expectSessionKeepsItsProxy<FileManagerLogin>(kGood, "wfm2Login.cgi", WFMLogout, "wfm2Logout.cgi");
}

TEST(WFMLoginWire, AProxyThatRefusesIs11) {
    if (!TinyProxy::installed()) GTEST_SKIP() << "tinyproxy isn't installed";
    const LoginProxy proxy;
    const RawServer server({Reply::json(kGood)});
    FileManagerLogin login(server);
    proxy.lead(login, L"wrong");
    EXPECT_EQ(login.run(), 11u);
    EXPECT_EQ(login.made, nullptr);
    EXPECT_EQ(server.requestCount(), 0u);
}

TEST(WFMLoginWire, ARefusalIs14WithItsReasonInTheResultWord) {
    std::vector<ReplyRow> rows;
    const std::pair<int, int> codes[] = {{0, -2}, {3, -29}, {4, -3},  {5, -4},   {8, -24},
                                         {9, -6}, {34, -1}, {-1, -9}, {-101, -8}};
    for (const auto& [status, code] : codes)
        rows.push_back({R"({"status":)" + std::to_string(status) + "}", 14, code,
                        refusalLines("[WFM] WFMLogin: AuthStatus(" + std::to_string(code) + ")")});
    rows.push_back({"{}", 14, -1, refusalLines("[WFM] WFMLogin: AuthStatus(-1)")});
    rows.push_back({R"({"status":"4"})", 14, -3, refusalLines("[WFM] WFMLogin: AuthStatus(-3)")});
    rows.push_back({R"({"status":[]})", 14, -1, refusalLines("[WFM] WFMLogin: AuthStatus(-1)")});
    expectReplies<FileManagerLogin>(rows, [](const FileManagerLogin& login) {
        EXPECT_EQ(login.made, nullptr);
        EXPECT_FALSE(login.admin);
    });
}

TEST(WFMLoginWire, ADemandForASecondStepIs14WithItsForm) {
    const std::string left = R"(,"emergency_try_limit":5,"emergency_try_count":4})";
    const std::string used = R"(,"emergency_try_limit":5,"emergency_try_count":5})";
    const auto wants = [](int need, int form) {
        return R"({"status":4,"need_2sv":)" + std::to_string(need) + R"(,"lost_phone":)" +
               std::to_string(form);
    };
    const auto plain = refusalLines("[WFM] WFMLogin: AuthStatus(-3)");
    const std::vector<ReplyRow> rows = {
        {wants(1, 1) + left, 14, 16, refusalLines()},
        {wants(1, 2) + left, 14, 17, refusalLines()},
        {wants(1, 3) + left, 14, 18, refusalLines()},
        {wants(1, 4) + left, 14, 14, refusalLines()},
        {wants(1, 2147483647) + left, 14, 14, refusalLines()},
        {wants(7, 1) + left, 14, 16, refusalLines()},
        {wants(-1, 1) + left, 14, 16, refusalLines()},
        {R"({"status":"4","need_2sv":"1","lost_phone":"2"})", 14, 17, refusalLines()},
        // The tries are used up, whatever the form.
        {wants(1, 1) + used, 14, 19, refusalLines()},
        {wants(1, 2) + used, 14, 19, refusalLines()},
        {wants(1, 3) + used, 14, 19, refusalLines()},
        {wants(1, 4) + used, 14, 19, refusalLines()},
        {wants(1, 1) + R"(,"emergency_try_limit":5,"emergency_try_count":9})", 14, 19, refusalLines()},
        {wants(1, 1) + R"(,"emergency_try_limit":0,"emergency_try_count":0})", 14, 19, refusalLines()},
        {wants(1, 1) + R"(,"emergency_try_limit":0})", 14, 19, refusalLines()},
        // They never are without a limit.
        {wants(1, 1) + R"(,"emergency_try_limit":-1,"emergency_try_count":9})", 14, 16, refusalLines()},
        {wants(1, 1) + R"(,"emergency_try_count":9})", 14, 16, refusalLines()},
        {wants(1, 1) + "}", 14, 16, refusalLines()},
        // No second step: a plain refusal.
        {wants(1, 0) + left, 14, -3, plain},
        {wants(1, -1) + left, 14, -3, plain},
        {wants(1, 0) + used, 14, -3, plain},
        {wants(0, 1) + left, 14, -3, plain},
        {R"({"status":4,"need_2sv":1})", 14, -3, plain},
        // A status that isn't known keeps nobody from asking.
        {R"({"need_2sv":1,"lost_phone":1})", 14, 16, refusalLines()},
    };
    expectReplies<FileManagerLogin>(rows, [](const FileManagerLogin& login) {
        EXPECT_EQ(login.made, nullptr);
        EXPECT_EQ(login.name[0], L'#');
    });
}

TEST(WFMLoginWire, ADemandForASecondStepHoldsNoSession) {
    const RawServer server({Reply::json(
        R"({"status":4,"need_2sv":1,"lost_phone":1,"sid":"abc","admingroup":"1","servername":"nas"})")});
    FileManagerLogin login(server);
    EXPECT_EQ(login.run(), 14u);
    EXPECT_EQ(login.signedResult(), 16);
    EXPECT_EQ(login.made, nullptr);
    EXPECT_FALSE(login.admin);
    EXPECT_EQ(login.name[0], L'#');
}

TEST(WFMLoginWire, AnAcceptedLoginAsksForNoSecondStep) {
    const RawServer server({Reply::json(R"({"status":1,"sid":"abc","need_2sv":1,"lost_phone":1})")});
    FileManagerLogin login(server);
    EXPECT_EQ(login.run(), 0u);
    EXPECT_EQ(login.result, 0u);
    EXPECT_NE(login.made, nullptr);
}

TEST(WFMLoginWire, ARefusalWithASidOpensASessionAllTheSame) {
    const RawServer server({Reply::json(R"({"status":4,"sid":"abc","admingroup":"1","servername":"nas"})")});
    FileManagerLogin login(server);
    LogCapture log;
    EXPECT_EQ(login.run(), 0u);
    EXPECT_EQ(login.signedResult(), -3);
    ASSERT_NE(login.made, nullptr);
    EXPECT_EQ(sidOf(login.made), L"abc");
    EXPECT_TRUE(login.admin);
    EXPECT_STREQ(login.name, L"nas");
    log.expectLines({"[WFM] WFMLogin: AuthStatus(-3)"});
}

TEST(WFMLoginWire, AReplyThatIsNotUnderstoodIs14) {
    std::vector<ReplyRow> rows;
    for (const char* reply :
         {"<?xml version=\"1.0\"?><authLogin><authPassed>1</authPassed></authLogin>", "", "[]", "null", "1",
          R"({"status":1,"sid":"abc")", R"({"status":1,"sid":[]})", R"({"status":1,"sid":{}})",
          R"({"status":1,"sid":"abc","servername":[]})", R"({"status":1,"sid":"abc","admingroup":["1"]})",
          R"({"status":4,"need_2sv":99999999999})", R"({"status":1e300,"sid":"abc"})"})
        rows.push_back({reply, 14, -1, {"[WFM] WFMLogin: WFM_PARSE_XML_FAIL", kSummary14}});
    expectReplies<FileManagerLogin>(rows, [](const FileManagerLogin& login) {
        EXPECT_EQ(login.made, nullptr);
        EXPECT_FALSE(login.admin);
        EXPECT_EQ(login.name[0], L'#');
    });
}

TEST(WFMLoginWire, BrokenUtf8IsReadAsFarAsItGoes) {
    const RawServer server({Reply::json("{\"status\":1,\"sid\":\"a\xFF\",\"servername\":\"\xC3\"}")});
    FileManagerLogin login(server);
    EXPECT_EQ(login.run(), 0u);
    EXPECT_EQ(sidOf(login.made), L"a\xFFFD");
    EXPECT_STREQ(login.name, L"\xFFFD");
}
