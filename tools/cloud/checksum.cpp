#include "checksum.h"

#include <openssl/sha.h>

#include "nas/wire_text.h"

namespace cloud {

namespace {

const std::string kByteOrderMark = "\xef\xbb\xbf";
const std::string kReplacement = "\xef\xbf\xbd";

// The length of the well-formed character at this place, 0 if there is none.
size_t characterAt(const std::string& bytes, size_t at) {
    for (size_t length = 1; length <= 4 && at + length <= bytes.size(); ++length) {
        if (nas::validUtf8(bytes.substr(at, length))) {
            return length;
        }
    }
    return 0;
}

// Each byte that begins no character is replaced by itself, also inside a sequence that breaks off. A byte
// order mark at the beginning is dropped.
std::string decoded(const std::string& bytes) {
    std::string text;
    for (size_t at = bytes.rfind(kByteOrderMark, 0) == 0 ? kByteOrderMark.size() : 0; at < bytes.size();) {
        const size_t length = characterAt(bytes, at);
        text += length == 0 ? kReplacement : bytes.substr(at, length);
        at += length == 0 ? 1 : length;
    }
    return text;
}

// Characters beyond Latin-1 are question marks, two of them where a client's text type needs two units.
std::string latin1(const std::string& text) {
    std::string bytes;
    for (size_t at = 0; at < text.size();) {
        const size_t length = characterAt(text, at);
        const auto lead = static_cast<unsigned char>(text[at]);
        if (length <= 1) {
            bytes += text[at];
        } else if (length == 2 && lead <= 0xc3) {
            bytes += static_cast<char>((lead & 3) << 6 | (text[at + 1] & 0x3f));
        } else {
            bytes += length == 4 ? "??" : "?";
        }
        at += length == 0 ? 1 : length;
    }
    return bytes;
}

}  // namespace

std::string checksumText(const std::string& secret, const std::string& app, const std::string& time,
                         const std::string& version) {
    const std::string text = latin1(secret + app + time + version);
    unsigned char digest[SHA_DIGEST_LENGTH];
    SHA1(reinterpret_cast<const unsigned char*>(text.data()), text.size(), digest);
    const std::string bytes(reinterpret_cast<const char*>(digest), sizeof digest);
    return decoded(bytes.substr(0, bytes.find('\0')));
}

}  // namespace cloud
