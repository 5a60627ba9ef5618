#pragma once

#include "WebFileManShareAPI.h"
#include "support/staterecords.h"

/// The records of users and their directories, each as one line of text; a zeroed one is empty.

inline std::string describe(const _WFM_USER_INFORMATION& record) {
    return RecordWords()
        .text("name", record.szName)
        .text("policy", record.szPolicy)
        .text("description", record.pszDescription != nullptr ? record.pszDescription : L"")
        .number("torvi", record.nTorviUser)
        .joined();
}

inline std::string describe(const _WFM_TORVI_AD_INFORMATION& record) {
    return RecordWords().text("domain", record.szDomain).text("netbios", record.szNetbios).joined();
}
