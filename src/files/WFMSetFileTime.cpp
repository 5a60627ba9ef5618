#include "files/GetPathInfoJson.h"
#include "files/PathRecord.h"
#include "files/RouteTo.h"

using namespace Lattice;

uint32_t WFMSetFileTime(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                        const wchar_t* slaveID, const wchar_t* name, const wchar_t* parent, int64_t time,
                        bool* /*cancel*/, uint32_t* resultWord) {
    // The reason lines have no prefix, and that must stay.
    static constexpr auto rules =
        CallRules("[WFM] WFMSetFileTime").withReason("WFMSetFileTime: {word}").withTimeout(30000);
    Call call(rules, context, server, port);
    if (!call.accepts(name, parent, resultWord)) return call.refuse();
    call.begin(resultWord);

    const RemotePath path = RouteTo(call, slaveID, parent, name);
    call.get(L"func=stat&sid=%ls&settime=1&mtime=%ls&path=%ls&file_total=1&file_name=%ls", call.sid(),
             std::to_wstring(time), Encoded(path.parent), Encoded(path.name));
    if (!call.exchange()) return call.end();

    CGetPathInfoJson reply(path.name, kTypeFiles | kTypeFolders, kFieldSecondTime);
    const bool understood = call.parse(reply) == 1;
    const int status = reply.GetStatus();
    if (understood) call.setResult(status);
    // A denied permission counts as a reply that isn't understood, and that must stay.
    if (!understood || status == WFM_PERMISSION_DENY)
        return call.fail(WFM_PARSE_XML_FAIL, "[WFM] WFMSetFileTime: WFM_PARSE_XML_FAIL Status(%d)", status);
    if (reply.records.size() != 1)
        return call.answer(status, "[WFM] WFMSetFileTime: ERROR_UNKNOWN Status(%d)(%ls)(%ls)", status,
                           path.parent.c_str(), path.name.c_str());
    if (reply.records.front().llSecondTime != time)
        return call.answer(ERROR_INVALID_ACCESS, "[WFM] WFMSetFileTime: ERROR_INVALID_ACCESS(%ls)(%ls)",
                           path.parent.c_str(), path.name.c_str());
    return call.answer(0);
}
