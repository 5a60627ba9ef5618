#pragma once

#include <QString>
#include <string>
#include <vector>

#include "WebFileManAPI.h"

/// The words of a record's text: every field that differs from its starting state, in the order of the
/// record.
class RecordWords {
public:
    RecordWords& flag(const char* name, bool isSet) {
        if (isSet) add(name);
        return *this;
    }
    RecordWords& number(const char* name, qlonglong value, qlonglong start = 0) {
        if (value != start) add(QString("%1=%2").arg(name).arg(value));
        return *this;
    }
    RecordWords& text(const char* name, const wchar_t* value) {
        if (value[0] != L'\0') add(name + QString("=") + QString::fromWCharArray(value));
        return *this;
    }
    std::string joined() const { return m_words.toStdString(); }

private:
    void add(const QString& word) { m_words += (m_words.isEmpty() ? "" : " ") + word; }

    QString m_words;
};

/// The records of a server's state, each as one line of text; a zeroed one is empty.

inline std::string describe(const _NAS_USER_UID_INFORMATION& record) {
    return RecordWords()
        .flag("booting", record.bBooting)
        .flag("recovering", record.bRecovering)
        .flag("migrating", record.bMigrating)
        .flag("nubo", record.bNuboCGI)
        .flag("fcgi", record.bFcgi)
        .number("type", record.dwUserType)
        .text("uid", record.szUID)
        .text("suid", record.szSUID)
        .text("mac", record.szMAC)
        .text("torvi", record.szTorviVersion)
        .text("versioning", record.szVersioningVersion)
        .joined();
}

inline std::string describe(const _TORVI_INFORMATION& record) {
    return RecordWords()
        .flag("function", record.bFunctionEnable)
        .flag("user", record.bUserEnable)
        .flag("home", record.bHomeIsExist)
        .flag("team", record.bTeamFolderIsExist)
        .flag("cluster", record.bClusterSupport)
        .number("status", record.nClusterStatus)
        .text("slave", record.szSlaveID)
        .joined();
}

inline std::string describe(const _NAS_STATIC_INFORMATION& record) {
    return RecordWords()
        .text("model", record.szModel)
        .text("firmware", record.szFirmwareVersion)
        .number("queue", record.llQueueLimit)
        .number("messages", record.llMessageQueueLimit)
        .joined();
}

inline std::string describe(const _NAS_STATUS_INFORMATION& record) {
    return RecordWords()
        .flag("home", record.bHomeFolderEnable)
        .flag("recycle", record.bRecycleBinEnable)
        .flag("device", record.bDeviceDBExist)
        .flag("log", record.bLogDBExist)
        .flag("share", record.bShareDBExist)
        .flag("user", record.bUserEnable)
        .flag("versioning", record.bVersioningEnable)
        .flag("nubo", record.bNuboVersioningEnable)
        .flag("available", record.bHomeFolderAvailable)
        .flag("recovering", record.bRecovering)
        .text("version", record.szVersioningVersion)
        .joined();
}

inline std::string describe(const _DOMAIN_IP_LIST_INFORMATION& record) {
    return RecordWords()
        .text("peltnet", record.szPeltnetHostName)
        .text("ddns", record.szDdnsHostName)
        .text("external", record.szExternalIP)
        .text("local", record.szLocalIP)
        .text("host", record.szHostIP)
        .text("list", record.szLocalIPList)
        .number("port", record.nPort)
        .number("ssl", record.nSslPort)
        .number("ext", record.nExtPort)
        .number("extssl", record.nExtSslPort)
        .joined();
}

/// Its starting state, privilege and sizes -1, is the empty text.
inline std::string describe(const _NAS_SYNCING_FOLDER_INFORMATION& record) {
    return RecordWords()
        .text("slave", record.szSlaveID)
        .text("host", record.szHostName)
        .text("reserved", record.szReserved)
        .text("name", record.szName)
        .text("path", record.szPath)
        .number("privilege", record.nPrivilege, -1)
        .number("volume", record.nVolumeID)
        .number("used", record.llUsed, -1)
        .number("capacity", record.llCapacity, -1)
        .number("free", record.llFree, -1)
        .joined();
}

/// Its starting state, all numbers -1, is the empty text.
inline std::string describe(const _TORVI_MAX_LOG_NUMBERS& record) {
    return RecordWords()
        .number("max", record.llMaxLog, -1)
        .number("notify", record.llNotify, -1)
        .number("global", record.llGlobalNotify, -1)
        .number("signal", record.llSyncSignal, -1)
        .joined();
}

inline std::string describe(const _WFM_SYNC_LOG_INFORMATION& record) {
    return RecordWords()
        .text("path", record.szFilePath)
        .text("old", record.szOldFilePath)
        .text("device", record.szDevice)
        .number("id", record.llLogID)
        .number("folder", record.nIsFolder)
        .number("action", record.nAction)
        .joined();
}

/// Its starting state, volume 0 and sizes -1, is the empty text.
inline std::string describe(const USER_QUOTA_INFO& record) {
    return RecordWords()
        .number("volume", record.nVolumeID)
        .number("quota", record.llQuotaSize, -1)
        .number("available", record.llAvailableSize, -1)
        .number("used", record.llUsedSize, -1)
        .joined();
}

template <class Record>
std::vector<std::string> describeAll(const std::vector<Record>& records) {
    std::vector<std::string> texts;
    for (const Record& record : records) texts.push_back(describe(record));
    return texts;
}
