#include "session/logincall.h"

namespace Lattice {

uint32_t FinishLogin(Call& call, const std::wstring& sid, const Connection& connection,
                     const std::wstring& name, wchar_t* serverName, uint32_t serverNameCapacity,
                     _WFM_AUTH_CONTEXT** context) {
    AuthContextPtr session = sid.empty() ? nullptr : MakeAuthContext(sid.c_str());
    if (session != nullptr) {
        StoreConnection(*session, connection);
        if (!name.empty()) CopyText(serverName, serverNameCapacity, name);
        *context = session.release();
    } else if (call.status() == 0) {
        // Despite its words this is the normal end of every refused login.
        call.failAs(WFM_PARSE_XML_FAIL, "Failed to allocate memory pSid");
    }
    return call.end();
}

}  // namespace Lattice
