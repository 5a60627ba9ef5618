#include "callrows.h"

// The activation of a session wants one with a slave id.
#include "../../src/core/authcontext.h"

namespace {

uint32_t fileManagerLogin(Context, const wchar_t* server, uint32_t port, uint32_t* result) {
    wchar_t name[260];
    bool isAdmin = false;
    _WFM_AUTH_CONTEXT* context = nullptr;
    const uint32_t status = WFMLogin(server, port, L"user", L"pw", false, L"pc", L"uid", L"", 1, 260, 0, L"",
                                     L"", L"", L"", L"1.0", 0, nullptr, name, &isAdmin, result, &context);
    WFMFreeAuthContext(context);
    return status;
}

uint32_t secondStep(Context, const wchar_t* server, uint32_t port, uint32_t* result) {
    wchar_t name[260];
    bool isAdmin = false;
    _WFM_AUTH_CONTEXT* context = nullptr;
    const uint32_t status = WFMLoginStep2(server, port, L"user", L"pw", false, L"123456", false, L"", 260, 0,
                                          0, nullptr, name, &isAdmin, result, &context, &isAdmin);
    WFMFreeAuthContext(context);
    return status;
}

uint32_t question(Context, const wchar_t* server, uint32_t port, uint32_t* result) {
    wchar_t text[260];
    return withoutResultWord(WFM2SVGetQuestion(server, port, L"user", L"pw", L"en", false, 260, text),
                             result);
}

uint32_t mail(Context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return withoutResultWord(WFM2SVSendEmail(server, port, L"user", L"pw", false), result);
}

uint32_t fileManagerLogout(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return withoutResultWord(WFMLogout(server, port, false, context), result);
}

/// Lends it a slave id.
uint32_t activate(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    if (context != nullptr) context->szSlaveID[0] = L'n';
    const uint32_t status = TorviActivateSid(server, port, context, L"", result);
    if (context != nullptr) context->szSlaveID[0] = L'\0';
    return status;
}

uint32_t activateToken(Context, const wchar_t* server, uint32_t port, uint32_t* result) {
    wchar_t name[260];
    bool isAdmin = false;
    _WFM_AUTH_CONTEXT* context = nullptr;
    const uint32_t status = TorviActivateSid2(server, port, false, L"token", L"", L"", L"", 260, 0, L"", L"",
                                              L"", L"", false, result, name, &isAdmin, &context);
    WFMFreeAuthContext(context);
    return status;
}

uint32_t systemSid(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    uint32_t capacity = 260;
    wchar_t sid[260];
    return WFMGetSystemSid(context, server, port, L"", result, &capacity, sid);
}

uint32_t validIP(Context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return withoutResultWord(
        WFMValidIP(server, port, 0, false, L"probe", L"uid-1", L"", 0, L"", L"", L"", L"", L"", 0), result);
}

/// A row of the logins and what belongs to them, whose lines don't name the server.
CallRow ofLogin(const char* name, decltype(CallRow::run) run, std::vector<const char*> failure,
                const char* refused) {
    CallRow row = usual(name, std::move(run), std::move(failure), refused);
    row.needsSession = false;
    row.timeoutMs = 15000;
    row.redirect = wantsTls();
    return row;
}

void addLogins(std::vector<CallRow>& rows) {
    // The HTTP status decides: what came of a good reply that breaks off is enough.
    CallRow row = ofLogin("WFMLogin", fileManagerLogin,
                          {"[WFM] WFMLogin: {word}", "[WFM] WFMLogin failed dwStatus({status})"},
                          "[WFM] WFMLogin: WFM_PARSE_XML_INVALID_PARAMETER");
    row.goodReply = R"({"status":1,"sid":"abc"})";
    row.brokenOff = {0};
    rows.push_back(row);

    row = ofLogin("WFMLoginStep2", secondStep,
                  {"[WFM] WFMLoginStep2: {word}", "[WFM] WFMLoginStep2 failed dwStatus({status})"},
                  "[WFM] WFMLoginStep2: WFM_PARSE_XML_INVALID_PARAMETER");
    row.goodReply = "<authLogin><authPassed>1</authPassed><authSid>abc</authSid></authLogin>";
    row.brokenOff = {0};
    // It is XML, and says nothing of a login.
    row.strangePage = {14, "Failed to allocate memory pSid", 14};
    rows.push_back(row);

    row = ofLogin("WFM2SVGetQuestion", question,
                  {"[WFM] WFM2SVGetQuestion: {word}", "[WFM] WFM2SVGetQuestion failed dwStatus({status})"},
                  "[WFM] WFM2SVGetQuestion: WFM_PARSE_XML_INVALID_PARAMETER");
    row.goodReply = "<system_question_text>Why?</system_question_text>";
    row.brokenOff = {0};
    row.redirect.result = -1;
    rows.push_back(row);

    // Whatever is answered will do.
    row = ofLogin("WFM2SVSendEmail", mail,
                  {"[WFM] WFM2SVSendEmail: {word}", "[WFM] WFM2SVSendEmail failed dwStatus({status})"},
                  "[WFM] WFM2SVSendEmail: WFM_PARSE_XML_INVALID_PARAMETER");
    row.goodReply = "<system_question_text>Why?</system_question_text>";
    row.badReply = row.strangePage = row.redirect = {0};
    rows.push_back(row);

    row = usual("WFMLogout", fileManagerLogout,
                {"[WFM] WFMLogout{word}", "[WFM] WFMLogout failed dwStatus({status})"},
                "[WFM] WFMLogout: WFM_PARSE_XML_INVALID_PARAMETER");
    row.needsSid = false;
    row.oneService = true;
    row.timeoutMs = 30000;
    row.proxyWord = ": WFM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ";
    row.serviceWord = ": WFM_PARSE_XML_HTTPTRAN_SERVICE_UNAVAIL";
    row.connectFailed = row.receiveFailed = " FAIL(httpStatusCode={http})";
    row.brokenOff.word = " FAIL(httpStatusCode=200)";
    row.notUnderstood = "[WFM] WFMLogout: WFM_PARSE_XML_FAIL Status(-1), Result(0)";
    rows.push_back(row);
}

CallRow activation(const char* name, decltype(CallRow::run) run, std::vector<const char*> failure,
                   const char* refused) {
    CallRow row = usual(name, std::move(run), std::move(failure), refused);
    row.refusedStatus = 87;
    row.timeoutMs = 30000;
    row.goodReply = R"({"status":1,"servername":"nas","admingroup":"1"})";
    return row;
}

void addTokens(std::vector<CallRow>& rows) {
    rows.push_back(activation("TorviActivateSid", activate,
                              {"[WFM] TorviActivateSid: {word}",
                               "[WFM] TorviActivateSid(127.0.0.1:{port}) failed dwStatus({status})"},
                              "[WFM] TorviActivateSid({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER"));
    rows.back().oneService = true;

    rows.push_back(activation("TorviActivateSid2", activateToken,
                              {"[WFM] TorviActivateSid2: {word}",
                               "[WFM] TorviActivateSid2(127.0.0.1:{port}) failed dwStatus({status})"},
                              "[WFM] TorviActivateSid2({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER"));
    rows.back().needsSession = false;

    CallRow row = usual("WFMGetSystemSid", systemSid,
                        {"[WFMShare] WFMGetSystemSid: {word}",
                         "[WFMShare] WFMGetSystemSid(127.0.0.1:{port}) failed dwStatus({status})"},
                        "[WFMShare] WFMGetSystemSid({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.goodReply = R"({"status":1,"sid":"abc"})";
    row.proxyWord = "HTTP_STATUS_PROXY_AUTH_REQ";
    rows.push_back(row);
}

void addProbe(std::vector<CallRow>& rows) {
    CallRow row = usual("WFMValidIP", validIP,
                        {"[WFMShare] WFMValidIP: {word}",
                         "[WFMShare] WFMValidIP(127.0.0.1:{port}): failed dwStatus({status})"},
                        "[WFMShare] WFMValidIP({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.needsSession = false;
    row.level = 4;
    row.timeoutMs = 3000;
    row.has404 = true;
    row.notFound = "[WFMShare] WFMValidIP(127.0.0.1:{port}): HTTP_STATUS_NOT_FOUND";
    row.proxyWord = "HTTP_STATUS_PROXY_AUTH_REQ";
    row.serviceWord = "HTTP_STATUS_SERVICE_UNAVAIL";
    row.connectFailed = "WFM_PARSE_XML_HTTPTRAN_CONNECT_FAIL(statusCode={http})";
    row.receiveFailed = "WFM_PARSE_XML_HTTPTRAN_RECEIVE_FAIL(statusCode={http})";
    row.brokenOff.word = "WFM_PARSE_XML_HTTPTRAN_CONNECT_FAIL(statusCode=200)";
    row.goodReply = R"({"UID":"uid-1"})";
    row.goodLine = "[WFMShare] WFMValidIP: Valid IP (127.0.0.1)";
    row.tooLarge = R"({"UID":"uid-1","is_booting":99999999999})";
    rows.push_back(row);
}

}  // namespace

void addSessionRows(std::vector<CallRow>& rows) {
    addLogins(rows);
    addTokens(rows);
    addProbe(rows);
}
