#include "sharing/WebFileManGetLinkXml.h"

#include <algorithm>
#include <cstring>

#include "core/Utils.h"

namespace {

constexpr int kShortValue = 256;
constexpr int kLinkValue = 2048;

template <int Capacity>
std::wstring Value(const char* text, const char* key) {
    wchar_t value[Capacity];
    return CWebFileManGetLinkXml::GetValue(text, key, value, Capacity) ? value : L"";
}

}  // namespace

bool CWebFileManGetLinkXml::GetValue(const char* text, const char* key, wchar_t* out, int capacity) {
    if (text == nullptr || key == nullptr || out == nullptr) return false;
    const char* found = std::strstr(text, key);
    // A key at the very start counts as none.
    if (found == nullptr || found == text) return false;
    std::string value;
    for (found += std::strlen(key); *found != '\0' && *found != ',' && *found != '}'; ++found) {
        const bool skipped = *found == ' ' || *found == '"' || (*found == ':' && value.empty());
        if (!skipped) value += *found;
    }
    const bool fits = capacity > 0 && value.size() < static_cast<size_t>(capacity);
    return fits && Utf8ToUnicode_1(value.c_str(), out, capacity) == 1;
}

int CWebFileManGetLinkXml::Parser(char* text) {
    const std::wstring state = Value<kShortValue>(text, "status");
    if (state.empty()) return 1;
    if (state == L"1") status = 0;
    expireTime = Value<kShortValue>(text, "expire_time");
    linkURL = Value<kLinkValue>(text, "link_url");
    // Its slashes come with a backslash before them.
    linkURL.erase(std::remove(linkURL.begin(), linkURL.end(), L'\\'), linkURL.end());
    return 1;
}
