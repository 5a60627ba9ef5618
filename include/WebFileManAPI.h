/// @file WebFileManAPI.h
/// libTorviAPI: the client side of a NAS's file and sync service, and of the maker's cloud services.
///
/// A session, from end to end:
///
///     WFMInitialization            the log (may be left out)
///     TorviLogin                   makes a session: _WFM_AUTH_CONTEXT
///     WFMUpdateTeamFolderInfo      tells it the team folders
///     WFMCloneAuthContext          a copy for each worker thread
///     ...                          list, stat, change, upload, download
///     TorviLogout                  ends the session on the server
///     WFMFreeAuthContext           frees the record, and each clone
///     WFMUnInitialization          writes out and closes the log
///
/// @section numbers The two numbers of every call
///
/// A call returns `dwStatus`, which says how far the exchange got, and fills `*resultWord`, which says what
/// the server answered. A call has done its work when both are 0; either may fail without the other. The
/// calls report by numbers alone and throw nothing; a progress callback must not throw either.
///
/// | dwStatus | Meaning                                                                                 |
/// |----------|-----------------------------------------------------------------------------------------|
/// | 0        | a reply came and was understood; whether it says yes is the result word                 |
/// | 2        | not connected, connection lost, or time-out: network errors 1 to 99                     |
/// | 6        | any other network error: HTTP 400 and above, a fault of proxy or protocol, a broken URL |
/// | 7        | the caller's list or buffer can't take the reply                                        |
/// | 8        | an argument is refused, or there is no `QCoreApplication`: nothing sent                 |
/// | 9        | in place of 7: WFMGetShareLink                                                          |
/// | 10       | HTTP 404, in the calls that say so: the server doesn't have this service                |
/// | 11       | HTTP 407: the proxy wants other credentials                                             |
/// | 12       | HTTP 503: the server is there and not ready                                             |
/// | 14       | the reply wasn't understood (nor is a 3xx or an empty one), or a login was refused      |
/// | 5, 87    | nothing sent, in the calls that say so: the path can't be changed so                    |
/// | 87, 122  | in place of 8 and 7: WFMGetUseNuboCGI, WFMGetSlaveID, WFMGetSid                         |
/// | 87       | in place of 8: TorviActivateSid, TorviActivateSid2                                      |
///
/// Every call may return 8 (or that 87), and every call that sends a request 2, 6, 11, 12 and 14; the tables
/// below tell what is particular to a call. With 8 nothing is written, but for the cases of 8 that a call's
/// table lists with a result word.
///
/// The result word becomes 0xFFFFFFFF (-1) before anything else and stays so while `dwStatus` isn't 0, but
/// for the cases that a call's table lists. -1 together with `dwStatus` 0 means that the server refused for a
/// reason that the call has no number for; the log has it. The word is unsigned: compare it as `int32_t` with
/// the negative ones.
///
/// | Client code | Meaning                          | Client code | Meaning                                 |
/// |-------------|----------------------------------|-------------|-----------------------------------------|
/// | -3          | permission denied                | -29         | the session has ended                   |
/// | -4          | failed, or no such file          | -31         | data that can't be trusted              |
/// | -6          | quota used up                    | -37         | the cluster node isn't ready            |
/// | -7          | can't be opened, or illegal name | -40         | this node takes no logins               |
/// | -8          | the server insists on HTTPS      | -42         | name too long                           |
/// | -15         | exists already                   | -43         | a slice landed, call again              |
/// | -23         | buffer too small                 | -44         | the user's home folder is not available |
///
/// Other codes are server statuses without a name (status in brackets): -2 (0), -5 (7), -9 (-1), -10 (-2),
/// -11 (-4), -12 (-10), -13 (-15), -14 (-16), -17 (-20), -24 (8), -25 (-8), -26 (-12), -27 (-13), -28 (-14),
/// -30 (-18), -32 to -35 (-40 to -43), -36 (-19), -41 (-6).
///
/// | System-style | Meaning                       | System-style | Meaning                                 |
/// |--------------|-------------------------------|--------------|-----------------------------------------|
/// | 2            | file not found                | 112          | quota used up                           |
/// | 3            | path not found                | 183          | exists already                          |
/// | 5            | access denied                 | 206          | name too long                           |
/// | 12           | the server didn't do it       | 1231         | this machine has no network             |
/// | 13           | the data don't fit each other | 1235         | stopped by the caller (listing, upload) |
/// | 18           | no more files                 | 1237         | stopped by the caller (download)        |
/// | 34           | on another node               | 1244         | the session has ended                   |
/// | 50           | not supported                 | 5003         | the new name exists already             |
/// | 53           | the server can't be reached   | 87           | a number or a path is invalid           |
/// |              |                               | 122          | the list or the buffer is too small     |
///
/// Each call uses client codes or system-style numbers, never both for the same thing; its table says which.
/// A few have numbers of their own: 8 of WFMGetDomainIPList and of configuration lists, 14 and 16 to 19 of
/// the logins that may want a second step, 6 (mail) and 7 (time) of calls that make, change or mail links.
///
/// @section arguments Arguments that are the same everywhere
///
/// - Texts are NUL-terminated `wchar_t` (UTF-32); every length and capacity counts wide characters, the
///   terminator included. The library copies what it keeps: arguments may go when the call returns.
/// - `server` is a host name or an address without scheme, an IPv6 address in square brackets. A context
///   doesn't keep server and port; pass them to every call. A port above 65535, or a server text that makes
///   no URL, is a broken URL: nothing is sent.
/// - `slaveID` names the cluster node that a request is for; null or empty is the node of the session. It
///   counts only in a session that has a slave id of its own (WFMGetSlaveID). The node that
///   WFMUpdateTeamFolderInfo gave for a team folder goes before it.
/// - Paths are absolute and separated by "/". Paths below "/home/.Torvi/" go to the team folder that was told
///   for them; one that matches none is sent as it stands.
/// - `agentName` becomes the User-Agent header.
/// - `proxyMode` 2 is a manual HTTP proxy at `proxyHost`, which is "host:port" with a port up to 32767. 0
///   (none given) and 1 (the system's) use the process's default, which is the `http_proxy` of the
///   environment unless the application has set another by `QNetworkProxyFactory`; the proxy texts are then
///   ignored. The three texts may be null. A POST over plain HTTP offers the proxy Basic credentials only.
/// - `forwardedFor` is the address that a client on the NAS itself acts for; sent only if `server` is
///   "127.0.0.1".
/// - `reserved` arguments are ignored; pass 0 or null.
/// - A URL is cut at 2047 characters without a word, and its last parameters are lost, or cut short: a long
///   path may become the path of something else. In a path, letters,
///   digits, "-", "." and "_" take one character of it and so does each character beyond ASCII; all others
///   take three. The session id and 150 characters for the rest come on top.
///
/// @section network On the network
///
/// - Certificates are **not verified**, on any request. HTTPS keeps listeners out, not impostors.
/// - Redirects aren't followed and nothing is retried by the library. The network stack may repeat a GET on a
///   connection that died before an answer; a POST or PUT reaches a server once at most.
/// - The time-out covers a whole exchange, from connecting to the last byte: 60 seconds unless a call says
///   otherwise. Transfers have none.
/// - A manual proxy that refuses may break the connection before its answer can be read. The proxy alone is
///   then asked once more, within the time-out and 10 seconds at most, so that the call can tell (11). A 401
///   with a "WWW-Authenticate" and no "Via", over plain HTTP through a manual proxy with a user, is the
///   proxy's refusal too.
///
/// @section threads Threads
///
/// - A call blocks and may come from any thread, `std::thread` included; the thread needs no event loop. The
///   process needs a `QCoreApplication` (it doesn't have to be in `exec()`), or else the call returns 8.
/// - While a call waits, timers, sockets and queued slots of the caller's own thread run too. In a user
///   interface's thread that includes its events, so that a second call may begin inside the first.
/// - `QCoreApplication::quit()`, for a call in the main thread, and `QThread::quit()`, for one in that
///   thread, end a call that waits, as a lost connection does. Outside `exec()` the quit stays in force:
///   later calls in that thread end so too.
/// - A context isn't locked. Calls only read it, so several threads may use one, except while one of them
///   runs WFMUpdateTeamFolderInfo, WFMSetProxyContext, WFMSetAutoProxyContext or WFMFreeAuthContext on it.
///   Give each worker thread a clone.
/// - A `bool*` cancel or stop flag may be null, and may be set from another thread while the call runs. Where
///   a call reads it is said there; none of them wakes a call that waits.
///
/// @section ownership Ownership
///
/// The caller owns contexts, `QFile` objects, buffers, records and every list that a call hands out. The
/// library keeps no pointer of them. A list is an array from `new[]` of records from `new`; there is no free
/// function but for what comes from the cloud (ZenoFreeDeviceInfo, ZenoFreeCloudInfo):
///
///     for (uint32_t i = 0; i < count; ++i) delete list[i];
///     delete[] list;
///
/// Texts in records are always terminated, but for some of _WFM_TORVI_TEAM_FOLDER_INFORMATION. A text from
/// the server never overruns its field.

#ifndef WEBFILEMANAPI_H
#define WEBFILEMANAPI_H

#include <QtCore/QString>

#include <cstdint>

/// Marks what the library exports.
#define TORVIAPI_EXPORT __attribute__((visibility("default")))

class QFile;

/// A session: what a login leaves behind. Opaque; made by TorviLogin, WFMLogin, WFMLoginStep2,
/// TorviActivateSid2 and WFMCloneAuthContext, freed by WFMFreeAuthContext alone.
///
/// It holds the session id, the node's slave id, secure flag, agent name, proxy and team folders. **The proxy
/// password stands in it in clear**, and the memory isn't wiped when it is freed.
struct _WFM_AUTH_CONTEXT;

/// Version of a server, filled by WFMGetVersion.
struct _WFM_VERSION_INFORMATION {
    wchar_t szVersion[260];      ///< firmware version, as "5.2.1"; cut at 259, terminated
    wchar_t szBuildNumber[260];  ///< build, as the server writes it; cut at 259, terminated
};

/// The addresses under which a server can be reached, by its own account; filled by TorviLogin.
///
/// What the server doesn't tell is empty or 0, and so is a text that doesn't fit. All texts are terminated.
struct _WFM_NETWORK_INFORMATION {
    wchar_t szPeltnetDomainName[260];  ///< name at the maker's remote-access service
    wchar_t szDdnsDomainName[260];     ///< dynamic DNS name
    wchar_t szExternalIP[260];         ///< address towards the internet
    wchar_t szLocalIP[260];            ///< address in the local network
    wchar_t szReserved[260];           ///< always empty
    wchar_t szLocalIPList[2080];       ///< all local addresses, one text as the server sends it
    int32_t nPort;                     ///< HTTP port in the local network
    int32_t nSslPort;                  ///< HTTPS port in the local network
    int32_t nExtPort;                  ///< HTTP port towards the internet
    int32_t nExtSslPort;               ///< HTTPS port towards the internet
};

/// One listed or stat-ed path. 17472 bytes, so that a page of 1000 takes 17 MB.
///
/// Only the fields that the call's `fieldMask` selects are filled, and only by the calls named; the others
/// are 0, empty or false, nPrivilegeEx -1; bHasChild has rules of its own. Records of team folders that
/// WFMGetNodeList puts into a listing are filled whatever the mask.
///
/// | Bit   | Selects        | Bit   | Selects                                                      |
/// |-------|----------------|-------|--------------------------------------------------------------|
/// | 0x001 | dwAccess       | 0x020 | szPathName                                                   |
/// | 0x002 | llModifiedTime | 0x040 | dwNuboType, szShareID                                        |
/// | 0x004 | llSecondTime   | 0x080 | nPrivilegeEx                                                 |
/// | 0x008 | bIsFolder      | 0x100 | nPrivilegeEx, with the question whether an upload is allowed |
/// | 0x010 | llSize         | 0x200 | bHasChild                                                    |
struct _WFM_PATH_INFORMATION {
    /// Leaf name, terminated: from the server 2047 characters at most, a team folder's in a listing, which
    /// comes from the caller's own list, cut at 4095.
    wchar_t szPathName[4096];
    uint32_t dwAccess;     ///< 0 none, 1 read, 2 read and write
    int32_t nPrivilegeEx;  ///< WFMGetPathInformation only: the server's number, 0 to 2; -1 unknown
    bool bIsFolder;        ///< false is a file, if bit 0x008 was given
    bool bExists;          ///< true in every record that a call hands out; needs no bit
    /// WFMGetNodeList: has children, if it was asked with type filter 6 and bit 0x200; otherwise true, but
    /// false for files under bit 0x008. Team folders in a listing: has folders in it, with filter bit 4,
    /// otherwise false. From other calls false.
    bool bHasChild;
    int64_t llSize;          ///< bytes; 0 from WFMGetFolderList and WFMGetFolderInformation
    int64_t llModifiedTime;  ///< seconds since the epoch; 0 if the server has none
    int64_t llSecondTime;    ///< the same time once more
    uint32_t dwNuboType;     ///< WFMGetNodeList only: the server's kind of share, 8 for a team folder
    wchar_t szShareID[260];  ///< WFMGetNodeList only: id of the share, empty if there is none; terminated
};

/// One file of a batch, for WFMTorviUploadandMoveMultiPartwithHandle. The caller's.
struct _WFM_MULTI_PART_FILE_INFO {
    int32_t nResult;              ///< out: 0, a client code, or 13 if the server holds another size
    QFile* pFile;                 ///< in: open for reading, with a name; the library opens the path again
    wchar_t szName[2048];         ///< in: its name at the destination, terminated; not empty
    int64_t llSize;               ///< in: bytes that the server must report
    int64_t llModifiedTime;       ///< in: seconds since the epoch
    wchar_t szModifiedTime[260];  ///< out: the same as text
};

/// A session around one remote file, in and out of WFMTorviVersioningLock. The caller's; zero it first.
struct WFM_VERSIONING_LOCK {
    wchar_t szLockID[260];     ///< terminated; cut at 259
    wchar_t szVersionID[260];  ///< terminated; cut at 259
};

/// A delta on the server, filled by WFMTorviVersioningStatDelta.
struct WFM_VERSIONING_DELTA_STAT {
    bool bExists;
    int64_t llSize;  ///< bytes; 0 if it isn't there
};

/// The proxy of a session, filled by WFMSetAutoProxyContext.
struct _WFM_AUTO_PROXY_INFORMATION {
    uint32_t dwReserved;         ///< left as it is
    uint32_t dwProxyFlags;       ///< as given to WFMSetProxyContext
    wchar_t szProxyHost[260];    ///< "host:port", terminated
    wchar_t szProxyBypass[260];  ///< terminated
};

/// Who a server is, filled by WFMGetNASUserUID and WebFileManQueryUID. A text that the server doesn't have,
/// or that doesn't fit, is empty; all are terminated.
struct _NAS_USER_UID_INFORMATION {
    bool bBooting;                     ///< it isn't ready yet
    bool bRecovering;                  ///< its data are being put in order
    bool bMigrating;                   ///< its data are being moved
    bool bNuboCGI;                     ///< it has the sync service
    bool bFcgi;                        ///< always false, whatever the server says
    uint32_t dwUserType;               ///< 1 or 0
    wchar_t szUID[260];                ///< identity of the server for this user
    wchar_t szSUID[260];               ///< the same for a share
    wchar_t szMAC[260];                ///< first hardware address
    wchar_t szTorviVersion[260];       ///< of the sync service
    wchar_t szVersioningVersion[260];  ///< of the versioning engine
};

/// What the sync service has for this user, filled by WebFileManGetTorviInformation.
struct _TORVI_INFORMATION {
    bool bFunctionEnable;     ///< the sync service is switched on
    bool bUserEnable;         ///< the same value once more, not the user's own switch
    bool bHomeIsExist;        ///< the user has a home
    bool bTeamFolderIsExist;  ///< team folders are set up
    bool bClusterSupport;     ///< the server can be a node of a cluster
    int32_t nClusterStatus;   ///< 1: it is one; 0 without bClusterSupport
    wchar_t szSlaveID[260];   ///< its slave id, empty unless nClusterStatus is 1; terminated
};

/// What doesn't change while a server runs, filled by WFMTorviGetNASStaticInfo.
struct _NAS_STATIC_INFORMATION {
    wchar_t szModel[260];            ///< terminated; empty if it doesn't fit
    wchar_t szFirmwareVersion[260];  ///< terminated; empty if it doesn't fit
    int64_t llQueueLimit;            ///< entries that its change queue takes
    int64_t llMessageQueueLimit;     ///< entries that its message queue takes
};

/// What is in order on a server, filled by WFMTorviGetNASStatus.
struct _NAS_STATUS_INFORMATION {
    bool bHomeFolderEnable;
    bool bRecycleBinEnable;
    bool bDeviceDBExist;
    bool bLogDBExist;
    bool bShareDBExist;
    bool bUserEnable;
    bool bVersioningEnable;
    bool bNuboVersioningEnable;  ///< versions for the sync service
    bool bHomeFolderAvailable;   ///< true where the server doesn't tell
    bool bRecovering;
    wchar_t szVersioningVersion[260];  ///< terminated; empty where there is none, or if it doesn't fit
};

/// By which names and addresses a server is reached, filled by WFMGetDomainIPList. A text that is too long,
/// 259 characters or more, is empty; all are terminated.
struct _DOMAIN_IP_LIST_INFORMATION {
    wchar_t szPeltnetHostName[260];  ///< name at the maker's remote-access service
    wchar_t szDdnsHostName[260];     ///< dynamic DNS name
    wchar_t szExternalIP[260];       ///< address towards the internet
    wchar_t szLocalIP[260];          ///< address in the local network
    wchar_t szHostIP[260];           ///< the address that the request came to
    wchar_t szLocalIPList[2080];     ///< all local addresses, one text as the server sends it
    int32_t nPort;                   ///< HTTP port in the local network
    int32_t nSslPort;                ///< HTTPS port in the local network
    int32_t nExtPort;                ///< HTTP port towards the internet
    int32_t nExtSslPort;             ///< HTTPS port towards the internet
};

/// One folder that can be synced, from WFMTorviGetNASSyncinFolderList. Texts are terminated; one that doesn't
/// fit is empty.
struct _NAS_SYNCING_FOLDER_INFORMATION {
    wchar_t szSlaveID[260];   ///< its node, on a cluster; otherwise empty
    wchar_t szHostName[260];  ///< the node's name, on a cluster; otherwise empty
    wchar_t szReserved[260];  ///< always empty
    wchar_t szName[260];
    wchar_t szPath[260];
    int32_t nPrivilege;  ///< 2: full; others are the server's; -1 unknown
    int32_t nVolumeID;   ///< 0 on a cluster
    int64_t llUsed;      ///< bytes; -1 unknown, as always on a cluster
    int64_t llCapacity;  ///< bytes; -1 unknown
    int64_t llFree;      ///< bytes; -1 unknown
};

/// One folder of WFMTorviNuboGetMaxLog.
struct _TORVI_MAX_LOG_FOLDER {
    wchar_t szPath[260];  ///< in; not empty, terminated
    int64_t llMaxLog;     ///< out: its newest change, -1 unknown
};

/// Question and answer of WFMTorviNuboGetMaxLog. -1 is a number that the server didn't give.
struct _TORVI_MAX_LOG_INFORMATION {
    uint32_t dwFolderCount;              ///< in: folders, at least 1
    int64_t llMaxLog;                    ///< out: always -1, since folders are asked for
    int64_t llNotify;                    ///< out
    int64_t llGlobalNotify;              ///< out
    _TORVI_MAX_LOG_FOLDER** lppFolders;  ///< in and out: the caller's; no null among them
};

/// The numbers of WFMTorviGetMaxLog. -1 is a number that the server didn't give.
struct _TORVI_MAX_LOG_NUMBERS {
    int64_t llMaxLog;  ///< newest change
    int64_t llNotify;
    int64_t llGlobalNotify;
    int64_t llSyncSignal;
};

/// One change, from WFMTorviGetSyncLog. All texts are terminated; one that doesn't fit is empty, and a change
/// whose szFilePath doesn't fit isn't handed out.
struct _WFM_SYNC_LOG_INFORMATION {
    wchar_t szFilePath[4096];
    wchar_t szOldFilePath[4096];  ///< of a rename or move; otherwise empty
    wchar_t szDevice[260];        ///< the client that made the change; empty if the server doesn't tell
    int64_t llLogID;              ///< its number, to go on from; -1 unknown
    int32_t nIsFolder;            ///< 1 or 2; 0 unknown
    int32_t nAction;              ///< the client's action number; -1 unknown
};

/// One volume's quota, from WebFileManGetQuotaInformation.
struct USER_QUOTA_INFO {
    int32_t nVolumeID;        ///< 0 if the server doesn't tell
    int64_t llQuotaSize;      ///< bytes; -1 unknown
    int64_t llAvailableSize;  ///< bytes; 0 unless used is below quota; -1 unknown
    int64_t llUsedSize;       ///< bytes; -1 unknown
};

/// What the cloud's account service says of a token, filled by ZenoAPIAPPSignin, ZenoAPIAPPRefreshToken and
/// ZenoAPIGetTokenInfo. What the service doesn't send is empty or 0. All texts are terminated; one that is
/// longer than its field is cut. **Holds secrets in clear**, and isn't wiped by the library.
struct _CLOUD_TOKEN_INFORMATION {
    wchar_t error[260];               ///< the service's word for its refusal; empty if there is none
    wchar_t error_description[4096];  ///< the same for people
    wchar_t access_token[260];        ///< sign-in and refresh only
    wchar_t token_type[260];          ///< sign-in and refresh only
    wchar_t refresh_token[260];       ///< sign-in and refresh only
    wchar_t email[260];               ///< token info only
    wchar_t display_name[260];        ///< token info only
    wchar_t user_id[260];             ///< token info only
    int32_t expires_in;               ///< seconds from now
};

/// The device that a user's id stands for, filled by ZenoAPIGetDeviceID. Texts are terminated; one that is
/// longer than its field is cut.
struct _CLOUD_DEVICE_ID_INFORMATION {
    int32_t nResponseCode;  ///< see ZenoAPIGetDeviceID; means nothing unless the call returned 0
    wchar_t szDeviceID[260];
    wchar_t szMessage[260];  ///< the service's own words
};

/// One network address of a device.
struct _NAS_DEVICE_IP_INFO {
    wchar_t szName[260];  ///< of the interface
    wchar_t szIPv4[260];
    wchar_t szIPv6[260];
};

/// One service that a device has on its local network.
struct _NAS_DEVICE_SERVICE_INFO {
    wchar_t szServiceName[260];
    wchar_t szProtocol[260];
    wchar_t szUri[260];
    int32_t nExternalPort;  ///< 0 if the cloud has none
    int32_t nInternalPort;  ///< 0 if the cloud has none
    bool bPublished;
    bool bPrivate;
};

/// One user who has an account on a device.
struct _NAS_DEVICE_USER_INFO {
    wchar_t szUserName[260];
};

/// What a device last told the cloud of itself.
struct _NAS_DEVICE_UPDATE_INFO {
    wchar_t szDeviceType[260];
    wchar_t szModelName[260];
    wchar_t szFwModelName[260];
    wchar_t szHwSerialNumber[260];
    wchar_t szFwSerialNumber[260];
    wchar_t szMacAddress[260];
    wchar_t szHostName[260];
    wchar_t szFirmwareVersion[260];
    wchar_t szFirmwareBuildNumber[260];
    wchar_t szFirmwarePatchVersion[260];
    wchar_t szAgentVersion[260];
    wchar_t szFirmwareNumber[260];
    _NAS_DEVICE_IP_INFO lanGateway;
    int32_t nLanIPCount;
    _NAS_DEVICE_IP_INFO** lppLanIPs;  ///< null if there are none
    int32_t nWanIPCount;
    _NAS_DEVICE_IP_INFO** lppWanIPs;  ///< null if there are none
};

/// What the cloud knows of a device's model.
struct _NAS_DEVICE_MODEL_INFO {
    wchar_t szName[260];
    wchar_t szLatestFwVersion[260];
    wchar_t szLatestFwBuildNumber[260];
    wchar_t szLatestFwPatchVersion[260];
    wchar_t szImgUrl[260];
};

/// What the user may do with a device, in the cloud's own words.
struct _NAS_DEVICE_PERMISSIONS {
    wchar_t szBasicInfo[260];
    wchar_t szRemoteAccess[260];
    wchar_t szPublicLocalService[260];
    wchar_t szPrivateLocalService[260];
    wchar_t szPublicPackageServices[260];
    wchar_t szProtectedPackageServices[260];
    wchar_t szPrivatePackageServices[260];
};

/// One device of a user, from ZenoAPIGetAllDeviceInfo and ZenoAPIGetDeviceInfoByName; freed by
/// ZenoFreeDeviceInfo, with the lists in it. What the cloud doesn't tell is empty, 0 or false. All texts are
/// terminated; one that is longer than its field is cut, one of 2048 characters or more is empty. **szToken
/// and szAccessCode are the device's credentials**: the library passes them on and doesn't use them.
struct _NAS_DEVICE_INFORMATION_API_V11 {
    wchar_t szDeviceID[260];
    wchar_t szToken[260];
    wchar_t szDeviceName[260];
    wchar_t szAccessCode[260];
    wchar_t szAccessControlMode[260];
    wchar_t szUserID[260];
    wchar_t szDescription[260];
    wchar_t szDomainName[260];
    _NAS_DEVICE_UPDATE_INFO info;
    int32_t nServiceCount;
    _NAS_DEVICE_SERVICE_INFO** lppServices;  ///< null if there are none
    int32_t nUserCount;
    _NAS_DEVICE_USER_INFO** lppUsers;  ///< null if there are none
    _NAS_DEVICE_MODEL_INFO modelInfo;
    _NAS_DEVICE_PERMISSIONS permissions;
};

/// Where a device's web server can be reached over HTTP, filled by ZenoAPIGetCloudLinkSetting and freed by
/// ZenoFreeCloudInfo. Entries are "address:port", or the address alone where the cloud tells no port or no
/// protocol; none stands twice in a list, whatever its case. An IPv6 address has no brackets, with a port
/// neither: the port stands behind the last colon, and a server argument wants the brackets.
struct _CLOUD_LINK_INFORMATION {
    /// 0, or why there are no lists: the result words of ZenoAPIGetAllDeviceInfo. Means nothing unless the
    /// call returned 0.
    int32_t nResultCode;
    int32_t nWanIPCount;
    wchar_t** lppWanIPs;  ///< from the internet; null if there are none
    int32_t nLanIPCount;
    wchar_t** lppLanIPs;  ///< in the device's own network; null if there are none
    int32_t nDdnsCount;
    wchar_t** lppDdns;           ///< dynamic DNS names; null if there are none
    wchar_t szCloudLinkID[260];  ///< terminated; cut at 259; empty if there is none, or none below 2048
};

/// How a device is reached through the remote-access service, filled by PeltAPIGetVLinkInfo. Texts are
/// terminated; one that is longer than its field is cut.
struct _CLOUD_VLINK_INFORMATION {
    int32_t nReplyCode;         ///< see PeltAPIGetVLinkInfo; means nothing unless the call returned 0
    int32_t nHttpCode;          ///< the service's own code, 200 for success; 0 if it sends none
    wchar_t szActionTime[260];  ///< when the service answered, in its own words
    wchar_t szVLinkID[260];
    wchar_t szWANIP[260];
    wchar_t szLANIPs[2080];  ///< one text as the service sends it
    wchar_t szGatewayIP[260];
    wchar_t szMessage[260];  ///< the service's own words
};

/// The ports of a device's web server, filled by PeltAPIGetServicePorts. 0 is a port that isn't mapped.
struct _CLOUD_SERVICE_PORTS {
    int32_t nInternalHttpPort;
    int32_t nInternalHttpsPort;
    int32_t nExternalHttpPort;
    int32_t nExternalHttpsPort;
};

/// Progress of a transfer, asked for a verdict: 0 goes on, 1 stops.
///
/// Other verdicts stop as well and mean something else: 2 says that the data can't be trusted (13 or -31),
/// and from 3 on a **download that was stopped reports success**. Use 0 and 1. After a 1 the callback may be
/// called once more; it must say 1 again, for a 0 would take it back.
///
/// @param llTotalFileSize          bytes of the whole file, as the caller gave or the call found them
/// @param llTotalBytesTransferred  bytes done, counted from the start of the file; a resumed download begins
///                                 at its offset
/// @param llStreamSize             as llTotalFileSize
/// @param llStreamBytesTransferred as llTotalBytesTransferred
/// @param dwStreamNumber           1; 0 in the closing call of an upload
/// @param dwCallbackReason         1 in the opening call, else 0
/// @param hSourceFile              null
/// @param hDestinationFile         null
/// @param lpData                   the pointer that was passed to the call; may be null
///
/// All calls come on the thread that runs the transfer, in this order:
///
/// | Call     | Arguments 5, 6 | When                                              | A verdict of 1      |
/// |----------|----------------|---------------------------------------------------|---------------------|
/// | opening  | 1, 1           | once the request is issued, with 0 bytes done     | upload: ends it     |
/// | progress | 1, 0           | as file bytes pass                                | aborts the transfer |
/// | closing  | 0, 0           | uploads, after the reply; not before a next slice | plain upload: 1235  |
///
/// A download isn't ended by the opening call: it begins, and the next verdict replaces that one. The closing
/// call comes when all file bytes went out or the exchange failed, not after a stop; its verdict should be 0,
/// or else WFMUploadFilewithHandle reports 1235 although the file may be there.
///
/// The callback doesn't run while nothing moves, so it can't stop a transfer whose peer went silent. It must
/// not block for long, and must not throw.
typedef uint32_t (*WFMProgressCallback)(int64_t llTotalFileSize, int64_t llTotalBytesTransferred,
                                        int64_t llStreamSize, int64_t llStreamBytesTransferred,
                                        uint32_t dwStreamNumber, uint32_t dwCallbackReason, void* hSourceFile,
                                        void* hDestinationFile, void* lpData);

extern "C" {

/// @name Start, end and log
/// One logger serves both families, WFM and WFMShare. Lines go to Qt's debug output and, once a file is set,
/// to that file, from a thread of their own: calls never wait for the disk. A line reads "[14:03:22] [Error]
/// [WFM] WFMGetVersion: WFM_PARSE_XML_FAIL"; a failed call leaves two, the reason and a summary, with server,
/// port and paths in them. All calls of this group return 0, run on any thread and need no
/// `QCoreApplication`.
/// @{

/// Opens the log. Optional: without it, errors go to debug output only.
/// @param level      mask, not a threshold: the sum of 1 trace, 2 performance, 4 debug, 8 info, 16 warning,
///                   32 error. 63 is everything, 32 the default, 0 nothing
/// @param logDir     existing folder, with or without "/" at its end, for "TorviWFMLibLog.log"; empty means
///                   "/". Ignored unless logToFile
/// @param logToFile  false leaves the file as it is, set or not
/// @param append     false empties the file first
/// @return 0, also if the file can't be opened: lines then go to debug output only
///
/// Twice: the level is the last one set; the file is the first one named, opened or not, by either family,
/// until WFMUnInitialization. The file isn't bounded: see WFMReOpenLogFile and WFMClearLog. Next: a login,
/// such as TorviLogin.
TORVIAPI_EXPORT uint32_t WFMInitialization(uint32_t level, QString logDir, bool logToFile, bool append);

/// Writes every line posted so far and, to a file that took any, "===============Finish
/// Logging================"; closes the file and ends the logger's thread. To be called when no other call
/// runs; the last call of a program.
/// @return 0
///
/// Twice, or together with WFMShareUnInitialization in either order, or never: safe. A call that comes later
/// all the same doesn't crash; it logs errors to debug output until the next WFMInitialization.
TORVIAPI_EXPORT uint32_t WFMUnInitialization();

/// Sets the level mask.
/// @param level  as for WFMInitialization
/// @return 0
///
/// Takes effect with the next line, on all threads. Twice: safe.
TORVIAPI_EXPORT uint32_t WFMUpdateDebugLevel(uint32_t level);

/// Closes the log file and opens it again under its name: the second half of a rotation, after the file was
/// renamed. Does nothing without a file.
/// @return 0
///
/// Twice: safe.
TORVIAPI_EXPORT uint32_t WFMReOpenLogFile();

/// Empties the log file. Lines on their way are written behind it. Does nothing without a file.
/// @return 0
///
/// Twice: safe.
TORVIAPI_EXPORT uint32_t WFMClearLog();

/// @}
/// @name Sessions as records
/// These calls send nothing and need no `QCoreApplication`.
/// @{

/// Makes a deep copy of a session for another thread. Both share one session on the server: a logout ends it
/// for all of them.
/// @param source  not null; only read
/// @param clone   receives the copy, to be freed by WFMFreeAuthContext; not null. Set it to null before the
///                call: it is written on success alone, and **it is what tells success, not the return
///                value**
/// @return see below
///
/// | Return | *clone    | When                                             |
/// |--------|-----------|--------------------------------------------------|
/// | 1      | the clone | success; the one function whose success isn't 0  |
/// | 1      | untouched | a null argument                                  |
/// | 0      | untouched | the source has no session id, or memory is short |
///
/// Team lists are copied up to their first null or empty entry. Twice: makes two clones. Next: the thread's
/// calls, then WFMFreeAuthContext. A clone outlives its source.
TORVIAPI_EXPORT uint32_t WFMCloneAuthContext(const _WFM_AUTH_CONTEXT* source, _WFM_AUTH_CONTEXT** clone);

/// Frees a session record and all it holds. Sends nothing: the session goes on at the server until
/// TorviLogout.
/// @param context  may be null
/// @return 0
///
/// Twice on the same record: not safe. Not while a call uses it.
TORVIAPI_EXPORT uint32_t WFMFreeAuthContext(_WFM_AUTH_CONTEXT* context);

/// Replaces the team folders of a session. Their entries run in parallel: index i of each list is one folder.
/// @param context          not null; not while another thread uses it
/// @param count            entries in each list; below 1 clears the session's lists
/// @param oriPaths         paths as the client sees them, "/home/.Torvi/<name>/". **The "/" at the end is
///                         needed**, or the entry matches its neighbours too. Null clears
/// @param teamFolderPaths  paths as the server has them, "vtf://<place>/", with "/" at the end. Null clears
/// @param slaveIDs         the cluster node of each folder, all non-empty. May be null only if the session
///                         has no slave id of its own (WFMGetSlaveID); otherwise null clears
/// @return see below
///
/// | Return          | When                                   |
/// |-----------------|----------------------------------------|
/// | 0               | replaced, or cleared                   |
/// | 8               | no context                             |
/// | 0xFFFFFFFF (-1) | memory is short; the lists are cleared |
///
/// Texts are copied; each list is read up to its first null or empty entry, later folders are then not
/// mapped. If one entry's path is the beginning of another's, the one that stands earlier wins. Clones made
/// before keep the old lists. Twice: the last call counts. Next: WFMGetNodeList on "/home/.Torvi", which
/// shows the folders.
TORVIAPI_EXPORT uint32_t WFMUpdateTeamFolderInfo(_WFM_AUTH_CONTEXT* context, int32_t count,
                                                 wchar_t** oriPaths, wchar_t** teamFolderPaths,
                                                 wchar_t** slaveIDs);

/// Tells which service the session speaks.
/// @param context     not null
/// @param useNuboCGI  receives true for the sync service (TorviLogin), false for the web file manager; not
///                    null
/// @return 0, or 87 for a null argument
///
/// Twice: safe.
TORVIAPI_EXPORT uint32_t WFMGetUseNuboCGI(const _WFM_AUTH_CONTEXT* context, bool* useNuboCGI);

/// Copies the slave id of the session's own node; empty outside a cluster.
/// @param context   not null
/// @param capacity  in: wide characters in `buffer`, terminator included, not 0; 260 is always enough. Out:
///                  only with 122, what is needed. Not null
/// @param buffer    receives the id with its terminator; not null
/// @return see below
///
/// | Return | When                                                           |
/// |--------|----------------------------------------------------------------|
/// | 0      | copied; an empty id is a success too                           |
/// | 87     | a null argument, or a capacity of 0                            |
/// | 122    | too small; the buffer is untouched, *capacity is what it takes |
///
/// Twice: safe.
TORVIAPI_EXPORT uint32_t WFMGetSlaveID(const _WFM_AUTH_CONTEXT* context, uint32_t* capacity, wchar_t* buffer);

/// Copies the session id. Whoever has it has the session: keep it out of logs.
/// @param context   not null
/// @param capacity  as for WFMGetSlaveID; 260 is enough but for a session made from a longer token
/// @param buffer    receives the id with its terminator; not null
/// @return as WFMGetSlaveID
///
/// Twice: safe.
TORVIAPI_EXPORT uint32_t WFMGetSid(const _WFM_AUTH_CONTEXT* context, uint32_t* capacity, wchar_t* buffer);

/// @}

/// Whether this machine has a network at all: an interface that is up, isn't the loopback and has an address.
/// Sends nothing, and doesn't tell whether any server can be reached; WFMGetVersion does. Writes the
/// interfaces that it looks at to debug output. Twice: safe, on any thread. Next: WFMGetNASUserUID.
/// @return true if there is one
TORVIAPI_EXPORT bool IsNetworkAlive();

/// @name Calls without a session
/// @{

/// Asks a server for its version. Needs no session: the cheapest way to see whether a server is there.
/// @param server,port    where; not null or empty, not 0
/// @param agentName      null or empty takes "VEXAWebFileMan"
/// @param secure         HTTPS
/// @param proxyMode,proxyHost,proxyUser,proxyPassword,forwardedFor,reserved  as in the file comment
/// @param resultWord     not null
/// @param version        not null; zeroed first, filled when both numbers are 0
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                |
/// |----------|-------------|-----------------------------------------------------|
/// | 0        | 0           | version and build are filled                        |
/// | 0        | 50          | the server tells no version or no build: not usable |
/// | 10       | -1          | HTTP 404: not such a server                         |
/// | 14       | -1          | something else answers at this port                 |
///
/// Time-out 60 seconds. Twice: safe. Next: TorviLogin.
TORVIAPI_EXPORT uint32_t WFMGetVersion(const wchar_t* server, uint32_t port, const wchar_t* agentName,
                                       bool secure, uint32_t proxyMode, const wchar_t* proxyHost,
                                       const wchar_t* proxyUser, const wchar_t* proxyPassword,
                                       const wchar_t* forwardedFor, uint64_t reserved, uint32_t* resultWord,
                                       _WFM_VERSION_INFORMATION* version);

/// Opens a session at the sync service and makes its context. The password travels as base64, not hashed: use
/// `secure`, and know that the certificate isn't verified.
/// @param server,port         where; not null or empty, not 0
/// @param user                not null or empty
/// @param password            not null; may be empty
/// @param secure              HTTPS, for this and all later calls of the session
/// @param computerName        name of the client machine; not null or empty
/// @param uid                 identity of the client installation, the same at each login; not null or empty
/// @param agentName           kept for all calls, 259 characters at most. Null or empty takes a default here,
///                            but **WFMGetNodeList then refuses with 8**: give one
/// @param deviceType          the server's number for the kind of client; sent as given
/// @param serverNameCapacity  wide characters in serverName, not 0; 260 is always enough
/// @param proxyMode,proxyHost,proxyUser,proxyPassword,forwardedFor  as in the file comment; kept for all
///           calls, each text if it has 259 characters at most
/// @param clientVersion       version of the client; not null or empty
/// @param reserved1,reserved2 0
/// @param timeoutMs           milliseconds; null or a 0 takes 15000
/// @param useFcgi             true if the server has "torvisrv.fcgi"; kept for the calls that can use it
/// @param serverName          receives the server's name; not null. Untouched on failure, and when the name
///                            doesn't fit: put an empty text into it first
/// @param isAdmin             receives whether the user is an administrator; false on failure. Not null
/// @param isSlave             receives whether the node has a slave id, that is, is one of a cluster; false
///                            on failure. Not null
/// @param resultWord          receives why; client codes. Not null
/// @param context             receives the session, to be freed by WFMFreeAuthContext. Untouched on failure;
///                            not null
/// @param network             may be null. Filled whatever came of it, unless the call was refused with 8
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                                          |
/// |----------|-------------|-------------------------------------------------------------------------------|
/// | 0        | 0           | logged in                                                                     |
/// | 0        | -37         | logged in at a cluster node that isn't ready                                  |
/// | 14       | -8          | HTTP 302: call again with `secure` and the HTTPS port                         |
/// | 14       | -37         | the node isn't ready; `network` has addresses of the others                   |
/// | 14       | -40         | the node takes no logins                                                      |
/// | 14       | 0           | accepted, but without a session id that can be used                           |
/// | 14       | other       | **refused, as with a wrong password: the client code of the server's status** |
/// | 10       | -1          | HTTP 404: call again without useFcgi, or this server has no sync service      |
/// | 6        | -1          | also a reply that isn't understood                                            |
///
/// Twice: opens a second session at the server and overwrites *context; log out and free the first. Next:
/// WFMUpdateTeamFolderInfo; WFMGetNodeList; in the end TorviLogout and WFMFreeAuthContext.
TORVIAPI_EXPORT uint32_t TorviLogin(const wchar_t* server, int32_t port, const wchar_t* user,
                                    const wchar_t* password, bool secure, const wchar_t* computerName,
                                    const wchar_t* uid, const wchar_t* agentName, uint32_t deviceType,
                                    uint32_t serverNameCapacity, uint32_t proxyMode, const wchar_t* proxyHost,
                                    const wchar_t* proxyUser, const wchar_t* proxyPassword,
                                    const wchar_t* forwardedFor, const wchar_t* clientVersion,
                                    uint64_t reserved1, const uint32_t* timeoutMs, bool useFcgi,
                                    wchar_t* serverName, bool* isAdmin, bool* isSlave, uint32_t* resultWord,
                                    _WFM_AUTH_CONTEXT** context, uint64_t reserved2,
                                    _WFM_NETWORK_INFORMATION* network);

/// Tells whether a candidate address really is a certain server, by asking it for its identity. Lines of the
/// log are at level 4: a probe that fails is routine.
/// @param server,port  the candidate; not null or empty, not 0
/// @param reserved     0
/// @param secure       HTTPS
/// @param user         not null or empty
/// @param uid          the server's identity (_NAS_USER_UID_INFORMATION::szUID), in whatever case; null or
///                     empty takes **anything that answers with a text**, a redirect's page too
/// @param agentName    null or empty takes "VEXAWebFileMan"
/// @param proxyMode,proxyHost,proxyUser,proxyPassword,forwardedFor  as in the file comment
/// @param otherAgentName  goes before agentName; null or empty: none
/// @param timeoutMs    of each request, in milliseconds; 0 takes 3000
/// @return `dwStatus`
///
/// | dwStatus | When                                                         |
/// |----------|--------------------------------------------------------------|
/// | 0        | it is                                                        |
/// | 10       | HTTP 404 at both places: neither service is there            |
/// | 14       | it isn't, or what answers isn't such a server, or is nothing |
///
/// A server without the sync service is asked a second time, at the old place, with the whole time-out again.
/// There is no result word. Twice: safe. Next: a login there.
TORVIAPI_EXPORT uint32_t WFMValidIP(const wchar_t* server, uint32_t port, uint64_t reserved, bool secure,
                                    const wchar_t* user, const wchar_t* uid, const wchar_t* agentName,
                                    uint32_t proxyMode, const wchar_t* proxyHost, const wchar_t* proxyUser,
                                    const wchar_t* proxyPassword, const wchar_t* forwardedFor,
                                    const wchar_t* otherAgentName, uint32_t timeoutMs);

/// Asks a server who it is, before any login: the first call to a server that one knows the address of.
/// @param server,port  where; not null or empty, not 0
/// @param tlsPort      where to go if the server insists on HTTPS (302); 0: nowhere
/// @param secure       HTTPS
/// @param user         not null or empty
/// @param agentName    null or empty takes "VEXAWebFileMan"
/// @param proxyMode,proxyHost,proxyUser,proxyPassword,forwardedFor  as in the file comment
/// @param timeoutMs    of each request, in milliseconds; null or a 0 takes 15000
/// @param cancel       read before each request; may be null
/// @param information  not null; zeroed first, filled when `dwStatus` is 0
/// @return `dwStatus`
///
/// | dwStatus | When                                       |
/// |----------|--------------------------------------------|
/// | 0        | `information` is filled                    |
/// | 10       | HTTP 404 at both places: not such a server |
/// | 6        | also 302, over HTTPS or without a tlsPort  |
/// | 2        | also cancelled                             |
/// | 14       | something else answers at this port        |
///
/// It asks at the sync service's place, then at the old one, and a server that has the sync service after all
/// once more at the first: up to four requests, and one more after a 302. There is no result word. Twice:
/// safe. Next: TorviLogin if bNuboCGI, otherwise WFMLogin.
TORVIAPI_EXPORT uint32_t WFMGetNASUserUID(const wchar_t* server, uint32_t port, uint32_t tlsPort, bool secure,
                                          const wchar_t* user, const wchar_t* agentName, uint32_t proxyMode,
                                          const wchar_t* proxyHost, const wchar_t* proxyUser,
                                          const wchar_t* proxyPassword, const wchar_t* forwardedFor,
                                          const uint32_t* timeoutMs, bool* cancel,
                                          _NAS_USER_UID_INFORMATION* information);

/// Opens a session at the web file manager, the older service: the way in for a server without the sync
/// service, and the one login that tells of a second factor.
/// @param server,port         where; not null or empty, not 0
/// @param user                not null or empty
/// @param password            not null; may be empty. Travels as base64: use `secure`
/// @param secure              HTTPS, for this and all later calls of the session
/// @param computerName,uid    as for TorviLogin; if one of them is null or empty, the server is told of no
///                            device
/// @param agentName           as for TorviLogin
/// @param deviceType          the server's number for the kind of client; sent as given
/// @param serverNameCapacity  wide characters in serverName, not 0; 260 is always enough
/// @param proxyMode,proxyHost,proxyUser,proxyPassword  as in the file comment; kept for all calls, each text
///                            if it has 259 characters at most
/// @param forwardedFor        as in the file comment; for this call only
/// @param clientVersion       version of the client; may be null
/// @param reserved            0
/// @param timeoutMs           milliseconds; null or a 0 takes 15000
/// @param serverName          as for TorviLogin
/// @param isAdmin             receives whether the user is an administrator; false on failure. Not null
/// @param resultWord          not null
/// @param context             receives the session, to be freed by WFMFreeAuthContext. Untouched on failure;
///                            not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                                 |
/// |----------|-------------|----------------------------------------------------------------------|
/// | 0        | 0           | logged in                                                            |
/// | 14       | 16          | a security code is wanted: WFMLoginStep2                             |
/// | 14       | 17, 18      | another form of second step is wanted                                |
/// | 14       | 14          | an unknown form of second step is wanted                             |
/// | 14       | 19          | a second step is wanted, and the emergency tries are used up         |
/// | 14       | other       | **refused, as with a wrong password: the client code of the status** |
/// | 14       | -8          | HTTP 302: call again with `secure` and the HTTPS port                |
/// | 14       | 0           | accepted, but without a session id that can be used                  |
/// | 14       | -1          | also a reply that isn't understood                                   |
/// | 0        | client code | refused, yet a session came: log out and free it                     |
///
/// Twice: opens a second session and overwrites *context; log out and free the first. Next: as after
/// TorviLogin; in the end WFMLogout.
TORVIAPI_EXPORT uint32_t WFMLogin(const wchar_t* server, uint32_t port, const wchar_t* user,
                                  const wchar_t* password, bool secure, const wchar_t* computerName,
                                  const wchar_t* uid, const wchar_t* agentName, uint32_t deviceType,
                                  uint32_t serverNameCapacity, uint32_t proxyMode, const wchar_t* proxyHost,
                                  const wchar_t* proxyUser, const wchar_t* proxyPassword,
                                  const wchar_t* forwardedFor, const wchar_t* clientVersion,
                                  uint64_t reserved, const uint32_t* timeoutMs, wchar_t* serverName,
                                  bool* isAdmin, uint32_t* resultWord, _WFM_AUTH_CONTEXT** context);

/// Finishes a login that wants a second step, and makes its context.
/// @param server,port         where; not null or empty, not 0
/// @param user,password       as for WFMLogin, but not empty
/// @param isAnswer            true: `code` answers the security question; false: it is a security code
/// @param code                **sent raw**: it must be safe in a URL. Not null or empty
/// @param secure              HTTPS, for this and all later calls of the session
/// @param agentName           for this call only; null or empty takes a default
/// @param serverNameCapacity  wide characters in serverName, not 0; 260 is always enough
/// @param reserved1,reserved2 0
/// @param timeoutMs           milliseconds; null or a 0 takes 15000
/// @param serverName          as for TorviLogin
/// @param isAdmin             receives whether the user is an administrator; false on failure. Not null
/// @param resultWord          not null
/// @param context             receives the session, to be freed by WFMFreeAuthContext. Untouched on failure;
///                            not null. **It keeps no agent and no proxy**: see WFMSetProxyContext
/// @param reserved3           not null, and otherwise ignored
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                  |
/// |----------|-------------|-------------------------------------------------------|
/// | 0        | 0           | logged in                                             |
/// | 0        | 14, 19      | refused, yet a session came: log out and free it      |
/// | 14       | 14          | refused: the code is wrong                            |
/// | 14       | 19          | refused, and the emergency tries are used up          |
/// | 14       | -8          | HTTP 302: call again with `secure` and the HTTPS port |
/// | 14       | 0           | accepted, but without a session id that can be used   |
///
/// It goes without a proxy. Twice: a code is good for one login. Next: as after WFMLogin.
TORVIAPI_EXPORT uint32_t WFMLoginStep2(const wchar_t* server, uint32_t port, const wchar_t* user,
                                       const wchar_t* password, bool isAnswer, const wchar_t* code,
                                       bool secure, const wchar_t* agentName, uint32_t serverNameCapacity,
                                       uint64_t reserved1, uint64_t reserved2, const uint32_t* timeoutMs,
                                       wchar_t* serverName, bool* isAdmin, uint32_t* resultWord,
                                       _WFM_AUTH_CONTEXT** context, void* reserved3);

/// Fetches the user's security question, for WFMLoginStep2.
/// @param server,port    where; not null or empty, not 0
/// @param user,password  not null or empty
/// @param language       the server's name of a language, sent raw; not null or empty
/// @param secure         HTTPS
/// @param capacity       of `question`, not 0
/// @param question       receives the question, padded with zeros; untouched unless 0 comes back. **One as
///                       long as the capacity or longer has no terminator**: make the buffer one character
///                       longer than `capacity` says, and end it yourself. Not null
/// @return `dwStatus`; 14: there is no question, or HTTP 302
///
/// No proxy, no result word; time-out 15 seconds. Twice: safe. Next: WFMLoginStep2.
TORVIAPI_EXPORT uint32_t WFM2SVGetQuestion(const wchar_t* server, uint32_t port, const wchar_t* user,
                                           const wchar_t* password, const wchar_t* language, bool secure,
                                           uint32_t capacity, wchar_t* question);

/// Asks the server to mail an emergency code to the user.
/// @param server,port    where; not null or empty, not 0
/// @param user,password  not null or empty
/// @param secure         HTTPS
/// @return `dwStatus`; 0: the server has answered. **A mail that it refused isn't reported**, nor is a 302 to
///         HTTPS, which sent none
///
/// No proxy, no result word; time-out 15 seconds. Twice: two mails; tries are counted. Next: WFMLoginStep2.
TORVIAPI_EXPORT uint32_t WFM2SVSendEmail(const wchar_t* server, uint32_t port, const wchar_t* user,
                                         const wchar_t* password, bool secure);

/// Makes a session from a token that the server issued earlier, as a session id is one. The sync service
/// only.
/// @param server,port         where; not null or empty, not 0
/// @param secure              HTTPS, for this and all later calls of the session
/// @param token               becomes the session id; sent as given. Not null or empty
/// @param slaveID             null, or the node to ask
/// @param agentName           as for TorviLogin
/// @param ownSlaveID          null, or the slave id that the session gets
/// @param serverNameCapacity  wide characters in serverName, not 0; 2048 is always enough
/// @param proxyMode,proxyHost,proxyUser,proxyPassword,forwardedFor  as for TorviLogin
/// @param isCluster           ignored
/// @param resultWord          not null
/// @param serverName          as for TorviLogin
/// @param isAdmin             receives whether the user is an administrator; false on failure. Not null
/// @param context             receives the session, to be freed by WFMFreeAuthContext. Untouched on failure;
///                            not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                             |
/// |----------|-------------|------------------------------------------------------------------|
/// | 0        | 0           | `context` is the session                                         |
/// | 0        | -38         | refused: the server's status 7                                   |
/// | 0        | -39         | refused: the server insists on HTTPS                             |
/// | 0        | -2          | refused otherwise: the token is no good. Log in                  |
/// | 14       | 0           | accepted, but without a server's name, or without the admin flag |
/// | 87       | untouched   | a bad argument, in place of 8                                    |
///
/// Time-out 30 seconds. Twice: a second context of the same session. Next: as after TorviLogin.
TORVIAPI_EXPORT uint32_t TorviActivateSid2(const wchar_t* server, uint32_t port, bool secure,
                                           const wchar_t* token, const wchar_t* slaveID,
                                           const wchar_t* agentName, const wchar_t* ownSlaveID,
                                           uint32_t serverNameCapacity, uint32_t proxyMode,
                                           const wchar_t* proxyHost, const wchar_t* proxyUser,
                                           const wchar_t* proxyPassword, const wchar_t* forwardedFor,
                                           bool isCluster, uint32_t* resultWord, wchar_t* serverName,
                                           bool* isAdmin, _WFM_AUTH_CONTEXT** context);

/// @}

/// Ends a session at the server, for the context and all its clones. The context is neither changed nor
/// freed.
/// @param server,port  where; not null or empty, not 0
/// @param force        false: a context with a slave id sends nothing, for it shares its session with the
///                     master, whose logout ends it. True: log out all the same
/// @param context      not null
/// @return `dwStatus`
///
/// | dwStatus | When                                                               |
/// |----------|--------------------------------------------------------------------|
/// | 0        | logged out; or a slave's context without `force`: nothing was sent |
/// | 14       | the server refused or wasn't understood; the session may live on   |
///
/// There is no result word. Time-out 30 seconds. Twice: harmless, the second mostly gives 14. Next:
/// WFMFreeAuthContext, whatever came back.
TORVIAPI_EXPORT uint32_t TorviLogout(const wchar_t* server, uint32_t port, bool force,
                                     _WFM_AUTH_CONTEXT* context);

/// Ends a session at the web file manager, for the context and all its clones. The context is neither changed
/// nor freed.
/// @param server,port  where; not null or empty, not 0
/// @param force        as for TorviLogout
/// @param context      not null; null gives 8 without a line in the log
/// @return `dwStatus`; 0 also when nothing was sent; 14: the server refused, or wasn't understood
///
/// There is no result word. Time-out 30 seconds. Twice: harmless, the second mostly gives 14. Next:
/// WFMFreeAuthContext, whatever came back.
TORVIAPI_EXPORT uint32_t WFMLogout(const wchar_t* server, uint32_t port, bool force,
                                   _WFM_AUTH_CONTEXT* context);

/// Checks the session's id as a token, at a node of the cluster.
/// @param server,port  where; not null or empty, not 0
/// @param context      a session with a slave id; not null
/// @param slaveID      null, or the node to ask
/// @param resultWord   not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                   |
/// |----------|-------------|--------------------------------------------------------|
/// | 0        | 0           | the node takes the session                             |
/// | 0        | -38         | refused: the server's status 7                         |
/// | 0        | -39         | refused: the server insists on HTTPS                   |
/// | 0        | -2          | refused otherwise: the session is no good              |
/// | 87       | untouched   | a bad argument, in place of 8; also without a slave id |
///
/// Time-out 30 seconds. Twice: safe. Next: calls to that node.
TORVIAPI_EXPORT uint32_t TorviActivateSid(const wchar_t* server, uint32_t port, _WFM_AUTH_CONTEXT* context,
                                          const wchar_t* slaveID, uint32_t* resultWord);

/// Asks for the id of the system's own session.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID     ignored
/// @param resultWord  not null
/// @param capacity    wide characters in `sid`, 2048 is always enough; not changed. Not null
/// @param sid         receives the id with its terminator, maybe an empty one, when both numbers are 0;
///                    otherwise untouched. Not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                       |
/// |----------|-------------|----------------------------|
/// | 0        | 0           | `sid` is filled            |
/// | 0        | -23         | `sid` is too small         |
/// | 0        | -3          | refused                    |
/// | 0        | -1          | the server tells no status |
///
/// Twice: safe. Next: nothing that must be.
TORVIAPI_EXPORT uint32_t WFMGetSystemSid(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                         const wchar_t* slaveID, uint32_t* resultWord, uint32_t* capacity,
                                         wchar_t* sid);

/// Gives a session another proxy, for its next calls; its clones keep their own. Not while a call runs on it.
/// @param context  null, or one without a session id, is left alone
/// @param mode     0 none, 1 the system's, 2 manual; see proxyMode in the file comment
/// @param flags    kept and handed on, not read
/// @param host     "host:port"; not null. This and the next three are cut at 259; an empty one clears
/// @param bypass   kept and handed on, not read; not null
/// @param user     not null
/// @param password not null. **Stands in the context in clear**
/// @return 0 in every case
///
/// Twice: the last one counts. Next: any call; 11 from it says that the proxy refuses.
TORVIAPI_EXPORT uint32_t WFMSetProxyContext(_WFM_AUTH_CONTEXT* context, uint32_t mode, uint32_t flags,
                                            const wchar_t* host, const wchar_t* bypass, const wchar_t* user,
                                            const wchar_t* password);

/// Hands the proxy of one session that uses the system's (mode 1) on to another that does. Not while a call
/// runs on either.
/// @param destination  receives host and bypass list, those that aren't empty; null does nothing
/// @param source       unchanged; null does nothing
/// @param information  receives flags and texts, untouched if nothing is done; may be null
/// @return 1 if it was done, and if a context is null; 0 if the mode of either isn't 1
///
/// Twice: safe. Next: any call with `destination`.
TORVIAPI_EXPORT uint32_t WFMSetAutoProxyContext(_WFM_AUTH_CONTEXT* destination,
                                                const _WFM_AUTH_CONTEXT* source,
                                                _WFM_AUTO_PROXY_INFORMATION* information);

/// Whether the system's proxy of a session has changed. Nothing in the library sets it.
/// @param context  may be null
/// @return 0
///
/// Twice: safe. Next: none.
TORVIAPI_EXPORT uint32_t WFMAutoProxyContextUpdate(const _WFM_AUTH_CONTEXT* context);

/// @name Listing and stat
/// These calls change nothing on the server: calling twice is safe. Time-out 60 seconds each. Of the cancel
/// flags only WFMGetNodeList's is read.
/// @{

/// Lists a folder page by page, newest first. A listing of "/home/.Torvi" with folders in its type filter
/// begins with the session's team folders, as if they lay there.
/// @param context,server,port  the session and where; its agent name must not be empty, or else 8 (but see
///                    the team folders below)
/// @param slaveID     null, or the node to ask
/// @param pattern     names to keep, "*" and "?" are wild, upper and lower case are the same; "*" keeps all.
///                    Works on this side, page by page: it saves no traffic. Not null or empty
/// @param path        the folder; a "/" in front is added. Not null or empty
/// @param typeFilter  sum of 1 files, 2 folders, 4 ask whether folders have children; not 0. The server is
///                    asked with 6 only, and the file manager never; team folders with 6 and 7, by a request
///                    for each
/// @param fieldMask   fields to fill, see _WFM_PATH_INFORMATION; not 0. Names need 0x20
/// @param cancel      may be null. Read when the page has come: a set flag gives 1235 and no list
/// @param limit       entries asked for, team folders included; not checked, give at least 1
/// @param wantSort    true sorts by time, newest first; false takes the server's order
/// @param resultWord  not null
/// @param total       receives the number of entries of all pages before the pattern; may be null
/// @param start       in: entries to skip, 0 at first. Out: what the next page passes. Not null
/// @param count       receives the records of this page, 0 on failure; not null
/// @param teamIndex,teamCount  the listing's memory of the team folders between pages: 0 at first, then left
///                             alone. Not null
/// @param list        receives the records, to be freed as the file comment shows; null if there are none.
///                    Not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                                  |
/// |----------|-------------|-----------------------------------------------------------------------|
/// | 0        | 0           | `count` records                                                       |
/// | 0        | 18          | no more files: an empty folder, **or one that is refused, see below** |
/// | 0        | -1          | the page has nothing that the filters keep; more pages may follow     |
/// | any      | 1235        | the cancel flag is set                                                |
/// | 2        | 1231        | not connected, and this machine has no network                        |
/// | 2        | 53          | not connected                                                         |
/// | 6        | -1          | also a type filter without 1 and 2                                    |
/// | 8        | -1          | the session has no agent name, and the page no team folders           |
///
/// **18 doesn't say that the folder is there and empty.** A missing or denied folder and a session that has
/// ended look the same; WFMGetPathInformation tells the first two (3 and 5), WFMGetFolderList the last
/// (1244).
///
/// Team folders at hand make a page a success even if the server's half of it failed, or couldn't be asked
/// for want of an agent name; the next page then tells. So go on until a page brings no news, rather than to
/// `total`:
///
///     uint32_t word, total, start = 0, count, teamIndex = 0, teamCount = 0;
///     for (;;) {
///         const uint32_t before = start + teamIndex;
///         _WFM_PATH_INFORMATION** list = nullptr;
///         const uint32_t status =
///             WFMGetNodeList(session, L"nas", 8080, nullptr, L"*", L"/Public", 3, 0x3b, nullptr, 500, true,
///                            &word, &total, &start, &count, &teamIndex, &teamCount, &list);
///         if (status != 0 || (word != 0 && word != 0xFFFFFFFF)) break;  // failed, or 18: the end
///         for (uint32_t i = 0; i < count; ++i) {
///             std::wcout << list[i]->szPathName << L'\n';
///             delete list[i];
///         }
///         delete[] list;
///         if (start + teamIndex == before) break;  // the end
///     }
///
/// Entries that come or go between two pages shift the rest: an entry may show twice or be missed. Twice:
/// safe; the same page anew needs the same start, teamIndex and teamCount. Next: the transfers, with path and
/// name.
TORVIAPI_EXPORT uint32_t WFMGetNodeList(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                        const wchar_t* slaveID, const wchar_t* pattern, const wchar_t* path,
                                        uint32_t typeFilter, uint32_t fieldMask, bool* cancel, uint32_t limit,
                                        bool wantSort, uint32_t* resultWord, uint32_t* total, uint32_t* start,
                                        uint32_t* count, uint32_t* teamIndex, uint32_t* teamCount,
                                        _WFM_PATH_INFORMATION*** list);

/// Lists the folders in a node of the server's folder tree, all at once. Team folders aren't mapped.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID     null, or the node to ask
/// @param fieldMask   0x01, 0x08, 0x10 and 0x20 count here
/// @param node        the server's name of the node: a path, or "share_root" for the shares. Not null or
///                    empty
/// @param cancel      not read; may be null
/// @param resultWord  not null
/// @param count       receives the number of records; not null
/// @param list        receives the records, to be freed as the file comment shows; null if there are none.
///                    Not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                          |
/// |----------|-------------|---------------------------------------------------------------|
/// | 0        | 0           | the folders, maybe none; also if the server refused otherwise |
/// | 0        | 5           | access denied                                                 |
/// | 0        | 1244        | the session has ended: log in again                           |
///
/// Twice: safe. Next: WFMGetFolderList on a child, or TorviLogin after 1244.
TORVIAPI_EXPORT uint32_t WFMGetFolderList(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                          const wchar_t* slaveID, uint32_t fieldMask, const wchar_t* node,
                                          bool* cancel, uint32_t* resultWord, uint32_t* count,
                                          _WFM_PATH_INFORMATION*** list);

/// Looks for one folder in its parent's listing of folders. The way to ask for a share; files are not found.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID         null, or the node to ask
/// @param parent          "/" for the shares; a "/" in front is added. Not null or empty
/// @param name            the folder's name, the case counts; a "/" in front is cut. Not null or empty
/// @param fieldMask       0x01, 0x08, 0x10 and 0x20 count here
/// @param serverSidePath  true: `parent` is a "vtf://" path already and isn't mapped
/// @param cancel          not read; may be null
/// @param resultWord      not null
/// @param information     may be null; zeroed first, filled when both numbers are 0
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                     |
/// |----------|-------------|----------------------------------------------------------|
/// | 0        | 0           | found                                                    |
/// | 0        | 3           | no such folder, or the server refused for another reason |
/// | 0        | 5           | access denied                                            |
///
/// Twice: safe. Next: WFMGetNodeList to list it.
TORVIAPI_EXPORT uint32_t WFMGetFolderInformation(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                 uint32_t port, const wchar_t* slaveID, const wchar_t* parent,
                                                 const wchar_t* name, uint32_t fieldMask, bool serverSidePath,
                                                 bool* cancel, uint32_t* resultWord,
                                                 _WFM_PATH_INFORMATION* information);

/// Tells what one path is: the stat call. **`name` comes before `parent`.**
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID         null, or the node to ask
/// @param name            leaf name, the case counts; not null or empty
/// @param parent          its folder; a "/" in front is added. Not null or empty
/// @param fieldMask       fields to fill, not 0; 0x40 and 0x200 have no effect here. 0x80 or 0x100 ask for
///                        the privilege, 0x100 also whether an upload to the path would be allowed
/// @param typeFilter      1 files, 2 folders, 3 or 0 either
/// @param serverSidePath  true: `parent` is a "vtf://" path already and isn't mapped
/// @param cancel          not read; may be null
/// @param resultWord      not null
/// @param information     not null; zeroed first, nPrivilegeEx -1
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                                         |
/// |----------|-------------|------------------------------------------------------------------------------|
/// | 0        | 0           | found, `information` is filled                                               |
/// | 0        | 3           | no such path, or not of this type; in a team folder also: access denied      |
/// | 0        | 5           | access denied                                                                |
/// | 0        | -1          | refused otherwise, as when the session has ended                             |
/// | 14       | -1          | also a reply with no entry, a field mask of 0, a type filter without 1 and 2 |
///
/// With field mask 0x100 nPrivilegeEx is filled with 3 too, if the reply has an entry of that name that says
/// that it isn't there: it tells whether the path could be made. Shares, as "/Public", are asked for with
/// WFMGetFolderInformation. Twice: safe. Next: a transfer, or WFMGetFolderSize.
TORVIAPI_EXPORT uint32_t WFMGetPathInformation(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                               uint32_t port, const wchar_t* slaveID, const wchar_t* name,
                                               const wchar_t* parent, uint32_t fieldMask, uint32_t typeFilter,
                                               bool serverSidePath, bool* cancel, uint32_t* resultWord,
                                               _WFM_PATH_INFORMATION* information);

/// Tells whether a path is a folder.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID      null, or the node to ask
/// @param path         folder and name together, no "/" at the end; not null or empty
/// @param cancel       not read; may be null
/// @param resultWord   not null
/// @param isDirectory  false until proven; not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                              |
/// |----------|-------------|-------------------------------------------------------------------|
/// | 0        | 0           | an answer: `isDirectory`                                          |
/// | 0        | 3           | no such path                                                      |
/// | 0        | 5           | access denied                                                     |
/// | 0        | -1          | refused otherwise, as when the session has ended                  |
/// | 8        | -1          | a share, as "/Public" (use WFMIsPathPresent), or a "/" at the end |
/// | 14       | -1          | also a reply with no entry                                        |
///
/// Twice: safe. Next: WFMGetNodeList for a folder, WFMDownloadFileToHandle for a file.
TORVIAPI_EXPORT uint32_t WFMIsPathDirectory(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                            const wchar_t* slaveID, const wchar_t* path, bool* cancel,
                                            uint32_t* resultWord, bool* isDirectory);

/// Tells whether a path is there, as the type that is asked for.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID         null, or the node to ask
/// @param path            folder and name together, no "/" at the end; a "/" in front is added. Not null or
///                        empty
/// @param wantFolder      true: a folder is looked for, false: a file. Shares, as "/Public", are looked for
///                        in either case
/// @param serverSidePath  true: `path` is a "vtf://" path already and isn't mapped. "vtf://S", a team
///                        folder's root, isn't found so: ask for it by its client-side path
/// @param cancel          not read; may be null
/// @param resultWord      not null
/// @param isPresent       false until proven; not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                               |
/// |----------|-------------|--------------------------------------------------------------------|
/// | 0        | 0           | present                                                            |
/// | 0        | 3           | not present, or of the other type; a share: also refused otherwise |
/// | 0        | 5           | access denied; a share is then present, another path is not proven |
/// | 0        | -1          | refused otherwise, a share excepted                                |
/// | 14       | -1          | also "/"                                                           |
/// | 14       | 0           | "/*": a share was found, under another name                        |
/// | 8        | -1          | also a "/" at the end                                              |
///
/// A session that has ended is refused otherwise, so that a share then looks as if it weren't there. A share
/// that the user may not enter counts as present. Twice: safe. Next: WFMCreateFile or an upload if it isn't.
TORVIAPI_EXPORT uint32_t WFMIsPathPresent(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                          const wchar_t* slaveID, const wchar_t* path, bool wantFolder,
                                          bool serverSidePath, bool* cancel, uint32_t* resultWord,
                                          bool* isPresent);

/// Adds up the bytes below a folder, on the server. **`name` comes before `parent`.**
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID     null, or the node to ask
/// @param name        leaf name; not null or empty
/// @param parent      its folder; a "/" in front is added. Not null or empty
/// @param cancel      not read; may be null
/// @param resultWord  not null
/// @param size        receives the bytes, when both numbers are 0; not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                                          |
/// |----------|-------------|-------------------------------------------------------------------------------|
/// | 0        | 0           | `size` is filled                                                              |
/// | 0        | 3           | no such path                                                                  |
/// | 0        | 5           | access denied                                                                 |
/// | 0        | 87          | the server's number is missing, empty, negative, or 2048 characters or longer |
/// | 0        | -1          | refused otherwise                                                             |
/// | 2        | -1          | also a server that adds for longer than 60 seconds                            |
///
/// The number is read as far as it goes: "7 bytes" is 7 and "abc" is 0, both with result word 0. Twice: safe,
/// but the server adds up anew.
TORVIAPI_EXPORT uint32_t WFMGetFolderSize(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                          const wchar_t* slaveID, const wchar_t* name, const wchar_t* parent,
                                          bool* cancel, uint32_t* resultWord, int64_t* size);

/// @}

/// Makes an empty file. **A file that is there already becomes empty**: ask WFMIsPathPresent first.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID     null, or the node to ask
/// @param path        folder and name together; not null or empty
/// @param cancel      not read; may be null
/// @param resultWord  not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                     |
/// |----------|-------------|----------------------------------------------------------|
/// | 0        | 0           | an empty file is there                                   |
/// | 0        | 5           | access denied                                            |
/// | 0        | 112         | quota used up                                            |
/// | 0        | -1          | refused otherwise                                        |
/// | 2, 6     | -1          | not known: the file may have been made                   |
/// | 14       | -1          | also any reply whose "success" isn't true, a refusal too |
///
/// A path that ends in "/", or is a team folder's root, has no name: the request then has an empty "Filename"
/// and no file, and what comes of it is up to the server. Time-out 60 seconds. Twice: empties the file again.
/// Next: WFMTorviUploadandMovewithHandle to fill it.
TORVIAPI_EXPORT uint32_t WFMCreateFile(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                       const wchar_t* slaveID, const wchar_t* path, bool* cancel,
                                       uint32_t* resultWord);

/// @name Changing the server's tree
/// A call that ends with 2 or 6 may have been carried out all the same: ask WFMIsPathPresent before it is
/// called again. Where a call carries a profile, the server compares it with the object first and does
/// nothing if they differ; take `time`, `size` and `isFolder` from a listing or WFMGetPathInformation.
/// @{

/// Makes a folder. Its parent must be there.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID     null, or the node to ask
/// @param parent      where; a "/" in front is added. Not null or empty
/// @param name        the new folder's name; not null or empty
/// @param cancel      not read; may be null
/// @param resultWord  not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                               |
/// |----------|-------------|----------------------------------------------------|
/// | 0        | 0           | the folder is there                                |
/// | 0        | 183         | there already; a team folder's root without asking |
/// | 0        | 3           | the parent isn't there                             |
/// | 0        | 206         | the name is too long                               |
/// | 0        | 5           | access denied                                      |
/// | 0        | -1          | refused otherwise, as when the session has ended   |
/// | 14       | -1          | also any reply whose "success" isn't true          |
///
/// Twice: 183. Next: WFMGetNodeList, or an upload into it.
TORVIAPI_EXPORT uint32_t WFMCreateFolder(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                         const wchar_t* slaveID, const wchar_t* parent, const wchar_t* name,
                                         bool* cancel, uint32_t* resultWord);

/// Deletes a file, or a folder with all that is in it.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID     null, or the node to ask
/// @param path        folder and name together, no "/" at the end; a "/" in front is added. Not null or empty
/// @param cancel      not read; may be null
/// @param resultWord  not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                                        |
/// |----------|-------------|-----------------------------------------------------------------------------|
/// | 0        | 0           | deleted, **or refused for a reason that isn't below**, as an ended session  |
/// | 0        | 2           | the server's status 0                                                       |
/// | 0        | 3           | no such path                                                                |
/// | 0        | 5           | access denied                                                               |
/// | 5        | -1          | nothing sent: a share, as "/Public", a team folder's root, a "/" at the end |
/// | 14       | -1          | also any reply whose "success" isn't true                                   |
///
/// Since refusals may pass as success, ask WFMIsPathPresent where it matters. Twice: 3. Next: none.
TORVIAPI_EXPORT uint32_t WFMDeletePath(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                       const wchar_t* slaveID, const wchar_t* path, bool* cancel,
                                       uint32_t* resultWord);

/// Deletes a path if it still is what the caller believes it to be.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID          null, or the node to ask
/// @param path             as for WFMDeletePath, but **with "/" in front**: the profile's path goes out as
///                         given
/// @param time             its time in seconds since the epoch; not 0, for folders too, whose time isn't
/// compared
/// @param size             its bytes; a folder's isn't compared
/// @param isFolder         whether it is a folder
/// @param cleanThumbnails  true: its thumbnails go too
/// @param cancel           not read; may be null
/// @param resultWord       not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                                 |
/// |----------|-------------|----------------------------------------------------------------------|
/// | 0        | 0           | deleted; a folder also at the server's verdict -40, that it has gone |
/// | 0        | 5           | access denied                                                        |
/// | 0        | 13          | it isn't what the caller believes: list it again                     |
/// | 0        | -1          | refused otherwise                                                    |
/// | 5        | -1          | nothing sent: a share, as "/Public", or a "/" at the end             |
/// | 14       | 50          | nothing sent: a team folder's root                                   |
/// | 14       | -1          | also any reply whose "success" isn't true                            |
///
/// Twice: 13 for a file, 0 for a folder. Next: WFMGetPathInformation after 13.
TORVIAPI_EXPORT uint32_t WFMDeletePathwithCheckProfile(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                       uint32_t port, const wchar_t* slaveID,
                                                       const wchar_t* path, int64_t time, int64_t size,
                                                       bool isFolder, bool cleanThumbnails, bool* cancel,
                                                       uint32_t* resultWord);

/// Sets a path's time of modification, and checks that it took. **`name` comes before `parent`.**
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID     null, or the node to ask
/// @param name        leaf name; not null or empty
/// @param parent      its folder, with "/" in front; not null or empty
/// @param time        seconds since the epoch; 0 is a time, one below 0 is never reported back (12)
/// @param cancel      not read; may be null
/// @param resultWord  not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                                        |
/// |----------|-------------|-----------------------------------------------------------------------------|
/// | 0        | 0           | the server reports the time back; **also status success without one entry** |
/// | 0        | 12          | the server reports another time                                             |
/// | 0        | client code | the server's status, and no entry or several: -4 no such path               |
/// | 14       | -3          | access denied                                                               |
/// | 14       | -1          | also a team folder's root, which the server may have changed                |
///
/// Time-out 30 seconds. Twice: safe. Next: none.
TORVIAPI_EXPORT uint32_t WFMSetFileTime(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                        const wchar_t* slaveID, const wchar_t* name, const wchar_t* parent,
                                        int64_t time, bool* cancel, uint32_t* resultWord);

/// Changes a name inside one folder. To another folder: WFMMovePath.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID     null, or the node to ask
/// @param oldPath     folder and name together, with "/" in front; one "/" at the end is cut. Not null or
/// empty
/// @param newPath     the same folder and the new name; one "/" at the end is cut. Not null or empty
/// @param cancel      not read; may be null
/// @param resultWord  not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                          |
/// |----------|-------------|---------------------------------------------------------------|
/// | 0        | 0           | renamed                                                       |
/// | 0        | 5003        | the new name is there already                                 |
/// | 0        | 5           | access denied                                                 |
/// | 0        | -1          | refused otherwise, as when the old path isn't there           |
/// | 5        | -1          | nothing sent: a share, as "/Public", or a path without a name |
/// | 87       | -1          | nothing sent: the folders differ                              |
/// | 14       | -1          | also any reply whose "success" isn't true                     |
///
/// The node is that of `oldPath`. Don't give a `newPath` without any "/": both texts then travel as names,
/// without a folder. Twice: refused. Next: none.
TORVIAPI_EXPORT uint32_t WFMRenamePath(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                       const wchar_t* slaveID, const wchar_t* oldPath, const wchar_t* newPath,
                                       bool* cancel, uint32_t* resultWord);

/// Renames a path if it still is what the caller believes it to be.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID     null, or the node to ask
/// @param oldPath     as for WFMRenamePath
/// @param newPath     as for WFMRenamePath
/// @param time        of the old path, in seconds since the epoch; not 0, for folders too
/// @param size        of the old path, in bytes; a folder's isn't compared
/// @param isFolder    whether it is a folder
/// @param cancel      not read; may be null
/// @param resultWord  not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                          |
/// |----------|-------------|---------------------------------------------------------------|
/// | 0        | 0           | renamed                                                       |
/// | 0        | 5003        | the new name is there already                                 |
/// | 0        | 5           | access denied                                                 |
/// | 0        | 13          | it isn't what the caller believes: list it again              |
/// | 0        | -1          | refused otherwise                                             |
/// | 14       | 5           | nothing sent: a share, as "/Public", or a path without a name |
/// | 14       | 87          | nothing sent: the folders differ                              |
/// | 14       | -1          | also any reply whose "success" isn't true                     |
///
/// Time-out 30 seconds. Twice: 13. Next: WFMGetPathInformation after 13.
TORVIAPI_EXPORT uint32_t WFMRenamePathwithCheckProfile(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                       uint32_t port, const wchar_t* slaveID,
                                                       const wchar_t* oldPath, const wchar_t* newPath,
                                                       int64_t time, int64_t size, bool isFolder,
                                                       bool* cancel, uint32_t* resultWord);

/// Carries a path into another folder, under its old name or a new one.
///
/// The server moves it as a job, which the call follows to its end, however long that takes; a new name is
/// then given by WFMRenamePath. **If that rename fails, the moved object is deleted, not moved back**: where
/// the deletion works it is then at neither path, else in the new folder under its old name. Make sure first
/// that the new name is free.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID      null, or the node to ask
/// @param source       folder and name together, with "/" in front; one "/" at the end is cut. Not null or
///                     empty
/// @param destination  the other folder and the name there; one "/" at the end is cut. Not null or empty
/// @param cancel       read between the questions for the job's progress; the job itself goes on. May be null
/// @param resultWord   not null
/// @return `dwStatus`
///
/// | dwStatus    | Result word | When                                                                          |
/// |-------------|-------------|-------------------------------------------------------------------------------|
/// | 0           | 0           | moved                                                                         |
/// | 0           | 5           | access denied; nothing moved                                                  |
/// | 0           | 3           | the job isn't known to the server: look at both paths                         |
/// | 0           | -1          | refused otherwise; the job can't be asked for; renaming refused, deleted      |
/// | any         | -1          | moved, and the renaming failed so: deleted, or not                            |
/// | 5           | -1          | nothing sent: a share, as "/Public", or a path without a name                 |
/// | 87          | -1          | nothing sent: one folder holds both (rename then), or no "/" in `destination` |
/// | 14          | -1          | also any reply without "success" true or a job                                |
/// | not 0, 5, 8 | -1, 3       | cancelled (14), or the job can't be followed: look at both paths              |
///
/// After -1 look at both paths, and in the new folder for the old name. The request goes to the node of
/// `source`, wherever `destination` lies; **the renaming and the deletion go to `slaveID`**, whatever node a
/// team folder lies on: give that node, or move without renaming. In the pauses between the questions
/// (500 ms, then 200 ms each) nothing else runs on the caller's thread. Twice: refused. Next: none.
TORVIAPI_EXPORT uint32_t WFMMovePath(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                     const wchar_t* slaveID, const wchar_t* source,
                                     const wchar_t* destination, bool* cancel, uint32_t* resultWord);

/// Moves a path if it still is what the caller believes it to be. On the sync service a file is moved inside
/// the request; a folder, and on the web file manager everything, is a job as for WFMMovePath.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID      null, or the node to ask
/// @param source       as for WFMMovePath
/// @param destination  as for WFMMovePath
/// @param time         of the source, in seconds since the epoch; not 0, for folders too
/// @param size         of the source, in bytes; a folder's isn't compared
/// @param isFolder     whether it is a folder
/// @param cancel       as for WFMMovePath
/// @param resultWord   not null
/// @return `dwStatus`
///
/// | dwStatus    | Result word | When                                                                          |
/// |-------------|-------------|-------------------------------------------------------------------------------|
/// | 0           | 0           | moved                                                                         |
/// | 0           | 5           | access denied; nothing moved                                                  |
/// | 0           | 13          | it isn't what the caller believes: list it again; nothing moved               |
/// | 0           | 3           | the job isn't known to the server: look at both paths                         |
/// | 0           | -1          | refused otherwise; the job can't be asked for; renaming refused, deleted      |
/// | any         | -1          | moved, and the renaming failed so: deleted, or not                            |
/// | 14          | 5           | nothing sent: a share, as "/Public", or a path without a name                 |
/// | 14          | 34          | nothing sent: different nodes, or just one end in a team folder with a node   |
/// | 14          | 87          | nothing sent: one folder holds both (rename then), or no "/" in `destination` |
/// | 14          | -1          | also any reply without "success" true or a job                                |
/// | not 0, 5, 8 | -1, 3       | cancelled (14), or the job can't be followed: look at both paths              |
///
/// A failed rename at the end deletes the moved object, as with WFMMovePath, and what is said there of -1 and
/// of the node holds here. Twice: 13. Next:
/// WFMGetPathInformation after 13.
TORVIAPI_EXPORT uint32_t WFMMovePathwithCheckProfile(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                     uint32_t port, const wchar_t* slaveID,
                                                     const wchar_t* source, const wchar_t* destination,
                                                     int64_t time, int64_t size, bool isFolder, bool* cancel,
                                                     uint32_t* resultWord);

/// @}

/// @name Jobs
/// What outlasts one request goes on as a job, which the server names by a number.
/// @{

/// Follows a job to its end, asking every 200 ms. **There is no limit of time**: only the job's end, a
/// failure and the cancel flag end the call.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID     null, or the node that runs the job
/// @param name        what is being moved, for the log; not null or empty
/// @param pid         the job
/// @param cancel      read before each question, the first too; the job itself goes on. May be null
/// @param resultWord  not null
/// @return `dwStatus`
///
/// | dwStatus     | Result word | When                                                                 |
/// |--------------|-------------|----------------------------------------------------------------------|
/// | 0            | 0           | the job has ended: the server said exactly 100 percent               |
/// | 0            | 3           | four answers without the job, all told; or it failed, or isn't there |
/// | 0            | -1          | refused, as when the session has ended; a reply that is no object    |
/// | 14           | -1, 3       | also cancelled; 3 if an answer before was without the job            |
/// | 2, 6, 11, 12 | -1, 3       | a question failed; 3 if an answer before was without the job         |
///
/// Time-out 30 seconds a question. In the pauses nothing else runs on the caller's thread. Twice: safe. Next:
/// WFMDeleteProgress on the web file manager.
TORVIAPI_EXPORT uint32_t WFMGetProgress(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                        const wchar_t* slaveID, const wchar_t* name, int32_t pid,
                                        bool* cancel, uint32_t* resultWord);

/// Starts to bring a deleted file back out of the recycle folder, as a job.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID      null, or the node to ask; nothing is mapped
/// @param mode         the server's number for how to bring it back; passed on as given
/// @param path         the folder in the recycle folder, as "/home/@Recycle/Photos"; not null or empty
/// @param file         its name; not null or empty
/// @param reserved     null
/// @param pid          receives the job's name, empty if the server names none, when `dwStatus` is 0 and the
///                     result word not -23; not null
/// @param pidCapacity  of `pid`, not 0; 2048 is always enough
/// @param resultWord   client codes; not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                                          |
/// |----------|-------------|-------------------------------------------------------------------------------|
/// | 0        | 0           | the job runs: `pid`, which is empty where the server names none               |
/// | 0        | other       | refused: the client code of the server's status                               |
/// | 0        | -23         | the job runs, and `pid` is too small for its name                             |
/// | 14       | -1          | also, nothing sent: it was deleted from a team folder that somebody else owns |
///
/// Twice: a second job. Next: WebFileManQueryProgress until it reports 100 percent.
TORVIAPI_EXPORT uint32_t WFMTrashRecovery(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                          const wchar_t* slaveID, uint32_t mode, const wchar_t* path,
                                          const wchar_t* file, void* reserved, wchar_t* pid,
                                          uint32_t pidCapacity, uint32_t* resultWord);

/// @}

/// @name State of the server
/// What a server says of itself to a session. Read-only, safe to call twice; none of them changes the server
/// but for the two signals.
/// @{

/// Asks for what doesn't change while the server runs.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID      null, or the node to ask
/// @param reserved     null
/// @param information  not null; zeroed first, filled when both numbers are 0
/// @param resultWord   receives the client code of the server's status; not null
/// @return `dwStatus`
///
/// Twice: safe.
TORVIAPI_EXPORT uint32_t WFMTorviGetNASStaticInfo(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                  uint32_t port, const wchar_t* slaveID, void* reserved,
                                                  _NAS_STATIC_INFORMATION* information, uint32_t* resultWord);

/// Asks what is in order for this user: home, databases, versions.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID      null, or the node to ask
/// @param checkDetail  true has the sync service look closely; the web file manager isn't told
/// @param cancel       not read; may be null
/// @param resultWord   receives the client code of the server's status; not null
/// @param information  not null; zeroed first, filled when both numbers are 0
/// @return `dwStatus`
///
/// Twice: safe.
TORVIAPI_EXPORT uint32_t WFMTorviGetNASStatus(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                              uint32_t port, const wchar_t* slaveID, bool checkDetail,
                                              bool* cancel, uint32_t* resultWord,
                                              _NAS_STATUS_INFORMATION* information);

/// Asks by which names and addresses the server can be reached.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param timeoutMs    milliseconds; 0 takes 60000
/// @param reserved1,reserved2  null
/// @param information  not null; zeroed first
/// @param resultWord   not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                                 |
/// |----------|-------------|----------------------------------------------------------------------|
/// | 0        | 0           | `information` is filled                                              |
/// | 0        | 8           | a text is too long and left out; the others and the ports are filled |
/// | 0        | -1          | refused; nothing is filled                                           |
///
/// A name or an address of 2048 characters or more reads as none.
///
/// Twice: safe. Next: WFMValidIP for each of them.
TORVIAPI_EXPORT uint32_t WFMGetDomainIPList(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                            uint32_t timeoutMs, void* reserved1, void* reserved2,
                                            _DOMAIN_IP_LIST_INFORMATION* information, uint32_t* resultWord);

/// Lists the folders that can be synced: of a single server with their sizes, of a cluster node by node and
/// without. A session with a slave id asks for the cluster's list, and always at the sync service.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param detail      true asks for details
/// @param refresh     true has the server look anew
/// @param cancel      not read; may be null
/// @param resultWord  receives the server's own status: 0 is success, -3 denied; -1 if it is -1. May be null
/// @param count       receives the number of records; not null
/// @param list        receives the records, to be freed as the file comment shows; null if there are none.
///                    **A refusal may come with a list**, too. Not null
/// @return `dwStatus`
///
/// A size beyond 64 bits wraps. Twice: safe, and a second list to free. Next: WFMTorviGetMaxLog.
TORVIAPI_EXPORT uint32_t WFMTorviGetNASSyncinFolderList(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                        uint32_t port, bool detail, bool refresh,
                                                        bool* cancel, uint32_t* resultWord, uint32_t* count,
                                                        _NAS_SYNCING_FOLDER_INFORMATION*** list);

/// Tells the server that a sync run begins.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param reserved    null
/// @param channel     the client's and the server's affair; sent as given
/// @param resultWord  0, or -1 if the server refuses; not null
/// @return `dwStatus`
///
/// Twice: signals twice. Next: WFMGetTorviSyncStop.
TORVIAPI_EXPORT uint32_t WFMGetTorviSyncStart(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                              uint32_t port, void* reserved, uint32_t channel,
                                              uint32_t* resultWord);

/// Tells the server that a sync run has ended.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param number      the client's and the server's affair; sent as given
/// @param reserved    null
/// @param resultWord  0, or -1 if the server refuses; not null
/// @return `dwStatus`
///
/// Twice: signals twice. Next: WFMTorviGetMaxLog, to hear of what comes after.
TORVIAPI_EXPORT uint32_t WFMGetTorviSyncStop(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                             uint32_t number, void* reserved, uint32_t* resultWord);

/// Asks when the server's tree last changed.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param reserved    null
/// @param time        receives seconds since the epoch, when both numbers are 0, otherwise 0; not null
/// @param resultWord  0, the server's own status if it refuses, or -1 if it knows no time; not null
/// @return `dwStatus`
///
/// Twice: safe. Next: WFMTorviGetMaxLog, if it is later than what one knew.
TORVIAPI_EXPORT uint32_t WFMGetTorviLastModifiedTime(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                     uint32_t port, void* reserved, int64_t* time,
                                                     uint32_t* resultWord);

/// Fetches the names that must not be synced, in one text as the server writes it. There is no result word.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID   null, or the node to ask
/// @param reserved  null
/// @param length    in: wide characters in `buffer`, 0 to ask for the length. Out: the length needed with its
///                  terminator, if it was too small; otherwise unchanged. Not null
/// @param buffer    receives the text, if it fits; untouched if there is none or it doesn't. **It must hold
///                  one character more than `length` says.** Not null
/// @return `dwStatus`; 0 in all of these cases
///
/// Twice: safe; the second call with the length that the first told.
TORVIAPI_EXPORT uint32_t WFMTorviGetVetoFiles(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                              uint32_t port, const wchar_t* slaveID, void* reserved,
                                              uint32_t* length, wchar_t* buffer);

/// Asks for the number of the newest change of several folders. Always at the sync service.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID     null, or the node to ask
/// @param reserved    null
/// @param record      question and answer; not null, with at least one folder, none null and each with a path
/// @param resultWord  receives the client code of the server's status; not null
/// @return `dwStatus`
///
/// All numbers of the record become -1 first; those that the server gives are filled when both numbers are 0.
/// Twice: safe. Next: WFMTorviGetSyncLog for the folders that have changed.
TORVIAPI_EXPORT uint32_t WFMTorviNuboGetMaxLog(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                               uint32_t port, const wchar_t* slaveID, void* reserved,
                                               _TORVI_MAX_LOG_INFORMATION* record, uint32_t* resultWord);

/// Asks for the number of the newest change, of one folder or of all.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID     null, or the node to ask
/// @param folder      null or empty: all
/// @param reserved    null
/// @param record      not null; all -1 first, filled when both numbers are 0
/// @param resultWord  receives the client code of the server's status; not null
/// @return `dwStatus`
///
/// Twice: safe. Next: WFMTorviGetSyncLog.
TORVIAPI_EXPORT uint32_t WFMTorviGetMaxLog(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                           const wchar_t* slaveID, const wchar_t* folder, void* reserved,
                                           _TORVI_MAX_LOG_NUMBERS* record, uint32_t* resultWord);

/// Fetches changes from a number on.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID        null, or the node to ask; counts together with a folder only
/// @param number         how many changes to ask for, not 0
/// @param lower          the number to begin at, sent as given; the server decides whether it is one of them
/// @param syncingFolder  null or empty: all
/// @param reserved       null
/// @param count          in: records in `list`, not 0. Out: records filled. Not null
/// @param list           the caller's records, each allocated by the caller; not null
/// @param isEnd          receives whether there is no more; false unless the result word is 0 or -23; not
///                       null
/// @param resultWord     not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                                   |
/// |----------|-------------|------------------------------------------------------------------------|
/// | 0        | 0           | `count` records are filled, maybe none                                 |
/// | 0        | -23         | more came than the list holds, or a null is in it; `count` were filled |
/// | 0        | other       | refused: the server's own status                                       |
///
/// Twice: safe, but set `count` to what the list holds before each call: 0 is refused. Next: the same from
/// the last llLogID on, until isEnd.
TORVIAPI_EXPORT uint32_t WFMTorviGetSyncLog(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                            const wchar_t* slaveID, uint32_t number, int64_t lower,
                                            const wchar_t* syncingFolder, void* reserved, uint32_t* count,
                                            _WFM_SYNC_LOG_INFORMATION** list, bool* isEnd,
                                            uint32_t* resultWord);

/// Asks where a user's home lies on the server. There is no result word: put an empty text into the buffer.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param user      not null or empty
/// @param capacity  wide characters in `buffer`, not 0; 4096 is always enough
/// @param slaveID   null, or the node to ask
/// @param reserved  null
/// @param buffer    receives the path, if there is one and it fits; otherwise untouched. Not null
/// @return `dwStatus`; 0 also if the server refuses
///
/// Twice: safe. Next: WFMGetNodeList with that path.
TORVIAPI_EXPORT uint32_t WFMGetUserHomePath(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                            const wchar_t* user, uint32_t capacity, const wchar_t* slaveID,
                                            void* reserved, wchar_t* buffer);

/// @}

/// @name Transfers
/// They have no time-out and last as long as bytes flow: a peer that falls silent without closing holds the
/// call. `callback` and `lpData` may be null; see WFMProgressCallback. Memory doesn't grow with the file's
/// size.
/// @{

/// Downloads a file, or its end from an offset on, into the caller's file.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID     null, or the node to ask
/// @param remotePath  folder and name together, with "/" in front; not null or empty
/// @param file        the caller's, with a file name set; needn't be open. It is closed, opened for reading
///                    and writing (made if missing), **not truncated**, written from the offset on, and
///                    closed. Not null
/// @param offset      bytes that are here already; null is 0 and leaves the word out of the request
/// @param size        bytes that **the reply must announce**; null asks WFMGetPathInformation for the file's
///                    size
/// @param lpData,callback  progress; may be null
/// @param stop        may be null. Read after the transfer only: the callback's verdict is what stops it
/// @param resultWord  not null
/// @return `dwStatus`
///
/// From the start: offset null, size null or the file's size, and `file->resize(0)` before. To resume with n
/// of N bytes here: offset n, and **size N - n**, for that is what the server announces. A size below the
/// offset is refused with 8, so that a resume works only up to half of the file; from there on start anew. In
/// a resumed download the callback hears N - n as the size and counts from n, so that it may pass the size,
/// and it rests for the last n bytes.
///
/// | dwStatus | Result word | When                                                                       |
/// |----------|-------------|----------------------------------------------------------------------------|
/// | 0        | 0           | done, **or the connection broke half-way: compare `file->size()`**         |
/// | 0        | 13          | the announced length isn't `size`; what `file` holds is void               |
/// | 0        | 1237        | stopped by the callback, or the stop flag is set; `file` holds what came   |
/// | 0        | 3, 5, -1    | size null: no such file, access denied, refused otherwise; nothing fetched |
/// | 14       | 2           | no folder or no name in remotePath                                         |
/// | 6        | 5           | `file` can't be opened for writing, and the file is there                  |
/// | 6        | -1          | `file` can't be opened for writing                                         |
/// | other    | -1          | size null: the question for the size failed                                |
///
/// 13 is a file that has changed, and also an error page (any HTTP error, a session that has ended, a
/// refusal), unless it happens to be `size` long, and a server that wasn't reached. A remote file of 0 bytes
/// (or a `size` below 1) is a success without a download: `file` isn't touched, not even made. A negative
/// offset travels as it is, counts as 0 here. A set stop flag outweighs the rows with 6. A full disk isn't
/// noticed. Times aren't set. Twice: writes the same bytes. Next: `file->size()` and WFMGetPathInformation.
TORVIAPI_EXPORT uint32_t WFMDownloadFileToHandle(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                 uint32_t port, const wchar_t* slaveID,
                                                 const wchar_t* remotePath, QFile* file,
                                                 const int64_t* offset, const int64_t* size, void* lpData,
                                                 WFMProgressCallback callback, bool* stop,
                                                 uint32_t* resultWord);

/// Uploads a whole file. The server gives it the time of arrival.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID      null, or the node to ask
/// @param file         the caller's, open for reading, with a name: **the library opens the same path
///                     again**, so unwritten data must be flushed. It stays open and where it is. Not null
/// @param destination  folder and name together; not null or empty. One without a name (it ends in "/", or is
///                     a team folder's root) uploads under the local file's name, with "Filename" empty
/// @param lpData,callback  progress; may be null
/// @param overwrite    low byte only: 1 replaces a file that is there; what 0 does is up to the server
/// @param reserved     null
/// @param resultWord   system-style numbers; not null
/// @return `dwStatus`
///
/// | dwStatus     | Result word | When                                                                    |
/// |--------------|-------------|-------------------------------------------------------------------------|
/// | 0            | 0           | the file is there                                                       |
/// | 0            | 5           | access denied                                                           |
/// | 0            | 112         | quota used up                                                           |
/// | 0            | 1235        | accepted, but the file's size changed between the check and the sending |
/// | 0            | 13          | refused, and not all bytes went out                                     |
/// | 0            | -1          | refused otherwise                                                       |
/// | 2            | 1235, 13    | stopped by the callback with 1, 2                                       |
/// | 2            | -1          | stopped by the callback otherwise; not connected                        |
/// | 2            | -1          | the file ended short or changed its size under way                      |
/// | 2, 6, 11, 12 | 13          | failed without a callback, and not all bytes went out                   |
/// | any but 8    | 1235, 13    | the closing call said 1, 2: it outweighs the answer, understood or not  |
/// | 6            | -1          | also a file that can't be opened by its path                            |
/// | 8            | untouched   | also a file that isn't there or isn't open for reading                  |
/// | 14           | -1          | also any reply whose "success" isn't true, a refusal too                |
///
/// After 2 and 6 the file may have arrived all the same: ask WFMGetPathInformation. Twice: sends it again.
/// Next: WFMGetPathInformation, to learn the time that the server gave it.
TORVIAPI_EXPORT uint32_t WFMUploadFilewithHandle(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                 uint32_t port, const wchar_t* slaveID, QFile* file,
                                                 const wchar_t* destination, void* lpData,
                                                 WFMProgressCallback callback, uint32_t overwrite,
                                                 void* reserved, uint32_t* resultWord);

/// Uploads a whole file with its time, under a temporary name first: what a sync client uses.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID       null, or the node to ask
/// @param file          as for WFMUploadFilewithHandle
/// @param destination   folder and name together; not null or empty. Without a name as for
///                      WFMUploadFilewithHandle
/// @param uploadRoot    folder under which the server keeps the unfinished file; sent as given, not mapped.
///                      Not null or empty
/// @param renameTarget  the name to take instead, as the server wants it; sent as given, not mapped. Null or
///                      empty: none
/// @param fileSize      bytes, `file->size()`: told to the server and to the callback. What is sent is the
///                      file as it is
/// @param modifiedTime  seconds since the epoch; sent as given
/// @param lpData,callback  progress; may be null
/// @param overwrite     low byte only: 1 replaces a file that is there; what 0 does is up to the server
/// @param reserved      null
/// @param resultWord    client codes; not null
/// @return `dwStatus`
///
/// | dwStatus     | Result word | When                                                                 |
/// |--------------|-------------|----------------------------------------------------------------------|
/// | 0            | 0           | the file is there                                                    |
/// | 0            | other       | refused: the client code of the server's status                      |
/// | 0            | -44         | the user's home folder is not available                              |
/// | 0            | -31         | not all bytes went out                                               |
/// | 2            | -31         | stopped by the callback with 2                                       |
/// | 2            | -1          | stopped by the callback otherwise; not connected                     |
/// | 2            | -1          | the file ended short or changed its size under way                   |
/// | 2, 6, 11, 12 | -31         | failed without a callback, and not all bytes went out                |
/// | any but 8    | -31         | the closing call said 2: it outweighs the answer, understood or not  |
/// | 6            | -1          | also a file that can't be opened by its path, or a negative fileSize |
/// | 8            | untouched   | also a file that isn't there or isn't open for reading               |
///
/// A stop and a lost connection look alike: the callback knows which it was. After 2 and 6 the file may have
/// arrived all the same: ask WFMGetPathInformation. Twice: sends it again. Next: TorviLogin after -29; else
/// none.
TORVIAPI_EXPORT uint32_t WFMTorviUploadandMovewithHandle(
    _WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port, const wchar_t* slaveID, QFile* file,
    const wchar_t* destination, const wchar_t* uploadRoot, const wchar_t* renameTarget, int64_t fileSize,
    int64_t modifiedTime, void* lpData, WFMProgressCallback callback, uint32_t overwrite, void* reserved,
    uint32_t* resultWord);

/// Asks whether an upload would be denied. It answers that alone: whatever else is wrong counts as not
/// denied.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID     null, or the node to ask
/// @param folder      where the file would go; null counts as empty
/// @param fileName    its name; null counts as empty
/// @param reserved    null
/// @param resultWord  not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                                      |
/// |----------|-------------|---------------------------------------------------------------------------|
/// | 0        | 0           | not denied; **also a missing folder, a session that ended, a full quota** |
/// | 0        | 5           | denied                                                                    |
///
/// Time-out 60 seconds. Twice: safe. Next: an upload.
TORVIAPI_EXPORT uint32_t WFMTorviCheckPermission(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                 uint32_t port, const wchar_t* slaveID, const wchar_t* folder,
                                                 const wchar_t* fileName, void* reserved,
                                                 uint32_t* resultWord);

/// Asks for the id under which a file is uploaded in slices. The server keeps what has come under it, so that
/// the upload survives a broken connection and a stopped client:
///
///     1. WFMGetUploadID, once for a new upload; keep the id, with what it belongs to, before the first byte
///     2. WFMTorvGetChunkFileSize: where a resumed one goes on. A new one begins at 0
///     3. WFMTorviChunckUploadwithHandle from there
///     4. -43: a slice of 1 GiB landed, go on at offset + 1073741824. 0: the file is there, the id is spent
///     5. anything else: bResume and bDeleteUploadID tell what to do next
///
/// @param context,server,port  the session and where; server and context not null. **A port of 0 and an empty
///                     server aren't refused**: 2
/// @param slaveID     null, or the node to ask; here it goes before the team folder's
/// @param capacity    in: of `uploadID`, not 0. Out, with detail 122: what it takes. Not null
/// @param uploadID    receives the id. **It must hold one character more than `capacity` says**: 261 for 260
///                    are enough for every server known. Not null
/// @param uploadRoot  folder under which the server keeps the unfinished file; sent as given, not mapped. Not
///                    null or empty
/// @param folder      where the file will go, to find the node of its team folder; not sent. Not null or
///                    empty
/// @param reserved    null
/// @param resultWord  client codes; not null
/// @param detail      receives 0: `uploadID` is filled, 122: it is too small, -1: there is no id. Not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | detail | When                                          |
/// |----------|-------------|--------|-----------------------------------------------|
/// | 0        | 0           | 0      | an id                                         |
/// | 0        | 0           | 122    | an id, longer than `capacity`; nothing copied |
/// | 0        | 0           | -1     | the server gave none                          |
/// | 0        | -3          | -1     | permission denied                             |
/// | 0        | -44         | -1     | the user's home folder is not available       |
/// | 0        | -5          | -1     | the unfinished file can't be made             |
/// | 0        | -11         | -1     | the server's status -4                        |
/// | 0        | -1          | -1     | refused otherwise                             |
///
/// Twice: two ids; the server keeps both. Next: WFMTorviChunckUploadwithHandle.
TORVIAPI_EXPORT uint32_t WFMGetUploadID(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                        const wchar_t* slaveID, uint32_t* capacity, wchar_t* uploadID,
                                        const wchar_t* uploadRoot, const wchar_t* folder, void* reserved,
                                        uint32_t* resultWord, uint32_t* detail);

/// Asks how many bytes the server holds of a sliced upload.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID     null, or the node that gave the id: **the node of a team folder isn't found here**
/// @param uploadID    from WFMGetUploadID; not null or empty
/// @param uploadRoot  the same as there; not null or empty
/// @param reserved    null
/// @param size        receives the bytes, when both numbers are 0, unchecked; not null
/// @param resultWord  client codes; not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                                        |
/// |----------|-------------|-----------------------------------------------------------------------------|
/// | 0        | 0           | `size` is filled                                                            |
/// | 0        | -11         | the server's status -4: it has nothing under this id (any more), start over |
/// | 0        | -4          | it failed to look, or, as some servers say it, knows no such id             |
/// | 0        | -1          | refused otherwise, as when the session has ended                            |
/// | 14       | -1          | also a size beyond 32 bits that isn't sent as text                          |
///
/// Twice: safe. Next: WFMTorviChunckUploadwithHandle from `size` on.
TORVIAPI_EXPORT uint32_t WFMTorvGetChunkFileSize(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                 uint32_t port, const wchar_t* slaveID,
                                                 const wchar_t* uploadID, const wchar_t* uploadRoot,
                                                 void* reserved, int64_t* size, uint32_t* resultWord);

/// Has the server throw away what it holds of a sliced upload.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID     null, or the node that gave the id
/// @param uploadID    from WFMGetUploadID; not null or empty
/// @param uploadRoot  the same as there; not null or empty
/// @param reserved    null
/// @param resultWord  not null
/// @return `dwStatus`; with 0 the result word is 0, or the client code of the server's status
///
/// Twice: the server refuses. Next: WFMGetUploadID, to start over.
TORVIAPI_EXPORT uint32_t WFMTorviDeleteChunkFile(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                 uint32_t port, const wchar_t* slaveID,
                                                 const wchar_t* uploadID, const wchar_t* uploadRoot,
                                                 void* reserved, uint32_t* resultWord);

/// Uploads one slice: 1073741824 bytes from the offset on, or all that is left. With the last slice the
/// server puts the file in its place.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID       null, or the node to ask
/// @param file          as for WFMUploadFilewithHandle
/// @param uploadID      from WFMGetUploadID; not null or empty
/// @param uploadRoot    the same as there; not null or empty
/// @param destination   folder and name together; not null or empty. Without a name as for
///                      WFMUploadFilewithHandle
/// @param renameTarget  the name to take instead; sent as given, not mapped. Null or empty: none
/// @param offset        where the slice begins: 0, or what WFMTorvGetChunkFileSize said; not negative
/// @param fileSize      bytes of the whole file, not below `offset`
/// @param modifiedTime  seconds since the epoch; sent as given
/// @param lpData,callback  progress, which counts from the start of the file; may be null
/// @param overwrite     low byte only: 1 replaces a file that is there
/// @param stop          set it together with a verdict of 1 from the callback, or from another thread; read
///                      after the transfer, which it doesn't end by itself. May be null
/// @param bResume          receives whether the id can go on; not null
/// @param bDeleteUploadID  receives whether the id is dead; not null
/// @param resultWord    client codes; not null
/// @return `dwStatus`
///
/// What to do next is in the two flags, whatever the numbers are, but for -43 and 0, which clear both:
///
/// | bResume | bDeleteUploadID | Do                                                                     |
/// |---------|-----------------|------------------------------------------------------------------------|
/// | true    | false           | keep the id; WFMTorvGetChunkFileSize and the next slice, now or later  |
/// | false   | true            | WFMTorviDeleteChunkFile; start over with WFMGetUploadID if you want to |
/// | false   | false           | keep the id and wait: only the user can clear the cause                |
///
/// | dwStatus     | Result word | Flag set        | When                                                        |
/// |--------------|-------------|-----------------|-------------------------------------------------------------|
/// | 0            | 0           | none            | the file is complete and in its place; the id is spent      |
/// | 0            | -43         | none            | the slice landed, and there is more: offset + 1 GiB         |
/// | 0            | -6          | none            | quota used up                                               |
/// | 0            | -2, -4      | bResume         | the server failed for the moment                            |
/// | 0            | -4          | none            | the user's home folder is not available                     |
/// | 0            | -5, -7      | bDeleteUploadID | a file of that name can't be made                           |
/// | 0            | other       | bDeleteUploadID | refused otherwise, as when the session has ended (-29)      |
/// | 14           | -1          | bDeleteUploadID | the reply wasn't understood                                 |
/// | any below    | -31         | bDeleteUploadID | verdict 2, or bytes are missing (see below): start over     |
/// | 2, 6         | -1          | bResume         | stopped, and some of the file is there                      |
/// | 2, 6         | -1          | bDeleteUploadID | stopped in the opening call, or before a byte of the file   |
/// | 2, 6         | -1          | bDeleteUploadID | stopped by a verdict from 3 on, without `stop`              |
/// | 2, 6, 11, 12 | -1          | bDeleteUploadID | failed without a stop: connection, proxy, server            |
/// | 2            | -1          | bDeleteUploadID | the file changed its size under way                         |
/// | 6            | -1          | bDeleteUploadID | `file` can't be opened by its path: nothing sent            |
/// | 6            | -1          | bResume         | `stop` was set, a byte counted: the answer isn't looked at  |
/// | 6            | -1          | bResume         | the closing call said 1, a byte counted: maybe in its place |
/// | 8            | untouched   | untouched       | also an offset beyond `fileSize`                            |
///
/// A set `stop`, or a closing verdict of 1, makes bResume of the rows of 2, 6, 11 and 12, if some of the file
/// is there. "Some of the file" counts the bytes before the offset, but in the opening call: answer that one
/// with 0, and stop at the next. **A connection that fails without a stop says that the id is dead**; a
/// client that wants to go on all the same asks WFMTorvGetChunkFileSize first and deletes the id only if that
/// fails too. Bytes are missing when the transfer failed, or ended, with less than the slice out, less twice
/// the offset; it is looked at without a callback, and in a slice with more to come. Memory doesn't grow with
/// the slice. A URL that is cut loses the mark of a slice with more to come first: keep paths short. Twice at
/// one offset: refused by a server that compares it with what it holds.
TORVIAPI_EXPORT uint32_t WFMTorviChunckUploadwithHandle(
    _WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port, const wchar_t* slaveID, QFile* file,
    const wchar_t* uploadID, const wchar_t* uploadRoot, const wchar_t* destination,
    const wchar_t* renameTarget, int64_t offset, int64_t fileSize, int64_t modifiedTime, void* lpData,
    WFMProgressCallback callback, uint32_t overwrite, bool* stop, bool* bResume, bool* bDeleteUploadID,
    uint32_t* resultWord);

/// Uploads a batch of small files into one folder, in one request. **All their bytes are in memory at once.**
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID     null, or the node to ask
/// @param files       the batch; the array not null. A null or a record without a name or a readable file
///                    refuses them all
/// @param count       of files, above 0
/// @param folder      where to; a "/" is added at its end, but for a team folder's. Not null or empty
/// @param reserved1,reserved2,reserved3,reserved4  null
/// @param resultWord  of the batch, client codes; not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                                    |
/// |----------|-------------|-------------------------------------------------------------------------|
/// | 0        | 0           | answered file by file: nResult; one that is left out keeps what it held |
/// | 0        | other       | refused as a whole: the client code; no nResult changes                 |
/// | 87       | -1          | nothing sent: a null, or a record without a name or a readable file     |
///
/// Set each nResult to a number of your own first, to see which were left out. The names of the reply are
/// compared without regard to case: two files that differ in case alone get one result. A size that isn't
/// sent as a number makes the reply one that isn't understood, 14. Keep the batch small: 60 seconds for the
/// whole of it, and far less than 2 GiB. Twice: sends it again. Next: the files whose nResult isn't 0, each
/// by WFMTorviUploadandMovewithHandle.
TORVIAPI_EXPORT uint32_t WFMTorviUploadandMoveMultiPartwithHandle(
    _WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port, const wchar_t* slaveID,
    _WFM_MULTI_PART_FILE_INFO** files, int32_t count, const wchar_t* folder, void* reserved1, void* reserved2,
    void* reserved3, void* reserved4, uint32_t* resultWord);

/// @}

/// @name Versions
/// The server can keep versions of a file, and take a changed one as a delta against a version. The library
/// carries ids and starts jobs; signatures and deltas are made by the server, and their bytes travel by the
/// transfers above.
///
///     1. WFMTorviGetVersioningProbe        whether the server can do this
///     2. WFMTorviVersioningLock            opens a session around one file: lock id and version id
///     3. WFMTorviGenVersioningSig, ...Delta  have the server make a signature, a delta: a job each
///     4. WFMTorviVersioningStatDelta       again and again, until the delta is there
///     5. WFMTorviVersioningCommitUpload    makes what was uploaded the new version: a job
///     6. WFMTorviVersioningUnLock, or WFMTorviVersioningCleanVersion if the work is given up
///
/// Nobody but the holder of a lock writes to the file; a lock that is never released is the server's affair.
/// Ids go on the wire as given, so that they must be safe in a URL, as those that the server made are.
/// Buffers for what comes back must hold **260** characters: at most 259 and a terminator are written.
/// @{

/// Asks whether the server keeps versions.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID     null, or the node to ask
/// @param reserved    null
/// @param resultWord  **stays -1 in every case**; not null
/// @param version     receives the version of the server's versioning engine, if it tells one; 260
///                    characters. Not cleared: make it empty first. Not null
/// @return `dwStatus`; 0 with a filled `version`: it has the engine. Whether it is switched on, and whether
///         the session is still good, isn't told: an answer that refuses counts as well
///
/// Twice: safe. Next: WFMTorviVersioningLock, which tells.
TORVIAPI_EXPORT uint32_t WFMTorviGetVersioningProbe(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                    uint32_t port, const wchar_t* slaveID, void* reserved,
                                                    uint32_t* resultWord, wchar_t* version);

/// Opens a session around one file, or asks whether an open one is still good.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID     null, or the node to ask
/// @param path        folder and name together; not null or empty
/// @param reserved    null
/// @param resultWord  not null
/// @param lock        in: both ids empty opens a session, both filled asks about it; one alone is ignored.
///                    Out, when both numbers are 0: the ids that the server gave, others stay. Not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                                          |
/// |----------|-------------|-------------------------------------------------------------------------------|
/// | 0        | 0           | the session is open, or still good; without ids in `lock`, it can't be ended  |
/// | 0        | -1          | refused: locked by somebody else, or no good any more; the log has the status |
///
/// Twice: asks about it. Next: WFMTorviGenVersioningSig, or an upload and WFMTorviVersioningCommitUpload.
TORVIAPI_EXPORT uint32_t WFMTorviVersioningLock(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                uint32_t port, const wchar_t* slaveID, const wchar_t* path,
                                                void* reserved, uint32_t* resultWord,
                                                WFM_VERSIONING_LOCK* lock);

/// Ends a session.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID     null, or the node to ask
/// @param path        folder and name together; not null or empty
/// @param lockID      from WFMTorviVersioningLock; not null or empty
/// @param reserved    null
/// @param resultWord  not null
/// @return `dwStatus`; with 0 the result word is 0, or -1 if the server refuses
///
/// Twice: refused.
TORVIAPI_EXPORT uint32_t WFMTorviVersioningUnLock(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                  uint32_t port, const wchar_t* slaveID, const wchar_t* path,
                                                  const wchar_t* lockID, void* reserved,
                                                  uint32_t* resultWord);

/// Gives a session's work up: the server throws its work files away.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID     null, or the node to ask
/// @param path        folder and name together; not null or empty
/// @param lockID,versionID  from WFMTorviVersioningLock; not null or empty
/// @param reserved    null
/// @param resultWord  not null
/// @return `dwStatus`; with 0 the result word is 0, or the client code of the server's status
///
/// Twice: up to the server.
TORVIAPI_EXPORT uint32_t WFMTorviVersioningCleanVersion(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                        uint32_t port, const wchar_t* slaveID,
                                                        const wchar_t* path, const wchar_t* lockID,
                                                        const wchar_t* versionID, void* reserved,
                                                        uint32_t* resultWord);

/// Has the server make the signature of a version, as a job.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID     null, or the node to ask
/// @param path        folder and name together; not null or empty
/// @param lockID,versionID  from WFMTorviVersioningLock; not null or empty
/// @param reserved    null
/// @param resultWord  not null
/// @param pid         receives the job's name, empty if the server tells none; left as it was when refused or
///                    failed. 260 characters, not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                          |
/// |----------|-------------|---------------------------------------------------------------|
/// | 0        | 0           | started, under way or there already (server status 1, 33, 34) |
/// | 0        | -1          | refused                                                       |
///
/// Twice: up to the server. Next: WebFileManQueryProgress with `pid`.
TORVIAPI_EXPORT uint32_t WFMTorviGenVersioningSig(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                  uint32_t port, const wchar_t* slaveID, const wchar_t* path,
                                                  const wchar_t* lockID, const wchar_t* versionID,
                                                  void* reserved, uint32_t* resultWord, wchar_t* pid);

/// Has the server make a delta for a version, as a job.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID     null, or the node to ask
/// @param path        folder and name together; not null or empty
/// @param lockID,versionID  from WFMTorviVersioningLock; not null or empty
/// @param reserved    null
/// @param resultWord  not null
/// @param pid         receives the job's name; left as it was if the server tells none, refuses or fails; 260
///                    characters, not null
/// @return `dwStatus`, with the result words of WFMTorviGenVersioningSig
///
/// Twice: up to the server. Next: WFMTorviVersioningStatDelta.
TORVIAPI_EXPORT uint32_t WFMTorviGenVersioningDelta(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                    uint32_t port, const wchar_t* slaveID,
                                                    const wchar_t* path, const wchar_t* lockID,
                                                    const wchar_t* versionID, void* reserved,
                                                    uint32_t* resultWord, wchar_t* pid);

/// Asks whether a version's delta is there and how long it is. It has no result word.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID    null, or the node to ask
/// @param path       folder and name together; not null or empty
/// @param versionID  from WFMTorviVersioningLock; not null or empty
/// @param reserved   null
/// @param stat       zeroed first, filled when `dwStatus` is 0; not null
/// @return `dwStatus`; 0 also if the server refuses, which looks like a delta that isn't there
///
/// Twice: safe. Next: the same, until it is there.
TORVIAPI_EXPORT uint32_t WFMTorviVersioningStatDelta(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                     uint32_t port, const wchar_t* slaveID,
                                                     const wchar_t* path, const wchar_t* versionID,
                                                     void* reserved, WFM_VERSIONING_DELTA_STAT* stat);

/// Makes what was uploaded under the lock the new version, as a job.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID       null, or the node to ask
/// @param path          folder and name together; not null or empty
/// @param lockID,versionID  from WFMTorviVersioningLock; not null or empty
/// @param modifiedTime  the version's time, seconds since the epoch
/// @param reserved      null
/// @param resultWord    not null
/// @param pid           receives the job's name; left as it was if the server tells none, or one too
///                      long, refuses or fails; 260 characters, not null
/// @return `dwStatus`; with 0 the result word is 0, or the client code of the server's status
///
/// Twice: up to the server. Next: WebFileManQueryProgress with `pid`, then WFMTorviVersioningUnLock.
TORVIAPI_EXPORT uint32_t WFMTorviVersioningCommitUpload(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                        uint32_t port, const wchar_t* slaveID,
                                                        const wchar_t* path, const wchar_t* lockID,
                                                        const wchar_t* versionID, int64_t modifiedTime,
                                                        void* reserved, uint32_t* resultWord, wchar_t* pid);

/// @}

/// @name The cloud
///
/// Calls on the maker's cloud services: the account service (Zeno) and the remote-access service (Pelt). They
/// have no session: every call brings its credentials along, and the library keeps none.
///
///     ZenoAPIAPPSignin                the application's own token
///     ZenoAPIAPPRefreshToken          a new token for a refresh token
///     ZenoAPIGetTokenInfo             whose token it is
///     ZenoAPIGetAllDeviceInfo         the user's devices
///     ZenoAPIGetCloudLinkSetting      the addresses of one of them, then WFMGetNASUserUID and a login there
///     PeltAPIGetVLinkInfo             the same with the application's secret in place of a token
///     ZenoAPIAPPSignOut               ends the token
///
/// What is the same everywhere:
///
/// - `server` is the service's host without scheme and port, not null or empty. The port is 443 if `secure`,
///   otherwise 80.
/// - `agentName`, `appVersion` and `clientID` or `appID` (the same thing) are not null or empty; nor is any
///   other text but the proxy's, where its call doesn't say otherwise. They become headers, and ids of
///   devices and users, names and tokens become parts of URLs, **as they stand: nothing is encoded**. Give
///   texts without control characters and line ends, and where one becomes part of a URL, letters, digits,
///   "-", "." and "_" only. Form fields are encoded.
/// - `proxyMode`, `proxyHost`, `proxyUser`, `proxyPassword` as in the file comment. Time-out 60 seconds.
/// - `reserved` is ignored; pass null.
/// - Records are zeroed first. Which of them a failed call fills is said there.
/// - Over plain HTTP tokens and secrets go in clear. Use `secure`, and know that the certificate isn't
///   verified.
/// - **A log at level 4 (Debug) has the access tokens** of sign-in, refresh, token info and sign-out in it,
///   the ids and addresses of devices, and this machine's own address.
/// - `dwStatus` 14 is also the answer to a text or a flag that comes as an array or an object, and to a
///   number that is too large: one in one device of a list costs the whole list. Other values of a type that
///   isn't right count as missing, or as the text that they make.
///
/// The checksum. ZenoAPIGetDeviceID and the two Pelt calls prove the application by a checksum of its secret
/// and the time: the secret stays at home. The header has the checksum in raw bytes, mangled in a way that
/// the services expect; it may be short or empty. One in seven has a line end in it and **goes out as it
/// is**: the server then sees a broken request, and refuses it or reads another checksum. Call again, at
/// another millisecond. A clock that is wrong makes the service refuse with code 2.
/// @{

/// Signs the application in: a token of its own, not a user's.
/// @param server,agentName,appVersion,clientID  see above
/// @param clientSecret  not null or empty; a form field
/// @param secure,proxyMode,proxyHost,proxyUser,proxyPassword,reserved  see above
/// @param token         not null
/// @return `dwStatus`
///
/// | dwStatus | When                                                                              |
/// |----------|-----------------------------------------------------------------------------------|
/// | 0        | an answer came: a token, or `error` says why there is none, or nothing at all     |
/// | 6        | HTTP 400, 401, 403 and their like: refused; `error` says why, if the service does |
/// | 14       | the answer isn't a JSON object, or one of its texts comes as an array or object   |
///
/// The record is filled from the body of any HTTP error too, 11 and 12 included. There is no result word.
/// Twice: another token. Next: the calls that take an access token; in the end ZenoAPIAPPSignOut.
TORVIAPI_EXPORT uint32_t ZenoAPIAPPSignin(const wchar_t* server, const wchar_t* agentName,
                                          const wchar_t* appVersion, const wchar_t* clientID,
                                          const wchar_t* clientSecret, bool secure, uint32_t proxyMode,
                                          const wchar_t* proxyHost, const wchar_t* proxyUser,
                                          const wchar_t* proxyPassword, void* reserved,
                                          _CLOUD_TOKEN_INFORMATION* token);

/// Gets a new access token for a refresh token.
/// @param server,agentName  see above
/// @param refreshToken      from an earlier sign-in or refresh; not null or empty; a form field
/// @param appVersion,clientID  see above
/// @param clientSecret      not null or empty; a form field
/// @param secure,proxyMode,proxyHost,proxyUser,proxyPassword,reserved  see above
/// @param token             not null
/// @return `dwStatus`, as ZenoAPIAPPSignin
///
/// Twice: up to the service, which may take a refresh token once only; keep the one that came back. Next: as
/// ZenoAPIAPPSignin.
TORVIAPI_EXPORT uint32_t ZenoAPIAPPRefreshToken(const wchar_t* server, const wchar_t* agentName,
                                                const wchar_t* refreshToken, const wchar_t* appVersion,
                                                const wchar_t* clientID, const wchar_t* clientSecret,
                                                bool secure, uint32_t proxyMode, const wchar_t* proxyHost,
                                                const wchar_t* proxyUser, const wchar_t* proxyPassword,
                                                void* reserved, _CLOUD_TOKEN_INFORMATION* token);

/// Asks whose an access token is and how long it is good. **The token stands in the URL**, which servers and
/// proxies on the way may log.
/// @param server,agentName  see above
/// @param accessToken       not null or empty; goes into the URL as it stands
/// @param appVersion,clientID  see above
/// @param tokenInfo         ignored; may be null
/// @param secure,proxyMode,proxyHost,proxyUser,proxyPassword,reserved  see above
/// @param token             not null
/// @return `dwStatus`, as ZenoAPIAPPSignin, with user, email and name in place of tokens
///
/// A failure writes one line to the log, not two. Twice: safe. Next: ZenoAPIGetAllDeviceInfo.
TORVIAPI_EXPORT uint32_t ZenoAPIGetTokenInfo(const wchar_t* server, const wchar_t* agentName,
                                             const wchar_t* accessToken, const wchar_t* appVersion,
                                             const wchar_t* clientID, const wchar_t* tokenInfo, bool secure,
                                             uint32_t proxyMode, const wchar_t* proxyHost,
                                             const wchar_t* proxyUser, const wchar_t* proxyPassword,
                                             void* reserved, _CLOUD_TOKEN_INFORMATION* token);

/// Ends an access token.
/// @param server       see above
/// @param accessToken  not null or empty; a form field and a header
/// @param agentName,appVersion,clientID  see above
/// @param secure,proxyMode,proxyHost,proxyUser,proxyPassword  see above
/// @return `dwStatus`; 0 whatever the service's answer says, as long as it isn't an HTTP error. Never 14, as
///         the answer isn't read
///
/// Twice: up to the service. Next: nothing; forget the token.
TORVIAPI_EXPORT uint32_t ZenoAPIAPPSignOut(const wchar_t* server, const wchar_t* accessToken,
                                           const wchar_t* agentName, const wchar_t* appVersion,
                                           const wchar_t* clientID, bool secure, uint32_t proxyMode,
                                           const wchar_t* proxyHost, const wchar_t* proxyUser,
                                           const wchar_t* proxyPassword);

/// Asks for the device that a user's id stands for, with the application's secret.
/// @param server,agentName,appVersion,clientID  see above
/// @param userID     not null or empty; goes into the URL as it stands
/// @param appSecret  not null or empty; isn't sent
/// @param secure,proxyMode,proxyHost,proxyUser,proxyPassword,reserved  see above
/// @param device     not null; filled when `dwStatus` is 0
/// @return `dwStatus`
///
/// | dwStatus | nResponseCode | When                                                   |
/// |----------|---------------|--------------------------------------------------------|
/// | 0        | 0             | szDeviceID is the device                               |
/// | 0        | 2             | the time in the checksum is refused: look at the clock |
/// | 0        | 5             | there is no such device                                |
/// | 0        | 7             | the service doesn't know the application               |
/// | 0        | 8             | the checksum is refused: another secret                |
/// | 0        | 1             | anything else; szMessage has the service's words       |
///
/// There is no result word, and HTTP errors, 404 included, fill nothing: test `dwStatus` first, as
/// nResponseCode 0 alone says nothing. Twice: safe. Next: PeltAPIGetVLinkInfo.
TORVIAPI_EXPORT uint32_t ZenoAPIGetDeviceID(const wchar_t* server, const wchar_t* agentName,
                                            const wchar_t* appVersion, const wchar_t* clientID,
                                            const wchar_t* userID, const wchar_t* appSecret, bool secure,
                                            uint32_t proxyMode, const wchar_t* proxyHost,
                                            const wchar_t* proxyUser, const wchar_t* proxyPassword,
                                            void* reserved, _CLOUD_DEVICE_ID_INFORMATION* device);

/// Counts a user's devices.
/// @param server,agentName,appVersion,clientID  see above
/// @param accessToken  not null or empty; a header
/// @param secure,proxyMode,proxyHost,proxyUser,proxyPassword,reserved  see above
/// @param resultWord   not null
/// @param count        not null; becomes 0 first, filled when both numbers are 0
/// @return `dwStatus`, with the result words of ZenoAPIGetAllDeviceInfo; HTTP 404 is 6
///
/// Twice: safe. Next: ZenoAPIGetAllDeviceInfo.
TORVIAPI_EXPORT uint32_t ZenoAPIGetAllDeviceCount(const wchar_t* server, const wchar_t* agentName,
                                                  const wchar_t* appVersion, const wchar_t* clientID,
                                                  const wchar_t* accessToken, bool secure, uint32_t proxyMode,
                                                  const wchar_t* proxyHost, const wchar_t* proxyUser,
                                                  const wchar_t* proxyPassword, void* reserved,
                                                  uint32_t* resultWord, int32_t* count);

/// Lists a user's devices.
/// @param server,agentName,appVersion,clientID  see above
/// @param accessToken  not null or empty; a header
/// @param secure,proxyMode,proxyHost,proxyUser,proxyPassword,reserved  see above
/// @param resultWord   not null
/// @param count        not null; becomes 0 first
/// @param devices      receives the list when both numbers are 0, to be freed by ZenoFreeDeviceInfo;
///                     otherwise null. Not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                          |
/// |----------|-------------|-----------------------------------------------|
/// | 0        | 0           | `count` devices; there may be none            |
/// | 0        | 3           | the service's code 1013001; the list is empty |
/// | 0        | 4           | the service's code 1013002; the list is empty |
/// | 0        | 5           | the service's code 1070001; the list is empty |
/// | 0        | 1           | any other code; the list is empty             |
/// | 10       | -1          | HTTP 404: no such service here                |
///
/// What the codes mean is the service's affair. Twice: safe, another list. Next: ZenoAPIGetCloudLinkSetting.
TORVIAPI_EXPORT uint32_t ZenoAPIGetAllDeviceInfo(const wchar_t* server, const wchar_t* agentName,
                                                 const wchar_t* appVersion, const wchar_t* clientID,
                                                 const wchar_t* accessToken, bool secure, uint32_t proxyMode,
                                                 const wchar_t* proxyHost, const wchar_t* proxyUser,
                                                 const wchar_t* proxyPassword, void* reserved,
                                                 uint32_t* resultWord, int32_t* count,
                                                 _NAS_DEVICE_INFORMATION_API_V11*** devices);

/// Lists those of a user's devices that have a name.
/// @param server,agentName,appVersion,clientID  see above
/// @param accessToken  not null or empty; a header
/// @param deviceName   not null or empty; goes into the URL as it stands
/// @param secure,proxyMode,proxyHost,proxyUser,proxyPassword,reserved  see above
/// @param resultWord,count,devices  as for ZenoAPIGetAllDeviceInfo
/// @return `dwStatus`, with the numbers of ZenoAPIGetAllDeviceInfo
///
/// Twice: safe, another list. Next: ZenoAPIGetCloudLinkSetting.
TORVIAPI_EXPORT uint32_t ZenoAPIGetDeviceInfoByName(const wchar_t* server, const wchar_t* agentName,
                                                    const wchar_t* appVersion, const wchar_t* clientID,
                                                    const wchar_t* accessToken, const wchar_t* deviceName,
                                                    bool secure, uint32_t proxyMode, const wchar_t* proxyHost,
                                                    const wchar_t* proxyUser, const wchar_t* proxyPassword,
                                                    void* reserved, uint32_t* resultWord, int32_t* count,
                                                    _NAS_DEVICE_INFORMATION_API_V11*** devices);

/// Frees what ZenoAPIGetAllDeviceInfo and ZenoAPIGetDeviceInfoByName allocated.
/// @param count    as it came with the list; 0 frees the array alone
/// @param devices  where the list is kept; becomes null. May be null, and so may the list
/// @return 0
///
/// Twice: safe, as the list is null then.
TORVIAPI_EXPORT uint32_t ZenoFreeDeviceInfo(int count, _NAS_DEVICE_INFORMATION_API_V11*** devices);

/// Asks by which addresses a device's web server is reached.
/// @param server,agentName,appVersion,clientID  see above
/// @param accessToken  not null or empty; a header
/// @param deviceID     szDeviceID of a device; not null or empty; goes into the URL as it stands
/// @param secure,proxyMode,proxyHost,proxyUser,proxyPassword,reserved  see above
/// @param link         not null; zeroed first without being freed, filled when `dwStatus` is 0. Free it with
///                     ZenoFreeCloudInfo
/// @return `dwStatus`; 10 for HTTP 404. There is no result word: see nResultCode
///
/// Twice: safe, other lists; free the first ones before. Next: WFMGetNASUserUID at one of the addresses.
TORVIAPI_EXPORT uint32_t ZenoAPIGetCloudLinkSetting(const wchar_t* server, const wchar_t* agentName,
                                                    const wchar_t* appVersion, const wchar_t* clientID,
                                                    const wchar_t* accessToken, const wchar_t* deviceID,
                                                    bool secure, uint32_t proxyMode, const wchar_t* proxyHost,
                                                    const wchar_t* proxyUser, const wchar_t* proxyPassword,
                                                    void* reserved, _CLOUD_LINK_INFORMATION* link);

/// Frees the lists of ZenoAPIGetCloudLinkSetting and sets them to null, their counts to 0.
/// @param link  the record, which is the caller's; may be null
/// @return 0
///
/// Twice: safe.
TORVIAPI_EXPORT uint32_t ZenoFreeCloudInfo(_CLOUD_LINK_INFORMATION* link);

/// Asks by which address this machine is seen from the internet.
/// @param server,agentName,appVersion,clientID  see above
/// @param accessToken  not null or empty; a header
/// @param secure,proxyMode,proxyHost,proxyUser,proxyPassword,reserved  see above
/// @param publicIP     not null, **260** characters: at most 259 and a terminator are written. Filled when
///                     `dwStatus` is 0; empty if the service refuses
/// @return `dwStatus`; HTTP 404 is 6. There is no result word
///
/// Twice: safe.
TORVIAPI_EXPORT uint32_t ZenoAPIGetPublicIP(const wchar_t* server, const wchar_t* agentName,
                                            const wchar_t* appVersion, const wchar_t* clientID,
                                            const wchar_t* accessToken, bool secure, uint32_t proxyMode,
                                            const wchar_t* proxyHost, const wchar_t* proxyUser,
                                            const wchar_t* proxyPassword, void* reserved, wchar_t* publicIP);

/// Asks the remote-access service for a device's link and addresses, with the application's secret.
/// @param server     see above
/// @param deviceID   not null or empty; goes into the URL as it stands
/// @param agentName,appVersion,appID  see above
/// @param appSecret  not null or empty; isn't sent
/// @param secure,proxyMode,proxyHost,proxyUser,proxyPassword,reserved  see above
/// @param link       not null; filled when `dwStatus` is 0
/// @return `dwStatus`
///
/// | dwStatus | nReplyCode | When                                                                          |
/// |----------|------------|-------------------------------------------------------------------------------|
/// | 0        | 0          | the addresses are filled, as far as the service has them                      |
/// | 0        | 2          | the time in the checksum is refused: look at the clock; nothing is sent again |
/// | 0        | 5          | there is no such device, or the service can't get at it                       |
/// | 0        | 6          | the device has no link set up                                                 |
/// | 0        | 7          | the service doesn't know the application                                      |
/// | 0        | 8          | the checksum is refused: another secret                                       |
/// | 0        | 1          | anything else, or an answer that says nothing; see szMessage                  |
/// | 14       | 0          | the answer isn't a JSON object, or one of its texts is an array or an object  |
///
/// There is no result word, and HTTP errors fill nothing: test `dwStatus` first, as nReplyCode 0 alone says
/// nothing. Twice: safe. Next: PeltAPIGetServicePorts, then WFMGetNASUserUID at one of the addresses.
TORVIAPI_EXPORT uint32_t PeltAPIGetVLinkInfo(const wchar_t* server, const wchar_t* deviceID,
                                             const wchar_t* agentName, const wchar_t* appVersion,
                                             const wchar_t* appID, const wchar_t* appSecret, bool secure,
                                             uint32_t proxyMode, const wchar_t* proxyHost,
                                             const wchar_t* proxyUser, const wchar_t* proxyPassword,
                                             void* reserved, _CLOUD_VLINK_INFORMATION* link);

/// Asks the remote-access service for the ports of a device's web server, with the application's secret.
/// @param server     see above
/// @param deviceID   not null or empty; goes into the URL as it stands
/// @param agentName,appVersion,appID  see above
/// @param appSecret  not null or empty; isn't sent
/// @param secure,proxyMode,proxyHost,proxyUser,proxyPassword,reserved  see above
/// @param ports      not null; filled when `dwStatus` is 0
/// @return `dwStatus`; 0 also if the service refuses, which looks like ports that aren't mapped: only the log
///         at level 4 has the service's words. 14: the answer isn't a JSON object, one of its texts is an
///         array or an object, or the mapping is neither a list nor null
///
/// There is no result word. Twice: safe. Next: WFMGetNASUserUID at an address of PeltAPIGetVLinkInfo.
TORVIAPI_EXPORT uint32_t PeltAPIGetServicePorts(const wchar_t* server, const wchar_t* deviceID,
                                                const wchar_t* agentName, const wchar_t* appVersion,
                                                const wchar_t* appID, const wchar_t* appSecret, bool secure,
                                                uint32_t proxyMode, const wchar_t* proxyHost,
                                                const wchar_t* proxyUser, const wchar_t* proxyPassword,
                                                void* reserved, _CLOUD_SERVICE_PORTS* ports);

/// @}

}  // extern "C"

/// Clears a job that has ended. Only the web file manager keeps such jobs. A C++ function, unlike the others.
/// @param context,server,port  the session and where, a `_WFM_AUTH_CONTEXT*`; not null or empty, not 0
/// @param slaveID  null, or the node that ran the job
/// @param pid      the job; above 0
/// @param cancel   not read; may be null
/// @return `dwStatus`; 0 also if the server refuses, which the log tells
///
/// Time-out 30 seconds. Twice: harmless; the server refuses.
TORVIAPI_EXPORT uint32_t WFMDeleteProgress(void* context, const wchar_t* server, unsigned int port,
                                           const wchar_t* slaveID, int pid, bool* cancel);

#endif
