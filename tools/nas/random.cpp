#include "random.h"

#include <openssl/rand.h>

#include <stdexcept>
#include <vector>

namespace nas {

std::string randomHex(size_t bytes) {
    std::vector<unsigned char> random(bytes);
    if (RAND_bytes(random.data(), static_cast<int>(bytes)) != 1) {
        throw std::runtime_error("no random bytes");
    }
    static const char digits[] = "0123456789abcdef";
    std::string text;
    for (unsigned char byte : random) {
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

}  // namespace nas
