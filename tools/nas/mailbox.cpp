#include "mailbox.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <filesystem>

#include "disk.h"
#include "status.h"
#include "time_text.h"

namespace nas {

namespace fs = std::filesystem;

namespace {

std::string dateNow() {
    return utcText(std::time(nullptr), "%a, %d %b %Y %H:%M:%S +0000");
}

std::string written(const Mail& mail) {
    return "From: <torvi-nas@localhost>\r\nTo: <" + mail.to + ">\r\nDate: " + dateNow() +
           "\r\nMessage-ID: <" + randomHex(12) + "@localhost>\r\nSubject: " + mail.subject +
           "\r\nMIME-Version: 1.0\r\nContent-Type: text/plain; charset=utf-8\r\n"
           "Content-Transfer-Encoding: 8bit\r\n\r\n" +
           mail.text + "\r\n";
}

}  // namespace

Mailbox::Mailbox(std::string folder) : folder_(std::move(folder)) {
    if (open()) {
        fs::create_directories(folder_);
    }
}

void Mailbox::send(const Mail& mail) {
    std::lock_guard<std::mutex> lock(mutex_);
    std::string name;
    do {
        char number[16];
        std::snprintf(number, sizeof number, "/%04d.eml", ++last_);
        name = folder_ + number;
    } while (fs::exists(name));
    // Written aside and renamed: who watches the folder must not see half a mail.
    const std::string aside = folder_ + "/." + randomHex(8);
    Fd fd(::open(aside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!fd) {
        throw errnoError(errno, "cannot write a mail to " + folder_);
    }
    const std::string text = written(mail);
    writeAll(fd.get(), text.data(), text.size());
    if (::rename(aside.c_str(), name.c_str()) != 0) {
        throw errnoError(errno, "cannot write a mail to " + folder_);
    }
}

}  // namespace nas
