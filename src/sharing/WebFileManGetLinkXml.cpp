#include "sharing/WebFileManGetLinkXml.h"

#include <algorithm>
#include <cstring>

#include "core/Utils.h"

using namespace Lattice;

namespace {

constexpr int kShortValue = 256;
constexpr int kLinkValue = 2048;

template <int Capacity>
std::string Value(const char* text, const char* key) {
    char value[Capacity];
    return CWebFileManGetLinkXml::GetValue(text, key, value, Capacity) ? std::string(value) : std::string();
}

std::wstring Wide(const std::string& text) {
    return FromQString(QString::fromStdString(text));
}

}  // namespace

bool CWebFileManGetLinkXml::GetValue(const char* text, const char* key, char* out, int capacity) {
    if (text == nullptr || key == nullptr || out == nullptr) return false;
    const char* found = std::strstr(text, key);
    // A key at the very start counts as none.
    if (found == nullptr || found == text) return false;
    std::string value;
    for (found += std::strlen(key); *found != '\0' && *found != ',' && *found != '}'; ++found) {
        const bool skipped = *found == ' ' || *found == '"' || (*found == ':' && value.empty());
        if (!skipped) value += *found;
    }
    if (value.size() >= static_cast<size_t>(std::max(capacity, 0))) return false;
    value.copy(out, value.size());
    out[value.size()] = '\0';
    return true;
}

int CWebFileManGetLinkXml::Parser(char* text) {
    const std::string state = Value<kShortValue>(text, "status");
    if (state.empty()) return 1;
    if (state == "1") status = 0;
    expireTime = Wide(Value<kShortValue>(text, "expire_time"));
    std::string link = Value<kLinkValue>(text, "link_url");
    // Its slashes come with a backslash before them.
    link.erase(std::remove(link.begin(), link.end(), '\\'), link.end());
    linkURL = Wide(link);
    return 1;
}
