#pragma once

#include <QByteArray>
#include <QString>
#include <memory>
#include <optional>
#include <string>

#include "core/Utils.h"
#include "core/authcontext.h"
#include "core/callrules.h"
#include "core/httprequestinput.h"
#include "core/httprequestworker.h"

namespace Lattice {

/// Where a request goes and on whose behalf. Texts may be null.
struct Connection {
    const wchar_t* server = nullptr;
    uint32_t port = 0;
    bool secure = false;
    const wchar_t* agentName = nullptr;  // empty leaves the transport's default
    uint32_t proxyMode = kProxyNone;
    const wchar_t* proxyHost = nullptr;
    const wchar_t* proxyUser = nullptr;
    const wchar_t* proxyPassword = nullptr;
    const wchar_t* forwardedFor = nullptr;

    /// The connection that a session's calls use.
    static Connection Of(const _WFM_AUTH_CONTEXT& context, const wchar_t* server, uint32_t port);
};

/// Keeps a connection in a new session. A text that doesn't fit its field is left out.
void StoreConnection(_WFM_AUTH_CONTEXT& context, const Connection& connection);

/// A text that may be null.
inline std::wstring TextOf(const wchar_t* text) {
    return text != nullptr ? text : L"";
}

inline bool IsGiven(const wchar_t* text) {
    return text != nullptr && *text != L'\0';
}
inline bool IsGiven(wchar_t* buffer) {
    return buffer != nullptr;
}
inline bool IsGiven(uint32_t number) {
    return number != 0;
}
inline bool IsGiven(int32_t number) {
    return number != 0;
}
template <class T>
bool IsGiven(const T* pointer) {
    return pointer != nullptr;
}

/// A flag that another thread or the progress callback may set while a call runs; null is never set.
inline bool IsSet(const volatile bool* flag) {
    return flag != nullptr && *flag;
}

/// The agent of the calls that have no session: they go by another default than the transport's.
inline const wchar_t* AgentOrDefault(const wchar_t* agentName) {
    return IsGiven(agentName) ? agentName : L"VEXAWebFileMan";
}

/// A query argument, percent-encoded.
std::wstring Encoded(std::wstring text);

/// The node that a session's request must name in front of the URL's path: "<slave id>/", or nothing when the
/// node is the session's own. The node that holds a mapped team folder goes before the caller's argument.
std::wstring SlavePrefix(const _WFM_AUTH_CONTEXT& context, const std::wstring& mappedSlaveID,
                         const wchar_t* slaveID);

/// The frame of every exported call, used from top to bottom:
///
///     Call call(rules, context, server, port);
///     if (!call.accepts(name, resultWord)) return call.refuse();
///     call.begin(resultWord);
///     call.get(L"func=...&sid=%ls&name=%ls", call.sid(), Encoded(name));
///     CSomeJson reply;
///     if (!call.ask(reply)) return call.end();
///     ... the call's own rules on what the server said ...
///     return call.answer(0);
///
/// Every failure writes a reason line; end() and answer() add the summary line when the call failed.
class Call {
public:
    /// A call on a session; `context` may be null and is then refused.
    Call(const CallRules& rules, const _WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port);
    /// A call with no session, or one that checks its session itself.
    Call(const CallRules& rules, const Connection& connection);
    ~Call();
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    // Arguments

    /// Whether the session, the server, the port and all of `arguments` are given: pointers that aren't null,
    /// texts that aren't empty, numbers that aren't 0.
    template <class... Arguments>
    bool accepts(const Arguments&... arguments) const {
        return connected() && (IsGiven(arguments) && ...);
    }
    /// Refuses the call for its arguments: one line, 8.
    uint32_t refuse();
    /// From here on the call answers: the result word becomes -1.
    void begin(uint32_t* resultWord);

    /// What the {subject} of this call's lines is.
    void about(const wchar_t* subject) { m_subject = subject; }

    // Request: what holds for all of it first, then get() or post()

    /// Another time-out than the rules'.
    void setTimeout(uint32_t msec);
    void setAgent(const wchar_t* agentName) { m_connection.agentName = agentName; }
    void route(const wchar_t* slaveID, const std::wstring& mappedSlaveID = {});
    void routeToFcgi() { m_useFcgi = m_context->bUseFcgi; }
    bool usesSyncService() const { return m_context->bUseNuboCGI; }
    const wchar_t* sid() const { return m_context->pszSid; }

    /// Starts the request to the session's service; the template is its query.
    template <class... Arguments>
    HttpRequestInput& get(const wchar_t* query, const Arguments&... arguments) {
        return request("GET", serviceUrl() + format(query, Raw(arguments)...));
    }
    template <class... Arguments>
    HttpRequestInput& post(const wchar_t* query, const Arguments&... arguments) {
        return request("POST", serviceUrl() + format(query, Raw(arguments)...));
    }
    /// The same for a URL of the call's own; the template begins with scheme, server and port.
    template <class... Arguments>
    HttpRequestInput& getAt(const wchar_t* url, const Arguments&... arguments) {
        return request("GET",
                       format(url, scheme(), m_connection.server, m_connection.port, Raw(arguments)...));
    }
    template <class... Arguments>
    HttpRequestInput& postAt(const wchar_t* url, const Arguments&... arguments) {
        return request("POST",
                       format(url, scheme(), m_connection.server, m_connection.port, Raw(arguments)...));
    }

    // Exchange

    /// Runs the request and gives the network error, judging nothing.
    int send();
    /// Runs the request. A failed one sets `dwStatus` and writes its reason.
    bool exchange() { return judge(send()); }
    /// Judges what a transport of the call's own returned: 0 is a reply, anything else fails by the HTTP
    /// status.
    bool judge(int networkError);
    /// Fails by the HTTP status.
    void failByHttp(int networkError);
    /// The transport, made with the first use; transfers run it themselves.
    HttpRequestWorker& worker();
    HttpRequestInput* input() { return &*m_input; }

    // Reply

    template <class Parser>
    int parse(Parser& reply) {
        m_body = worker().response;
        return reply.Parser(m_body.data());
    }
    /// Parses the reply; one that isn't understood fails with 14.
    template <class Parser>
    bool understands(Parser& reply) {
        if (parse(reply) == 1) return true;
        fail(WFM_PARSE_XML_FAIL, "WFM_PARSE_XML_FAIL");
        return false;
    }
    /// exchange() and understands() in one.
    template <class Parser>
    bool ask(Parser& reply) {
        return exchange() && understands(reply);
    }

    // Outcome

    /// One line of the call's own, spelled whole.
    void line(const char* format, ...) const __attribute__((format(printf, 2, 3)));
    /// Fails the call with a reason line made of `word`.
    void fail(uint32_t dwStatus, const char* word);
    /// Fails the call; the reason has been written, or there is none.
    void fail(uint32_t dwStatus) { m_status = dwStatus; }
    uint32_t status() const { return m_status; }
    void setResult(int64_t resultWord) { *m_resultWord = static_cast<uint32_t>(resultWord); }
    uint32_t result() const { return *m_resultWord; }
    /// Ends the call: the summary line if it failed; its `dwStatus`.
    uint32_t end();
    /// Sets the result word and ends the call.
    uint32_t answer(int64_t resultWord) {
        setResult(resultWord);
        return end();
    }

private:
    static const wchar_t* Raw(const std::wstring& text) { return text.c_str(); }
    static const wchar_t* Raw(const wchar_t* text) { return text; }
    static int Raw(uint32_t number) { return static_cast<int>(number); }
    static int Raw(int number) { return number; }

    bool connected() const;
    const wchar_t* scheme() const { return m_connection.secure ? L"https://" : L"http://"; }
    std::wstring serviceUrl() const;
    HttpRequestInput& request(const char* method, std::wstring url);
    void writeLine(const char* lineTemplate, const char* word) const;

    const CallRules& m_rules;
    const _WFM_AUTH_CONTEXT* const m_context;
    const bool m_needsSession;
    Connection m_connection;
    const wchar_t* m_subject = L"";
    std::wstring m_slavePrefix;
    bool m_useFcgi = false;
    int m_timeoutMs;
    std::optional<HttpRequestInput> m_input;
    std::unique_ptr<HttpRequestWorker> m_worker;
    QByteArray m_body;
    uint32_t m_status = 0;
    uint32_t m_noResultWord = 0;
    uint32_t* m_resultWord = &m_noResultWord;
};

}  // namespace Lattice
