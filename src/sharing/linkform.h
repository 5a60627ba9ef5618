#pragma once

#include <string>
#include <vector>

#include "WebFileManShareAPI.h"
#include "core/callframe.h"

namespace Lattice {

/// Callers count the types from 1.
struct LinkTypes {
    uint32_t download;
    uint32_t duration;
    uint32_t network;

    bool inRange() const {
        return download >= 1 && download <= 2 && duration >= 1 && duration <= 3 && network >= 1 &&
               network <= 2;
    }
};

inline constexpr uint32_t kSpecificTime = 2;

/// The text of a type, empty for one that isn't in the table.
template <size_t N>
const wchar_t* TypeText(const wchar_t* const (&table)[N], uint32_t type) {
    return type >= 1 && type <= N ? table[type - 1] : L"";
}

inline const char* TrueOrFalse(bool value) {
    return value ? "true" : "false";
}

/// "valid_duration", and the date that one of the durations wants.
inline void AddDuration(Call& call, uint32_t duration, const wchar_t* datetime) {
    call.field("valid_duration", TypeText(gValidDurationTypes, duration));
    if (duration == kSpecificTime) call.field("datetime", TextOf(datetime));
}

/// The code that a visitor must give, and whether there is one.
inline void AddAccess(Call& call, const wchar_t* accessCode) {
    call.field("access_code", TextOf(accessCode));
    call.field("access_enabled", TrueOrFalse(IsGiven(accessCode)));
}

/// The pieces of a text between ";"; empty ones aren't.
std::vector<std::wstring> LinkItems(const wchar_t* text);
/// The same for a list whose items each end in ";": what stands behind the last one counts only alone.
std::vector<std::wstring> FileItems(const wchar_t* text);

}  // namespace Lattice
