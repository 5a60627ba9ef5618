#include <algorithm>
#include <functional>
#include <stdexcept>

#include "cloudtest.h"

namespace {

class CloudLink : public TorviCloudTest {
protected:
    static std::string message(const Json::Value& answer) {
        return answer["StatusCode"]["message"].asString();
    }
    std::string messageAt(long long time) {
        const Json::Value answer = run(checkedRequest("/v1/services/vlink/cellar-1", time)).json()["return"];
        return answer.get("message", answer["StatusCode"]["message"]).asString();
    }
    /// A time near now at which the digest is as wanted.
    static long long timeWhere(const std::function<bool(const QByteArray&)>& wanted) {
        const long long latest = now();
        for (long long time = latest; time > latest - 200000; --time) {
            if (wanted(digest(time))) return time;
        }
        throw std::runtime_error("no such digest in this time");
    }
    static QByteArray upToZero(const QByteArray& digest) { return digest.left(digest.indexOf('\0')); }
    static QString text(const QByteArray& digest) { return QString(digest.constData()); }

    Nas cellar{nasOptions(
        "anna", "Cellar", "cellar-1",
        {"--external-address", "198.51.100.4", "--external-port", "8080", "--external-tls-port", "8443"})};
    Nas attic{nasOptions("anna", "Attic", "attic-1", {"--no-remote-access"})};
};

TEST_F(CloudLink, TheLinkTellsItsIdAndAddresses) {
    const Json::Value answer = checked("/v1/services/vlink/cellar-1");
    EXPECT_EQ("200", answer["StatusCode"]["code"].asString());
    EXPECT_EQ("Access successfully.", message(answer));
    EXPECT_FALSE(answer["vlinkId"].asString().empty());
    EXPECT_EQ("127.0.0.1", answer["lanIp"].asString());
    EXPECT_EQ("127.0.0.1", answer["lanGW"].asString());
    EXPECT_EQ("198.51.100.4", answer["wanIp"].asString());
    EXPECT_FALSE(answer["actTime"].asString().empty());
}

TEST_F(CloudLink, ThePortMappingHasTheAdministrationAmongOthers) {
    const Json::Value answer = checked("/v1/devices/services/portMapping/cellar-1");
    int plain = 0, secured = 0, others = 0;
    for (const Json::Value& entry : answer["portMapping"]) {
        const bool counts = entry["serviceName"] == "WebAdministration" && entry["proto"] == "TCP";
        const bool tls = entry["subServiceName"] == "Secured";
        if (counts && !tls && entry["internalPort"] == cellar.port() && entry["externalPort"] == 8080)
            ++plain;
        if (counts && tls && entry["internalPort"] == cellar.tlsPort() && entry["externalPort"] == 8443)
            ++secured;
        if (!counts) ++others;
    }
    EXPECT_EQ(1, plain);
    EXPECT_EQ(1, secured);
    EXPECT_EQ(2, others);
}

TEST_F(CloudLink, WithoutRemoteAccessThereIsNoLinkAndNoMapping) {
    EXPECT_EQ("The vlink configuration is not found.", message(checked("/v1/services/vlink/attic-1")));
    const Json::Value answer = checked("/v1/devices/services/portMapping/attic-1");
    EXPECT_EQ("Access successfully.", message(answer));
    EXPECT_EQ(0u, answer["portMapping"].size());
}

TEST_F(CloudLink, AUsersFirstDeviceIsTold) {
    EXPECT_EQ("cellar-1", checked("/v1/users/deviceId/anna")["deviceId"].asString());
    EXPECT_EQ("The device is not found.", message(checked("/v1/users/deviceId/ben")));
}

TEST_F(CloudLink, AnUnknownDeviceIsNotFound) {
    EXPECT_EQ("The device is not found.", message(checked("/v1/services/vlink/shed-1")));
    EXPECT_EQ("The device is not found.", message(checked("/v1/devices/services/portMapping/shed-1")));
}

TEST_F(CloudLink, AnUnknownApplicationIsNotFound) {
    NasRequest request = checkedRequest("/v1/services/vlink/cellar-1", now());
    const NasReply reply = run(request.set("X-VEXA-APP-ID", "toy-app"));
    EXPECT_EQ(200, reply.http);
    EXPECT_EQ("The app id is not found.", reply.json()["return"]["message"].asString());
}

TEST_F(CloudLink, AClockMayBeAFewMinutesOff) {
    EXPECT_EQ("Access successfully.", messageAt(now() - 240000));
    EXPECT_EQ("Access successfully.", messageAt(now() + 240000));
    EXPECT_EQ("X-VEXA-TIME is invalid.", messageAt(now() - 360000));
    EXPECT_EQ("X-VEXA-TIME is invalid.", messageAt(now() + 360000));
}

TEST_F(CloudLink, AChecksumOfAnotherTimeIsInvalid) {
    // Whole, lest both begin with a zero byte and look alike.
    const long long time = timeWhere([](const QByteArray& digest) { return !digest.contains('\0'); });
    NasRequest request = checkedRequest("/v1/services/vlink/cellar-1", time);
    const NasReply reply = run(request.set("X-VEXA-TIME", std::to_string(time + 1000)));
    EXPECT_EQ(200, reply.http);
    EXPECT_EQ("The checksum X-VEXA-CHECK is invalid.", reply.json()["return"]["message"].asString());
}

TEST_F(CloudLink, TheDigestInHexadecimalIsInvalid) {
    const long long time = now();
    const NasReply reply =
        run(withCheck("/v1/services/vlink/cellar-1", time, digest(time).toHex().toStdString()));
    EXPECT_EQ("The checksum X-VEXA-CHECK is invalid.", reply.json()["return"]["message"].asString());
}

TEST_F(CloudLink, ADigestEndsAtItsFirstZeroByte) {
    const long long time = timeWhere([](const QByteArray& digest) { return digest.indexOf('\0') > 3; });
    EXPECT_EQ("Access successfully.", messageAt(time));
}

TEST_F(CloudLink, ADigestThatBeginsWithAZeroByteIsEmpty) {
    const long long time = timeWhere([](const QByteArray& digest) { return digest.startsWith('\0'); });
    EXPECT_EQ("Access successfully.", messageAt(time));
}

TEST_F(CloudLink, ADigestThatIsTextGoesThroughAsItIs) {
    const long long time = timeWhere([](const QByteArray& digest) {
        const QByteArray cut = upToZero(digest);
        return cut.size() > 1 && cut.size() < digest.size() && text(digest).toUtf8() == cut &&
               cut.trimmed() == cut;
    });
    EXPECT_EQ("Access successfully.", messageAt(time));
}

TEST_F(CloudLink, ADigestWithLineEndsIsTakenWhole) {
    const long long time = timeWhere([](const QByteArray& digest) {
        const int end = digest.indexOf('\n');
        return end > 0 && !digest.contains('\0');
    });
    EXPECT_EQ("Access successfully.", messageAt(time));
}

TEST_F(CloudLink, ADigestWithACharacterOfSeveralBytesKeepsIt) {
    for (const int least : {0x80, 0x800, 0x10000}) {
        const long long time = timeWhere([least](const QByteArray& digest) {
            const auto points = text(digest).toUcs4();
            return std::any_of(points.begin(), points.end(), [least](uint point) {
                return point != 0xfffd && point >= static_cast<uint>(least);
            });
        });
        EXPECT_EQ("Access successfully.", messageAt(time)) << least;
    }
}

TEST_F(CloudLink, ASequenceThatBreaksOffIsReplacedByteByByte) {
    // The first two bytes of three, and then none that goes on.
    const long long time = timeWhere([](const QByteArray& digest) {
        for (int i = 0; i + 2 < upToZero(digest).size(); ++i) {
            const auto byte = [&](int at) { return static_cast<unsigned char>(digest[i + at]); };
            if (byte(0) >= 0xe1 && byte(0) < 0xed && (byte(1) & 0xc0) == 0x80 && byte(2) < 0x80) return true;
        }
        return false;
    });
    EXPECT_EQ("Access successfully.", messageAt(time));
}

TEST_F(CloudLink, ManyDigestsAreReadAsTheClientWritesThem) {
    const long long latest = now();
    for (int i = 0; i < 300; ++i) {
        ASSERT_EQ("Access successfully.", messageAt(latest - i)) << digest(latest - i).toHex().constData();
    }
}

/// Where a clock may be hours off, every kind of digest can be had.
class CloudRareDigest : public TorviCloudTest {
protected:
    CloudRareDigest() : TorviCloudTest({"--time-tolerance", "7200"}) {}
};

TEST_F(CloudRareDigest, ThatEndsWithALineEndIsTakenWhole) {
    long long time = now();
    while (!digest(time).endsWith("\r\n") || digest(time).contains('\0')) --time;
    const Json::Value answer = run(checkedRequest("/v1/users/deviceId/ben", time)).json()["return"];
    EXPECT_EQ("The device is not found.", answer["StatusCode"]["message"].asString());
}

TEST_F(CloudRareDigest, AHeadThatEndsBehindTheDigestIsRefusedForThat) {
    NasRequest request = withCheck("/v1/users/deviceId/ben", now(), "digest");
    const auto check = std::find_if(request.headers.begin(), request.headers.end(),
                                    [](const auto& header) { return header.first == "X-VEXA-CHECK"; });
    std::rotate(check, check + 1, request.headers.end());
    const NasReply reply = run(request);
    EXPECT_EQ(400, reply.http);
    EXPECT_EQ(
        "the protocol's headers are X-VEXA-APP-VER, X-VEXA-TIME, X-VEXA-APP-ID, X-VEXA-CHECK, not "
        "X-VEXA-APP-VER, X-VEXA-CHECK, X-VEXA-TIME, X-VEXA-APP-ID",
        reply.json()["error_description"].asString());
}

/// A secret within Latin-1, one beyond it and one beyond a single UTF-16 unit.
class CloudSecret : public TorviCloudTest, public testing::WithParamInterface<const char*> {
protected:
    CloudSecret() : TorviCloudTest({"--app", std::string("phone-app:") + GetParam()}) {}
};

TEST_P(CloudSecret, IsReadAsLatin1) {
    const long long time = now();
    const QByteArray bytes =
        (QString::fromUtf8(GetParam()) + "phone-app" + QString::number(time) + "1.2").toLatin1();
    const QByteArray check = QCryptographicHash::hash(bytes, QCryptographicHash::Sha1);
    NasRequest request =
        withCheck("/v1/users/deviceId/ben", time, QString(check.constData()).toUtf8().toStdString());
    const Json::Value answer = run(request.set("X-VEXA-APP-ID", "phone-app")).json()["return"];
    EXPECT_EQ("The device is not found.", answer["StatusCode"]["message"].asString());
}

INSTANTIATE_TEST_SUITE_P(, CloudSecret,
                         testing::Values("schl\u00fcssel", "\u00ff\u20ac key", "key \U0001f511"));

class CloudClock : public TorviCloudTest {
protected:
    CloudClock() : TorviCloudTest({"--clock-offset", "3600"}) {}
};

TEST_F(CloudClock, ACloudWhoseClockIsAheadFindsTheTimeInvalid) {
    EXPECT_EQ("X-VEXA-TIME is invalid.", checked("/v1/services/vlink/any")["message"].asString());
}

}  // namespace
