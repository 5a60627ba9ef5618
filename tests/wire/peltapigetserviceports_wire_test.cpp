#include <gtest/gtest.h>

#include <array>

#include "checksumcalls.h"
#include "directory.h"
#include "support/logcapture.h"

using namespace wire;

namespace {

struct PortsArgs : DirectoryArgs {
    const wchar_t* deviceID = L"attic";
    const wchar_t* secret = L"secret";
    _CLOUD_SERVICE_PORTS ports{-7, -7, -7, -7};
    _CLOUD_SERVICE_PORTS* out = &ports;

    uint32_t run() {
        return PeltAPIGetServicePorts(server, deviceID, agent, appVersion, clientID, secret, secure, 0,
                                      nullptr, nullptr, nullptr, nullptr, out);
    }
    /// Internal, then external, HTTP before HTTPS.
    std::array<int, 4> all() const {
        return {ports.nInternalHttpPort, ports.nInternalHttpsPort, ports.nExternalHttpPort,
                ports.nExternalHttpsPort};
    }
    bool isUntouched() const { return all() == std::array<int, 4>{-7, -7, -7, -7}; }
};

const char* const kGood = R"({"return":{"StatusCode":{"code":"200","message":"Access successfully."},
    "portMapping":[
        {"serviceName":"WebAdministration","subServiceName":"Plain","proto":"TCP",
         "internalPort":8080,"externalPort":18080},
        {"serviceName":"WebAdministration","subServiceName":"Secured","proto":"TCP",
         "internalPort":"8443","externalPort":"18443"}],
    "actTime":"noon"}})";

class PeltAPIGetServicePortsWire : public CloudTest<> {};

}  // namespace

TEST_F(PeltAPIGetServicePortsWire, AsksWithTheChecksumOfTheMoment) {
    PortsArgs args;
    expectChecksums(kGood, "/v1/devices/services/portMapping/attic", [&] { return args.run(); });
}

TEST_F(PeltAPIGetServicePortsWire, SendsTheDeviceAsItStands) {
    const CloudServer server({Reply::json(kGood)});
    PortsArgs args;
    args.deviceID = L"a+b%2Fc?d=e";
    args.run();
    EXPECT_EQ(server.request(0).line, "GET /v1/devices/services/portMapping/a+b%2Fc?d=e HTTP/1.1");
}

TEST_F(PeltAPIGetServicePortsWire, HandsOutTheFourPorts) {
    const CloudServer server({Reply::json(kGood)});
    PortsArgs args;
    EXPECT_EQ(args.run(), 0u);
    EXPECT_EQ(args.all(), (std::array<int, 4>{8080, 8443, 18080, 18443}));
}

TEST_F(PeltAPIGetServicePortsWire, WithoutAMappingOfTheWebServerAllPortsAre0) {
    for (
        const char* reply :
        {R"({"return":{"code":"200","portMapping":[{"serviceName":"Files","proto":"TCP","internalPort":1}]}})",
         R"({"return":{"code":"401","message":"The app id is not found."}})", "{}"}) {
        SCOPED_TRACE(reply);
        const CloudServer server({Reply::json(reply)});
        PortsArgs args;
        LogCapture log;
        EXPECT_EQ(args.run(), 0u);
        EXPECT_EQ(args.all(), (std::array<int, 4>{}));
        log.expectNoLines();
    }
}

TEST_F(PeltAPIGetServicePortsWire, AFailureLeavesTheRecordEmpty) {
    const std::string notUnderstood = "[WFM] PeltAPIGetServicePorts WFM_PARSE_XML_FAIL";
    const std::string failed = "[WFM] PeltAPIGetServicePorts FAIL(httpStatusCode=";
    const struct {
        Reply reply;
        uint32_t dwStatus;
        std::string reason;
    } rows[] = {{Reply::json("[]"), 14, notUnderstood},
                {Reply::json(R"({"return":{"portMapping":"none"}})"), 14, notUnderstood},
                {Reply::status(403, kGood), 6, failed + "403)"},
                {Reply::status(404, kGood), 6, failed + "404)"},
                {Reply::closeBeforeReply(), 2, failed + "0)"}};
    for (const auto& row : rows) {
        const CloudServer server({row.reply});
        PortsArgs args;
        LogCapture log;
        EXPECT_EQ(args.run(), row.dwStatus);
        EXPECT_EQ(args.all(), (std::array<int, 4>{}));
        log.expectLines({row.reason, "[WFM] PeltAPIGetServicePorts: failed dwStatus(" +
                                         std::to_string(row.dwStatus) + ")"});
    }
}

TEST_F(PeltAPIGetServicePortsWire, RefusesWhatIsMissing) {
    expectRefusesEach<PortsArgs>(
        "PeltAPIGetServicePorts",
        {[](PortsArgs& args) { args.deviceID = nullptr; }, [](PortsArgs& args) { args.deviceID = L""; },
         [](PortsArgs& args) { args.secret = nullptr; }, [](PortsArgs& args) { args.secret = L""; },
         [](PortsArgs& args) { args.out = nullptr; }});
}
