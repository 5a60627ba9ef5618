#include "cloud/checksum.h"

#include <gtest/gtest.h>

#include <string>

#include "checksumvectors.h"

using namespace Lattice;

TEST(Checksum, IsWhatAnotherImplementationMakesOfTheSameTexts) {
    for (const ChecksumVector& vector : kChecksumVectors) {
        SCOPED_TRACE(std::string(vector.kind) + " at " + std::to_string(vector.msec));
        const QString sent = Checksum(vector.secret, vector.appID, vector.msec, vector.appVersion);
        EXPECT_EQ(sent.toUtf8().toStdString(), vector.sent);
        EXPECT_FALSE(sent.toUtf8().isNull());  // a null header isn't sent at all
    }
}

TEST(Checksum, IsTheSameWithinAMillisecondAndAnotherInTheNext) {
    const auto at = [](int64_t msec) { return Checksum(L"secret", L"app", msec, L"1.0"); };
    EXPECT_EQ(at(1700000000123), at(1700000000123));
    EXPECT_NE(at(1700000000123), at(1700000000124));
}
