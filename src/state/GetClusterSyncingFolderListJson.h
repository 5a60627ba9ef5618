#pragma once

#include "state/GetSyncingFolderListBaseJson.h"

/// The sync folders of a cluster, node by node and without sizes.
class TORVIAPI_EXPORT CGetClusterSyncingFolderListJson : public CGetSyncingFolderListBaseJson {
public:
    int Parser(char* text) override;
};
