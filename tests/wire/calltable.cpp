#include "calltable.h"

#include <QFile>
#include <QTemporaryFile>

#include "WebFileManShareAPI.h"
#include "callrows.h"

namespace {

struct UploadFile {
    UploadFile() {
        file.open();
        file.write("0123456789");
        file.flush();
        file.fileName();  // gives the file a name, which it has none of until asked
    }
    QTemporaryFile file;
};

uint32_t goOn(int64_t, int64_t, int64_t, int64_t, uint32_t, uint32_t, void*, void*, void*) {
    return 0;
}

uint32_t getVersion(Context, const wchar_t* server, uint32_t port, uint32_t* result) {
    _WFM_VERSION_INFORMATION version;
    return WFMGetVersion(server, port, L"", false, 0, L"", L"", L"", L"", 0, result, &version);
}

uint32_t login(Context, const wchar_t* server, uint32_t port, uint32_t* result) {
    wchar_t name[260];
    bool isAdmin = false;
    bool isSlave = false;
    _WFM_AUTH_CONTEXT* context = nullptr;
    const uint32_t status = TorviLogin(server, static_cast<int32_t>(port), L"user", L"pw", false, L"pc",
                                       L"uid", L"", 1, 260, 0, L"", L"", L"", L"", L"1.0", 0, nullptr, false,
                                       name, &isAdmin, &isSlave, result, &context, 0, nullptr);
    WFMFreeAuthContext(context);
    return status;
}

uint32_t logout(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return withoutResultWord(TorviLogout(server, port, false, context), result);
}

uint32_t nodeList(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    uint32_t start = 0;
    uint32_t count = 0;
    uint32_t teamIndex = 0;
    uint32_t teamCount = 0;
    _WFM_PATH_INFORMATION** list = nullptr;
    const uint32_t status =
        WFMGetNodeList(context, server, port, L"", L"*", L"/home", 3, 0x20, nullptr, 10, true, result,
                       nullptr, &start, &count, &teamIndex, &teamCount, &list);
    for (uint32_t i = 0; i < count; ++i) delete list[i];
    delete[] list;
    return status;
}

uint32_t folderList(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    uint32_t count = 0;
    _WFM_PATH_INFORMATION** list = nullptr;
    const uint32_t status =
        WFMGetFolderList(context, server, port, L"", 0x20, L"/home", nullptr, result, &count, &list);
    for (uint32_t i = 0; i < count; ++i) delete list[i];
    delete[] list;
    return status;
}

uint32_t folderInformation(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return WFMGetFolderInformation(context, server, port, L"", L"/home", L"a", 0x20, false, nullptr, result,
                                   nullptr);
}

uint32_t pathInformation(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    _WFM_PATH_INFORMATION information;
    return WFMGetPathInformation(context, server, port, L"", L"a", L"/home", 0x20, 0, false, nullptr, result,
                                 &information);
}

uint32_t isDirectory(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    bool out = false;
    return WFMIsPathDirectory(context, server, port, L"", L"/home/a", nullptr, result, &out);
}

uint32_t isPresent(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    bool out = false;
    return WFMIsPathPresent(context, server, port, L"", L"/home/a", false, false, nullptr, result, &out);
}

uint32_t folderSize(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    int64_t size = 0;
    return WFMGetFolderSize(context, server, port, L"", L"a", L"/home", nullptr, result, &size);
}

uint32_t createFile(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return WFMCreateFile(context, server, port, L"", L"/home/a", nullptr, result);
}

uint32_t createFolder(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return WFMCreateFolder(context, server, port, L"", L"/home", L"a", nullptr, result);
}

uint32_t deletePath(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return WFMDeletePath(context, server, port, L"", L"/home/a", nullptr, result);
}

uint32_t deletePathChecked(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return WFMDeletePathwithCheckProfile(context, server, port, L"", L"/home/a", 5, 10, false, false, nullptr,
                                         result);
}

uint32_t setFileTime(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return WFMSetFileTime(context, server, port, L"", L"a", L"/home", 5, nullptr, result);
}

uint32_t renamePath(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return WFMRenamePath(context, server, port, L"", L"/home/a", L"/home/b", nullptr, result);
}

uint32_t renamePathChecked(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return WFMRenamePathwithCheckProfile(context, server, port, L"", L"/home/a", L"/home/b", 5, 10, false,
                                         nullptr, result);
}

uint32_t movePath(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return WFMMovePath(context, server, port, L"", L"/home/a", L"/home/b/a", nullptr, result);
}

uint32_t movePathChecked(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return WFMMovePathwithCheckProfile(context, server, port, L"", L"/home/a", L"/home/b/a", 5, 10, false,
                                       nullptr, result);
}

uint32_t getProgress(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return WFMGetProgress(context, server, port, L"", L"a", 7, nullptr, result);
}

uint32_t deleteProgress(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return withoutResultWord(WFMDeleteProgress(context, server, port, L"", 7, nullptr), result);
}

uint32_t queryProgress(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    uint32_t percent = 0;
    uint32_t errorCode = 0;
    return WebFileManQueryProgress(context, server, port, L"", L"7", nullptr, &percent, &errorCode, result);
}

uint32_t trashRecovery(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    wchar_t pid[260];
    return WFMTrashRecovery(context, server, port, L"", 1, L"/home/@Recycle", L"a", nullptr, pid, 260,
                            result);
}

uint32_t upload(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    UploadFile local;
    return WFMUploadFilewithHandle(context, server, port, L"", &local.file, L"/home/a", nullptr, goOn, 1,
                                   nullptr, result);
}

uint32_t uploadAndMove(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    UploadFile local;
    return WFMTorviUploadandMovewithHandle(context, server, port, L"", &local.file, L"/home/a", L"/home/.up",
                                           nullptr, 10, 1, nullptr, goOn, 1, nullptr, result);
}

uint32_t checkPermission(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return WFMTorviCheckPermission(context, server, port, L"", L"/home", L"a", nullptr, result);
}

uint32_t uploadID(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    uint32_t capacity = 260;
    wchar_t id[261];
    uint32_t detail = 0;
    return WFMGetUploadID(context, server, port, L"", &capacity, id, L"/home/.up", L"/home", nullptr, result,
                          &detail);
}

uint32_t chunkFileSize(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    int64_t size = 0;
    return WFMTorvGetChunkFileSize(context, server, port, L"", L"id", L"/home/.up", nullptr, &size, result);
}

uint32_t deleteChunkFile(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return WFMTorviDeleteChunkFile(context, server, port, L"", L"id", L"/home/.up", nullptr, result);
}

uint32_t chunkUpload(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    UploadFile local;
    bool resume = false;
    bool deleteID = false;
    return WFMTorviChunckUploadwithHandle(context, server, port, L"", &local.file, L"id", L"/home/.up",
                                          L"/home/a", nullptr, 0, 10, 1, nullptr, goOn, 1, nullptr, &resume,
                                          &deleteID, result);
}

uint32_t uploadBatch(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    UploadFile local;
    _WFM_MULTI_PART_FILE_INFO file{};
    file.pFile = &local.file;
    file.szName[0] = L'a';
    file.llSize = 10;
    _WFM_MULTI_PART_FILE_INFO* files[] = {&file};
    return WFMTorviUploadandMoveMultiPartwithHandle(context, server, port, L"", files, 1, L"/home", nullptr,
                                                    nullptr, nullptr, nullptr, result);
}

uint32_t versioningProbe(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    wchar_t version[260];
    return WFMTorviGetVersioningProbe(context, server, port, L"", nullptr, result, version);
}

uint32_t versioningLock(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    WFM_VERSIONING_LOCK lock{};
    return WFMTorviVersioningLock(context, server, port, L"", L"/home/a", nullptr, result, &lock);
}

uint32_t versioningUnlock(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return WFMTorviVersioningUnLock(context, server, port, L"", L"/home/a", L"lock", nullptr, result);
}

uint32_t versioningClean(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    return WFMTorviVersioningCleanVersion(context, server, port, L"", L"/home/a", L"lock", L"version",
                                          nullptr, result);
}

uint32_t versioningSig(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    wchar_t pid[260];
    return WFMTorviGenVersioningSig(context, server, port, L"", L"/home/a", L"lock", L"version", nullptr,
                                    result, pid);
}

uint32_t versioningDelta(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    wchar_t pid[260];
    return WFMTorviGenVersioningDelta(context, server, port, L"", L"/home/a", L"lock", L"version", nullptr,
                                      result, pid);
}

uint32_t versioningStatDelta(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    WFM_VERSIONING_DELTA_STAT stat;
    return withoutResultWord(
        WFMTorviVersioningStatDelta(context, server, port, L"", L"/home/a", L"version", nullptr, &stat),
        result);
}

uint32_t versioningCommit(Context context, const wchar_t* server, uint32_t port, uint32_t* result) {
    wchar_t pid[260];
    return WFMTorviVersioningCommitUpload(context, server, port, L"", L"/home/a", L"lock", L"version", 1,
                                          nullptr, result, pid);
}

std::vector<CallRow> makeTable() {
    std::vector<CallRow> rows;

    CallRow row = usual(
        "WFMGetVersion", getVersion,
        {"[WFM] WFMGetVersion: {word}", "[WFM] WFMGetVersion(127.0.0.1:{port}) failed dwStatus({status})"},
        "[WFM] WFMGetVersion({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.needsSession = false;
    row.has404 = true;
    row.goodReply = R"({"version":"4.1.0","build":"20260101"})";
    row.tooLarge = R"({"version":[],"build":"1"})";
    rows.push_back(row);

    row =
        usual("TorviLogin", login, {"[WFM] TorviLogin: {word}", "[WFM] TorviLogin failed dwStatus({status})"},
              "[WFM] TorviLogin: WFM_PARSE_XML_INVALID_PARAMETER");
    row.needsSession = false;
    row.has404 = true;
    row.badReply = row.strangePage = {6, "FAIL(httpStatusCode=200)"};
    row.redirect = wantsTls();
    row.timeoutMs = 15000;
    row.goodReply = R"({"status":1,"sid":"abc"})";
    rows.push_back(row);

    row = usual("TorviLogout", logout,
                {"[WFM] TorviLogout {word}", "[WFM] TorviLogout failed dwStatus({status})"},
                "[WFM] TorviLogout failed dwStatus(8)");
    row.needsSid = false;
    row.oneService = true;
    row.timeoutMs = 30000;
    row.notUnderstood = "[WFM] TorviLogout WFM_PARSE_XML_FAIL Status(-1), Result(0)";
    rows.push_back(row);

    row = usual("WFMGetNodeList", nodeList,
                {"[WFM] GetPath: {word}", "[WFM] GetPath(127.0.0.1:{port}) failed dwStatus({status})",
                 "[WFM] WFMGetNodeList(127.0.0.1:{port}) failed dwStatus({status})"},
                "[WFM] WFMGetNodeList({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.isListing = true;
    row.nonObjectIsUnderstood = true;
    row.goodReply = R"({"status":1,"total":1,"datas":[{"filename":"a","epochmt":"5"}]})";
    rows.push_back(row);

    row = usual("WFMGetFolderList", folderList,
                {"[WFM] WFMGetFolderList: {word}",
                 "[WFM] WFMGetFolderList(127.0.0.1:{port}) failed dwStatus({status})"},
                "[WFM] WFMGetFolderList({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.arrayIsReply = true;
    row.goodReply = R"([{"text":"a","iconCls":"folder"}])";
    rows.push_back(row);

    row = usual("WFMGetFolderInformation", folderInformation,
                {"[WFM] WFMGetFolderInformation: {word}",
                 "[WFM] WFMGetFolderInformation(127.0.0.1:{port}) failed dwStatus({status})"},
                "[WFM] WFMGetFolderInformation({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.arrayIsReply = true;
    row.goodReply = R"([{"text":"a","iconCls":"folder"}])";
    rows.push_back(row);

    const char* const stat = R"({"status":1,"total":1,"datas":[{"filename":"a","epochmt":"5"}]})";
    row = usual("WFMGetPathInformation", pathInformation,
                {"[WFM] WFMGetPathInformation: {word}",
                 "[WFM] WFMGetPathInformation(127.0.0.1:{port}) failed dwStatus({status})"},
                "[WFM] WFMGetPathInformation({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.goodReply = stat;
    rows.push_back(row);

    row = usual(
        "WFMIsPathDirectory", isDirectory,
        {"[WFM] WFMGetPathInformation: {word}",
         "[WFM] WFMGetPathInformation(127.0.0.1:{port}) failed dwStatus({status})",
         "[WFM] WFMIsPathDirectory: WFMGetPathInformation failed(dwParseStatus={status})(dwStatus={result})"},
        "[WFM] WFMIsPathDirectory({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.isWrapper = true;
    row.goodReply = stat;
    rows.push_back(row);

    row = usual("WFMIsPathPresent", isPresent,
                {"[WFM] WFMGetPathInformation: {word}",
                 "[WFM] WFMGetPathInformation(127.0.0.1:{port}) failed dwStatus({status})",
                 "[WFM] WFMGetFolderInformation: WFMGetFolderInformation "
                 "failed(dwParseStatus={status})(dwResult={result})"},
                "[WFM] WFMIsPathPresent({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.isWrapper = true;
    row.goodReply = stat;
    rows.push_back(row);

    row = usual("WFMGetFolderSize", folderSize,
                {"[WFM] WWFMGetFolderSize: {word}",
                 "[WFM] WWFMGetFolderSize(127.0.0.1:{port}) failed dwStatus({status})"},
                "[WFM] WWFMGetFolderSize({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.goodReply = R"({"status":1,"size":"10"})";
    rows.push_back(row);

    row = usual(
        "WFMCreateFile", createFile,
        {"[WFM] WFMCreateFile: {word}", "[WFM] WFMCreateFile(127.0.0.1:{port}) failed dwStatus({status})"},
        "[WFM] WFMCreateFile({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.notUnderstood = "[WFM] WFMCreateFile: WFM_PARSE_XML_FAIL nParseResult(-1) Result(0)";
    rows.push_back(row);

    row = usual("WFMCreateFolder", createFolder,
                {"[WFM] WFMCreateFolder: {word}",
                 "[WFM] WFMCreateFolder(127.0.0.1:{port}) failed dwStatus({status})"},
                "[WFM] WFMCreateFolder({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.notUnderstood = "[WFM] WFMCreateFolder: WFM_PARSE_XML_FAIL(nParseResult=-1)(Result=0)";
    rows.push_back(row);

    row = usual(
        "WFMDeletePath", deletePath,
        {"[WFM] WFMDeletePath: {word}", "[WFM] WFMDeletePath(127.0.0.1:{port}) failed dwStatus({status})"},
        "[WFM] WFMDeletePath({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.notUnderstood = "[WFM] WFMGetSid: WFM_PARSE_XML_FAIL nParseResult(-1) Result(0)";
    rows.push_back(row);

    row = usual("WFMDeletePathwithCheckProfile", deletePathChecked,
                {"[WFM] WFMDeletePathwithCheckProfile: {word}",
                 "[WFM] WFMDeletePathwithCheckProfile(127.0.0.1:{port}) failed dwStatus({status})"},
                "[WFM] WFMDeletePathwithCheckProfile({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.notUnderstood = "[WFM] WFMDeletePathwithCheckProfile: WFM_PARSE_XML_FAIL nParseResult(-1) Result(0)";
    rows.push_back(row);

    row =
        usual("WFMSetFileTime", setFileTime,
              {"WFMSetFileTime: {word}", "[WFM] WFMSetFileTime(127.0.0.1:{port}) failed dwStatus({status})"},
              "[WFM] WFMSetFileTime({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.timeoutMs = 30000;
    row.goodReply = stat;
    row.notUnderstood = "[WFM] WFMSetFileTime: WFM_PARSE_XML_FAIL Status(-1)";
    rows.push_back(row);

    row = usual(
        "WFMRenamePath", renamePath,
        {"[WFM] WFMRenamePath: {word}", "[WFM] WFMRenamePath(127.0.0.1:{port}) failed dwStatus({status})"},
        "[WFM] WFMRenamePath({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.notUnderstood = "[WFM] WFMRenamePath: WFM_PARSE_XML_FAIL(/home/a)(/home/b) nParseResult(-1)Result(0)";
    rows.push_back(row);

    row = usual("WFMRenamePathwithCheckProfile", renamePathChecked,
                {"[WFM] WFMRenamePathwithCheckProfile: {word}",
                 "[WFM] WFMRenamePathwithCheckProfile(127.0.0.1:{port}) failed dwStatus({status})"},
                "[WFM] WFMRenamePathwithCheckProfile({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.timeoutMs = 30000;
    row.notUnderstood = "[WFM] WFMRenamePathwithCheckProfile: WFM_PARSE_XML_FAIL(nParseResult=-1)(Result=0)";
    rows.push_back(row);

    row =
        usual("WFMMovePath", movePath,
              {"[WFM] WFMMovePath: {word}", "[WFM] WFMMovePath(127.0.0.1:{port}) failed dwStatus({status})"},
              "[WFM] WFMMovePath({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    // The answer to the move and to the poll behind it.
    const char* const moved = R"({"status":1,"success":"true","pid":7,"filename":"a","percent":100})";
    row.goodReply = moved;
    row.furtherTimeoutsMs = {30000};
    row.syncServiceOnly = "&no_fork=0";
    row.notUnderstood = "[WFM] WFMMovePath WFM_PARSE_XML_FAIL nParseResult(-1), Result(0), Pid(0)";
    rows.push_back(row);

    row = usual("WFMMovePathwithCheckProfile", movePathChecked,
                {"[WFM] WFMMovePathwithCheckProfile: {word}",
                 "[WFM] WFMMovePathwithCheckProfile(127.0.0.1:{port}) failed dwStatus({status})"},
                "[WFM] WFMMovePathwithCheckProfile({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.goodReply = moved;
    row.syncServiceOnly = "&no_fork=1";
    row.notUnderstood =
        "[WFM] WFMMovePathwithCheckProfile: WFM_PARSE_XML_FAIL nParseResult(-1) Result(0) Pid(0)";
    rows.push_back(row);

    row = usual(
        "WFMGetProgress", getProgress,
        {"[WFM] WFMGetProgress: {word}", "[WFM] WFMGetProgress(127.0.0.1:{port}) failed dwStatus({status})"},
        "[WFM] WFMGetProgress({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.needsSid = false;
    row.nonObjectIsUnderstood = true;
    row.timeoutMs = 30000;
    row.goodReply = R"({"status":1,"filename":"a","percent":100})";
    row.notUnderstood = "[WFM] WFMGetSid: WFM_PARSE_XML_FAIL";
    rows.push_back(row);

    row = usual("WFMDeleteProgress", deleteProgress,
                {"[WFM] WFMDeleteProgress: {word}",
                 "[WFM] WFMDeleteProgress(127.0.0.1:{port}) failed dwStatus({status})"},
                "[WFM] WFMDeleteProgress({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.timeoutMs = 30000;
    rows.push_back(row);

    row = usual("WebFileManQueryProgress", queryProgress,
                {"[WFMShare] WebFileManQueryProgress: {word}",
                 "[WFMShare] WebFileManQueryProgress(127.0.0.1:{port}) failed dwStatus({status})"},
                "[WFMShare] WebFileManQueryProgress({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.goodReply = R"({"status":1,"copying":0,"percent":10})";
    rows.push_back(row);

    row = usual("WFMTrashRecovery", trashRecovery,
                {"[WFMShare] WFMTrashRecovery: {word}",
                 "[WFMShare] WFMTrashRecovery(127.0.0.1:{port}) failed dwStatus({status})"},
                "[WFMShare] WFMTrashRecovery({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.goodReply = R"({"status":1,"pid":"7"})";
    row.notUnderstood = "[WFMShare] WFMTrashRecovery: WFM_PARSE_XML_FAIL(path=/home/@Recycle)(file=a)";
    rows.push_back(row);

    row = usual("WFMUploadFilewithHandle", upload,
                {"[WFM] WFMUploadFilewithHandle {word}",
                 "[WFM] WFMUploadFilewithHandle(127.0.0.1:{port}): (/home/a)failed ({status}) (/home/a)"},
                "[WFM] WFMUploadFilewithHandle: WFM_PARSE_XML_INVALID_PARAMETER");
    row.timeoutMs = 0;
    row.notUnderstood = "[WFM] WFMUploadFilewithHandle: WFM_PARSE_XML_FAIL";
    rows.push_back(row);

    row = usual(
        "WFMTorviUploadandMovewithHandle", uploadAndMove,
        {"[WFM] WFMTorviUploadandMovewithHandle(/home/a): {word}",
         "[WFM] WFMTorviUploadandMovewithHandle(127.0.0.1:{port}): (/home/a)failed ({status})(/home/a)"},
        "[WFM] WFMTorviUploadandMovewithHandle({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER(/home/a)");
    row.timeoutMs = 0;
    row.proxyWord = "FM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ";
    rows.push_back(row);

    row = usual("WFMTorviCheckPermission", checkPermission,
                {"[WFM] WFMTorviCheckPermission: {word}",
                 "[WFM] WFMTorviCheckPermission(127.0.0.1:{port}) failed dwStatus({status})"},
                "[WFM] WFMTorviCheckPermission({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    rows.push_back(row);

    row = usual(
        "WFMGetUploadID", uploadID,
        {"[WFM] WFMGetUploadID: {word}", "[WFM] WFMGetUploadID(127.0.0.1:{port}) failed dwStatus({status})"},
        "[WFM] WFMGetUploadID({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.takesAnyAddress = true;
    row.goodReply = R"({"status":0,"upload_id":"u"})";
    rows.push_back(row);

    row = usual("WFMTorvGetChunkFileSize", chunkFileSize,
                {"[WFM] WFMTorvGetChunkFileSize: {word}",
                 "[WFM] WFMTorvGetChunkFileSize(127.0.0.1:{port}) failed dwStatus({status})"},
                "[WFM] WFMTorvGetChunkFileSize({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.goodReply = R"({"status":0,"size":"10"})";
    rows.push_back(row);

    row = usual("WFMTorviDeleteChunkFile", deleteChunkFile,
                {"[WFM] WFMTorviDeleteChunkFile: {word}",
                 "[WFM] WFMTorviDeleteChunkFile(127.0.0.1:{port}) failed dwStatus({status})"},
                "[WFM] WFMTorviDeleteChunkFile({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    rows.push_back(row);

    row = usual("WFMTorviChunckUploadwithHandle", chunkUpload,
                {"[WFM] WFMTorviChunckUploadwithHandle: {word}",
                 "[WFM] WFMTorviChunckUploadwithHandle(127.0.0.1:{port}): (/home/.up)(/home/a)failed "
                 "({status}) (/home/a)"},
                "[WFM] WFMTorviChunckUploadwithHandle({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.timeoutMs = 0;
    row.notUnderstood = "[WFM] WFMTorviChunckUploadwithHandle(/home/a): WFM_PARSE_XML_FAIL";
    rows.push_back(row);

    row = usual(
        "WFMTorviUploadandMoveMultiPartwithHandle", uploadBatch,
        {"[WFM] WFMTorviUploadandMoveMultiPartwithHandle {word}",
         "[WFM] WFMTorviUploadandMoveMultiPartwithHandle(127.0.0.1:{port}) failed dwStatus({status}) "
         "(/home)"},
        "[WFM] WFMTorviUploadandMoveMultiPartwithHandle({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.ownCgi = "upload.php";
    row.notUnderstood = "[WFM] WFMTorviUploadandMoveMultiPartwithHandle: WFM_PARSE_XML_FAIL";
    rows.push_back(row);

    row = usual("WFMTorviGetVersioningProbe", versioningProbe,
                {"[WFM] WFMTorviGetVersioningProbe: {word}",
                 "[WFM] WFMTorviGetVersioningProbe(127.0.0.1:{port}) failed dwStatus({status})"},
                "[WFM] WFMTorviGetVersioningProbe({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.goodReply = R"({"status":1,"versioning_version":"1.0"})";
    rows.push_back(row);

    row = usual("WFMTorviVersioningLock", versioningLock,
                {"[WFM] WFMTorviVersioningLock: {word}",
                 "[WFM] WFMTorviVersioningLock(127.0.0.1:{port}) failed dwStatus({status})"},
                "[WFM] WFMTorviVersioningLock({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.goodReply = R"({"status":1,"lockid":"l","version_id":"v"})";
    rows.push_back(row);

    row = usual("WFMTorviVersioningUnLock", versioningUnlock,
                {"[WFM] WFMTorviVersioningUnLock: {word}",
                 "[WFM] WFMTorviVersioningUnLock(127.0.0.1:{port}) failed dwStatus({status})"},
                "[WFM] WFMTorviVersioningUnLock({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    rows.push_back(row);

    row = usual("WFMTorviVersioningCleanVersion", versioningClean,
                {"[WFM] WFMTorviVersioningCleanVersion: {word}",
                 "[WFM] WFMTorviVersioningCleanVersion(127.0.0.1:{port}) failed dwStatus({status})"},
                "[WFM] WFMTorviVersioningCleanVersion({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    rows.push_back(row);

    row = usual("WFMTorviGenVersioningSig", versioningSig,
                {"[WFM] WFMTorviGenVersioningSig: {word}",
                 "[WFM] WFMTorviGenVersioningSig(127.0.0.1:{port}) failed dwStatus({status})"},
                "[WFM] WFMTorviGenVersioningSig({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.goodReply = R"({"status":1,"pid":"5"})";
    rows.push_back(row);

    row = usual("WFMTorviGenVersioningDelta", versioningDelta,
                {"[WFM] WFMTorviGenVersioningDelta: {word}",
                 "[WFM] WFMTorviGenVersioningDelta(127.0.0.1:{port}) failed dwStatus({status})"},
                "[WFM] WFMTorviGenVersioningDelta({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.goodReply = R"({"status":1,"pid":"5"})";
    row.notUnderstood = "[WFM] WFMTorviGenVersioningDelta: WFM_PARSE_XML_INVALID_PARAMETER";
    rows.push_back(row);

    row = usual("WFMTorviVersioningStatDelta", versioningStatDelta,
                {"[WFM] WFMTorviVersioningStatDelta: {word}",
                 "[WFM] WFMTorviVersioningStatDelta(127.0.0.1:{port}) failed dwStatus({status})"},
                "[WFM] WFMTorviVersioningStatDelta({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.goodReply = R"({"exist":1,"size":"10"})";
    row.tooLarge = R"({"exist":99999999999})";
    rows.push_back(row);

    row = usual("WFMTorviVersioningCommitUpload", versioningCommit,
                {"[WFM] WFMTorviVersioningCommitUpload: {word}",
                 "[WFM] WFMTorviVersioningCommitUpload(127.0.0.1:{port}) failed dwStatus({status})"},
                "[WFM] WFMTorviVersioningCommitUpload({server}:{port}): WFM_PARSE_XML_INVALID_PARAMETER");
    row.goodReply = R"({"status":1,"pid":"5"})";
    rows.push_back(row);
    return rows;
}

void replaceAll(std::string& text, const std::string& from, const std::string& to) {
    for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
}

}  // namespace

const std::vector<CallRow>& callTable() {
    static const std::vector<CallRow> table = [] {
        std::vector<CallRow> rows = makeTable();
        addSessionRows(rows);
        addStateRows(rows);
        addTeamRows(rows);
        addShareSettingRows(rows);
        addLinkRows(rows);
        addConfigRows(rows);
        return rows;
    }();
    return table;
}

std::string fillLine(std::string line, const std::string& word, uint32_t port, uint32_t status,
                     int32_t result) {
    replaceAll(line, "{word}", word);
    replaceAll(line, "{port}", std::to_string(port));
    replaceAll(line, "{status}", std::to_string(status));
    replaceAll(line, "{result}", std::to_string(result));
    return line;
}
