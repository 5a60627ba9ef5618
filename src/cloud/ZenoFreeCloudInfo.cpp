#include "WebFileManAPI.h"
#include "cloud/freelist.h"

using namespace Lattice;

namespace {

void FreeTexts(wchar_t**& list, int32_t& count) {
    FreeList(list, count, [](const wchar_t* text) { delete[] text; });
}

}  // namespace

uint32_t ZenoFreeCloudInfo(_CLOUD_LINK_INFORMATION* link) {
    if (link == nullptr) return 0;
    FreeTexts(link->lppWanIPs, link->nWanIPCount);
    FreeTexts(link->lppLanIPs, link->nLanIPCount);
    FreeTexts(link->lppDdns, link->nDdnsCount);
    return 0;
}
