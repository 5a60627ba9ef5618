/// @file WebFileManShareAPI.h
/// libTorviAPI: the sharing family. Numbers, threads, ownership and the rest: see WebFileManAPI.h.

#ifndef WEBFILEMANSHAREAPI_H
#define WEBFILEMANSHAREAPI_H

#include "WebFileManAPI.h"

extern "C" {

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

}  // extern "C"

#endif
