#pragma once

#include <cstdint>
#include <string>

/// How far an exchange got: what every call returns. 0 means that a reply came back and was understood.
enum WfmStatus : uint32_t {
    WFM_PARSE_XML_SUCCESS = 0,
    WFM_PARSE_XML_HTTPTRAN_CONNECT_FAIL = 2,
    WFM_PARSE_XML_HTTPTRAN_QUERY_HTTP_HEADER_FAIL = 4,
    WFM_PARSE_XML_HTTPTRAN_RECEIVE_FAIL = 6,
    WFM_PARSE_XML_BUFFER_NOT_ENOUGH = 7,
    WFM_PARSE_XML_INVALID_PARAMETER = 8,
    WFM_PARSE_XML_INSUFFICIENT_BUFFER = 9,
    WFM_PARSE_XML_CGI_NOT_FOUND = 10,
    WFM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ = 11,
    WFM_PARSE_XML_HTTPTRAN_SERVICE_UNAVAIL = 12,
    WFM_PARSE_XML_FAIL = 14,
};

/// What the server answered: the negative numbers of the result word. Some have two names in the log.
enum WfmClientCode : int32_t {
    WFM_NOTHING_LEARNT = -1,
    WFM_NOT_DONE = -2,
    WFM_ACCESS_RIGHT_ACCESS_DENIED = -3,
    WFM_PERMISSION_DENY = -3,
    WFM_STATUS_FAILED = -4,
    WFM_FILE_NO_EXIST = -4,
    WFM_NOT_MADE = -5,
    WFM_QUOTA_ERROR = -6,
    WFM_OPEN_FILE_FAILED = -7,
    WFM_ILLEGAL_NAME = -7,
    WFM_FORCE_HTTPS_REDIRECT = -8,
    WFM_NO_SUCH_UPLOAD = -11,
    WFM_ALREADY_EXISTS = -15,
    WFM_INSUFFICIENT_BUFFER = -23,
    WFM_NOT_AUTHENTICATED = -29,
    WFM_INVALID_DATA = -31,
    WFM_PROFILE_PATH = -32,  // the server's four verdicts on a profile check, down to -35
    WFM_PROFILE_LAST = -35,
    WFM_NAME_TOO_LONG = -42,
    WFM_SLICE_SENT = -43,
    WFM_HOME_FOLDER_NOT_AVAIL = -44,
};

/// The system-style numbers that a call chooses in place of a client code.
enum WfmSystemError : uint32_t {
    ERROR_FILE_NOT_FOUND = 2,
    ERROR_PATH_NOT_FOUND = 3,
    ERROR_ACCESS_DENIED = 5,
    ERROR_NOT_ENOUGH_MEMORY = 8,
    ERROR_INVALID_ACCESS = 12,
    ERROR_INVALID_DATA = 13,
    ERROR_NO_MORE_FILES = 18,
    ERROR_WRONG_DISK = 34,
    ERROR_NOT_SUPPORTED = 50,
    ERROR_BAD_NETPATH = 53,
    ERROR_INVALID_PARAMETER = 87,
    ERROR_DISK_FULL = 112,
    ERROR_INSUFFICIENT_BUFFER = 122,
    ERROR_ALREADY_EXISTS = 183,
    ERROR_NAME_TOO_LONG = 206,
    ERROR_NETWORK_UNREACHABLE = 1231,
    ERROR_REQUEST_ABORTED = 1235,
    ERROR_NOT_AUTHENTICATED = 1244,
    ERROR_DEPENDENCY_ALREADY_EXISTS = 5003,
};

/// The client code of a JSON "status"; -1 for one that isn't known. The server's success is 1.
int TranslateWFMErrorCode(int status);
/// 1 and 2 as they are, 0 for all else.
int TranslateSyncEventIsFolder(int value);
/// The client's number of a sync event action; -1 for one that isn't known.
int TranslateSyncEventAction(int action);
/// Whether a server of this firmware version has the sync CGI: its major number is 4 or more.
bool SupportNuboCGI(std::wstring version);
