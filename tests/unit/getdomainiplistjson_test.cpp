#include "state/GetDomainIPListJson.h"

#include <gtest/gtest.h>

#include "parsing.h"

TEST(CGetDomainIPListJson, BeginsWithNothingLearnt) {
    const CGetDomainIPListJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_EQ(reply.peltnetHostName + reply.ddnsHostName + reply.externalIP + reply.localIP + reply.hostIP +
                  reply.localIPList,
              L"");
    EXPECT_EQ(reply.port, 0);
    EXPECT_EQ(reply.sslPort, 0);
    EXPECT_EQ(reply.extPort, 0);
    EXPECT_EQ(reply.extSslPort, 0);
}

TEST(CGetDomainIPListJson, ReadsEachFieldFromItsKey) {
    CGetDomainIPListJson reply;
    EXPECT_EQ(parse(reply, R"({"status":1,"peltnet_hn":"nas.example","ddns_hn":"dyn.example",
        "external_ip":"203.0.113.7","local_ip":"192.168.0.2","host_ip":"192.168.0.3",
        "local_ip_list":"192.168.0.2,10.0.0.2","port":8080,"sslPort":"8443","extPort":80,"extSslPort":443})"),
              1);
    EXPECT_EQ(reply.GetStatus(), 0);
    EXPECT_EQ(reply.peltnetHostName, L"nas.example");
    EXPECT_EQ(reply.ddnsHostName, L"dyn.example");
    EXPECT_EQ(reply.externalIP, L"203.0.113.7");
    EXPECT_EQ(reply.localIP, L"192.168.0.2");
    EXPECT_EQ(reply.hostIP, L"192.168.0.3");
    EXPECT_EQ(reply.localIPList, L"192.168.0.2,10.0.0.2");
    EXPECT_EQ(reply.port, 8080);
    EXPECT_EQ(reply.sslPort, 8443);
    EXPECT_EQ(reply.extPort, 80);
    EXPECT_EQ(reply.extSslPort, 443);
}

TEST(CGetDomainIPListJson, TranslatesTheStatus) {
    const struct {
        const char* reply;
        int status;
    } rows[] = {{R"({"status":1})", 0},   {R"({"status":"3"})", -29}, {R"({"status":4})", -3},
                {R"({"status":34})", -1}, {R"({"status":0})", -2},    {"{}", -1}};
    for (const auto& row : rows) {
        CGetDomainIPListJson reply;
        EXPECT_EQ(parse(reply, row.reply), 1);
        EXPECT_EQ(reply.GetStatus(), row.status) << row.reply;
    }
}

TEST(CGetDomainIPListJson, OnlyTheListIsReadWhateverItsLength) {
    for (const char* key : {"peltnet_hn", "ddns_hn", "external_ip", "local_ip", "host_ip", "local_ip_list"})
        for (const size_t length : {size_t{2047}, size_t{2048}, size_t{100000}}) {
            SCOPED_TRACE(key + std::to_string(length));
            CGetDomainIPListJson reply;
            EXPECT_EQ(parse(reply, "{\"" + std::string(key) + "\":\"" + std::string(length, 'x') + "\"}"), 1);
            const std::wstring all = reply.peltnetHostName + reply.ddnsHostName + reply.externalIP +
                                     reply.localIP + reply.hostIP + reply.localIPList;
            const bool isRead = length < 2048 || std::string(key) == "local_ip_list";
            EXPECT_EQ(all, std::wstring(isRead ? length : 0, L'x'));
        }
}

TEST(CGetDomainIPListJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CGetDomainIPListJson>(
        {R"({"status":99999999999})", R"({"status":1,"peltnet_hn":[]})",
         R"({"status":1,"local_ip_list":{"a":1}})", R"({"status":1,"extSslPort":99999999999})"});
}
