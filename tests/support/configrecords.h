#pragma once

#include "WebFileManShareAPI.h"
#include "support/staterecords.h"

/// The records of device configuration, each as one line of text; a zeroed one is empty.

inline std::string describe(const _WFM_TORVI_DEVICE_INFORMATION& record) {
    return RecordWords()
        .text("name", record.szDeviceName)
        .text("uid", record.szDeviceUID)
        .text("ip", record.szIP)
        .number("time", record.llModifiedTime)
        .joined();
}

inline std::string describe(const WFM_TORVI_GET_DEVICE_CONFIG_ITEM_INFO& item) {
    return RecordWords()
        .number("flag", item.dwFlag)
        .text("value", item.pszValue != nullptr ? item.pszValue : L"(null)")
        .number("action", item.nAction)
        .joined();
}

inline std::string describe(const WFM_TORVI_CONFIG_NOTIFY_ITEM_INFO& item) {
    return RecordWords()
        .number("id", item.nEventID)
        .text("user", item.szUser)
        .text("uid", item.szDeviceUID)
        .text("action", item.szAction)
        .text("type", item.szType)
        .text("status", item.szStatus)
        .text("time", item.szTime)
        .text("modifier", item.szModifier)
        .text("value", item.szValue)
        .joined();
}

inline std::string describe(const WFM_TORVI_CONFIG_ACL_INFO& record) {
    return RecordWords()
        .number("manager", record.dwManagerMode)
        .number("password", record.dwUseManagerPassword)
        .number("client", record.dwClientSetConfig)
        .number("smart", record.dwSmartSync)
        .number("conflict", record.dwConflictPolicy)
        .number("filter", record.dwBlackFileFilter)
        .number("mails", record.dwMails)
        .joined();
}
