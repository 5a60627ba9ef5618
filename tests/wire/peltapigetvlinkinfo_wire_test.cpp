#include <gtest/gtest.h>

#include <algorithm>

#include "checksumcalls.h"
#include "directory.h"
#include "support/logcapture.h"

using namespace wire;

namespace {

struct LinkArgs : DirectoryArgs {
    const wchar_t* deviceID = L"attic";
    const wchar_t* secret = L"secret";
    _CLOUD_VLINK_INFORMATION link;
    _CLOUD_VLINK_INFORMATION* out = &link;

    LinkArgs() { std::fill_n(reinterpret_cast<char*>(&link), sizeof link, 'x'); }
    uint32_t run() {
        return PeltAPIGetVLinkInfo(server, deviceID, agent, appVersion, clientID, secret, secure, 0, nullptr,
                                   nullptr, nullptr, nullptr, out);
    }
    bool isFilledWith(char c) const {
        const char* bytes = reinterpret_cast<const char*>(&link);
        return std::all_of(bytes, bytes + sizeof link, [c](char byte) { return byte == c; });
    }
    bool isUntouched() const { return isFilledWith('x'); }
};

const char* const kGood =
    R"({"return":{"StatusCode":{"code":"200","message":"Access successfully."},"vlinkId":"L-1",
        "vlinkType":"2","vlinkVersion":"1","lanIp":"10.0.0.2,10.0.0.3","lanGW":"10.0.0.1",
        "wanIp":"192.0.2.7","actTime":"2026-11-22 07:00"}})";

class PeltAPIGetVLinkInfoWire : public CloudTest<> {};

}  // namespace

TEST_F(PeltAPIGetVLinkInfoWire, AsksWithTheChecksumOfTheMoment) {
    LinkArgs args;
    expectChecksums(kGood, "/v1/services/vlink/attic", [&] { return args.run(); });
}

TEST_F(PeltAPIGetVLinkInfoWire, SendsTheDeviceAsItStands) {
    const CloudServer server({Reply::json(kGood)});
    LinkArgs args;
    args.deviceID = L"a+b%2Fc?d=e";
    args.run();
    EXPECT_EQ(server.request(0).line, "GET /v1/services/vlink/a+b%2Fc?d=e HTTP/1.1");
}

TEST_F(PeltAPIGetVLinkInfoWire, HandsOutTheLink) {
    const CloudServer server({Reply::json(kGood)});
    LinkArgs args;
    EXPECT_EQ(args.run(), 0u);
    EXPECT_EQ(args.link.nReplyCode, 0);
    EXPECT_EQ(args.link.nHttpCode, 200);
    EXPECT_STREQ(args.link.szActionTime, L"2026-11-22 07:00");
    EXPECT_STREQ(args.link.szVLinkID, L"L-1");
    EXPECT_STREQ(args.link.szWANIP, L"192.0.2.7");
    EXPECT_STREQ(args.link.szLANIPs, L"10.0.0.2,10.0.0.3");
    EXPECT_STREQ(args.link.szGatewayIP, L"10.0.0.1");
    EXPECT_STREQ(args.link.szMessage, L"Access successfully.");
}

TEST_F(PeltAPIGetVLinkInfoWire, ARefusalIsAReplyAndIsNotAskedAgain) {
    const struct {
        const char* reply;
        int replyCode, httpCode;
        const wchar_t* message;
    } rows[] = {
        {R"({"return":{"StatusCode":{"code":"401","message":"The app id is not found."}}})", 7, 401,
         L"The app id is not found."},
        {R"({"return":{"code":"403","message":"X-VEXA-TIME is invalid."}})", 2, 403,
         L"X-VEXA-TIME is invalid."},
        {R"({"return":{"code":404,"message":"The vlink configuration is not found."}})", 6, 404,
         L"The vlink configuration is not found."},
        {R"({"return":{}})", 1, 0, L""},
        {"{}", 1, 0, L""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        const CloudServer server({Reply::json(row.reply)});
        LinkArgs args;
        LogCapture log;
        EXPECT_EQ(args.run(), 0u);
        EXPECT_EQ(args.link.nReplyCode, row.replyCode);
        EXPECT_EQ(args.link.nHttpCode, row.httpCode);
        EXPECT_STREQ(args.link.szMessage, row.message);
        EXPECT_STREQ(args.link.szVLinkID, L"");
        EXPECT_STREQ(args.link.szLANIPs, L"");
        EXPECT_EQ(server.requestCount(), 1u);
        log.expectNoLines();
    }
}

TEST_F(PeltAPIGetVLinkInfoWire, CutsTextsToTheirFields) {
    const std::string text(5000, 'w');
    std::string reply = R"({"return":{"code":"200","message":"#","vlinkId":"#","lanIp":"#","lanGW":"#",
        "wanIp":"#","actTime":"#"}})";
    for (size_t at = reply.find('#'); at != std::string::npos; at = reply.find('#', at))
        reply.replace(at, 1, text);
    const CloudServer server({Reply::json(reply)});
    LinkArgs args;
    EXPECT_EQ(args.run(), 0u);
    EXPECT_EQ(args.link.szActionTime, std::wstring(259, L'w'));
    EXPECT_EQ(args.link.szVLinkID, std::wstring(259, L'w'));
    EXPECT_EQ(args.link.szWANIP, std::wstring(259, L'w'));
    EXPECT_EQ(args.link.szLANIPs, std::wstring(2079, L'w'));
    EXPECT_EQ(args.link.szGatewayIP, std::wstring(259, L'w'));
    EXPECT_EQ(args.link.szMessage, std::wstring(259, L'w'));
}

TEST_F(PeltAPIGetVLinkInfoWire, AFailureLeavesTheRecordEmpty) {
    const std::string notUnderstood = "[WFM] PeltAPIGetVLinkInfo WFM_PARSE_XML_FAIL";
    const std::string failed = "[WFM] PeltAPIGetVLinkInfo FAIL(httpStatusCode=";
    const struct {
        Reply reply;
        uint32_t dwStatus;
        std::string reason;
    } rows[] = {{Reply::json("[]"), 14, notUnderstood},
                {Reply::json(R"({"return":{"code":"200","vlinkId":[]}})"), 14, notUnderstood},
                {Reply::status(403, kGood), 6, failed + "403)"},
                {Reply::status(404, kGood), 6, failed + "404)"},
                {Reply::closeBeforeReply(), 2, failed + "0)"}};
    for (const auto& row : rows) {
        const CloudServer server({row.reply});
        LinkArgs args;
        LogCapture log;
        EXPECT_EQ(args.run(), row.dwStatus);
        EXPECT_TRUE(args.isFilledWith('\0'));
        log.expectLines(
            {row.reason, "[WFM] PeltAPIGetVLinkInfo: failed dwStatus(" + std::to_string(row.dwStatus) + ")"});
    }
}

TEST_F(PeltAPIGetVLinkInfoWire, RefusesWhatIsMissing) {
    expectRefusesEach<LinkArgs>(
        "PeltAPIGetVLinkInfo",
        {[](LinkArgs& args) { args.deviceID = nullptr; }, [](LinkArgs& args) { args.deviceID = L""; },
         [](LinkArgs& args) { args.secret = nullptr; }, [](LinkArgs& args) { args.secret = L""; },
         [](LinkArgs& args) { args.out = nullptr; }});
}
