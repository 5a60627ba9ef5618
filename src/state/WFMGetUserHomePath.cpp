#include "core/callframe.h"
#include "state/GetUserHomePathJson.h"

using namespace Lattice;

uint32_t WFMGetUserHomePath(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                            const wchar_t* user, uint32_t capacity, const wchar_t* slaveID,
                            void* /*reserved*/, wchar_t* buffer) {
    static constexpr auto rules = CallRules("[WFM] WFMGetUserHomePath").withoutSidCheck();
    Call call(rules, context, server, port);
    if (!call.accepts(user, capacity, Given{buffer})) return call.refuse();

    call.route(slaveID);
    call.get(L"func=nubo_get_user_home&sid=%ls&user=%ls", call.sid(), Encoded(user));
    CGetUserHomePathJson reply;
    if (!call.ask(reply)) return call.end();

    // The status isn't looked at, and a home that doesn't fit is dropped without a word.
    if (!reply.GetHomePath().empty()) CopyText(buffer, capacity, reply.GetHomePath());
    return call.end();
}
