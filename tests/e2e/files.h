#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QByteArray>
#include <QCryptographicHash>
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>

/// The same bytes for the same seed.
inline std::string randomBytes(std::size_t size, unsigned seed = 1) {
    std::mt19937_64 generator(seed);
    std::string bytes(size, '\0');
    for (std::size_t at = 0; at < size; at += sizeof(std::uint64_t)) {
        const std::uint64_t word = generator();
        std::memcpy(bytes.data() + at, &word, std::min(size - at, sizeof word));
    }
    return bytes;
}

inline std::string sha256(const std::string& bytes) {
    const QByteArray view = QByteArray::fromRawData(bytes.data(), static_cast<int>(bytes.size()));
    return QCryptographicHash::hash(view, QCryptographicHash::Sha256).toHex().toStdString();
}

inline std::int64_t modifiedTime(const std::string& path) {
    struct stat status = {};
    return ::stat(path.c_str(), &status) == 0 ? static_cast<std::int64_t>(status.st_mtim.tv_sec) : -1;
}

inline void setModifiedTime(const std::string& path, std::int64_t seconds) {
    const timespec times[2] = {{static_cast<time_t>(seconds), 0}, {static_cast<time_t>(seconds), 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
}
