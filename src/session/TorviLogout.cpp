#include "session/logout.h"

using namespace Lattice;

uint32_t TorviLogout(const wchar_t* server, uint32_t port, bool force, _WFM_AUTH_CONTEXT* context) {
    static constexpr auto rules = CallRules("[WFM] TorviLogout")
                                      .withRefused("{call} failed dwStatus({status})")
                                      .withReason("{call} {word}")
                                      .withSummary("{call} failed dwStatus({status})")
                                      .withTimeout(30000)
                                      .withoutSidCheck();
    if (context == nullptr) return WFM_PARSE_XML_INVALID_PARAMETER;
    return Logout(rules,
                  context->bUseFcgi ? L"/cgi-bin/torvi/torvisrv.fcgi?func=logout&sid=%ls&logout=1"
                                    : L"/cgi-bin/torvi/torvisrv_logout.cgi?sid=%ls&logout=1",
                  "[WFM] TorviLogout WFM_PARSE_XML_FAIL Status(%d), Result(%d)", server, port, force,
                  *context);
}
