#pragma once

#include "core/callframe.h"

namespace Lattice {

/// The application that asks a cloud service, and the way there. Proxy texts may be null.
struct CloudClient {
    const wchar_t* server;  // without scheme and port
    const wchar_t* agentName;
    const wchar_t* appVersion;
    const wchar_t* appID;
    bool secure;
    uint32_t proxyMode;
    const wchar_t* proxyHost;
    const wchar_t* proxyUser;
    const wchar_t* proxyPassword;
};

/// The line of a word without the colon, which some lines of the family lack.
inline constexpr const char* kWithoutColon = "{call} {word}";

/// How the lines of the family go where a call has none of its own.
constexpr CallRules CloudRules(const char* callName) {
    return CallRules(callName)
        .withRefused("{call} WFM_PARSE_XML_INVALID_PARAMETER")
        .withSummary("{call}: failed dwStatus({status})");
}

/// A call on a cloud service. It has no session: each request brings its credentials along in its headers,
/// which are told behind getAt() or postAt(). Nothing in a URL or header is encoded.
class CloudCall : public Call {
public:
    CloudCall(const CallRules& rules, const CloudClient& client);

    /// Whether the client's texts, but for the proxy's, and all of `arguments` are given.
    template <class... Arguments>
    bool accepts(const Arguments&... arguments) const {
        return Call::accepts(m_client.agentName, m_client.appVersion, m_client.appID, arguments...);
    }

    /// The headers of a request that needs nobody's token.
    void addAppHeaders();
    /// The same, and the token of the user or application on whose behalf the request goes.
    void addTokenHeaders(const wchar_t* accessToken);
    /// The headers of a request that proves the application by its secret, which isn't sent itself.
    void addChecksumHeaders(const wchar_t* appSecret);

private:
    const CloudClient m_client;
};

}  // namespace Lattice
