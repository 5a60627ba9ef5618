#include "transfer.h"

#include "progress.h"
#include "signals.h"

namespace torvi {

uint32_t onProgress(int64_t, int64_t transferred, int64_t, int64_t, uint32_t, uint32_t, void*, void*,
                    void* data) {
    static_cast<Progress*>(data)->update(transferred);
    return interrupted() ? 1 : 0;
}

}  // namespace torvi
