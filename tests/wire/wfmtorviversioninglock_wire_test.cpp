#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "versioning.h"

using namespace wire;

namespace {

/// A caller's record. What the ids don't fill is garbage.
struct LockRecord {
    LockRecord() { set(L"", L""); }
    void set(const std::wstring& lockID, const std::wstring& versionID) {
        std::memset(static_cast<void*>(&record), 0x5A, sizeof record);
        std::wcscpy(record.szLockID, lockID.c_str());
        std::wcscpy(record.szVersionID, versionID.c_str());
    }
    /// Both ids, an unterminated one as such.
    std::wstring text() const { return one(record.szLockID) + L", " + one(record.szVersionID); }
    bool operator==(const LockRecord& other) const {
        return std::memcmp(&record, &other.record, sizeof record) == 0;
    }

    WFM_VERSIONING_LOCK record;

private:
    static std::wstring one(const wchar_t (&field)[260]) {
        const auto end = std::find(std::begin(field), std::end(field), L'\0');
        return end != std::end(field) ? std::wstring(std::begin(field), end) : L"unterminated";
    }
};

struct LockCall : VersioningCall<LockCall> {
    LockRecord lock;
    WFM_VERSIONING_LOCK* record = &lock.record;

    using VersioningCall::VersioningCall;
    uint32_t call() {
        return WFMTorviVersioningLock(session, kServer, port, slaveID, path, nullptr, resultWord, record);
    }
    bool isUntouched() const { return result == 0xABCD && lock == LockRecord(); }
};

/// A call that checks a session that is there.
struct CheckCall : LockCall {
    CheckCall() { lock.set(L"lock-1", L"version-1"); }
    explicit CheckCall(const RawServer& at) : LockCall(at) { lock.set(L"lock-1", L"version-1"); }
    bool isUntouched() const { return lock.text() == L"lock-1, version-1"; }
};

std::string newSession(const std::string& folder, const std::string& name) {
    return "func=versioning_lock&create_version=1&sid=sid123&source_path=" + folder + "&source_file=" + name;
}

std::string oldSession(const std::string& folder, const std::string& name,
                       const std::string& versionID = "version-1", const std::string& lockID = "lock-1") {
    return "func=versioning_lock&check_version=1&sid=sid123&source_path=" + folder + "&source_file=" + name +
           "&version_id=" + versionID + "&lockid=" + lockID;
}

const char* const kGood = R"({"status":1,"lockid":"lock-2","version_id":"version-2"})";

}  // namespace

TEST(WFMTorviVersioningLockWire, OpensASessionWithOneGetAndHandsOutItsIds) {
    RawServer server({Reply::json(kGood)});
    LockCall call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.lock.text(), L"lock-2, version-2");
    log.expectNoLines();
    expectGet(server.onlyRequest(), "/cgi-bin/torvi/torvisrv.cgi?" + newSession("%2Fhome%2Fd", "a.txt"),
              baseHeaders(server));
}

TEST(WFMTorviVersioningLockWire, ChecksASessionWithOneGetAndTakesRenewedIds) {
    RawServer server({Reply::json(kGood)});
    CheckCall call(server);
    LogCapture log;
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.lock.text(), L"lock-2, version-2");
    log.expectNoLines();
    expectGet(server.onlyRequest(), "/cgi-bin/torvi/torvisrv.cgi?" + oldSession("%2Fhome%2Fd", "a.txt"),
              baseHeaders(server));
}

TEST(WFMTorviVersioningLockWire, OneIdAloneOpensANewSession) {
    const std::pair<const wchar_t*, const wchar_t*> rows[] = {{L"lock-1", L""}, {L"", L"version-1"}};
    for (const auto& [lockID, versionID] : rows) {
        RawServer server({Reply::json(kGood)});
        LockCall call(server);
        call.lock.set(lockID, versionID);
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(server.onlyRequest().queryText(), newSession("%2Fhome%2Fd", "a.txt"));
        EXPECT_EQ(call.lock.text(), L"lock-2, version-2");
    }
}

TEST(WFMTorviVersioningLockWire, GoesToTheNodeAndFolderOfItsPath) {
    expectVersioningRoutes<LockCall>(newSession);
    expectVersioningRoutes<CheckCall>(
        [](const std::string& folder, const std::string& name) { return oldSession(folder, name); });
}

TEST(WFMTorviVersioningLockWire, EncodesThePathAndSendsTheIdsAsGiven) {
    RawServer server({Reply::json(kGood)});
    LockCall call(server);
    call.setPath(L"/100% & \x6587/a'b=\x1F600~.txt");
    call.lock.set(L"l/1:2,3=4+5", L"v/1:2,3=4+5");
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(
        server.onlyRequest().queryText(),
        oldSession("%2F100%25%20%26%20%E6%96%87", "a%27b%3D%F0%9F%98%80~.txt", "v/1:2,3=4+5", "l/1:2,3=4+5"));
}

TEST(WFMTorviVersioningLockWire, AnIdThatTheReplyLacksKeepsWhatItHeld) {
    const std::pair<const char*, const wchar_t*> rows[] = {
        {R"({"status":1})", L"lock-1, version-1"},
        {R"({"status":1,"version_id":"version-2"})", L"lock-1, version-2"},
        {R"({"status":1,"lockid":"lock-2"})", L"lock-2, version-1"},
        {R"({"status":1,"lockid":"","version_id":""})", L"lock-1, version-1"},
        {R"({"status":"1","lockid":7,"version_id":null})", L"7, version-1"},
    };
    for (const auto& [reply, ids] : rows) {
        const std::wstring expected = ids;
        expectReplies<CheckCall>({{reply, 0, 0, {}}},
                                 [&](const CheckCall& call) { EXPECT_EQ(call.lock.text(), expected); });
    }
    // A lock id alone, which the request left out.
    RawServer server({Reply::json(R"({"status":1})")});
    LockCall call(server);
    call.lock.set(L"lock-1", L"");
    EXPECT_EQ(call.run(), 0u);
    EXPECT_EQ(call.result, 0u);
    EXPECT_EQ(call.lock.text(), L"lock-1, ");
}

TEST(WFMTorviVersioningLockWire, AnIdNeverOverrunsItsField) {
    for (const size_t length : {size_t{259}, size_t{260}, size_t{2000}}) {
        const std::string id(length, 'x');
        expectReplies<LockCall>(
            {{R"({"status":1,"lockid":")" + id + R"(","version_id":")" + id + "\"}", 0, 0, {}}},
            [](const LockCall& call) {
                EXPECT_EQ(call.lock.text(), std::wstring(259, L'x') + L", " + std::wstring(259, L'x'));
            });
    }
}

TEST(WFMTorviVersioningLockWire, AnyOtherStatusLeavesTheRecord) {
    const auto line = [](int status) {
        return "[WFM] WFMTorviVersioningLock: get error status = " + std::to_string(status);
    };
    const char* const ids = R"(,"lockid":"lock-2","version_id":"version-2"})";
    const auto reply = [&](const char* status) { return std::string(R"({"status":)") + status + ids; };
    const std::vector<ReplyRow> rows = {
        {reply("0"), 0, -1, {line(0)}},   {reply("2"), 0, -1, {line(2)}},
        {reply("4"), 0, -1, {line(4)}},   {reply(R"("33")"), 0, -1, {line(33)}},
        {reply("-1"), 0, -1, {line(-1)}}, {reply("-4"), 0, -1, {line(-4)}},
    };
    expectReplies<LockCall>(rows, [](const LockCall& call) { EXPECT_EQ(call.lock.text(), L", "); });
    expectReplies<CheckCall>(rows, [](const CheckCall& call) { EXPECT_TRUE(call.isUntouched()); });
}

TEST(WFMTorviVersioningLockWire, AReplyWithoutAStatusIs14AndLeavesTheRecord) {
    const std::vector<std::string> lines = {
        "[WFM] WFMTorviVersioningLock: WFM_PARSE_XML_FAIL",
        "[WFM] WFMTorviVersioningLock(127.0.0.1:{port}) failed dwStatus(14)"};
    expectReplies<CheckCall>(
        {
            {"{}", 14, -1, lines},
            {R"({"status":null,"lockid":"lock-2","version_id":"version-2"})", 14, -1, lines},
            {R"({"lockid":"lock-2","version_id":"version-2"})", 14, -1, lines},
            {R"({"status":1,"lockid":["lock-2"]})", 14, -1, lines},
            {R"({"status":1,"lockid":"lock-2","version_id":{}})", 14, -1, lines},
        },
        [](const CheckCall& call) { EXPECT_TRUE(call.isUntouched()); });
}

TEST(WFMTorviVersioningLockWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<LockCall>(
        log, session.get(), "WFMTorviVersioningLock",
        {[](LockCall& call) { call.path = nullptr; }, [](LockCall& call) { call.path = L""; },
         [](LockCall& call) { call.resultWord = nullptr; }, [](LockCall& call) { call.record = nullptr; }});
}
