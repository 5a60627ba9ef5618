#include <gtest/gtest.h>

#include <vector>

#include "forms.h"
#include "support/logcapture.h"
#include "support/session.h"
#include "support/wire.h"
#include "support/xmlreplies.h"

using namespace wire;

namespace {

const char* const kSummary14 = "[WFM] WFM2SVGetQuestion failed dwStatus(14)";

std::string asked(const std::string& question) {
    return document(element("security_question_no", "2") + element("system_question_text", question));
}

/// Good arguments, and a buffer that is longer than the capacity says.
struct Question {
    const wchar_t* server = kServer;
    uint32_t port = 80;
    const wchar_t* user = L"user";
    const wchar_t* password = L"password";
    const wchar_t* language = L"en";
    bool secure = false;
    uint32_t capacity = 260;
    std::vector<wchar_t> text = std::vector<wchar_t>(600, L'#');
    wchar_t* question = text.data();

    Question() = default;
    explicit Question(const RawServer& at) : port(at.port()) {}

    uint32_t run() {
        return WFM2SVGetQuestion(server, port, user, password, language, secure, capacity, question);
    }
    /// The first characters of the buffer, an end as ".".
    std::wstring head(size_t count) const {
        std::wstring all(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(count));
        for (wchar_t& character : all)
            if (character == L'\0') character = L'.';
        return all;
    }
};

}  // namespace

TEST(WFM2SVGetQuestionWire, PostsUserAndPassword) {
    const RawServer server({Reply::text(asked("Your first pet?"))});
    Question call(server);
    call.user = L"J\u00f6rg & co";
    call.password = L"p\u4e2d\U0001F600~";
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_STREQ(call.question, L"Your first pet?");
    expectPost(server, server.onlyRequest(), "/cgi-bin/authLogin.cgi?get_question=1&serviceKey=1&q_lang=en",
               {{"user", "J%C3%B6rg%20%26%20co"}, {"pwd", "cOS4rfCfmIB%2B"}});
    log.expectNoLines();
}

TEST(WFM2SVGetQuestionWire, TheLanguageGoesOutAsItIs) {
    const RawServer server({Reply::text(asked("q"))});
    Question call(server);
    call.language = L"a&b=c";
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(server.onlyRequest().target(),
              "/cgi-bin/authLogin.cgi?get_question=1&serviceKey=1&q_lang=a&b=c");
}

TEST(WFM2SVGetQuestionWire, SpeaksTls) {
    RawServer::Options tls;
    tls.certificate = Certificate::SelfSigned;
    const RawServer server({Reply::text(asked("q"))}, tls);
    Question call(server);
    call.secure = true;
    EXPECT_EQ(call.run(), 0u);
}

TEST(WFM2SVGetQuestionWire, RefusesEachMissingArgumentWithOneLine) {
    const std::pair<const char*, void (*)(Question&)> changes[] = {
        {"server", [](Question& a) { a.server = nullptr; }},
        {"empty server", [](Question& a) { a.server = L""; }},
        {"port", [](Question& a) { a.port = 0; }},
        {"user", [](Question& a) { a.user = nullptr; }},
        {"empty user", [](Question& a) { a.user = L""; }},
        {"password", [](Question& a) { a.password = nullptr; }},
        {"empty password", [](Question& a) { a.password = L""; }},
        {"language", [](Question& a) { a.language = nullptr; }},
        {"empty language", [](Question& a) { a.language = L""; }},
        {"capacity", [](Question& a) { a.capacity = 0; }},
        {"buffer", [](Question& a) { a.question = nullptr; }},
    };
    LogCapture log;
    for (const auto& [what, change] : changes) {
        SCOPED_TRACE(what);
        Question call;
        change(call);
        log.clear();
        EXPECT_EQ(call.run(), 8u);
        log.expectLines({"[WFM] WFM2SVGetQuestion: WFM_PARSE_XML_INVALID_PARAMETER"});
        EXPECT_EQ(call.text[0], L'#');
    }
}

TEST(WFM2SVGetQuestionWire, FillsTheBufferUpToItsCapacityAndNoFurther) {
    const struct {
        uint32_t capacity;
        const wchar_t* left;  ///< "." is an end
    } rows[] = {
        {1, L"W######"}, {3, L"Why####"}, {4, L"Why?###"},  // as long as the capacity: no end
        {5, L"Why?.##"}, {6, L"Why?..#"}, {7, L"Why?..."},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.capacity);
        const RawServer server({Reply::text(asked("Why?"))});
        Question call(server);
        call.capacity = row.capacity;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.head(7), row.left);
    }
}

TEST(WFM2SVGetQuestionWire, AHugeQuestionStaysInsideTheBuffer) {
    const RawServer server({Reply::text(asked(std::string(2000000, 'q')))});
    Question call(server);
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.head(261), std::wstring(260, L'q') + L"#");
}

TEST(WFM2SVGetQuestionWire, ReadsAnyText) {
    const std::pair<std::string, const wchar_t*> rows[] = {
        {asked("a &lt; b &amp;&#x4E2D;"), L"a < b &\x4E2D"},
        {asked("\xE4\xB8\xAD\xF0\x9F\x98\x80"), L"\x4E2D\x1F600"},
        {asked("<![CDATA[<why>]]>"), L"<why>"},
        {"<system_question_text>alone</system_question_text>", L"alone"},
        {asked(" "), L" "},
    };
    for (const auto& [reply, question] : rows) {
        SCOPED_TRACE(reply);
        const RawServer server({Reply::text(reply)});
        Question call(server);
        EXPECT_EQ(call.run(), 0u);
        EXPECT_STREQ(call.question, question);
    }
}

TEST(WFM2SVGetQuestionWire, WithoutAQuestionItIs14) {
    for (const std::string& reply :
         {asked(""), std::string("<authLogin/>"), std::string(),
          std::string("{\"system_question_text\":\"q\"}"),
          std::string("<a><System_Question_Text>q</System_Question_Text></a>"),
          std::string("<a><security_question_no>1</security_question_no></a>"),
          foreignFile("system_question_text"), entityBomb("system_question_text")}) {
        SCOPED_TRACE(reply);
        const RawServer server({Reply::text(reply)});
        Question call(server);
        LogCapture log;
        EXPECT_EQ(call.run(), 14u);
        EXPECT_EQ(call.text[0], L'#');
        log.expectLines({"[WFM] WFM2SVGetQuestion: WFM_PARSE_XML_FAIL", kSummary14});
    }
}

TEST(WFM2SVGetQuestionWire, TheHttpStatusDecidesWhateverTheBodySays) {
    const struct {
        int http;
        uint32_t dwStatus;
        const char* word;
    } rows[] = {{201, 6, "FAIL(httpStatusCode=201)"},
                {302, 14, "WFM_FORCE_HTTPS_REDIRECT"},
                {404, 6, "FAIL(httpStatusCode=404)"},
                {407, 11, "WFM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ"},
                {503, 12, "WFM_PARSE_XML_HTTPTRAN_SERVICE_UNAVAIL"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.http);
        const RawServer server({Reply::status(row.http, asked("q"))});
        Question call(server);
        LogCapture log;
        EXPECT_EQ(call.run(), row.dwStatus);
        EXPECT_EQ(call.text[0], L'#');
        log.expectLines({std::string("[WFM] WFM2SVGetQuestion: ") + row.word,
                         "[WFM] WFM2SVGetQuestion failed dwStatus(" + std::to_string(row.dwStatus) + ")"});
    }
}
