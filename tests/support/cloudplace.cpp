#include "support/cloudplace.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace wire {

namespace {

constexpr std::uint16_t kHttp = 80;
constexpr std::uint16_t kHttps = 443;

/// Takes an address for as long as the process lives: nobody else needs the datagram port there.
/// @return 0, or why not
int take(in_addr_t host) {
    const int fd = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(host);
    address.sin_port = htons(kHttp);
    if (::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof(address)) == 0) return 0;
    const int error = errno;
    ::close(fd);
    return error;
}

bool writeFile(const char* path, const std::string& text) {
    const int fd = ::open(path, O_WRONLY | O_CLOEXEC);
    const bool written = ::write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    ::close(fd);
    return written;
}

/// A network of the process's own, in which every port is free to it.
bool moveToOwnNetwork() {
    const std::string uid = std::to_string(::getuid()), gid = std::to_string(::getgid());
    if (::unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0) return false;
    if (!writeFile("/proc/self/setgroups", "deny") || !writeFile("/proc/self/uid_map", "0 " + uid + " 1") ||
        !writeFile("/proc/self/gid_map", "0 " + gid + " 1"))
        return false;
    ifreq loopback{};
    std::strcpy(loopback.ifr_name, "lo");
    loopback.ifr_flags = IFF_UP | IFF_RUNNING | IFF_LOOPBACK;
    const int fd = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const bool up = ::ioctl(fd, SIOCSIFFLAGS, &loopback) == 0;
    ::close(fd);
    return up;
}

std::optional<std::string> takeAddress() {
    // From 127.1.0.0 on, where nothing of the system listens.
    constexpr in_addr_t first = 0x7F010000, span = 0xFD0000;
    const auto begin = static_cast<in_addr_t>(::getpid());
    for (in_addr_t next = begin; next != begin + 1000; ++next) {
        const in_addr_t host = first + next % span;
        int error = take(host);
        if (error == EACCES && moveToOwnNetwork()) error = take(host);
        if (error == 0) return ::inet_ntoa(in_addr{htonl(host)});
        if (error != EADDRINUSE) break;
    }
    return std::nullopt;
}

}  // namespace

const std::optional<std::string>& cloudAddress() {
    static const std::optional<std::string> address = takeAddress();
    return address;
}

RawServer::Options CloudServer::place(bool secure) {
    Options options;
    options.certificate = secure ? Certificate::SelfSigned : Certificate::None;
    options.address = cloudAddress().value();
    options.port = secure ? kHttps : kHttp;
    return options;
}

}  // namespace wire
