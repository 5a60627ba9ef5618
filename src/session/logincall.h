#pragma once

#include "core/authcontext.h"
#include "core/callframe.h"

namespace Lattice {

/// The statuses that the logins of the web file manager tell apart.
inline constexpr HttpOutcomes kFileManagerLoginOutcomes{{kProxyRefused, kServiceUnavailable, kRedirectToTls},
                                                        3};

/// Their lines name neither server nor port.
constexpr CallRules LoginRules(const char* call) {
    return CallRules(call)
        .withOutcomes(kFileManagerLoginOutcomes)
        .withRefused("{call}: WFM_PARSE_XML_INVALID_PARAMETER")
        .withSummary("{call} failed dwStatus({status})");
}

inline constexpr int kHttpOk = 200;

/// What a second step that went wrong, or is wanted, comes back as.
enum SecondStep : uint32_t {
    kSecondStepUnknown = 14,
    kSecondStepCode = 16,
    kSecondStepSecondForm = 17,
    kSecondStepThirdForm = 18,
    kSecondStepNoTriesLeft = 19,
};

/// What a login of the web file manager brought.
struct LoggedIn {
    const std::wstring& sid;
    const std::wstring& serverName;
    bool isAdmin;
};

/// Where its caller wants it.
struct LoginTarget {
    wchar_t* serverName;
    uint32_t serverNameCapacity;
    bool* isAdmin;
    _WFM_AUTH_CONTEXT** context;
};

/// Hands out the session and what goes with it, or the refusal that an empty sid is. The session keeps
/// `connection`.
uint32_t FinishLogin(Call& call, const LoggedIn& login, const Connection& connection,
                     const LoginTarget& target);

}  // namespace Lattice
