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

}  // extern "C"

#endif
