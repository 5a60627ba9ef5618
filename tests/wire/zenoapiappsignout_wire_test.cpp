#include <gtest/gtest.h>

#include "support/logcapture.h"
#include "tokencalls.h"

using namespace wire;

namespace {

struct SignOutArgs : DirectoryArgs {
    uint32_t run() {
        return ZenoAPIAPPSignOut(server, token, agent, appVersion, clientID, secure, 0, nullptr, nullptr,
                                 nullptr);
    }
    bool isUntouched() const { return true; }
};

class ZenoAPIAPPSignOutWire : public CloudTest<> {};

}  // namespace

TEST_F(ZenoAPIAPPSignOutWire, SendsTheTokenAsFieldAndHeader) {
    const CloudServer server({Reply::json("{}")});
    SignOutArgs args;
    EXPECT_EQ(args.run(), 0u);
    HeaderList headers = appHeaders();
    headers.emplace_back("Authorization", "Bearer token-1");
    expectCloudForm(server, "/oauth/signout", {{"access_token", "token-1"}}, headers);
}

TEST_F(ZenoAPIAPPSignOutWire, DoesNotLookAtTheAnswer) {
    for (const Reply& reply : {Reply::json(R"({"error":"invalid_token"})"), Reply::json(""),
                               Reply::text("gone"), Reply::status(204), Reply::redirect("/elsewhere")}) {
        const CloudServer server({reply});
        SignOutArgs args;
        LogCapture log;
        EXPECT_EQ(args.run(), 0u);
        log.expectNoLines();
    }
}

TEST_F(ZenoAPIAPPSignOutWire, RefusesWhatIsMissing) {
    expectRefusesEach<SignOutArgs>("ZenoAPIAPPSignOut", {[](SignOutArgs& args) { args.token = nullptr; },
                                                         [](SignOutArgs& args) { args.token = L""; }});
}
