#ifndef WEBFILEMANSHAREAPI_H
#define WEBFILEMANSHAREAPI_H

#include "WebFileManAPI.h"

extern "C" {

TORVIAPI_EXPORT uint32_t WFMShareInitialization(uint32_t level, QString logDir, bool logToFile, bool append);
TORVIAPI_EXPORT uint32_t WFMShareUnInitialization();
TORVIAPI_EXPORT uint32_t WFMShareUpdateDebugLevel(uint32_t level);
TORVIAPI_EXPORT uint32_t WFMShareReOpenLogFile();
TORVIAPI_EXPORT uint32_t WFMShareClearLog();

}  // extern "C"

#endif
