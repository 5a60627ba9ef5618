#include "cloud/PeltGetServicePortJson.h"
#include "cloud/peltrules.h"

using namespace Lattice;

uint32_t PeltAPIGetServicePorts(const wchar_t* server, const wchar_t* deviceID, const wchar_t* agentName,
                                const wchar_t* appVersion, const wchar_t* appID, const wchar_t* appSecret,
                                bool secure, uint32_t proxyMode, const wchar_t* proxyHost,
                                const wchar_t* proxyUser, const wchar_t* proxyPassword, void* /*reserved*/,
                                _CLOUD_SERVICE_PORTS* ports) {
    static constexpr auto rules = PeltRules("[WFM] PeltAPIGetServicePorts");
    CloudCall call(rules, {server, agentName, appVersion, appID, secure, proxyMode, proxyHost, proxyUser,
                           proxyPassword});
    if (!call.accepts(deviceID, appSecret, ports)) return call.refuse();
    *ports = {};

    call.getAt(L"/v1/devices/services/portMapping/%ls", deviceID);
    call.addChecksumHeaders(appSecret);
    CPeltGetServicePortJson reply;
    if (!call.ask(reply)) return call.end();

    *ports = {reply.GetInternalHttpPort(), reply.GetInternalHttpsPort(), reply.GetExternalHttpPort(),
              reply.GetExternalHttpsPort()};
    call.debugLine(
        "[WFM] PeltAPIGetServicePorts InternalHttpPort(%d), InternalHttpsPort(%d), ExtHttpPort(%d), "
        "ExtHttpsPort(%d), Msg(%ls)",
        ports->nInternalHttpPort, ports->nInternalHttpsPort, ports->nExternalHttpPort,
        ports->nExternalHttpsPort, reply.GetMessage().c_str());
    return call.end();
}
