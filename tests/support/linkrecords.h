#pragma once

#include <string>

#include "WebFileManShareAPI.h"
#include "support/staterecords.h"

/// The records of public links, each as one line of text; a zeroed one is empty.

/// Without the reserved text, which is the caller's.
inline std::string describe(const _WFM_SHARE_LINK_INFO& record) {
    return RecordWords()
        .text("ssid", record.szSsid)
        .text("file", record.szFileName)
        .text("link", record.szDownloadLink)
        .text("creator", record.szCreator)
        .text("name", record.szLinkName)
        .flag("folder", record.bIsFolder)
        .flag("multiple", record.bMultiple)
        .joined();
}

inline std::string describe(const _WFM_SHARE_LINK_ITEM_INFO& record) {
    return RecordWords().text("file", record.szFileName).flag("folder", record.bIsFolder).joined();
}

inline std::string describe(const _WFM_SHARE_LINK_RESULT& record) {
    return RecordWords()
        .number("result", record.nResult)
        .number("multiple", record.nMultiple)
        .text("link", record.szLinkURL)
        .text("name", record.szLinkName)
        .text("expires", record.szExpireTime)
        .text("ssid", record.szSsid)
        .text("slave", record.szSlaveID)
        .joined();
}
