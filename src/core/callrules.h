#pragma once

#include <cstdint>

#include "core/qclogger.h"
#include "core/statuscodes.h"

namespace Lattice {

/// What one HTTP status means to a call.
struct HttpOutcome {
    int httpStatus;
    uint32_t dwStatus;
    const char* word;                     ///< the {word} of the reason line
    const char* line = nullptr;           ///< instead of CallRules::reason
    const int32_t* resultWord = nullptr;  ///< what the server said by it, where it said anything
};

inline constexpr int32_t kSaidUseTls = WFM_FORCE_HTTPS_REDIRECT;

inline constexpr HttpOutcome kProxyRefused{407, WFM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ,
                                           "WFM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ"};
inline constexpr HttpOutcome kServiceUnavailable{503, WFM_PARSE_XML_HTTPTRAN_SERVICE_UNAVAIL,
                                                 "WFM_PARSE_XML_HTTPTRAN_SERVICE_UNAVAIL"};
inline constexpr HttpOutcome kCgiNotFound{404, WFM_PARSE_XML_CGI_NOT_FOUND, "WFM_PARSE_XML_CGI_NOT_FOUND"};
inline constexpr HttpOutcome kRedirectToTls{302, WFM_PARSE_XML_FAIL, "WFM_FORCE_HTTPS_REDIRECT", nullptr,
                                            &kSaidUseTls};

/// The HTTP statuses that a call tests by name, in order; every other one is a plain failure.
struct HttpOutcomes {
    HttpOutcome tested[4];
    int count;
    const HttpOutcome* begin() const { return tested; }
    const HttpOutcome* end() const { return tested + count; }
};

inline constexpr HttpOutcomes kProxyAndService{{kProxyRefused, kServiceUnavailable}, 2};
/// The sharing family's other word for a proxy that refuses.
inline constexpr HttpOutcomes kShareOutcomes{
    {{407, WFM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ, "HTTP_STATUS_PROXY_AUTH_REQ"}, kServiceUnavailable}, 2};
inline constexpr HttpOutcomes kWithNotFound{{kCgiNotFound, kProxyRefused, kServiceUnavailable}, 3};
inline constexpr HttpOutcomes kLoginOutcomes{
    {kCgiNotFound, kProxyRefused, kServiceUnavailable, kRedirectToTls}, 4};

/// A CGI in its two generations, by the URL's text behind the port. Only the sync service's takes the slave
/// prefix, at its "%ls".
struct Endpoint {
    const wchar_t* syncService;
    const wchar_t* fileManager;
};

inline constexpr Endpoint kService{L"/%lscgi-bin/torvi/torvisrv.cgi",
                                   L"/cgi-bin/filemanager/utilRequest.cgi"};
/// The faster end of the sync service, where the session's server has it.
inline constexpr Endpoint kServiceFcgi{L"/%lscgi-bin/torvi/torvisrv.fcgi",
                                       L"/cgi-bin/filemanager/utilRequest.cgi"};

/// Where a batch of files goes; it takes no query.
inline constexpr Endpoint kUploadPhp{L"/%lscgi-bin/torvi/upload.php", L"/cgi-bin/filemanager/upload.php"};

/// A transfer lasts as long as its bytes flow.
inline constexpr int kNoTimeout = 0;

/// In what one call's traffic and log lines differ from another's.
///
/// The lines are templates. {call} is the prefix and the name as this call's lines spell them, {server},
/// {port} and {status} are the call's own, {http} is the HTTP status, {subject} the text given to
/// Call::about, {word} what went wrong. An empty template writes no line.
struct CallRules {
    constexpr explicit CallRules(const char* callName) : call(callName) {}

    const char* call;
    const char* refused = "{call}({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER";
    const char* reason = "{call}: {word}";
    const char* notUnderstood = nullptr;  ///< the line of a reply that isn't understood; null: `reason`
    const char* failed = nullptr;         ///< the line of an HTTP status that isn't tested; null: `reason`
    const char* connectFailed = "FAIL(httpStatusCode={http})";  ///< the {word} of any other HTTP status
    const char* receiveFailed = "FAIL(httpStatusCode={http})";
    const char* summary = "{call}({server}:{port}) failed dwStatus({status})";
    HttpOutcomes outcomes = kProxyAndService;
    Endpoint endpoint = kService;
    int timeoutMs = 60000;
    Logger::LogLevel level = Logger::Error;
    bool needsSid = true;      ///< whether a session without a sid is refused
    bool needsAddress = true;  ///< whether an empty server or a port of 0 is refused; a null server always is

private:
    // Before its users: clang wants it defined where a constant is made with it.
    template <class Member, class Value>
    constexpr CallRules with(Member CallRules::*member, Value value) const {
        CallRules copy = *this;
        copy.*member = value;
        return copy;
    }

public:
    constexpr CallRules withRefused(const char* line) const { return with(&CallRules::refused, line); }
    constexpr CallRules withReason(const char* line) const { return with(&CallRules::reason, line); }
    constexpr CallRules withNotUnderstood(const char* line) const {
        return with(&CallRules::notUnderstood, line);
    }
    constexpr CallRules withFailedLine(const char* line) const { return with(&CallRules::failed, line); }
    constexpr CallRules withSummary(const char* line) const { return with(&CallRules::summary, line); }
    constexpr CallRules withTimeout(int msec) const { return with(&CallRules::timeoutMs, msec); }
    constexpr CallRules withOutcomes(HttpOutcomes tested) const { return with(&CallRules::outcomes, tested); }
    constexpr CallRules withEndpoint(Endpoint cgi) const { return with(&CallRules::endpoint, cgi); }
    /// The words of any other HTTP status, after a network error of 1 to 99 and after any other.
    constexpr CallRules withFailed(const char* connect, const char* receive) const {
        return with(&CallRules::connectFailed, connect).with(&CallRules::receiveFailed, receive);
    }
    constexpr CallRules withLevel(Logger::LogLevel of) const { return with(&CallRules::level, of); }
    constexpr CallRules withoutSidCheck() const { return with(&CallRules::needsSid, false); }
    constexpr CallRules withoutAddressCheck() const { return with(&CallRules::needsAddress, false); }
};

}  // namespace Lattice
