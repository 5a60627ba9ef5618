#include "core/GetResultJson.h"
#include "core/callframe.h"

using namespace Lattice;

uint32_t WFMTorviDeleteChunkFile(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                 const wchar_t* slaveID, const wchar_t* uploadID, const wchar_t* uploadRoot,
                                 void* /*reserved*/, uint32_t* resultWord) {
    static constexpr auto rules = CallRules("[WFM] WFMTorviDeleteChunkFile");
    Call call(rules, context, server, port);
    if (!call.accepts(uploadID, uploadRoot, resultWord)) return call.refuse();
    call.begin(resultWord);

    call.route(slaveID);
    call.get(L"func=delete_chunked_upload_file&sid=%ls&upload_id=%ls&upload_root_dir=%ls", call.sid(),
             Encoded(uploadID), Encoded(uploadRoot));
    CWebFileManGetResultJson reply;
    if (!call.ask(reply)) return call.end();

    if (reply.GetStatus() != 0)
        call.line("[WFM] WFMTorviDeleteChunkFile: get error status(%d)", reply.GetStatus());
    return call.answer(reply.GetStatus());
}
