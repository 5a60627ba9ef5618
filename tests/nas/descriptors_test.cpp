#include "descriptors.h"

#include <gtest/gtest.h>

#include <memory>

#include "nasclient.h"
#include "support/nas.h"

namespace {

const char* const kVersion = "/cgi-bin/filemanager/utilRequest.cgi";

}  // namespace

TEST(NasDescriptors, WithoutThemTheNextConnectionWaits) {
    // Before any request, so that no connection is on its way out. One takes two and what the service needs.
    Nas nas;
    auto few = std::make_unique<FewDescriptors>(nas.pid(), 1);
    NasConnection connection(nas.port());
    connection.send(NasRequest::get(kVersion).bytes());
    ASSERT_TRUE(nas.waitForLog("no connection is taken: Too many open files"));
    few.reset();
    EXPECT_EQ(200, connection.readAll().http);
    EXPECT_EQ(200, exchange(nas.tlsPort(), NasRequest::get(kVersion), true).http);
}
