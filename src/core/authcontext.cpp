#include "core/authcontext.h"

#include <cwchar>
#include <new>

#include "core/qclogger.h"
#include "core/statuscodes.h"

using Lattice::Logger;
using Lattice::LogLine;

namespace {

constexpr uint32_t kBadArgument = 87;
constexpr uint32_t kBufferTooSmall = 122;

bool IsEmpty(const wchar_t* text) {
    return text == nullptr || *text == L'\0';
}

wchar_t* Duplicate(const wchar_t* text) {
    const size_t size = std::wcslen(text) + 1;
    auto* copy = new (std::nothrow) wchar_t[size];
    if (copy != nullptr) std::wmemcpy(copy, text, size);
    return copy;
}

wchar_t** MakeList(int32_t count) {
    return new (std::nothrow) wchar_t* [static_cast<size_t>(count)] {};
}

void FreeList(wchar_t**& list, int32_t count) {
    for (int32_t i = 0; list != nullptr && i < count; ++i) delete[] list[i];
    delete[] list;
    list = nullptr;
}

void FreeLists(_WFM_AUTH_CONTEXT& context) {
    FreeList(context.lppOriPathList, context.nTeamFolderCount);
    FreeList(context.lppTeamFolderPathList, context.nTeamFolderCount);
    FreeList(context.lppTeamFolderSlaveIDList, context.nTeamFolderCount);
    context.nTeamFolderCount = 0;
}

bool MakeLists(_WFM_AUTH_CONTEXT& context, int32_t count, bool withSlaves) {
    context.nTeamFolderCount = count;
    context.lppOriPathList = MakeList(count);
    context.lppTeamFolderPathList = MakeList(count);
    if (withSlaves) context.lppTeamFolderSlaveIDList = MakeList(count);
    return context.lppOriPathList != nullptr && context.lppTeamFolderPathList != nullptr &&
           (!withSlaves || context.lppTeamFolderSlaveIDList != nullptr);
}

/// Copies up to the first null or empty entry. False only when memory is short.
bool CopyList(wchar_t** to, wchar_t* const* from, int32_t count) {
    for (int32_t i = 0; from != nullptr && i < count && !IsEmpty(from[i]); ++i) {
        to[i] = Duplicate(from[i]);
        if (to[i] == nullptr) return false;
    }
    return true;
}

uint32_t ReadText(const char* function, const wchar_t* text, uint32_t* capacity, wchar_t* buffer) {
    if (text == nullptr || capacity == nullptr || *capacity == 0 || buffer == nullptr) {
        LogLine(Logger::Error, "[WFM] %s: WFM_PARSE_XML_INVALID_PARAMETER", function);
        return kBadArgument;
    }
    const size_t length = std::wcslen(text);
    if (length >= *capacity) {
        *capacity = static_cast<uint32_t>(length + 1);
        return kBufferTooSmall;
    }
    std::wmemcpy(buffer, text, length + 1);
    return 0;
}

/// One of the three lists of a clone: the line when it begins with nothing, the copy, the line when memory is
/// short.
bool CloneList(wchar_t** to, wchar_t* const* from, int32_t count, const char* word, const char* emptyLine) {
    if (from == nullptr || IsEmpty(from[0])) LogLine(Logger::Error, "%s", emptyLine);
    if (CopyList(to, from, count)) return true;
    LogLine(Logger::Error, "[WFM] WFMCloneAuthContext Failed to allocate memory %s", word);
    return false;
}

bool CloneLists(_WFM_AUTH_CONTEXT& clone, const _WFM_AUTH_CONTEXT& source) {
    const int32_t count = source.nTeamFolderCount;
    if (count <= 0) return true;
    const bool withSlaves = source.lppTeamFolderSlaveIDList != nullptr;
    if (!MakeLists(clone, count, withSlaves)) {
        LogLine(Logger::Error,
                "[WFM] WFMCloneAuthContext Failed to allocate memory "
                "lppOriPathList/lppTeamFolderPathList/lppTeamFolderSlaveIDList");
        return false;
    }
    // The blank at the end of the first line must stay.
    return CloneList(clone.lppTeamFolderPathList, source.lppTeamFolderPathList, count,
                     "lppTeamFolderPathList",
                     "[WFM] WFMCloneAuthContext lppTeamFolderPathList is NULL or empty string ") &&
           CloneList(clone.lppOriPathList, source.lppOriPathList, count, "lppOriPathList",
                     "[WFM] WFMCloneAuthContext lppOriPathList is NULL or empty string") &&
           (!withSlaves ||
            CloneList(clone.lppTeamFolderSlaveIDList, source.lppTeamFolderSlaveIDList, count,
                      "lppTeamFolderSlaveIDList",
                      "[WFM] WFMCloneAuthContext lppTeamFolderSlaveIDList is NULL or empty string"));
}

}  // namespace

namespace Lattice {

AuthContextPtr MakeAuthContext(const wchar_t* sid) {
    AuthContextPtr context(new (std::nothrow) _WFM_AUTH_CONTEXT{});
    if (context != nullptr) context->pszSid = Duplicate(sid);
    if (context == nullptr || context->pszSid == nullptr) return nullptr;
    return context;
}

}  // namespace Lattice

uint32_t WFMCloneAuthContext(const _WFM_AUTH_CONTEXT* source, _WFM_AUTH_CONTEXT** clone) {
    // The one function whose success is 1; it must stay.
    if (source == nullptr || clone == nullptr) {
        LogLine(Logger::Error, "[WFM] WFMCloneAuthContext WFM_PARSE_XML_INVALID_PARAMETER");
        return 1;
    }
    if (IsEmpty(source->pszSid)) return 0;

    auto copy = Lattice::MakeAuthContext(source->pszSid);
    if (copy == nullptr) return 0;
    wchar_t* const sid = copy->pszSid;
    *copy = *source;
    copy->pszSid = sid;
    copy->bAutoProxyUpdated = false;
    copy->nTeamFolderCount = 0;
    copy->lppOriPathList = copy->lppTeamFolderPathList = copy->lppTeamFolderSlaveIDList = nullptr;
    if (!CloneLists(*copy, *source)) return 0;
    *clone = copy.release();
    return 1;
}

uint32_t WFMFreeAuthContext(_WFM_AUTH_CONTEXT* context) {
    if (context == nullptr) return 0;
    FreeLists(*context);
    delete[] context->pszSid;
    delete context;
    return 0;
}

uint32_t WFMUpdateTeamFolderInfo(_WFM_AUTH_CONTEXT* context, int32_t count, wchar_t** oriPaths,
                                 wchar_t** teamFolderPaths, wchar_t** slaveIDs) {
    if (context == nullptr) {
        LogLine(Logger::Error, "[WFM] WFMUpdateTeamFolderInfo WFM_PARSE_XML_INVALID_PARAMETER");
        return WFM_PARSE_XML_INVALID_PARAMETER;
    }
    FreeLists(*context);
    if (oriPaths == nullptr || teamFolderPaths == nullptr || count < 1) return 0;
    // A cluster session must not have team folders without the nodes that hold them.
    if (slaveIDs == nullptr && !IsEmpty(context->szSlaveID)) return 0;

    const char* shortOf = nullptr;
    if (!MakeLists(*context, count, slaveIDs != nullptr))
        shortOf = "lppOriPathList/lppTeamFolderPathList/lppTeamFolderSlaveIDList";
    else if (!CopyList(context->lppTeamFolderPathList, teamFolderPaths, count))
        shortOf = "lppTeamFolderPathList";
    else if (!CopyList(context->lppOriPathList, oriPaths, count))
        shortOf = "lppOriPathList";
    else if (!CopyList(context->lppTeamFolderSlaveIDList, slaveIDs, count))
        shortOf = "lppTeamFolderSlaveIDList";
    if (shortOf == nullptr) return 0;

    LogLine(Logger::Error, "[WFM] WFMUpdateTeamFolderInfo Failed to allocate memory %s", shortOf);
    FreeLists(*context);
    return static_cast<uint32_t>(-1);
}

uint32_t WFMGetUseNuboCGI(const _WFM_AUTH_CONTEXT* context, bool* useNuboCGI) {
    if (context == nullptr || useNuboCGI == nullptr) {
        LogLine(Logger::Error, "[WFM] WFMGetUseNuboCGI: WFM_PARSE_XML_INVALID_PARAMETER");
        return kBadArgument;
    }
    *useNuboCGI = context->bUseNuboCGI;
    return 0;
}

uint32_t WFMGetSlaveID(const _WFM_AUTH_CONTEXT* context, uint32_t* capacity, wchar_t* buffer) {
    return ReadText("WFMGetSlaveID", context != nullptr ? context->szSlaveID : nullptr, capacity, buffer);
}

uint32_t WFMGetSid(const _WFM_AUTH_CONTEXT* context, uint32_t* capacity, wchar_t* buffer) {
    const bool hasSid = context != nullptr && !IsEmpty(context->pszSid);
    return ReadText("WFMGetSid", hasSid ? context->pszSid : nullptr, capacity, buffer);
}
