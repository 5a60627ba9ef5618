// WFMCreateShareLink: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>

#include "links.h"

using namespace wire;

namespace {

struct CreateLinkCall : SessionCall<CreateLinkCall> {
    uint32_t downloadType = 2;
    uint32_t durationType = 1;
    uint32_t networkType = 1;
    const wchar_t* hostname = L"nas.example";
    uint64_t fileTotal = 1;
    const wchar_t* path = L"/home/d/a.txt";
    const wchar_t* accessCode = nullptr;
    const wchar_t* mailPassword = nullptr;
    const wchar_t* datetime = nullptr;
    bool secureLink = false;
    const wchar_t* expireTime = L"7";
    const wchar_t* addressee = L"bob@nas.example";
    const wchar_t* mailDate = L"24.12.";
    const wchar_t* subject = nullptr;
    const wchar_t* content = nullptr;

    using SessionCall::SessionCall;
    uint32_t call() {
        return WFMCreateShareLink(session, kServer, port, slaveID, downloadType, durationType, networkType,
                                  hostname, fileTotal, path, accessCode, mailPassword, datetime, secureLink,
                                  expireTime, addressee, mailDate, subject, content, nullptr, resultWord);
    }
    bool isUntouched() const { return result == 0xABCD; }
};

const char* const kQuery = "func=share_file&sid=sid123";

}  // namespace

TEST(WFMCreateShareLinkWire, WithoutAMailItPostsThePlainForm) {
    expectLinkPost(kQuery,
                   {{"download_type", "create_download_link"},
                    {"valid_duration", "forever"},
                    {"link_url", ""},
                    {"file_name", "a.txt"},
                    {"file_total", "1"},
                    {"access_code", ""},
                    {"access_enabled", "false"},
                    {"hostname", "nas.example"},
                    {"ssl", "false"},
                    {"include_access_code", "false"},
                    {"path", "%2Fhome%2Fd"},
                    {"network_type", "internet"},
                    {"mail_content_date", "24.12."},
                    {"expire_time", "7"}},
                   [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t* slaveID) {
                       CreateLinkCall call;
                       call.slaveID = slaveID;
                       call.mailPassword = L"not sent";
                       call.run(session, port);
                   });
}

TEST(WFMCreateShareLinkWire, WithSubjectAndContentItPostsTheMailForm) {
    expectLinkPost(kQuery,
                   {{"download_type", "email_download_link"},
                    {"addressee", "bob%40nas.example"},
                    {"subject", "My%20subject"},
                    {"content", "Line%201%0ALine%202%20%E6%96%87"},
                    {"valid_duration", "specific_time"},
                    {"datetime", "2026%2F12%2F24"},
                    {"link_url", ""},
                    {"file_name", "100%25%20%E6%96%87"},
                    {"file_total", "18446744073709551615"},
                    {"access_code", "c%26d"},
                    {"access_enabled", "true"},
                    {"hostname", "nas.example"},
                    {"ssl", "true"},
                    {"include_access_code", "true"},
                    {"mail_content_pwd", "p%26w"},
                    {"path", "%2Fhome%2Fb%20c"},
                    {"network_type", "local"},
                    {"mail_content_date", "24.12."},
                    {"expire_time", "7"}},
                   [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t* slaveID) {
                       CreateLinkCall call;
                       call.slaveID = slaveID;
                       call.downloadType = 1;
                       call.durationType = 2;
                       call.networkType = 2;
                       call.fileTotal = 0xFFFFFFFFFFFFFFFF;
                       call.path = L"/home/b c/100% \x6587";
                       call.accessCode = L"c&d";
                       call.mailPassword = L"p&w";
                       call.datetime = L"2026/12/24";
                       call.secureLink = true;
                       call.subject = L"My subject";
                       call.content = L"Line 1\nLine 2 \x6587";
                       call.run(session, port);
                   });
}

TEST(WFMCreateShareLinkWire, AMailNeedsBothSubjectAndContent) {
    const struct {
        const wchar_t* subject;
        const wchar_t* content;
        bool mails;
    } rows[] = {{L"s", L"c", true},
                {L"s", L"", false},
                {L"s", nullptr, false},
                {L"", L"c", false},
                {nullptr, L"c", false}};
    for (const auto& row : rows) {
        const HeaderList fields = formOf<CreateLinkCall>([&row](CreateLinkCall& call) {
            call.subject = row.subject;
            call.content = row.content;
            call.mailPassword = L"pw";
        });
        for (const char* key : {"addressee", "subject", "content", "mail_content_pwd"})
            EXPECT_EQ(valueOf(fields, key) != "none", row.mails) << key;
    }
}

TEST(WFMCreateShareLinkWire, AnEmptyMailPasswordIsNotSent) {
    for (const wchar_t* password : {static_cast<const wchar_t*>(nullptr), L""}) {
        const HeaderList fields = formOf<CreateLinkCall>([password](CreateLinkCall& call) {
            call.subject = call.content = L"x";
            call.mailPassword = password;
        });
        EXPECT_EQ(valueOf(fields, "mail_content_pwd"), "none");
    }
}

TEST(WFMCreateShareLinkWire, TheTypesAreWordsAndRefusedOutOfRange) {
    expectTypesAreWords<CreateLinkCall>("WFMCreateShareLink");
}

TEST(WFMCreateShareLinkWire, TheDateBelongsToASpecificTime) {
    expectDateBelongsToSpecificTime<CreateLinkCall>();
}

TEST(WFMCreateShareLinkWire, ThePathIsSplitAndMapped) {
    expectPathIsSplitAndMapped<CreateLinkCall>(kQuery, "WFMCreateShareLink");
}

TEST(WFMCreateShareLinkWire, ATimeErrorGoesBeforeAMailErrorBeforeTheStatus) {
    expectLinkOutcomes<CreateLinkCall>("WFMCreateShareLink");
}

TEST(WFMCreateShareLinkWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<CreateLinkCall>(
        log, session.get(), "WFMCreateShareLink",
        {[](CreateLinkCall& call) { call.hostname = nullptr; },
         [](CreateLinkCall& call) { call.hostname = L""; }, [](CreateLinkCall& call) { call.path = nullptr; },
         [](CreateLinkCall& call) { call.path = L""; },
         [](CreateLinkCall& call) { call.expireTime = nullptr; },
         [](CreateLinkCall& call) { call.expireTime = L""; },
         [](CreateLinkCall& call) { call.addressee = nullptr; },
         [](CreateLinkCall& call) { call.addressee = L""; },
         [](CreateLinkCall& call) { call.mailDate = nullptr; },
         [](CreateLinkCall& call) { call.mailDate = L""; },
         [](CreateLinkCall& call) { call.resultWord = nullptr; }},
        kSharePrefix);
}
