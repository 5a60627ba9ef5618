#include <algorithm>

#include "cloudtest.h"

namespace {

class CloudStrictness : public TorviCloudTest {
protected:
    /// The request is refused with an HTTP error that says why, and the log says it, too.
    void expectRefused(const NasRequest& request, int http, const std::string& why) {
        const NasReply reply = run(request);
        EXPECT_EQ(http, reply.http) << why;
        EXPECT_EQ("invalid_request", reply.json()["error"].asString());
        EXPECT_EQ(why, reply.json()["error_description"].asString());
        EXPECT_TRUE(cloud.waitForLog("http=" + std::to_string(http) + " refused: " + why));
    }
    static NasRequest swapped(NasRequest request, const std::string& first, const std::string& second) {
        auto find = [&](const std::string& name) {
            return std::find_if(request.headers.begin(), request.headers.end(),
                                [&](const auto& header) { return header.first == name; });
        };
        std::iter_swap(find(first), find(second));
        return request;
    }
};

TEST_F(CloudStrictness, EachHeaderOfTheFrameIsRequired) {
    const std::string all = "Accept, X-VEXA-APP-ID, X-VEXA-SUBAPP-ID, X-VEXA-APP-VER, Authorization";
    const NasRequest request = framed(NasRequest::get("/v1.1/device"), "some-token");
    expectRefused(
        NasRequest(request).set("Accept", ""), 400,
        "the protocol's headers are X-VEXA-APP-ID, X-VEXA-SUBAPP-ID, X-VEXA-APP-VER, Authorization, "
        "not " +
            all);
    for (const char* name : {"X-VEXA-APP-ID", "X-VEXA-SUBAPP-ID", "X-VEXA-APP-VER", "Authorization"}) {
        EXPECT_EQ(400, run(NasRequest(request).set(name, "")).http) << name;
    }
    EXPECT_EQ(401, run(request).http);
}

TEST_F(CloudStrictness, TheOrderOfHeadersCounts) {
    expectRefused(swapped(signInRequest(), "X-VEXA-SUBAPP-ID", "X-VEXA-APP-VER"), 400,
                  "the protocol's headers are Accept, X-VEXA-APP-ID, X-VEXA-APP-VER, X-VEXA-SUBAPP-ID, not "
                  "Accept, X-VEXA-APP-ID, X-VEXA-SUBAPP-ID, X-VEXA-APP-VER");
    expectRefused(swapped(checkedRequest("/v1/services/vlink/any", now()), "X-VEXA-APP-VER", "X-VEXA-APP-ID"),
                  400,
                  "the protocol's headers are X-VEXA-APP-ID, X-VEXA-CHECK, X-VEXA-TIME, X-VEXA-APP-VER, not "
                  "X-VEXA-APP-VER, X-VEXA-CHECK, X-VEXA-TIME, X-VEXA-APP-ID");
}

TEST_F(CloudStrictness, ACallByChecksumBearsNeitherAcceptNorToken) {
    for (const char* name : {"Accept", "Authorization", "X-VEXA-SUBAPP-ID"}) {
        NasRequest request = checkedRequest("/v1/services/vlink/any", now());
        EXPECT_EQ(400, run(request.set(name, "Bearer application/json")).http) << name;
    }
    EXPECT_EQ(200, run(checkedRequest("/v1/services/vlink/any", now())).http);
}

TEST_F(CloudStrictness, SigningInBearsNoToken) {
    EXPECT_EQ(400, run(signInRequest().set("Authorization", "Bearer some-token")).http);
}

TEST_F(CloudStrictness, BothIdsAreTheSame) {
    expectRefused(signInRequest().set("X-VEXA-SUBAPP-ID", "other"), 400,
                  "header X-VEXA-SUBAPP-ID is \"other\", not \"desk-app\"");
}

TEST_F(CloudStrictness, TheFormNamesTheApplicationOfTheHeader) {
    NasRequest request = signInRequest();
    expectRefused(request.set("X-VEXA-APP-ID", "other").set("X-VEXA-SUBAPP-ID", "other"), 400,
                  "form key \"client_id\" isn't header X-VEXA-APP-ID");
}

TEST_F(CloudStrictness, TheFormsKeysStandInTheirOrder) {
    expectRefused(framed(NasRequest::form("/oauth/token", {{"client_id", "desk-app"},
                                                           {"grant_type", "client_credentials"},
                                                           {"client_secret", "desk-secret"}})),
                  400, "form key \"client_id\" is out of order");
    expectRefused(framed(NasRequest::form("/oauth/token", {{"grant_type", "password"},
                                                           {"client_id", "desk-app"},
                                                           {"client_secret", "desk-secret"}})),
                  400, "form key \"grant_type\" has the value \"password\", not \"client_credentials\"");
}

TEST_F(CloudStrictness, AnotherTokenInTheHeaderThanInTheRequestIsRefused) {
    const std::string token = tokenOf("anna");
    expectRefused(signOutRequest(token).set("Authorization", "Bearer other"), 400,
                  "header Authorization bears another token than the form");
    expectRefused(infoRequest(token).set("Authorization", "Bearer other"), 400,
                  "header Authorization bears another token than the query");
    expectRefused(framed(NasRequest::get("/v1.1/device"), token).set("Authorization", "Basic " + token), 400,
                  "header Authorization bears no token");
    EXPECT_EQ(200, run(infoRequest(token)).http);
}

TEST_F(CloudStrictness, AQueryStandsOnlyWhereItBelongs) {
    expectRefused(framed(NasRequest::get("/v1.1/device?page=1"), "some-token"), 400,
                  "a query on a call that has none");
    expectRefused(framed(NasRequest::get("/v1.1/device/search"), "some-token"), 400, "the query is missing");
    expectRefused(framed(NasRequest::get("/v1.1/device/search?name=a"), "some-token"), 400,
                  "query key \"name\" is not in the protocol here");
}

TEST_F(CloudStrictness, MethodAndPathAreTheCalls) {
    expectRefused(framed(NasRequest::get("/oauth/token")), 405, "method is GET, not POST");
    expectRefused(framed(NasRequest::get("/v1.1/devices"), "some-token"), 404, "no call at this path");
    expectRefused(checkedRequest("/v1/services/vlink/", now()), 404, "no call at this path");
}

TEST_F(CloudStrictness, TheTransportsHeadersAreRequired) {
    expectRefused(signInRequest().set("Cache-Control", ""), 400,
                  "header Cache-Control is \"\", not \"no-cache\"");
    expectRefused(signInRequest().set("Content-Type", "application/x-www-form-urlencoded"), 400,
                  "header Content-Type is \"application/x-www-form-urlencoded\", not "
                  "\"application/x-www-form-urlencoded;charset=UTF-8\"");
    expectRefused(signInRequest().set("User-Agent", ""), 400, "header User-Agent is missing");
}

TEST_F(CloudStrictness, HeadersAreSpelledAsTheProtocolHasThem) {
    expectRefused(signInRequest().set("authorization", "Bearer some-token"), 400,
                  "header authorization is spelled Authorization");
    expectRefused(signInRequest().set("Host", "").set("host", "127.0.0.1"), 400,
                  "header host is spelled Host");
}

TEST_F(CloudStrictness, HeadersOfOtherProtocolsAreRefused) {
    for (const std::string name :
         {"Cookie", "Range", "Content-Encoding", "X-Forwarded-For", "X-VEXA-TRACE", "Expect"})
        expectRefused(signInRequest().set(name, "1"), 400, "header " + name + " is not in the protocol");
}

TEST_F(CloudStrictness, EachHeaderComesOnce) {
    for (const std::string name : {"Host", "User-Agent", "Content-Type", "Content-Length", "Accept"}) {
        NasRequest request = signInRequest();
        const auto header = std::find_if(request.headers.begin(), request.headers.end(),
                                         [&](const auto& one) { return one.first == name; });
        request.headers.push_back(*header);
        expectRefused(request, 400, "header " + name + " came twice");
    }
}

TEST_F(CloudStrictness, AHostIsANameAndPerhapsAPort) {
    for (const std::string host : {"127.0.0.1:", "127.0.0.1:x", ":80", "a/b", "anna@cloud"})
        expectRefused(signInRequest().set("Host", host), 400, "header Host is \"" + host + "\"");
    EXPECT_EQ(200, run(signInRequest().set("Host", "cloud.example:80")).http);
}

TEST_F(CloudStrictness, TheTokensOwnCallBearsItInTheHeaderToo) {
    const std::string token = tokenOf("anna");
    expectRefused(infoRequest(token).set("Authorization", ""), 400,
                  "the protocol's headers are Accept, X-VEXA-APP-ID, X-VEXA-SUBAPP-ID, X-VEXA-APP-VER, not "
                  "Accept, X-VEXA-APP-ID, X-VEXA-SUBAPP-ID, X-VEXA-APP-VER, Authorization");
}

TEST_F(CloudStrictness, AGetRequestHasNoBody) {
    NasRequest request = framed(NasRequest::get("/v1.1/device"), "some-token");
    request.body = "a=b";
    expectRefused(request.set("Content-Length", "3"), 400, "a body on a GET request");
}

TEST_F(CloudStrictness, AQueryHoldsWhatUrlsLeaveAndNothingElse) {
    const std::string token = tokenOf("anna");
    const std::string search = "/v1.1/device/search?device_name=";
    EXPECT_EQ(0, get(search + "Shed+2!$'()*,;=:@/[]?b?", token).json()["code"].asInt());
    EXPECT_EQ(401, run(infoRequest("a+b")).http);
    for (const char c : std::string("\"<>^{}|\\`"))
        expectRefused(framed(NasRequest::get(search + "a" + c), token), 400,
                      std::string("query key \"device_name\" holds the character \"") + c + "\" unencoded");
}

TEST_F(CloudStrictness, AnIdInThePathIsEncodedAsUrlsAre) {
    expectRefused(framed(NasRequest::get("/v1.1/device/shed%2/network"), "some-token"), 400,
                  "path holds a broken percent-encoding");
    expectRefused(framed(NasRequest::get("/v1.1/device/shed\"/network"), "some-token"), 400,
                  "path holds the character \"\"\" unencoded");
    expectRefused(checkedRequest("/v1/services/vlink/a%zz", now()), 400,
                  "path holds a broken percent-encoding");
}

TEST_F(CloudStrictness, ATimeIsANumber) {
    NasRequest request = checkedRequest("/v1/services/vlink/any", now());
    expectRefused(request.set("X-VEXA-TIME", "today"), 400,
                  "header X-VEXA-TIME is \"today\", no time in milliseconds");
}

TEST_F(CloudStrictness, TokensDoNotGetIntoTheLog) {
    const std::string token = tokenOf("anna");
    run(infoRequest(token));
    run(signOutRequest(token));
    ASSERT_TRUE(cloud.waitForLog("call=signout"));
    EXPECT_EQ(std::string::npos, cloud.log().find(token));
    EXPECT_EQ(std::string::npos, cloud.log().find("anna-refresh"));
}

TEST_F(CloudStrictness, WhatIsMalformedDoesNotGetIntoTheLog) {
    expectRefused(framed(NasRequest::get("/oauth/tokeninfo?anna-secret"), "some-token"), 400,
                  "query has a piece without key and value");
    NasRequest form = signInRequest();
    form.body = "client_secret=a&anna-secret";
    expectRefused(form.set("Content-Length", std::to_string(form.body.size())), 400,
                  "form has a piece without key and value");
    EXPECT_EQ(std::string::npos, cloud.log().find("anna-secret"));
}

TEST_F(CloudStrictness, FaultsHitThePathThatTheyName) {
    const int fault = cloud.arm("http-status,match=/v1.1/device/count,status=503");
    EXPECT_EQ(503, get("/v1.1/device/count", "some-token").http);
    EXPECT_EQ(401, get("/v1.1/device/count", "some-token").http);
    EXPECT_EQ(1, cloud.hits(fault));
    EXPECT_EQ(1, cloud.requestCount("count"));
}

}  // namespace
