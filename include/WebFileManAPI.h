#ifndef WEBFILEMANAPI_H
#define WEBFILEMANAPI_H

#include <QtCore/QString>

#include <cstdint>

#define TORVIAPI_EXPORT __attribute__((visibility("default")))

class QFile;

struct _WFM_AUTH_CONTEXT;

struct _WFM_VERSION_INFORMATION {
    wchar_t szVersion[260];
    wchar_t szBuildNumber[260];
};

struct _WFM_NETWORK_INFORMATION {
    wchar_t szPeltnetDomainName[260];
    wchar_t szDdnsDomainName[260];
    wchar_t szExternalIP[260];
    wchar_t szLocalIP[260];
    wchar_t szReserved[260];
    wchar_t szLocalIPList[2080];
    int32_t nPort;
    int32_t nSslPort;
    int32_t nExtPort;
    int32_t nExtSslPort;
};

struct _WFM_PATH_INFORMATION {
    wchar_t szPathName[4096];
    uint32_t dwAccess;
    int32_t nPrivilegeEx;
    bool bIsFolder;
    bool bExists;
    bool bHasChild;
    int64_t llSize;
    int64_t llModifiedTime;
    int64_t llSecondTime;
    uint32_t dwNuboType;
    wchar_t szShareID[260];
};

typedef uint32_t (*WFMProgressCallback)(int64_t llTotalFileSize, int64_t llTotalBytesTransferred,
                                        int64_t llStreamSize, int64_t llStreamBytesTransferred,
                                        uint32_t dwStreamNumber, uint32_t dwCallbackReason, void* hSourceFile,
                                        void* hDestinationFile, void* lpData);

extern "C" {

TORVIAPI_EXPORT uint32_t WFMInitialization(uint32_t level, QString logDir, bool logToFile, bool append);
TORVIAPI_EXPORT uint32_t WFMUnInitialization();
TORVIAPI_EXPORT uint32_t WFMUpdateDebugLevel(uint32_t level);
TORVIAPI_EXPORT uint32_t WFMReOpenLogFile();
TORVIAPI_EXPORT uint32_t WFMClearLog();

TORVIAPI_EXPORT uint32_t WFMCloneAuthContext(const _WFM_AUTH_CONTEXT* source, _WFM_AUTH_CONTEXT** clone);
TORVIAPI_EXPORT uint32_t WFMFreeAuthContext(_WFM_AUTH_CONTEXT* context);
TORVIAPI_EXPORT uint32_t WFMUpdateTeamFolderInfo(_WFM_AUTH_CONTEXT* context, int32_t count, wchar_t** oriPaths,
                                                 wchar_t** teamFolderPaths, wchar_t** slaveIDs);
TORVIAPI_EXPORT uint32_t WFMGetUseNuboCGI(const _WFM_AUTH_CONTEXT* context, bool* useNuboCGI);
TORVIAPI_EXPORT uint32_t WFMGetSlaveID(const _WFM_AUTH_CONTEXT* context, uint32_t* capacity, wchar_t* buffer);
TORVIAPI_EXPORT uint32_t WFMGetSid(const _WFM_AUTH_CONTEXT* context, uint32_t* capacity, wchar_t* buffer);

TORVIAPI_EXPORT bool IsNetworkAlive();

TORVIAPI_EXPORT uint32_t WFMGetVersion(const wchar_t* server, uint32_t port, const wchar_t* agentName, bool secure,
                                       uint32_t proxyMode, const wchar_t* proxyHost, const wchar_t* proxyUser,
                                       const wchar_t* proxyPassword, const wchar_t* forwardedFor, uint64_t reserved,
                                       uint32_t* resultWord, _WFM_VERSION_INFORMATION* version);

TORVIAPI_EXPORT uint32_t TorviLogin(const wchar_t* server, int32_t port, const wchar_t* user,
                                    const wchar_t* password, bool secure, const wchar_t* computerName,
                                    const wchar_t* uid, const wchar_t* agentName, uint32_t deviceType,
                                    uint32_t serverNameCapacity, uint32_t proxyMode, const wchar_t* proxyHost,
                                    const wchar_t* proxyUser, const wchar_t* proxyPassword,
                                    const wchar_t* forwardedFor, const wchar_t* clientVersion, uint64_t reserved1,
                                    const uint32_t* timeoutMs, bool useFcgi, wchar_t* serverName, bool* isAdmin,
                                    bool* isSlave, uint32_t* resultWord, _WFM_AUTH_CONTEXT** context,
                                    uint64_t reserved2, _WFM_NETWORK_INFORMATION* network);
TORVIAPI_EXPORT uint32_t TorviLogout(const wchar_t* server, uint32_t port, bool force, _WFM_AUTH_CONTEXT* context);

TORVIAPI_EXPORT uint32_t WFMGetNodeList(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                        const wchar_t* slaveID, const wchar_t* pattern, const wchar_t* path,
                                        uint32_t typeFilter, uint32_t fieldMask, bool* cancel, uint32_t limit,
                                        bool wantSort, uint32_t* resultWord, uint32_t* total, uint32_t* start,
                                        uint32_t* count, uint32_t* teamIndex, uint32_t* teamCount,
                                        _WFM_PATH_INFORMATION*** list);
TORVIAPI_EXPORT uint32_t WFMGetFolderList(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                          const wchar_t* slaveID, uint32_t fieldMask, const wchar_t* node,
                                          bool* cancel, uint32_t* resultWord, uint32_t* count,
                                          _WFM_PATH_INFORMATION*** list);
TORVIAPI_EXPORT uint32_t WFMGetFolderInformation(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                                 const wchar_t* slaveID, const wchar_t* parent,
                                                 const wchar_t* name, uint32_t fieldMask, bool serverSidePath,
                                                 bool* cancel, uint32_t* resultWord,
                                                 _WFM_PATH_INFORMATION* information);
TORVIAPI_EXPORT uint32_t WFMGetPathInformation(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                               const wchar_t* slaveID, const wchar_t* name, const wchar_t* parent,
                                               uint32_t fieldMask, uint32_t typeFilter, bool serverSidePath,
                                               bool* cancel, uint32_t* resultWord,
                                               _WFM_PATH_INFORMATION* information);
TORVIAPI_EXPORT uint32_t WFMIsPathDirectory(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                            const wchar_t* slaveID, const wchar_t* path, bool* cancel,
                                            uint32_t* resultWord, bool* isDirectory);
TORVIAPI_EXPORT uint32_t WFMIsPathPresent(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                          const wchar_t* slaveID, const wchar_t* path, bool wantFolder,
                                          bool serverSidePath, bool* cancel, uint32_t* resultWord, bool* isPresent);
TORVIAPI_EXPORT uint32_t WFMGetFolderSize(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                          const wchar_t* slaveID, const wchar_t* name, const wchar_t* parent,
                                          bool* cancel, uint32_t* resultWord, int64_t* size);

TORVIAPI_EXPORT uint32_t WFMCreateFile(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                       const wchar_t* slaveID, const wchar_t* path, bool* cancel,
                                       uint32_t* resultWord);

TORVIAPI_EXPORT uint32_t WFMDownloadFileToHandle(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                                 const wchar_t* slaveID, const wchar_t* remotePath, QFile* file,
                                                 const int64_t* offset, const int64_t* size, void* lpData,
                                                 WFMProgressCallback callback, bool* stop, uint32_t* resultWord);

TORVIAPI_EXPORT uint32_t WFMUploadFilewithHandle(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                                 const wchar_t* slaveID, QFile* file, const wchar_t* destination,
                                                 void* lpData, WFMProgressCallback callback, uint32_t overwrite,
                                                 void* reserved, uint32_t* resultWord);
TORVIAPI_EXPORT uint32_t WFMTorviUploadandMovewithHandle(
    _WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port, const wchar_t* slaveID, QFile* file,
    const wchar_t* destination, const wchar_t* uploadRoot, const wchar_t* renameTarget, int64_t fileSize,
    int64_t modifiedTime, void* lpData, WFMProgressCallback callback, uint32_t overwrite, void* reserved,
    uint32_t* resultWord);
TORVIAPI_EXPORT uint32_t WFMTorviCheckPermission(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                                 const wchar_t* slaveID, const wchar_t* folder,
                                                 const wchar_t* fileName, void* reserved, uint32_t* resultWord);

}  // extern "C"

#endif
