#pragma once

#include <optional>
#include <string>

#include "linkend.h"
#include "linkhost.h"

namespace CLI {
class App;
}

namespace torvi {

/// What the commands that make or change links are told of them.
struct LinkTermOptions {
    std::string code;
    std::string expires;
    std::string host;
    std::optional<bool> https;
    bool local = false;

    void addTo(CLI::App& command);
};

/// The same as the calls take it.
struct LinkTerms {
    LinkTerms(const Session& session, const LinkTermOptions& options, const LinkEnd& end,
              const std::wstring& node);

    std::wstring code;
    LinkEnd end;
    bool secure;
    LinkHost host;
    uint32_t networkType;  ///< of gNetworkTypes
};

/// What a link that is made is for, of gDownloadLinkTypes.
enum LinkPurpose : uint32_t { kToMail = 1, kToOpen = 2 };

}  // namespace torvi
