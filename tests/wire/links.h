#pragma once

#include <string>
#include <vector>

#include "forms.h"
#include "pathroutes.h"
#include "refusals.h"
#include "replies.h"
#include "sessioncall.h"
#include "support/linkrecords.h"

// What the tests of the calls about public links share.
namespace wire {

/// On every way the call posts this query and these fields.
inline void expectLinkPost(const std::string& query, const HeaderList& fields, const CallTo& call,
                           const char* file = __builtin_FILE(), int where = __builtin_LINE()) {
    expectPostOnEveryRoute(query, fields, call, {}, routesToFileManager(), file, where);
}

/// The fields of a form as they stood on the wire.
inline HeaderList rawFields(const Request& request) {
    HeaderList fields;
    for (const Field& field : request.form()) fields.emplace_back(field.rawKey, field.rawValue);
    return fields;
}

/// The form of a call's one request; the call is made with good arguments and then changed.
template <class Call, class Change>
HeaderList formOf(Change change) {
    const RawServer server({Reply::json("{}")});
    Call call(server);
    change(call);
    call.run();
    return rawFields(server.onlyRequest());
}

/// The value of a field as it stood on the wire; "none" if there isn't one.
inline std::string valueOf(const HeaderList& fields, const std::string& key) {
    for (const auto& [name, value] : fields)
        if (name == key) return value;
    return "none";
}

/// A path is shared by its folder and its name, at its place and node; one that lacks either is refused with
/// 14 and sends nothing.
template <class Call>
void expectPathIsSplitAndMapped(const std::string& query, const std::string& name) {
    for (const PathRoute& route : pathRoutes()) {
        SCOPED_TRACE(route.what);
        const RawServer server({Reply::json("{}")});
        const SessionPtr session = route.session();
        const std::wstring path = route.path();
        Call call(server);
        call.session = session.get();
        call.path = path.c_str();
        call.slaveID = route.slaveID;
        LogCapture log;
        const uint32_t dwStatus = call.run();
        if (route.folder == nullptr || *route.folder == L'\0' || *route.name == L'\0') {
            EXPECT_EQ(dwStatus, 14u);
            EXPECT_EQ(call.signedResult(), -1);
            EXPECT_EQ(server.connectionCount(), 0u);
            log.expectLines({kSharePrefix + name + ": WFM_PARSE_XML_FAIL",
                             summaryLine(name, server.port(), 14, kSharePrefix)});
            continue;
        }
        EXPECT_EQ(dwStatus, 0u);
        const Request request = server.onlyRequest();
        expectRequestLine(request, "POST /" + std::string(route.prefix) +
                                       "cgi-bin/filemanager/utilRequest.cgi?" + query + " HTTP/1.1");
        const HeaderList fields = rawFields(request);
        EXPECT_EQ(valueOf(fields, "path"), route.sent);
        EXPECT_EQ(valueOf(fields, "file_name"), route.sentName);
    }
}

/// The three types are sent as words, and refused out of range.
template <class Call>
void expectTypesAreWords(const std::string& name) {
    const char* const durations[] = {"forever", "specific_time", "period_of_time"};
    const char* const downloads[] = {"email_download_link", "create_download_link"};
    const char* const networks[] = {"internet", "local"};
    for (uint32_t type = 1; type <= 3; ++type)
        EXPECT_EQ(valueOf(formOf<Call>([type](Call& call) { call.durationType = type; }), "valid_duration"),
                  durations[type - 1]);
    for (uint32_t type = 1; type <= 2; ++type) {
        EXPECT_EQ(valueOf(formOf<Call>([type](Call& call) { call.downloadType = type; }), "download_type"),
                  downloads[type - 1]);
        EXPECT_EQ(valueOf(formOf<Call>([type](Call& call) { call.networkType = type; }), "network_type"),
                  networks[type - 1]);
    }
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<Call>(
        log, session.get(), name,
        {[](Call& call) { call.downloadType = 0; }, [](Call& call) { call.downloadType = 3; },
         [](Call& call) { call.durationType = 0; }, [](Call& call) { call.durationType = 4; },
         [](Call& call) { call.networkType = 0; }, [](Call& call) { call.networkType = 3; }},
        kSharePrefix);
}

/// The date goes out with the duration that wants one, behind it, and an empty one too.
template <class Call>
void expectDateBelongsToSpecificTime() {
    for (uint32_t type = 1; type <= 3; ++type) {
        const HeaderList fields = formOf<Call>([type](Call& call) {
            call.durationType = type;
            call.datetime = L"2026/12/24";
        });
        EXPECT_EQ(valueOf(fields, "datetime"), type == 2 ? "2026%2F12%2F24" : "none");
        for (size_t i = 1; i < fields.size(); ++i)
            if (fields[i].first == "datetime") {
                EXPECT_EQ(fields[i - 1].first, "valid_duration");
            }
    }
    const HeaderList fields = formOf<Call>([](Call& call) {
        call.durationType = 2;
        call.datetime = nullptr;
    });
    EXPECT_EQ(valueOf(fields, "datetime"), "");
}

/// What the reply of the calls that make, change or mail a link comes to.
template <class Call>
void expectLinkOutcomes(const std::string& name) {
    const auto line = [&](const std::string& code) {
        return std::vector<std::string>{kSharePrefix + name + ": Get error code(" + code + ")"};
    };
    const std::vector<std::string> unreadable = {
        kSharePrefix + name + ": WFM_PARSE_XML_FAIL",
        kSharePrefix + name + "(127.0.0.1:{port}) failed dwStatus(14)"};
    expectReplies<Call>({
        {R"({"status":1})", 0, 0, {}},
        {R"({"status":"1","email_error":0,"time_error":0})", 0, 0, {}},
        {R"({"status":0})", 0, -1, line("-1")},
        {R"({"status":4})", 0, -1, line("-1")},
        {"{}", 0, -1, line("-1")},
        {R"({"status":1,"email_error":1})", 0, 6, line("6")},
        {R"({"status":1,"time_error":1})", 0, 7, line("7")},
        {R"({"status":0,"email_error":"1","time_error":"1"})", 0, 7, line("7")},
        {R"({"status":1,"result":[]})", 14, -1, unreadable},
        {"[]", 14, -1, unreadable},
        {"sorry", 14, -1, unreadable},
    });
}

}  // namespace wire
