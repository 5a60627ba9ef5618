#include "context.h"

#include <iterator>

#include "output.h"

namespace torvi {
namespace {

std::wstring textOf(const Entrance& entrance,
                    uint32_t (*get)(const _WFM_AUTH_CONTEXT*, uint32_t*, wchar_t*)) {
    wchar_t text[260] = {};
    uint32_t capacity = static_cast<uint32_t>(std::size(text));
    return get(entrance.context.get(), &capacity, text) == 0 ? text : L"";
}

}  // namespace

std::wstring sidOf(const Entrance& entrance) {
    return textOf(entrance, WFMGetSid);
}

std::wstring slaveIdOf(const Entrance& entrance) {
    return textOf(entrance, WFMGetSlaveID);
}

bool logOut(const Connection& connection, const Entrance& entrance, bool force) {
    const auto end = entrance.service == Service::Sync ? TorviLogout : WFMLogout;
    return end(wide(connection.server).c_str(), static_cast<uint32_t>(connection.port), force,
               entrance.context.get()) == 0;
}

}  // namespace torvi
