#include "core/callframe.h"

#include <QCoreApplication>
#include <algorithm>
#include <cstdarg>
#include <limits>

namespace Lattice {

namespace {

constexpr size_t kUrlLimit = 2047;

constexpr wchar_t kSyncService[] = L"%ls%ls:%d/%lscgi-bin/torvi/torvisrv.cgi?";
constexpr wchar_t kSyncServiceFcgi[] = L"%ls%ls:%d/%lscgi-bin/torvi/torvisrv.fcgi?";
/// Only a client on the NAS itself names this host.
bool IsLocalServer(const wchar_t* server) {
    return std::wstring(L"127.0.0.1") == server;
}

constexpr wchar_t kFileManager[] = L"%ls%ls:%d/cgi-bin/filemanager/utilRequest.cgi?";

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

std::wstring SlavePrefix(const _WFM_AUTH_CONTEXT& context, const std::wstring& mappedSlaveID,
                         const wchar_t* slaveID) {
    const QString own = ToQString(context.szSlaveID);
    const std::wstring node = mappedSlaveID.empty() ? TextOf(slaveID) : mappedSlaveID;
    if (own.isEmpty() || node.empty() || ToQString(node).compare(own, Qt::CaseInsensitive) == 0) return {};
    return format(L"%ls/", node.c_str());
}

Call::Call(const CallRules& rules, const _WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port)
    : m_rules(rules),
      m_context(context),
      m_needsSession(true),
      m_connection(context != nullptr ? Connection::Of(*context, server, port) : Connection{server, port}),
      m_timeoutMs(rules.timeoutMs) {}

Call::Call(const CallRules& rules, const Connection& connection)
    : m_rules(rules),
      m_context(nullptr),
      m_needsSession(false),
      m_connection(connection),
      m_timeoutMs(rules.timeoutMs) {}

Call::~Call() = default;

bool Call::connected() const {
    if (m_needsSession && (m_context == nullptr || !IsGiven(m_context->pszSid))) return false;
    // Without an application object the wait for the reply would never end.
    return IsGiven(m_connection.server) && m_connection.port != 0 && QCoreApplication::instance() != nullptr;
}

uint32_t Call::refuse() {
    m_status = WFM_PARSE_XML_INVALID_PARAMETER;
    writeLine(m_rules.refused, "");
    return m_status;
}

void Call::begin(uint32_t* resultWord) {
    m_resultWord = resultWord;
    setResult(-1);
}

void Call::setTimeout(uint32_t msec) {
    constexpr uint32_t most = std::numeric_limits<int>::max();
    m_timeoutMs = static_cast<int>(msec < most ? msec : most);
}

void Call::route(const wchar_t* slaveID, const std::wstring& mappedSlaveID) {
    m_slavePrefix = SlavePrefix(*m_context, mappedSlaveID, slaveID);
}

std::wstring Call::serviceUrl() const {
    if (!m_context->bUseNuboCGI)
        return format(kFileManager, scheme(), m_connection.server, m_connection.port);
    return format(m_useFcgi ? kSyncServiceFcgi : kSyncService, scheme(), m_connection.server,
                  m_connection.port, m_slavePrefix.c_str());
}

HttpRequestInput& Call::request(const char* method, std::wstring url) {
    url.resize(std::min(url.size(), kUrlLimit));
    m_input.emplace(ToQString(url), method, m_connection.secure);
    if (IsGiven(m_connection.agentName)) m_input->set_agent_name(ToQString(m_connection.agentName));
    m_input->set_timeout_msec(m_timeoutMs);
    // A client on the NAS itself tells the server which address it acts for; no other host is told.
    if (IsLocalServer(m_connection.server) && IsGiven(m_connection.forwardedFor))
        m_input->add_raw_header("X-Forwarded-For", ToQString(m_connection.forwardedFor));
    return *m_input;
}

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
    return worker().execute(&*m_input);
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
        setResult(outcome.resultWord);
        return fail(outcome.dwStatus, outcome.word);
    }
    const bool connectFailed = networkError >= 1 && networkError <= 99;
    fail(connectFailed ? WFM_PARSE_XML_HTTPTRAN_CONNECT_FAIL : WFM_PARSE_XML_HTTPTRAN_RECEIVE_FAIL,
         QByteArray("FAIL(httpStatusCode=" + QByteArray::number(httpStatus) + ')').constData());
}

void Call::line(const char* format, ...) const {
    if (!Logger::getInstance().enabled(m_rules.level)) return;
    va_list arguments;
    va_start(arguments, format);
    Logger::getInstance().vprintLog(m_rules.level, format, arguments);
    va_end(arguments);
}

void Call::fail(uint32_t dwStatus, const char* word) {
    m_status = dwStatus;
    writeLine(m_rules.reason, word);
}

uint32_t Call::end() {
    if (m_status != 0) writeLine(m_rules.summary, "");
    return m_status;
}

/// One pass over the template, so that a caller's text that looks like a field stays as it is.
void Call::writeLine(const char* lineTemplate, const char* word) const {
    const auto valueOf = [&](const QString& field) -> QString {
        if (field == "call") return m_rules.call;
        if (field == "server") return ToQString(m_connection.server);
        if (field == "port") return QString::number(static_cast<int>(m_connection.port));
        if (field == "status") return QString::number(static_cast<int>(m_status));
        if (field == "subject") return ToQString(m_subject);
        return word;
    };
    QString text;
    QString rest = lineTemplate;
    for (int open = rest.indexOf('{'); open >= 0; open = rest.indexOf('{')) {
        const int close = rest.indexOf('}', open);
        text += rest.left(open) + valueOf(rest.mid(open + 1, close - open - 1));
        rest = rest.mid(close + 1);
    }
    line("%s", (text + rest).toUtf8().constData());
}

}  // namespace Lattice
