// What both logins of the web file manager do alike: WFMLogin, which speaks JSON, and WFMLoginStep2, which
// speaks XML.

#include <gtest/gtest.h>

#include <functional>

#include "loginargs.h"
#include "support/logcapture.h"
#include "support/timers.h"

using namespace wire;

template <class Login>
class FileManagerLoginWire : public testing::Test {
protected:
    static std::string line(const std::string& text) { return "[WFM] " + Login::function() + text; }
    static std::string summary(int dwStatus) {
        return line(" failed dwStatus(" + std::to_string(dwStatus) + ")");
    }
    /// Nobody was let in.
    static void expectNoSession(const Login& login) {
        EXPECT_EQ(login.made, nullptr);
        EXPECT_FALSE(login.admin);
        EXPECT_EQ(login.name[0], L'#');
    }
};

struct LoginNames {
    template <class Login>
    static std::string GetName(int) {
        return Login::function();
    }
};
using FileManagerLogins = testing::Types<FileManagerLogin, SecondStep>;
TYPED_TEST_SUITE(FileManagerLoginWire, FileManagerLogins, LoginNames);

TYPED_TEST(FileManagerLoginWire, RefusesEachMissingArgumentWithOneLine) {
    const std::vector<std::pair<const char*, std::function<void(TypeParam&)>>> changes = {
        {"server", [](TypeParam& a) { a.server = nullptr; }},
        {"empty server", [](TypeParam& a) { a.server = L""; }},
        {"port", [](TypeParam& a) { a.port = 0; }},
        {"user", [](TypeParam& a) { a.user = nullptr; }},
        {"empty user", [](TypeParam& a) { a.user = L""; }},
        {"password", [](TypeParam& a) { a.password = nullptr; }},
        {"capacity", [](TypeParam& a) { a.capacity = 0; }},
        {"server name", [](TypeParam& a) { a.serverName = nullptr; }},
        {"is admin", [](TypeParam& a) { a.isAdmin = nullptr; }},
        {"result word", [](TypeParam& a) { a.resultWord = nullptr; }},
        {"context", [](TypeParam& a) { a.context = nullptr; }},
    };
    const RawServer server({Reply::text(TypeParam::accepted("s"))});
    LogCapture log;
    for (const auto& [what, change] : changes) {
        SCOPED_TRACE(what);
        TypeParam login(server);
        change(login);
        log.clear();
        EXPECT_EQ(login.run(), 8u);
        log.expectLines({this->line(": WFM_PARSE_XML_INVALID_PARAMETER")});
        EXPECT_EQ(login.result, 0xABCDu);
        EXPECT_TRUE(login.admin);
        EXPECT_EQ(login.name[0], L'#');
        EXPECT_EQ(login.made, nullptr);
    }
    EXPECT_EQ(server.connectionCount(), 0u);
}

TYPED_TEST(FileManagerLoginWire, WaitsAsLongAsItIsToldOrFifteenSeconds) {
    const uint32_t zero = 0, some = 7000, most = 0xFFFFFFFF;
    const std::pair<const uint32_t*, int> rows[] = {
        {nullptr, 15000}, {&zero, 15000}, {&some, 7000}, {&most, 0x7FFFFFFF}};
    for (const auto& [timeout, waited] : rows) {
        const RawServer server({Reply::text(TypeParam::accepted("s"))});
        TypeParam login(server);
        login.timeout = timeout;
        const TimerCapture timers;
        EXPECT_EQ(login.run(), 0u);
        EXPECT_EQ(timers.started(), std::vector<int>{waited});
    }
}

TYPED_TEST(FileManagerLoginWire, AServerThatStallsEndsWith2AndStatus408) {
    const uint32_t timeout = 50;
    const RawServer server({Reply::stall()});
    TypeParam login(server);
    login.timeout = &timeout;
    LogCapture log;
    EXPECT_EQ(login.run(), 2u);
    EXPECT_EQ(login.signedResult(), -1);
    this->expectNoSession(login);
    log.expectLines({this->line(": FAIL(httpStatusCode=408)"), this->summary(2)});
}

TYPED_TEST(FileManagerLoginWire, TheHttpStatusDecidesWhateverTheBodySays) {
    const struct {
        int http;
        uint32_t dwStatus;
        int32_t result;
        const char* word;
    } rows[] = {
        {201, 6, -1, "FAIL(httpStatusCode=201)"}, {302, 14, -8, "WFM_FORCE_HTTPS_REDIRECT"},
        {307, 6, -1, "FAIL(httpStatusCode=307)"}, {401, 6, -1, "FAIL(httpStatusCode=401)"},
        {404, 6, -1, "FAIL(httpStatusCode=404)"}, {407, 11, -1, "WFM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ"},
        {500, 6, -1, "FAIL(httpStatusCode=500)"}, {503, 12, -1, "WFM_PARSE_XML_HTTPTRAN_SERVICE_UNAVAIL"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.http);
        const RawServer server({Reply::status(row.http, TypeParam::accepted("s", "nas", "1"))});
        TypeParam login(server);
        LogCapture log;
        EXPECT_EQ(login.run(), row.dwStatus);
        EXPECT_EQ(login.signedResult(), row.result);
        this->expectNoSession(login);
        log.expectLines(
            {this->line(std::string(": ") + row.word), this->summary(static_cast<int>(row.dwStatus))});
        EXPECT_EQ(server.requestCount(), 1u);
    }
}

TYPED_TEST(FileManagerLoginWire, AReplyThatBreaksOffIsJudgedByWhatCame) {
    const std::string reply = TypeParam::accepted("s", "nas", "1");
    const RawServer server({Reply::text(reply).closeAfterBodyBytes(reply.size() / 2)});
    TypeParam login(server);
    LogCapture log;
    EXPECT_EQ(login.run(), 14u);
    EXPECT_EQ(login.signedResult(), -1);
    this->expectNoSession(login);
    log.expectLines({this->line(": WFM_PARSE_XML_FAIL"), this->summary(14)});
}

TYPED_TEST(FileManagerLoginWire, AServerNameNeedsRoomForItsEnd) {
    for (const auto& [capacity, copied] : {std::pair{4U, false}, {5U, false}, {6U, true}, {260U, true}}) {
        SCOPED_TRACE(capacity);
        const RawServer server({Reply::text(TypeParam::accepted("s", "nas-1"))});
        TypeParam login(server);
        login.capacity = capacity;
        EXPECT_EQ(login.run(), 0u);
        EXPECT_NE(login.made, nullptr);
        EXPECT_EQ(std::wstring(login.name, 7), copied ? std::wstring(L"nas-1\0#", 7) : L"#######");
    }
}

TYPED_TEST(FileManagerLoginWire, WithoutAServerNameTheBufferStaysAsItIs) {
    const RawServer server({Reply::text(TypeParam::accepted("s"))});
    TypeParam login(server);
    EXPECT_EQ(login.run(), 0u);
    EXPECT_EQ(login.name[0], L'#');
    EXPECT_FALSE(login.admin);
}

TYPED_TEST(FileManagerLoginWire, AServerNameMayBeInAnyScriptAndAsLongAsItsField) {
    const std::pair<std::string, std::wstring> rows[] = {
        {"\xE6\x9B\xB8\xE9\xA1\x9E \xF0\x9F\x98\x80", L"\x66F8\x985E \x1F600"},
        {std::string(259, 'n'), std::wstring(259, L'n')},
    };
    for (const auto& [sent, read] : rows) {
        const RawServer server({Reply::text(TypeParam::accepted("s", sent))});
        TypeParam login(server);
        EXPECT_EQ(login.run(), 0u);
        EXPECT_EQ(login.name, read);
    }
    for (const size_t tooLong : {size_t{260}, size_t{3000}, size_t{1000000}}) {
        const RawServer server({Reply::text(TypeParam::accepted("s", std::string(tooLong, 'n')))});
        TypeParam login(server);
        EXPECT_EQ(login.run(), 0u);
        EXPECT_EQ(login.name[0], L'#');
    }
}

TYPED_TEST(FileManagerLoginWire, OneIsAnAdministratorAndZeroIsNot) {
    for (const auto& [sent, isAdmin] : {std::pair{"1", true}, {"0", false}, {"no", false}}) {
        const RawServer server({Reply::text(TypeParam::accepted("s", "", sent))});
        TypeParam login(server);
        EXPECT_EQ(login.run(), 0u);
        EXPECT_EQ(login.admin, isAdmin) << sent;
    }
}

TYPED_TEST(FileManagerLoginWire, AnAcceptedLoginWithoutASidThatCanBeUsedIs14) {
    for (const size_t length : {size_t{0}, size_t{260}, size_t{2048}, size_t{1000000}}) {
        SCOPED_TRACE(length);
        const RawServer server({Reply::text(TypeParam::accepted(std::string(length, 's'), "nas", "1"))});
        TypeParam login(server);
        LogCapture log;
        EXPECT_EQ(login.run(), 14u);
        EXPECT_EQ(login.result, 0u);
        this->expectNoSession(login);
        log.expectLines({this->line(": Failed to allocate memory pSid"), this->summary(14)});
    }
}

TYPED_TEST(FileManagerLoginWire, ASidMayBe259Characters) {
    const RawServer server({Reply::text(TypeParam::accepted(std::string(259, 's')))});
    TypeParam login(server);
    EXPECT_EQ(login.run(), 0u);
    EXPECT_EQ(sidOf(login.made), std::wstring(259, L's'));
}

TYPED_TEST(FileManagerLoginWire, TheSessionSpeaksToTheFileManagerWithItsSid) {
    const RawServer server({Reply::text(TypeParam::accepted("sid-7", "nas", "1"))});
    TypeParam login(server);
    LogCapture log;
    ASSERT_EQ(login.run(), 0u);
    log.expectNoLines();
    EXPECT_EQ(login.result, 0u);
    EXPECT_TRUE(login.admin);
    EXPECT_STREQ(login.name, L"nas");
    EXPECT_FALSE(usesSyncService(login.made));
    EXPECT_EQ(sidOf(login.made), L"sid-7");
    EXPECT_EQ(slaveOf(login.made), L"");
    EXPECT_EQ(nextRequestOf(login.made).target(), targetOf("filemanager/utilRequest.cgi", "sid-7"));
}

TYPED_TEST(FileManagerLoginWire, TheSessionIsNoneOfFcgi) {
    RawServer server(
        {Reply::text(TypeParam::accepted("sid-7")), Reply::json(R"({"status":1,"success":"true"})")});
    TypeParam login(server);
    ASSERT_EQ(login.run(), 0u);
    EXPECT_EQ(TorviLogout(kServer, server.port(), false, login.made), 0u);
    EXPECT_EQ(server.request(1).target(), "/cgi-bin/torvi/torvisrv_logout.cgi?sid=sid-7&logout=1");
}

TYPED_TEST(FileManagerLoginWire, ASessionOfTlsGoesOnWithTls) {
    RawServer::Options tls;
    tls.certificate = Certificate::SelfSigned;
    RawServer server({Reply::text(TypeParam::accepted("s")), Reply::json(R"({"status":1,"success":"true"})")},
                     tls);
    TypeParam login(server);
    login.secure = true;
    ASSERT_EQ(login.run(), 0u);
    EXPECT_EQ(WFMLogout(kServer, server.port(), false, login.made), 0u);
    EXPECT_EQ(server.requestCount(), 2u);
}

TYPED_TEST(FileManagerLoginWire, TwoLoginsAreTwoSessions) {
    const RawServer server(
        {Reply::text(TypeParam::accepted("one")), Reply::text(TypeParam::accepted("two"))});
    TypeParam first(server), second(server);
    EXPECT_EQ(first.run(), 0u);
    EXPECT_EQ(second.run(), 0u);
    EXPECT_EQ(sidOf(first.made), L"one");
    EXPECT_EQ(sidOf(second.made), L"two");
}

TYPED_TEST(FileManagerLoginWire, SendsTheAgentThatItIsGivenAndElseTheTransports) {
    const std::pair<const wchar_t*, const char*> rows[] = {
        {L"Client \x6587/7", "Client \xE6\x96\x87/7"}, {L"", "VEXA Torvi"}, {nullptr, "VEXA Torvi"}};
    for (const auto& [agent, sent] : rows) {
        const RawServer server({Reply::text(TypeParam::accepted("s"))});
        TypeParam login(server);
        login.agent = agent;
        EXPECT_EQ(login.run(), 0u);
        EXPECT_EQ(server.onlyRequest().header("User-Agent"), sent);
    }
}
