// WFMCreateFile: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "lines.h"
#include "pathroutes.h"
#include "refusals.h"
#include "support/logcapture.h"
#include "support/rawserver.h"
#include "support/session.h"
#include "support/wire.h"
#include "uploads.h"

using namespace wire;

namespace {

const char* const kGood = R"({"status":1,"success":"true"})";

struct CreateFileCall {
    const wchar_t* slaveID = nullptr;
    const wchar_t* path = L"/home/a.txt";
    bool cancel = true;  // not read
    uint32_t result = 0xABCD;
    uint32_t* resultWord = &result;

    CreateFileCall() = default;
    CreateFileCall(const CreateFileCall&) = delete;
    CreateFileCall& operator=(const CreateFileCall&) = delete;

    uint32_t run(_WFM_AUTH_CONTEXT* session, uint32_t port) {
        return WFMCreateFile(session, kServer, port, slaveID, path, &cancel, resultWord);
    }
    bool isUntouched() const { return result == 0xABCD; }
};

/// The body of a request without a file part: an empty name, and the closing field.
std::string bodyWithoutFile(const Request& request) {
    const std::string line = "--" + request.multipart().boundary;
    return line + "\r\nContent-Disposition: form-data; name=\"Filename\"\r\n\r\n\r\n" + line +
           "\r\nContent-Disposition: form-data; name=\"Upload\"\r\n\r\nSubmit Query\r\n" + line + "--";
}

class WFMCreateFileWire : public testing::Test {
protected:
    SessionPtr session = pathRouteSession();
    LogCapture log;
};

}  // namespace

TEST_F(WFMCreateFileWire, PostsAFilePartWithoutBytes) {
    RawServer server({Reply::json(kGood)});
    CreateFileCall call;
    EXPECT_EQ(call.run(session.get(), server.port()), 0u);
    EXPECT_EQ(call.result, 0u);
    const Request request = server.onlyRequest();
    expectRequestLine(
        request,
        "POST /cgi-bin/torvi/torvisrv.cgi?func=upload&sid=sid123&dest_path=%2Fhome&overwrite=1 HTTP/1.1");
    expectHeaders(request, transferHeaders(server, request));
    EXPECT_EQ(request.body, uploadBody(request, "a.txt", "", "Upload"));
    EXPECT_EQ(request.bodySize, request.body.size());
    log.expectNoLines();
}

TEST_F(WFMCreateFileWire, TheFileGoesToItsPlaceAndNode) {
    for (const PathRoute& route : pathRoutes()) {
        SCOPED_TRACE(route.what);
        RawServer server({Reply::json(kGood)});
        const SessionPtr routed = route.session();
        const std::wstring path = route.path();
        CreateFileCall call;
        call.path = path.c_str();
        call.slaveID = route.slaveID;
        EXPECT_EQ(call.run(routed.get(), server.port()), 0u);
        EXPECT_EQ(call.result, 0u);
        const Request request = server.onlyRequest();
        expectRequestLine(request, "POST " + route.cgi() + "?func=upload&sid=sid123&dest_path=" + route.sent +
                                       "&overwrite=1 HTTP/1.1");
        const std::string name = route.sentName;
        EXPECT_EQ(request.body,
                  name.empty() ? bodyWithoutFile(request) : uploadBody(request, name, "", "Upload"));
    }
}

TEST_F(WFMCreateFileWire, ATeamFoldersRootGoesOutWithAnEmptyNameAndNoFilePart) {
    for (const wchar_t* path : {L"/home/.Torvi/T", L"/home/.Torvi/T/"}) {
        RawServer server({Reply::json(kGood)});
        CreateFileCall call;
        call.path = path;
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        const Request request = server.onlyRequest();
        EXPECT_EQ(request.queryText(), "func=upload&sid=sid123&dest_path=vtf%3A%2F%2FS&overwrite=1");
        EXPECT_EQ(request.multipart().parts.size(), 2u);
        EXPECT_EQ(request.body, bodyWithoutFile(request));
        EXPECT_EQ(request.bodySize, request.body.size());
    }
}

TEST_F(WFMCreateFileWire, TheParentIsEncodedAndTheNameIsNot) {
    const struct {
        const wchar_t* path;
        const char* parent;
        const char* name;
    } rows[] = {
        {L"/home/b c&d/100% ~.txt", "%2Fhome%2Fb%20c%26d", "100% ~.txt"},
        {L"/\x6587\U0001F600/\x6587\U0001F600", "%2F%E6%96%87%F0%9F%98%80", "\xE6\x96\x87\xF0\x9F\x98\x80"},
        {L"/home/%1%2", "%2Fhome", "%1%2"},
        {L"relative/a", "relative", "a"},
        {L"/home/etc\\passwd", "%2Fhome", "etc\\passwd"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        RawServer server({Reply::json(kGood)});
        CreateFileCall call;
        call.path = row.path;
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        const Request request = server.onlyRequest();
        EXPECT_EQ(request.queryText(),
                  "func=upload&sid=sid123&dest_path=" + std::string(row.parent) + "&overwrite=1");
        EXPECT_EQ(request.body, uploadBody(request, row.name, "", "Upload"));
    }
}

TEST_F(WFMCreateFileWire, WhatTheServerSaysDecidesTheResult) {
    const auto refused = [](int status) {
        return std::vector<LogLine>{"[WFM] WFMCreateFile: get error status = " + std::to_string(status) +
                                    ", vtf://S/\xE6\x96\x87"};
    };
    const struct {
        const char* status;
        int32_t result;
        std::vector<LogLine> lines;
    } rows[] = {{"1", 0, {}},
                {"\"1\"", 0, {}},
                {"4", 5, refused(-3)},
                {"9", 112, refused(-6)},
                {"2", -1, refused(-15)},
                {"3", -1, refused(-29)},
                {"5", -1, refused(-4)},
                {"34", -1, refused(-1)},
                {"null", -1, refused(-1)}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.status);
        RawServer server({Reply::json(R"({"success":"true","status":)" + std::string(row.status) + "}")});
        CreateFileCall call;
        call.path = L"/home/.Torvi/T/\x6587";
        log.clear();
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        EXPECT_EQ(static_cast<int32_t>(call.result), row.result);
        EXPECT_EQ(log.lines(), row.lines);
    }
}

TEST_F(WFMCreateFileWire, WithoutSuccessTheReplyIsNotUnderstood) {
    const struct {
        const char* reply;
        int parsed;
    } rows[] = {{R"({"status":1})", 1},
                {R"({"status":1,"success":"false"})", 1},
                {R"({"status":1,"success":"TRUE"})", 1},
                {"{}", 1},
                {R"({"status":1,"success":["true"]})", -1},
                {R"({"status":99999999999,"success":"true"})", -1},
                {"[]", -1},
                {"", -1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        RawServer server({Reply::json(row.reply)});
        CreateFileCall call;
        log.clear();
        EXPECT_EQ(call.run(session.get(), server.port()), 14u);
        EXPECT_EQ(call.result, 0xFFFFFFFFu);
        log.expectLines({"[WFM] WFMCreateFile: WFM_PARSE_XML_FAIL nParseResult(" +
                             std::to_string(row.parsed) + ") Result(0)",
                         summaryLine("WFMCreateFile", server.port(), 14)});
    }
}

TEST_F(WFMCreateFileWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    expectRefusals<CreateFileCall>(
        log, session.get(), "WFMCreateFile",
        {[](CreateFileCall& call) { call.path = nullptr; }, [](CreateFileCall& call) { call.path = L""; },
         [](CreateFileCall& call) { call.resultWord = nullptr; }});
}
