#include "sharing/ShareGetAdInfoJson.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "parsing.h"
#include "support/userrecords.h"

namespace {

using Lines = std::vector<std::string>;

Lines domainsOf(const CShareGetAdInfoJson& reply) {
    Lines all;
    for (const auto& domain : reply.domains) all.push_back(describe(domain));
    return all;
}

}  // namespace

TEST(CShareGetAdInfoJson, BeginsWithNothingLearnt) {
    const CShareGetAdInfoJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_EQ(reply.adSupport, 0);
    EXPECT_EQ(reply.trustedDomainEnable, 0);
    EXPECT_EQ(reply.count, 0u);
    EXPECT_TRUE(reply.domains.empty());
}

TEST(CShareGetAdInfoJson, ReadsEachFieldFromItsKey) {
    CShareGetAdInfoJson reply;
    EXPECT_EQ(parse(reply, R"({"status":"1","ADSupport":1,"TrustedDomainEnable":"2","count":7,"datas":[
        {"domain":"corp.example","netbios":"CORP"},{"netbios":"書"},null,{}]})"),
              1);
    EXPECT_EQ(reply.GetStatus(), 0);
    EXPECT_EQ(reply.adSupport, 1);
    EXPECT_EQ(reply.trustedDomainEnable, 2);
    EXPECT_EQ(reply.count, 7u);
    EXPECT_EQ(domainsOf(reply), (Lines{"domain=corp.example netbios=CORP", "netbios=書", ""}));
}

TEST(CShareGetAdInfoJson, AnyStatusBut1IsMinus1) {
    for (const char* keys :
         {R"("status":0,)", R"("status":2,)", R"("status":-3,)", R"("status":null,)", ""}) {
        CShareGetAdInfoJson reply;
        EXPECT_EQ(parse(reply, "{" + std::string(keys) + R"("count":1})"), 1);
        EXPECT_EQ(reply.GetStatus(), -1) << keys;
    }
}

TEST(CShareGetAdInfoJson, WithoutACountTheDomainsAreCounted) {
    for (const char* count : {"", R"("count":null,)"}) {
        CShareGetAdInfoJson reply;
        EXPECT_EQ(parse(reply, "{" + std::string(count) + R"("datas":[{"domain":"a"},{"domain":"b"}]})"), 1);
        EXPECT_EQ(reply.count, 2u);
    }
}

TEST(CShareGetAdInfoJson, NamesAreCutToTheirFields) {
    for (const auto& [length, kept] : {std::pair(size_t{259}, size_t{259}),
                                       {size_t{260}, size_t{259}},
                                       {size_t{2047}, size_t{259}},
                                       {size_t{2048}, size_t{0}}}) {
        const std::string text = '"' + std::string(length, 'x') + '"';
        CShareGetAdInfoJson reply;
        EXPECT_EQ(parse(reply, R"({"datas":[{"domain":)" + text + R"(,"netbios":)" + text + "}]}"), 1);
        ASSERT_EQ(reply.domains.size(), 1u);
        EXPECT_EQ(reply.domains[0].szDomain, std::wstring(kept, L'x'));
        EXPECT_EQ(reply.domains[0].szNetbios, std::wstring(kept, L'x'));
    }
}

TEST(CShareGetAdInfoJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CShareGetAdInfoJson>(
        {R"({"status":99999999999})", R"({"ADSupport":99999999999})",
         R"({"TrustedDomainEnable":99999999999})", R"({"count":99999999999})", R"({"datas":{}})",
         R"({"datas":"x"})", R"({"datas":[{"domain":[]}]})", R"({"datas":[{"netbios":{}}]})"});
}

TEST(CShareGetAdInfoJson, CountsThoseForWhichThereIsNoRoom) {
    CShareGetAdInfoJson reply;
    reply.room = 2;
    EXPECT_EQ(parse(reply, R"({"status":1,"datas":[{},{},5,{}]})"), 1);
    EXPECT_EQ(reply.number, 3u);
    EXPECT_EQ(reply.count, 3u);
    EXPECT_EQ(reply.domains.size(), 2u);
}
