#pragma once

#include <string>

#include "support/process.h"

/// What somebody with a link and without an account gets.
struct Visit {
    int status = 0;  ///< of HTTP; 0 if nobody answers
    std::string body;
};

inline Visit visit(const std::string& url) {
    const ProcessResult curl = runProcess(findProgram("curl"), {"--silent", "--insecure", "--noproxy", "*",
                                                                "--write-out", "%{http_code}", url});
    // The status is what comes last.
    if (curl.out.size() < 3) return {};
    const std::size_t end = curl.out.size() - 3;
    return {std::stoi(curl.out.substr(end)), curl.out.substr(0, end)};
}
