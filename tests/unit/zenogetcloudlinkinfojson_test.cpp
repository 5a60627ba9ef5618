#include "cloud/ZenoGetCloudLinkInfoJson.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cloudcodes.h"
#include "support/logcapture.h"

namespace {

using Texts = std::vector<std::wstring>;

CZenoGetCloudLinkInfoJson read(const std::string& resources, const std::string& code = "0") {
    CZenoGetCloudLinkInfoJson reply;
    EXPECT_EQ(parse(reply, R"({"code":)" + code + R"(,"result":{"resources":[)" + resources + "]}}"), 1)
        << resources.substr(0, 200);
    return reply;
}

void expectNothing(const CZenoGetCloudLinkInfoJson& reply) {
    for (const auto& addresses : {reply.http, reply.https})
        for (const auto& list : {addresses.wan, addresses.lan, addresses.ddns})
            EXPECT_EQ(list.all(), Texts{});
    EXPECT_EQ(reply.cloudLinkID, L"");
}

/// The addresses of one resource from outside, by HTTP.
Texts wanOf(const std::string& keys) {
    return read(R"({"type":"wan_ip",)" + keys + "}").http.wan.all();
}

const std::string kProtocolLine = "[WFM] CZenoGetCloudLinkInfoJson::Parser Unknown protocol type ";
const std::string kTypeLine = "[WFM] CZenoGetCloudLinkInfoJson::Parser Unknown IP type ";

}  // namespace

TEST(CZenoGetCloudLinkInfoJson, BeginsWithNothingLearnt) {
    expectNothing(CZenoGetCloudLinkInfoJson());
}

TEST(CZenoGetCloudLinkInfoJson, TellsTheCode) {
    expectReadsCodes<CZenoGetCloudLinkInfoJson>();
}

TEST(CZenoGetCloudLinkInfoJson, EachTypeHasItsList) {
    LogCapture log;
    const CZenoGetCloudLinkInfoJson reply = read(
        R"({"protocol":"http","port":80,"type":"wan_ip","ipv4":"203.0.113.7","host":"out.example"},
           {"protocol":"http","port":"8080","type":"lan_ip","ipv4":"10.0.0.2","ipv6":"fe80::2"},
           {"protocol":"http","port":81,"type":"ddns","host":"nas.example"},
           {"protocol":"https","port":443,"type":"wan_ip","ipv4":"203.0.113.7"},
           {"protocol":"https","port":8443,"type":"lan_ip","ipv4":"10.0.0.2"},
           {"protocol":"https","port":444,"type":"ddns","host":"nas.example"},
           {"type":"cloud_link","cloud_link_id":"link-7"})");
    EXPECT_EQ(reply.http.wan.all(), (Texts{L"203.0.113.7:80", L"out.example:80"}));
    EXPECT_EQ(reply.http.lan.all(), (Texts{L"10.0.0.2:8080", L"fe80::2:8080"}));
    EXPECT_EQ(reply.http.ddns.all(), Texts{L"nas.example:81"});
    EXPECT_EQ(reply.https.wan.all(), Texts{L"203.0.113.7:443"});
    EXPECT_EQ(reply.https.lan.all(), Texts{L"10.0.0.2:8443"});
    EXPECT_EQ(reply.https.ddns.all(), Texts{L"nas.example:444"});
    EXPECT_EQ(reply.cloudLinkID, L"link-7");
    log.expectNoLines();
}

TEST(CZenoGetCloudLinkInfoJson, AResourceNamesUpToThreeAddressesInThisOrder) {
    EXPECT_EQ(wanOf(R"("protocol":"http","port":80,"host":"h","ipv6":"v6","ipv4":"v4")"),
              (Texts{L"v4:80", L"v6:80", L"h:80"}));
    EXPECT_EQ(wanOf(R"("protocol":"http","port":80,"host":"","ipv6":null,"ipv4":"v4")"), Texts{L"v4:80"});
    EXPECT_EQ(wanOf(R"("protocol":"http","port":80)"), Texts{});
}

TEST(CZenoGetCloudLinkInfoJson, WithoutProtocolOrPortTheAddressStandsAlone) {
    LogCapture log;
    for (const char* keys :
         {R"("protocol":"http","port":0)", R"("protocol":"http")", R"("protocol":"http","port":null)",
          R"("protocol":"http","port":[])", R"("protocol":"http","port":"")", R"("port":80)",
          R"("protocol":"","port":80)", R"("protocol":null,"port":80)"})
        EXPECT_EQ(wanOf(keys + std::string(R"(,"ipv4":"v4")")), Texts{L"v4"}) << keys;
    log.expectNoLines();
}

TEST(CZenoGetCloudLinkInfoJson, AnAddressIsListedOnce) {
    const std::string resource = R"({"protocol":"http","port":80,"type":"wan_ip",)";
    const CZenoGetCloudLinkInfoJson reply =
        read(resource + R"("ipv4":"v4","host":"NAS.example"},)" + resource +
             R"("ipv4":"v4","ipv6":"nas.EXAMPLE","host":"other"},)"
             R"({"protocol":"http","port":81,"type":"wan_ip","ipv4":"v4"},
                {"protocol":"http","type":"wan_ip","ipv4":"v4"},
                {"protocol":"http","port":80,"type":"lan_ip","ipv4":"v4"},
                {"protocol":"https","port":80,"type":"wan_ip","ipv4":"v4"})");
    EXPECT_EQ(reply.http.wan.all(), (Texts{L"v4:80", L"NAS.example:80", L"other:80", L"v4:81", L"v4"}));
    EXPECT_EQ(reply.http.lan.all(), Texts{L"v4:80"});
    EXPECT_EQ(reply.https.wan.all(), Texts{L"v4:80"});
}

TEST(CZenoGetCloudLinkInfoJson, AnUnknownProtocolIsLoggedAndNotListed) {
    LogCapture log;
    for (const char* protocol : {"ftp", "HTTP", "http "})
        expectNothing(
            read(R"({"protocol":")" + std::string(protocol) + R"(","port":21,"type":"wan_ip","ipv4":"v4"})"));
    log.expectLines({kProtocolLine + "(ftp)", kProtocolLine + "(HTTP)", kProtocolLine + "(http )"});
}

TEST(CZenoGetCloudLinkInfoJson, AnUnknownTypeIsLoggedAndNotListed) {
    LogCapture log;
    for (const char* type : {R"("WAN_IP")", R"("vpn")", "\"\"", "null", "7"})
        expectNothing(read(R"({"protocol":"http","port":80,"ipv4":"v4","cloud_link_id":"x","type":)" +
                           std::string(type) + "}"));
    expectNothing(read(R"({"protocol":"ftp","ipv4":"v4"})"));
    log.expectLines({kTypeLine + "(WAN_IP)", kTypeLine + "(vpn)", kTypeLine + "()", kTypeLine + "()",
                     kTypeLine + "(7)", kProtocolLine + "(ftp)", kTypeLine + "()"});
}

TEST(CZenoGetCloudLinkInfoJson, ACloudLinkHasAnIdAndNoAddresses) {
    LogCapture log;
    const CZenoGetCloudLinkInfoJson reply =
        read(R"({"type":"cloud_link","cloud_link_id":"link-7","protocol":"http","port":80,"ipv4":"v4"})");
    EXPECT_EQ(reply.cloudLinkID, L"link-7");
    EXPECT_EQ(reply.http.wan.all(), Texts{});
    expectNothing(read(R"({"type":"cloud_link"})"));
    EXPECT_EQ(read(R"({"type":"cloud_link","cloud_link_id":"a"},{"type":"cloud_link"})").cloudLinkID, L"a");
    EXPECT_EQ(read(R"({"type":"cloud_link","cloud_link_id":"a"},{"type":"cloud_link","cloud_link_id":"b"})")
                  .cloudLinkID,
              L"b");
    EXPECT_EQ(read(R"({"type":"cloud_link","cloud_link_id":")" + std::string(2048, 'x') + "\"}").cloudLinkID,
              L"");
    log.expectNoLines();
    EXPECT_EQ(read(R"({"type":"cloud_link","cloud_link_id":"x","protocol":"relay"})").cloudLinkID, L"x");
    log.expectLines({kProtocolLine + "(relay)"});
}

TEST(CZenoGetCloudLinkInfoJson, ListsMayBeMissing) {
    for (const char* keys : {"", R"(,"result":null)", R"(,"result":{})", R"(,"result":{"resources":null})",
                             R"(,"result":{"resources":[]})", R"(,"resources":[{"ipv4":"v4"}])"}) {
        CZenoGetCloudLinkInfoJson reply;
        EXPECT_EQ(parse(reply, R"({"code":0)" + std::string(keys) + "}"), 1) << keys;
        EXPECT_EQ(reply.GetStatus(), 0);
        expectNothing(reply);
    }
}

TEST(CZenoGetCloudLinkInfoJson, ARefusalHasNoAddresses) {
    LogCapture log;
    expectNothing(read(R"({"protocol":"http","port":80,"type":"wan_ip","ipv4":"v4"},
                          {"protocol":"ftp","type":"vpn"},{"type":"cloud_link","cloud_link_id":"x"})",
                       "1013002"));
    log.expectNoLines();
    CZenoGetCloudLinkInfoJson reply;
    EXPECT_EQ(parse(reply, R"({"code":1070001,"result":"none"})"), 1);
    EXPECT_EQ(reply.GetStatus(), 5);
}

TEST(CZenoGetCloudLinkInfoJson, WhatIsNoObjectIsPassedOver) {
    LogCapture log;
    EXPECT_EQ(read(R"(null,5,"x",[],{"type":"wan_ip","ipv4":"v4"},true)").http.wan.all(), Texts{L"v4"});
    log.expectNoLines();
}

TEST(CZenoGetCloudLinkInfoJson, TextsHaveUpTo2047CharactersAndWhatIsNoUtf8IsReplaced) {
    const auto addressed = [](const std::string& text) { return wanOf("\"ipv4\":\"" + text + "\""); };
    EXPECT_EQ(addressed(std::string(2047, 'x')), Texts{std::wstring(2047, L'x')});
    EXPECT_EQ(addressed(std::string(2048, 'x')), Texts{});
    EXPECT_EQ(addressed("a\xFF z"), Texts{L"a\xFFFD z"});
    EXPECT_EQ(addressed("書"), Texts{L"\x66F8"});
}

TEST(CZenoGetCloudLinkInfoJson, ManyAddressesAreKept) {
    std::string resources;
    for (int i = 0; i < 5000; ++i)
        resources +=
            (i > 0 ? "," : "") + (R"({"type":"lan_ip","ipv4":"h)" + std::to_string(i % 2500) + "\"}");
    EXPECT_EQ(read(resources).http.lan.all().size(), 2500u);
}

TEST(CZenoGetCloudLinkInfoJson, RefusesWhatCannotBeRead) {
    const auto resource = [](const std::string& keys) {
        return R"({"code":0,"result":{"resources":[{"type":"wan_ip",)" + keys + "}]}}";
    };
    expectRefusesAllButObjects<CZenoGetCloudLinkInfoJson>(
        {R"({"code":99999999999})", R"({"code":0,"result":[]})", R"({"code":0,"result":"x"})",
         R"({"code":0,"result":{"resources":{}}})", R"({"code":0,"result":{"resources":"x"}})",
         resource(R"("protocol":[])"), resource(R"("protocol":"http","port":99999999999)"),
         resource(R"("ipv4":{})"), resource(R"("ipv6":[])"), resource(R"("host":[])"),
         R"({"code":0,"result":{"resources":[{"type":{}}]}})",
         R"({"code":0,"result":{"resources":[{"type":"cloud_link","cloud_link_id":[]}]}})"});
}
