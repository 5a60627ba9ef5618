/// @file WebFileManShareAPI.h
/// libTorviAPI: the sharing family. Numbers, threads, ownership and the rest: see WebFileManAPI.h.

#ifndef WEBFILEMANSHAREAPI_H
#define WEBFILEMANSHAREAPI_H

#include "WebFileManAPI.h"

/// One receiver of a team folder.
struct _WFM_TORVI_TEAM_FOLDER_RECEIVER_INFO {
    wchar_t szName[32];
    wchar_t szDisplayName[2048];
    int32_t nPermission;
    int32_t nStatus;
};

/// One team folder, from WebFileManNuboGetTeamFolder.
struct _WFM_TORVI_TEAM_FOLDER_INFORMATION {
    int32_t nType;
    int32_t nStatus;
    int32_t nReserved;
    wchar_t szOwner[32];
    wchar_t szShareID[260];
    wchar_t szNasID[260];
    wchar_t szParentID[260];
    wchar_t szName[2048];
    wchar_t szPath[4096];
    wchar_t szOriginalPath[4096];
    uint32_t dwReceiverCount;
    _WFM_TORVI_TEAM_FOLDER_RECEIVER_INFO** lppReceivers;
};

/// One event, from WebFileManGetMyEvent.
struct _WFM_TORVI_EVENT_INFORMATION {
    int32_t nEventID;
    wchar_t szTargetName[32];
    int32_t nEventType;
    int32_t nEventStatus;
    wchar_t szShareID[260];
    wchar_t szFile[4096];
    wchar_t szReserved[260];
    wchar_t szDate[260];
    wchar_t szTime[260];
};

/// One share, from WFMTorviFindShare.
struct _WFM_TORVI_SHARE_INFORMATION {
    int32_t nEventType;
    int32_t nEventStatus;
    wchar_t szFile[4096];
    wchar_t szShareID[260];
    wchar_t szReserved[260];
};

/// A shared folder, filled by WFMGetTorviShareFolderInformation.
struct _WFM_TORVI_SHARE_FOLDER_INFORMATION {
    int32_t nEventID;
    bool bFileExists;
    int32_t nShareIDStatus;
    int32_t nEventStatus;
    int32_t nNuboType;
    wchar_t szShareID[260];
    wchar_t szNasID[260];
};

/// What WebFileManSetShareMember does to one member.
struct _WFM_SHARE_MEMBER_ACTION {
    wchar_t szName[260];
    uint32_t dwAction;
    uint32_t dwEventID;
};

/// One member, from WebFileManGetShareMember.
struct _WFM_SHARE_MEMBER_INFORMATION {
    wchar_t szName[260];
    int32_t nShareMember;
    int32_t nEventStatus;
    int32_t nEventID;
    wchar_t* pszDescription;
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

/// One public link, from WFMGetShareLinkList.
struct _WFM_SHARE_LINK_INFO {
    wchar_t szSsid[260];
    wchar_t szFileName[4096];
    wchar_t szDownloadLink[2048];
    wchar_t szCreator[260];
    wchar_t szLinkName[260];
    bool bIsFolder;
    bool bMultiple;
    wchar_t szReserved[260];
};

/// One item of a link, from WFMGetShareLinkItemList.
struct _WFM_SHARE_LINK_ITEM_INFO {
    wchar_t szFileName[2048];
    bool bIsFolder;
};

/// What WFMGetandCreateShareLink came to.
struct _WFM_SHARE_LINK_RESULT {
    int32_t nResult;
    int32_t nMultiple;
    wchar_t szLinkURL[2048];
    wchar_t szLinkName[260];
    wchar_t szExpireTime[260];
    wchar_t szSsid[260];
    wchar_t szSlaveID[260];
};

extern "C" {

/// "internet", "local"
TORVIAPI_EXPORT extern const wchar_t* const gNetworkTypes[2];
/// "forever", "specific_time", "period_of_time"
TORVIAPI_EXPORT extern const wchar_t* const gValidDurationTypes[3];
/// "email_download_link", "create_download_link"
TORVIAPI_EXPORT extern const wchar_t* const gDownloadLinkTypes[2];

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
/// @{

/// DRAFT
TORVIAPI_EXPORT uint32_t WebFileManNuboGetTeamFolder(
    _WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port, uint32_t eventType,
    const wchar_t* targetUser, const wchar_t* path, uint32_t lower, uint32_t upper, uint64_t reserved,
    uint32_t* total, uint32_t* count, _WFM_TORVI_TEAM_FOLDER_INFORMATION** list, uint32_t* resultWord);

/// DRAFT
TORVIAPI_EXPORT uint32_t WebFileManGetMyEvent(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                              uint32_t port, uint32_t eventType, uint32_t lower,
                                              uint32_t upper, void* reserved, uint32_t* resultWord,
                                              uint32_t* total, uint32_t* count,
                                              _WFM_TORVI_EVENT_INFORMATION** list);

/// DRAFT
TORVIAPI_EXPORT uint32_t WFMTorviFindShare(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                           const wchar_t* file, uint32_t lower, uint32_t upper,
                                           uint32_t* resultWord, uint32_t* count,
                                           _WFM_TORVI_SHARE_INFORMATION*** list);

/// DRAFT
TORVIAPI_EXPORT uint32_t WFMGetTorviShareFolderInformation(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                           uint32_t port, void* reserved1,
                                                           const wchar_t* path, void* reserved2,
                                                           uint32_t* resultWord, uint32_t* statusWord,
                                                           _WFM_TORVI_SHARE_FOLDER_INFORMATION* information);

/// DRAFT
TORVIAPI_EXPORT uint32_t WebFileManShareTo(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                           uint32_t targetCount, const wchar_t* const* targets,
                                           const wchar_t* path, uint32_t capacity, void* reserved,
                                           wchar_t* pid, uint32_t* resultWord, uint32_t* statusWord);

/// DRAFT
TORVIAPI_EXPORT uint32_t WebFileManUnshare(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                           const wchar_t* nasID, const wchar_t* shareID, uint32_t capacity,
                                           void* reserved, wchar_t* pid, uint32_t* resultWord);

/// DRAFT
TORVIAPI_EXPORT uint32_t WebFileManAcceptShare(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                               uint32_t port, const wchar_t* nasID,
                                               const wchar_t* displayName, uint32_t eventID,
                                               const wchar_t* shareID, void* reserved, wchar_t* file,
                                               uint32_t* resultWord);

/// DRAFT
TORVIAPI_EXPORT uint32_t WebFileManDenyShare(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                             const wchar_t* nasID, const wchar_t* shareID, uint32_t eventID,
                                             void* reserved, uint32_t* resultWord);

/// DRAFT
TORVIAPI_EXPORT uint32_t WebFileManLeaveShare(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                              uint32_t port, const wchar_t* nasID, const wchar_t* shareID,
                                              uint32_t eventID, void* reserved, uint32_t* resultWord);

/// DRAFT
TORVIAPI_EXPORT uint32_t WebFileManKickOutShareMember(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                      uint32_t port, const wchar_t* nasID,
                                                      const wchar_t* shareID, uint32_t eventID,
                                                      void* reserved, uint32_t* resultWord);

/// DRAFT
TORVIAPI_EXPORT uint32_t WebFileManRemoveEvent(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                               uint32_t port, uint32_t eventID, void* reserved,
                                               uint32_t* resultWord);

/// DRAFT
TORVIAPI_EXPORT uint32_t WebFileManGetShareMember(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                  uint32_t port, const wchar_t* nasID, const wchar_t* shareID,
                                                  uint32_t lower, uint32_t upper, uint32_t userType,
                                                  const wchar_t* domain, const wchar_t* netbios,
                                                  const wchar_t* filter, bool allUsers, bool refresh,
                                                  bool onlyMembers, void* reserved, uint32_t* total,
                                                  uint32_t* count, _WFM_SHARE_MEMBER_INFORMATION** list,
                                                  uint32_t* resultWord);

/// DRAFT
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
/// Users without a name aren't handed out. Twice: safe, once the descriptions are freed; set `count` to what
/// the list holds before each call. Next: the following page, or WebFileManShareTo.
TORVIAPI_EXPORT uint32_t WebFileManGetUserList(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                               uint32_t port, uint32_t userType, const wchar_t* domain,
                                               const wchar_t* netbios, const wchar_t* filter, uint32_t lower,
                                               uint32_t upper, bool allUsers, bool refresh, void* reserved,
                                               uint32_t* resultWord, uint32_t* total, uint32_t* count,
                                               _WFM_USER_INFORMATION** list);

/// Lists the directory domains that the server knows.
/// @param context,server,port  the session and where; not null or empty, not 0
/// @param capacity    entries of `list`; 0 or less is none
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
/// @{

/// DRAFT
TORVIAPI_EXPORT uint32_t WFMGetShareLinkList(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                             const wchar_t* slaveID, int32_t limit, void* reserved,
                                             int32_t* start, uint32_t* count, _WFM_SHARE_LINK_INFO** list);

/// DRAFT
TORVIAPI_EXPORT uint32_t WFMGetShareLinkItemList(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                                 uint32_t port, const wchar_t* path, const wchar_t* slaveID,
                                                 void* reserved, const wchar_t* ssid, uint32_t* total,
                                                 uint32_t* count, _WFM_SHARE_LINK_ITEM_INFO** list);

/// DRAFT
TORVIAPI_EXPORT uint32_t WFMGetShareLink(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                         const wchar_t* slaveID, uint32_t downloadType, uint32_t durationType,
                                         uint32_t networkType, const wchar_t* hostname,
                                         const wchar_t* addressee, const wchar_t* path,
                                         const wchar_t* accessCode, const wchar_t* datetime,
                                         const wchar_t* expireTime, bool secureLink, void* reserved,
                                         uint32_t* linkCapacity, wchar_t* link, wchar_t* expireTimeOut,
                                         uint32_t* resultWord);

/// DRAFT
TORVIAPI_EXPORT uint32_t WFMGetandCreateShareLink(
    _WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port, const wchar_t* slaveID,
    uint32_t timeoutMs, const wchar_t* hostname, void* reserved, const wchar_t* fileList,
    const wchar_t* accessCode, const wchar_t* expireTime, const wchar_t* datetime, const wchar_t* linkName,
    bool secureLink, uint32_t durationType, bool newShare, _WFM_SHARE_LINK_RESULT* information);

/// DRAFT
TORVIAPI_EXPORT uint32_t WFMCreateShareLink(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                            const wchar_t* slaveID, uint32_t downloadType,
                                            uint32_t durationType, uint32_t networkType,
                                            const wchar_t* hostname, uint64_t fileTotal, const wchar_t* path,
                                            const wchar_t* accessCode, const wchar_t* mailPassword,
                                            const wchar_t* datetime, bool secureLink,
                                            const wchar_t* expireTime, const wchar_t* addressee,
                                            const wchar_t* mailDate, const wchar_t* subject,
                                            const wchar_t* content, void* reserved, uint32_t* resultWord);

/// DRAFT
TORVIAPI_EXPORT uint32_t WFMUpdateShareLink(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                            const wchar_t* slaveID, uint32_t downloadType,
                                            uint32_t durationType, uint32_t networkType, uint32_t hostPort,
                                            const wchar_t* hostname, const wchar_t* accessCode,
                                            const wchar_t* datetime, bool secureLink, bool option,
                                            bool hostForm, const wchar_t* expireTime, const wchar_t* ssids,
                                            const wchar_t* linkName, const wchar_t* further, bool nameOnly,
                                            void* reserved, uint32_t* linkCapacity, wchar_t* link,
                                            uint32_t* resultWord);

/// DRAFT
TORVIAPI_EXPORT uint32_t WFMDeleteShareLink(_WFM_AUTH_CONTEXT* context, const wchar_t* server, uint32_t port,
                                            const wchar_t* slaveID, const wchar_t* path,
                                            const wchar_t* downloadLink, const wchar_t* ssids, void* reserved,
                                            uint32_t* resultWord);

/// DRAFT
TORVIAPI_EXPORT uint32_t WFMSendShareLinkMail(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                              uint32_t port, const wchar_t* slaveID, void* reserved,
                                              uint32_t includeAccessCode, const wchar_t* addressee,
                                              const wchar_t* subject, const wchar_t* content,
                                              const wchar_t* ssid, const wchar_t* mailPassword,
                                              uint32_t* resultWord);

/// DRAFT
TORVIAPI_EXPORT uint32_t WFMSendShareLinkMail2(_WFM_AUTH_CONTEXT* context, const wchar_t* server,
                                               uint32_t port, const wchar_t* slaveID, void* reserved,
                                               uint32_t includeAccessCode, uint32_t downloadType,
                                               uint32_t networkType, const wchar_t* addressee,
                                               const wchar_t* subject, const wchar_t* content,
                                               const wchar_t* ssids, const wchar_t* mailPassword,
                                               uint32_t* resultWord);

/// @}

}  // extern "C"

#endif
