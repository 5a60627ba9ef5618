#include "lib_support.h"

namespace e2e {

Numbers Client::probe(std::wstring& version) const {
    wchar_t text[260] = {};
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return WFMTorviGetVersioningProbe(context(), kServer, m_port, nullptr, nullptr, result, text);
    });
    version = text;
    return numbers;
}

Numbers Client::lock(const std::wstring& path, WFM_VERSIONING_LOCK& lock) const {
    return numbersOf([&](std::uint32_t* result) {
        return WFMTorviVersioningLock(context(), kServer, m_port, nullptr, path.c_str(), nullptr, result,
                                      &lock);
    });
}

Numbers Client::unlock(const std::wstring& path, const WFM_VERSIONING_LOCK& lock) const {
    return numbersOf([&](std::uint32_t* result) {
        return WFMTorviVersioningUnLock(context(), kServer, m_port, nullptr, path.c_str(), lock.szLockID,
                                        nullptr, result);
    });
}

Numbers Client::cleanVersion(const std::wstring& path, const WFM_VERSIONING_LOCK& lock) const {
    return numbersOf([&](std::uint32_t* result) {
        return WFMTorviVersioningCleanVersion(context(), kServer, m_port, nullptr, path.c_str(),
                                              lock.szLockID, lock.szVersionID, nullptr, result);
    });
}

Numbers Client::makeSignature(const std::wstring& path, const WFM_VERSIONING_LOCK& lock,
                              std::wstring& pid) const {
    wchar_t text[260] = {};
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return WFMTorviGenVersioningSig(context(), kServer, m_port, nullptr, path.c_str(), lock.szLockID,
                                        lock.szVersionID, nullptr, result, text);
    });
    pid = text;
    return numbers;
}

Numbers Client::makeDelta(const std::wstring& path, const WFM_VERSIONING_LOCK& lock,
                          std::wstring& pid) const {
    wchar_t text[260] = {};
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return WFMTorviGenVersioningDelta(context(), kServer, m_port, nullptr, path.c_str(), lock.szLockID,
                                          lock.szVersionID, nullptr, result, text);
    });
    pid = text;
    return numbers;
}

Numbers Client::commitVersion(const std::wstring& path, const WFM_VERSIONING_LOCK& lock, std::int64_t time,
                              std::wstring& pid) const {
    wchar_t text[260] = {};
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return WFMTorviVersioningCommitUpload(context(), kServer, m_port, nullptr, path.c_str(),
                                              lock.szLockID, lock.szVersionID, time, nullptr, result, text);
    });
    pid = text;
    return numbers;
}

std::uint32_t Client::statDelta(const std::wstring& path, const WFM_VERSIONING_LOCK& lock,
                                WFM_VERSIONING_DELTA_STAT& stat) const {
    return WFMTorviVersioningStatDelta(context(), kServer, m_port, nullptr, path.c_str(), lock.szVersionID,
                                       nullptr, &stat);
}

}  // namespace e2e
