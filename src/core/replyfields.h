#pragma once

// What the reply parsers share: the fields that many replies have.

#include <json/value.h>

#include "core/Utils.h"
#include "core/jsonfields.h"
#include "core/statuscodes.h"

/// Whether a member is there and isn't null.
inline bool IsPresent(const Json::Value& object, const char* key) {
    return object.isMember(key) && !object[key].isNull();
}

/// A number that no server sends; its client code is -1.
inline constexpr int kNoStatus = -1000;

/// "status" as a client code, or `absent` when the reply has none.
inline int TranslatedStatus(const Json::Value& object, int absent) {
    return IsPresent(object, "status") ? TranslateWFMErrorCode(JsonGetInt(object, "status", kNoStatus))
                                       : absent;
}

/// A number of 64 bits, sent as a number or as text.
inline int64_t JsonGetSize(const Json::Value& object, const char* key, int64_t absent) {
    if (IsPresent(object, key) && object[key].isNumeric()) return object[key].asInt64();
    return JsonGetInt64(object, key, absent);
}

/// A flag, sent as a JSON boolean, a number or the text of either.
inline bool JsonGetFlag(const Json::Value& object, const char* key, bool absent) {
    if (!IsPresent(object, key)) return absent;
    const Json::Value& value = object[key];
    return value.isBool() ? value.asBool()
                          : Lattice::JsonTextIs(object, key, "true") || JsonGetInt(object, key, 0) != 0;
}

/// A text for a field of 260 characters; one that doesn't fit counts as not sent.
inline std::wstring FieldText(const Json::Value& object, const char* key) {
    constexpr size_t kTextField = 260;
    std::wstring text = Lattice::JsonText(object, key);
    return text.size() < kTextField ? text : std::wstring();
}
