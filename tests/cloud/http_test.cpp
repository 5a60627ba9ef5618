#include "cloudtest.h"
#include "nas/descriptors.h"

namespace {

class CloudHttp : public TorviCloudTest {
protected:
    NasReply send(const std::string& bytes) {
        NasConnection connection(cloud.port());
        connection.send(bytes);
        return connection.readAll();
    }
};

TEST_F(CloudHttp, WhatIsNotHttpIsRefusedInWords) {
    const std::string get = "GET /v1.1/device HTTP/1.1\r\n", post = "POST /oauth/token HTTP/1.1\r\n";
    const std::string end = "\r\n\r\n";
    const struct {
        std::string bytes;
        int http;
        std::string why;
    } cases[] = {
        {end, 400, "not a request line of HTTP/1.1"},
        {"GET /v1.1/device HTTP/1.0" + end, 400, "not a request line of HTTP/1.1"},
        {"GET /v1.1/device" + end, 400, "not a request line of HTTP/1.1"},
        {get + "no colon" + end, 400, "a header line without a name"},
        {get + ": nameless" + end, 400, "a header line without a name"},
        {post + "Transfer-Encoding: chunked" + end, 411, "a body of unknown length"},
        {post + "Content-Length: -1" + end, 400, "header Content-Length is \"-1\""},
        {post + "Content-Length: 0x10" + end, 400, "header Content-Length is \"0x10\""},
        {post + "Content-Length: 1048577" + end, 413, "a body of 1048577 bytes"},
        {post + "Content-Length: 99999999999999999999" + end, 413, "a body of 99999999999999999999 bytes"},
        {get + "Accept: " + std::string(70000, 'a'), 431, "a head without an end"},
    };
    for (const auto& one : cases) {
        cloud.forgetRequests();
        const NasReply reply = send(one.bytes);
        EXPECT_EQ(one.http, reply.http) << one.why;
        EXPECT_EQ("invalid_request", reply.json()["error"].asString()) << one.why;
        EXPECT_EQ(one.why, reply.json()["error_description"].asString());
        EXPECT_EQ(1, cloud.requestCount("refused")) << one.why;
        EXPECT_TRUE(cloud.waitForLog("http=" + std::to_string(one.http) + " refused: " + one.why));
    }
    EXPECT_EQ(200, run(signInRequest()).http);
}

TEST_F(CloudHttp, SeveralRequestsOnOneConnectionAreAnsweredInTurn) {
    const std::string replies = runInOneGo(
        {signInRequest(), signInRequest("guess"), checkedRequest("/v1/users/deviceId/ben", now())});
    EXPECT_EQ(3, countOf(replies, "HTTP/1.1 "));
    EXPECT_LT(replies.find("access_token"), replies.find("invalid_client"));
    EXPECT_LT(replies.find("invalid_client"), replies.find("The device is not found."));
    EXPECT_NE(std::string::npos, replies.find("The device is not found."));
}

TEST_F(CloudHttp, ARefusalBelowTheProtocolEndsTheConnection) {
    const std::string replies = send("nonsense\r\n\r\n" + signInRequest().bytes()).raw;
    EXPECT_EQ(1, countOf(replies, "HTTP/1.1 "));
}

TEST_F(CloudHttp, WithoutDescriptorsTheNextConnectionWaits) {
    // A connection takes three: the client's, the one towards the service, and the service's own.
    {
        const FewDescriptors few(cloud.pid(), 3);
        NasConnection connection(cloud.port());
        EXPECT_TRUE(cloud.waitForLog("no connection is taken: Too many open files"));
        connection.send(signInRequest().bytes());
        EXPECT_EQ(200, connection.readAll().http);
    }
    EXPECT_EQ(200, run(signInRequest()).http);
}

class CloudPatience : public TorviCloudTest {
protected:
    CloudPatience() : TorviCloudTest({"--patience", "1"}) {}
};

TEST_F(CloudPatience, AClientThatFallsSilentIsLeft) {
    for (const std::string beginning : {"", "GET /v1.1/device HTTP/1.1\r\nHost: a\r\n"}) {
        NasConnection connection(cloud.port());
        connection.send(beginning);
        const NasReply reply = connection.readAll();
        EXPECT_FALSE(reply.timedOut) << beginning;
        EXPECT_EQ("", reply.raw);
    }
    NasConnection connection(cloud.port());
    connection.send("POST /oauth/token HTTP/1.1\r\nContent-Length: 10\r\n\r\nhalf");
    const NasReply reply = connection.readAll();
    EXPECT_EQ(400, reply.http);
    EXPECT_EQ("the body broke off", reply.json()["error_description"].asString());
}

TEST_F(CloudPatience, AHeadThatMayGoOnBehindTheDigestIsTakenAsItIs) {
    NasConnection connection(cloud.port());
    connection.send("GET /v1/users/deviceId/ben HTTP/1.1\r\nHost: a\r\nX-VEXA-CHECK: short\r\n\r\n");
    EXPECT_EQ(400, connection.readAll().http);
}

}  // namespace
