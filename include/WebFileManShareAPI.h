/// @file WebFileManShareAPI.h
/// libTorviAPI: the sharing family. Numbers, threads, ownership and the rest: see WebFileManAPI.h.

#ifndef WEBFILEMANSHAREAPI_H
#define WEBFILEMANSHAREAPI_H

#include "WebFileManAPI.h"

/// One receiver of a team folder, from WebFileManNuboGetTeamFolder: allocated by the library with new, freed
/// by the caller. Texts are terminated.
struct _WFM_TORVI_TEAM_FOLDER_RECEIVER_INFO {
    wchar_t szName[32];           ///< cut at 31; never empty
    wchar_t szDisplayName[2048];  ///< cut at 2047; empty if the server sends none
    int32_t nPermission;          ///< the server's own number; 0 if it sends none
    int32_t nStatus;              ///< the same
};

/// One team folder, from WebFileManNuboGetTeamFolder. Allocated by the caller.
///
/// **A text that is as long as its field, or longer, fills the field and has no terminator.** This can happen
/// to the owner and to the three ids; read them within their width:
///
///     std::wstring owner(folder.szOwner, wcsnlen(folder.szOwner, std::size(folder.szOwner)));
///
/// What the server doesn't send is empty or 0, and so is a text of 2048 characters or more.
struct _WFM_TORVI_TEAM_FOLDER_INFORMATION {
    int32_t nType;                 ///< the server's own number
    int32_t nStatus;               ///< the server's own number
    int32_t nReserved;             ///< left as it is
    wchar_t szOwner[32];           ///< who shares it; perhaps not terminated
    wchar_t szShareID[260];        ///< by which the calls below name it; perhaps not terminated
    wchar_t szNasID[260];          ///< the NAS that holds it; perhaps not terminated
    wchar_t szParentID[260];       ///< perhaps not terminated
    wchar_t szName[2048];          ///< terminated
    wchar_t szPath[4096];          ///< terminated
    wchar_t szOriginalPath[4096];  ///< where its owner has it; terminated
    uint32_t dwReceiverCount;      ///< entries of lppReceivers; receivers without a name aren't among them
    /// An array from new[] of receivers from new, for the caller to delete; null if there are none. What
    /// stood here is overwritten, not freed.
    _WFM_TORVI_TEAM_FOLDER_RECEIVER_INFO** lppReceivers;
};

/// One event, from WebFileManGetMyEvent. Allocated by the caller. Texts are terminated; one that the server
/// doesn't send, or that has 2048 characters or more, is empty.
struct _WFM_TORVI_EVENT_INFORMATION {
    int32_t nEventID;          ///< by which the calls below name it in a session of the web file manager
    wchar_t szTargetName[32];  ///< cut at 31
    int32_t nEventType;        ///< the server's own number; 4 is a share
    int32_t nEventStatus;      ///< the server's own number
    wchar_t szShareID[260];    ///< empty if it doesn't fit
    wchar_t szFile[4096];      ///< the shared folder; never empty
    wchar_t szReserved[260];   ///< always empty
    wchar_t szDate[260];       ///< as the server writes it; cut at 259
    wchar_t szTime[260];       ///< the same
};

/// One share, from WFMTorviFindShare: allocated by the library, freed by the caller. Texts are terminated.
struct _WFM_TORVI_SHARE_INFORMATION {
    int32_t nEventType;       ///< always 4
    int32_t nEventStatus;     ///< the server's own number
    wchar_t szFile[4096];     ///< the shared folder; never empty
    wchar_t szShareID[260];   ///< never empty
    wchar_t szReserved[260];  ///< always empty
};

/// A shared folder, filled by WFMGetTorviShareFolderInformation.
struct _WFM_TORVI_SHARE_FOLDER_INFORMATION {
    int32_t nEventID;        ///< 0 if the server sends none
    bool bFileExists;        ///< the folder is still there
    int32_t nShareIDStatus;  ///< the server's own number; 0 if it sends none
    int32_t nEventStatus;    ///< the server's own number
    int32_t nNuboType;       ///< the server's kind of share
    wchar_t szShareID[260];  ///< terminated; empty if the folder is gone and the server tells no good one
    wchar_t szNasID[260];    ///< terminated; empty if the server tells none, or one that doesn't fit
};

/// What WebFileManSetShareMember does to one member. The caller's.
struct _WFM_SHARE_MEMBER_ACTION {
    wchar_t szName[260];  ///< the user; terminated
    uint32_t dwAction;    ///< the server's own number
    uint32_t dwEventID;   ///< from WebFileManGetShareMember; sent to the web file manager only
};

/// One member, from WebFileManGetShareMember. Allocated by the caller. Numbers are the server's own, 0 if it
/// sends none.
struct _WFM_SHARE_MEMBER_INFORMATION {
    wchar_t szName[260];      ///< cut at 259, terminated; empty if the server sends 2048 characters or more
    int32_t nShareMember;     ///< whether the user has the folder
    int32_t nEventStatus;     ///< how far the invitation is
    int32_t nEventID;         ///< by which the web file manager names it
    wchar_t* pszDescription;  ///< of any length, from new[], for the caller to delete; never null
    int32_t nTorviUser;
};

/// One user, from WebFileManGetUserList. Allocated by the caller; a call that fails leaves it alone. Texts
/// are terminated.
struct _WFM_USER_INFORMATION {
    wchar_t szName[260];      ///< cut at 259; empty if the server sends 2048 characters or more
    wchar_t szPolicy[260];    ///< the server's word, cut as the name
    wchar_t* pszDescription;  ///< of any length, from new[], for the caller to delete; null if there is none
    int32_t nTorviUser;       ///< the server's own number; 0 if it sends none
};

/// One directory domain, from WebFileManGetAdInfo. Allocated by the caller. Texts are terminated, cut at 259,
/// and empty if the server sends 2048 characters or more.
struct _WFM_TORVI_AD_INFORMATION {
    wchar_t szDomain[260];   ///< "corp.example"
    wchar_t szNetbios[260];  ///< "CORP"
};

/// One public link, from WFMGetShareLinkList. All texts are terminated. A text that is longer than its field
/// is cut, one that is longer than 2047 characters is empty; an id that doesn't fit is empty.
struct _WFM_SHARE_LINK_INFO {
    wchar_t szSsid[260];           ///< the link's id, by which every other call names it
    wchar_t szFileName[4096];      ///< never empty
    wchar_t szDownloadLink[2048];  ///< the URL that a visitor opens
    wchar_t szCreator[260];        ///< the user who made it
    wchar_t szLinkName[260];
    bool bIsFolder;
    bool bMultiple;           ///< it holds more than one item: WFMGetShareLinkItemList
    wchar_t szReserved[260];  ///< left as it is
};

/// One item of a link, from WFMGetShareLinkItemList. One with a name of 2048 characters or more counts as
/// without a name.
struct _WFM_SHARE_LINK_ITEM_INFO {
    wchar_t szFileName[2048];  ///< terminated, never empty
    bool bIsFolder;
};

/// What WFMGetandCreateShareLink came to. All texts are terminated; one that is longer than its field is cut,
/// one of 4096 characters or more is empty, as is an id that doesn't fit.
struct _WFM_SHARE_LINK_RESULT {
    int32_t nResult;            ///< the result word of the call
    int32_t nMultiple;          ///< 1: the link holds more than one item
    wchar_t szLinkURL[2048];    ///< empty if the server doesn't tell
    wchar_t szLinkName[260];    ///< empty if it has none
    wchar_t szExpireTime[260];  ///< as the server writes it; empty if the link stays
    wchar_t szSsid[260];        ///< the link's id; without one there is no URL either
    wchar_t szSlaveID[260];     ///< the node that holds the link, told before the request; may be empty
};

/// The items of a device's configuration: one bit each, in WFM_TORVI_GET_DEVICE_CONFIG_ITEM_INFO. A
/// combination of bits is no item. Behind each, the section and the key by which the server knows it.
enum _WFM_TORVI_DEVICE_CONFIG_FLAG_ : uint32_t {
    WFM_CONFIG_SMART_SYNC = 0x1,              ///< "Synchronize", "smart sync"
    WFM_CONFIG_CONFLICT_POLICY = 0x2,         ///< "Policy", "conflict Policy"
    WFM_CONFIG_BLACK_FILE_FILTER = 0x4,       ///< "Policy", "black file filter": tabs between entries
    WFM_CONFIG_MAIL_SEND_METHOD = 0x8,        ///< "Mails", "send method"
    WFM_CONFIG_MAIL_SENDER_ADDRESS = 0x10,    ///< "Mails", "sender address"
    WFM_CONFIG_MAIL_SENDER_SMTP_AUTH = 0x20,  ///< "Mails", "sender smtp auth"
    WFM_CONFIG_MAIL_SENDER_USERNAME = 0x40,   ///< "Mails", "sender username"
    WFM_CONFIG_MAIL_SENDER_PASSWORD = 0x80,   ///< "Mails", "sender password": in clear
    WFM_CONFIG_MAIL_SERVER_NAME = 0x100,      ///< "Mails", "server name"
    WFM_CONFIG_MAIL_SERVER_PORT = 0x200,      ///< "Mails", "server port"
    WFM_CONFIG_MAIL_SERVER_SECURE = 0x400,    ///< "Mails", "server secure"
    WFM_CONFIG_MAIL_SERVER_SECURITY_PROTOCOL = 0x800,  ///< "Mails", "server security protocol"
    WFM_CONFIG_OFFICIAL_VERSION = 0x1000,              ///< "Config", "official version"
    WFM_CONFIG_MANUAL_VERSION = 0x2000,                ///< "Config", "manual version"
};

/// One item of a device's configuration. From WFMGetDeviceConfigInfo: allocated by the library with new,
/// freed by the caller. For WFMSetDeviceConfigInfo: the caller's.
struct WFM_TORVI_GET_DEVICE_CONFIG_ITEM_INFO {
    uint32_t dwFlag;    ///< one of _WFM_TORVI_DEVICE_CONFIG_FLAG_
    wchar_t* pszValue;  ///< of any length. Read: from new[], for the caller to delete, never null. Written:
                        ///< may be null, which is an empty value
    int32_t nAction;    ///< read: 0. Written: 1 sends "action" along with the item
};

/// The items of a device: filled by WFMGetDeviceConfigInfo, read by WFMSetDeviceConfigInfo.
struct WFM_TORVI_DEVICE_CONFIG_LIST {
    uint32_t dwCount;                                  ///< entries of lppItems
    WFM_TORVI_GET_DEVICE_CONFIG_ITEM_INFO** lppItems;  ///< read: from new[]; null if there are none
};

/// One change of a configuration, from WFMGetConfigNotifyInfo: allocated by the library with new, freed by
/// the caller. Texts are as the server writes them, cut at 259 and terminated; one that it doesn't send, or
/// that has 2048 characters or more, is empty.
struct WFM_TORVI_CONFIG_NOTIFY_ITEM_INFO {
    int32_t nEventID;
    wchar_t szUser[260];       ///< whose device it is
    wchar_t szDeviceUID[260];  ///< the device
    wchar_t szAction[260];
    wchar_t szType[260];
    wchar_t szStatus[260];
    wchar_t szTime[260];
    wchar_t szModifier[260];  ///< who changed it
    wchar_t szValue[260];
};

/// The changes, filled by WFMGetConfigNotifyInfo.
struct WFM_TORVI_CONFIG_NOTIFY_LIST {
    uint32_t dwCount;                              ///< entries of lppItems
    WFM_TORVI_CONFIG_NOTIFY_ITEM_INFO** lppItems;  ///< from new[]; null if there are none
};

/// What the user may change, filled by WFMGetConfigACL. Each is 0 or 1; 0 also if the server doesn't tell.
struct WFM_TORVI_CONFIG_ACL_INFO {
    uint32_t dwManagerMode;         ///< an administrator decides at all
    uint32_t dwUseManagerPassword;  ///< changes want the configuration password: WFMAuthConfigPassword
    uint32_t dwClientSetConfig;     ///< the client may set its configuration
    uint32_t dwSmartSync;           ///< WFM_CONFIG_SMART_SYNC
    uint32_t dwConflictPolicy;      ///< WFM_CONFIG_CONFLICT_POLICY
    uint32_t dwBlackFileFilter;     ///< WFM_CONFIG_BLACK_FILE_FILTER
    uint32_t dwMails;               ///< all of the mail items
};

/// One device of a user, from WebFileManGetDeviceList. Allocated by the caller. Texts are cut at 259 and
/// terminated; one that the server doesn't send, or that has 2048 characters or more, is empty.
struct _WFM_TORVI_DEVICE_INFORMATION {
    wchar_t szDeviceName[260];
    wchar_t szDeviceUID[260];  ///< by which the other calls name it
    wchar_t szIP[260];         ///< the address that it was last seen at
    int64_t llModifiedTime;    ///< when its configuration was last changed, in seconds since the epoch
};

extern "C" {

/// @name The types of public links
/// The words that stand on the wire for the type numbers of the calls that make and change links. The calls
/// count from 1: number n is the word at [n - 1].
/// @{

/// Where a link is meant to be opened: 1 "internet", 2 "local".
TORVIAPI_EXPORT extern const wchar_t* const gNetworkTypes[2];
/// How long a link is good: 1 "forever", 2 "specific_time" (until `datetime`), 3 "period_of_time" (for
/// `expireTime`).
TORVIAPI_EXPORT extern const wchar_t* const gValidDurationTypes[3];
/// What a link is made for: 1 "email_download_link", 2 "create_download_link".
TORVIAPI_EXPORT extern const wchar_t* const gDownloadLinkTypes[2];

/// @}

/// @name Start, end and log
/// The sharing family's names for the one logger that both families use; a program needs one set of them. All
/// return 0, run on any thread and need no `QCoreApplication`.
/// @{

/// Opens the log, as WFMInitialization does, in "TorviWFMShareLibLog.log".
/// @param level      mask, not a threshold: the sum of 1 trace, 2 performance, 4 debug, 8 info, 16 warning,
///                   32 error
/// @param logDir     existing folder, with or without "/" at its end; empty means "/". Ignored unless
///                   logToFile
/// @param logToFile  false leaves the file as it is, set or not
/// @param append     false empties the file first
/// @return 0, also if the file can't be opened: lines then go to debug output only
///
/// Twice, or after WFMInitialization: the level is the last one set, the file the first one named, by either
/// family: the lines of both go there. Next: a login.
TORVIAPI_EXPORT uint32_t WFMShareInitialization(uint32_t level, QString logDir, bool logToFile, bool append);

/// Ends the logger of both families, as WFMUnInitialization does.
/// @return 0
///
/// Twice, or together with WFMUnInitialization in either order, or never: safe.
TORVIAPI_EXPORT uint32_t WFMShareUnInitialization();

/// Sets the level mask of both families; the same as WFMUpdateDebugLevel.
/// @param level  as for WFMShareInitialization
/// @return 0
///
/// Twice: safe.
TORVIAPI_EXPORT uint32_t WFMShareUpdateDebugLevel(uint32_t level);

/// Closes the log file and opens it again under its name; the same as WFMReOpenLogFile.
/// @return 0
///
/// Twice: safe.
TORVIAPI_EXPORT uint32_t WFMShareReOpenLogFile();

/// Empties the log file; the same as WFMClearLog.
/// @return 0
///
/// Twice: safe.
TORVIAPI_EXPORT uint32_t WFMShareClearLog();

/// @}

/// @name Jobs
/// @{

/// Asks once how far a job is. For jobs that are named by a text: of WFMTrashRecovery, of the versioning
/// calls and of the sharing family. A move is followed by WFMGetProgress.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID     null, or the node that runs the job
/// @param pid         the job, as the call that started it named it; sent as given, so that it must be safe
///                    in a URL. Not null or empty
/// @param reserved    null
/// @param percent     receives the server's number, 0 to 100 from a server in its senses, unchecked; 0 in
///                    every other case. Not null
/// @param errorCode   receives 0 while all goes well; not null
/// @param resultWord  not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | errorCode   | When                                                                |
/// |----------|-------------|-------------|---------------------------------------------------------------------|
/// | 0        | 0           | 0           | `percent` tells, 100 is the end; 0 when the server's "copying" is 1 |
/// | 0        | 0           | client code | the job has failed                                                  |
/// | 0        | 0           | 1           | the server doesn't tell                                             |
/// | 0        | -1          | 1           | the server refuses, as when it doesn't know the job                 |
/// | not 0, 8 | -1          | -1          | the question failed                                                 |
///
/// Twice: safe; wait half a second or so between two questions. Next: the same, until 100.
TORVIAPI_EXPORT uint32_t WebFileManQueryProgress(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                 uint32_t port, const wchar_t* slaveID, const wchar_t* pid,
                                                 void* reserved, uint32_t* percent, uint32_t* errorCode,
                                                 uint32_t* resultWord);

/// @}

/// @name State of the server
/// @{

/// Asks what the sync service has for this user. There is no result word: `result` is the outcome.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param reserved     null
/// @param slaveID      null, or the node to ask
/// @param result       receives whether the server has told all that it must; not null
/// @param information  not null; zeroed first, filled when `result` is true
/// @return `dwStatus`
///
/// Twice: safe.
TORVIAPI_EXPORT uint32_t WebFileManGetTorviInformation(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                       uint32_t port, void* reserved, const wchar_t* slaveID,
                                                       bool* result, _TORVI_INFORMATION* information);

/// Asks who the server is, within a session. Before one: WFMGetNASUserUID.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param reserved     null
/// @param information  not null; zeroed first, filled when `dwStatus` is 0, also if the server refuses
/// @return `dwStatus`
///
/// Twice: safe.
TORVIAPI_EXPORT uint32_t WebFileManQueryUID(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                            void* reserved, _NAS_USER_UID_INFORMATION* information);

/// Asks how much room a user has, per volume and on the whole.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID       null, or the node to ask
/// @param getAll        true: all volumes
/// @param reserved      null
/// @param quotaEnabled  receives whether there are quotas; not null
/// @param volumeFree    receives the volume's free bytes; not null
/// @param volumeTotal   receives the volume's bytes; not null
/// @param count         receives the number of records; not null
/// @param list          receives the records, to be freed as the file comment of WebFileManAPI.h shows; null
///                      if there are none, as without quotas. Not null
/// @param resultWord    0, or -1 if the reply can't be used; not null
/// @return `dwStatus`; all other outputs are 0 first
///
/// Sizes come as texts such as "1.5 GB" and are rounded by the server; one beyond 64 bits is clamped. Twice:
/// safe, and a second list to free. Next: nothing that must be.
TORVIAPI_EXPORT uint32_t WebFileManGetQuotaInformation(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                       uint32_t port, const wchar_t* slaveID, bool getAll,
                                                       void* reserved, bool* quotaEnabled,
                                                       int64_t* volumeFree, int64_t* volumeTotal,
                                                       uint32_t* count, USER_QUOTA_INFO*** list,
                                                       uint32_t* resultWord);

/// @}

/// @name Team folders, their events and members
/// A team folder is shared by its owner and appears below "/home/.Torvi/" of those who accept it. A session
/// of the sync service names it by its share id, one of the web file manager by the event that tells of it.
/// Requests go to the session's own node; `nasID` tells which NAS holds the share.
/// @{

/// Lists team folders: those that this user shares and those that were shared with this user. For a session
/// of the sync service; one of the web file manager has WebFileManGetMyEvent.
/// @param context,server,port  the session, of the sync service, and where; not null or empty, not 0
/// @param eventType   which folders, by the server's number; 8 asks for team folders
/// @param targetUser  null or empty: shared with anybody; otherwise with this user
/// @param path        null or empty: any; otherwise the folder at this path
/// @param lower       where the page begins, sent as given
/// @param upper       where it ends, sent as given
/// @param reserved    0
/// @param total       receives how many folders there are, by the server's count; not null
/// @param count       in: entries of `list`, may be 0. Out: records filled. Not null
/// @param list        the caller's records; not null, also if `count` is 0
/// @param resultWord  receives the server's own status, **which isn't a client code**; not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                                         |
/// |----------|-------------|------------------------------------------------------------------------------|
/// | 0        | 0           | `count` records are filled, maybe none; more folders came if `total` says so |
/// | 0        | other       | refused: the server's number, as -3; -1 also if the reply is no JSON object  |
/// | 8        | untouched   | as ever, and in a session of the web file manager                            |
///
/// | Of the list         | Whose it is, and what becomes of it                                           |
/// |---------------------|-------------------------------------------------------------------------------|
/// | array and records   | allocated and freed by the caller                                             |
/// | a null in the array | skipped, with its folder; `count` doesn't count it, so go through all entries |
/// | `lppReceivers`      | allocated by the call for each record that it fills, freed by the caller      |
/// | too small           | filled as far as it goes, without a word: both numbers are 0                  |
/// | other failures      | but for 8, `total` and `count` are 0; no record is touched                    |
///
///     for (uint32_t i = 0; i < folder.dwReceiverCount; ++i) delete folder.lppReceivers[i];
///     delete[] folder.lppReceivers;
///
/// Where event type 8 finds none but the session was told of some by WFMUpdateTeamFolderInfo, a line says so.
/// Twice: safe, once the receivers are freed; set `count` to what the list holds before each call. Next:
/// WFMUpdateTeamFolderInfo, or WebFileManAcceptShare for an invitation.
TORVIAPI_EXPORT uint32_t WebFileManNuboGetTeamFolder(
    _WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port, uint32_t eventType,
    const wchar_t* targetUser, const wchar_t* path, uint32_t lower, uint32_t upper, uint64_t reserved,
    uint32_t* total, uint32_t* count, _WFM_TORVI_TEAM_FOLDER_INFORMATION** list, uint32_t* resultWord);

/// Lists events: what was shared by this user and with this user. For a session of the web file manager; one
/// of the sync service has WebFileManNuboGetTeamFolder.
/// @param context,server,port  the session, of the web file manager, and where; not null or empty, not 0
/// @param eventType   which events, by the server's number
/// @param lower       where the page begins, sent as given
/// @param upper       where it ends, sent as given
/// @param reserved    null
/// @param resultWord  not null
/// @param total       receives how many events there are, by the server's count; not null
/// @param count       in: entries of `list`, may be 0. Out: records filled. Not null
/// @param list        the caller's records; not null, also if `count` is 0
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                                  |
/// |----------|-------------|-----------------------------------------------------------------------|
/// | 0        | 0           | the first `count` records are filled, maybe none                      |
/// | 0        | client code | refused: the server's status; -1 also if the reply is no JSON object  |
/// | 7        | 0           | more events came than the list has entries, those without a file, too |
/// | 8        | untouched   | as ever, and in a session of the sync service                         |
///
/// | Of the list         | Whose it is, and what becomes of it                                    |
/// |---------------------|------------------------------------------------------------------------|
/// | array and records   | allocated and freed by the caller                                      |
/// | a null in the array | ends the filling: the records in front of it are filled, the rest lost |
/// | too small           | 7: `total` is set, `count` is 0, no record is touched                  |
/// | other failures      | but for 8, `total` and `count` are 0; no record is touched             |
///
/// Events without a file aren't handed out. Twice: safe; set `count` to what the list holds before each call.
/// Next: WebFileManAcceptShare, WebFileManDenyShare or WebFileManRemoveEvent with an event's id.
TORVIAPI_EXPORT uint32_t WebFileManGetMyEvent(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                              uint32_t port, uint32_t eventType, uint32_t lower,
                                              uint32_t upper, void* reserved, uint32_t* resultWord,
                                              uint32_t* total, uint32_t* count,
                                              _WFM_TORVI_EVENT_INFORMATION** list);

/// Finds the shares below a folder, without regard to case; the folder itself too, if the server writes it
/// with a "/" at its end. A share with an id of 260 characters or more, or a path of 2048, isn't handed out.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param file        the folder, with or without "/" at its end; not null or empty
/// @param lower       where the page begins, sent as given
/// @param upper       where it ends, sent as given
/// @param resultWord  not null
/// @param count       receives the number of records **if there are any, otherwise untouched**: begin with 0.
///                    Not null
/// @param list        receives the records **if there are any, otherwise untouched**: begin with null. Not
///                    null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                                   |
/// |----------|-------------|------------------------------------------------------------------------|
/// | 0        | 0           | done: `count` and `list` are set, or there is no share and they aren't |
/// | 0        | client code | refused: the server's status; `count` and `list` are untouched         |
///
/// | Of the list       | Whose it is, and what becomes of it                                               |
/// |-------------------|-----------------------------------------------------------------------------------|
/// | array and records | allocated by the call, freed by the caller as the file comment of WebFileManAPI.h |
/// |                   | shows                                                                             |
/// | too small         | never: it is as long as it must be                                                |
/// | other failures    | `count` and `list` are untouched                                                  |
///
/// Twice: safe, and a second list to free. Next: WFMGetTorviShareFolderInformation, or a call that takes a
/// share id.
TORVIAPI_EXPORT uint32_t WFMTorviFindShare(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                           const wchar_t* file, uint32_t lower, uint32_t upper,
                                           uint32_t* resultWord, uint32_t* count,
                                           _WFM_TORVI_SHARE_INFORMATION*** list);

/// Asks about one folder that this user shares.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param reserved1    null
/// @param path         the folder; not null or empty. The sync service is sent what follows "/.Torvi/" in it
/// @param reserved2    null
/// @param resultWord   not null
/// @param statusWord   receives the second number; -1 unless both numbers are 0. Not null
/// @param information  not null; zeroed first
/// @return `dwStatus`
///
/// | dwStatus | Result word | statusWord | When                                                           |
/// |----------|-------------|------------|----------------------------------------------------------------|
/// | 0        | 0           | 0          | it is there and shared: `information` is filled                |
/// | 0        | 0           | 2          | it is gone: `information` is filled with what the server still |
/// |          |             |            | says                                                           |
/// | 0        | 0           | 13         | the reply lacks what it must have, or the folder isn't shared: |
/// |          |             |            | `information` stays zero                                       |
/// | 0        | client code | -1         | refused: the server's status                                   |
/// | 8        | -1          | -1         | nothing sent: sync service, and the path lies in a team folder |
/// |          |             |            | that this user has received, by WFMUpdateTeamFolderInfo        |
///
/// Twice: safe. Next: WebFileManGetShareMember with the share id, or WebFileManShareTo.
TORVIAPI_EXPORT uint32_t WFMGetTorviShareFolderInformation(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                           uint32_t port, void* reserved1,
                                                           const wchar_t* path, void* reserved2,
                                                           uint32_t* resultWord, uint32_t* statusWord,
                                                           _WFM_TORVI_SHARE_FOLDER_INFORMATION* information);

/// Shares a folder with users: a job of the server's.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param targetCount  number of users, not 0
/// @param targets      their names, none of them null; not null
/// @param path         the folder; not null or empty. The "/" in front of "/home/" isn't sent, in whatever
///                     case "home" is written
/// @param capacity     wide characters in `pid`, not 0; 260 is always enough
/// @param reserved     null
/// @param pid          receives the job's process id if the server names one, otherwise untouched: begin with
///                     an empty text. Not null
/// @param resultWord   not null
/// @param statusWord   receives the client code of the server's status; -1 if there is none. May be null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                                         |
/// |----------|-------------|------------------------------------------------------------------------------|
/// | 0        | 0           | the job runs: `pid` is filled; untouched if the server names none, or one of |
/// |          |             | 260 characters or more                                                       |
/// | 0        | -1          | refused; `pid` is filled if the server names a job all the same              |
/// | 0        | 122         | `pid` has no room for the process id; whether the server agrees is in        |
/// |          |             | `statusWord`                                                                 |
/// | 8        | -1          | nothing is sent: a session of the sync service was told by                   |
/// |          |             | WFMUpdateTeamFolderInfo that the path lies in a folder that this user has    |
/// |          |             | received; `statusWord` is -1                                                 |
///
/// Twice: up to the server. Next: WebFileManQueryProgress with the process id; the users answer by
/// WebFileManAcceptShare or WebFileManDenyShare.
TORVIAPI_EXPORT uint32_t WebFileManShareTo(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                           uint32_t targetCount, const wchar_t* const* targets,
                                           const wchar_t* path, uint32_t capacity, void* reserved,
                                           wchar_t* pid, uint32_t* resultWord, uint32_t* statusWord);

/// Takes a folder back from everybody: a job of the server's. For its owner.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param nasID       null or empty: this NAS; ignored in a session of the web file manager
/// @param shareID     the share, in either session; not null or empty
/// @param capacity    wide characters in `pid`, not 0; 260 is always enough
/// @param reserved    null
/// @param pid         as for WebFileManShareTo; not null
/// @param resultWord  not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                                         |
/// |----------|-------------|------------------------------------------------------------------------------|
/// | 0        | 0           | the job runs: `pid` is filled; untouched if the server names none, or one of |
/// |          |             | 260 characters or more                                                       |
/// | 0        | -1          | refused; `pid` is filled if the server names a job all the same              |
/// | 0        | 122         | `pid` has no room for the process id; the server may have agreed             |
///
/// Twice: the server refuses. Next: WebFileManQueryProgress with the process id.
TORVIAPI_EXPORT uint32_t WebFileManUnshare(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                           const wchar_t* nasID, const wchar_t* shareID, uint32_t capacity,
                                           void* reserved, wchar_t* pid, uint32_t* resultWord);

/// Accepts an invitation: the folder appears.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param nasID        null or empty: this NAS; ignored in a session of the web file manager
/// @param displayName  the name that the folder gets; not null or empty in a session of the sync service,
///                     ignored otherwise
/// @param eventID      the event, in a session of the web file manager; ignored otherwise
/// @param shareID      the share; not null or empty in a session of the sync service, ignored otherwise
/// @param reserved     null
/// @param file         receives the folder as the server tells it, **without a test of the capacity: it must
///                     hold 2048 wide characters**. Untouched unless the server's own status is 0. Not null
/// @param resultWord   not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                                          |
/// |----------|-------------|-------------------------------------------------------------------------------|
/// | 0        | 0           | the server's status is 0: `file` is filled; or 1: it is untouched, and a line |
/// |          |             | says so. Begin with an empty text                                             |
/// | 0        | client code | refused: the server's status; -9 if the server sends none                     |
///
/// Twice: the server refuses. Next: WebFileManNuboGetTeamFolder or WebFileManGetMyEvent, and
/// WFMUpdateTeamFolderInfo.
TORVIAPI_EXPORT uint32_t WebFileManAcceptShare(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                               uint32_t port, const wchar_t* nasID,
                                               const wchar_t* displayName, uint32_t eventID,
                                               const wchar_t* shareID, void* reserved, wchar_t* file,
                                               uint32_t* resultWord);

/// Turns an invitation down.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param nasID       null or empty: this NAS; ignored in a session of the web file manager
/// @param shareID     the share; not null or empty in a session of the sync service, ignored otherwise
/// @param eventID     the event, in a session of the web file manager; ignored otherwise
/// @param reserved    null
/// @param resultWord  not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                                     |
/// |----------|-------------|--------------------------------------------------------------------------|
/// | 0        | 0           | done: the server's status is 0                                           |
/// | 0        | -1          | refused: **any other status, 1 too**; the log alone has the server's own |
/// |          |             | number                                                                   |
///
/// Twice: the server refuses. Next: nothing that must be.
TORVIAPI_EXPORT uint32_t WebFileManDenyShare(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                             const wchar_t* nasID, const wchar_t* shareID, uint32_t eventID,
                                             void* reserved, uint32_t* resultWord);

/// Gives a received folder back: it disappears.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param nasID       null or empty: this NAS; ignored in a session of the web file manager
/// @param shareID     the share; not null or empty in a session of the sync service, ignored otherwise
/// @param eventID     the event, in a session of the web file manager; ignored otherwise
/// @param reserved    null
/// @param resultWord  not null
/// @return `dwStatus`; the numbers are those of WebFileManDenyShare
///
/// Twice: the server refuses. Next: WFMUpdateTeamFolderInfo without it.
TORVIAPI_EXPORT uint32_t WebFileManLeaveShare(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                              uint32_t port, const wchar_t* nasID, const wchar_t* shareID,
                                              uint32_t eventID, void* reserved, uint32_t* resultWord);

/// Takes a folder back from one receiver, whom the share id or the event tells. For its owner.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param nasID       null or empty: this NAS; ignored in a session of the web file manager
/// @param shareID     the share; not null or empty in a session of the sync service, ignored otherwise
/// @param eventID     the event, in a session of the web file manager; ignored otherwise
/// @param reserved    null
/// @param resultWord  not null
/// @return `dwStatus`; the numbers are those of WebFileManDenyShare
///
/// Twice: the server refuses. Next: WebFileManGetShareMember to see who is left.
TORVIAPI_EXPORT uint32_t WebFileManKickOutShareMember(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                      uint32_t port, const wchar_t* nasID,
                                                      const wchar_t* shareID, uint32_t eventID,
                                                      void* reserved, uint32_t* resultWord);

/// Clears an event from the list. For a session of the web file manager: the sync service has no events.
/// @param context,server,port  the session, of the web file manager, and where; not null or empty, not 0
/// @param eventID     the event, sent as given
/// @param reserved    null
/// @param resultWord  not null
/// @return `dwStatus`; the numbers are those of WebFileManDenyShare, and 8 in a session of the sync service
///
/// A reply that isn't understood is 14 as ever; its line says WFM_PARSE_XML_INVALID_PARAMETER. Twice: the
/// server refuses. Next: WebFileManGetMyEvent.
TORVIAPI_EXPORT uint32_t WebFileManRemoveEvent(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                               uint32_t port, uint32_t eventID, void* reserved,
                                               uint32_t* resultWord);

/// Lists the users that a folder is shared with, or could be.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param nasID        null or empty: this NAS; ignored in a session of the web file manager
/// @param shareID      the share, in either session; not null or empty
/// @param lower        where the page begins; less than `upper`
/// @param upper        where it ends
/// @param userType     1: the server's own users; 2: those of the directory domain that the next two name
/// @param domain       the domain; may be null or empty, and is ignored with type 1
/// @param netbios      its NetBIOS name; may be null or empty, and is ignored with type 1
/// @param filter       null or empty: every user; otherwise what the server is to look for
/// @param allUsers     true asks for all users, whatever they may do
/// @param refresh      true has the server look anew; the time-out is then 120 seconds
/// @param onlyMembers  true asks for those who have the folder
/// @param reserved     null
/// @param total        receives how many there are on all pages, by the server's count; not null
/// @param count        in: entries of `list`, may be 0. Out: records filled. Not null
/// @param list         the caller's records; not null, also if `count` is 0
/// @param resultWord   not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                                       |
/// |----------|-------------|----------------------------------------------------------------------------|
/// | 0        | 0           | `count` records are filled, maybe none                                     |
/// | 0        | 87          | nothing sent: `userType` is neither 1 nor 2                                |
/// | 0        | 122         | more members came than the list has entries                                |
/// | 0        | -1          | refused: the server's status isn't 0. The line is that of 122 all the same |
/// | 8        | untouched   | as ever, and if `lower` isn't less than `upper`                            |
///
/// | Of the list         | Whose it is, and what becomes of it                                           |
/// |---------------------|-------------------------------------------------------------------------------|
/// | array and records   | allocated and freed by the caller                                             |
/// | a null in the array | skipped, with its member; `count` doesn't count it, so go through all entries |
/// | `pszDescription`    | allocated by the call with new[] for each record that it fills, an empty one  |
/// |                     | too, freed by the caller; what stood there is overwritten, not freed          |
/// | too small           | 122: `total` is set, `count` is 0, no record is touched                       |
/// | other failures      | but for 8, `total` and `count` are 0; no record is touched                    |
///
///     for (uint32_t i = 0; i < entries; ++i)
///         if (list[i] != nullptr) delete[] std::exchange(list[i]->pszDescription, nullptr);
///
/// Begin with null descriptions. Twice: safe, once they are freed; set `count` to what the list holds before
/// each call. Next: WebFileManSetShareMember.
TORVIAPI_EXPORT uint32_t WebFileManGetShareMember(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                  uint32_t port, const wchar_t* nasID, const wchar_t* shareID,
                                                  uint32_t lower, uint32_t upper, uint32_t userType,
                                                  const wchar_t* domain, const wchar_t* netbios,
                                                  const wchar_t* filter, bool allUsers, bool refresh,
                                                  bool onlyMembers, void* reserved, uint32_t* total,
                                                  uint32_t* count, _WFM_SHARE_MEMBER_INFORMATION** list,
                                                  uint32_t* resultWord);

/// Changes members of a share: a job of the server's. For its owner.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param nasID        null or empty: this NAS; sent in either session
/// @param shareID      the share, in either session; not null or empty
/// @param memberCount  entries of `members`, not 0
/// @param members      what to do with whom; not null. A null among them is left out
/// @param capacity     wide characters in `pid`, not 0; 260 is always enough
/// @param reserved     null
/// @param pid          as for WebFileManShareTo; not null
/// @param resultWord   not null
/// @return `dwStatus`; the numbers are those of WebFileManUnshare
///
/// Twice: up to the server. Next: WebFileManQueryProgress with the process id, then WebFileManGetShareMember.
TORVIAPI_EXPORT uint32_t WebFileManSetShareMember(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                  uint32_t port, const wchar_t* nasID, const wchar_t* shareID,
                                                  uint32_t memberCount,
                                                  const _WFM_SHARE_MEMBER_ACTION* const* members,
                                                  uint32_t capacity, void* reserved, wchar_t* pid,
                                                  uint32_t* resultWord);

/// @}

/// @name Users, settings and shared folders
/// Requests go to the session's own node, unless a call takes a slave id. Lists are the caller's: an array of
/// pointers to records, both allocated and freed by the caller.
/// @{

/// Lists users of the server that a folder can be shared with: its own, or those of a directory.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param userType    1: the server's own users; 2: those of the directory domain that the next two name
/// @param domain      the domain, from WebFileManGetAdInfo; may be null or empty, and is ignored with type 1
/// @param netbios     its NetBIOS name, from there too; may be null or empty, and is ignored with type 1
/// @param filter      null or empty: every user; otherwise what the server is to look for
/// @param lower       where the page begins, sent as given
/// @param upper       where it ends, sent as given; the two aren't compared
/// @param allUsers    true asks for all users, whatever they may do
/// @param refresh     true has the server look anew
/// @param reserved    null
/// @param resultWord  not null
/// @param total       receives how many users there are on all pages, by the server's count; not null
/// @param count       in: entries of `list`, may be 0. Out: records filled. Not null
/// @param list        the caller's records; not null, also if `count` is 0
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                                   |
/// |----------|-------------|------------------------------------------------------------------------|
/// | 0        | 0           | `count` records are filled, maybe none. **A refusal looks the same**:  |
/// |          |             | the server's status isn't read, but that -3 comes with no user         |
/// | 0        | 87          | nothing sent: `userType` is neither 1 nor 2                            |
/// | 0        | 122         | more users came than the list has entries                              |
///
/// | Of the list         | Whose it is, and what becomes of it                                         |
/// |---------------------|-----------------------------------------------------------------------------|
/// | array and records   | allocated and freed by the caller                                           |
/// | a null in the array | skipped, with its user; `count` doesn't count it, so go through all entries |
/// | `pszDescription`    | allocated by the call with new[], freed by the caller; what stood there is  |
/// |                     | overwritten, not freed: begin with null                                     |
/// | too small           | 122: `total` is set, `count` is 0, no record is touched                     |
/// | other failures      | but for 8, `total` and `count` are 0; no record is touched                  |
///
///     for (uint32_t i = 0; i < entries; ++i)
///         if (list[i] != nullptr) delete[] std::exchange(list[i]->pszDescription, nullptr);
///
/// Users for whom the server sends no name aren't handed out. Twice: safe, once the descriptions are freed;
/// set `count` to what the list holds before each call. Next: the following page, or WebFileManShareTo.
TORVIAPI_EXPORT uint32_t WebFileManGetUserList(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                               uint32_t port, uint32_t userType, const wchar_t* domain,
                                               const wchar_t* netbios, const wchar_t* filter, uint32_t lower,
                                               uint32_t upper, bool allUsers, bool refresh, void* reserved,
                                               uint32_t* resultWord, uint32_t* total, uint32_t* count,
                                               _WFM_USER_INFORMATION** list);

/// Lists the directory domains that the server knows.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param capacity    entries of `list`, not negative; 0 is none
/// @param reserved    null
/// @param resultWord  not null
/// @param list        the caller's records; not null, also if `capacity` is 0
/// @param count       receives the number of records filled; not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                        |
/// |----------|-------------|---------------------------------------------|
/// | 0        | 0           | `count` records are filled, maybe none      |
/// | 0        | 122         | more domains came than the list has entries |
/// | 0        | -1          | the server refuses                          |
///
/// | Of the list         | Whose it is, and what becomes of it                                              |
/// |---------------------|----------------------------------------------------------------------------------|
/// | array and records   | allocated and freed by the caller                                                |
/// | a null in the array | skipped, with its domain; `count` doesn't count it, so go through all entries    |
/// | too small           | 122: `count` is the number that the server reports, for a larger list; no record |
/// |                     | is touched. A negative `capacity` is too small even for none                     |
/// | other failures      | but for 8, `count` is 0; no record is touched                                    |
///
/// A success, and 122 too, writes a line at level 4. Twice: safe. Next: WebFileManGetUserList, type 2.
TORVIAPI_EXPORT uint32_t WebFileManGetAdInfo(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                             int32_t capacity, void* reserved, uint32_t* resultWord,
                                             _WFM_TORVI_AD_INFORMATION** list, uint32_t* count);

/// Asks where a share lies on the server.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param shareID     the share; not null or empty
/// @param capacity    wide characters in `path`, not 0; 4096 is always enough
/// @param reserved    null
/// @param path        receives the path when both numbers are 0, otherwise untouched; not null
/// @param resultWord  not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                                     |
/// |----------|-------------|--------------------------------------------------------------------------|
/// | 0        | 0           | `path` is filled                                                         |
/// | 0        | -23         | it doesn't fit with its terminator; other calls say 122 for this         |
/// | 0        | -1          | there is none, it has 4096 characters or more, or the server doesn't say |
/// | 0        | client code | refused: the server's status                                             |
///
/// Twice: safe. Next: WFMGetNodeList with that path.
TORVIAPI_EXPORT uint32_t WebFileManGetSharePath(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                uint32_t port, const wchar_t* shareID, uint32_t capacity,
                                                void* reserved, wchar_t* path, uint32_t* resultWord);

/// Asks whether the sharing service's recycle bin is on for this user. There is no result word.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param reserved  null
/// @param enabled   receives true if the server's number is 1; false for any other, for none, and for every
///                  failure but 8. Not null
/// @return `dwStatus`
///
/// Twice: safe. Next: nothing that must be.
TORVIAPI_EXPORT uint32_t WebFileManGetRecycleBin(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                 uint32_t port, void* reserved, bool* enabled);

/// Sets this user's recycle bin of the sharing service.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param value       the server's number, sent as given; 1 is what WebFileManGetRecycleBin calls true
/// @param reserved    null
/// @param resultWord  not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                 |
/// |----------|-------------|------------------------------------------------------|
/// | 0        | 0           | set: "success" is true, whatever the server's status |
/// | 0        | 5           | refused: any other "success", or a reply without one |
///
/// Twice: safe. Next: nothing that must be.
TORVIAPI_EXPORT uint32_t WebFileManSetRecycleBin(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                 uint32_t port, uint32_t value, void* reserved,
                                                 uint32_t* resultWord);

/// Asks for this user's share policy. There is no result word.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param reserved  null
/// @param policy    receives the server's number; 0 if it sends none, and for every failure but 8. Not null
/// @return `dwStatus`
///
/// Twice: safe. Next: nothing that must be.
TORVIAPI_EXPORT uint32_t WebFileManGetPolicy(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                             void* reserved, uint32_t* policy);

/// Sets this user's share policy.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param value       the server's number, as WebFileManGetPolicy tells it; sent as given
/// @param reserved    null
/// @param resultWord  not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                 |
/// |----------|-------------|------------------------------------------------------|
/// | 0        | 0           | set: "success" is true, whatever the server's status |
/// | 0        | 5           | refused: any other "success", or a reply without one |
///
/// Twice: safe. Next: nothing that must be.
TORVIAPI_EXPORT uint32_t WebFileManSetPolicy(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                             uint32_t value, void* reserved, uint32_t* resultWord);

/// Changes the name of a shared folder. The paths are sent as they stand: team folders aren't mapped, and the
/// request goes to the session's node.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param source       folder and name together; one "/" at the end is cut. Not null or empty
/// @param destination  the same folder and the new name; one "/" at the end is cut. Not null or empty
/// @param number       not read
/// @param reserved     null
/// @param resultWord   not null
/// @return `dwStatus`; **0 also where nothing is sent**, unlike WFMRenamePath
///
/// | dwStatus | Result word | When                                                                      |
/// |----------|-------------|---------------------------------------------------------------------------|
/// | 0        | 0           | renamed: "success" is true, whatever the server's status                  |
/// | 0        | 5           | refused; or nothing sent: a path without a folder, as "/Public" or "name" |
/// | 0        | 87          | nothing sent: the folders differ                                          |
///
/// Twice: up to the server. Next: none.
TORVIAPI_EXPORT uint32_t WebFileManRenameShareFolder(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                     uint32_t port, const wchar_t* source,
                                                     const wchar_t* destination, uint32_t number,
                                                     void* reserved, uint32_t* resultWord);

/// Carries a shared folder into another folder, under its old name or a new one: the server moves it within
/// the request, and a new name is then given by WebFileManRenameShareFolder. The paths are sent as they
/// stand, to the session's node.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param source       folder and name together; one "/" at the end is cut. Not null or empty
/// @param destination  the other folder and the name there; one "/" at the end is cut. Not null or empty
/// @param number       not read
/// @param reserved     null
/// @param resultWord   not null
/// @return `dwStatus`; 0 also where nothing is sent
///
/// | dwStatus | Result word | When                                                                     |
/// |----------|-------------|--------------------------------------------------------------------------|
/// | 0        | 0           | moved, and renamed if the names differ                                   |
/// | 0        | 5           | refused with status -3; or nothing sent: a path without a folder         |
/// | 0        | 87          | nothing sent: it is there already                                        |
/// | 0        | -1          | refused otherwise; the server's own 1 is a refusal here, too             |
/// | any      | any         | moved, and renaming failed so: **it lies in the new folder under its old |
/// |          |             | name**. 0 with 5 is then either: look at both folders                    |
///
/// Twice: up to the server. Next: WebFileManUpdateLink.
TORVIAPI_EXPORT uint32_t WebFileManMoveShareFolder(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                   uint32_t port, const wchar_t* source,
                                                   const wchar_t* destination, uint32_t number,
                                                   void* reserved, uint32_t* resultWord);

/// Tells the server that a shared folder lies elsewhere now, so that links to it follow. Always at the web
/// file manager; in a session of the sync service the node stands in front.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID      null, or the node that holds the folder
/// @param source       where it was; of it the name alone is sent. One "/" at the end is cut. Not null or
///                     empty
/// @param destination  where it is now; of it the folder alone is sent. One "/" at the end is cut. Not null
///                     or empty
/// @param number       not read
/// @param reserved     null
/// @param resultWord   not null
/// @return `dwStatus`; 0 also where nothing is sent
///
/// | dwStatus | Result word | When                                                             |
/// |----------|-------------|------------------------------------------------------------------|
/// | 0        | 0           | the links follow                                                 |
/// | 0        | 5           | refused with status -3; or nothing sent: a path without a folder |
/// | 0        | -1          | refused otherwise; the server's own 1 is a refusal here, too     |
///
/// Twice: safe. Next: nothing that must be.
TORVIAPI_EXPORT uint32_t WebFileManUpdateLink(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                              uint32_t port, const wchar_t* slaveID, const wchar_t* source,
                                              const wchar_t* destination, uint32_t number, void* reserved,
                                              uint32_t* resultWord);

/// Has the server repair its link to a team folder. There is no result word: `fixed` is the outcome.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param reserved  null
/// @param type      4 in a session of the sync service, 8 in one of the web file manager; any other is
///                  refused with 8
/// @param path      the team folder as the server has it, sent whole; not null or empty
/// @param fixed     becomes 1 if the server has repaired the link, which writes a line at level 4; **in every
///                  other case it stays as it was**: set it to 0 first. Not null
/// @return `dwStatus`; 0 also if the server refuses, or there was nothing to repair
///
/// Twice: safe. Next: WebFileManNuboGetTeamFolder.
TORVIAPI_EXPORT uint32_t WFMFixTeamFolderLink(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                              uint32_t port, void* reserved, uint32_t type,
                                              const wchar_t* path, uint32_t* fixed);

/// @}

/// @name Public links
/// A link is a URL under which the server hands a file or folder to whoever opens it. The server names it by
/// an id, the ssid. Links belong to the web file manager: these calls ask its CGI in a session of either
/// service; in one of the sync service `slaveID` counts as elsewhere. In one of the web file manager it
/// doesn't route, but where the host text of a link and `szSlaveID` name a node, they name it all the same.
///
/// | Call                     | Makes a link    | The URL goes to | Too small a buffer or list                    |
/// |--------------------------|-----------------|-----------------|-----------------------------------------------|
/// | WFMGetShareLinkList      | no              | the records     | 7; exactly as large will do                   |
/// | WFMGetShareLinkItemList  | no              | -               | 7; exactly as large will do                   |
/// | WFMGetShareLink          | if there's none | a buffer        | 9; a URL as long as it fits, **unterminated** |
/// | WFMGetandCreateShareLink | if there's none | its record      | cut                                           |
/// | WFMCreateShareLink       | yes             | -               | -                                             |
/// | WFMUpdateShareLink       | no              | a buffer        | 7; a URL as long as it doesn't fit            |
///
/// Access codes and mail passwords travel in clear in the form; use a secure session.
/// @{

/// Lists the links that there are, by file name. There is no result word: a server that refuses gives an
/// empty list.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID   null, or the node to ask
/// @param limit     how many links to ask for, 1 or more
/// @param reserved  null
/// @param start     in: the row to begin at, 0 or more. **Out: how many links there are**, 0 if the server
///                  doesn't tell; untouched if the request failed. Not null
/// @param count     in: entries in `list`. Out: records filled; 0 after every failure but 8. Not null
/// @param list      the caller's records; not null. A null entry is passed over, and the link goes to the
///                  next one; links for which no entry is left are lost without a word
/// @return `dwStatus`
///
/// | The list                    | Who                                                                     |
/// |-----------------------------|-------------------------------------------------------------------------|
/// | pointers and records        | the caller allocates and frees both; the library allocates nothing      |
/// | smaller than the reply      | 7: count is 0, no record is written, `start` has the total all the same |
/// | exactly as large, or larger | filled from its beginning; a link without a file name is left out       |
///
/// | dwStatus | When                                      |
/// |----------|-------------------------------------------|
/// | 0        | `count` records are filled, maybe none    |
/// | 7        | more links came than the list has entries |
/// | 8        | also: a limit below 1 or a start below 0  |
///
/// Twice: safe, but set `start` and `count` anew: both are changed. Next: the same from the row that was
/// given plus `limit` on, until the total is reached.
TORVIAPI_EXPORT uint32_t WFMGetShareLinkList(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                             const wchar_t* slaveID, int32_t limit, void* reserved,
                                             int32_t* start, uint32_t* count, _WFM_SHARE_LINK_INFO** list);

/// Lists what one link holds, as a visitor sees it: the request goes to the link's public address and carries
/// no session id. There is no result word.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param path      null, or the path that was shared: if it lies in a team folder, that folder's node is
///                  asked. It isn't sent
/// @param slaveID   null, or the node to ask
/// @param reserved  null
/// @param ssid      the link; not null or empty
/// @param total     receives how many items the link holds; 0 after every failure but 7 and 8. Not null
/// @param count     in: entries in `list`. Out: records filled; 0 after every failure but 8. Not null
/// @param list      the caller's records; not null, **and no entry of it may be null**: unlike
///                  WFMGetShareLinkList, this call doesn't look
/// @return `dwStatus`
///
/// | The list                    | Who                                                                |
/// |-----------------------------|--------------------------------------------------------------------|
/// | pointers and records        | the caller allocates and frees both; the library allocates nothing |
/// | smaller than the reply      | 7: count is 0, no record is written, `total` is set all the same   |
/// | exactly as large, or larger | filled from its beginning; an item without a name is left out      |
///
/// | dwStatus | When                                                         |
/// |----------|--------------------------------------------------------------|
/// | 0        | `count` records are filled; none for a link that isn't there |
/// | 7        | more items came than the list has entries                    |
///
/// Twice: safe, but set `count` anew. The server sends all items at once: after 7 ask again with more
/// entries, `total` of them as a rule.
TORVIAPI_EXPORT uint32_t WFMGetShareLinkItemList(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                 uint32_t port, const wchar_t* path, const wchar_t* slaveID,
                                                 void* reserved, const wchar_t* ssid, uint32_t* total,
                                                 uint32_t* count, _WFM_SHARE_LINK_ITEM_INFO** list);

/// Asks for the link of one path; the server makes it if there is none. It can mail it at once, in fixed
/// English words; WFMCreateShareLink and WFMSendShareLinkMail take the caller's.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID       null, or the node to ask; that of a team folder goes before it
/// @param downloadType  1 or 2, of gDownloadLinkTypes
/// @param durationType  1 to 3, of gValidDurationTypes
/// @param networkType   1 or 2, of gNetworkTypes
/// @param hostname      the host that the link is to name; not null or empty
/// @param addressee     whom to mail it to; null or empty: nobody
/// @param path          what to share: a folder, "/" and a name, neither empty. Not null
/// @param accessCode    what a visitor must give; null or empty: nothing
/// @param datetime      the day on which the link ends, for duration 2, otherwise not sent; may be null
/// @param expireTime    the period, for duration 3; may be null
/// @param secureLink    true: an https link
/// @param reserved      null
/// @param linkCapacity  in: wide characters in `link`. Out: what it must be, at 9; otherwise unchanged. Not
///                      null, also without a link buffer
/// @param link          receives the URL, empty if the server tells none or one of 2048 bytes or more; null:
///                      not wanted. 2048 is always enough. **A URL of exactly
///                      `linkCapacity` characters is copied without a terminator**: pass one less than the
///                      buffer has, and terminate it before the call
/// @param expireTimeOut receives when the link ends, as the server writes it, maybe empty; **it must hold
///                      256**: no capacity is tested. Not null
/// @param resultWord    not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                                         |
/// |----------|-------------|------------------------------------------------------------------------------|
/// | 0        | 0           | there is a link; both texts are copied                                       |
/// | 0        | -1          | refused, or the reply can't be understood: this call never gives 14 for that |
/// | 8        | untouched   | also: a type number out of range                                             |
/// | 9        | 0           | **the link is made**, but longer than the buffer; the expire time is copied  |
/// | 14       | -1          | the path has no "/", no folder or no name: nothing sent                      |
///
/// Twice: the same link; a mail goes out each time. Next, after 9: the same with the capacity that came back,
/// without an addressee.
TORVIAPI_EXPORT uint32_t WFMGetShareLink(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                         const wchar_t* slaveID, uint32_t downloadType, uint32_t durationType,
                                         uint32_t networkType, const wchar_t* hostname,
                                         const wchar_t* addressee, const wchar_t* path,
                                         const wchar_t* accessCode, const wchar_t* datetime,
                                         const wchar_t* expireTime, bool secureLink, void* reserved,
                                         uint32_t* linkCapacity, wchar_t* link, wchar_t* expireTimeOut,
                                         uint32_t* resultWord);

/// Asks for the link of one or more files; the server makes it if there is none. There is no result word: the
/// record has it.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID       null, or the node to ask; that of a team folder goes before it
/// @param timeoutMs     milliseconds for the whole exchange; less than 60000 counts as 60000
/// @param hostname      the host that the link is to name; not null or empty unless newShare. Where another
///                      node is asked, the port and that node are sent with it
/// @param reserved      null
/// @param fileList      whole paths, **each with ";" behind it**: what stands behind the last ";" counts only
///                      if there is nothing else. All lie in the folder of the first. Not null or empty
///                      unless newShare
/// @param accessCode    what a visitor must give; null or empty: nothing
/// @param expireTime    the period, for duration 3; may be null
/// @param datetime      the day on which the link ends, for duration 2, otherwise not sent; may be null
/// @param linkName      the name of a new link; counts with newShare only. May be null
/// @param secureLink    true: an https link
/// @param durationType  1 to 3, of gValidDurationTypes; another number sends an empty word
/// @param newShare      true: a link that belongs to no folder; hostname and fileList may be empty then. The
///                      files' folder isn't sent, and what lies in a team folder isn't mapped, nor its node
///                      used
/// @param information   not null; zeroed first, with nResult -1
/// @return `dwStatus`
///
/// | dwStatus | nResult     | When                                                      |
/// |----------|-------------|-----------------------------------------------------------|
/// | 0        | 0           | the record is filled with what the server told            |
/// | 0        | client code | refused: the client code of the server's status           |
/// | 8        | untouched   | no record; without newShare no hostname or no list        |
/// | 8        | -1          | without newShare the first path of the list has no folder |
/// |          |             | or the list names none                                    |
///
/// The team folders themselves ("/home/.Torvi/<name>") may be listed together if one node holds them; the
/// request then names their places on the server. Twice: the same link, with newShare up to the server. Next:
/// WFMSendShareLinkMail.
TORVIAPI_EXPORT uint32_t WFMGetandCreateShareLink(
    _WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port, const wchar_t* slaveID,
    uint32_t timeoutMs, const wchar_t* hostname, void* reserved, const wchar_t* fileList,
    const wchar_t* accessCode, const wchar_t* expireTime, const wchar_t* datetime, const wchar_t* linkName,
    bool secureLink, uint32_t durationType, bool newShare, _WFM_SHARE_LINK_RESULT* information);

/// Makes a link, and mails it if there is a subject and a content. The URL isn't handed out: WFMGetShareLink.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID       null, or the node to ask; that of a team folder goes before it
/// @param downloadType  1 or 2, of gDownloadLinkTypes
/// @param durationType  1 to 3, of gValidDurationTypes
/// @param networkType   1 or 2, of gNetworkTypes
/// @param hostname      the host that the link is to name; not null or empty
/// @param fileTotal     the number of files, sent as given
/// @param path          what to share: a folder, "/" and a name, neither empty. Not null
/// @param accessCode    what a visitor must give; null or empty: nothing
/// @param mailPassword  the password that the mail tells; sent with a mail only. May be null
/// @param datetime      the day on which the link ends, for duration 2, otherwise not sent; may be null
/// @param secureLink    true: an https link
/// @param expireTime    the period, for duration 3; not null or empty, whatever the duration
/// @param addressee     whom to mail it to; not null or empty, also without a mail
/// @param mailDate      the date that the mail tells; not null or empty
/// @param subject,content  of the mail; one of them null or empty: no mail
/// @param reserved      null
/// @param resultWord    not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                    |
/// |----------|-------------|---------------------------------------------------------|
/// | 0        | 0           | made, and mailed if it was to be                        |
/// | 0        | 6           | the mail failed                                         |
/// | 0        | 7           | the time is no good, whatever became of the mail        |
/// | 0        | -1          | refused                                                 |
/// | 8        | untouched   | also: a type number out of range                        |
/// | 14       | -1          | the path has no "/", no folder or no name: nothing sent |
///
/// Twice: up to the server. Next: WFMGetShareLinkList.
TORVIAPI_EXPORT uint32_t WFMCreateShareLink(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                            const wchar_t* slaveID, uint32_t downloadType,
                                            uint32_t durationType, uint32_t networkType,
                                            const wchar_t* hostname, uint64_t fileTotal, const wchar_t* path,
                                            const wchar_t* accessCode, const wchar_t* mailPassword,
                                            const wchar_t* datetime, bool secureLink,
                                            const wchar_t* expireTime, const wchar_t* addressee,
                                            const wchar_t* mailDate, const wchar_t* subject,
                                            const wchar_t* content, void* reserved, uint32_t* resultWord);

/// Changes links, or their name alone.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID       null, or the node that holds them
/// @param downloadType  1 or 2, of gDownloadLinkTypes
/// @param durationType  1 to 3, of gValidDurationTypes
/// @param networkType   1 or 2, of gNetworkTypes; tested, but not sent
/// @param hostPort      the port that the link is to name; 0: none, but another node gets ":0" before it with
///                      hostForm
/// @param hostname      the host that the link is to name; not null or empty. With port and node it must stay
///                      below 260 characters
/// @param accessCode    what a visitor must give; null or empty: nothing
/// @param datetime      the day on which the link ends, for duration 2, otherwise not sent; may be null
/// @param secureLink    true: an https link
/// @param option        true sends "3" as the option, false "1"
/// @param hostForm      true: the host is sent with its port; false: as it stands, unless another node is
///                      asked
/// @param expireTime    the period, for duration 3; not null or empty, whatever the duration
/// @param ssids         the links, in the server's own notation, sent as given; not null or empty
/// @param linkName      the new name; null or empty: stays
/// @param further       not null or empty; not sent
/// @param nameOnly      true: hostname, expireTime, further, linkCapacity and link may be null, the type
///                      numbers may be anything, and no host is sent. All else goes out as given: no
///                      access code takes the old one away. A link buffer is filled all the same
/// @param reserved      null
/// @param linkCapacity  in: wide characters in `link`. Out: what it must be, at 7; otherwise unchanged
/// @param link          receives the changed URL; 260 is always enough, a longer URL is cut
/// @param resultWord    not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                                       |
/// |----------|-------------|----------------------------------------------------------------------------|
/// | 0        | 0           | changed, and the URL is copied                                             |
/// | 0        | 6           | the server says that a mail failed                                         |
/// | 0        | 7           | the time is no good                                                        |
/// | 0        | -1          | refused                                                                    |
/// | 7        | 0           | **changed**, but the URL isn't shorter than `linkCapacity`                 |
/// | 8        | untouched   | also: a type number out of range, or a host text of 260 characters or more |
///
/// The time-out is 120 seconds. Twice: safe. Next, after 7: the same with the capacity that came back.
TORVIAPI_EXPORT uint32_t WFMUpdateShareLink(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                            const wchar_t* slaveID, uint32_t downloadType,
                                            uint32_t durationType, uint32_t networkType, uint32_t hostPort,
                                            const wchar_t* hostname, const wchar_t* accessCode,
                                            const wchar_t* datetime, bool secureLink, bool option,
                                            bool hostForm, const wchar_t* expireTime, const wchar_t* ssids,
                                            const wchar_t* linkName, const wchar_t* further, bool nameOnly,
                                            void* reserved, uint32_t* linkCapacity, wchar_t* link,
                                            uint32_t* resultWord);

/// Deletes links: by their ids, or one by path and URL.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID       null, or the node that holds them; that of a team folder goes before it
/// @param path          the path that was shared; not null or empty, also with ids. If it lies in a team
///                      folder, that folder's node is asked; it is sent as given, and only without ids
/// @param downloadLink  the link's URL; may be null if there are ids
/// @param ssids         the ids, in the server's own notation; null or empty: by path and URL. They stand in
///                      a URL, which is cut at 2047 characters: some fifty at a time
/// @param reserved      null
/// @param resultWord    not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                  |
/// |----------|-------------|-------------------------------------------------------|
/// | 0        | 0           | deleted: the server's status is 0                     |
/// | 0        | -1          | any other status, **1 too**, or a reply that has none |
/// | 8        | untouched   | also: neither URL nor ids                             |
///
/// Twice: up to the server. Next: nothing that must be.
TORVIAPI_EXPORT uint32_t WFMDeleteShareLink(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                            const wchar_t* slaveID, const wchar_t* path,
                                            const wchar_t* downloadLink, const wchar_t* ssids, void* reserved,
                                            uint32_t* resultWord);

/// Has the server mail one link.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID            null, or the node that holds it
/// @param reserved           null
/// @param includeAccessCode  not 0: the mail tells the access code
/// @param addressee          whom to mail it to; not null or empty
/// @param subject,content    of the mail; not null or empty, of any length
/// @param ssid               the link; not null or empty
/// @param mailPassword       what the mail tells as the code; sent with includeAccessCode only. May be null
/// @param resultWord         not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                            |
/// |----------|-------------|---------------------------------|
/// | 0        | 0           | the server has taken it to mail |
/// | 0        | 6           | the mail failed                 |
/// | 0        | 7           | the link's time is no good      |
/// | 0        | -1          | refused                         |
///
/// Twice: two mails. Next: nothing that must be.
TORVIAPI_EXPORT uint32_t WFMSendShareLinkMail(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                              uint32_t port, const wchar_t* slaveID, void* reserved,
                                              uint32_t includeAccessCode, const wchar_t* addressee,
                                              const wchar_t* subject, const wchar_t* content,
                                              const wchar_t* ssid, const wchar_t* mailPassword,
                                              uint32_t* resultWord);

/// Has the server mail several links in one mail, and tell what they are for.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param slaveID            null, or the node that holds them
/// @param reserved           null
/// @param includeAccessCode  not 0: the links have an access code, and the mail tells it
/// @param downloadType       1 or 2, of gDownloadLinkTypes
/// @param networkType        1 or 2, of gNetworkTypes
/// @param addressee          whom to mail them to; not null or empty
/// @param subject,content    of the mail; not null or empty, of any length
/// @param ssids              the links, with ";" between them; empty items are skipped. Not null or empty
/// @param mailPassword       what the mail tells as the code; sent with includeAccessCode only. May be null
/// @param resultWord         not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                             |
/// |----------|-------------|----------------------------------|
/// | 0        | 0           | the server has taken it to mail  |
/// | 0        | 6           | the mail failed                  |
/// | 0        | 7           | the links' time is no good       |
/// | 0        | -1          | refused                          |
/// | 8        | untouched   | also: a type number out of range |
///
/// Twice: two mails. Next: nothing that must be.
TORVIAPI_EXPORT uint32_t WFMSendShareLinkMail2(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                               uint32_t port, const wchar_t* slaveID, void* reserved,
                                               uint32_t includeAccessCode, uint32_t downloadType,
                                               uint32_t networkType, const wchar_t* addressee,
                                               const wchar_t* subject, const wchar_t* content,
                                               const wchar_t* ssids, const wchar_t* mailPassword,
                                               uint32_t* resultWord);

/// @}

/// @name Device configuration
/// The server keeps a configuration for each device of a user, as items that _WFM_TORVI_DEVICE_CONFIG_FLAG_
/// numbers, and tells what of it the user may change. Requests go to the session's own service and node.
///
/// Passwords travel as base64, which is no secret, and that of WFMAuthConfigPassword in a URL; use a secure
/// session. Device uids go out as given everywhere, users in WFMSetDeviceConfigInfo and
/// WFMGetConfigNotifyInfo: they must be safe in a URL.
///
/// | Call                        | Result word, `dwStatus` being 0                                             |
/// |-----------------------------|-----------------------------------------------------------------------------|
/// | WFMSetDeviceConfigInfo      | the server's own status, **which isn't a client code**: 0 is done           |
/// | WebFileManResetDeviceConfig | the same                                                                    |
/// | the five that ask           | 0, a number of their own, or -4 where the server refuses with -3. Any other |
/// |                             | status is a reply that isn't understood, 14: **one that agrees sends none** |
/// @{

/// Asks for the items of a device.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param deviceUID   the device, sent as given; not null or empty
/// @param mode        1 asks for the template, 3 sends 2 as "get_all"; any other number is the plain question
/// @param checkExist  true has the server refuse where it keeps nothing of what is asked for
/// @param reserved    null
/// @param resultWord  not null
/// @param list        becomes the items; what stood in it is overwritten, not freed. Not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                                            |
/// |----------|-------------|---------------------------------------------------------------------------------|
/// | 0        | 0           | `list` holds the items, maybe none; those that this library doesn't know aren't |
/// |          |             | among them                                                                      |
/// | 0        | -4          | refused                                                                         |
/// | 0        | 8           | no memory for the items                                                         |
///
/// | Of the list               | Whose it is, and what becomes of it                                       |
/// |---------------------------|---------------------------------------------------------------------------|
/// | the list record           | allocated and freed by the caller                                         |
/// | array, items, `pszValue`s | allocated by the call, freed by the caller; no item and no value is null  |
/// | too small                 | never: it is as long as it must be                                        |
/// | all failures              | but for 8 as `dwStatus`, the count is 0 and the array null                |
///
///     for (uint32_t i = 0; i < list.dwCount; ++i) {
///         delete[] list.lppItems[i]->pszValue;
///         delete list.lppItems[i];
///     }
///     delete[] list.lppItems;
///
/// Twice: safe, and a second list to free. Next: WFMSetDeviceConfigInfo.
TORVIAPI_EXPORT uint32_t WFMGetDeviceConfigInfo(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                uint32_t port, const wchar_t* deviceUID, int32_t mode,
                                                bool checkExist, void* reserved, uint32_t* resultWord,
                                                WFM_TORVI_DEVICE_CONFIG_LIST* list);

/// Sets items of a device, and of the template if that is wanted.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param reserved    null
/// @param user        whose device it is, sent as given; not null or empty
/// @param deviceUID   the device, sent as given; not null or empty
/// @param password    the configuration password, where the server wants one; null or empty: none
/// @param isTemplate  1: the items are the template's, too; any other number: the device's only
/// @param list        what to set: not null, with a count that isn't 0 and an array. A null in it is left
///                    out, and so is an item whose flag isn't one of the 14, with a line that has its value.
///                    It stays the caller's and isn't changed
/// @param resultWord  not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                                            |
/// |----------|-------------|---------------------------------------------------------------------------------|
/// | 0        | 0           | done                                                                            |
/// | 0        | other       | refused: the server's own status, **1 too**; -1 if it sends none, or a reply is |
/// |          |             | JSON but no object                                                              |
/// | 8        | -1          | nothing sent: no item of the list is one that can be set                        |
/// | 8        | untouched   | as ever; the line names TorviActivateSid                                        |
///
/// | Of the list                     | Whose it is, and what becomes of it       |
/// |---------------------------------|-------------------------------------------|
/// | record, array, items and values | the caller allocates and frees all        |
/// | from WFMGetDeviceConfigInfo     | good as it is, and freed as it says there |
///
/// Twice: safe. Next: WFMGetDeviceConfigInfo to see what counts.
TORVIAPI_EXPORT uint32_t WFMSetDeviceConfigInfo(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                uint32_t port, void* reserved, const wchar_t* user,
                                                const wchar_t* deviceUID, const wchar_t* password,
                                                int32_t isTemplate, const WFM_TORVI_DEVICE_CONFIG_LIST* list,
                                                uint32_t* resultWord);

/// Asks what has been changed, and by whom.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param user        null or empty: anybody's; otherwise this user's, sent as given
/// @param deviceUID   null or empty: on any device; otherwise on this one, sent as given
/// @param lower       where the page begins; not above `upper`. Above 0x7FFFFFFF it goes out negative
/// @param upper       where it ends, sent likewise
/// @param reserved    null
/// @param resultWord  not null
/// @param list        becomes the changes; what stood in it is overwritten, not freed. Not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                                     |
/// |----------|-------------|--------------------------------------------------------------------------|
/// | 0        | 0           | `list` holds the changes, maybe none; of another user or device than was |
/// |          |             | asked for there are none, but a line for each                            |
/// | 0        | -4          | refused                                                                  |
/// | 0        | 8           | no memory for the changes                                                |
/// | 8        | untouched   | as ever, and if `lower` is above `upper`                                 |
///
/// | Of the list     | Whose it is, and what becomes of it                              |
/// |-----------------|------------------------------------------------------------------|
/// | the list record | allocated and freed by the caller                                |
/// | array and items | allocated by the call, freed by the caller; no item is null      |
/// | too small       | never: it is as long as it must be                               |
/// | all failures    | but for 8 as `dwStatus`, the count is 0 and the array null       |
///
///     for (uint32_t i = 0; i < list.dwCount; ++i) delete list.lppItems[i];
///     delete[] list.lppItems;
///
/// Twice: safe, and a second list to free. Next: WFMGetDeviceConfigInfo for a device that was changed.
TORVIAPI_EXPORT uint32_t WFMGetConfigNotifyInfo(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                uint32_t port, const wchar_t* user, const wchar_t* deviceUID,
                                                uint32_t lower, uint32_t upper, void* reserved,
                                                uint32_t* resultWord, WFM_TORVI_CONFIG_NOTIFY_LIST* list);

/// Asks which items the user may change.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param reserved     null
/// @param resultWord   not null
/// @param information  not null; zeroed first, filled when both numbers are 0
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                    |
/// |----------|-------------|-------------------------|
/// | 0        | 0           | `information` is filled |
/// | 0        | -4          | refused                 |
///
/// Twice: safe. Next: WFMAuthConfigPassword, if a password is wanted; WFMSetDeviceConfigInfo.
TORVIAPI_EXPORT uint32_t WFMGetConfigACL(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                         void* reserved, uint32_t* resultWord,
                                         WFM_TORVI_CONFIG_ACL_INFO* information);

/// Tests the configuration password.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param password    not null or empty; it stands in the URL, which is cut at 2047 characters
/// @param reserved    null
/// @param resultWord  not null
/// @param authResult  receives the server's own number when both numbers are 0, otherwise (but for 8) -1, as
///                    also if it sends none. Not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                  |
/// |----------|-------------|-----------------------|
/// | 0        | 0           | `authResult` tells    |
/// | 0        | -4          | refused               |
///
/// Twice: up to the server, which may count. Next: WFMSetDeviceConfigInfo with the password.
TORVIAPI_EXPORT uint32_t WFMAuthConfigPassword(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                               uint32_t port, const wchar_t* password, void* reserved,
                                               uint32_t* resultWord, uint32_t* authResult);

/// Lists the devices of a user.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param user        whose; not null or empty
/// @param lower       where the page begins, sent as given; above 0x7FFFFFFF it goes out negative
/// @param upper       where it ends, sent likewise; the two aren't compared
/// @param reserved    null
/// @param total       receives how many there are on all pages, by the server's count, a negative one as
///                    0; not null
/// @param count       in: entries of `list`, may be 0. Out: records filled, or entries needed. Not null
/// @param list        the caller's records; not null, also if `count` is 0
/// @param resultWord  not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                            |
/// |----------|-------------|-----------------------------------------------------------------|
/// | 0        | 0           | `count` records are filled, maybe none                          |
/// | 0        | 122         | more devices came than the list has entries: `count` is theirs  |
/// | 0        | -4          | refused                                                         |
///
/// | Of the list         | Whose it is, and what becomes of it                                           |
/// |---------------------|-------------------------------------------------------------------------------|
/// | array and records   | allocated and freed by the caller                                             |
/// | a null in the array | skipped, with its device; `count` doesn't count it, so go through all entries |
/// | too small           | 122: `total` is set, `count` is how large it must be, no record is touched    |
/// | other failures      | but for 8, `total` and `count` are 0; no record is touched                    |
///
/// Twice: safe; set `count` to what the list holds before each call. Next: WFMGetDeviceConfigInfo with a
/// device's uid.
TORVIAPI_EXPORT uint32_t WebFileManGetDeviceList(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                 uint32_t port, const wchar_t* user, uint32_t lower,
                                                 uint32_t upper, void* reserved, uint32_t* total,
                                                 uint32_t* count, _WFM_TORVI_DEVICE_INFORMATION** list,
                                                 uint32_t* resultWord);

/// Sets the configuration of a device back to what the server begins with.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param user        whose device it is; not null or empty
/// @param deviceUID   the device, sent as given; not null or empty
/// @param reserved    null
/// @param resultWord  not null
/// @return `dwStatus`
///
/// | dwStatus | Result word | When                                                                            |
/// |----------|-------------|---------------------------------------------------------------------------------|
/// | 0        | 0           | done                                                                            |
/// | 0        | other       | refused: the server's own status, **1 too**; -1 if it sends none, or a reply is |
/// |          |             | JSON but no object                                                              |
///
/// Twice: safe. Next: WFMGetDeviceConfigInfo.
TORVIAPI_EXPORT uint32_t WebFileManResetDeviceConfig(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                     uint32_t port, const wchar_t* user,
                                                     const wchar_t* deviceUID, void* reserved,
                                                     uint32_t* resultWord);

/// @}

}  // extern "C"

#endif
