#pragma once

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

/// A pointer that the caller must give, whatever it points to: a buffer, or a text that may be empty.
struct Given {
    const void* pointer;
};

inline bool IsGiven(const wchar_t* text) {
    return text != nullptr && *text != L'\0';
}
inline bool IsGiven(Given given) {
    return given.pointer != nullptr;
}
inline bool IsGiven(uint32_t number) {
    return number != 0;
}
inline bool IsGiven(int32_t number) {
    return number != 0;
}
inline bool IsGiven(int64_t number) {
    return number != 0;
}
template <class T>
bool IsGiven(T* pointer) {
    return pointer != nullptr;
}
/// Either a text or a buffer: the call must say which.
bool IsGiven(wchar_t* ambiguous) = delete;

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
inline std::wstring Encoded(const wchar_t* text) {
    return Encoded(TextOf(text));
}

/// Slave ids are compared without regard to case.
bool IsSameNode(const std::wstring& slaveID, const std::wstring& other);

/// The node that a request must name in front of the URL's path: "<slave id>/", or nothing when the node is
/// the session's own.
std::wstring SlavePrefix(const std::wstring& ownSlaveID, const std::wstring& slaveID);
/// The same for a session; the node that holds a mapped team folder goes before the caller's argument.
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
/// Every failure writes a reason line; end(), answer() and fail() add the summary line when the call failed.
class Call {
public:
    /// A call on a session; `context` may be null and is then refused.
    Call(const CallRules& rules, const _WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port);
    /// A call that has no session.
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
    /// Refuses the call for its arguments: one line, 8 as a rule.
    uint32_t refuse(uint32_t dwStatus = WFM_PARSE_XML_INVALID_PARAMETER);
    /// From here on the call answers: the result word becomes -1.
    void begin(uint32_t* resultWord);
    /// What the {subject} of this call's lines is.
    void about(const wchar_t* subject) { m_subject = ToQString(subject); }

    // Request: each get() or post() starts a new one

    const wchar_t* sid() const { return m_context->pszSid; }
    bool usesSyncService() const { return m_context->bUseNuboCGI; }
    bool usesFcgi() const { return m_context->bUseFcgi; }
    const _WFM_AUTH_CONTEXT& context() const { return *m_context; }

    /// Another CGI, agent, time-out or node than the rules and the session say.
    void use(const Endpoint& endpoint) { m_endpoint = endpoint; }
    void connectTo(uint32_t port, bool secure) {
        m_connection.port = port;
        m_connection.secure = secure;
    }
    void setAgent(const wchar_t* agentName) { m_connection.agentName = agentName; }
    void setTimeout(uint32_t msec);
    void route(const wchar_t* slaveID, const std::wstring& mappedSlaveID = {});
    /// For requests to a place that has the node in it.
    const std::wstring& slavePrefix() const { return m_slavePrefix; }

    /// A request to the endpoint that the session speaks to; the template is its query.
    template <class... Arguments>
    void get(const wchar_t* query, const Arguments&... arguments) {
        start("GET", L"?" + format(query, Raw(arguments)...), true);
    }
    template <class... Arguments>
    void post(const wchar_t* query, const Arguments&... arguments) {
        start("POST", L"?" + format(query, Raw(arguments)...), true);
    }
    /// A form for an endpoint that takes no query.
    void post() { start("POST", {}, true); }
    /// A request to one place of the server; the template is the URL's text behind the port.
    template <class... Arguments>
    void getAt(const wchar_t* place, const Arguments&... arguments) {
        start("GET", format(place, Raw(arguments)...), false);
    }
    template <class... Arguments>
    void postAt(const wchar_t* place, const Arguments&... arguments) {
        start("POST", format(place, Raw(arguments)...), false);
    }
    /// A request to nowhere, which the transport refuses.
    void getNothing();

    /// The headers of the request beside the transport's own, in order.
    void header(const char* name, const QString& value) { m_input->add_raw_header(name, value); }
    void header(const char* name, const std::wstring& value) { header(name, ToQString(value)); }
    void header(const char* name, const wchar_t* value) { header(name, ToQString(value)); }
    /// The form fields of the request, in order.
    void field(const char* key, const std::wstring& value) { m_input->add_var(key, ToQString(value)); }
    void field(const char* key, const wchar_t* value) { m_input->add_var(key, ToQString(value)); }
    void field(const char* key, const char* value) { m_input->add_var(key, value); }
    void field(const char* key, int64_t value) { field(key, std::to_wstring(value)); }
    /// The file of an upload.
    void addFile(const char* variable, const QString& localPath, const std::wstring& name, int64_t size,
                 int64_t start = 0, bool continues = false) {
        m_input->add_file(variable, localPath, ToQString(name), "application/octet-stream", size, start,
                          continues);
    }

    // Exchange

    /// Runs the request and gives the network error, judging nothing.
    int send();
    /// Runs the request. A failed one sets `dwStatus` and writes its reason.
    bool exchange() { return judge(send()); }
    /// The request, made ready for a transport of the call's own.
    HttpRequestInput* request();
    HttpRequestWorker& worker();
    /// Judges what such a transport returned: 0 is a reply, anything else fails by the HTTP status.
    bool judge(int networkError);
    /// Fails by the HTTP status.
    void failByHttp(int networkError);

    /// Gives the connection back before the call goes on with others.
    void release() { m_worker.reset(); }

    // Reply

    template <class Parser>
    int parse(Parser& reply) {
        return reply.Parser(worker().response.data());
    }
    /// Parses the reply; one that isn't understood fails with 14.
    template <class Parser>
    bool understands(Parser& reply) {
        if (parse(reply) == 1) return true;
        failNotUnderstood();
        return false;
    }
    /// Fails with a `dwStatus`, and with the reason line of that word.
    void failAs(uint32_t dwStatus, const char* word);
    /// Fails with 14: the reply isn't understood, or lacks what the call can't do without.
    void failNotUnderstood();
    /// exchange() and understands() in one.
    template <class Parser>
    bool ask(Parser& reply) {
        return exchange() && understands(reply);
    }

    // Outcome

    uint32_t status() const { return m_status; }
    void setStatus(uint32_t dwStatus) { m_status = dwStatus; }
    uint32_t result() const { return *m_resultWord; }
    void setResult(int64_t resultWord) { *m_resultWord = static_cast<uint32_t>(resultWord); }

    /// One line of the call's own, spelled whole; debugLine() at level 4.
    void line(const char* format, ...) const __attribute__((format(printf, 2, 3)));
    void debugLine(const char* format, ...) const __attribute__((format(printf, 2, 3)));

    /// Ends the call: the summary line if it failed; its `dwStatus`.
    uint32_t end();
    /// Ends the call without a line.
    uint32_t leave(uint32_t dwStatus) { return m_status = dwStatus; }
    /// Ends the call with a result word, after a line if there is one to write.
    uint32_t answer(int64_t resultWord);
    uint32_t answer(int64_t resultWord, const char* format, ...) __attribute__((format(printf, 3, 4)));
    /// Ends the call with a `dwStatus`, after the line that tells the reason.
    uint32_t fail(uint32_t dwStatus, const char* format, ...) __attribute__((format(printf, 3, 4)));

private:
    static const wchar_t* Raw(const std::wstring& text) { return text.c_str(); }
    static const wchar_t* Raw(const wchar_t* text) { return text; }
    static int Raw(uint32_t number) { return static_cast<int>(number); }
    static int Raw(int number) { return number; }

    bool connected() const;
    void start(const char* method, std::wstring place, bool atEndpoint);
    std::wstring url() const;
    void writeLine(const char* lineTemplate, const char* word) const;
    QString fieldOf(const QString& field) const;

    const CallRules m_rules;
    const _WFM_AUTH_CONTEXT* const m_context;
    const bool m_needsSession;
    Connection m_connection;
    Endpoint m_endpoint;
    int m_timeoutMs;
    QString m_subject;
    std::wstring m_slavePrefix;
    std::wstring m_place;  // what stands behind the port, or behind the endpoint
    bool m_atEndpoint = false;
    std::optional<HttpRequestInput> m_input;
    std::unique_ptr<HttpRequestWorker> m_worker;
    uint32_t m_status = 0;
    uint32_t m_noResultWord = static_cast<uint32_t>(-1);
    uint32_t* m_resultWord = &m_noResultWord;
};

}  // namespace Lattice
