#include "linkupdate.h"

#include <WebFileManShareAPI.h>

#include <iterator>

#include "linkfailure.h"
#include "output.h"

namespace torvi {
namespace {

// The call wants it, and sends nothing of it.
constexpr const wchar_t* kFurther = L"-";

}  // namespace

void updateLinks(const Session& session, const QString& what, const std::wstring& node, const QString& ids,
                 const LinkTerms& terms) {
    wchar_t url[260] = {};
    uint32_t capacity = static_cast<uint32_t>(std::size(url));
    uint32_t word = 0;
    const LinkHost& host = terms.host;
    // With a node the call names a port in any case.
    const uint32_t port = host.onOtherNode() && host.port() == 0 ? session.port() : host.port();
    const uint32_t dwStatus = WFMUpdateShareLink(
        session.context(), session.server(), session.port(), node.c_str(), kToOpen, terms.end.durationType,
        terms.networkType, port, wide(host.name()).c_str(), terms.code.c_str(), terms.end.date.c_str(),
        terms.secure, false, true, terms.end.hours.c_str(), wide(ids).c_str(), nullptr, kFurther, false,
        nullptr, &capacity, url, &word);
    // The list tells the address. That it doesn't fit here is no failure of the change.
    constexpr uint32_t kDoesNotFit = 7;
    if (dwStatus != kDoesNotFit) checkLink(what, dwStatus, word);
}

void nameLink(const Session& session, const QString& what, const std::wstring& node, const QString& id,
              const QString& name) {
    uint32_t word = 0;
    const uint32_t dwStatus =
        WFMUpdateShareLink(session.context(), session.server(), session.port(), node.c_str(), 0, 0, 0, 0,
                           nullptr, nullptr, nullptr, false, false, false, nullptr, wide(id).c_str(),
                           wide(name).c_str(), nullptr, true, nullptr, nullptr, nullptr, &word);
    checkLink(what, dwStatus, word);
}

}  // namespace torvi
