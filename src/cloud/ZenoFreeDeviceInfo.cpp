#include "cloud/devicerecord.h"
#include "cloud/freelist.h"

using namespace Lattice;

uint32_t ZenoFreeDeviceInfo(int count, _NAS_DEVICE_INFORMATION_API_V11*** devices) {
    if (devices != nullptr) FreeList(*devices, count, FreeDevice());
    return 0;
}
