#pragma once

#include "state/GetSyncingFolderListBaseJson.h"

/// The sync folders of a single server, with their sizes.
class TORVIAPI_EXPORT CGetSyncingFolderListJson : public CGetSyncingFolderListBaseJson {
public:
    int Parser(char* text) override;
};
