#pragma once

#include <json/json.h>

#include <exception>
#include <string>
#include <utility>

/// Wide characters that a reply text is read through, terminator included; a longer text counts as empty.
constexpr int kJsonTextCapacity = 2048;

/// The fields of a reply. They raise the JSON library's error for a `value` that is neither object nor null
/// and for numbers beyond 32 bits, the 64-bit one too: 64-bit numbers travel as text.
int JsonGetInt(const Json::Value& value, const char* key, int def);
long long JsonGetInt64(const Json::Value& value, const char* key, long long def);
/// Any member as text; absent gives an empty one. `out` must hold 2048 wide characters. Raises for a member
/// that is an array or an object.
void JsonGetString(const Json::Value& value, const char* key, wchar_t* out);

namespace Lattice {

/// `JsonGetString` into a text of its own.
std::wstring JsonText(const Json::Value& value, const char* key);
/// The same for a text of any length.
std::wstring JsonLongText(const Json::Value& value, const char* key);
/// Whether the member, read as text, equals `expected` (ASCII). An absent one reads as empty.
bool JsonTextIs(const Json::Value& value, const char* key, const char* expected);

/// Reads the JSON value at the beginning of `text`; what follows it is not looked at. May raise.
bool ReadJson(const char* text, Json::Value& root);

/// The body of a reply parser: `read` gets the root and returns the parser's answer, 1 for understood. -1 for
/// a null text, for one that isn't JSON, and for whatever the JSON library raises on the way.
template <class Read>
int ParseReply(const char* text, Read&& read) {
    try {
        Json::Value root;
        if (!ReadJson(text, root)) {
            return -1;
        }
        return std::forward<Read>(read)(static_cast<const Json::Value&>(root));
    } catch (const std::exception&) {
        return -1;
    }
}

}  // namespace Lattice
