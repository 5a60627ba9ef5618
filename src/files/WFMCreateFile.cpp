#include "core/GetResultJson.h"
#include "files/RouteTo.h"

using namespace Lattice;

uint32_t WFMCreateFile(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                       const wchar_t* slaveID, const wchar_t* path, bool* /*cancel*/, uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFM] WFMCreateFile");
    Call call(rules, context, server, port);
    if (!call.accepts(path, resultWord)) return call.refuse();
    call.begin(resultWord);

    // A file is made by uploading nothing, and one that is there is emptied.
    const RemotePath target = RouteTo(call, slaveID, path);
    call.post(L"func=upload&sid=%ls&dest_path=%ls&overwrite=%d", call.sid(), Encoded(target.parent), 1);
    call.field("Filename", target.name);
    // A team folder's root has no name; the transport leaves out a part without a variable.
    call.addFile(target.name.empty() ? "" : "Filedata", ToQString(target.name), target.name, 0);
    if (!call.judge(call.worker().upload(call.request(), "Upload", true, nullptr, nullptr)))
        return call.end();

    CWebFileManGetResultJson reply;
    const int parsed = call.parse(reply);
    if (parsed != 1 || !reply.GetResult())
        return call.fail(WFM_PARSE_XML_FAIL,
                         "[WFM] WFMCreateFile: WFM_PARSE_XML_FAIL nParseResult(%d) Result(%d)", parsed,
                         reply.GetResult());
    if (reply.GetStatus() == 0) return call.answer(0);
    call.line("[WFM] WFMCreateFile: get error status = %d, %ls", reply.GetStatus(),
              PlaceOf(target, path).c_str());
    switch (reply.GetStatus()) {
        case WFM_PERMISSION_DENY:
            return call.answer(ERROR_ACCESS_DENIED);
        case WFM_QUOTA_ERROR:
            return call.answer(ERROR_DISK_FULL);
        default:
            return call.end();
    }
}
