#include "WebFileManShareAPI.h"
#include "sharing/receivedfolder.h"
#include "sharing/sharejob.h"

using namespace Lattice;

namespace {

/// The server takes paths of the home without the slash in front, in whatever case "home" is written.
std::wstring FileOf(const wchar_t* path) {
    const QString text = ToQString(path);
    return FromQString(text.startsWith(QLatin1String("/home/"), Qt::CaseInsensitive) ? text.mid(1) : text);
}

}  // namespace

uint32_t WebFileManShareTo(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                           uint32_t targetCount, const wchar_t* const* targets, const wchar_t* path,
                           uint32_t capacity, void* /*reserved*/, wchar_t* pid, uint32_t* resultWord,
                           uint32_t* statusWord) {
    static constexpr auto rules = CallRules("[WFMShare] WebFileManShareTo");
    static constexpr ShareJobLines lines{"[WFMShare] WebFileManShareTo: Invalid ProcessID",
                                         "[WFMShare] WebFileManShareTo: ERROR_INSUFFICIENT_BUFFER"};
    static constexpr Endpoint kEndpoint{L"/cgi-bin/torvi/torvisrv.cgi?func=nubo_team_folder_share_to",
                                        L"/cgi-bin/filemanager/utilRequest.cgi?func=nubo_share_to"};
    Call call(rules, context, server, port);
    if (!call.accepts(targetCount, targets, path, capacity, Given{pid}, resultWord)) return call.refuse();
    call.begin(resultWord);
    if (statusWord != nullptr) *statusWord = static_cast<uint32_t>(-1);
    if (IsInReceivedFolder(*context, path)) {
        call.line("[WFMShare] WebFileManShareTo: Is recevier side team folder(%ls)", path);
        return call.leave(WFM_PARSE_XML_INVALID_PARAMETER);
    }

    // The session's id travels in the form.
    call.use(kEndpoint);
    call.post();
    call.field("sid", call.sid());
    call.field("target_number", targetCount);
    for (uint32_t i = 0; i < targetCount; ++i)
        call.field(("target_name" + std::to_string(i)).c_str(), TextOf(targets[i]));
    call.field("file", FileOf(path));
    CShareToJson reply;
    if (!call.ask(reply)) return call.end();

    if (statusWord != nullptr) *statusWord = static_cast<uint32_t>(reply.GetStatus());
    return AnswerJob(call, reply, lines, pid, capacity);
}
