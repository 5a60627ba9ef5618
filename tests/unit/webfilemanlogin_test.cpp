#include "session/WebFileManLogin.h"

#include <gtest/gtest.h>

#include "parsing.h"

namespace {

const std::string kSession = R"("sid":"s1","admingroup":"1","servername":"書類 NAS")";
const std::string kDemand = R"("need_2sv":1,"lost_phone":2,"emergency_try_count":3,"emergency_try_limit":5)";

void expectNoSession(const CWebFileManLogin& login) {
    EXPECT_EQ(login.GetSid(), L"");
    EXPECT_EQ(login.GetServerName(), L"");
    EXPECT_FALSE(login.GetIsAdmin());
}

void expectNoDemand(const CWebFileManLogin& login) {
    EXPECT_EQ(login.need2sv, 0);
    EXPECT_EQ(login.lostPhone, 0);
    EXPECT_EQ(login.tryLimit, -1);
    EXPECT_EQ(login.tryCount, 0);
}

}  // namespace

TEST(CWebFileManLogin, BeginsWithNothingLearnt) {
    const CWebFileManLogin login;
    EXPECT_EQ(login.result, -1);
    EXPECT_EQ(login.GetAuthResult(), -1);
    EXPECT_EQ(login.IsNeed2StepVerification(), 0);
    EXPECT_FALSE(login.IsMaxTryFailed());
    expectNoSession(login);
    expectNoDemand(login);
}

TEST(CWebFileManLogin, ReadsASession) {
    CWebFileManLogin login;
    EXPECT_EQ(parse(login, "{\"status\":1," + kSession + "," + kDemand + "}"), 1);
    EXPECT_EQ(login.GetAuthResult(), 0);
    EXPECT_EQ(login.result, 1);
    EXPECT_EQ(login.GetSid(), L"s1");
    EXPECT_EQ(login.GetServerName(), L"書類 NAS");
    EXPECT_TRUE(login.GetIsAdmin());
    expectNoDemand(login);  // an accepted login wants no more
}

TEST(CWebFileManLogin, ARefusalThatWantsASecondStepCarriesNoSession) {
    for (const char* status : {R"("status":4,)", R"("status":"4",)"}) {
        CWebFileManLogin login;
        EXPECT_EQ(parse(login, "{" + (status + kSession) + "," + kDemand + "}"), 1);
        EXPECT_EQ(login.GetAuthResult(), -3);
        EXPECT_EQ(login.result, -1);
        EXPECT_EQ(login.need2sv, 1);
        EXPECT_EQ(login.lostPhone, 2);
        EXPECT_EQ(login.tryCount, 3);
        EXPECT_EQ(login.tryLimit, 5);
        EXPECT_EQ(login.IsNeed2StepVerification(), 2);
        expectNoSession(login);
    }
}

TEST(CWebFileManLogin, AnyOtherRefusalIsReadToItsEnd) {
    for (const char* status : {R"("status":4,)", R"("status":4,"need_2sv":null,)"}) {
        CWebFileManLogin login;
        EXPECT_EQ(parse(login, "{" + (status + kSession) + "}"), 1);
        EXPECT_EQ(login.GetAuthResult(), -3);
        EXPECT_EQ(login.result, -1);
        EXPECT_EQ(login.GetSid(), L"s1");
        EXPECT_TRUE(login.GetIsAdmin());
        expectNoDemand(login);
    }
}

TEST(CWebFileManLogin, ASecondStepIsWantedByItsForm) {
    const struct {
        int need, form, wanted;
    } rows[] = {{0, 0, 0}, {0, 3, 0}, {1, 0, 0}, {1, 3, 3}, {5, 2, 2}, {-1, 1, 1}, {1, -7, -7}};
    for (const auto& row : rows) {
        CWebFileManLogin login;
        login.need2sv = row.need;
        login.lostPhone = row.form;
        EXPECT_EQ(login.IsNeed2StepVerification(), row.wanted);
    }
}

TEST(CWebFileManLogin, TriesAreUsedUpOnceTheirCountReachesTheLimit) {
    const struct {
        int limit, count;
        bool used;
    } rows[] = {{-1, 0, false}, {-1, 9, false}, {0, -1, false}, {0, 0, true},
                {5, 4, false},  {5, 5, true},   {5, 6, true},   {2147483647, 2147483646, false}};
    for (const auto& row : rows) {
        CWebFileManLogin login;
        login.tryLimit = row.limit;
        login.tryCount = row.count;
        EXPECT_EQ(login.IsMaxTryFailed(), row.used) << row.limit << " " << row.count;
    }
}

TEST(CWebFileManLogin, AReplyWithoutAStatusIsARefusal) {
    for (const char* text : {"{}", R"({"status":null})", R"({"status":[]})", R"({"status":34})"}) {
        CWebFileManLogin login;
        EXPECT_EQ(parse(login, text), 1);
        EXPECT_EQ(login.GetAuthResult(), -1);
        EXPECT_EQ(login.result, -1);
    }
}

TEST(CWebFileManLogin, OnlyTheTextOneIsAnAdministrator) {
    for (const auto& [value, isAdmin] :
         {std::pair(R"("1")", true), {"1", true}, {R"("0")", false}, {R"("11")", false}, {"null", false}}) {
        CWebFileManLogin login;
        EXPECT_EQ(parse(login, std::string(R"({"status":1,"admingroup":)") + value + "}"), 1) << value;
        EXPECT_EQ(login.GetIsAdmin(), isAdmin) << value;
    }
}

TEST(CWebFileManLogin, ATextThatDoesNotFitItsFieldCountsAsNotSent) {
    for (const auto& [length, fits] : {std::pair(size_t{259}, true),
                                       {size_t{260}, false},
                                       {size_t{2048}, false},
                                       {size_t{1000000}, false}}) {
        const std::string text(length, 'x');
        CWebFileManLogin login;
        EXPECT_EQ(parse(login, R"({"status":1,"sid":")" + text + R"(","servername":")" + text + "\"}"), 1);
        EXPECT_EQ(login.GetSid().size(), fits ? length : 0);
        EXPECT_EQ(login.GetServerName().size(), fits ? length : 0);
    }
}

TEST(CWebFileManLogin, RefusesWhatIsNoReplyAndOpensNoSession) {
    for (const char* text :
         {"", "sorry", "<authLogin/>", "[]", "5", "null", "\"status\"", R"({"status":1,"sid":"s1")",
          R"({"sid":"s1","status":4294967296})", R"({"status":1,"sid":{}})",
          R"({"status":1,"sid":"s1","admingroup":["1"]})", R"({"status":1,"sid":"s1","servername":[]})",
          R"({"status":4,"need_2sv":4294967296})", R"({"status":4,"need_2sv":1,"lost_phone":1e12})"}) {
        SCOPED_TRACE(text);
        CWebFileManLogin login;
        EXPECT_EQ(parse(login, text), -1);
        EXPECT_EQ(login.GetAuthResult(), -1);
        EXPECT_EQ(login.result, -1);
        expectNoSession(login);
        expectNoDemand(login);
    }
    CWebFileManLogin login;
    EXPECT_EQ(login.Parser(nullptr), -1);
}
