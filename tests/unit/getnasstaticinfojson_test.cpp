#include "state/GetNASStaticInfoJson.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "parsing.h"

TEST(CTorviGetNASStaticInfoJson, BeginsWithNothingLearnt) {
    const CTorviGetNASStaticInfoJson reply;
    EXPECT_EQ(reply.GetStatus(), -1);
    EXPECT_EQ(reply.model, L"");
    EXPECT_EQ(reply.firmwareVersion, L"");
    EXPECT_EQ(reply.queueLimit, 0);
    EXPECT_EQ(reply.messageQueueLimit, 0);
}

TEST(CTorviGetNASStaticInfoJson, ReadsItsFieldsAndTranslatesTheStatus) {
    const struct {
        const char* reply;
        int status;
        const wchar_t *model, *firmware;
        int64_t queue, messages;
    } rows[] = {
        {R"({"status":1,"model":"Shelf-1","fw_version":"5.1.0","queue_num_limit":"100",
            "msg_queue_num_limit":"5000000000"})",
         0, L"Shelf-1", L"5.1.0", 100, 5000000000},
        {R"({"status":"1","model":"模 1","queue_num_limit":5000000000,
            "msg_queue_num_limit":"9223372036854775807"})",
         0, L"模 1", L"", 5000000000, INT64_MAX},
        {R"({"status":1,"queue_num_limit":"99999999999999999999","msg_queue_num_limit":"many"})", 0, L"", L"",
         INT64_MAX, 0},
        {R"({"status":4,"model":"Shelf-1"})", -3, L"Shelf-1", L"", 0, 0},
        {R"({"status":3})", -29, L"", L"", 0, 0},
        {R"({"status":34})", -1, L"", L"", 0, 0},
        {"{}", -1, L"", L"", 0, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        CTorviGetNASStaticInfoJson reply;
        EXPECT_EQ(parse(reply, row.reply), 1);
        EXPECT_EQ(reply.GetStatus(), row.status);
        EXPECT_EQ(reply.model, row.model);
        EXPECT_EQ(reply.firmwareVersion, row.firmware);
        EXPECT_EQ(reply.queueLimit, row.queue);
        EXPECT_EQ(reply.messageQueueLimit, row.messages);
    }
}

TEST(CTorviGetNASStaticInfoJson, RefusesWhatCannotBeRead) {
    expectRefusesAllButObjects<CTorviGetNASStaticInfoJson>(
        {R"({"status":99999999999})", R"({"status":1,"model":[]})", R"({"status":1,"fw_version":{}})",
         R"({"queue_num_limit":99999999999999999999})"});
}
