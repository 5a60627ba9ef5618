#include "sharing/GetandCreateLinkJson.h"

#include <gtest/gtest.h>

#include <string>

#include "parsing.h"

namespace {

const std::string kPlace = R"("protocol":"https","host":"nas.example","port":"8081")";

CGetandCreateLinkJson read(const std::string& keys) {
    CGetandCreateLinkJson reply;
    EXPECT_EQ(parse(reply, "{" + keys + "}"), 1) << keys.substr(0, 200);
    return reply;
}

/// The URL of a reply whose link is "s1".
std::wstring urlOf(const std::string& keys) {
    return read(R"("status":1,"ssid":"s1",)" + keys).linkURL;
}

void expectNothing(const CGetandCreateLinkJson& reply, int status) {
    EXPECT_EQ(reply.GetStatus(), status);
    EXPECT_FALSE(reply.multiple);
    EXPECT_EQ(reply.linkURL + reply.linkName + reply.expireTime + reply.ssid, L"");
}

}  // namespace

TEST(CGetandCreateLinkJson, BeginsWithNothingLearnt) {
    expectNothing(CGetandCreateLinkJson(), -1);
}

TEST(CGetandCreateLinkJson, ReadsItsFields) {
    const CGetandCreateLinkJson reply = read(
        R"("status":1,"link_name":"for bob 書","expire_time":"2026/12/24","ssid":"s1","multiple":1,
           "links":[{"ssid":"s0","link_url":"http://a/"},{"ssid":"s1","link_url":"http://b/"}])");
    EXPECT_EQ(reply.GetStatus(), 0);
    EXPECT_TRUE(reply.multiple);
    EXPECT_EQ(reply.linkName, L"for bob \x66F8");
    EXPECT_EQ(reply.expireTime, L"2026/12/24");
    EXPECT_EQ(reply.ssid, L"s1");
    EXPECT_EQ(reply.linkURL, L"http://b/");
    EXPECT_FALSE(read(R"("multiple":0)").multiple);
    EXPECT_FALSE(read(R"("multiple":"0")").multiple);
}

TEST(CGetandCreateLinkJson, AMissingStatusIsASuccessAndAnyOtherEndsTheParse) {
    EXPECT_EQ(read("").GetStatus(), 0);
    EXPECT_EQ(read(R"("status":null,"ssid":"s1")").ssid, L"s1");
    EXPECT_EQ(read(R"("status":"1","ssid":"s1")").ssid, L"s1");
    const std::pair<const char*, int> rows[] = {{"0", -2}, {"2", -15}, {"3", -29},
                                                {"4", -3}, {"-3", -4}, {"99", -1}};
    for (const auto& [status, code] : rows)
        expectNothing(
            read(R"("ssid":"s1","link_name":"n","multiple":1,"links":5,"status":)" + std::string(status)),
            code);
}

TEST(CGetandCreateLinkJson, WithoutAnIdThereIsNoUrl) {
    for (const char* ssid : {"", R"("ssid":"",)", R"("ssid":null,)"}) {
        const CGetandCreateLinkJson reply = read(
            ssid + std::string(R"("link_name":"n","links":[{"ssid":"","link_url":"http://a/"}],)") + kPlace);
        EXPECT_EQ(reply.GetStatus(), 0);
        EXPECT_EQ(reply.linkName, L"n");
        EXPECT_EQ(reply.linkURL, L"");
    }
}

TEST(CGetandCreateLinkJson, AnIdHasUpTo259Characters) {
    const std::string longest(259, 's');
    EXPECT_EQ(read(R"("ssid":")" + longest + "\"," + kPlace).ssid, std::wstring(259, L's'));
    for (const std::string& id : {longest + "s", std::string(4096, 's')}) {
        const CGetandCreateLinkJson reply = read(R"("ssid":")" + id + R"(","links":[{"ssid":")" + id +
                                                 R"(","link_url":"http://a/"}],)" + kPlace);
        EXPECT_EQ(reply.ssid + reply.linkURL, L"");
    }
}

TEST(CGetandCreateLinkJson, IdsAreComparedByteByByte) {
    const auto linked = [](const std::string& id) {
        return read("\"ssid\":\"s\xFF\",\"links\":[{\"ssid\":\"" + id + "\",\"link_url\":\"http://a/\"}]")
            .linkURL;
    };
    EXPECT_EQ(linked("s\xFF"), L"http://a/");
    EXPECT_EQ(linked("s\xFE"), L"");
}

TEST(CGetandCreateLinkJson, TheFirstLinkWithTheIdGivesTheUrl) {
    EXPECT_EQ(urlOf(R"("links":[{"ssid":"S1","link_url":"http://a/"},{"link_url":"http://b/"},
                                {"ssid":"s1","link_url":"http://c/"},{"ssid":"s1","link_url":"http://d/"}])"),
              L"http://c/");
    EXPECT_EQ(urlOf(R"("links":[null,5,"x",[],{"ssid":"s1","link_url":"http://a/"}])"), L"http://a/");
    // Also where it has none.
    EXPECT_EQ(urlOf(R"("links":[{"ssid":"s1"},{"ssid":"s1","link_url":"http://d/"}],)" + kPlace),
              L"https://nas.example:8081/share.cgi?ssid=s1");
}

TEST(CGetandCreateLinkJson, AQueryGivesWayToTheId) {
    const auto linked = [](const char* url) {
        return urlOf(R"("links":[{"ssid":"s1","link_url":")" + std::string(url) + "\"}]");
    };
    EXPECT_EQ(linked("http://a/share.cgi?ssid=s1&x=1&y=2"), L"http://a/share.cgi?ssid=s1");
    EXPECT_EQ(linked("http://a/share.cgi?"), L"http://a/share.cgi?ssid=s1");
    EXPECT_EQ(linked("http://a/?x=1?ssid=s9"), L"http://a/?ssid=s1");
    EXPECT_EQ(linked("http://a/share.cgi"), L"http://a/share.cgi");
}

TEST(CGetandCreateLinkJson, WithoutAUrlItIsMadeOfProtocolHostAndPort) {
    const std::wstring made = L"https://nas.example:8081/share.cgi?ssid=s1";
    EXPECT_EQ(urlOf(kPlace), made);
    EXPECT_EQ(urlOf(R"("links":null,)" + kPlace), made);
    EXPECT_EQ(urlOf(R"("links":[],)" + kPlace), made);
    EXPECT_EQ(urlOf(R"("links":[{"ssid":"s2","link_url":"http://a/"}],)" + kPlace), made);
    EXPECT_EQ(urlOf(R"("protocol":"http","host":"h","port":80)"), L"http://h:80/share.cgi?ssid=s1");
    for (const char* keys :
         {R"("host":"h","port":80)", R"("protocol":"http","port":80)", R"("protocol":"http","host":"h")",
          R"("protocol":"","host":"h","port":80)", R"("protocol":"http","host":"","port":80)",
          R"("protocol":"http","host":"h","port":"")"})
        EXPECT_EQ(urlOf(keys), L"") << keys;
}

TEST(CGetandCreateLinkJson, TextsHaveUpTo4095Characters) {
    const std::string longest(4095, 'x');
    const CGetandCreateLinkJson reply =
        read(R"("link_name":")" + longest + R"(","expire_time":")" + longest + "x\"");
    EXPECT_EQ(reply.linkName, std::wstring(4095, L'x'));
    EXPECT_EQ(reply.expireTime, L"");
}

TEST(CGetandCreateLinkJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CGetandCreateLinkJson>(
        {R"({"status":99999999999})", R"({"link_name":[]})", R"({"expire_time":{}})", R"({"ssid":[]})",
         R"({"multiple":99999999999})", R"({"ssid":"s1","links":{}})", R"({"ssid":"s1","links":"x"})",
         R"({"ssid":"s1","links":[{"ssid":[]}]})", R"({"ssid":"s1","links":[{"ssid":"s1","link_url":{}}]})",
         R"({"ssid":"s1","host":[]})"});
}
