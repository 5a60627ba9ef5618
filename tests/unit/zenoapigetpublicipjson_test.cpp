#include "cloud/ZenoAPIGetPublicIPJson.h"

#include <gtest/gtest.h>

#include <string>

#include "cloudcodes.h"

namespace {

CZenoAPIGetPublicIPJson read(const std::string& keys) {
    CZenoAPIGetPublicIPJson reply;
    EXPECT_EQ(parse(reply, "{" + keys + "}"), 1) << keys.substr(0, 200);
    return reply;
}

/// What becomes of an address.
std::wstring addressOf(const std::string& value) {
    return read(R"("code":0,"result":{"public_ip":)" + value + "}").publicIP;
}

}  // namespace

TEST(CZenoAPIGetPublicIPJson, TellsTheCode) {
    expectReadsCodes<CZenoAPIGetPublicIPJson>();
}

TEST(CZenoAPIGetPublicIPJson, ReadsMessageAndAddress) {
    const CZenoAPIGetPublicIPJson reply =
        read(R"("code":0,"message":"as you wish \u66f8","result":{"public_ip":"203.0.113.7","country":"x"})");
    EXPECT_EQ(reply.message, L"as you wish \x66F8");
    EXPECT_EQ(reply.publicIP, L"203.0.113.7");
}

TEST(CZenoAPIGetPublicIPJson, EveryKeyIsOptional) {
    for (const char* keys :
         {R"("code":0)", R"("code":0,"result":null,"message":null)", R"("code":0,"result":{})",
          R"("code":0,"result":{"public_ip":null})", R"("code":0,"public_ip":"203.0.113.7")"}) {
        const CZenoAPIGetPublicIPJson reply = read(keys);
        EXPECT_EQ(reply.GetStatus(), 0) << keys;
        EXPECT_EQ(reply.message + reply.publicIP, L"") << keys;
    }
}

TEST(CZenoAPIGetPublicIPJson, ARefusalHasNoAddress) {
    for (const char* code : {"1013001", "1", "null"}) {
        const CZenoAPIGetPublicIPJson reply = read(R"("code":)" + std::string(code) +
                                                   R"(,"message":"no","result":{"public_ip":"203.0.113.7"})");
        EXPECT_EQ(reply.publicIP, L"") << code;
        EXPECT_EQ(reply.message, L"no") << code;
    }
    EXPECT_EQ(read(R"("code":1013001,"result":"none")").GetStatus(), 3);
}

TEST(CZenoAPIGetPublicIPJson, TextsHaveUpTo2047CharactersAndWhatIsNoUtf8IsReplaced) {
    EXPECT_EQ(addressOf("\"" + std::string(2047, 'x') + "\""), std::wstring(2047, L'x'));
    EXPECT_EQ(addressOf("\"" + std::string(2048, 'x') + "\""), L"");
    EXPECT_EQ(addressOf("\"a\xFF z\""), L"a\xFFFD z");
    EXPECT_EQ(addressOf("17"), L"17");
}

TEST(CZenoAPIGetPublicIPJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CZenoAPIGetPublicIPJson>(
        {R"({"code":99999999999})", R"({"code":0,"message":{}})", R"({"code":0,"result":[]})",
         R"({"code":0,"result":"x"})", R"({"code":0,"result":5})", R"({"code":0,"result":{"public_ip":[]}})",
         R"({"code":0,"result":{"public_ip":{}}})"});
}
