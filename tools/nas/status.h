#pragma once

#include <stdexcept>
#include <string>

namespace nas {

// The numbers that a reply's "status" carries.
enum class Status {
    WantsTls = -101,
    // The verdicts of a profile check. A client takes a folder that is gone as deleted.
    OtherContent = -43,  // size or time
    OtherType = -42,
    OtherPath = -41,
    Gone = -40,
    NoPath = -4,
    NotConfigured = -3,
    Failed = 0,
    Ok = 1,
    Exists = 2,
    NotAuthenticated = 3,
    Denied = 4,
    Missing = 5,
    NotMade = 7,
    Quota = 9,
    IllegalName = 12,
    NameTooLong = 26,
    FolderExists = 33,
};

// A well-formed request whose answer is a status other than success.
class StatusError : public std::runtime_error {
public:
    StatusError(Status status, const std::string& why) : std::runtime_error(why), status_(status) {}
    Status status() const { return status_; }

private:
    Status status_;
};

// A request that is not in the protocol: answered with an HTTP error.
class Refusal : public std::runtime_error {
public:
    explicit Refusal(const std::string& why, int http = 400) : std::runtime_error(why), http_(http) {}
    int http() const { return http_; }

private:
    int http_;
};

StatusError errnoError(int error, const std::string& what);

}  // namespace nas
