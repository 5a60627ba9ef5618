#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "directory.h"
#include "lists.h"
#include "support/devicerecords.h"

using namespace wire;

namespace {

using Texts = std::vector<std::wstring>;
using Link = _CLOUD_LINK_INFORMATION;

/// A link as one line of text; a zeroed one is empty.
std::string describe(const Link& link) {
    RecordWords words;
    words.number("result", link.nResultCode).text("id", link.szCloudLinkID);
    for (const std::wstring& address : textsOf(link.lppWanIPs, link.nWanIPCount))
        words.text("wan", address.c_str());
    for (const std::wstring& address : textsOf(link.lppLanIPs, link.nLanIPCount))
        words.text("lan", address.c_str());
    for (const std::wstring& address : textsOf(link.lppDdns, link.nDdnsCount))
        words.text("ddns", address.c_str());
    return words.joined();
}

struct LinkArgs : DirectoryArgs {
    const wchar_t* deviceID = L"d-1";
    Garbage<Link> garbage;
    Link* link = &garbage.record;

    ~LinkArgs() {
        if (!isUntouched()) ZenoFreeCloudInfo(&garbage.record);
    }
    uint32_t run() {
        return ZenoAPIGetCloudLinkSetting(server, agent, appVersion, clientID, token, deviceID, secure, 0,
                                          nullptr, nullptr, nullptr, nullptr, link);
    }
    bool isUntouched() const { return garbage.isUntouched(); }
    std::string text() const { return isUntouched() ? "untouched" : describe(garbage.record); }
};

class ZenoAPIGetCloudLinkSettingWire : public CloudTest<> {};

std::string replyWith(const std::string& resources) {
    return R"({"code":0,"message":"fine","result":{"resources":[)" + resources + "]}}";
}

const std::string kResources =
    R"({"protocol":"http","port":80,"type":"wan_ip","ipv4":"203.0.113.7","host":"out.example"},
       {"protocol":"http","port":"8080","type":"lan_ip","ipv4":"10.0.0.2","ipv6":"fe80::2"},
       {"protocol":"https","port":443,"type":"lan_ip","ipv4":"10.0.0.2"},
       {"protocol":"https","port":443,"type":"ddns","host":"secure.example"},
       {"protocol":"http","port":0,"type":"ddns","host":"nas.example"},
       {"protocol":"http","port":80,"type":"wan_ip","ipv4":"203.0.113.8","host":"OUT.example"},
       {"type":"cloud_link","cloud_link_id":"link-7"})";
const std::string kLink =
    "id=link-7 wan=203.0.113.7:80 wan=out.example:80 wan=203.0.113.8:80 lan=10.0.0.2:8080 lan=fe80::2:8080 "
    "ddns=nas.example";

}  // namespace

TEST_F(ZenoAPIGetCloudLinkSettingWire, AsksForTheDeviceWithItsToken) {
    for (const bool secure : {false, true}) {
        CloudServer server({Reply::json(replyWith(""))}, secure);
        LinkArgs args;
        args.secure = secure;
        EXPECT_EQ(args.run(), 0u);
        expectTokenRequest(server, "/v1.1/device/d-1/network");
    }
}

TEST_F(ZenoAPIGetCloudLinkSettingWire, SendsTheDeviceAsItStands) {
    CloudServer server({Reply::json(replyWith(""))});
    LinkArgs args;
    args.deviceID = L"a+b%2Fc";
    EXPECT_EQ(args.run(), 0u);
    EXPECT_EQ(server.onlyRequest().line, "GET /v1.1/device/a+b%2Fc/network HTTP/1.1");
}

TEST_F(ZenoAPIGetCloudLinkSettingWire, HandsOutTheListsOfHttp) {
    CloudServer server({Reply::json(replyWith(kResources))});
    LinkArgs args;
    LogCapture log(63);
    EXPECT_EQ(args.run(), 0u);
    EXPECT_EQ(args.text(), kLink);
    log.expectNoLines();
}

TEST_F(ZenoAPIGetCloudLinkSettingWire, TellsTheLogWhatItDoesNotKnow) {
    CloudServer server({Reply::json(replyWith(R"({"protocol":"ftp","port":21,"type":"wan_ip","ipv4":"a"},
                                                 {"protocol":"http","type":"vpn","ipv4":"b"},
                                                 {"type":"lan_ip","ipv4":"c"})"))});
    LinkArgs args;
    LogCapture log;
    EXPECT_EQ(args.run(), 0u);
    EXPECT_EQ(args.text(), "lan=c");
    log.expectLines({"[WFM] CZenoGetCloudLinkInfoJson::Parser Unknown protocol type (ftp)",
                     "[WFM] CZenoGetCloudLinkInfoJson::Parser Unknown IP type (vpn)"});
}

TEST_F(ZenoAPIGetCloudLinkSettingWire, ALongLinkIdIsCutAndALongAddressIsWhole) {
    CloudServer server({Reply::json(replyWith(
        R"({"type":"cloud_link","cloud_link_id":")" + std::string(300, 'i') +
        R"("},{"type":"ddns","protocol":"http","port":1,"host":")" + std::string(2000, 'h') + "\"}"))});
    LinkArgs args;
    EXPECT_EQ(args.run(), 0u);
    EXPECT_EQ(args.text(), "id=" + std::string(259, 'i') + " ddns=" + std::string(2000, 'h') + ":1");
}

TEST_F(ZenoAPIGetCloudLinkSettingWire, ARefusalIsItsStatusAndNoLists) {
    for (const RefusalCode& code : refusalCodes()) {
        CloudServer server({Reply::json(code.reply)});
        LinkArgs args;
        LogCapture log;
        EXPECT_EQ(args.run(), 0u);
        EXPECT_EQ(args.text(), "result=" + std::to_string(code.status)) << code.reply;
        log.expectNoLines();
    }
}

TEST_F(ZenoAPIGetCloudLinkSettingWire, AFailedCallLeavesTheRecordZeroed) {
    const std::string name = "[WFM] ZenoAPIGetCloudLinkSetting";
    const struct {
        Reply reply;
        uint32_t dwStatus;
        const char* word;
    } rows[] = {{Reply::status(404, replyWith(kResources)), 10, "WFM_PARSE_XML_CGI_NOT_FOUND"},
                {Reply::status(403, replyWith(kResources)), 6, "FAIL(httpStatusCode=403)"},
                {Reply::json(replyWith(kResources + R"(,{"type":[]})")), 14, "WFM_PARSE_XML_FAIL"}};
    for (const auto& row : rows) {
        CloudServer server({row.reply});
        LinkArgs args;
        LogCapture log;
        EXPECT_EQ(args.run(), row.dwStatus);
        EXPECT_EQ(args.text(), "");
        log.expectLines(
            {name + ": " + row.word, name + ": failed dwStatus(" + std::to_string(row.dwStatus) + ")"});
    }
}

TEST_F(ZenoAPIGetCloudLinkSettingWire, RefusesBadArgumentsAndTouchesNothing) {
    expectRefusesEach<LinkArgs>(
        "ZenoAPIGetCloudLinkSetting",
        {[](LinkArgs& args) { args.token = nullptr; }, [](LinkArgs& args) { args.token = L""; },
         [](LinkArgs& args) { args.deviceID = nullptr; }, [](LinkArgs& args) { args.deviceID = L""; },
         [](LinkArgs& args) { args.link = nullptr; }});
}

class ZenoFreeCloudInfoWire : public CloudTest<> {};

TEST_F(ZenoFreeCloudInfoWire, FreesTheListsLeavesTheRestAndIsSafeTwice) {
    CloudServer server({Reply::json(replyWith(kResources))});
    LinkArgs args;
    ASSERT_EQ(args.run(), 0u);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(ZenoFreeCloudInfo(args.link), 0u);
        EXPECT_EQ(args.text(), "id=link-7");
    }
}

TEST(ZenoFreeCloudInfoLists, NullAndAnEmptyRecordAreSafe) {
    EXPECT_EQ(ZenoFreeCloudInfo(nullptr), 0u);
    Link link{};
    EXPECT_EQ(ZenoFreeCloudInfo(&link), 0u);
    EXPECT_EQ(describe(link), "");
}

TEST(ZenoFreeCloudInfoLists, ListsMayHaveNullEntriesAndCountsMayBeWrong) {
    Link link{};
    link.nWanIPCount = 2;
    link.lppWanIPs = new wchar_t* [2] {
        nullptr, new wchar_t[2] {
            L'a', L'\0'
        }
    };
    link.nLanIPCount = -1;
    link.lppLanIPs = new wchar_t* [1] {};
    link.nDdnsCount = 5;
    EXPECT_EQ(ZenoFreeCloudInfo(&link), 0u);
    EXPECT_EQ(describe(link), "");
}
