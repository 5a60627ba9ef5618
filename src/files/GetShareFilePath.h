#pragma once

#include <string>
#include <vector>

#include "WebFileManAPI.h"

/// Maps a selection of items of the team area's root to their places on the server. The list comes back in
/// reverse order, mapped or not, and the share-link request goes out in that order.
extern "C" TORVIAPI_EXPORT void GetShareFilePath(_WFM_AUTH_CONTEXT* context, std::wstring path,
                                                 std::vector<std::wstring>& fileList, bool& mapped,
                                                 std::wstring& slaveId);
