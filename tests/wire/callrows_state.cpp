#include <algorithm>

#include "WebFileManShareAPI.h"
#include "callrows.h"

namespace {

template <class Record>
void freeList(Record** list, uint32_t count) {
    std::for_each(list, list + count, [](Record* record) { delete record; });
    delete[] list;
}

uint32_t torviInformation(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    bool isTold = false;
    _TORVI_INFORMATION information;
    return withoutResultWord(
        WebFileManGetTorviInformation(context, server, port, nullptr, L"", &isTold, &information), result);
}

uint32_t staticInfo(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    _NAS_STATIC_INFORMATION information;
    return WFMTorviGetNASStaticInfo(context, server, port, L"", nullptr, &information, result);
}

uint32_t nasStatus(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    _NAS_STATUS_INFORMATION information;
    return WFMTorviGetNASStatus(context, server, port, L"", true, nullptr, result, &information);
}

uint32_t domainIPList(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    _DOMAIN_IP_LIST_INFORMATION information;
    return WFMGetDomainIPList(context, server, port, 7000, nullptr, nullptr, &information, result);
}

uint32_t queryUID(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    _NAS_USER_UID_INFORMATION information;
    return withoutResultWord(WebFileManQueryUID(context, server, port, nullptr, &information), result);
}

uint32_t userUID(Context, const wchar_t* server, uint32_t port, uint32_t* result) {
    _NAS_USER_UID_INFORMATION information;
    return withoutResultWord(WFMGetNASUserUID(server, port, 0, false, L"joe", L"", 0, L"", L"", L"", L"",
                                              nullptr, nullptr, &information),
                             result);
}

uint32_t syncFolders(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    uint32_t count = 0;
    _NAS_SYNCING_FOLDER_INFORMATION** list = nullptr;
    const uint32_t status =
        WFMTorviGetNASSyncinFolderList(context, server, port, true, false, nullptr, result, &count, &list);
    freeList(list, count);
    return status;
}

uint32_t syncStart(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return WFMGetTorviSyncStart(context, server, port, nullptr, 1, result);
}

uint32_t syncStop(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return WFMGetTorviSyncStop(context, server, port, 1, nullptr, result);
}

uint32_t lastModifiedTime(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    int64_t time = 0;
    return WFMGetTorviLastModifiedTime(context, server, port, nullptr, &time, result);
}

uint32_t vetoFiles(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    uint32_t length = 259;
    wchar_t buffer[260];
    return withoutResultWord(WFMTorviGetVetoFiles(context, server, port, L"", nullptr, &length, buffer),
                             result);
}

uint32_t maxLogOfFolders(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    _TORVI_MAX_LOG_FOLDER folder{L"/home", 0};
    _TORVI_MAX_LOG_FOLDER* folders[] = {&folder};
    _TORVI_MAX_LOG_INFORMATION record{1, 0, 0, 0, folders};
    return WFMTorviNuboGetMaxLog(context, server, port, L"", nullptr, &record, result);
}

uint32_t maxLog(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    _TORVI_MAX_LOG_NUMBERS record;
    return WFMTorviGetMaxLog(context, server, port, L"", L"", nullptr, &record, result);
}

uint32_t syncLog(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    _WFM_SYNC_LOG_INFORMATION record;
    _WFM_SYNC_LOG_INFORMATION* list[] = {&record};
    uint32_t count = 1;
    bool isEnd = false;
    return WFMTorviGetSyncLog(context, server, port, L"", 100, 0, L"", nullptr, &count, list, &isEnd, result);
}

uint32_t quotaInformation(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    bool isEnabled = false;
    int64_t volumeFree = 0;
    int64_t volumeTotal = 0;
    uint32_t count = 0;
    USER_QUOTA_INFO** list = nullptr;
    const uint32_t status =
        WebFileManGetQuotaInformation(context, server, port, L"", false, nullptr, &isEnabled, &volumeFree,
                                      &volumeTotal, &count, &list, result);
    freeList(list, count);
    return status;
}

uint32_t userHomePath(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    wchar_t buffer[260];
    return withoutResultWord(WFMGetUserHomePath(context, server, port, L"user", 260, L"", nullptr, buffer),
                             result);
}

}  // namespace

void addStateRows(std::vector<CallRow>& rows) {
    CallRow row =
        spelledRow("WebFileManGetTorviInformation", torviInformation, "[WFM] WebFileManGetTorviInformation");
    row.goodReply =
        R"({"nubo_function_enable":1,"nubo_user_enable":1,"home_is_exist":1,"team_folder_is_exist":1})";
    row.tooLarge = R"({"nubo_function_enable":99999999999})";
    rows.push_back(row);

    row = spelledRow("WFMTorviGetNASStaticInfo", staticInfo, "[WFM] WFMTorviGetNASStaticInfo");
    row.goodReply = R"({"status":1,"model":"M"})";
    rows.push_back(row);

    row = spelledRow("WFMTorviGetNASStatus", nasStatus, "[WFM] WFMTorviGetNASStatus");
    row.syncServiceOnly = "&check_detail=1";
    rows.push_back(row);

    row = spelledRow("WFMGetDomainIPList", domainIPList, "[WFM] WFMGetDomainIPList");
    row.timeoutMs = 7000;
    rows.push_back(row);

    row = spelledRow("WebFileManQueryUID", queryUID, "[WFM] WebFileManQueryUID");
    row.goodReply = R"({"UID":"u"})";
    row.tooLarge = R"({"user_type":99999999999})";
    rows.push_back(row);

    row = usual("WFMGetNASUserUID", userUID,
                {"[WFM] WFMGetNASUserUID: {word}",
                 "[WFM] PeltAPIGetVLinkInfo(127.0.0.1:{port}) failed dwStatus({status})"},
                "[WFM] WFMGetNASUserUID({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.needsSession = false;
    row.has404 = true;
    row.redirect = {6, "FAIL(httpStatusCode=302)"};
    row.notFound = "[WFM] WFMGetNASUserUID(127.0.0.1:{port}): WFM_PARSE_XML_CGI_NOT_FOUND";
    row.notUnderstood = "[WFM] WFMGetNASUserUID(127.0.0.1:{port}): WFM_PARSE_XML_FAIL";
    row.timeoutMs = 15000;
    row.goodReply = R"({"UID":"u"})";
    row.tooLarge = R"({"user_type":99999999999})";
    rows.push_back(row);

    row = spelledRow("WFMTorviGetNASSyncinFolderList", syncFolders, "[WFM] WFMTorviGetNASSyncingolderList");
    row.goodReply = R"({"total":1,"folder":[{"name":"a","privilege":2}]})";
    rows.push_back(row);

    row = spelledRow("WFMGetTorviSyncStart", syncStart, "[WFMShare] WFMGetTorviSyncStart");
    row.nonObjectIsUnderstood = true;
    rows.push_back(row);

    row = spelledRow("WFMGetTorviSyncStop", syncStop, "[WFMShare] WFMGetTorviSyncStop");
    row.nonObjectIsUnderstood = true;
    rows.push_back(row);

    row =
        spelledRow("WFMGetTorviLastModifiedTime", lastModifiedTime, "[WFMShare] WFMGetTorviLastModifiedTime");
    row.goodReply = R"({"epochmt":"5"})";
    rows.push_back(row);

    row = spelledRow("WFMTorviGetVetoFiles", vetoFiles, "[WFM] WFMTorviGetVetoFiles");
    row.goodReply = R"({"veto files":"/.x/"})";
    rows.push_back(row);

    row = spelledRow("WFMTorviNuboGetMaxLog", maxLogOfFolders, "[WFMShare] WFMTorviNuboGetMaxLog");
    row.ownCgi = "torvisrvPrepare.cgi";
    row.fileManagerPath = "/cgi-bin/torvi/torvisrvPrepare.cgi";
    rows.push_back(row);

    row = spelledRow("WFMTorviGetMaxLog", maxLog, "[WFMShare] WFMTorviGetMaxLog");
    row.ownCgi = "torvisrvPrepare.cgi";
    row.fileManagerPath = "/cgi-bin/filemanager/torviPrepare.cgi";
    rows.push_back(row);

    row = spelledRow("WFMTorviGetSyncLog", syncLog, "[WFMShare] WFMTorviGetSyncLog");
    row.goodReply = R"({"status":0,"end":1})";
    rows.push_back(row);

    row =
        spelledRow("WebFileManGetQuotaInformation", quotaInformation, "[WFM] WebFileManGetQuotaInformation");
    row.goodReply = R"({"quota_enable":true,"quota_size":"2 GB","used_quota_size":"1 GB"})";
    row.tooLarge = R"({"quota_enable":true,"vol_id":99999999999})";
    rows.push_back(row);

    row = spelledRow("WFMGetUserHomePath", userHomePath, "[WFM] WFMGetUserHomePath");
    row.needsSid = false;
    row.goodReply = R"({"status":1,"home":"/homes/u"})";
    rows.push_back(row);
}
