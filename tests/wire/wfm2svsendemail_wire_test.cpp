#include <gtest/gtest.h>

#include "forms.h"
#include "support/logcapture.h"
#include "support/session.h"
#include "support/wire.h"

using namespace wire;

namespace {

struct Mail {
    const wchar_t* server = kServer;
    uint32_t port = 80;
    const wchar_t* user = L"user";
    const wchar_t* password = L"password";
    bool secure = false;

    Mail() = default;
    explicit Mail(const RawServer& at) : port(at.port()) {}
    uint32_t run() const { return WFM2SVSendEmail(server, port, user, password, secure); }
};

}  // namespace

TEST(WFM2SVSendEmailWire, PostsUserAndPasswordBehindADoubledAmpersand) {
    const RawServer server({Reply::text("<authLogin><send_result>0</send_result></authLogin>")});
    Mail call(server);
    call.user = L"J\u00f6rg & co";
    call.password = L"p\u4e2d\U0001F600~";
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    expectPost(server, server.onlyRequest(), "/cgi-bin/authLogin.cgi?send_mail=1&&serviceKey=1",
               {{"user", "J%C3%B6rg%20%26%20co"}, {"pwd", "cOS4rfCfmIB%2B"}});
    log.expectNoLines();
}

TEST(WFM2SVSendEmailWire, SpeaksTls) {
    RawServer::Options tls;
    tls.certificate = Certificate::SelfSigned;
    const RawServer server({Reply::text("<a/>")}, tls);
    Mail call(server);
    call.secure = true;
    EXPECT_EQ(call.run(), 0u);
}

TEST(WFM2SVSendEmailWire, RefusesEachMissingArgumentWithOneLine) {
    const std::pair<const char*, void (*)(Mail&)> changes[] = {
        {"server", [](Mail& a) { a.server = nullptr; }},
        {"empty server", [](Mail& a) { a.server = L""; }},
        {"port", [](Mail& a) { a.port = 0; }},
        {"user", [](Mail& a) { a.user = nullptr; }},
        {"empty user", [](Mail& a) { a.user = L""; }},
        {"password", [](Mail& a) { a.password = nullptr; }},
        {"empty password", [](Mail& a) { a.password = L""; }},
    };
    LogCapture log;
    for (const auto& [what, change] : changes) {
        SCOPED_TRACE(what);
        Mail call;
        change(call);
        log.clear();
        EXPECT_EQ(call.run(), 8u);
        log.expectLines({"[WFM] WFM2SVSendEmail: WFM_PARSE_XML_INVALID_PARAMETER"});
    }
}

TEST(WFM2SVSendEmailWire, WhateverIsAnsweredIsAnAnswer) {
    const std::string tries =
        "<emergency_try_limit>5</emergency_try_limit><emergency_try_count>5"
        "</emergency_try_count>";
    for (const std::string& reply :
         {"<a><send_result>1</send_result></a>" + std::string(),
          "<a><send_result>-1</send_result></a>" + std::string(), "<a>" + tries + "</a>",
          std::string("sorry"), std::string(), std::string("<a><b>"), std::string("\xFF\xFE"),
          std::string(3000000, '<')}) {
        SCOPED_TRACE(reply.substr(0, 100));
        const RawServer server({Reply::text(reply)});
        LogCapture log;
        EXPECT_EQ(Mail(server).run(), 0u);
        log.expectNoLines();
        EXPECT_EQ(server.requestCount(), 1u);
    }
}

TEST(WFM2SVSendEmailWire, ARedirectCountsOnlyWhereTheConnectionFailsToo) {
    LogCapture log;
    const RawServer whole({Reply::redirect("https://127.0.0.1/")});
    EXPECT_EQ(Mail(whole).run(), 0u);
    log.expectNoLines();

    const RawServer broken({Reply::status(302, "short").contentLength(5000)});
    EXPECT_EQ(Mail(broken).run(), 14u);
    log.expectLines(
        {"[WFM] WFM2SVSendEmail: WFM_FORCE_HTTPS_REDIRECT", "[WFM] WFM2SVSendEmail failed dwStatus(14)"});
}
