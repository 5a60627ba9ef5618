#include <gtest/gtest.h>

#include "tokencalls.h"

using namespace wire;

namespace {

class ZenoAPIAPPRefreshTokenWire : public CloudTest<> {};

}  // namespace

TEST_F(ZenoAPIAPPRefreshTokenWire, SendsTheRefreshTokenLastAndHandsOutTheToken) {
    const CloudServer server({Reply::json(kNewToken)});
    RefreshArgs args;
    EXPECT_EQ(args.run(), 0u);
    expectNewToken(args);
    expectCloudForm(server, "/oauth/token",
                    {{"grant_type", "refresh_token"},
                     {"client_id", "desk-app"},
                     {"client_secret", "s%20e%26c%2Fret"},
                     {"refresh_token", "re%3Dfresh"}},
                    appHeaders());
}

TEST_F(ZenoAPIAPPRefreshTokenWire, RefusesWhatIsMissing) {
    expectRefusesEach<RefreshArgs>(
        "ZenoAPIAPPRefreshToken",
        {[](RefreshArgs& args) { args.refreshToken = nullptr; },
         [](RefreshArgs& args) { args.refreshToken = L""; }, [](RefreshArgs& args) { args.secret = nullptr; },
         [](RefreshArgs& args) { args.secret = L""; }, [](RefreshArgs& args) { args.out = nullptr; }});
}
