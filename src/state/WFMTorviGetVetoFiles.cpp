#include <algorithm>

#include "core/callframe.h"
#include "state/GetVetoFilesJson.h"

using namespace Lattice;

uint32_t WFMTorviGetVetoFiles(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                              const wchar_t* slaveID, void* /*reserved*/, uint32_t* length, wchar_t* buffer) {
    static constexpr auto rules = CallRules("[WFM] WFMTorviGetVetoFiles");
    Call call(rules, context, server, port);
    if (!call.accepts(length, Given{buffer})) return call.refuse();

    call.route(slaveID);
    call.get(L"func=nubo_get_veto_files&sid=%ls", call.sid());
    CGetVetoFilesJson reply;
    if (!call.ask(reply)) return call.end();

    const std::wstring& text = reply.GetVetoFiles();
    if (text.empty()) return call.end();
    // A list as long as the buffer has its terminator behind it, and that must stay.
    if (*length < text.size())
        *length = static_cast<uint32_t>(text.size() + 1);
    else
        std::copy_n(text.c_str(), text.size() + 1, buffer);
    return call.end();
}
