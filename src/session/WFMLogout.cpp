#include "session/logout.h"

using namespace Lattice;

namespace {

// A colon here and none before FAIL, and that must stay.
constexpr HttpOutcomes kOutcomes{
    {{407, WFM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ, "WFM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ", "{call}: {word}"},
     {503, WFM_PARSE_XML_HTTPTRAN_SERVICE_UNAVAIL, "WFM_PARSE_XML_HTTPTRAN_SERVICE_UNAVAIL",
      "{call}: {word}"}},
    2};

}  // namespace

uint32_t WFMLogout(const wchar_t* server, uint32_t port, bool force, _WFM_AUTH_CONTEXT* context) {
    static constexpr auto rules = CallRules("[WFM] WFMLogout")
                                      .withRefused("{call}: WFM_PARSE_XML_INVALID_PARAMETER")
                                      .withReason("{call} {word}")
                                      .withSummary("{call} failed dwStatus({status})")
                                      .withOutcomes(kOutcomes)
                                      .withTimeout(30000)
                                      .withoutSidCheck();
    if (context == nullptr) return WFM_PARSE_XML_INVALID_PARAMETER;
    return Logout(rules, L"/cgi-bin/filemanager/wfm2Logout.cgi?sid=%ls&logout=1",
                  "[WFM] WFMLogout: WFM_PARSE_XML_FAIL Status(%d), Result(%d)", server, port, force,
                  *context);
}
