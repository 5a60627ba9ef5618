#include "core/callframe.h"

#include <QCoreApplication>
#include <algorithm>
#include <cstdarg>
#include <limits>

namespace Lattice {

namespace {

constexpr size_t kUrlLimit = 2047;

/// Only a client on the NAS itself names this host.
bool IsLocalServer(const wchar_t* server) {
    return std::wstring(L"127.0.0.1") == server;
}

}  // namespace

Connection Connection::Of(const _WFM_AUTH_CONTEXT& context, const wchar_t* server, uint32_t port) {
    return {server,
            port,
            context.bSecure,
            context.szAgentName,
            context.dwProxyMode,
            context.szProxyHost,
            context.szProxyUser,
            context.szProxyPassword,
            context.szForwardedFor};
}

void StoreConnection(_WFM_AUTH_CONTEXT& context, const Connection& connection) {
    context.bSecure = connection.secure;
    CopyText(context.szAgentName, TextOf(connection.agentName));
    context.dwProxyMode = connection.proxyMode;
    CopyText(context.szProxyHost, TextOf(connection.proxyHost));
    CopyText(context.szProxyUser, TextOf(connection.proxyUser));
    CopyText(context.szProxyPassword, TextOf(connection.proxyPassword));
    if (IsLocalServer(connection.server)) CopyText(context.szForwardedFor, TextOf(connection.forwardedFor));
}

std::wstring Encoded(std::wstring text) {
    PercentEncoding(text);
    return text;
}

bool IsSameNode(const std::wstring& slaveID, const std::wstring& other) {
    return ToQString(slaveID).compare(ToQString(other), Qt::CaseInsensitive) == 0;
}

std::wstring SlavePrefix(const std::wstring& ownSlaveID, const std::wstring& slaveID) {
    if (ownSlaveID.empty() || slaveID.empty() || IsSameNode(slaveID, ownSlaveID)) return {};
    return format(L"%ls/", slaveID.c_str());
}

std::wstring SlavePrefix(const _WFM_AUTH_CONTEXT& context, const std::wstring& mappedSlaveID,
                         const wchar_t* slaveID) {
    return SlavePrefix(context.szSlaveID, mappedSlaveID.empty() ? TextOf(slaveID) : mappedSlaveID);
}

Call::Call(const CallRules& rules, const _WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port)
    : m_rules(rules),
      m_context(context),
      m_needsSession(true),
      m_connection(context != nullptr ? Connection::Of(*context, server, port) : Connection{server, port}),
      m_endpoint(rules.endpoint),
      m_timeoutMs(rules.timeoutMs) {}

Call::Call(const CallRules& rules, const Connection& connection)
    : m_rules(rules),
      m_context(nullptr),
      m_needsSession(false),
      m_connection(connection),
      m_endpoint(rules.endpoint),
      m_timeoutMs(rules.timeoutMs) {}

Call::~Call() = default;

bool Call::connected() const {
    if (m_needsSession && m_context == nullptr) return false;
    if (m_needsSession && m_rules.needsSid && TextOf(m_context->pszSid).empty()) return false;
    if (m_connection.server == nullptr) return false;
    if (m_rules.needsAddress && (*m_connection.server == L'\0' || m_connection.port == 0)) return false;
    // Without an application object the wait for the reply would never end.
    return QCoreApplication::instance() != nullptr;
}

uint32_t Call::refuse(uint32_t dwStatus) {
    m_status = dwStatus;
    writeLine(m_rules.refused, "");
    return m_status;
}

void Call::begin(uint32_t* resultWord) {
    if (resultWord != nullptr) m_resultWord = resultWord;
    setResult(-1);
}

void Call::setTimeout(uint32_t msec) {
    constexpr uint32_t most = std::numeric_limits<int>::max();
    m_timeoutMs = static_cast<int>(std::min(msec, most));
}

void Call::route(const wchar_t* slaveID, const std::wstring& mappedSlaveID) {
    m_slavePrefix = SlavePrefix(*m_context, mappedSlaveID, slaveID);
}

void Call::start(const char* method, std::wstring place, bool atEndpoint) {
    m_place = std::move(place);
    m_atEndpoint = atEndpoint;
    m_input.emplace(QString(), method, m_connection.secure);
    m_worker.reset();
}

void Call::getNothing() {
    start("GET", {}, false);
}

/// Formed when the request goes out, so that it doesn't matter in which order its parts were told.
std::wstring Call::url() const {
    if (m_place.empty() && !m_atEndpoint) return {};
    std::wstring place = m_place;
    if (m_atEndpoint)
        place = (usesSyncService() ? format(m_endpoint.syncService, m_slavePrefix.c_str())
                                   : std::wstring(m_endpoint.fileManager)) +
                m_place;
    std::wstring url = m_connection.secure ? L"https://" : L"http://";
    url += m_connection.server + (L":" + std::to_wstring(static_cast<int>(m_connection.port))) + place;
    url.resize(std::min(url.size(), kUrlLimit));
    return url;
}

HttpRequestInput* Call::request() {
    m_input->url_str = ToQString(url());
    if (IsGiven(m_connection.agentName)) m_input->set_agent_name(ToQString(m_connection.agentName));
    m_input->set_timeout_msec(m_timeoutMs);
    // A client on the NAS itself tells the server which address it acts for; no other host is told.
    if (IsLocalServer(m_connection.server) && IsGiven(m_connection.forwardedFor))
        m_input->add_raw_header("X-Forwarded-For", ToQString(m_connection.forwardedFor));
    return &*m_input;
}

/// One worker serves one request. Proxy mode 0 needs no proxy record: the transport then does what it does
/// for a record of that mode.
HttpRequestWorker& Call::worker() {
    if (m_worker != nullptr) return *m_worker;
    m_worker = std::make_unique<HttpRequestWorker>(nullptr);
    if (m_connection.proxyMode != kProxyNone)
        m_worker->setProxy(static_cast<_PROXY_MODE_>(m_connection.proxyMode),
                           ToQString(m_connection.proxyHost), ToQString(m_connection.proxyUser),
                           ToQString(m_connection.proxyPassword));
    return *m_worker;
}

int Call::send() {
    return worker().execute(request());
}

bool Call::judge(int networkError) {
    if (networkError == 0) return true;
    failByHttp(networkError);
    return false;
}

void Call::failByHttp(int networkError) {
    const int httpStatus = worker().http_status;
    for (const HttpOutcome& outcome : m_rules.outcomes) {
        if (outcome.httpStatus != httpStatus) continue;
        if (outcome.resultWord != nullptr) setResult(*outcome.resultWord);
        m_status = outcome.dwStatus;
        return writeLine(outcome.line != nullptr ? outcome.line : m_rules.reason, outcome.word);
    }
    const bool connectFailed = networkError >= 1 && networkError <= 99;
    m_status = connectFailed ? WFM_PARSE_XML_HTTPTRAN_CONNECT_FAIL : WFM_PARSE_XML_HTTPTRAN_RECEIVE_FAIL;
    writeLine(m_rules.failed != nullptr ? m_rules.failed : m_rules.reason,
              connectFailed ? m_rules.connectFailed : m_rules.receiveFailed);
}

void Call::failNotUnderstood() {
    m_status = WFM_PARSE_XML_FAIL;
    writeLine(m_rules.notUnderstood != nullptr ? m_rules.notUnderstood : m_rules.reason,
              "WFM_PARSE_XML_FAIL");
}

void Call::failAs(uint32_t dwStatus, const char* word) {
    m_status = dwStatus;
    writeLine(m_rules.reason, word);
}

namespace {

/// The lines of a call, under the logger's guard.
void WriteLine(Logger::LogLevel level, const char* format, va_list arguments) {
    if (Logger::getInstance().enabled(level)) Logger::getInstance().vprintLog(level, format, arguments);
}

}  // namespace

void Call::line(const char* format, ...) const {
    va_list arguments;
    va_start(arguments, format);
    WriteLine(m_rules.level, format, arguments);
    va_end(arguments);
}

void Call::debugLine(const char* format, ...) const {
    va_list arguments;
    va_start(arguments, format);
    WriteLine(Logger::Debug, format, arguments);
    va_end(arguments);
}

uint32_t Call::end() {
    if (m_status != 0) writeLine(m_rules.summary, "");
    return m_status;
}

uint32_t Call::answer(int64_t resultWord) {
    setResult(resultWord);
    return end();
}

uint32_t Call::answer(int64_t resultWord, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    WriteLine(m_rules.level, format, arguments);
    va_end(arguments);
    return answer(resultWord);
}

uint32_t Call::fail(uint32_t dwStatus, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    WriteLine(m_rules.level, format, arguments);
    va_end(arguments);
    m_status = dwStatus;
    return end();
}

QString Call::fieldOf(const QString& field) const {
    if (field == "call") return m_rules.call;
    if (field == "server") return ToQString(m_connection.server);
    if (field == "port") return QString::number(static_cast<int>(m_connection.port));
    if (field == "status") return QString::number(static_cast<int>(m_status));
    if (field == "subject") return m_subject;
    if (field == "http") return QString::number(m_worker != nullptr ? m_worker->http_status : 0);
    Q_ASSERT_X(false, "Call", "a log line names a field that there isn't");
    return {};
}

/// One pass over the template, so that a caller's text that looks like a field stays as it is. The word,
/// which is the rules' own, may have fields in turn.
void Call::writeLine(const char* lineTemplate, const char* word) const {
    QString text;
    QString rest = QString(lineTemplate).replace("{word}", word);
    if (rest.isEmpty()) return;
    for (int open = rest.indexOf('{'); open >= 0; open = rest.indexOf('{')) {
        const int close = rest.indexOf('}', open);
        text += rest.left(open) + fieldOf(rest.mid(open + 1, close - open - 1));
        rest = rest.mid(close + 1);
    }
    line("%s", (text + rest).toUtf8().constData());
}

}  // namespace Lattice
