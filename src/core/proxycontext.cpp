// The proxy of a session: every call hands its context's values to its own worker.

#include <algorithm>
#include <iterator>

#include "core/Utils.h"
#include "core/authcontext.h"

using namespace Lattice;

namespace {

constexpr uint32_t kProxyOfTheSystem = 1;

/// Replaces a field by as much of a text as fits; an empty one leaves what was there.
template <size_t N>
void Take(wchar_t (&field)[N], const wchar_t* text) {
    if (text != nullptr && *text != L'\0') CopyTextCut(field, text);
}

}  // namespace

uint32_t WFMSetProxyContext(_WFM_AUTH_CONTEXT* context, uint32_t mode, uint32_t flags, const wchar_t* host,
                            const wchar_t* bypass, const wchar_t* user, const wchar_t* password) {
    if (context == nullptr || context->pszSid == nullptr || *context->pszSid == L'\0') return 0;
    context->dwProxyMode = mode;
    context->dwProxyFlags = flags;
    const auto replace = [](auto& field, const wchar_t* text) {
        std::fill(std::begin(field), std::end(field), L'\0');
        Take(field, text);
    };
    replace(context->szProxyHost, host);
    replace(context->szProxyBypass, bypass);
    replace(context->szProxyUser, user);
    replace(context->szProxyPassword, password);
    return 0;
}

uint32_t WFMSetAutoProxyContext(_WFM_AUTH_CONTEXT* destination, const _WFM_AUTH_CONTEXT* source,
                                _WFM_AUTO_PROXY_INFORMATION* information) {
    if (destination == nullptr || source == nullptr) return 1;
    if (destination->dwProxyMode != kProxyOfTheSystem || source->dwProxyMode != kProxyOfTheSystem) return 0;
    Take(destination->szProxyHost, source->szProxyHost);
    Take(destination->szProxyBypass, source->szProxyBypass);
    if (information != nullptr) {
        information->dwProxyFlags = source->dwProxyFlags;
        CopyTextCut(information->szProxyHost, source->szProxyHost);
        CopyTextCut(information->szProxyBypass, source->szProxyBypass);
    }
    return 1;
}

uint32_t WFMAutoProxyContextUpdate(const _WFM_AUTH_CONTEXT* context) {
    return context != nullptr && context->bAutoProxyUpdated ? 1 : 0;
}
