#include <gtest/gtest.h>

#include "versioning.h"

using namespace wire;

namespace {

struct UnlockCall : VersioningCall<UnlockCall> {
    using VersioningCall::VersioningCall;
    uint32_t call() {
        return WFMTorviVersioningUnLock(session, kServer, port, slaveID, path, lockID, nullptr, resultWord);
    }
};

std::string query(const std::string& folder, const std::string& name, const std::string& lockID = "lock-1") {
    return "func=versioning_unlock&sid=sid123&source_path=" + folder + "&source_file=" + name +
           "&lockid=" + lockID;
}

std::string errorStatus(int status) {
    return "[WFM] WFMTorviVersioningUnLock: get error status = " + std::to_string(status);
}

}  // namespace

TEST(WFMTorviVersioningUnLockWire, GoesToTheNodeAndFolderOfItsPath) {
    expectVersioningRoutes<UnlockCall>(
        [](const std::string& folder, const std::string& name) { return query(folder, name); });
}

TEST(WFMTorviVersioningUnLockWire, EncodesThePathAndSendsTheIdAsGiven) {
    expectVersioningEncoding<UnlockCall>([](const std::string& folder, const std::string& name,
                                            const std::string& lockID,
                                            const std::string&) { return query(folder, name, lockID); });
}

TEST(WFMTorviVersioningUnLockWire, OnlyStatus1IsASuccess) {
    expectReplies<UnlockCall>({
        {R"({"status":1})", 0, 0, {}},
        {R"({"status":"1"})", 0, 0, {}},
        {R"({"status":0})", 0, -1, {errorStatus(0)}},
        {R"({"status":2})", 0, -1, {errorStatus(2)}},
        {R"({"status":4,"success":"true"})", 0, -1, {errorStatus(4)}},
        {R"({"status":-1})", 0, -1, {errorStatus(-1)}},
        {R"({"status":-101})", 0, -1, {errorStatus(-101)}},
    });
}

TEST(WFMTorviVersioningUnLockWire, AReplyWithoutAStatusIs14) {
    const std::vector<std::string> lines = {
        "[WFM] WFMTorviVersioningUnLock: WFM_PARSE_XML_FAIL",
        "[WFM] WFMTorviVersioningUnLock(127.0.0.1:{port}) failed dwStatus(14)"};
    expectReplies<UnlockCall>({
        {"{}", 14, -1, lines},
        {R"({"status":null})", 14, -1, lines},
        {R"({"success":"true"})", 14, -1, lines},
    });
}

TEST(WFMTorviVersioningUnLockWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<UnlockCall>(
        log, session.get(), "WFMTorviVersioningUnLock",
        {[](UnlockCall& call) { call.path = nullptr; }, [](UnlockCall& call) { call.path = L""; },
         [](UnlockCall& call) { call.lockID = nullptr; }, [](UnlockCall& call) { call.lockID = L""; },
         [](UnlockCall& call) { call.resultWord = nullptr; }});
}
