#include "lib_login.h"

using namespace e2e;

namespace {

constexpr const char* kCode = "anna:code=123456";
constexpr const char* kQuestion = "anna:question=2:Wie hieß Dein erster Hund?:Rex";
constexpr const char* kMail = "anna:mail=anna@example.org";
const Numbers kWantsCode{14, 16}, kWantsAnswer{14, 17}, kWantsMailedCode{14, 18};
const Numbers kWrongCode{14, 14}, kNoTriesLeft{14, 19}, kOnlyByTls{14, -8};

/// A server, and the logins of the parameter's road.
class LibDoor : public testing::TestWithParam<Road> {
protected:
    std::uint16_t port(const Nas& nas) const { return portOf(nas, GetParam()); }
    Login login(const Nas& nas) const {
        Login login;
        login.road = GetParam();
        login.port = port(nas);
        return login;
    }
    SecondStep step(const Nas& nas, const std::wstring& code) const {
        SecondStep step;
        step.port = port(nas);
        step.tls = GetParam().tls;
        step.code = code;
        return step;
    }
    Activation activation(const Nas& nas, const std::wstring& token) const {
        Activation activation;
        activation.port = port(nas);
        activation.tls = GetParam().tls;
        activation.token = token;
        return activation;
    }
};

class LibSecondFactor : public LibDoor {
protected:
    std::uint32_t question(const Nas& nas, const std::wstring& language, std::wstring& text,
                           const wchar_t* password = L"secret") const {
        wchar_t field[260] = {};
        const std::uint32_t status = WFM2SVGetQuestion(kServer, port(nas), L"anna", password,
                                                       language.c_str(), GetParam().tls, 259, field);
        text = field;
        return status;
    }
    std::uint32_t sendMail(const Nas& nas, const wchar_t* password = L"secret") const {
        return WFM2SVSendEmail(kServer, port(nas), L"anna", password, GetParam().tls);
    }
    Nas mailingNas(std::vector<std::string> more = {}) const {
        more.insert(more.end(), {"--second-factor", kMail, "--mail-dir", mails.string()});
        return Nas(withArguments(std::move(more)));
    }
    int mailCount() const {
        int count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(mails.path())) {
            count += entry.path().extension() == ".eml";
        }
        return count;
    }
    std::wstring codeIn(const std::string& mail) const {
        const std::string text = mails.read(mail), mark = "Emergency code: ";
        const auto at = text.find(mark);
        return at == std::string::npos ? L"" : wide(text.substr(at + mark.size(), 6));
    }

    TempDir mails;
};

class LibToken : public LibDoor {};
class LibSystemSid : public LibRoad {};
class LibWayIn : public LibDoor {};
/// The file manager knows no cluster.
class LibNode : public LibDoor {};

}  // namespace

TEST_P(LibSecondFactor, ACodeOpensTheSessionThatThePasswordAloneDoesNot) {
    Nas nas(withArguments({"--second-factor", kCode, "--server-name", "Büro 書類"}));
    Login first = login(nas);
    EXPECT_EQ(first.run(), kWantsCode);
    EXPECT_EQ(first.session, nullptr);
    EXPECT_FALSE(first.isAdmin);
    EXPECT_EQ(first.serverName, L"");

    SecondStep second = step(nas, L"123456");
    EXPECT_EQ(second.run(), kDone);
    EXPECT_TRUE(second.isAdmin);
    EXPECT_EQ(utf8(second.serverName), "Büro 書類");
    const Client client(second.port, std::move(second.session));
    EXPECT_EQ(client.upload({"bytes", L"/home/a"}), kDone);
    EXPECT_EQ(nas.folder().read("homes/anna/a"), "bytes");
    // The step keeps no agent, without which nothing is listed.
    std::vector<Entry> entries;
    EXPECT_EQ(client.list({}, entries).dwStatus, 8u);
    EXPECT_EQ(client.logout(), 0u);
    EXPECT_EQ(client.stat(L"/home", L"a"), (Numbers{0, -1}));
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibSecondFactor, TheOtherUserNeedsNone) {
    Nas nas(withArguments({"--second-factor", kCode}));
    Login ben = login(nas);
    ben.user = L"ben";
    ben.password = L"hidden";
    EXPECT_EQ(ben.run(), kDone);
}

TEST_P(LibSecondFactor, AQuestionIsAskedInTheUsersLanguageAndItsAnswerLogsIn) {
    Nas nas(withArguments(
        {"--second-factor", kQuestion, "--question-text", "2:en:Your first dog's <name> & age?"}));
    EXPECT_EQ(login(nas).run(), kWantsAnswer);
    std::wstring text;
    EXPECT_EQ(question(nas, L"en", text), 0u);
    EXPECT_EQ(utf8(text), "Your first dog's <name> & age?");
    EXPECT_EQ(question(nas, L"CZE", text), 0u);
    EXPECT_EQ(utf8(text), "Wie hieß Dein erster Hund?");

    SecondStep asCode = step(nas, L"Rex");
    EXPECT_EQ(asCode.run(), kWrongCode);
    SecondStep answer = step(nas, L"Rex");
    answer.isAnswer = true;
    EXPECT_EQ(answer.run(), kDone);
    EXPECT_NE(answer.session, nullptr);
    EXPECT_EQ(nas.requestCount("security_answer"), 1);
}

TEST_P(LibSecondFactor, AnAccountWithoutAQuestionHasNone) {
    Nas nas(withArguments({"--second-factor", kCode}));
    std::wstring text;
    EXPECT_EQ(question(nas, L"en", text), 14u);
    EXPECT_EQ(text, L"");
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibSecondFactor, AQuestionIsForTheRightPasswordOnly) {
    Nas nas(withArguments({"--second-factor", kQuestion}));
    std::wstring text;
    EXPECT_EQ(question(nas, L"en", text, L"wrong"), 14u);
    EXPECT_EQ(text, L"");
}

TEST_P(LibSecondFactor, AMailedCodeLogsInOnce) {
    Nas nas = mailingNas();
    EXPECT_EQ(login(nas).run(), kWantsMailedCode);
    EXPECT_EQ(mailCount(), 0);
    EXPECT_EQ(sendMail(nas), 0u);
    EXPECT_EQ(mailCount(), 1);
    EXPECT_THAT(mails.read("0001.eml"), testing::HasSubstr("To: <anna@example.org>"));
    const std::wstring code = codeIn("0001.eml");
    EXPECT_EQ(code.size(), 6u);
    SecondStep second = step(nas, code);
    EXPECT_EQ(second.run(), kDone);
    EXPECT_EQ(Client(second.port, std::move(second.session)).stat(L"/home", L"a"), (Numbers{0, 3}));
    EXPECT_EQ(step(nas, code).run(), kWrongCode);
}

TEST_P(LibSecondFactor, TheNewestMailCounts) {
    Nas nas = mailingNas();
    EXPECT_EQ(sendMail(nas), 0u);
    const std::wstring old = codeIn("0001.eml");
    std::wstring code = old;
    int sent = 1;
    // Two mails may bear the same number by chance.
    while (code == old) {
        EXPECT_EQ(sendMail(nas), 0u);
        code = codeIn("000" + std::to_string(++sent) + ".eml");
    }
    EXPECT_EQ(step(nas, old).run(), kWrongCode);
    EXPECT_EQ(step(nas, code).run(), kDone);
}

TEST_P(LibSecondFactor, AMailThatTheServerRefusesIsNotReported) {
    Nas nas = mailingNas({"--second-factor", "ben:code=1"});
    EXPECT_EQ(sendMail(nas, L"wrong"), 0u);
    EXPECT_EQ(WFM2SVSendEmail(kServer, port(nas), L"ben", L"hidden", GetParam().tls), 0u);
    EXPECT_EQ(nas.requestCount("send_mail"), 2);
    EXPECT_EQ(mailCount(), 0);
}

TEST_P(LibSecondFactor, TheTriesRunOutUntilTheServerForgetsThem) {
    Nas nas = mailingNas({"--second-factor", kCode, "--try-limit", "3"});
    EXPECT_EQ(step(nas, L"1").run(), kWrongCode);
    EXPECT_EQ(step(nas, L"2").run(), kWrongCode);
    EXPECT_EQ(login(nas).run(), kWantsCode);
    EXPECT_EQ(step(nas, L"3").run(), kNoTriesLeft);
    // From here on the right code is no better, and nothing is mailed.
    SecondStep right = step(nas, L"123456");
    EXPECT_EQ(right.run(), kNoTriesLeft);
    EXPECT_EQ(right.session, nullptr);
    EXPECT_EQ(login(nas).run(), kNoTriesLeft);
    EXPECT_EQ(sendMail(nas), 0u);
    EXPECT_EQ(mailCount(), 0);

    nas.control("POST", "tries/forget");
    EXPECT_EQ(login(nas).run(), kWantsCode);
    EXPECT_EQ(step(nas, L"123456").run(), kDone);
}

TEST_P(LibSecondFactor, ARightCodeBeginsTheCountAnew) {
    Nas nas(withArguments({"--second-factor", kCode, "--try-limit", "2"}));
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(step(nas, L"wrong").run(), kWrongCode);
        EXPECT_EQ(step(nas, L"123456").run(), kDone);
    }
}

TEST_P(LibSecondFactor, AWrongPasswordIsNoTry) {
    Nas nas(withArguments({"--second-factor", kCode, "--try-limit", "1"}));
    for (int i = 0; i < 3; ++i) {
        SecondStep second = step(nas, L"123456");
        second.password = L"wrong";
        EXPECT_EQ(second.run(), kWrongCode);
        EXPECT_EQ(second.session, nullptr);
    }
    EXPECT_EQ(step(nas, L"123456").run(), kDone);
}

TEST_P(LibSecondFactor, WithoutALimitTheTriesNeverRunOut) {
    Nas nas(withArguments({"--second-factor", kCode, "--try-limit", "-1"}));
    for (int i = 0; i < 7; ++i) EXPECT_EQ(step(nas, L"wrong").run(), kWrongCode);
    EXPECT_EQ(login(nas).run(), kWantsCode);
    EXPECT_EQ(step(nas, L"123456").run(), kDone);
}

TEST_P(LibSecondFactor, ACodeGoesAsItWasTyped) {
    Nas nas(withArguments({"--second-factor", "anna:code=a+b/c=", "--second-factor", "ben:code=a&b"}));
    EXPECT_EQ(step(nas, L"a+b/c=").run(), kDone);
    // An "&" ends it, and what follows is no key of the server's.
    SecondStep broken = step(nas, L"a&b");
    broken.user = L"ben";
    broken.password = L"hidden";
    EXPECT_EQ(broken.run(), (Numbers{6, -1}));
    EXPECT_EQ(broken.session, nullptr);
    EXPECT_EQ(nas.requestCount("refused"), 1) << nas.log();
}

TEST_P(LibSecondFactor, TheSessionGoesToTheSyncServiceAsAToken) {
    Nas nas(withArguments({"--second-factor", kCode}));
    Login sync = login(nas);
    sync.road.service = Service::Sync;
    EXPECT_EQ(sync.run(), (Numbers{14, -29}));
    SecondStep second = step(nas, L"123456");
    ASSERT_EQ(second.run(), kDone);
    const Client manager(second.port, std::move(second.session));
    Activation activated = activation(nas, manager.sid());
    EXPECT_EQ(activated.run(), kDone);
    const Client client(activated.port, std::move(activated.session));
    bool isSync = false;
    EXPECT_EQ(WFMGetUseNuboCGI(client.context(), &isSync), 0u);
    EXPECT_TRUE(isSync);
    EXPECT_EQ(client.makeFolder(L"/home", L"d"), kDone);
    EXPECT_TRUE(std::filesystem::is_directory(nas.folder().file("homes/anna/d")));
}

TEST_P(LibToken, AKeptSessionIdMakesASessionThatServesAndEnds) {
    Nas nas(withArguments({"--server-name", "Büro 書類"}));
    const Client first(nas, GetParam());
    Activation again = activation(nas, first.sid());
    EXPECT_EQ(again.run(), kDone);
    EXPECT_TRUE(again.isAdmin);
    EXPECT_EQ(utf8(again.serverName), "Büro 書類");
    const Client second(again.port, std::move(again.session));
    EXPECT_EQ(second.sid(), first.sid());
    EXPECT_EQ(second.upload({"bytes", L"/home/a"}), kDone);
    std::vector<Entry> entries;
    EXPECT_EQ(second.list({}, entries), kDone);
    EXPECT_THAT(names(entries), testing::ElementsAre("a"));
    EXPECT_EQ(second.logout(), 0u);
    EXPECT_EQ(first.stat(L"/home", L"a"), (Numbers{0, -1}));
    EXPECT_EQ(activation(nas, first.sid()).run(), (Numbers{0, -2}));
}

TEST_P(LibToken, ATokenTellsWhoseItIs) {
    Nas nas;
    const Client ben(nas, GetParam(), L"ben", L"hidden");
    Activation activated = activation(nas, ben.sid());
    EXPECT_EQ(activated.run(), kDone);
    EXPECT_FALSE(activated.isAdmin);
    EXPECT_EQ(Client(activated.port, std::move(activated.session)).upload({"ben's", L"/home/a"}), kDone);
    EXPECT_EQ(nas.folder().read("homes/ben/a"), "ben's");
}

TEST_P(LibToken, AnExpiredOrUnknownTokenIsRefusedWithoutASession) {
    Nas nas;
    const Client client(nas, GetParam());
    nas.expireSessions();
    for (const std::wstring& token : {client.sid(), std::wstring(L"nosuchtoken")}) {
        Activation activated = activation(nas, token);
        EXPECT_EQ(activated.run(), (Numbers{0, -2})) << utf8(token);
        EXPECT_EQ(activated.session, nullptr);
        EXPECT_EQ(activated.serverName, L"");
        EXPECT_FALSE(activated.isAdmin);
    }
}

TEST_P(LibToken, ASessionOutsideAClusterIsNotTakenOver) {
    Nas nas;
    const Client client(nas, GetParam());
    nas.forgetRequests();
    EXPECT_EQ(numbersOf([&](std::uint32_t* result) {
                  return TorviActivateSid(kServer, client.port(), client.context(), nullptr, result);
              }).dwStatus,
              87u);
    EXPECT_EQ(nas.requestCount(), 0);
}

TEST_P(LibNode, ANodeThatIsNotInItsClusterTakesNoToken) {
    const TempDir sessions;
    Nas ready(withArguments({"--session-dir", sessions.string(), "--slave-id", "one"}));
    Nas other(
        withArguments({"--session-dir", sessions.string(), "--slave-id", "two", "--cluster-status", "-1"}));
    const Client client(ready, GetParam());
    EXPECT_EQ(activation(other, client.sid()).run(), (Numbers{0, -38}));
    EXPECT_EQ(activation(ready, client.sid()).run(), kDone);
}

TEST_P(LibWayIn, AServerThatInsistsOnTlsSaysSoToEveryDoor) {
    const TempDir mails;
    Nas nas(withArguments(
        {"--redirect-tls", "--second-factor", "ben:mail=ben@example.org", "--mail-dir", mails.string()}));
    Login first = login(nas);
    EXPECT_EQ(first.run(), GetParam().tls ? kDone : kOnlyByTls);
    EXPECT_EQ(first.session != nullptr, GetParam().tls);
    SecondStep second = step(nas, L"1");
    second.user = L"ben";
    second.password = L"hidden";
    EXPECT_EQ(second.run(), GetParam().tls ? kWrongCode : kOnlyByTls);
    wchar_t text[10] = {};
    EXPECT_EQ(WFM2SVGetQuestion(kServer, port(nas), L"ben", L"hidden", L"en", GetParam().tls, 9, text), 14u);
    EXPECT_EQ(WFM2SVSendEmail(kServer, port(nas), L"ben", L"hidden", GetParam().tls), 0u);
    EXPECT_EQ(std::filesystem::exists(mails.file("0001.eml")), GetParam().tls);
    // A token is no secret that the server lets through either.
    Login byTls = login(nas);
    byTls.road.tls = true;
    byTls.port = nas.tlsPort();
    ASSERT_EQ(byTls.run(), kDone);
    const Client client(byTls.port, std::move(byTls.session));
    EXPECT_EQ(activation(nas, client.sid()).run(), (GetParam().tls ? kDone : Numbers{0, -39}));
    EXPECT_EQ(nas.requestCount("refused"), 0) << nas.log();
}

TEST_P(LibNode, ANodeThatIsNotReadyTellsItsAddressesAndOpensNoSession) {
    Nas notReady(withArguments({"--slave-id", "one", "--cluster-status", "-1"}));
    Login toNotReady = login(notReady);
    EXPECT_EQ(toNotReady.run(), (Numbers{14, -37}));
    EXPECT_EQ(toNotReady.session, nullptr);
    EXPECT_EQ(toNotReady.network.nPort, notReady.port());
    EXPECT_EQ(toNotReady.network.nSslPort, notReady.tlsPort());
    Nas refusing(withArguments({"--slave-id", "one", "--cluster-status", "-2"}));
    Login toRefusing = login(refusing);
    EXPECT_EQ(toRefusing.run(), (Numbers{14, -40}));
    EXPECT_EQ(toRefusing.session, nullptr);
    EXPECT_EQ(toRefusing.network.nPort, 0);
}

TEST_P(LibWayIn, AnOldServerHasTheFileManagersDoorAlone) {
    Nas nas(withArguments({"--no-sync-service"}));
    for (const Service service : {Service::Fcgi, Service::Sync}) {
        Login sync = login(nas);
        sync.road.service = service;
        EXPECT_EQ(sync.run(), (Numbers{10, -1}));
        EXPECT_EQ(sync.session, nullptr);
    }
    Login manager = login(nas);
    manager.road.service = Service::FileManager;
    ASSERT_EQ(manager.run(), kDone);
    const Client client(manager.port, std::move(manager.session));
    EXPECT_EQ(client.upload({"bytes", L"/home/a"}), kDone);
    std::vector<Entry> entries;
    EXPECT_EQ(client.list({}, entries), kDone);
    EXPECT_THAT(names(entries), testing::ElementsAre("a"));
    // Tokens are the sync service's.
    EXPECT_EQ(activation(nas, client.sid()).run(), (Numbers{6, -1}));
    EXPECT_EQ(client.logout(), 0u);
    EXPECT_EQ(client.logout(), 14u);
}

TEST_P(LibSystemSid, AnAdministratorGetsAnotherSessionThatServesAsAToken) {
    std::wstring sid, same;
    EXPECT_EQ(systemSid(client, sid), kDone);
    EXPECT_NE(sid, client.sid());
    EXPECT_EQ(systemSid(client, same), kDone);
    EXPECT_EQ(same, sid);
    Activation activated;
    activated.port = client.port();
    activated.tls = GetParam().tls;
    activated.token = sid;
    EXPECT_EQ(activated.run(), kDone);
    EXPECT_EQ(client.logout(), 0u);
    // It outlives the session that it was asked with.
    EXPECT_EQ(Client(activated.port, std::move(activated.session)).createFile(L"/home/a"), kDone);
}

TEST_P(LibSystemSid, ABufferOfItsLengthIsTooSmall) {
    std::wstring sid, cut;
    EXPECT_EQ(systemSid(client, sid), kDone);
    EXPECT_EQ(systemSid(client, cut, static_cast<std::uint32_t>(sid.size())), (Numbers{0, -23}));
    EXPECT_EQ(cut, L"");
    EXPECT_EQ(systemSid(client, cut, static_cast<std::uint32_t>(sid.size() + 1)), kDone);
    EXPECT_EQ(cut, sid);
}

TEST_P(LibSystemSid, OthersAreRefused) {
    std::wstring sid;
    const Client ben(nas, GetParam(), L"ben", L"hidden");
    EXPECT_EQ(systemSid(ben, sid), (Numbers{0, -3}));
    nas.expireSessions();
    EXPECT_EQ(systemSid(client, sid), (Numbers{0, -3}));
    EXPECT_EQ(sid, L"");
}

INSTANTIATE_TEST_SUITE_P(Roads, LibSecondFactor, testing::ValuesIn(fileManagerRoads()), roadName);
INSTANTIATE_TEST_SUITE_P(Roads, LibToken, testing::ValuesIn(syncRoads()), roadName);
INSTANTIATE_TEST_SUITE_P(Roads, LibNode, testing::ValuesIn(syncRoads()), roadName);
E2E_ON_ALL_ROADS(LibWayIn);
E2E_ON_ALL_ROADS(LibSystemSid);
