#include "cloud/devicerecord.h"

#include "cloud/freelist.h"

namespace Lattice {

namespace {

template <class Record>
void FreeRecords(Record**& list, int32_t& count) {
    FreeList(list, count, std::default_delete<Record>());
}

}  // namespace

void FreeDevice::operator()(_NAS_DEVICE_INFORMATION_API_V11* device) const {
    if (device == nullptr) return;
    FreeRecords(device->info.lppLanIPs, device->info.nLanIPCount);
    FreeRecords(device->info.lppWanIPs, device->info.nWanIPCount);
    FreeRecords(device->lppServices, device->nServiceCount);
    FreeRecords(device->lppUsers, device->nUserCount);
    delete device;
}

}  // namespace Lattice
