// WebFileManQueryUID: what is its own. What every call shares stands in everycall_wire_test.cpp.

#include <gtest/gtest.h>

#include "WebFileManShareAPI.h"
#include "identities.h"
#include "refusals.h"
#include "routes.h"
#include "sessioncall.h"

using namespace wire;

namespace {

struct QueryUIDCall : SessionCall<QueryUIDCall> {
    IdentityRecord record;
    _NAS_USER_UID_INFORMATION* out = &record.record;

    using SessionCall::SessionCall;
    uint32_t call() { return WebFileManQueryUID(session, kServer, port, nullptr, out); }
    bool isUntouched() const { return record.isUntouched(); }
};

}  // namespace

TEST(WebFileManQueryUIDWire, AsksTheSessionsServiceAndNamesNoNode) {
    expectOnEveryRoute(
        "func=nubo_get_nas_uid&sid=sid123",
        [](_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t*) {
            QueryUIDCall call;
            EXPECT_EQ(call.run(session, port), 0u);
        },
        routesWithoutNode());
}

TEST(WebFileManQueryUIDWire, WhatTheServerSaysOfItselfFillsTheRecord) {
    expectIdentities<QueryUIDCall>();
}

TEST(WebFileManQueryUIDWire, WhatIsNoIdentityIs14AndLeavesTheRecordZeroed) {
    expectNoIdentities<QueryUIDCall>();
}

TEST(WebFileManQueryUIDWire, AFailedCallLeavesTheRecordZeroed) {
    const RawServer server({Reply::status(503)});
    QueryUIDCall call(server);
    EXPECT_EQ(call.run(), 12u);
    EXPECT_EQ(call.record.text(), "");
}

TEST(WebFileManQueryUIDWire, RefusesWhatMustBeGivenWithOneLineAndTouchesNothing) {
    const SessionPtr session = makeSession();
    LogCapture log;
    expectRefusals<QueryUIDCall>(log, session.get(), "WebFileManQueryUID",
                                 {[](QueryUIDCall& call) { call.out = nullptr; }});
}
