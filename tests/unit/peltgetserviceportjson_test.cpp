#include "cloud/PeltGetServicePortJson.h"

#include <gtest/gtest.h>

#include <array>

#include "parsing.h"

namespace {

/// Internal, then external, HTTP before HTTPS.
std::array<int, 4> portsOf(const CPeltGetServicePortJson& reply) {
    return {reply.GetInternalHttpPort(), reply.GetInternalHttpsPort(), reply.GetExternalHttpPort(),
            reply.GetExternalHttpsPort()};
}

std::array<int, 4> portsOf(const std::string& mapping) {
    CPeltGetServicePortJson reply;
    EXPECT_EQ(parse(reply, R"({"return":{"portMapping":)" + mapping + "}}"), 1) << mapping;
    return portsOf(reply);
}

/// An entry of the web server over TCP, with more keys.
std::string entry(const std::string& more) {
    return R"({"serviceName":"WebAdministration","proto":"TCP",)" + more + "}";
}

using Ports = std::array<int, 4>;

}  // namespace

TEST(CPeltGetServicePortJson, BeginsWithNothingLearnt) {
    const CPeltGetServicePortJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_EQ(portsOf(reply), Ports{});
}

TEST(CPeltGetServicePortJson, ReadsStatusMessageAndTime) {
    CPeltGetServicePortJson reply;
    EXPECT_EQ(parse(reply, R"({"return":{"StatusCode":{"code":"200","message":"fine"},"actTime":"noon"}})"),
              1);
    EXPECT_EQ(reply.GetStatus(), 0);
    EXPECT_EQ(reply.GetMessage(), L"fine");
    EXPECT_EQ(reply.GetactTime(), L"noon");
    EXPECT_EQ(parse(reply, R"({"return":{"code":"401","message":"no"}})"), 1);
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_EQ(reply.GetMessage(), L"no");
}

TEST(CPeltGetServicePortJson, FillsOnePairByTheSecuredEntryAndTheOtherByAnyOther) {
    const std::string plain = entry(R"("internalPort":8080,"externalPort":"18080")");
    const std::string secured =
        entry(R"("subServiceName":"Secured","internalPort":"8443","externalPort":18443)");
    EXPECT_EQ(portsOf("[" + plain + "]"), (Ports{8080, 0, 18080, 0}));
    EXPECT_EQ(portsOf("[" + secured + "]"), (Ports{0, 8443, 0, 18443}));
    EXPECT_EQ(portsOf("[" + secured + "," + plain + "]"), (Ports{8080, 8443, 18080, 18443}));
    EXPECT_EQ(portsOf("[" + entry(R"("subServiceName":"secured","internalPort":1)") + "]"),
              (Ports{1, 0, 0, 0}));
    EXPECT_EQ(portsOf("[" + plain + "," + entry(R"("internalPort":2,"externalPort":3)") + "]"),
              (Ports{2, 0, 3, 0}));
}

TEST(CPeltGetServicePortJson, PassesOverWhatIsNotTheWebServerOverTcp) {
    for (const char* other :
         {R"({"serviceName":"WebAdministration","proto":"UDP","internalPort":1,"externalPort":2})",
          R"({"serviceName":"WebAdministration","proto":"tcp","internalPort":1})",
          R"({"serviceName":"WebAdministration","internalPort":1})",
          R"({"serviceName":"Files","proto":"TCP","internalPort":1})", R"({"proto":"TCP","internalPort":1})",
          "{}", "null"}) {
        SCOPED_TRACE(other);
        EXPECT_EQ(portsOf("[" + std::string(other) + "]"), Ports{});
        EXPECT_EQ(portsOf("[" + std::string(other) + "," + entry(R"("internalPort":80)") + "]"),
                  (Ports{80, 0, 0, 0}));
    }
    EXPECT_EQ(portsOf("[]"), Ports{});
    EXPECT_EQ(portsOf("null"), Ports{});
}

TEST(CPeltGetServicePortJson, AMappingOutsideOfReturnDoesNotCount) {
    CPeltGetServicePortJson reply;
    EXPECT_EQ(parse(reply, R"({"portMapping":[)" + entry(R"("internalPort":80)") + "]}"), 1);
    EXPECT_EQ(portsOf(reply), Ports{});
    EXPECT_EQ(reply.GetStatus(), -1);
}

TEST(CPeltGetServicePortJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CPeltGetServicePortJson>(
        {R"({"return":"no"})", R"({"return":{"StatusCode":[]}})", R"({"return":{"portMapping":["x"]}})",
         R"({"return":{"portMapping":"none"}})", R"({"return":{"portMapping":{}}})",
         R"({"return":{"portMapping":[)" + entry(R"("internalPort":99999999999)") + "]}}"});
}
