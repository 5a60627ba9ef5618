#include <gtest/gtest.h>

#include "tokencalls.h"

using namespace wire;

namespace {

class ZenoAPIAPPSigninWire : public CloudTest<> {};

}  // namespace

TEST_F(ZenoAPIAPPSigninWire, SendsTheApplicationsOwnCredentialAndHandsOutTheToken) {
    for (const bool secure : {false, true}) {
        const CloudServer server({Reply::json(kNewToken)}, secure);
        SigninArgs args;
        args.secure = secure;
        EXPECT_EQ(args.run(), 0u);
        expectNewToken(args);
        expectCloudForm(server, "/oauth/token",
                        {{"grant_type", "client_credentials"},
                         {"client_id", "desk-app"},
                         {"client_secret", "s%20e%26c%2Fret"}},
                        appHeaders());
    }
}

TEST_F(ZenoAPIAPPSigninWire, RefusesWhatIsMissing) {
    expectRefusesEach<SigninArgs>("ZenoAPIAPPSignin", {[](SigninArgs& args) { args.secret = nullptr; },
                                                       [](SigninArgs& args) { args.secret = L""; },
                                                       [](SigninArgs& args) { args.out = nullptr; }});
}
