#include <gtest/gtest.h>

#include "support/logcapture.h"
#include "support/session.h"
// No call sets what this one reads.
#include "../../src/core/authcontext.h"

using namespace wire;

TEST(WFMAutoProxyContextUpdateWire, TellsWhatStandsInTheSession) {
    const SessionPtr session = makeSession();
    LogCapture log;
    EXPECT_EQ(WFMAutoProxyContextUpdate(nullptr), 0u);
    EXPECT_EQ(WFMAutoProxyContextUpdate(session.get()), 0u);
    session->bAutoProxyUpdated = true;
    EXPECT_EQ(WFMAutoProxyContextUpdate(session.get()), 1u);
    log.expectNoLines();
}

TEST(WFMAutoProxyContextUpdateWire, NoCallSetsIt) {
    const SessionPtr one = makeSession(), other = makeSession();
    WFMSetProxyContext(one.get(), 1, 1, L"p:1", L"b", L"u", L"p");
    WFMSetProxyContext(other.get(), 1, 1, L"q:1", L"b", L"u", L"p");
    EXPECT_EQ(WFMSetAutoProxyContext(one.get(), other.get(), nullptr), 1u);
    EXPECT_EQ(WFMAutoProxyContextUpdate(one.get()), 0u);
    EXPECT_EQ(WFMAutoProxyContextUpdate(other.get()), 0u);
}
