#include "session/logincall.h"

namespace Lattice {

uint32_t FinishLogin(Call& call, const LoggedIn& login, const Connection& connection,
                     const LoginTarget& target) {
    AuthContextPtr session = login.sid.empty() ? nullptr : MakeAuthContext(login.sid.c_str());
    if (session != nullptr) {
        StoreConnection(*session, connection);
        if (!login.serverName.empty())
            CopyText(target.serverName, target.serverNameCapacity, login.serverName);
        *target.isAdmin = login.isAdmin;
        *target.context = session.release();
    } else if (call.status() == 0) {
        // Despite its words this is the normal end of every refused login.
        call.failAs(WFM_PARSE_XML_FAIL, "Failed to allocate memory pSid");
    }
    return call.end();
}

}  // namespace Lattice
