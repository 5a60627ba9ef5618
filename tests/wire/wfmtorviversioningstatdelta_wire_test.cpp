#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "lines.h"
#include "versioning.h"

using namespace wire;

namespace {

struct StatDeltaCall : VersioningCall<StatDeltaCall> {
    WFM_VERSIONING_DELTA_STAT stat{true, -77};
    WFM_VERSIONING_DELTA_STAT* out = &stat;

    using VersioningCall::VersioningCall;
    /// The call has no result word.
    uint32_t call() {
        return WFMTorviVersioningStatDelta(session, kServer, port, slaveID, path, versionID, nullptr, out);
    }
    bool isUntouched() const { return stat.bExists && stat.llSize == -77; }
    bool isZero() const { return !stat.bExists && stat.llSize == 0; }
};

std::string query(const std::string& folder, const std::string& name,
                  const std::string& versionID = "version-1") {
    return "func=versioning_stat_delta&sid=sid123&source_path=" + folder + "&source_file=" + name +
           "&version_id=" + versionID;
}

}  // namespace

TEST(WFMTorviVersioningStatDeltaWire, GoesToTheNodeAndFolderOfItsPath) {
    expectVersioningRoutes<StatDeltaCall>(
        [](const std::string& folder, const std::string& name) { return query(folder, name); });
}

TEST(WFMTorviVersioningStatDeltaWire, EncodesThePathAndSendsTheIdAsGiven) {
    expectVersioningEncoding<StatDeltaCall>(
        [](const std::string& folder, const std::string& name, const std::string&,
           const std::string& versionID) { return query(folder, name, versionID); });
}

TEST(WFMTorviVersioningStatDeltaWire, TellsWhetherADeltaExistsAndItsSize) {
    const struct {
        const char* reply;
        bool exists;
        int64_t size;
    } rows[] = {
        {R"({"exist":1,"size":"5000000000"})", true, 5000000000},
        {R"({"exist":"1","size":7})", true, 7},
        {R"({"exist":-1,"size":"9223372036854775807"})", true, std::numeric_limits<int64_t>::max()},
        {R"({"exist":2})", true, 0},
        {R"({"exist":0,"size":"7"})", false, 0},
        {R"({"exist":null,"size":"7"})", false, 0},
        {R"({"size":"7"})", false, 0},
        {"{}", false, 0},
        {R"({"status":4,"exist":1,"size":"7"})", true, 7},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.reply);
        RawServer server({Reply::json(row.reply)});
        StatDeltaCall call(server);
        LogCapture log;
        EXPECT_EQ(call.run(), 0u);
        EXPECT_EQ(call.stat.bExists, row.exists);
        EXPECT_EQ(call.stat.llSize, row.size);
        log.expectNoLines();
    }
}

TEST(WFMTorviVersioningStatDeltaWire, AReplyThatCannotBeReadIs14AndLeavesTheRecordZeroed) {
    for (const char* reply :
         {"sorry", "[]", R"("exist")", R"({"exist":4294967296})", R"({"exist":1,"size":5000000000})"}) {
        SCOPED_TRACE(reply);
        RawServer server({Reply::json(reply)});
        StatDeltaCall call(server);
        LogCapture log;
        EXPECT_EQ(call.run(), 14u);
        EXPECT_TRUE(call.isZero());
        log.expectLines({"[WFM] WFMTorviVersioningStatDelta: WFM_PARSE_XML_FAIL",
                         summaryLine("WFMTorviVersioningStatDelta", server.port(), 14)});
    }
}

TEST(WFMTorviVersioningStatDeltaWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<StatDeltaCall>(
        log, session.get(), "WFMTorviVersioningStatDelta",
        {[](StatDeltaCall& call) { call.path = nullptr; }, [](StatDeltaCall& call) { call.path = L""; },
         [](StatDeltaCall& call) { call.versionID = nullptr; },
         [](StatDeltaCall& call) { call.versionID = L""; }, [](StatDeltaCall& call) { call.out = nullptr; }});
}
