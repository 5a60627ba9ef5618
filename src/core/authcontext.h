#pragma once

#include <memory>

#include "WebFileManAPI.h"

/// The session record. Passed by pointer only; every byte is zero when it is made.
struct _WFM_AUTH_CONTEXT {
    bool bSecure;
    bool bUseNuboCGI;  // true: sync service, false: web file manager
    bool bUseFcgi;
    wchar_t* pszSid;  // never empty in a context that exists
    wchar_t szSlaveID[260];
    wchar_t szAgentName[260];
    bool bAutoProxyUpdated;
    uint32_t dwProxyMode;
    uint32_t dwProxyFlags;
    wchar_t szProxyHost[260];
    wchar_t szProxyBypass[260];
    wchar_t szProxyUser[260];
    wchar_t szProxyPassword[260];
    wchar_t szForwardedFor[260];
    int32_t nTeamFolderCount;
    wchar_t** lppOriPathList;            // client-side paths, each ends in "/"
    wchar_t** lppTeamFolderPathList;     // server-side paths, each ends in "/"
    wchar_t** lppTeamFolderSlaveIDList;  // null outside a cluster
};

namespace Lattice {

struct AuthContextDeleter {
    void operator()(_WFM_AUTH_CONTEXT* context) const { WFMFreeAuthContext(context); }
};
using AuthContextPtr = std::unique_ptr<_WFM_AUTH_CONTEXT, AuthContextDeleter>;

/// A zeroed record that holds a copy of `sid`, or null when memory is short.
AuthContextPtr MakeAuthContext(const wchar_t* sid);

/// The entry of a team list, never null: slots of a broken list read as empty.
inline const wchar_t* TeamListEntry(wchar_t* const* list, int32_t index) {
    return list != nullptr && list[index] != nullptr ? list[index] : L"";
}

}  // namespace Lattice
