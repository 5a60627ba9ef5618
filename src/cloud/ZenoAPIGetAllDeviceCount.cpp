#include "cloud/ZenoGetAllDeviceCountJson.h"
#include "cloud/cloudcall.h"

using namespace Lattice;

uint32_t ZenoAPIGetAllDeviceCount(const wchar_t* server, const wchar_t* agentName, const wchar_t* appVersion,
                                  const wchar_t* clientID, const wchar_t* accessToken, bool secure,
                                  uint32_t proxyMode, const wchar_t* proxyHost, const wchar_t* proxyUser,
                                  const wchar_t* proxyPassword, void* /*reserved*/, uint32_t* resultWord,
                                  int32_t* count) {
    static constexpr auto rules = CloudRules("[WFM] ZenoAPIGetAllDeviceCount");
    CloudCall call(rules, {server, agentName, appVersion, clientID, secure, proxyMode, proxyHost, proxyUser,
                           proxyPassword});
    if (!call.accepts(accessToken, resultWord, count)) return call.refuse();
    call.begin(resultWord);
    *count = 0;

    call.getAt(L"/v1.1/device/count");
    call.addTokenHeaders(accessToken);
    CZenoGetAllDeviceCountJson reply;
    if (!call.ask(reply)) return call.end();

    *count = reply.count;
    return call.answer(reply.GetStatus());
}
