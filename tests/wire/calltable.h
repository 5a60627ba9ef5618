#pragma once

#include <cstdint>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "WebFileManAPI.h"

/// What a call comes to.
struct Outcome {
    uint32_t dwStatus;
    std::string word{};  ///< empty: the reply isn't understood. With `dwStatus` 0: the one line, whole
    int32_t result = -1;
};

/// Every call that talks to a server, as a row: how it is called, and how it words its failures.
/// A row here gives a call all tests of the shared road: each fault of the transport, each kind of bad reply,
/// the refused arguments and the time-out.
struct CallRow {
    const char* name = "";
    /// Calls it with good arguments. `context` is null for the calls that have none.
    std::function<uint32_t(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                           uint32_t* resultWord)>
        run;
    bool needsSession = true;
    bool needsSid = true;         ///< refuses a session without an id
    bool has404 = false;          ///< tells a missing CGI from other failures
    bool oneService = false;      ///< asks the same place, whichever service the session speaks to
    bool servicesDiffer = false;  ///< asks each service in other words, or one of them not at all
    bool isWrapper = false;       ///< asks through another export
    bool arrayIsReply = false;    ///< a JSON array is its good answer
    bool nonObjectIsUnderstood = false;
    int timeoutMs = 60000;  ///< 0: none
    /// Those of the further requests that a success takes.
    std::vector<int> furtherTimeoutsMs{};
    const char* ownCgi = nullptr;  ///< of both services, where it isn't their usual one
    /// The path for a session of the file manager, where it is neither the usual one nor `ownCgi`.
    const char* fileManagerPath = nullptr;
    /// What of the query the file manager's lacks, at its end.
    const char* syncServiceOnly = "";
    const char* goodReply = R"({"status":1,"success":"true"})";
    /// The lines of a failed call. {word}, {port}, {status} and {result} are filled in.
    std::vector<const char*> failure;
    /// The line of a reply that isn't understood, if not the first of `failure` with WFM_PARSE_XML_FAIL.
    const char* notUnderstood = nullptr;
    /// The line of a missing CGI, if not the first of `failure` with its word.
    const char* notFound = nullptr;
    /// The line of an HTTP status that isn't tested, if not the first of `failure` with its word.
    const char* failed = nullptr;
    const char* refused = nullptr;
    uint32_t refusedStatus = 8;
    uint32_t level = 32;                               ///< of its lines
    const char* goodLine = nullptr;                    ///< the line of a success, if there is one
    Outcome badReply{14};                              ///< of a reply that isn't understood
    Outcome strangePage{14};                           ///< of a page of HTML
    Outcome redirect{14};                              ///< of a 302
    Outcome brokenOff{2, "FAIL(httpStatusCode=200)"};  ///< of a good reply that was announced longer
    const char* connectFailed = "FAIL(httpStatusCode={http})";
    const char* receiveFailed = "FAIL(httpStatusCode={http})";
    /// A reply with a number that is too large for its field.
    const char* tooLarge = R"({"status":99999999999,"sid":"x"})";
    bool takesAnyAddress = false;  ///< refuses neither an empty server nor a port of 0
    const char* proxyWord = "WFM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ";
    /// The line of a proxy that refuses, if not the first of `failure` with its word.
    const char* proxyLine = nullptr;
    const char* serviceWord = "WFM_PARSE_XML_HTTPTRAN_SERVICE_UNAVAIL";
    /// Where the connection can't be made, the result word of a listing says so.
    bool isListing = false;
};

inline void PrintTo(const CallRow& row, std::ostream* out) {
    *out << row.name;
}

const std::vector<CallRow>& callTable();

/// Fills {name}s of a line template.
std::string fillLine(std::string line, const std::string& word, uint32_t port, uint32_t status,
                     int32_t result);
