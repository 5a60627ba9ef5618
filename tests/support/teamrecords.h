#pragma once

#include <algorithm>
#include <string>

#include "WebFileManShareAPI.h"
#include "support/staterecords.h"

/// The records of team folders and what belongs to them, each as one line of text; a zeroed one is empty.

/// A text of a field that may have no terminator.
template <size_t N>
std::wstring widthOf(const wchar_t (&field)[N]) {
    return std::wstring(field, std::find(field, field + N, L'\0'));
}

inline std::string describe(const _WFM_TORVI_TEAM_FOLDER_RECEIVER_INFO& record) {
    return RecordWords()
        .text("name", record.szName)
        .text("display", record.szDisplayName)
        .number("permission", record.nPermission)
        .number("status", record.nStatus)
        .joined();
}

/// Without the reserved word, with its receivers in braces.
inline std::string describe(const _WFM_TORVI_TEAM_FOLDER_INFORMATION& record) {
    std::string text = RecordWords()
                           .number("type", record.nType)
                           .number("status", record.nStatus)
                           .text("owner", widthOf(record.szOwner).c_str())
                           .text("share", widthOf(record.szShareID).c_str())
                           .text("nas", widthOf(record.szNasID).c_str())
                           .text("parent", widthOf(record.szParentID).c_str())
                           .text("name", widthOf(record.szName).c_str())
                           .text("path", widthOf(record.szPath).c_str())
                           .text("original", widthOf(record.szOriginalPath).c_str())
                           .joined();
    for (uint32_t i = 0; i < record.dwReceiverCount; ++i)
        text += " {" + describe(*record.lppReceivers[i]) + "}";
    return text;
}

inline std::string describe(const _WFM_TORVI_EVENT_INFORMATION& record) {
    return RecordWords()
        .number("id", record.nEventID)
        .text("target", record.szTargetName)
        .number("type", record.nEventType)
        .number("status", record.nEventStatus)
        .text("share", record.szShareID)
        .text("file", record.szFile)
        .text("reserved", record.szReserved)
        .text("date", record.szDate)
        .text("time", record.szTime)
        .joined();
}

inline std::string describe(const _WFM_TORVI_SHARE_INFORMATION& record) {
    return RecordWords()
        .number("type", record.nEventType)
        .number("status", record.nEventStatus)
        .text("file", record.szFile)
        .text("share", record.szShareID)
        .text("reserved", record.szReserved)
        .joined();
}

inline std::string describe(const _WFM_TORVI_SHARE_FOLDER_INFORMATION& record) {
    return RecordWords()
        .number("id", record.nEventID)
        .flag("exists", record.bFileExists)
        .number("share-status", record.nShareIDStatus)
        .number("status", record.nEventStatus)
        .number("nubo", record.nNuboType)
        .text("share", record.szShareID)
        .text("nas", record.szNasID)
        .joined();
}

inline std::string describe(const _WFM_SHARE_MEMBER_INFORMATION& record) {
    return RecordWords()
        .text("name", record.szName)
        .number("member", record.nShareMember)
        .number("status", record.nEventStatus)
        .number("id", record.nEventID)
        .text("description", record.pszDescription != nullptr ? record.pszDescription : L"(null)")
        .number("torvi", record.nTorviUser)
        .joined();
}
