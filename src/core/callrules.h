#pragma once

#include <cstdint>

#include "core/qclogger.h"
#include "core/statuscodes.h"

namespace Lattice {

/// What one HTTP status means to a call: its `dwStatus`, the word of its reason line, what the server said by
/// it.
struct HttpOutcome {
    int httpStatus;
    uint32_t dwStatus;
    const char* word;
    int32_t resultWord;
};

inline constexpr HttpOutcome kProxyRefused{407, WFM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ,
                                           "WFM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ", -1};
inline constexpr HttpOutcome kServiceUnavailable{503, WFM_PARSE_XML_HTTPTRAN_SERVICE_UNAVAIL,
                                                 "WFM_PARSE_XML_HTTPTRAN_SERVICE_UNAVAIL", -1};
inline constexpr HttpOutcome kCgiNotFound{404, WFM_PARSE_XML_CGI_NOT_FOUND, "WFM_PARSE_XML_CGI_NOT_FOUND",
                                          -1};
inline constexpr HttpOutcome kRedirectToHttps{302, WFM_PARSE_XML_FAIL, "WFM_FORCE_HTTPS_REDIRECT",
                                              WFM_FORCE_HTTPS_REDIRECT};

/// The HTTP statuses that a call tests by name, in order; every other one is a plain failure.
struct HttpOutcomes {
    HttpOutcome tested[4];
    int count;
    const HttpOutcome* begin() const { return tested; }
    const HttpOutcome* end() const { return tested + count; }
};

inline constexpr HttpOutcomes kProxyAndService{{kProxyRefused, kServiceUnavailable}, 2};
inline constexpr HttpOutcomes kWithNotFound{{kCgiNotFound, kProxyRefused, kServiceUnavailable}, 3};
inline constexpr HttpOutcomes kLoginOutcomes{
    {kCgiNotFound, kProxyRefused, kServiceUnavailable, kRedirectToHttps}, 4};

/// In what one call's traffic and log lines differ from another's.
///
/// The lines are templates. {call} is the prefix and the name as this call's lines spell them, {server},
/// {port} and {status} are the call's own, {subject} the text given to Call::about, {word} what went wrong.
struct CallRules {
    constexpr explicit CallRules(const char* callName) : call(callName) {}

    const char* call;
    const char* refused = "{call}({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER";
    const char* reason = "{call}: {word}";
    const char* summary = "{call}({server}:{port}) failed dwStatus({status})";
    HttpOutcomes outcomes = kProxyAndService;
    int timeoutMs = 60000;
    Logger::LogLevel level = Logger::Error;

    constexpr CallRules withRefused(const char* line) const { return with(&CallRules::refused, line); }
    constexpr CallRules withReason(const char* line) const { return with(&CallRules::reason, line); }
    constexpr CallRules withSummary(const char* line) const { return with(&CallRules::summary, line); }
    constexpr CallRules withTimeout(int msec) const { return with(&CallRules::timeoutMs, msec); }
    constexpr CallRules withOutcomes(HttpOutcomes tested) const { return with(&CallRules::outcomes, tested); }

private:
    template <class Member, class Value>
    constexpr CallRules with(Member CallRules::*member, Value value) const {
        CallRules copy = *this;
        copy.*member = value;
        return copy;
    }
};

/// A transfer lasts as long as its bytes flow.
inline constexpr int kNoTimeout = 0;

}  // namespace Lattice
