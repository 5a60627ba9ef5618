#pragma once

#include <QString>
#include <string>
#include <vector>

#include "WebFileManAPI.h"

/// A record as one line of text: every field that differs from the starting state, in the order of the
/// record. The starting state (all zero, extended privilege -1) is the empty text.
inline std::string describe(const _WFM_PATH_INFORMATION& record) {
    QString text;
    const auto add = [&text](const QString& word) { text += (text.isEmpty() ? "" : " ") + word; };
    const auto addNumber = [&add](const char* key, qlonglong value, qlonglong start = 0) {
        if (value != start) add(QString("%1=%2").arg(key).arg(value));
    };
    if (record.szPathName[0] != L'\0') add("name=" + QString::fromWCharArray(record.szPathName));
    addNumber("access", record.dwAccess);
    addNumber("privilege", record.nPrivilegeEx, -1);
    if (record.bIsFolder) add("folder");
    if (record.bExists) add("exists");
    if (record.bHasChild) add("child");
    addNumber("size", record.llSize);
    addNumber("modified", record.llModifiedTime);
    addNumber("second", record.llSecondTime);
    addNumber("nubo", record.dwNuboType);
    if (record.szShareID[0] != L'\0') add("share=" + QString::fromWCharArray(record.szShareID));
    return text.toStdString();
}

inline std::vector<std::string> describe(const std::vector<_WFM_PATH_INFORMATION>& records) {
    std::vector<std::string> texts;
    for (const auto& record : records) texts.push_back(describe(record));
    return texts;
}
