// What all calls share on the wire, beyond what each does alone: whom they ask, in whose name, with which
// text, from how many threads.

#include <gtest/gtest.h>

#include <QFile>
#include <QTimer>
#include <atomic>
#include <map>
#include <thread>

// A session whose sid is gone can't be had from outside.
#include "../../src/core/authcontext.h"
#include "calltable.h"
#include "support/logcapture.h"
#include "support/process.h"
#include "support/session.h"
#include "support/tempdir.h"
#include "support/wire.h"

using namespace wire;

namespace {

const std::string kSync = "/cgi-bin/torvi/torvisrv.cgi";
const std::string kFileManager = "/cgi-bin/filemanager/utilRequest.cgi";

/// A session that can list, which takes an agent.
SessionOptions agentOptions() {
    SessionOptions options;
    options.agentName = L"agent";
    return options;
}

std::vector<CallRow> sessionCalls() {
    std::vector<CallRow> rows;
    for (const CallRow& row : callTable())
        if (row.needsSession) rows.push_back(row);
    return rows;
}

/// The first request of a call on such a session; few send more.
Request requestOf(const CallRow& row, const SessionOptions& options, const wchar_t* server = kServer) {
    const RawServer at({Reply::json(row.goodReply)});
    const SessionPtr session = makeSession(options);
    uint32_t result = 0;
    EXPECT_EQ(row.run(session.get(), server, at.port(), &result), 0u);
    return at.request(0);
}

uint32_t folderSize(_WFM_AUTH_CONTEXT* session, uint32_t port, const std::wstring& name,
                    int64_t* size = nullptr, const wchar_t* slaveID = L"", const wchar_t* server = kServer) {
    uint32_t result = 0;
    int64_t ignored = 0;
    const uint32_t status = WFMGetFolderSize(session, server, port, slaveID, name.c_str(), L"/home", nullptr,
                                             &result, size != nullptr ? size : &ignored);
    return status != 0 ? status : result;
}

const char* const kSize = R"({"status":1,"size":"10"})";
const std::string kSizeQuery = "?func=properties&sid=sid123&path=%2Fhome&total=1&name=";

/// The target of a request for the size of a folder of that name.
std::string targetFor(const std::wstring& name) {
    const RawServer server({Reply::json(kSize)});
    const SessionPtr session = makeSession();
    EXPECT_EQ(folderSize(session.get(), server.port(), name), 0u);
    return server.onlyRequest().target();
}

/// What of a request's target fits in a URL of 2047 characters.
size_t roomForTarget(const RawServer& server) {
    return 2047 - std::string("http://").size() - server.authority().size();
}

}  // namespace

class FrameWireOnSessions : public testing::TestWithParam<CallRow> {};

TEST_P(FrameWireOnSessions, TheFileManagersRequestDiffersInItsCgiAlone) {
    if (GetParam().oneService) GTEST_SKIP() << "asks one place";
    if (GetParam().servicesDiffer) GTEST_SKIP() << "has a test of its own";
    SessionOptions options = agentOptions();
    const Request sync = requestOf(GetParam(), options);
    options.fileManager = true;
    const Request older = requestOf(GetParam(), options);
    const char* const own = GetParam().ownCgi;
    EXPECT_EQ(sync.path(), own != nullptr ? std::string("/cgi-bin/torvi/") + own : kSync);
    const char* const olderPath = GetParam().fileManagerPath;
    EXPECT_EQ(older.path(), olderPath != nullptr ? olderPath
                            : own != nullptr     ? std::string("/cgi-bin/filemanager/") + own
                                                 : kFileManager);
    EXPECT_EQ(older.method(), sync.method());
    EXPECT_EQ(older.queryText() + GetParam().syncServiceOnly, sync.queryText());
}

TEST_P(FrameWireOnSessions, TheForwardedAddressGoesToThisMachineByItsNumberOnly) {
    SessionOptions options = agentOptions();
    EXPECT_EQ(requestOf(GetParam(), options).headerCount("X-Forwarded-For"), 0u);
    options.forwardedFor = L"10.1.2.3";
    const Request request = requestOf(GetParam(), options);
    EXPECT_EQ(request.headerCount("X-Forwarded-For"), 1u);
    EXPECT_EQ(request.header("X-Forwarded-For"), "10.1.2.3");
    EXPECT_EQ(requestOf(GetParam(), options, L"localhost").headerCount("X-Forwarded-For"), 0u);
}

TEST_P(FrameWireOnSessions, TheSessionsAgentGoesOutAndAnEmptyOneIsTheTransports) {
    SessionOptions options;
    options.agentName = L"Client \x6587/7";
    EXPECT_EQ(requestOf(GetParam(), options).header("User-Agent"), "Client \xE6\x96\x87/7");
    if (GetParam().isListing) return;  // without an agent nothing can be listed
    EXPECT_EQ(requestOf(GetParam(), {}).header("User-Agent"), "VEXA Torvi");
}

TEST_P(FrameWireOnSessions, SpeaksTls) {
    RawServer::Options tls;
    tls.certificate = Certificate::SelfSigned;
    const RawServer server({Reply::json(GetParam().goodReply)}, tls);
    SessionOptions options = agentOptions();
    options.secure = true;
    const SessionPtr session = makeSession(options);
    uint32_t result = 0;
    EXPECT_EQ(GetParam().run(session.get(), kServer, server.port(), &result), 0u);
    EXPECT_EQ(server.requestCount(), 1 + GetParam().furtherTimeoutsMs.size());
}

TEST_P(FrameWireOnSessions, RefusesASessionWithoutASid) {
    if (!GetParam().needsSid) GTEST_SKIP() << "asks all the same, or has nothing to end";
    const RawServer server({Reply::json(GetParam().goodReply)});
    const SessionPtr session = makeSession(agentOptions());
    session->pszSid[0] = L'\0';
    uint32_t result = 0xABCD;
    EXPECT_EQ(GetParam().run(session.get(), kServer, server.port(), &result), GetParam().refusedStatus);
    EXPECT_EQ(result, 0xABCDu);
    EXPECT_EQ(server.connectionCount(), 0u);
}

TEST_P(FrameWireOnSessions, APortBeyondAllPortsEndsInAnError) {
    const SessionPtr session = makeSession(agentOptions());
    uint32_t result = 0xABCD;
    for (const uint32_t port : {70000u, 0xFFFFFFFFu}) {
        EXPECT_NE(GetParam().run(session.get(), kServer, port, &result), 0u) << port;
        EXPECT_NE(result, 0xABCDu) << port;
    }
}

TEST_P(FrameWireOnSessions, WritesNoLineThatTheLevelsLeaveOut) {
    const RawServer server({Reply::status(500)});
    const SessionPtr session = makeSession(agentOptions());
    for (const uint32_t levels : {0u, 63u & ~32u}) {
        LogCapture log(levels);
        uint32_t result = 0;
        EXPECT_EQ(GetParam().run(session.get(), kServer, server.port(), &result), 6u);
        log.expectNoLines();
    }
}

INSTANTIATE_TEST_SUITE_P(, FrameWireOnSessions, testing::ValuesIn(sessionCalls()),
                         [](const testing::TestParamInfo<CallRow>& row) {
                             return std::string(row.param.name);
                         });

TEST(FrameWire, TheSessionsOwnNodeIsNoNodeByteForByte) {
    SessionOptions options;
    options.slaveID = "Node7";
    const SessionPtr session = makeSession(options);
    const auto rawFor = [&](const wchar_t* slaveID) {
        const RawServer server({Reply::json(kSize)});
        EXPECT_EQ(folderSize(session.get(), server.port(), L"a", nullptr, slaveID), 0u);
        std::string raw = server.onlyRequest().raw;
        raw.replace(raw.find(server.authority()), server.authority().size(), "host");
        return raw;
    };
    const std::string without = rawFor(nullptr);
    EXPECT_EQ(without.find("GET " + kSync + kSizeQuery + "a HTTP/1.1\r\n"), 0u);
    for (const wchar_t* slaveID : {L"", L"Node7", L"node7", L"NODE7"}) EXPECT_EQ(rawFor(slaveID), without);
    EXPECT_EQ(rawFor(L"Node8").find("GET /Node8" + kSync), 0u);
    EXPECT_EQ(rawFor(L"Node70").find("GET /Node70" + kSync), 0u);
}

TEST(FrameWire, EveryCharacterArrivesAsItWasMeant) {
    // The tilde is encoded like its neighbours, and put back on its way.
    const std::wstring ascii = L"a0-._ !\"#$%&'()*+,/:;<>=?@[\\]^`{|}~";
    const std::string sent =
        "a0-._%20%21%22%23%24%25%26%27%28%29%2A%2B%2C%2F%3A%3B%3C%3E%3D%3F%40%5B%5C%5D%5E%60%7B%7C%7D~";
    EXPECT_EQ(targetFor(ascii), kSync + kSizeQuery + sent);
    EXPECT_EQ(percentDecode(sent), std::string(ascii.begin(), ascii.end()));

    const std::pair<const wchar_t*, const char*> rows[] = {
        {L"100%", "100%25"},
        {L"%20", "%2520"},
        {L"%", "%25"},
        {L"%zz%4", "%25zz%254"},
        {L"\x6587\x4EF6", "%E6%96%87%E4%BB%B6"},
        {L"\x1F600", "%F0%9F%98%80"},
        {L"\xE9", "%C3%A9"},
    };
    for (const auto& [name, wire] : rows) EXPECT_EQ(targetFor(name), kSync + kSizeQuery + wire);
}

TEST(FrameWire, AUrlIsCutAt2047Characters) {
    const RawServer server({Reply::json(kSize)});
    const SessionPtr session = makeSession();
    const size_t room = roomForTarget(server);
    const std::string head = kSync + kSizeQuery;
    const size_t fits = room - head.size();
    size_t count = 0;
    const auto target = [&](const std::wstring& name) {
        EXPECT_EQ(folderSize(session.get(), server.port(), name), 0u);
        return server.request(count++).target();
    };
    // As long as it may be, and longer.
    EXPECT_EQ(target(std::wstring(fits, L'x')), head + std::string(fits, 'x'));
    EXPECT_EQ(target(std::wstring(fits + 1, L'x')), head + std::string(fits, 'x'));
    EXPECT_EQ(target(std::wstring(50000, L'x')), head + std::string(fits, 'x'));
    // Characters are counted before they become bytes.
    std::string chinese;
    for (size_t i = 0; i < fits; ++i) chinese += "%E6%96%87";
    EXPECT_EQ(target(std::wstring(fits + 1, L'\x6587')), head + chinese);
    // Half of an encoded character makes the transport take no "%" of the URL for the sign of one.
    std::string literal = head;
    literal.replace(literal.find("%2F"), 3, "%252F");
    EXPECT_EQ(target(std::wstring(fits - 2, L'x') + L"&"), literal + std::string(fits - 2, 'x') + "%252");
    EXPECT_EQ(target(std::wstring(fits - 1, L'x') + L"&"), literal + std::string(fits - 1, 'x') + "%25");
}

TEST(FrameWire, AServerThatIsNoHostEndsInAnError) {
    const SessionPtr session = makeSession();
    for (const wchar_t* server : {L"no host", L"[", L"a/b", L"%", L"\x1F600 ", L"user@"}) {
        LogCapture log;
        EXPECT_NE(folderSize(session.get(), 80, L"a", nullptr, L"", server), 0u);
        EXPECT_EQ(log.lines().size(), 2u);
    }
}

TEST(FrameWire, ALineTellsServerAndPortWhole) {
    const SessionPtr session = makeSession();
    LogCapture log;
    const std::wstring server = L"n\xE9\x6587\x1F600 {port}%d%ls" + std::wstring(3000, L'x');
    folderSize(session.get(), 0, L"a", nullptr, L"", server.c_str());
    log.expectLines({"[WFM] WWFMGetFolderSize(n\xC3\xA9\xE6\x96\x87\xF0\x9F\x98\x80 {port}%d%ls" +
                     std::string(3000, 'x') + ":0): WFM_PARSE_XML_INVALID_PARAMETER"});
}

TEST(FrameWire, TimersOfTheCallersThreadRunWhileACallWaits) {
    RawServer server({Reply::json(kSize).held()});
    const SessionPtr session = makeSession();
    bool ran = false;
    QTimer::singleShot(0, [&] {
        ran = true;
        server.release();
    });
    EXPECT_EQ(folderSize(session.get(), server.port(), L"a"), 0u);
    EXPECT_TRUE(ran);
}

// ---- Threads ----

namespace {

constexpr int kThreads = 32;
constexpr int64_t kFileSize = 100000;

/// What tells one kind of request from the others. Those of shared folders repeat the session in their forms.
std::string kindOf(const Request& request) {
    const std::vector<Field> query = request.query();
    return request.method() + " " + request.path() + " " + (query.empty() ? "" : query.front().value) +
           (request.body.find("&sn=") != std::string::npos ? " with sn" : "");
}

std::string fileOf(const std::string& name) {
    return pattern(kFileSize, std::stoull(name) * 7919);
}

/// Downloads the file of that name and gives what arrived.
std::string fetch(_WFM_AUTH_CONTEXT* session, uint32_t port, const std::wstring& name,
                  const TempDir& folder) {
    const std::string local = std::string(name.begin(), name.end());
    QFile file(QString::fromStdString(folder.file(local)));
    uint32_t result = 0;
    const uint32_t status =
        WFMDownloadFileToHandle(session, kServer, port, L"", (L"/home/" + name).c_str(), &file, nullptr,
                                &kFileSize, nullptr, nullptr, nullptr, &result);
    return status == 0 && result == 0 ? folder.read(local) : std::string();
}

}  // namespace

TEST(FrameWire, ThirtyTwoThreadsOnClonesRunEveryCallAtOnce) {
    // Alone first: what each call asks, what it is answered, and what it then says.
    const SessionPtr session = makeSession(agentOptions());
    std::map<std::string, std::string> answers;
    std::vector<uint32_t> resultsAlone;
    size_t requests = 0;
    for (const CallRow& row : callTable()) {
        const RawServer server({Reply::json(row.goodReply)});
        uint32_t result = 0;
        EXPECT_EQ(row.run(session.get(), kServer, server.port(), &result), 0u) << row.name;
        resultsAlone.push_back(result);
        for (const Request& request : server.requests()) answers[kindOf(request)] = row.goodReply;
        requests += server.requestCount();
    }

    const RawServer server([&](const Request& request) {
        const std::string kind = kindOf(request);
        if (kind == "POST " + kSync + " download") return Reply::text(fileOf(request.form().back().value));
        const std::string name = request.query().empty() ? "" : request.query().back().value;
        if (kind == "GET " + kSync + " properties" && name[0] == '1')
            return Reply::json(R"({"status":1,"size":")" + name + "\"}");
        const auto answer = answers.find(kind);
        return answer != answers.end() ? Reply::json(answer->second) : Reply::status(500, kind);
    });
    const TempDir folder;
    std::atomic<int> failures{0};
    const auto work = [&](int number) {
        _WFM_AUTH_CONTEXT* copied = nullptr;
        WFMCloneAuthContext(session.get(), &copied);
        const SessionPtr clone(copied);
        // Each thread begins elsewhere, so that unlike calls meet.
        const std::vector<CallRow>& calls = callTable();
        for (size_t i = 0; i < calls.size(); ++i) {
            const size_t at = (i + static_cast<size_t>(number)) % calls.size();
            uint32_t result = 0;
            const uint32_t status = calls[at].run(clone.get(), kServer, server.port(), &result);
            if (status != 0 || result != resultsAlone[at]) ++failures;
        }
        // Each thread gets its own answer, none another's.
        const std::string own = std::to_string(1000 + number);
        int64_t size = 0;
        if (folderSize(clone.get(), server.port(), std::wstring(own.begin(), own.end()), &size) != 0 ||
            size != 1000 + number)
            ++failures;
        if (fetch(clone.get(), server.port(), std::wstring(own.begin(), own.end()), folder) != fileOf(own))
            ++failures;
    };
    LogCapture log;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) threads.emplace_back(work, i);
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(server.requestCount(), kThreads * (requests + 2));
    log.expectNoLines();
    EXPECT_EQ(log.qtWarnings(), std::vector<std::string>());
}

// ---- No application object ----

TEST(FrameWire, WithoutAnApplicationObjectACallIsRefusedAndDoesNotHang) {
    const RawServer server({Reply::json("{}")});
    const TempDir folder;
    folder.write("file", "0123456789");
    const std::string port = std::to_string(server.port());
    const ProcessResult child = runProcess(NOAPP_CHILD_PATH, {port, folder.string()});
    EXPECT_EQ(child.exitCode, 0) << child.err;
    const std::string refused =
        "WFMGetVersion 8 ABCD\nTorviLogin 8 ABCD\nWFMDownloadFileToHandle 8 ABCD\n"
        "WFMUploadFilewithHandle 8 ABCD\n";
    EXPECT_EQ(child.out, refused + refused);  // on either thread

    std::vector<std::string> lines;
    std::istringstream log(child.err);
    for (std::string line; std::getline(log, line);)
        if (const auto at = line.find("[WFM]"); at != std::string::npos) lines.push_back(line.substr(at));
    std::vector<std::string> expected = {
        "[WFM] WFMGetVersion(127.0.0.1:" + port + "): WFM_PARSE_XML_INVALID_PARAMETER",
        "[WFM] TorviLogin: WFM_PARSE_XML_INVALID_PARAMETER",
        "[WFM] WFMDownloadFileToHandle(127.0.0.1:" + port + "): WFM_PARSE_XML_INVALID_PARAMETER",
        "[WFM] WFMUploadFilewithHandle: WFM_PARSE_XML_INVALID_PARAMETER",
    };
    for (size_t i = 0; i < 4; ++i) expected.push_back(expected[i]);
    EXPECT_EQ(lines, expected) << child.err;
    EXPECT_EQ(server.connectionCount(), 0u);
    EXPECT_EQ(folder.read("file"), "0123456789");
}
