#include <gmock/gmock.h>

#include <chrono>

#include "nastest.h"

/// Each fault over HTTP and over TLS.
class NasFault : public NasTest, public testing::WithParamInterface<bool> {
protected:
    NasFault() { write("Public/a", std::string(1000, 'x')); }
    NasReply list() { return run(NasRequest::get(cgi(listQuery(sid, "/Public"))), GetParam()); }
    NasReply fetchIt() {
        return run(NasRequest::download(cgi("func=download"), downloadForm(sid, "/Public", "a")), GetParam());
    }
    NasConnection connect() { return NasConnection(GetParam() ? nas.tlsPort() : nas.port(), GetParam()); }
};

INSTANTIATE_TEST_SUITE_P(, NasFault, testing::Bool(),
                         [](const auto& tls) { return std::string(tls.param ? "Tls" : "Http"); });

TEST_P(NasFault, CloseBeforeReplyServesTheRequestAndSaysNothing) {
    const int fault = nas.arm("close-before-reply,match=upload");
    const NasReply reply = run(NasRequest::upload(cgi(uploadQuery(sid, "/Public")), "b", "1"), GetParam());
    EXPECT_EQ("", reply.raw);
    EXPECT_FALSE(reply.reset);
    EXPECT_EQ("1", nas.folder().read("Public/b"));
    EXPECT_EQ(1, nas.hits(fault));
}

TEST_P(NasFault, CloseInReplyGivesSoManyBytesAndNoMore) {
    const int fault = nas.arm("close-in-reply,match=download,bytes=20");
    const NasReply reply = fetchIt();
    EXPECT_EQ(20u, reply.raw.size());
    EXPECT_FALSE(reply.reset);
    EXPECT_EQ(1, nas.hits(fault));
}

TEST_P(NasFault, CloseInReplyCountsFromTheBodyOnDemand) {
    nas.arm("close-in-reply,match=download,bytes=123,body=1");
    const NasReply reply = fetchIt();
    EXPECT_EQ(200, reply.http);
    EXPECT_EQ("1000", reply.headers.at("content-length"));
    EXPECT_EQ(std::string(123, 'x'), reply.body);
}

TEST_P(NasFault, ResetEndsWithAReset) {
    const int fault = nas.arm("reset,match=get_list");
    const NasReply reply = list();
    EXPECT_TRUE(reply.reset);
    EXPECT_EQ("", reply.raw);
    EXPECT_EQ(1, nas.hits(fault));
}

TEST_P(NasFault, StallSaysNoMoreUntilTheClientLeaves) {
    const int fault = nas.arm("stall,match=download,bytes=10,body=1");
    {
        NasConnection connection(GetParam() ? nas.tlsPort() : nas.port(), GetParam());
        connection.send(
            NasRequest::download(cgi("func=download"), downloadForm(sid, "/Public", "a")).bytes());
        const NasReply reply = connection.readAll(400);
        EXPECT_TRUE(reply.timedOut);
        EXPECT_EQ(std::string(10, 'x'), reply.body);
    }
    EXPECT_EQ(1, nas.hits(fault));
    EXPECT_EQ(1, list().status());
}

TEST_P(NasFault, StallOfLimitedLengthGoesOnWithEveryByte) {
    nas.arm("stall,match=download,bytes=10,body=1,ms=100");
    EXPECT_EQ(std::string(1000, 'x'), fetchIt().body);
}

TEST_P(NasFault, TrickleComesInSmallPiecesButWhole) {
    const int fault = nas.arm("trickle,match=download,bytes=100,ms=5");
    const auto start = std::chrono::steady_clock::now();
    const NasReply reply = fetchIt();
    EXPECT_EQ(std::string(1000, 'x'), reply.body);
    // At least ten pauses for a thousand bytes.
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(50));
    EXPECT_EQ(1, nas.hits(fault));
}

TEST_P(NasFault, WrongLengthAnnouncesMoreOrFewer) {
    nas.arm("wrong-length,match=download,bytes=1");
    NasReply reply = fetchIt();
    EXPECT_EQ("1001", reply.headers.at("content-length"));
    EXPECT_EQ(1000u, reply.body.size());
    nas.arm("wrong-length,match=download,bytes=-600");
    reply = fetchIt();
    EXPECT_EQ("400", reply.headers.at("content-length"));
    EXPECT_EQ(1000u, reply.body.size());
}

TEST_P(NasFault, GarbageIsNoJson) {
    const int fault = nas.arm("garbage,match=get_list");
    const NasReply reply = list();
    EXPECT_EQ(200, reply.http);
    EXPECT_NE("", reply.body);
    EXPECT_TRUE(reply.json().isNull());
    EXPECT_EQ(1, nas.hits(fault));
}

TEST_P(NasFault, HttpStatusAnswersInPlaceOfTheService) {
    for (const int status : {302, 404, 407, 500, 503}) {
        nas.arm("http-status,match=upload,status=" + std::to_string(status));
        const NasReply reply =
            run(NasRequest::upload(cgi(uploadQuery(sid, "/Public")), "b", "1"), GetParam());
        EXPECT_EQ(status, reply.http);
        EXPECT_TRUE(reply.complete());
    }
    EXPECT_THAT(onDisk("Public"), testing::ElementsAre("a"));
}

TEST_P(NasFault, ReplyIsWhatTheTestWants) {
    nas.control(
        "POST", "faults",
        R"({"name":"reply","match":"get_list","status":302,"location":"https://x/","content":"{\"status\":9}"})");
    const NasReply reply = list();
    EXPECT_EQ(302, reply.http);
    EXPECT_EQ("https://x/", reply.headers.at("location"));
    EXPECT_EQ(9, reply.status());
}

TEST_P(NasFault, CutUploadEndsTheConnectionInsideTheBody) {
    for (const char* name : {"cut-upload", "reset-upload"}) {
        const int fault = nas.arm(std::string(name) + ",match=upload,bytes=100000");
        const NasReply reply = run(
            NasRequest::upload(cgi(uploadQuery(sid, "/Public")), "b", std::string(8 << 20, 'y')), GetParam());
        EXPECT_EQ(0, reply.http) << name;
        EXPECT_EQ(1, nas.hits(fault)) << name;
    }
    EXPECT_TRUE(nas.waitForLog("the body broke off"));
    EXPECT_THAT(onDisk("Public"), testing::ElementsAre("a"));
}

TEST_P(NasFault, StallUploadStopsReading) {
    const int fault = nas.arm("stall-upload,match=upload,bytes=1000,ms=100");
    const std::string content(8 << 20, 'y');
    EXPECT_EQ(1,
              run(NasRequest::upload(cgi(uploadQuery(sid, "/Public")), "b", content), GetParam()).status());
    EXPECT_EQ(1, nas.hits(fault));
    EXPECT_TRUE(nas.folder().read("Public/b") == content);
}

using NasFaults = NasTest;

TEST_F(NasFaults, HitsExactlyAsManyAsCountedAfterThoseSkipped) {
    const int fault = nas.arm("http-status,match=get_list,status=500,skip=1,count=2");
    std::vector<int> seen;
    for (int i = 0; i < 5; ++i) seen.push_back(get(cgi(listQuery(sid, "/Public"))).http);
    EXPECT_THAT(seen, testing::ElementsAre(200, 500, 500, 200, 200));
    EXPECT_EQ(2, nas.hits(fault));
}

TEST_F(NasFaults, EndlessCountNeverEndsUntilDisarmed) {
    nas.arm("http-status,match=version,status=500,count=-1");
    for (int i = 0; i < 5; ++i) EXPECT_EQ(500, get("/cgi-bin/filemanager/utilRequest.cgi").http);
    nas.disarm();
    EXPECT_EQ(200, get("/cgi-bin/filemanager/utilRequest.cgi").http);
}

TEST_F(NasFaults, MatchByNameByPathOrAll) {
    nas.arm("http-status,match=login,status=501,count=3");
    EXPECT_EQ(200, get(cgi(listQuery(sid, "/Public"))).http);
    EXPECT_EQ(501, run(loginRequest("anna", "secret")).http);
    EXPECT_EQ(501, run(loginRequest("anna", "secret", "/cgi-bin/torvi/torvisrv.fcgi?func=login")).http);
    EXPECT_EQ(501, run(loginRequest("anna", "secret", "/cgi-bin/filemanager/wfm2Login.cgi")).http);
    nas.arm("http-status,match=/filemanager/,status=502");
    EXPECT_EQ(200, get(cgi(listQuery(sid, "/Public"))).http);
    EXPECT_EQ(502, get(manager(listQuery(sid, "/Public"))).http);
    nas.arm("http-status,status=503");
    EXPECT_EQ(503, get(cgi(statQuery(sid, "/Public", "a"))).http);
}

TEST_F(NasFaults, SecondRequestOfAConnectionIsHitAndTheFirstIsNot) {
    nas.arm("close-before-reply,match=version,skip=1");
    NasConnection connection(nas.port());
    NasRequest request = NasRequest::get("/cgi-bin/filemanager/utilRequest.cgi");
    request.set("Connection", "Keep-Alive");
    connection.send(request.bytes());
    std::string first;
    while (first.find("5.1.0\"}") == std::string::npos)
        ASSERT_TRUE(connection.readBytes(first, first.size() + 1));
    connection.send(request.bytes());
    EXPECT_EQ("", connection.readAll().raw);
}

TEST_F(NasFaults, FaultThatNeverTookEffectCountsNoHit) {
    const int fault = nas.arm("cut-upload,match=upload,bytes=1000000");
    EXPECT_EQ(1, put("/Public", "a", "small").status());
    EXPECT_EQ(0, nas.hits(fault));
}

TEST_F(NasFaults, ControlRequestsAreNeverHit) {
    nas.arm("http-status,status=503,count=-1");
    EXPECT_NO_THROW(nas.control("GET", "faults"));
}

TEST_F(NasFaults, RuleThatMakesNoSenseIsRefused) {
    for (const char* body : {"", "[]", "{}", R"({"name":"quake"})", R"({"name":"stall","bytes":-1})",
                             R"({"name":"stall","speed":1})", R"({"name":"trickle","bytes":0})",
                             R"({"name":"wrong-length"})", R"({"name":"reply","location":"x\r\ny"})"}) {
        EXPECT_ANY_THROW(nas.control("POST", "faults", body)) << body;
    }
}

class NasFailOption : public NasTest {
protected:
    NasFailOption() : NasTest({"--fail", "http-status,match=version,status=503,count=1"}) {}
};

TEST_F(NasFailOption, ArmsFromTheStart) {
    EXPECT_EQ(503, get("/cgi-bin/filemanager/utilRequest.cgi").http);
    EXPECT_EQ(200, get("/cgi-bin/filemanager/utilRequest.cgi").http);
}

TEST_F(NasFaults, RequestsAreCountedByName) {
    nas.forgetRequests();
    get(cgi(listQuery(sid, "/Public")));
    get(cgi(listQuery(sid, "/Public")));
    get("/cgi-bin/filemanager/utilRequest.cgi");
    EXPECT_EQ(2, nas.requestCount("get_list"));
    EXPECT_EQ(1, nas.requestCount("version"));
    EXPECT_EQ(3, nas.requestCount());
    get(cgi(listQuery(sid, "/Public") + "&x=1"));
    EXPECT_EQ(3, nas.requestCount("get_list"));
    get(cgi("func=nothing"));
    EXPECT_EQ(0, nas.requestCount("nothing"));
    EXPECT_EQ(1, nas.requestCount("refused"));
}
