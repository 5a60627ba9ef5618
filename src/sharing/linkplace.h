#pragma once

#include "core/callrules.h"

namespace Lattice {

/// Public links are the web file manager's, also in a session of the sync service, whose front end routes by
/// the node in front.
inline constexpr Endpoint kLinkPlace{L"/%lscgi-bin/filemanager/utilRequest.cgi",
                                     L"/cgi-bin/filemanager/utilRequest.cgi"};

}  // namespace Lattice
