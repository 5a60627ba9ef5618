#include "status.h"

#include "signals.h"

namespace torvi {
namespace {

struct Meaning {
    int32_t value;
    const char* name;
    const char* text;
    Exit exit;
};

// How far the exchange got.
constexpr Meaning kStatuses[] = {
    {2, "WFM_PARSE_XML_HTTPTRAN_CONNECT_FAIL", "cannot connect, or the connection broke",
     Exit::CannotConnect},
    {5, "ERROR_ACCESS_DENIED", "a share, or a team folder itself, is not changed from here", Exit::Denied},
    {6, "WFM_PARSE_XML_HTTPTRAN_RECEIVE_FAIL", "the server or the proxy answered with an error",
     Exit::Refused},
    {7, "WFM_PARSE_XML_BUFFER_NOT_ENOUGH", "the answer does not fit", Exit::Refused},
    {8, "WFM_PARSE_XML_INVALID_PARAMETER", "an argument was not accepted, nothing was sent", Exit::Usage},
    {10, "WFM_PARSE_XML_CGI_NOT_FOUND", "the server does not have this service", Exit::CannotConnect},
    {11, "WFM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ", "the proxy wants other credentials", Exit::CannotConnect},
    {12, "WFM_PARSE_XML_HTTPTRAN_SERVICE_UNAVAIL", "the service is not available now", Exit::CannotConnect},
    {14, "WFM_PARSE_XML_FAIL", "the answer was not understood", Exit::Refused},
    {87, "ERROR_INVALID_PARAMETER", "an argument was not accepted, nothing was sent", Exit::Usage},
};

// What the server answered: client codes below zero, system-style numbers above.
constexpr Meaning kResults[] = {
    {-3, "WFM_ACCESS_RIGHT_ACCESS_DENIED", "permission denied", Exit::Denied},
    {-4, "WFM_STATUS_FAILED", "no such file or folder, or the server failed", Exit::NotFound},
    {-5, "SERVER_STATUS_7", "the server cannot make it there", Exit::Refused},
    {-6, "WFM_QUOTA_ERROR", "the quota is exhausted", Exit::NoSpace},
    {-7, "WFM_OPEN_FILE_FAILED", "the server cannot open the file, or the name is not allowed",
     Exit::Refused},
    {-8, "WFM_FORCE_HTTPS_REDIRECT",
     "the server insists on HTTPS: use --tls, or --tls-port PORT to go there by itself", Exit::CannotConnect},
    {-15, "ALREADY_EXISTS", "it exists already", Exit::AlreadyExists},
    {-23, "WFM_INSUFFICIENT_BUFFER", "the answer does not fit", Exit::Refused},
    {-29, "NOT_AUTHENTICATED", "not logged in, or the session has ended", Exit::NotAuthenticated},
    {-31, "WFM_INVALID_DATA", "the file changed while it was sent", Exit::Incomplete},
    {-32, "PROFILE_REFUSED", "it is not what it was when it was looked at", Exit::Changed},
    {-33, "PROFILE_REFUSED", "it is not what it was when it was looked at", Exit::Changed},
    {-34, "PROFILE_REFUSED", "it is not what it was when it was looked at", Exit::Changed},
    {-35, "PROFILE_REFUSED", "it is not what it was when it was looked at", Exit::Changed},
    {-37, "CLUSTER_NOT_READY", "the cluster node is not ready", Exit::CannotConnect},
    {-40, "CLUSTER_NODE_REFUSES", "the cluster node takes no logins now", Exit::CannotConnect},
    {-42, "NAME_TOO_LONG", "the name is too long", Exit::Refused},
    {-44, "WFM_HOME_FOLDER_NOT_AVAIL", "the user's home folder is not available", Exit::NotFound},
    {2, "ERROR_FILE_NOT_FOUND", "no such file", Exit::NotFound},
    {3, "ERROR_PATH_NOT_FOUND", "no such file or folder", Exit::NotFound},
    {5, "ERROR_ACCESS_DENIED", "permission denied", Exit::Denied},
    {8, "ERROR_NOT_ENOUGH_MEMORY", "out of memory", Exit::Refused},
    {12, "ERROR_INVALID_ACCESS", "the server does not allow it", Exit::Denied},
    {13, "ERROR_INVALID_DATA", "the size announced does not agree with the file's", Exit::Incomplete},
    {18, "ERROR_NO_MORE_FILES", "there is nothing to list", Exit::NotFound},
    {34, "ERROR_WRONG_DISK", "source and destination are on different volumes or nodes", Exit::Refused},
    {50, "ERROR_NOT_SUPPORTED", "the server does not support it", Exit::Refused},
    {53, "ERROR_BAD_NETPATH", "the server cannot be reached", Exit::CannotConnect},
    {87, "ERROR_INVALID_PARAMETER", "the server did not accept an argument", Exit::Refused},
    {112, "ERROR_DISK_FULL", "no space is left on the server", Exit::NoSpace},
    {122, "ERROR_INSUFFICIENT_BUFFER", "the answer does not fit", Exit::Refused},
    {183, "ERROR_ALREADY_EXISTS", "it exists already", Exit::AlreadyExists},
    {206, "ERROR_FILENAME_EXCED_RANGE", "the name is too long", Exit::Refused},
    {1231, "ERROR_NETWORK_UNREACHABLE", "no network is up", Exit::CannotConnect},
    {1235, "ERROR_REQUEST_ABORTED", "the request was aborted", Exit::Cancelled},
    {1237, "ERROR_RETRY", "the transfer was stopped", Exit::Cancelled},
    {1244, "ERROR_NOT_AUTHENTICATED", "not logged in, or the session has ended", Exit::NotAuthenticated},
    {5003, "ERROR_DEPENDENCY_ALREADY_EXISTS", "it exists already", Exit::AlreadyExists},
};

// The server's own numbers, from the calls that hand them on.
constexpr Meaning kServerStatuses[] = {
    {3, "", "not logged in, or the session has ended", Exit::NotAuthenticated},
    {4, "", "permission denied", Exit::Denied},
    {5, "", "no such file or folder", Exit::NotFound},
    {-3, "", "permission denied", Exit::Denied},
};

template <size_t N>
const Meaning* find(const Meaning (&table)[N], int64_t value) {
    for (const Meaning& row : table) {
        if (row.value == value) return &row;
    }
    return nullptr;
}

QString numbers(uint32_t dwStatus) {
    return QStringLiteral("dwStatus %1 %2").arg(dwStatus).arg(QLatin1String(dwStatusName(dwStatus)));
}

QString numbers(int32_t word) {
    return QStringLiteral("result %1 %2").arg(word).arg(QLatin1String(resultName(word)));
}

}  // namespace

const char* dwStatusName(uint32_t dwStatus) {
    if (dwStatus == 0) return "OK";
    const Meaning* row = find(kStatuses, dwStatus);
    return row != nullptr ? row->name : "UNKNOWN";
}

const char* resultName(int32_t resultWord) {
    if (resultWord == 0) return "OK";
    if (resultWord == -1) return "NOTHING_LEARNT";
    const Meaning* row = find(kResults, resultWord);
    return row != nullptr ? row->name : "UNKNOWN";
}

Failure callFailure(const QString& what, uint32_t dwStatus, uint32_t resultWord) {
    const auto word = static_cast<int32_t>(resultWord);
    const Meaning* status = find(kStatuses, dwStatus);
    const Meaning* result = find(kResults, word);
    // The server's own words say more than how far the exchange got.
    const Meaning* reason = result != nullptr ? result : status;
    QString text = reason != nullptr ? QString::fromUtf8(reason->text)
                                     : QStringLiteral("the server refused and gave no known reason");
    QString detail = dwStatus != 0 ? numbers(dwStatus) : QString();
    if (dwStatus == 0 || word != -1) {
        if (!detail.isEmpty()) detail += QStringLiteral(", ");
        detail += numbers(word);
    }
    return Failure(reason != nullptr ? reason->exit : Exit::Refused,
                   QStringLiteral("%1: %2 (%3)").arg(what, text, detail))
        .withNumbers(dwStatus, word);
}

void check(const QString& what, uint32_t dwStatus, uint32_t resultWord) {
    if (dwStatus == 0 && resultWord == 0) return;
    if (interrupted()) throwCancelled(what);
    throw callFailure(what, dwStatus, resultWord);
}

Failure checkedFailure(const QString& what, uint32_t dwStatus, uint32_t resultWord) {
    constexpr uint32_t kProfileRefused = 13;
    if (dwStatus != 0 || resultWord != kProfileRefused) return callFailure(what, dwStatus, resultWord);
    return Failure(Exit::Changed, QStringLiteral("%1: it is not what it was when it was looked at (%2)")
                                      .arg(what, numbers(static_cast<int32_t>(resultWord))))
        .withNumbers(dwStatus, static_cast<int32_t>(resultWord))
        .withAdvice(QStringLiteral("look at it with `torvi stat` and try again"));
}

Failure loginFailure(const QString& what, uint32_t dwStatus, uint32_t resultWord) {
    const auto word = static_cast<int32_t>(resultWord);
    const Meaning* result = find(kResults, word);
    const bool otherReason = result != nullptr && result->exit == Exit::CannotConnect;
    // A refused login is an exchange that ended well and left no session behind.
    if ((dwStatus != 0 && dwStatus != 14) || otherReason) return callFailure(what, dwStatus, resultWord);
    return Failure(Exit::NotAuthenticated,
                   QStringLiteral("%1: the server refused user name or password (%2, %3)")
                       .arg(what, numbers(dwStatus), numbers(word)))
        .withNumbers(dwStatus, word);
}

Failure rawFailure(const QString& what, uint32_t dwStatus, uint32_t serverStatus) {
    if (dwStatus != 0) return callFailure(what, dwStatus, static_cast<uint32_t>(-1));
    const auto status = static_cast<int32_t>(serverStatus);
    const Meaning* meaning = find(kServerStatuses, status);
    return Failure(
               meaning != nullptr ? meaning->exit : Exit::Refused,
               QStringLiteral("%1: %2 (server status %3)")
                   .arg(what, QString::fromUtf8(meaning != nullptr ? meaning->text : "the server refused"))
                   .arg(status))
        .withNumbers(dwStatus, std::nullopt);
}

Failure statusFailure(const QString& what, uint32_t dwStatus) {
    const Meaning* status = find(kStatuses, dwStatus);
    return Failure(status != nullptr ? status->exit : Exit::Refused,
                   QStringLiteral("%1: %2 (%3)")
                       .arg(what, QString::fromUtf8(status != nullptr ? status->text : "failed"),
                            numbers(dwStatus)))
        .withNumbers(dwStatus, std::nullopt);
}

}  // namespace torvi
