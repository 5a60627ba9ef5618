#include "cloud/ZenoGetDeviceIDJson.h"
#include "cloud/cloudcall.h"

using namespace Lattice;

namespace {

/// Most lines of this call name another one, and that must stay.
constexpr CallRules Rules() {
    constexpr HttpOutcome serviceUnavailable{kServiceUnavailable.httpStatus, kServiceUnavailable.dwStatus,
                                             kServiceUnavailable.word,
                                             "[WFM] PeltAPIGetServicePorts: {word}"};
    return CloudRules("[WFM] ZenoAPIGetDeviceID")
        .withOutcomes({{kProxyRefused, serviceUnavailable}, 2})
        .withFailedLine("[WFM] PeltAPIGetServicePorts {word}")
        .withSummary("[WFM] PeltAPIGetServicePorts failed dwStatus({status})");
}

}  // namespace

uint32_t ZenoAPIGetDeviceID(const wchar_t* server, const wchar_t* agentName, const wchar_t* appVersion,
                            const wchar_t* clientID, const wchar_t* userID, const wchar_t* appSecret,
                            bool secure, uint32_t proxyMode, const wchar_t* proxyHost,
                            const wchar_t* proxyUser, const wchar_t* proxyPassword, void* /*reserved*/,
                            _CLOUD_DEVICE_ID_INFORMATION* device) {
    static constexpr auto rules = Rules();
    CloudCall call(rules, {server, agentName, appVersion, clientID, secure, proxyMode, proxyHost, proxyUser,
                           proxyPassword});
    if (!call.accepts(userID, appSecret, device)) return call.refuse();
    *device = {};

    call.getAt(L"/v1/users/deviceId/%ls", userID);
    call.addChecksumHeaders(appSecret);
    CZenoGetDeviceIDJson reply;
    if (!call.ask(reply)) return call.end();

    device->nResponseCode = reply.GetCloudAPIResponseCode();
    CopyTextCut(device->szDeviceID, reply.GetDeviceID());
    CopyTextCut(device->szMessage, reply.GetMessage());
    call.debugLine("[WFM] ZenoAPIGetDeviceID DeviceID(%ls), Msg(%ls), ResponseCode(%d)", device->szDeviceID,
                   device->szMessage, device->nResponseCode);
    return call.end();
}
