#include <gmock/gmock.h>

#include "secondstep.h"
#include "support/programs.h"

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

using NasSecondFactor = SecondStepTest;

TEST_F(NasSecondFactor, FileManagerLoginTellsWhichStepIsWantedAndOpensNoSession) {
    for (const auto& [user, password, form] : std::vector<std::tuple<std::string, std::string, int>>{
             {"anna", "secret", 1}, {"carl", "third", 2}, {"ben", "hidden", 3}}) {
        const Json::Value reply = managerLogin(user, password).json();
        EXPECT_EQ(3, reply["status"].asInt()) << user;
        EXPECT_EQ(1, reply["need_2sv"].asInt()) << user;
        EXPECT_EQ(form, reply["lost_phone"].asInt()) << user;
        EXPECT_EQ(0, reply["emergency_try_count"].asInt()) << user;
        EXPECT_EQ(3, reply["emergency_try_limit"].asInt()) << user;
        EXPECT_FALSE(reply.isMember("sid")) << user;
    }
    EXPECT_THAT(nas.control("GET", "state"), HasSubstr("\"sessions\":0"));
}

TEST_F(NasSecondFactor, WrongPasswordTellsNothingOfTheStep) {
    const Json::Value reply = managerLogin("anna", "Secret").json();
    EXPECT_EQ(3, reply["status"].asInt());
    EXPECT_FALSE(reply.isMember("need_2sv"));
    const NasReply step = auth(codeQuery(kCode), "anna", "Secret");
    EXPECT_EQ("0", element(step, "authPassed"));
    EXPECT_EQ("1", element(step, "errorValue"));
    EXPECT_EQ("(none)", element(step, "need_2sv"));
    EXPECT_EQ("(none)", element(step, "authSid"));
}

TEST_F(NasSecondFactor, AccountsWithoutOneLogInByTheirPassword) {
    EXPECT_EQ(1, managerLogin("dora", "plain").status());
    EXPECT_EQ(1, run(loginRequest("dora", "plain")).status());
    EXPECT_EQ("1", element(auth(codeQuery("1"), "dora", "plain"), "authPassed"));
}

TEST_F(NasSecondFactor, SyncLoginRefusesWithoutAWord) {
    const Json::Value reply = run(loginRequest("anna", "secret")).json();
    EXPECT_EQ(3, reply["status"].asInt());
    EXPECT_FALSE(reply.isMember("sid"));
    EXPECT_FALSE(reply.isMember("need_2sv"));
}

TEST_F(NasSecondFactor, RightCodeAsItWasTypedOpensASessionOfBothServices) {
    const NasReply reply = auth(codeQuery(kCode), "anna", "secret");
    EXPECT_EQ(200, reply.http);
    EXPECT_EQ("text/xml", reply.headers.at("content-type"));
    EXPECT_THAT(reply.body, testing::StartsWith("<?xml version=\"1.0\" encoding=\"UTF-8\" ?>"));
    EXPECT_EQ("1", element(reply, "authPassed"));
    EXPECT_EQ("1", element(reply, "isAdmin"));
    EXPECT_EQ("torvi-nas", element(reply, "servername"));
    EXPECT_EQ("(none)", element(reply, "need_2sv"));
    const std::string sid = element(reply, "authSid");
    EXPECT_EQ(1, listStatus(sid));
    EXPECT_EQ(1, listStatus(sid, "torvi/torvisrv.cgi"));
    // What a URL may hold encoded is the same code.
    EXPECT_EQ("1", element(auth(codeQuery(encoded(kCode)), "anna", "secret"), "authPassed"));
}

TEST_F(NasSecondFactor, AnswerOpensASessionAndIsNoCode) {
    const NasReply reply = auth(answerQuery("Hill%20%C3%B6st"), "carl", "third");
    EXPECT_EQ("1", element(reply, "authPassed"));
    EXPECT_EQ("0", element(reply, "isAdmin"));
    EXPECT_EQ(1, listStatus(element(reply, "authSid")));
    EXPECT_EQ("0", element(auth(codeQuery("Hill%20%C3%B6st"), "carl", "third"), "authPassed"));
    EXPECT_EQ("0", element(auth(answerQuery(kCode), "anna", "secret"), "authPassed"));
    EXPECT_EQ("1", element(auth(answerQuery("Rex%20(the%20first)"), "anna", "secret"), "authPassed"))
        << "the step that the login doesn't ask for first";
}

TEST_F(NasSecondFactor, WrongStepsCountUntilTheAccountIsLocked) {
    for (int i = 1; i <= 3; ++i) {
        const NasReply wrong = auth(i == 2 ? answerQuery("Fido") : codeQuery("0"), "anna", "secret");
        EXPECT_EQ("0", element(wrong, "authPassed")) << i;
        EXPECT_EQ(i < 3 ? "2" : "3", element(wrong, "errorValue")) << i;
        EXPECT_EQ("1", element(wrong, "need_2sv"));
        EXPECT_EQ("1", element(wrong, "lost_phone"));
        EXPECT_EQ(std::to_string(i), element(wrong, "emergency_try_count"));
        EXPECT_EQ("3", element(wrong, "emergency_try_limit"));
        EXPECT_EQ(i, managerLogin("anna", "secret").json()["emergency_try_count"].asInt());
    }
    const NasReply right = auth(codeQuery(kCode), "anna", "secret");
    EXPECT_EQ("0", element(right, "authPassed"));
    EXPECT_EQ("3", element(right, "errorValue"));
    EXPECT_EQ("3", element(right, "emergency_try_count"));
    EXPECT_EQ("1", element(auth(answerQuery("Hill%20%C3%B6st"), "carl", "third"), "authPassed"))
        << "another account is locked too";
    nas.control("POST", "tries/forget");
    EXPECT_EQ("1", element(auth(codeQuery(kCode), "anna", "secret"), "authPassed"));
}

TEST_F(NasSecondFactor, RightStepMakesWrongOnesForgotten) {
    auth(codeQuery("0"), "anna", "secret");
    auth(codeQuery("0"), "anna", "secret");
    auth(codeQuery(kCode), "anna", "secret");
    EXPECT_EQ(0, managerLogin("anna", "secret").json()["emergency_try_count"].asInt());
    EXPECT_EQ("1", element(auth(codeQuery("0"), "anna", "secret"), "emergency_try_count"));
}

TEST_F(NasSecondFactor, WrongPasswordIsNoTry) {
    for (int i = 0; i < 5; ++i) auth(codeQuery("0"), "anna", "guess");
    EXPECT_EQ("1", element(auth(codeQuery(kCode), "anna", "secret"), "authPassed"));
}

TEST_F(NasSecondFactor, QuestionComesInTheClientsLanguageIfThereIsAText) {
    const NasReply plain = auth(kQuestionQuery + "en", "carl", "third");
    EXPECT_EQ("1", element(plain, "security_question_no"));
    EXPECT_EQ("First school?", element(plain, "system_question_text"));
    EXPECT_EQ("Erste Schule?",
              element(auth(kQuestionQuery + "GER", "carl", "third"), "system_question_text"));
    EXPECT_EQ("Whose <pet> & ]]> car?",
              element(auth(kQuestionQuery + "GER", "anna", "secret"), "system_question_text"));
}

TEST_F(NasSecondFactor, QuestionIsForThePasswordOfAnAccountThatHasOne) {
    const NasReply wrong = auth(kQuestionQuery + "en", "carl", "first");
    EXPECT_EQ("1", element(wrong, "errorValue"));
    EXPECT_EQ("(none)", element(wrong, "system_question_text"));
    EXPECT_EQ("4", element(auth(kQuestionQuery + "en", "ben", "hidden"), "errorValue"));
}

TEST_F(NasSecondFactor, MailedCodeLogsInOnce) {
    const NasReply sent = auth(kMailQuery, "ben", "hidden");
    EXPECT_EQ("1", element(sent, "send_result"));
    EXPECT_EQ("0", element(sent, "emergency_try_count"));
    EXPECT_EQ("3", element(sent, "emergency_try_limit"));
    ASSERT_THAT(mailTexts(), SizeIs(1));
    EXPECT_THAT(mailTexts()[0], HasSubstr("\r\nTo: <ben@example.org>\r\n"));
    EXPECT_THAT(mailTexts()[0], HasSubstr("\r\nSubject: Emergency code of torvi-nas\r\n"));
    const std::string code = codeIn(mailTexts()[0]);
    ASSERT_NE("", code);
    EXPECT_EQ("1", element(auth(codeQuery(code), "ben", "hidden"), "authPassed"));
    EXPECT_EQ("0", element(auth(codeQuery(code), "ben", "hidden"), "authPassed"));
}

TEST_F(NasSecondFactor, NewMailReplacesTheCodeOfTheOneBefore) {
    std::string first, second;
    do {  // two codes may be the same by chance
        auth(kMailQuery, "ben", "hidden");
        auth(kMailQuery, "ben", "hidden");
        first = codeIn(mailTexts()[mailTexts().size() - 2]);
        second = codeIn(mailTexts().back());
    } while (first == second);
    EXPECT_EQ("0", element(auth(codeQuery(first), "ben", "hidden"), "authPassed"));
    EXPECT_EQ("1", element(auth(codeQuery(second), "ben", "hidden"), "authPassed"));
}

TEST_F(NasSecondFactor, NoMailWithoutAnAddressThePasswordOrTriesLeft) {
    EXPECT_EQ("0", element(auth(kMailQuery, "carl", "third"), "send_result"));
    EXPECT_EQ("1", element(auth(kMailQuery, "ben", "Hidden"), "errorValue"));
    for (int i = 0; i < 3; ++i) auth(codeQuery("none"), "ben", "hidden");
    const NasReply locked = auth(kMailQuery, "ben", "hidden");
    EXPECT_EQ("0", element(locked, "send_result"));
    EXPECT_EQ("3", element(locked, "emergency_try_count"));
    EXPECT_THAT(mailTexts(), IsEmpty());
}

TEST_F(NasSecondFactor, RequestsAreExact) {
    const std::vector<std::pair<std::string, std::string>> wrong = {
        {"send_mail=1&serviceKey=1", "not doubled"},
        {"send_mail=1&&&serviceKey=1", "without key and value"},
        {"send_mail=1&&serviceKey=1&remme=1", "not in the protocol"},
        {"send_mail=0&&serviceKey=1", "send_mail"},
        {"security_code=1&&serviceKey=1&remme=1", "without key and value"},
        {"security_code=1&serviceKey=1&remme=0", "remme"},
        {"security_code=1&serviceKey=2&remme=1", "serviceKey"},
        {"security_code=1&serviceKey=1", "\\\"remme\\\" is missing"},
        {"security_code=1&remme=1&serviceKey=1", "out of order"},
        {"security_code=1&2&serviceKey=1&remme=1", "without key and value"},
        {"security_code=a%2&serviceKey=1&remme=1", "broken percent-encoding"},
        {"security_code=a\"b&serviceKey=1&remme=1", "unencoded"},
        {"security_answer=&serviceKey=1&remme=1", "\\\"security_answer\\\" is empty"},
        {"get_question=1&serviceKey=1", "\\\"q_lang\\\" is missing"},
        {"get_question=1&serviceKey=1&q_lang=", "\\\"q_lang\\\" is empty"},
        {"get_question=2&serviceKey=1&q_lang=en", "get_question"},
        {"login=1", "no call"},
    };
    for (const auto& [query, reason] : wrong) {
        const NasReply reply = auth(query, "anna", "secret");
        EXPECT_EQ(400, reply.http) << query;
        EXPECT_THAT(reply.body, HasSubstr(reason)) << query;
    }
    EXPECT_EQ(405, get(authLogin(kMailQuery)).http);
    EXPECT_EQ(405, get(authLogin(codeQuery("1"))).http);
    EXPECT_EQ(
        400,
        run(NasRequest::form(authLogin(kMailQuery), {{"pwd", base64("secret")}, {"user", "anna"}})).http);
    EXPECT_EQ(400, run(loginRequest("anna", "secret", authLogin(kMailQuery))).http);
    EXPECT_EQ(400,
              run(NasRequest::form(authLogin(codeQuery("1")), {{"user", "anna"}, {"pwd", base64("secret")}})
                      .set("X-Forwarded-For", "10.0.0.1"))
                  .http);
    EXPECT_EQ(0, managerLogin("anna", "secret").json()["emergency_try_count"].asInt())
        << "a refused request counted as a try";
}

TEST_F(NasSecondFactor, CountersAndFaultsKnowTheCallsByTheirQuery) {
    auth(codeQuery("0"), "anna", "secret");
    auth(answerQuery("0"), "anna", "secret");
    auth(kMailQuery, "ben", "hidden");
    EXPECT_EQ(1, nas.requestCount("security_code"));
    EXPECT_EQ(1, nas.requestCount("security_answer"));
    EXPECT_EQ(1, nas.requestCount("send_mail"));
    nas.arm("http-status,match=get_question,status=503");
    EXPECT_EQ(503, auth(kQuestionQuery + "en", "carl", "third").http);
    EXPECT_EQ(200, auth(kQuestionQuery + "en", "carl", "third").http);
    EXPECT_THAT(nas.log(), Not(HasSubstr("security_code=0")));
}

class NasNoTryLimit : public SecondStepTest {
protected:
    NasNoTryLimit() : SecondStepTest({"--try-limit", "-1"}) {}
};

TEST_F(NasNoTryLimit, NeverLocks) {
    for (int i = 0; i < 20; ++i) auth(codeQuery("0"), "anna", "secret");
    const Json::Value reply = managerLogin("anna", "secret").json();
    EXPECT_EQ(-1, reply["emergency_try_limit"].asInt());
    EXPECT_EQ(20, reply["emergency_try_count"].asInt());
    EXPECT_EQ("1", element(auth(codeQuery(kCode), "anna", "secret"), "authPassed"));
}

TEST(NasSecondFactorOptions, RulesThatAreNoneEndTheProgram) {
    TempDir root;
    const std::vector<std::vector<std::string>> wrong = {
        {"--second-factor", "anna"},
        {"--second-factor", "nobody:code=1"},
        {"--second-factor", "anna:code="},
        {"--second-factor", "anna:word=1"},
        {"--second-factor", "anna:question=First:Rex"},
        {"--second-factor", "anna:question=1:First:"},
        {"--second-factor", "anna:mail=anna@example.org"},
        {"--question-text", "1:GER"},
        {"--question-text", "one:GER:Erste?"},
        {"--try-limit", "-2"},
        {"--redirect-tls"},
    };
    for (std::vector<std::string> arguments : wrong) {
        const std::string said = arguments.back();
        arguments.insert(arguments.begin(), {"--root", root.string(), "--user", "anna:secret"});
        const ProcessResult result = runProcess(kTorviNas, arguments);
        EXPECT_GT(result.exitCode, 0) << said;
        EXPECT_LT(result.exitCode, 128) << said;
    }
}
