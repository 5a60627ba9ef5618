#include "networkalive.h"

#include <dlfcn.h>

#include <optional>

#include "WebFileManAPI.h"

namespace {

thread_local std::optional<bool> networkIsAlive;

}  // namespace

namespace wire {

NetworkIs::NetworkIs(bool alive) {
    networkIsAlive = alive;
}
NetworkIs::~NetworkIs() {
    networkIsAlive.reset();
}

}  // namespace wire

/// The library asks this program first, and the library's own function only if no test says otherwise.
bool IsNetworkAlive() {
    if (networkIsAlive) return *networkIsAlive;
    static const auto real = reinterpret_cast<bool (*)()>(dlsym(RTLD_NEXT, "IsNetworkAlive"));
    return real();
}
