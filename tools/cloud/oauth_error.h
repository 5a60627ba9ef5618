#pragma once

#include <stdexcept>
#include <string>

namespace cloud {

// A refusal in the words of OAuth.
class OAuthError : public std::runtime_error {
public:
    OAuthError(int http, const std::string& error, const std::string& why)
        : std::runtime_error(why), http_(http), error_(error) {}
    int http() const { return http_; }
    const std::string& error() const { return error_; }

private:
    int http_;
    std::string error_;
};

}  // namespace cloud
