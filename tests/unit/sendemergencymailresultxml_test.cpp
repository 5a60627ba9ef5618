#include "session/SendEmergencyMailResultXml.h"

#include <gtest/gtest.h>

#include "parsing.h"
#include "support/xmlreplies.h"

using namespace wire;

TEST(CSendEmergencyMailResultXml, BeginsWithNothingLearnt) {
    const CSendEmergencyMailResultXml reply;
    EXPECT_EQ(reply.GetResult(), 0);
    EXPECT_EQ(reply.tryLimit, -1);
    EXPECT_EQ(reply.tryCount, 0);
    EXPECT_FALSE(reply.IsMaxTryFailed());
}

TEST(CSendEmergencyMailResultXml, ReadsItsNumbers) {
    CSendEmergencyMailResultXml reply;
    EXPECT_EQ(parse(reply, document(element("send_result", "-3") + element("emergency_try_limit", "5") +
                                    element("emergency_try_count", "4"))),
              1);
    EXPECT_EQ(reply.GetResult(), -3);
    EXPECT_EQ(reply.tryLimit, 5);
    EXPECT_EQ(reply.tryCount, 4);
    EXPECT_FALSE(reply.IsMaxTryFailed());
}

TEST(CSendEmergencyMailResultXml, TriesAreUsedUpOnceTheirCountReachesTheLimit) {
    for (const auto& [limit, count, used] : {std::tuple("5", "5", true),
                                             {"5", "6", true},
                                             {"0", "0", true},
                                             {"-1", "9", false},
                                             {"5", "4", false}}) {
        CSendEmergencyMailResultXml reply;
        EXPECT_EQ(parse(reply, document(element("emergency_try_limit", limit) +
                                        element("emergency_try_count", count))),
                  1);
        EXPECT_EQ(reply.IsMaxTryFailed(), used) << limit << " " << count;
    }
}

TEST(CSendEmergencyMailResultXml, UnderstandsWhateverTheTextIs) {
    for (const std::string& text :
         {std::string(), std::string("plain"), std::string("{}"), std::string("<a><b>"),
          std::string("\xFF\xFE"), entityBomb("send_result")}) {
        CSendEmergencyMailResultXml reply;
        EXPECT_EQ(parse(reply, text), 1) << text.substr(0, 100);
        EXPECT_EQ(reply.GetResult(), 0);
    }
    CSendEmergencyMailResultXml reply;
    EXPECT_EQ(reply.Parser(nullptr), 1);
}
