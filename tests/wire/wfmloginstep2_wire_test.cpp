// Beyond filemanagerlogins_wire_test.cpp.

#include <gtest/gtest.h>

#include "forms.h"
#include "loginargs.h"
#include "replies.h"
#include "support/logcapture.h"

using namespace wire;

namespace {

const char* const kNoSession = "[WFM] WFMLoginStep2: Failed to allocate memory pSid";
const char* const kNotUnderstood = "[WFM] WFMLoginStep2: WFM_PARSE_XML_FAIL";
const char* const kSummary14 = "[WFM] WFMLoginStep2 failed dwStatus(14)";

}  // namespace

TEST(WFMLoginStep2Wire, PostsTheCodeOrTheAnswer) {
    for (const bool isAnswer : {false, true}) {
        const RawServer server({Reply::text(SecondStep::accepted("s"))});
        SecondStep login(server);
        login.user = L"J\u00f6rg & co";
        login.password = L"p\u4e2d\U0001F600~";
        login.isAnswer = isAnswer;
        ASSERT_EQ(login.run(), 0u);
        expectPost(server, server.onlyRequest(),
                   std::string("/cgi-bin/authLogin.cgi?") + (isAnswer ? "security_answer" : "security_code") +
                       "=123456&serviceKey=1&remme=1",
                   {{"user", "J%C3%B6rg%20%26%20co"}, {"pwd", "cOS4rfCfmIB%2B"}});
    }
}

TEST(WFMLoginStep2Wire, TheCodeGoesOutAsItIsAndMayBreakTheQuery) {
    const std::pair<const wchar_t*, const char*> rows[] = {
        {L"1&x=2", "1&x=2"}, {L"a+b/c?d", "a+b/c?d"}, {L"100%25", "100%25"}, {L"\x4E2D", "%E4%B8%AD"}};
    for (const auto& [code, sent] : rows) {
        const RawServer server({Reply::text(SecondStep::accepted("s"))});
        SecondStep login(server);
        login.code = code;
        EXPECT_EQ(login.run(), 0u);
        EXPECT_EQ(server.onlyRequest().target(),
                  std::string("/cgi-bin/authLogin.cgi?security_code=") + sent + "&serviceKey=1&remme=1");
    }
}

TEST(WFMLoginStep2Wire, AsksForMoreThanAPlainLogin) {
    const std::pair<const char*, void (*)(SecondStep&)> changes[] = {
        {"empty password", [](SecondStep& a) { a.password = L""; }},
        {"code", [](SecondStep& a) { a.code = nullptr; }},
        {"empty code", [](SecondStep& a) { a.code = L""; }},
        {"last", [](SecondStep& a) { a.last = nullptr; }},
    };
    LogCapture log;
    for (const auto& [what, change] : changes) {
        SCOPED_TRACE(what);
        SecondStep login;
        login.port = 80;
        change(login);
        log.clear();
        EXPECT_EQ(login.run(), 8u);
        log.expectLines({"[WFM] WFMLoginStep2: WFM_PARSE_XML_INVALID_PARAMETER"});
        EXPECT_EQ(login.result, 0xABCDu);
        EXPECT_TRUE(login.admin);
    }
}

TEST(WFMLoginStep2Wire, LeavesTheLastPointerAlone) {
    const RawServer server({Reply::text(SecondStep::accepted("s"))});
    SecondStep login(server);
    login.something = 5;
    EXPECT_EQ(login.run(), 0u);
    EXPECT_EQ(login.something, 5);
}

TEST(WFMLoginStep2Wire, TheSessionKeepsNoAgent) {
    const RawServer server({Reply::text(SecondStep::accepted("s"))});
    SecondStep login(server);
    login.agent = L"Client/7";
    ASSERT_EQ(login.run(), 0u);
    EXPECT_EQ(server.onlyRequest().header("User-Agent"), "Client/7");
    EXPECT_EQ(nextRequestOf(login.made).header("User-Agent"), "VEXA Torvi");
}

TEST(WFMLoginStep2Wire, ARefusalIs14AndTellsWhetherTriesAreLeft) {
    const std::vector<std::string> lines = {kNoSession, kSummary14};
    const std::string left =
        "<emergency_try_limit>5</emergency_try_limit><emergency_try_count>4"
        "</emergency_try_count>";
    const std::string used =
        "<emergency_try_limit>5</emergency_try_limit><emergency_try_count>5"
        "</emergency_try_count>";
    std::vector<ReplyRow> rows = {
        {document(""), 14, 14, lines},
        {document("<authPassed>0</authPassed>"), 14, 14, lines},
        {document("<authPassed>0</authPassed>" + left), 14, 14, lines},
        {document("<authPassed>0</authPassed>" + used), 14, 19, lines},
        {document(used), 14, 19, lines},
        {document("<emergency_try_limit>-1</emergency_try_limit>"), 14, 14, lines},
        {document("<emergency_try_count>9</emergency_try_count>"), 14, 14, lines},
        {document("<emergency_try_limit>0</emergency_try_limit>"), 14, 19, lines},
        {document("<authPassed>0</authPassed><errorValue>-1</errorValue>"), 14, 14, lines},
    };
    for (const char* passed : {"2", "01", "true", " 1", "1 ", "", "-1"})
        rows.push_back({document(std::string("<authPassed>") + passed + "</authPassed>"), 14, 14, lines});
    // The names' case counts.
    rows.push_back({document("<authpassed>1</authpassed><authSid/>"), 14, 14, lines});
    rows.push_back({document("<authPassed>1</authPassed><authsid>s</authsid>"), 14, 0, lines});
    expectReplies<SecondStep>(rows, [](const SecondStep& login) {
        EXPECT_EQ(login.made, nullptr);
        EXPECT_FALSE(login.admin);
        EXPECT_EQ(login.name[0], L'#');
    });
}

TEST(WFMLoginStep2Wire, TriesDoNotMatterToALoginThatPassed) {
    const RawServer server(
        {Reply::text(document("<authPassed>1</authPassed><authSid>s</authSid><emergency_try_limit>0"
                              "</emergency_try_limit>"))});
    SecondStep login(server);
    EXPECT_EQ(login.run(), 0u);
    EXPECT_EQ(login.result, 0u);
}

TEST(WFMLoginStep2Wire, ARefusalWithASidOpensASessionAllTheSame) {
    const RawServer server({Reply::text(document("<authPassed>0</authPassed><authSid>s</authSid>"))});
    SecondStep login(server);
    LogCapture log;
    EXPECT_EQ(login.run(), 0u);
    EXPECT_EQ(login.result, 14u);
    ASSERT_NE(login.made, nullptr);
    EXPECT_EQ(sidOf(login.made), L"s");
    log.expectNoLines();
}

TEST(WFMLoginStep2Wire, AnyNumberButZeroIsAnAdministrator) {
    for (const auto& [sent, isAdmin] : {std::pair{"1", true}, {"2", true}, {"-1", true}, {"0", false}}) {
        const RawServer server({Reply::text(SecondStep::accepted("s", "", sent))});
        SecondStep login(server);
        EXPECT_EQ(login.run(), 0u);
        EXPECT_EQ(login.admin, isAdmin) << sent;
    }
}

TEST(WFMLoginStep2Wire, ReadsItsElementsWhereverTheyStand) {
    const RawServer server({Reply::text(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?><!-- <authSid>no</authSid> "
        "--><a><b><authPassed><![CDATA[1]]>"
        "</authPassed></b><c deep='1'><d><authSid>s&amp;1</authSid></d></c><authSidOther>x</authSidOther>"
        "<servername>a&lt;b&#x4E2D;</servername></a>")});
    SecondStep login(server);
    EXPECT_EQ(login.run(), 0u);
    EXPECT_EQ(sidOf(login.made), L"s&1");
    EXPECT_STREQ(login.name, L"a<b\x4E2D");
}

TEST(WFMLoginStep2Wire, AReplyThatIsNotWellFormedIs14) {
    const std::string good = "<authPassed>1</authPassed><authSid>s</authSid>";
    std::vector<ReplyRow> rows;
    for (const std::string& reply :
         {std::string(), std::string("{\"status\":1,\"sid\":\"s\"}"), std::string("plain"), "<a>" + good,
          "<a>" + good + "</b>", good, document(good) + "<more/>",
          document(good + "<servername>&no;</servername>"),
          document(good + "<servername>\xFF\xFE</servername>"), entityBomb("servername", good),
          document(good).substr(0, document(good).size() - 1)})
        rows.push_back({reply, 14, -1, {kNotUnderstood, kSummary14}});
    expectReplies<SecondStep>(rows, [](const SecondStep& login) {
        EXPECT_EQ(login.made, nullptr);
        EXPECT_FALSE(login.admin);
        EXPECT_EQ(login.name[0], L'#');
    });
}

TEST(WFMLoginStep2Wire, NoFileOfThisMachineBecomesASid) {
    const RawServer server({Reply::text(foreignFile("authSid", element("authPassed", "1")))});
    SecondStep login(server);
    EXPECT_EQ(login.run(), 14u);
    EXPECT_EQ(login.made, nullptr);
}

TEST(WFMLoginStep2Wire, ADocumentOfAnyDepthIsRead) {
    std::string deep;
    for (int i = 0; i < 20000; ++i) deep += "<a>";
    deep += "<authPassed>1</authPassed><authSid>s</authSid>";
    for (int i = 0; i < 20000; ++i) deep += "</a>";
    const RawServer server({Reply::text(deep)});
    SecondStep login(server);
    EXPECT_EQ(login.run(), 0u);
}
