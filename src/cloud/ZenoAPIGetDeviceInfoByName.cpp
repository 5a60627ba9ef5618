#include "cloud/devicelist.h"

using namespace Lattice;

uint32_t ZenoAPIGetDeviceInfoByName(const wchar_t* server, const wchar_t* agentName,
                                    const wchar_t* appVersion, const wchar_t* clientID,
                                    const wchar_t* accessToken, const wchar_t* deviceName, bool secure,
                                    uint32_t proxyMode, const wchar_t* proxyHost, const wchar_t* proxyUser,
                                    const wchar_t* proxyPassword, void* /*reserved*/, uint32_t* resultWord,
                                    int32_t* count, _NAS_DEVICE_INFORMATION_API_V11*** devices) {
    static constexpr auto rules = DeviceListRules("[WFM] ZenoAPIGetDeviceInfoByName");
    CloudCall call(rules, {server, agentName, appVersion, clientID, secure, proxyMode, proxyHost, proxyUser,
                           proxyPassword});
    if (!call.accepts(accessToken, deviceName, resultWord, count, devices)) return call.refuse();
    call.begin(resultWord);
    *count = 0;
    *devices = nullptr;

    call.getAt(L"/v1.1/device/search?device_name=%ls", deviceName);
    call.addTokenHeaders(accessToken);
    return AskForDevices(call, rules.call, {count, devices});
}
