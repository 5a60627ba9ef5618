#pragma once

#include "core/authcontext.h"
#include "core/callframe.h"

namespace Lattice {

/// The statuses that the logins of the web file manager tell apart.
inline constexpr HttpOutcomes kFileManagerLoginOutcomes{{kProxyRefused, kServiceUnavailable, kRedirectToTls},
                                                        3};

/// Their lines: only the server's part of the log names server and port.
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

/// Hands out what a login of the web file manager brought: the session, or the refusal that an empty sid is.
uint32_t FinishLogin(Call& call, const std::wstring& sid, const Connection& connection,
                     const std::wstring& name, wchar_t* serverName, uint32_t serverNameCapacity,
                     _WFM_AUTH_CONTEXT** context);

}  // namespace Lattice
