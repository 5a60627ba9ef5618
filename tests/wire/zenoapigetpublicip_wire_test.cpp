#include <gtest/gtest.h>

#include <string>

#include "directory.h"

using namespace wire;

namespace {

constexpr int kDebugAndErrors = 4 | 32;

struct PublicIPArgs : DirectoryArgs {
    std::wstring buffer = std::wstring(300, L'x');
    wchar_t* publicIP = buffer.data();

    uint32_t run() {
        return ZenoAPIGetPublicIP(server, agent, appVersion, clientID, token, secure, 0, nullptr, nullptr,
                                  nullptr, nullptr, publicIP);
    }
    bool isUntouched() const { return buffer == std::wstring(300, L'x'); }
    std::wstring text() const { return buffer.c_str(); }
};

class ZenoAPIGetPublicIPWire : public CloudTest<> {};

}  // namespace

TEST_F(ZenoAPIGetPublicIPWire, AsksWithItsTokenAndHandsOutTheAddress) {
    for (const bool secure : {false, true}) {
        CloudServer server({Reply::json(R"({"code":0,"message":"m","result":{"public_ip":"203.0.113.7"}})")},
                           secure);
        PublicIPArgs args;
        args.secure = secure;
        LogCapture log(kDebugAndErrors);
        EXPECT_EQ(args.run(), 0u);
        EXPECT_EQ(args.text(), L"203.0.113.7");
        expectTokenRequest(server, "/v1.1/utility/geo/search");
        log.expectLines({{"Debug", "[WFM] ZenoAPIGetPublicIP PublicIP(203.0.113.7)"}});
    }
}

TEST_F(ZenoAPIGetPublicIPWire, ALongTextIsCutAt259Characters) {
    for (const size_t length : {size_t{259}, size_t{260}, size_t{2000}}) {
        CloudServer server(
            {Reply::json(R"({"code":0,"result":{"public_ip":")" + std::string(length, '7') + "\"}}")});
        PublicIPArgs args;
        EXPECT_EQ(args.run(), 0u);
        EXPECT_EQ(args.text(), std::wstring(259, L'7'));
        EXPECT_EQ(args.buffer.substr(260), std::wstring(40, L'x'));
    }
}

TEST_F(ZenoAPIGetPublicIPWire, ARefusalLeavesAnEmptyText) {
    for (const char* reply :
         {R"({"code":1013001,"result":{"public_ip":"203.0.113.7"}})", R"({"code":7,"message":"no"})",
          R"({"result":{"public_ip":"203.0.113.7"}})", R"({"code":0})"}) {
        CloudServer server({Reply::json(reply)});
        PublicIPArgs args;
        LogCapture log(kDebugAndErrors);
        EXPECT_EQ(args.run(), 0u);
        EXPECT_EQ(args.text(), L"") << reply;
        log.expectLines({{"Debug", "[WFM] ZenoAPIGetPublicIP PublicIP()"}});
    }
}

TEST_F(ZenoAPIGetPublicIPWire, AFailedCallLeavesAnEmptyText) {
    CloudServer server({Reply::status(404, R"({"code":0,"result":{"public_ip":"203.0.113.7"}})"),
                        Reply::json(R"({"code":0,"result":"x"})")});
    LogCapture log(kDebugAndErrors);
    PublicIPArgs missing, broken;
    EXPECT_EQ(missing.run(), 6u);
    EXPECT_EQ(missing.text(), L"");
    EXPECT_EQ(broken.run(), 14u);
    EXPECT_EQ(broken.text(), L"");
    log.expectLines(
        {"[WFM] ZenoAPIGetPublicIP: FAIL(httpStatusCode=404)", "[WFM] ZenoAPIGetPublicIP: failed dwStatus(6)",
         "[WFM] ZenoAPIGetPublicIP: WFM_PARSE_XML_FAIL", "[WFM] ZenoAPIGetPublicIP: failed dwStatus(14)"});
}

TEST_F(ZenoAPIGetPublicIPWire, RefusesBadArgumentsAndTouchesNothing) {
    expectRefusesEach<PublicIPArgs>(
        "ZenoAPIGetPublicIP",
        {[](PublicIPArgs& args) { args.token = nullptr; }, [](PublicIPArgs& args) { args.token = L""; },
         [](PublicIPArgs& args) { args.publicIP = nullptr; }});
}
