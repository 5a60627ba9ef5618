#pragma once

#include "cloud/ZenoGetAllDeviceInfoJson.h"
#include "cloud/cloudcall.h"
#include "core/handover.h"

namespace Lattice {

/// The rules of the calls that list devices. No colon before WFM_PARSE_XML_FAIL, and that must stay.
constexpr CallRules DeviceListRules(const char* callName) {
    return CloudRules(callName).withNotUnderstood(kWithoutColon).withOutcomes(kWithNotFound);
}

/// The list that such a call hands out.
struct DeviceList {
    int32_t* count;
    _NAS_DEVICE_INFORMATION_API_V11*** devices;
};

/// Sends the request of such a call and ends it.
inline uint32_t AskForDevices(CloudCall& call, const char* callName, DeviceList list) {
    CZenoGetAllDeviceInfoJson reply;
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != 0)
        return call.answer(reply.GetStatus(), "%s: API result not OK(%d)", callName, reply.GetStatus());
    *list.count = static_cast<int32_t>(reply.devices.size());
    *list.devices = HandOver(reply.devices);
    return call.answer(0);
}

}  // namespace Lattice
