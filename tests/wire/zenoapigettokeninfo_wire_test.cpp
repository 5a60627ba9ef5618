#include <gtest/gtest.h>

#include "tokencalls.h"

using namespace wire;

namespace {

const char* const kOwner =
    R"({"user_id":"7001","user":{"display_name":"Änne","email":"aenne@example.org"},"expires_in":"120",
        "access_token":"not here","email":"nor here"})";

class ZenoAPIGetTokenInfoWire : public CloudTest<> {};

}  // namespace

TEST_F(ZenoAPIGetTokenInfoWire, SendsTheTokenInTheUrlAndHandsOutItsOwner) {
    const CloudServer server({Reply::json(kOwner)});
    TokenInfoArgs args;
    EXPECT_EQ(args.run(), 0u);
    expectTokenRequest(server, "/oauth/tokeninfo?access_token=token-1");
    const _CLOUD_TOKEN_INFORMATION& record = args.record;
    EXPECT_STREQ(record.user_id, L"7001");
    EXPECT_STREQ(record.display_name, L"Änne");
    EXPECT_STREQ(record.email, L"aenne@example.org");
    EXPECT_EQ(record.expires_in, 120);
    for (const wchar_t* empty : {record.error, record.error_description, record.access_token,
                                 record.token_type, record.refresh_token})
        EXPECT_STREQ(empty, L"");
}

TEST_F(ZenoAPIGetTokenInfoWire, EncodesNothingOfTheToken) {
    const CloudServer server({Reply::json(kOwner)});
    TokenInfoArgs args;
    args.token = L"a%2Bb~c&d=e";
    EXPECT_EQ(args.run(), 0u);
    EXPECT_EQ(server.onlyRequest().target(), "/oauth/tokeninfo?access_token=a%2Bb~c&d=e");
}

TEST_F(ZenoAPIGetTokenInfoWire, DoesNotLookAtTheTokenInfoArgument) {
    for (const wchar_t* text : {static_cast<const wchar_t*>(nullptr), L"", L"whatever"}) {
        const CloudServer server({Reply::json(kOwner)});
        TokenInfoArgs args;
        args.tokenInfo = text;
        EXPECT_EQ(args.run(), 0u);
        expectTokenRequest(server, "/oauth/tokeninfo?access_token=token-1");
    }
}

TEST_F(ZenoAPIGetTokenInfoWire, RefusesWhatIsMissing) {
    expectRefusesEach<TokenInfoArgs>(
        "ZenoAPIGetTokenInfo",
        {[](TokenInfoArgs& args) { args.token = nullptr; }, [](TokenInfoArgs& args) { args.token = L""; },
         [](TokenInfoArgs& args) { args.out = nullptr; }});
}
