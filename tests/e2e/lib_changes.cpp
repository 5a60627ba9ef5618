#include <stdexcept>

#include "WebFileManShareAPI.h"
#include "lib_support.h"

namespace e2e {

Numbers Client::makeFolder(const std::wstring& parent, const std::wstring& name) const {
    return numbersOf([&](std::uint32_t* result) {
        return WFMCreateFolder(context(), kServer, m_port, nullptr, parent.c_str(), name.c_str(), nullptr,
                               result);
    });
}

Numbers Client::remove(const std::wstring& path) const {
    return numbersOf([&](std::uint32_t* result) {
        return WFMDeletePath(context(), kServer, m_port, nullptr, path.c_str(), nullptr, result);
    });
}

Numbers Client::removeChecked(const std::wstring& path, const Profile& profile, bool cleanThumbnails) const {
    return numbersOf([&](std::uint32_t* result) {
        return WFMDeletePathwithCheckProfile(context(), kServer, m_port, nullptr, path.c_str(), profile.time,
                                             profile.size, profile.isFolder, cleanThumbnails, nullptr,
                                             result);
    });
}

Numbers Client::setTime(const std::wstring& parent, const std::wstring& name, std::int64_t time) const {
    return numbersOf([&](std::uint32_t* result) {
        return WFMSetFileTime(context(), kServer, m_port, nullptr, name.c_str(), parent.c_str(), time,
                              nullptr, result);
    });
}

Numbers Client::rename(const std::wstring& from, const std::wstring& to) const {
    return numbersOf([&](std::uint32_t* result) {
        return WFMRenamePath(context(), kServer, m_port, nullptr, from.c_str(), to.c_str(), nullptr, result);
    });
}

Numbers Client::renameChecked(const std::wstring& from, const std::wstring& to,
                              const Profile& profile) const {
    return numbersOf([&](std::uint32_t* result) {
        return WFMRenamePathwithCheckProfile(context(), kServer, m_port, nullptr, from.c_str(), to.c_str(),
                                             profile.time, profile.size, profile.isFolder, nullptr, result);
    });
}

Numbers Client::move(const std::wstring& from, const std::wstring& to, bool* cancel) const {
    return numbersOf([&](std::uint32_t* result) {
        return WFMMovePath(context(), kServer, m_port, nullptr, from.c_str(), to.c_str(), cancel, result);
    });
}

Numbers Client::moveChecked(const std::wstring& from, const std::wstring& to, const Profile& profile,
                            bool* cancel) const {
    return numbersOf([&](std::uint32_t* result) {
        return WFMMovePathwithCheckProfile(context(), kServer, m_port, nullptr, from.c_str(), to.c_str(),
                                           profile.time, profile.size, profile.isFolder, cancel, result);
    });
}

Profile Client::profile(const std::wstring& path) const {
    const std::size_t slash = path.rfind(L'/');
    Entry entry;
    if (!(stat(path.substr(0, slash), path.substr(slash + 1), &entry) == kDone))
        throw std::runtime_error("no profile of " + utf8(path));
    return {entry.time, entry.size, entry.isFolder};
}

Numbers Client::followJob(std::int32_t pid, bool* cancel) const {
    return numbersOf([&](std::uint32_t* result) {
        return WFMGetProgress(context(), kServer, m_port, nullptr, L"job", pid, cancel, result);
    });
}

JobState Client::askJob(const std::wstring& pid) const {
    JobState state;
    std::uint32_t error = 0xABCD;
    state.numbers = numbersOf([&](std::uint32_t* result) {
        return WebFileManQueryProgress(context(), kServer, m_port, nullptr, pid.c_str(), nullptr,
                                       &state.percent, &error, result);
    });
    state.error = static_cast<std::int32_t>(error);
    return state;
}

std::uint32_t Client::clearJob(std::int32_t pid) const {
    return WFMDeleteProgress(context(), kServer, m_port, nullptr, pid, nullptr);
}

Numbers Client::restore(const std::wstring& folder, const std::wstring& name, std::wstring& pid,
                        std::uint32_t mode, std::uint32_t capacity) const {
    std::wstring buffer(capacity, L'\0');
    const Numbers numbers = numbersOf([&](std::uint32_t* result) {
        return WFMTrashRecovery(context(), kServer, m_port, nullptr, mode, folder.c_str(), name.c_str(),
                                nullptr, buffer.data(), capacity, result);
    });
    pid = buffer.c_str();
    return numbers;
}

}  // namespace e2e
