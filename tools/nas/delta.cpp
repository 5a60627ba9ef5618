#include "delta.h"

#include <openssl/evp.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <memory>
#include <unordered_map>
#include <vector>

#include "status.h"

namespace nas {

namespace {

const std::string kSignature = "TORVSIG1";
const std::string kDelta = "TORVDLT1";
constexpr int64_t kSmallestBlock = 2048;
constexpr int64_t kMostBlocks = 32768;
// Whoever makes the files up: no number in them may cost more memory than this.
constexpr size_t kLargestBlock = 4 * 1024 * 1024;
constexpr size_t kPiece = 256 * 1024;
constexpr size_t kLongestLiteral = 64 * 1024;
constexpr size_t kStrong = 16;
enum Instruction : uint8_t { End = 0, Copy = 1, New = 2 };

class Hash {
public:
    Hash() : context_(EVP_MD_CTX_new(), EVP_MD_CTX_free) {
        EVP_DigestInit_ex(context_.get(), EVP_sha256(), nullptr);
    }
    void add(const char* data, size_t length) { EVP_DigestUpdate(context_.get(), data, length); }
    std::string end() {
        std::string sum(32, '\0');
        EVP_DigestFinal_ex(context_.get(), reinterpret_cast<unsigned char*>(sum.data()), nullptr);
        return sum;
    }

private:
    std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context_;
};

std::string strongSum(const char* data, size_t length) {
    Hash hash;
    hash.add(data, length);
    return hash.end().substr(0, kStrong);
}

// The sum of a window that moves on byte by byte.
struct Rolling {
    uint32_t a = 0;
    uint32_t b = 0;

    Rolling(const char* data, size_t length) {
        for (size_t i = 0; i < length; ++i) {
            a += byte(data[i]);
            b += a;
        }
    }
    void move(char out, char in, size_t length) {
        a += byte(in) - byte(out);
        b += a - static_cast<uint32_t>(length) * byte(out);
    }
    uint32_t sum() const { return (a & 0xffff) | b << 16; }

private:
    static uint32_t byte(char c) { return static_cast<unsigned char>(c); }
};

std::string number(uint64_t value, size_t bytes) {
    std::string text;
    for (size_t i = 0; i < bytes; ++i) {
        text += static_cast<char>(value >> (8 * i));
    }
    return text;
}

// Reads a file from its beginning, with as much of it at hand as is asked for.
class Reader {
public:
    explicit Reader(int fd) : fd_(fd) {
        struct stat info {};
        if (::fstat(fd, &info) != 0) {
            throw errnoError(errno, "size");
        }
        size_ = info.st_size;
    }

    int64_t size() const { return size_; }
    int64_t at() const { return at_; }
    // At least so many bytes from here on, fewer only at the end.
    size_t fill(size_t wanted) {
        while (buffer_.size() - begin_ < wanted && !ended_) {
            buffer_.erase(0, begin_);
            begin_ = 0;
            const size_t old = buffer_.size();
            buffer_.resize(old + std::max(kPiece, wanted));
            const ssize_t n = ::pread(fd_, &buffer_[old], buffer_.size() - old, next_);
            if (n < 0) {
                throw errnoError(errno, "read");
            }
            buffer_.resize(old + static_cast<size_t>(n));
            next_ += n;
            ended_ = n == 0;
        }
        return buffer_.size() - begin_;
    }
    const char* data() const { return buffer_.data() + begin_; }
    void skip(size_t length) {
        begin_ += length;
        at_ += static_cast<int64_t>(length);
    }
    std::string take(size_t length) {
        if (fill(length) < length) {
            throw StatusError(Status::Failed, "the file ends too early");
        }
        std::string text(data(), length);
        skip(length);
        return text;
    }
    uint64_t takeNumber(size_t bytes) {
        uint64_t value = 0;
        const std::string text = take(bytes);
        for (size_t i = bytes; i-- > 0;) {
            value = value << 8 | static_cast<unsigned char>(text[i]);
        }
        return value;
    }

private:
    const int fd_;
    int64_t size_ = 0;
    int64_t at_ = 0;
    off_t next_ = 0;
    bool ended_ = false;
    std::string buffer_;
    size_t begin_ = 0;
};

struct Signature {
    size_t block = 0;
    uint64_t size = 0;
    std::vector<std::string> strong;
    std::unordered_multimap<uint32_t, size_t> byRolling;

    size_t lengthOf(size_t index) const {
        return static_cast<size_t>(std::min<uint64_t>(block, size - uint64_t(index) * block));
    }
};

Signature readSignature(int fd) {
    Signature signature;
    if (fd < 0) {
        return signature;
    }
    Reader in(fd);
    if (in.take(kSignature.size()) != kSignature) {
        throw StatusError(Status::Failed, "no signature");
    }
    signature.block = in.takeNumber(4);
    signature.size = in.takeNumber(8);
    if (signature.block == 0 || signature.block > kLargestBlock ||
        signature.size / signature.block > uint64_t(kMostBlocks)) {
        throw StatusError(Status::Failed, "no signature of a file");
    }
    const uint64_t blocks = (signature.size + signature.block - 1) / signature.block;
    for (uint64_t i = 0; i < blocks; ++i) {
        signature.byRolling.emplace(static_cast<uint32_t>(in.takeNumber(4)), static_cast<size_t>(i));
        signature.strong.push_back(in.take(kStrong));
    }
    return signature;
}

// Collects what is said until it has to go out, and sums up the file that it describes.
class DeltaWriter {
public:
    explicit DeltaWriter(const Output& out) : out_(out) { put(kDelta); }

    void literal(const char* data, size_t length) {
        endCopy();
        for (size_t done = 0; done < length;) {
            const size_t now = std::min(length - done, kLongestLiteral - literal_.size());
            literal_.append(data + done, now);
            done += now;
            if (literal_.size() == kLongestLiteral) {
                endLiteral();
            }
        }
    }
    void copy(uint64_t offset, const char* data, size_t length) {
        endLiteral();
        hash_.add(data, length);
        if (copyLength_ > 0 && copyOffset_ + copyLength_ == offset) {
            copyLength_ += length;
            return;
        }
        endCopy();
        copyOffset_ = offset;
        copyLength_ = length;
    }
    void end() {
        endLiteral();
        endCopy();
        put(number(Instruction::End, 1) + hash_.end());
    }

private:
    void endLiteral() {
        if (!literal_.empty()) {
            hash_.add(literal_.data(), literal_.size());
            put(number(Instruction::New, 1) + number(literal_.size(), 4));
            put(literal_);
            literal_.clear();
        }
    }
    void endCopy() {
        if (copyLength_ > 0) {
            put(number(Instruction::Copy, 1) + number(copyOffset_, 8) + number(copyLength_, 8));
            copyLength_ = 0;
        }
    }
    void put(const std::string& text) { out_(text.data(), text.size()); }

    const Output& out_;
    Hash hash_;
    std::string literal_;
    uint64_t copyOffset_ = 0;
    uint64_t copyLength_ = 0;
};

}  // namespace

void makeSignature(int file, const Output& out, const Progress& progress) {
    Reader in(file);
    const int64_t block = std::max(kSmallestBlock, (in.size() + kMostBlocks - 1) / kMostBlocks);
    const auto length = static_cast<size_t>(block);
    std::string head = kSignature + number(length, 4) + number(static_cast<uint64_t>(in.size()), 8);
    out(head.data(), head.size());
    while (size_t here = std::min(in.fill(length), length)) {
        progress(in.at(), in.size());
        const std::string line = number(Rolling(in.data(), here).sum(), 4) + strongSum(in.data(), here);
        out(line.data(), line.size());
        in.skip(here);
    }
    progress(in.size(), in.size());
}

void makeDelta(int signatureFile, int file, const Output& out, const Progress& progress) {
    const Signature signature = readSignature(signatureFile);
    Reader in(file);
    DeltaWriter writer(out);
    const size_t block = signature.block;
    const auto matches = [&](uint32_t rolling, size_t length) {
        const auto range = signature.byRolling.equal_range(rolling);
        std::string strong;
        for (auto it = range.first; it != range.second; ++it) {
            if (signature.lengthOf(it->second) != length) {
                continue;
            }
            strong = strong.empty() ? strongSum(in.data(), length) : strong;
            if (strong == signature.strong[it->second]) {
                writer.copy(uint64_t(it->second) * block, in.data(), length);
                in.skip(length);
                return true;
            }
        }
        return false;
    };
    const auto isNew = [&](size_t length) {
        writer.literal(in.data(), length);
        in.skip(length);
    };
    int64_t told = -int64_t(kPiece);
    const auto tell = [&] {
        if (in.at() - told >= int64_t(kPiece)) {
            progress(told = in.at(), in.size());
        }
    };
    // The window moves until it matches a block.
    while (block > 0 && in.fill(block) >= block) {
        Rolling rolling(in.data(), block);
        tell();
        while (!matches(rolling.sum(), block)) {
            const bool last = in.fill(block + 1) == block;
            if (!last) {
                rolling.move(in.data()[0], in.data()[block], block);
            }
            isNew(1);
            tell();
            if (last) {
                break;
            }
        }
    }
    // Less than a block is left, which may end in the old file's shorter last one.
    const size_t tail = block > 0 ? static_cast<size_t>(signature.size % block) : 0;
    const size_t left = block > 0 ? in.fill(block) : 0;
    if (tail > 0 && left >= tail) {
        isNew(left - tail);
        matches(Rolling(in.data(), tail).sum(), tail);
    }
    while (const size_t held = in.fill(1)) {
        tell();
        isNew(held);
    }
    writer.end();
    progress(in.size(), in.size());
}

void applyDelta(int oldFile, int delta, const Output& out, const Progress& progress) {
    const auto oldSize = static_cast<uint64_t>(Reader(oldFile).size());
    Reader in(delta);
    if (in.take(kDelta.size()) != kDelta) {
        throw StatusError(Status::Failed, "no delta");
    }
    Hash hash;
    std::vector<char> piece(kPiece);
    while (const uint64_t instruction = in.takeNumber(1)) {
        progress(in.at(), in.size());
        if (instruction == Instruction::New) {
            const uint64_t length = in.takeNumber(4);
            if (length > kLongestLiteral) {
                throw StatusError(Status::Failed, "no delta");
            }
            const std::string text = in.take(length);
            hash.add(text.data(), text.size());
            out(text.data(), text.size());
            continue;
        }
        uint64_t offset = in.takeNumber(8);
        uint64_t length = in.takeNumber(8);
        if (instruction != Instruction::Copy || offset > oldSize || length > oldSize - offset) {
            throw StatusError(Status::Failed, "the delta isn't one of this version");
        }
        while (length > 0) {
            const ssize_t n = ::pread(oldFile, piece.data(), std::min<uint64_t>(piece.size(), length),
                                      static_cast<off_t>(offset));
            if (n <= 0) {
                throw errnoError(n < 0 ? errno : EIO, "read");
            }
            hash.add(piece.data(), static_cast<size_t>(n));
            out(piece.data(), static_cast<size_t>(n));
            offset += static_cast<uint64_t>(n);
            length -= static_cast<uint64_t>(n);
            progress(in.at(), in.size());
        }
    }
    if (in.take(32) != hash.end() || in.fill(1) != 0) {
        throw StatusError(Status::Failed, "the delta doesn't make the file that it should");
    }
    progress(in.size(), in.size());
}

}  // namespace nas
