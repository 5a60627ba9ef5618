#include "WebFileManShareAPI.h"
#include "callrows.h"

namespace {

uint32_t userList(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    _WFM_USER_INFORMATION record{};
    _WFM_USER_INFORMATION* list[] = {&record};
    uint32_t total = 0;
    uint32_t count = 1;
    return WebFileManGetUserList(context, server, port, 1, L"", L"", L"", 0, 50, false, false, nullptr,
                                 result, &total, &count, list);
}

uint32_t adInfo(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    _WFM_TORVI_AD_INFORMATION record;
    _WFM_TORVI_AD_INFORMATION* list[] = {&record};
    uint32_t count = 0;
    return WebFileManGetAdInfo(context, server, port, 1, nullptr, result, list, &count);
}

uint32_t sharePath(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    wchar_t path[260];
    return WebFileManGetSharePath(context, server, port, L"1", 260, nullptr, path, result);
}

uint32_t getRecycleBin(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    bool enabled = false;
    return withoutResultWord(WebFileManGetRecycleBin(context, server, port, nullptr, &enabled), result);
}

uint32_t setRecycleBin(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return WebFileManSetRecycleBin(context, server, port, 1, nullptr, result);
}

uint32_t getPolicy(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    uint32_t policy = 0;
    return withoutResultWord(WebFileManGetPolicy(context, server, port, nullptr, &policy), result);
}

uint32_t setPolicy(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return WebFileManSetPolicy(context, server, port, 1, nullptr, result);
}

uint32_t renameShareFolder(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return WebFileManRenameShareFolder(context, server, port, L"/home/a", L"/home/b", 0, nullptr, result);
}

uint32_t moveShareFolder(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return WebFileManMoveShareFolder(context, server, port, L"/home/a", L"/home/b/a", 0, nullptr, result);
}

uint32_t updateLink(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return WebFileManUpdateLink(context, server, port, L"", L"/home/a", L"/home/b/a", 0, nullptr, result);
}

uint32_t fixTeamFolderLink(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    bool usesSyncService = true;
    if (context != nullptr) WFMGetUseNuboCGI(context, &usesSyncService);
    uint32_t fixed = 0;
    return withoutResultWord(
        WFMFixTeamFolderLink(context, server, port, nullptr, usesSyncService ? 4 : 8, L"/home/a", &fixed),
        result);
}

/// A row of the family's usual wording.
CallRow shareRow(const std::string& name, decltype(CallRow::run) run) {
    return spelledRow(name, std::move(run), "[WFMShare] " + name);
}

/// The same of a call that gets the small reply of the family's actions.
CallRow actionRow(const std::string& name, decltype(CallRow::run) run) {
    CallRow row = shareRow(name, std::move(run));
    row.nonObjectIsUnderstood = true;
    return row;
}

void addUsers(std::vector<CallRow>& rows) {
    CallRow row = shareRow("WebFileManGetUserList", userList);
    row.goodReply = R"({"status":1,"total":1,"user":[{"name":"joe"}]})";
    rows.push_back(row);

    row = shareRow("WebFileManGetAdInfo", adInfo);
    row.goodReply = R"({"status":1,"count":1,"datas":[{"domain":"corp.example","netbios":"CORP"}]})";
    rows.push_back(row);

    row = shareRow("WebFileManGetSharePath", sharePath);
    row.goodReply = R"({"status":1,"share_path":"/home/a"})";
    rows.push_back(row);
}

void addSettings(std::vector<CallRow>& rows) {
    CallRow row = shareRow("WebFileManGetRecycleBin", getRecycleBin);
    row.goodReply = R"({"recycle_bin_enable":1})";
    row.tooLarge = R"({"recycle_bin_enable":99999999999})";
    rows.push_back(row);

    row = shareRow("WebFileManGetPolicy", getPolicy);
    row.goodReply = R"({"share_policy":1})";
    row.tooLarge = R"({"share_policy":99999999999})";
    rows.push_back(row);

    rows.push_back(actionRow("WebFileManSetRecycleBin", setRecycleBin));
    rows.push_back(actionRow("WebFileManSetPolicy", setPolicy));
}

void addFolders(std::vector<CallRow>& rows) {
    rows.push_back(actionRow("WebFileManRenameShareFolder", renameShareFolder));

    CallRow row = actionRow("WebFileManMoveShareFolder", moveShareFolder);
    row.goodReply = R"({"status":0,"success":"true"})";
    rows.push_back(row);

    row = actionRow("WebFileManUpdateLink", updateLink);
    row.oneService = true;
    row.goodReply = R"({"status":0,"success":"true"})";
    rows.push_back(row);

    row = actionRow("WFMFixTeamFolderLink", fixTeamFolderLink);
    row.syncServiceOnly = "&type=4";
    row.proxyWord = "HTTP_STATUS_PROXY_AUTH_REQ";
    rows.push_back(row);
}

}  // namespace

void addShareSettingRows(std::vector<CallRow>& rows) {
    addUsers(rows);
    addSettings(rows);
    addFolders(rows);
}
