#include "write_all.h"

#include <unistd.h>

#include <cerrno>

#include "status.h"

namespace nas {

void writeAll(int fd, const char* data, size_t length) {
    for (size_t done = 0; done < length;) {
        const ssize_t n = ::write(fd, data + done, length - done);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            throw errnoError(errno, "write");
        }
        done += static_cast<size_t>(n);
    }
}

}  // namespace nas
