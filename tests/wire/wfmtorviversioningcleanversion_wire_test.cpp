#include <gtest/gtest.h>

#include "versioning.h"

using namespace wire;

namespace {

struct CleanCall : VersioningCall<CleanCall> {
    using VersioningCall::VersioningCall;
    uint32_t call() {
        return WFMTorviVersioningCleanVersion(session, kServer, port, slaveID, path, lockID, versionID,
                                              nullptr, resultWord);
    }
};

std::string query(const std::string& folder, const std::string& name, const std::string& lockID = "lock-1",
                  const std::string& versionID = "version-1") {
    return "func=versioning_clean_version&sid=sid123&source_path=" + folder + "&source_file=" + name +
           "&lockid=" + lockID + "&version_id=" + versionID;
}

std::string failed(int code) {
    return "[WFM] WFMTorviVersioningCleanVersion: status failed(" + std::to_string(code) + ")";
}

}  // namespace

TEST(WFMTorviVersioningCleanVersionWire, GoesToTheNodeAndFolderOfItsPath) {
    expectVersioningRoutes<CleanCall>(
        [](const std::string& folder, const std::string& name) { return query(folder, name); });
}

TEST(WFMTorviVersioningCleanVersionWire, EncodesThePathAndSendsTheIdsAsGiven) {
    expectVersioningEncoding<CleanCall>(
        [](const std::string& folder, const std::string& name, const std::string& lockID,
           const std::string& versionID) { return query(folder, name, lockID, versionID); });
}

TEST(WFMTorviVersioningCleanVersionWire, TheResultWordIsTheClientCode) {
    expectReplies<CleanCall>({
        {R"({"status":1})", 0, 0, {}},
        {R"({"status":"1"})", 0, 0, {}},
        {R"({"status":0})", 0, -2, {failed(-2)}},
        {R"({"status":3})", 0, -29, {failed(-29)}},
        {R"({"status":4})", 0, -3, {failed(-3)}},
        {R"({"status":33})", 0, -15, {failed(-15)}},
        {R"({"status":34})", 0, -1, {failed(-1)}},
    });
}

TEST(WFMTorviVersioningCleanVersionWire, AReplyWithoutAStatusIs14) {
    const std::vector<std::string> lines = {
        "[WFM] WFMTorviVersioningCleanVersion: WFM_PARSE_XML_FAIL",
        "[WFM] WFMTorviVersioningCleanVersion(127.0.0.1:{port}) failed dwStatus(14)"};
    expectReplies<CleanCall>({
        {"{}", 14, -1, lines},
        {R"({"status":null})", 14, -1, lines},
    });
}

TEST(WFMTorviVersioningCleanVersionWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<CleanCall>(
        log, session.get(), "WFMTorviVersioningCleanVersion",
        {[](CleanCall& call) { call.path = nullptr; }, [](CleanCall& call) { call.path = L""; },
         [](CleanCall& call) { call.lockID = nullptr; }, [](CleanCall& call) { call.lockID = L""; },
         [](CleanCall& call) { call.versionID = nullptr; }, [](CleanCall& call) { call.versionID = L""; },
         [](CleanCall& call) { call.resultWord = nullptr; }});
}
