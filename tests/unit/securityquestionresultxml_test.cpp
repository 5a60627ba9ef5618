#include "session/SecurityQuestionResultXml.h"

#include <gtest/gtest.h>

#include "parsing.h"
#include "support/xmlreplies.h"

using namespace wire;

TEST(CSecurityQuestionResultXml, BeginsWithNothingLearnt) {
    const CSecurityQuestionResultXml reply;
    EXPECT_EQ(reply.questionNo, 0);
    EXPECT_EQ(reply.getQuestion(), QString());
}

TEST(CSecurityQuestionResultXml, ReadsAQuestionWithItsNumber) {
    CSecurityQuestionResultXml reply;
    EXPECT_EQ(parse(reply, document(element("security_question_no", "3") +
                                    element("system_question_text", "母の名前は? &amp; 😀"))),
              1);
    EXPECT_EQ(reply.questionNo, 3);
    EXPECT_EQ(reply.getQuestion(), QString("母の名前は? & 😀"));
}

TEST(CSecurityQuestionResultXml, AQuestionNeedsNoNumberAndNoRoot) {
    CSecurityQuestionResultXml reply;
    EXPECT_EQ(parse(reply, element("system_question_text", "<![CDATA[Why?]]>")), 1);
    EXPECT_EQ(reply.questionNo, 0);
    EXPECT_EQ(reply.getQuestion(), QString("Why?"));
}

TEST(CSecurityQuestionResultXml, AQuestionCountsWhateverIsBehindIt) {
    CSecurityQuestionResultXml reply;
    EXPECT_EQ(parse(reply, "<a>" + element("system_question_text", "q")), 1);
    EXPECT_EQ(reply.getQuestion(), QString("q"));
}

TEST(CSecurityQuestionResultXml, AHugeQuestionIsReadWhole) {
    CSecurityQuestionResultXml reply;
    EXPECT_EQ(parse(reply, document(element("system_question_text", std::string(3000000, 'q')))), 1);
    EXPECT_EQ(reply.getQuestion().size(), 3000000);
}

TEST(CSecurityQuestionResultXml, RefusesAReplyWithoutAQuestion) {
    for (const std::string& text :
         {std::string(), std::string("plain"), std::string("{\"system_question_text\":\"q\"}"), document(""),
          document(element("system_question_text", "")), document(element("System_question_text", "q")),
          document(element("security_question_no", "1")), std::string("<a><system_question_text>q"),
          "<a>" + element("system_question_text", "\xFF"), entityBomb("system_question_text"),
          foreignFile("system_question_text")}) {
        CSecurityQuestionResultXml reply;
        EXPECT_EQ(parse(reply, text), -1) << text.substr(0, 100);
    }
    CSecurityQuestionResultXml reply;
    EXPECT_EQ(reply.Parser(nullptr), -1);
}
