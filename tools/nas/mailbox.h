#pragma once

#include <mutex>
#include <string>

namespace nas {

struct Mail {
    std::string to;
    std::string subject;
    std::string text;
};

// Mails that leave the server end as files in a folder, numbered in their order.
class Mailbox {
public:
    // Without a folder there is no way out for mail.
    explicit Mailbox(std::string folder);
    bool open() const { return !folder_.empty(); }
    // Puts a whole file there; throws StatusError if it can't.
    void send(const Mail& mail);

private:
    const std::string folder_;
    std::mutex mutex_;
    int last_ = 0;
};

}  // namespace nas
