// WFMSendShareLinkMail and WFMSendShareLinkMail2: one mails a link, the other several and says what for.

#include <gtest/gtest.h>

#include <string>

#include "links.h"

using namespace wire;

namespace {

/// One of the two, with good arguments.
template <class Derived>
struct MailCall : SessionCall<Derived> {
    uint32_t includeAccessCode = 0;
    const wchar_t* addressee = L"bob@nas.example";
    const wchar_t* subject = L"My subject";
    const wchar_t* content = L"Line 1\nLine 2 \x6587";
    const wchar_t* ssids = L"s1";
    const wchar_t* mailPassword = L"p&w";

    using SessionCall<Derived>::SessionCall;
    bool isUntouched() const { return this->result == 0xABCD; }
};

const HeaderList kMail = {{"addressee", "bob%40nas.example"},
                          {"subject", "My%20subject"},
                          {"content", "Line%201%0ALine%202%20%E6%96%87"}};

struct OneMailCall : MailCall<OneMailCall> {
    static constexpr const char* kName = "WFMSendShareLinkMail";
    static constexpr const char* kQuery = "func=send_share_mail&sid=sid123";

    using MailCall::MailCall;
    uint32_t call() {
        return WFMSendShareLinkMail(session, kServer, port, slaveID, nullptr, includeAccessCode, addressee,
                                    subject, content, ssids, mailPassword, resultWord);
    }
    /// The form without a password.
    static HeaderList form(const std::string& withCode) {
        return joined(joined({{"share_ssid", "s1"}}, kMail), {{"include_access_code", withCode}});
    }
};

struct ManyMailCall : MailCall<ManyMailCall> {
    static constexpr const char* kName = "WFMSendShareLinkMail2";
    static constexpr const char* kQuery = "func=share_file&sid=sid123";
    uint32_t downloadType = 2;
    uint32_t networkType = 1;

    using MailCall::MailCall;
    uint32_t call() {
        return WFMSendShareLinkMail2(session, kServer, port, slaveID, nullptr, includeAccessCode,
                                     downloadType, networkType, addressee, subject, content, ssids,
                                     mailPassword, resultWord);
    }
    static HeaderList form(const std::string& withCode) {
        return joined(joined({{"download_type", "create_download_link"}}, kMail),
                      {{"ssids", "s1"},
                       {"file_total", "1"},
                       {"network_type", "internet"},
                       {"include_access_code", withCode},
                       {"access_enabled", withCode}});
    }
};

template <class Call>
class ShareLinkMailWire : public testing::Test {};

struct Names {
    template <class Call>
    static std::string GetName(int) {
        return Call::kName;
    }
};
using Mails = testing::Types<OneMailCall, ManyMailCall>;
TYPED_TEST_SUITE(ShareLinkMailWire, Mails, Names);

}  // namespace

TYPED_TEST(ShareLinkMailWire, PostsItsFieldsInTheirOrderAndNoPasswordWithoutTheCode) {
    expectLinkPost(TypeParam::kQuery, TypeParam::form("false"),
                   [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t* slaveID) {
                       TypeParam call;
                       call.slaveID = slaveID;
                       call.run(session, port);
                   });
}

TYPED_TEST(ShareLinkMailWire, WithTheAccessCodeThePasswordIsSentAndAnEmptyOneToo) {
    for (const uint32_t flag : {1u, 0x80000000u})
        EXPECT_EQ(formOf<TypeParam>([flag](TypeParam& call) { call.includeAccessCode = flag; }),
                  joined(TypeParam::form("true"), {{"mail_content_pwd", "p%26w"}}));
    EXPECT_EQ(formOf<TypeParam>([](TypeParam& call) {
                  call.includeAccessCode = 1;
                  call.mailPassword = nullptr;
              }),
              joined(TypeParam::form("true"), {{"mail_content_pwd", ""}}));
}

TYPED_TEST(ShareLinkMailWire, AMailErrorArrivesAs6AndATimeErrorAs7) {
    expectLinkOutcomes<TypeParam>(TypeParam::kName);
}

TYPED_TEST(ShareLinkMailWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<TypeParam>(
        log, session.get(), TypeParam::kName,
        {[](TypeParam& call) { call.addressee = nullptr; }, [](TypeParam& call) { call.addressee = L""; },
         [](TypeParam& call) { call.subject = nullptr; }, [](TypeParam& call) { call.subject = L""; },
         [](TypeParam& call) { call.content = nullptr; }, [](TypeParam& call) { call.content = L""; },
         [](TypeParam& call) { call.ssids = nullptr; }, [](TypeParam& call) { call.ssids = L""; },
         [](TypeParam& call) { call.resultWord = nullptr; }},
        kSharePrefix);
}

TEST(WFMSendShareLinkMailWire, TheIdIsSentAsItIs) {
    EXPECT_EQ(valueOf(formOf<OneMailCall>([](OneMailCall& call) { call.ssids = L"s1;s2"; }), "share_ssid"),
              "s1%3Bs2");
}

TEST(WFMSendShareLinkMail2Wire, EachLinkHasAFieldOfItsOwn) {
    const auto idsOf = [](const wchar_t* ssids) {
        const HeaderList fields = formOf<ManyMailCall>([ssids](ManyMailCall& call) { call.ssids = ssids; });
        HeaderList ids;
        for (const auto& [key, value] : fields)
            if (key == "ssids" || key == "file_total") ids.emplace_back(key, value);
        return ids;
    };
    EXPECT_EQ(idsOf(L"s1;s2;s3"),
              (HeaderList{{"ssids", "s1"}, {"ssids", "s2"}, {"ssids", "s3"}, {"file_total", "3"}}));
    EXPECT_EQ(idsOf(L";s1;;s2;"), (HeaderList{{"ssids", "s1"}, {"ssids", "s2"}, {"file_total", "2"}}));
    EXPECT_EQ(idsOf(L";"), (HeaderList{{"file_total", "0"}}));
}

TEST(WFMSendShareLinkMail2Wire, TheTypesAreWordsAndRefusedOutOfRange) {
    const HeaderList fields = formOf<ManyMailCall>([](ManyMailCall& call) {
        call.downloadType = 1;
        call.networkType = 2;
    });
    EXPECT_EQ(valueOf(fields, "download_type"), "email_download_link");
    EXPECT_EQ(valueOf(fields, "network_type"), "local");
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<ManyMailCall>(
        log, session.get(), ManyMailCall::kName,
        {[](ManyMailCall& call) { call.downloadType = 0; }, [](ManyMailCall& call) { call.downloadType = 3; },
         [](ManyMailCall& call) { call.networkType = 0; }, [](ManyMailCall& call) { call.networkType = 3; }},
        kSharePrefix);
}
