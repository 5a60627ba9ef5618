#pragma once

#include <gtest/gtest.h>

#include <QCryptographicHash>
#include <QDateTime>
#include <string>
#include <vector>

#include "support/cloudplace.h"
#include "support/wire.h"

namespace wire {

/// The headers that the cloud reads, in the order in which they stand in the request.
inline HeaderList cloudHeaders(const Request& request) {
    HeaderList own;
    for (const auto& header : request.headers)
        if (header.first == "Accept" || header.first == "Authorization" ||
            header.first.compare(0, 7, "X-VEXA-") == 0)
            own.push_back(header);
    return own;
}

inline std::string checksumDigest(const std::string& secret, const std::string& appID,
                                  const std::string& time, const std::string& appVersion) {
    const std::string text = secret + appID + time + appVersion;
    return QCryptographicHash::hash(QByteArray::fromStdString(text), QCryptographicHash::Sha1).toStdString();
}

/// How many bytes the UTF-8 character at the beginning of `bytes` has; 0 if there is none.
inline std::size_t utf8Length(const std::string& bytes) {
    const auto at = [&](std::size_t i) {
        return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0u;
    };
    const unsigned first = at(0);
    const std::size_t length = first < 0x80   ? 1
                               : first < 0xC2 ? 0
                               : first < 0xE0 ? 2
                               : first < 0xF0 ? 3
                               : first < 0xF5 ? 4
                                              : 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((at(i) & 0xC0) != 0x80) return 0;
    const bool isOverlong = (first == 0xE0 && at(1) < 0xA0) || (first == 0xF0 && at(1) < 0x90);
    const bool isNoCharacter = (first == 0xED && at(1) >= 0xA0) || (first == 0xF4 && at(1) >= 0x90);
    return isOverlong || isNoCharacter ? 0 : length;
}

/// What goes out of a digest: its UTF-8 up to the first zero byte, with U+FFFD for each byte that is none.
inline std::string mangledDigest(std::string digest) {
    std::string sent;
    digest.resize(std::min(digest.find('\0'), digest.size()));
    while (!digest.empty()) {
        const std::size_t length = utf8Length(digest);
        sent += length > 0 ? digest.substr(0, length) : "\xEF\xBF\xBD";
        digest.erase(0, std::max<std::size_t>(length, 1));
    }
    return sent;
}

/// The whole of a request that proves the application by its secret, "secret", at that moment. Agent
/// "Desk/7", version "1.2.3" and id "desk-app".
inline void expectChecksumRequest(const CloudServer& server, const Request& request,
                                  const std::string& target) {
    expectRequestLine(request, "GET " + target + " HTTP/1.1");
    EXPECT_EQ(request.bodySize, 0u);
    EXPECT_EQ(request.raw.find("secret"), std::string::npos);
    const std::string time = request.header("X-VEXA-TIME");
    const std::string check = mangledDigest(checksumDigest("secret", "desk-app", time, "1.2.3"));
    const std::string inOrder = "\r\nX-VEXA-APP-VER: 1.2.3\r\nX-VEXA-CHECK: " + check +
                                "\r\nX-VEXA-TIME: " + time + "\r\nX-VEXA-APP-ID: desk-app\r\n";
    EXPECT_NE(request.raw.find(inOrder), std::string::npos) << request.raw;
    // A digest with line ends makes headers of its own.
    if (check.find_first_of("\r\n") != std::string::npos) return;
    HeaderList headers = baseHeaders(server, "Desk/7");
    headers.insert(headers.end(), {{"X-VEXA-APP-VER", "1.2.3"},
                                   {"X-VEXA-CHECK", request.header("X-VEXA-CHECK")},
                                   {"X-VEXA-TIME", time},
                                   {"X-VEXA-APP-ID", "desk-app"}});
    expectHeaders(request, headers);
}

/// A digest that ends with a line end ends the head as well, one in 65000.
inline bool endsWithItsChecksum(const Request& request) {
    const auto check = request.raw.find("\r\nX-VEXA-CHECK: ");
    return check != std::string::npos && request.raw.find("\r\nX-VEXA-", check + 1) == std::string::npos;
}

/// The call, with the arguments that expectChecksumRequest() names, sends the time in milliseconds, and a
/// digest of every kind as it comes: with zero bytes, with line ends, with what is no UTF-8.
template <class Run>
void expectChecksums(const char* reply, const std::string& target, Run run) {
    bool hadZero = false, hadLineEnd = false, hadNoUtf8 = false;
    for (std::size_t i = 0; i < 2000 && !(hadZero && hadLineEnd && hadNoUtf8); ++i) {
        const CloudServer server({Reply::json(reply)});
        const qint64 before = QDateTime::currentMSecsSinceEpoch();
        EXPECT_EQ(run(), 0u);
        const qint64 after = QDateTime::currentMSecsSinceEpoch();
        const Request request = server.request(0);
        if (endsWithItsChecksum(request)) continue;
        expectChecksumRequest(server, request, target);
        const std::string time = request.header("X-VEXA-TIME");
        EXPECT_GE(std::stoll(time), before);
        EXPECT_LE(std::stoll(time), after);
        const std::string digest = checksumDigest("secret", "desk-app", time, "1.2.3");
        hadZero = hadZero || digest.find('\0') != std::string::npos;
        hadLineEnd = hadLineEnd || mangledDigest(digest).find_first_of("\r\n") != std::string::npos;
        hadNoUtf8 = hadNoUtf8 || mangledDigest(digest).find("\xEF\xBF\xBD") != std::string::npos;
        if (testing::Test::HasFailure()) return;
    }
    EXPECT_TRUE(hadZero && hadLineEnd && hadNoUtf8);
}

}  // namespace wire
