#include "calltable.h"

#include <QFile>
#include <QTemporaryFile>

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

using Context = _WFM_AUTH_CONTEXT*;

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
    *result = static_cast<uint32_t>(-1);
    return TorviLogout(server, port, false, context);
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

/// A row of the usual wording: "[WFM] <Function>: <WORD>", "[WFM] <Function>(server:port) failed
/// dwStatus(n)".
CallRow usual(const char* name, decltype(CallRow::run) run, std::vector<const char*> failure,
              const char* refused) {
    CallRow row;
    row.name = name;
    row.run = std::move(run);
    row.failure = std::move(failure);
    row.refused = refused;
    return row;
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
    rows.push_back(row);

    row =
        usual("TorviLogin", login, {"[WFM] TorviLogin: {word}", "[WFM] TorviLogin failed dwStatus({status})"},
              "[WFM] TorviLogin: WFM_PARSE_XML_INVALID_PARAMETER");
    row.needsSession = false;
    row.has404 = row.isLogin = true;
    row.timeoutMs = 15000;
    row.goodReply = R"({"status":1,"sid":"abc"})";
    rows.push_back(row);

    row = usual("TorviLogout", logout,
                {"[WFM] TorviLogout {word}", "[WFM] TorviLogout failed dwStatus({status})"},
                "[WFM] TorviLogout failed dwStatus(8)");
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
    return rows;
}

void replaceAll(std::string& text, const std::string& from, const std::string& to) {
    for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
}

}  // namespace

const std::vector<CallRow>& callTable() {
    static const std::vector<CallRow> table = makeTable();
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
