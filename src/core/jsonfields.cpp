#include "core/jsonfields.h"

#include <cstdlib>
#include <cstring>

#include "core/Utils.h"

namespace {

const Json::Value* Member(const Json::Value& value, const char* key) {
    return key ? value.find(key, key + std::strlen(key)) : nullptr;
}

template <class Number, class Read>
Number GetNumber(const Json::Value& value, const char* key, Number def, Read read) {
    const Json::Value* member = Member(value, key);
    if (!member) {
        return def;
    }
    if (member->isNumeric()) {
        return member->asInt();
    }
    return member->isString() ? static_cast<Number>(read(member->asCString(), nullptr, 10)) : def;
}

/// The member's text in UTF-8, without a copy where it is one already.
template <class Use>
auto WithText(const Json::Value* member, Use use) {
    if (!member) {
        return use("");
    }
    return member->isString() ? use(member->asCString()) : use(member->asString().c_str());
}

}  // namespace

int JsonGetInt(const Json::Value& value, const char* key, int def) {
    return GetNumber(value, key, def, std::strtol);
}

long long JsonGetInt64(const Json::Value& value, const char* key, long long def) {
    return GetNumber(value, key, def, std::strtoll);
}

void JsonGetString(const Json::Value& value, const char* key, wchar_t* out) {
    if (!out) {
        return;
    }
    WithText(Member(value, key), [out](const char* text) {
        if (Utf8ToUnicode_1(text, out, kJsonTextCapacity) != 1) {
            out[0] = L'\0';
        }
    });
}

namespace Lattice {

std::wstring JsonText(const Json::Value& value, const char* key) {
    wchar_t buffer[kJsonTextCapacity];
    JsonGetString(value, key, buffer);
    return buffer;
}

std::wstring JsonLongText(const Json::Value& value, const char* key) {
    return WithText(Member(value, key), [](const char* text) {
        std::wstring wide(std::strlen(text) + 1, L'\0');
        const bool read = Utf8ToUnicode_1(text, wide.data(), static_cast<int>(wide.size())) == 1;
        wide.resize(read ? wide.find(L'\0') : 0);
        return wide;
    });
}

bool JsonTextIs(const Json::Value& value, const char* key, const char* expected) {
    return WithText(Member(value, key),
                    [expected](const char* text) { return std::strcmp(text, expected) == 0; });
}

bool ReadJson(const char* text, Json::Value& root) {
    if (!text) {
        return false;
    }
    // The newer reader takes more than this one: trailing commas, a byte order mark.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    Json::Reader reader;
    return reader.parse(text, text + std::strlen(text), root, false);
#pragma GCC diagnostic pop
}

}  // namespace Lattice
