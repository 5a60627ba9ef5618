#pragma once

#include "WebFileManAPI.h"

class CGetNodeInfoJson;

/// One page of a folder's listing, into `reply`. `path` is percent-encoded by the caller, and `agentName`
/// must not be empty. Returns `dwStatus`.
extern "C" TORVIAPI_EXPORT uint32_t GetPath(_WFM_AUTH_CONTEXT* context, const wchar_t* agentName,
                                            const wchar_t* server, uint32_t port, const wchar_t* slaveID,
                                            const wchar_t* path, const wchar_t* pattern, uint32_t start,
                                            uint32_t limit, uint32_t typeFilter, uint32_t fieldMask,
                                            bool wantSort, bool* cancel, CGetNodeInfoJson* reply);
