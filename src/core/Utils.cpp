#include "core/Utils.h"

#include <QChar>
#include <cmath>
#include <cstdarg>
#include <cstring>
#include <cwchar>
#include <limits>

namespace {

constexpr size_t kFormatCapacity = 2048;
constexpr char32_t kReplacement = 0xFFFD;

bool IsCharacter(char32_t value) {
    return value <= 0x10FFFF && (value < 0xD800 || value > 0xDFFF);
}

/// Folds case as QString::compare does with Qt::CaseInsensitive, without a string for each character.
char32_t FoldCase(wchar_t character) {
    const auto value = static_cast<char32_t>(character);
    if (value < 0x80) {
        return value >= U'A' && value <= U'Z' ? value + 0x20 : value;
    }
    return value <= 0x10FFFF ? QChar::toCaseFolded(static_cast<uint>(value)) : value;
}

bool EqualFolded(const std::wstring& left, const wchar_t* right) {
    size_t i = 0;
    for (; i < left.size() && right[i]; ++i) {
        if (FoldCase(left[i]) != FoldCase(right[i])) {
            return false;
        }
    }
    return i == left.size() && !right[i];
}

/// Reads one character and moves `in` behind it. A broken sequence counts as one U+FFFD for each longest
/// beginning of a good one, and a byte that can't follow isn't read past, so the NUL always stops it.
char32_t NextCharacter(const unsigned char*& in) {
    const unsigned char lead = *in++;
    if (lead < 0x80) {
        return lead;
    }
    int following;
    unsigned char lowest = 0x80, highest = 0xBF;
    char32_t value;
    if (lead >= 0xC2 && lead <= 0xDF) {
        following = 1;
        value = lead & 0x1F;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        following = 2;
        value = lead & 0x0F;
        lowest = lead == 0xE0 ? 0xA0 : 0x80;   // not overlong
        highest = lead == 0xED ? 0x9F : 0xBF;  // no surrogates
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        following = 3;
        value = lead & 0x07;
        lowest = lead == 0xF0 ? 0x90 : 0x80;
        highest = lead == 0xF4 ? 0x8F : 0xBF;  // not above U+10FFFF
    } else {
        return kReplacement;
    }
    for (; following > 0; --following) {
        if (*in < lowest || *in > highest) {
            return kReplacement;
        }
        value = value << 6 | (*in++ & 0x3F);
        lowest = 0x80;
        highest = 0xBF;
    }
    return value;
}

}  // namespace

std::wstring FormatWide(const wchar_t* fmt, ...) {
    if (!fmt) {
        return {};
    }
    wchar_t buffer[kFormatCapacity + 1] = {};
    va_list arguments;
    va_start(arguments, fmt);
    // An overflow is reported as an error, but what fits stands in the buffer.
    std::vswprintf(buffer, kFormatCapacity, fmt, arguments);
    va_end(arguments);
    buffer[kFormatCapacity - 1] = L'\0';
    return buffer;
}

std::wstring StringReplace(const std::wstring& text, const std::wstring& from, const std::wstring& to) {
    if (text.empty() || from.empty()) {
        return text;
    }
    std::wstring result;
    size_t start = 0;
    for (size_t found; (found = text.find(from, start)) != std::wstring::npos; start = found + from.size()) {
        result.append(text, start, found - start).append(to);
    }
    return result.append(text, start, std::wstring::npos);
}

uint32_t xtoi_(const wchar_t* text) {
    if (!text) {
        return 0;
    }
    uint32_t value = 0;
    for (; *text; ++text) {
        uint32_t digit;
        if (*text >= L'0' && *text <= L'9') {
            digit = static_cast<uint32_t>(*text - L'0');
        } else if (*text >= L'a' && *text <= L'f') {
            digit = static_cast<uint32_t>(*text - L'a') + 10;
        } else if (*text >= L'A' && *text <= L'F') {
            digit = static_cast<uint32_t>(*text - L'A') + 10;
        } else {
            return 0;
        }
        value = value << 4 | digit;
    }
    return value;
}

std::wstring ToTwoDigit(int number) {
    if (number < 0) {
        return L"00";
    }
    return number < 10 ? L"0" + std::to_wstring(number) : std::to_wstring(number);
}

std::vector<std::string> split(const std::string& text, const std::string& delimiter) {
    std::vector<std::string> pieces;
    if (delimiter.empty()) {
        return pieces;
    }
    size_t start = 0;
    for (size_t found; (found = text.find(delimiter, start)) != std::string::npos;
         start = found + delimiter.size()) {
        std::string piece = text.substr(start, found - start);
        if (!piece.empty() && piece != delimiter) {
            pieces.push_back(std::move(piece));
        }
    }
    return pieces;
}

std::wstring GetFileNameFromPath(std::wstring path) {
    if (!path.empty() && (path.back() == L'\\' || path.back() == L'/')) {
        path.pop_back();
    }
    size_t separator = path.rfind(L'\\');
    if (separator == std::wstring::npos) {
        separator = path.rfind(L'/');
    }
    return separator == std::wstring::npos ? path : path.substr(separator + 1);
}

void GetSizewithString(std::wstring text, long long& size) {
    size = 0;
    const size_t blank = text.find(L' ');
    if (blank == std::wstring::npos) {
        return;
    }
    std::wstring number = text.substr(0, blank);
    const std::wstring unit = text.substr(blank + 1);
    if (number.empty() || unit.empty() || number == L"0") {
        return;
    }

    long double divisor = 1;
    const size_t point = number.find(L'.');
    if (point != std::wstring::npos && point != 0 && point + 1 != number.size()) {
        number.erase(point, 1);
        divisor = std::pow(10.0L, static_cast<long double>(number.size() - point));
    }
    long double value = static_cast<long double>(std::wcstoll(number.c_str(), nullptr, 10)) / divisor;

    static constexpr struct {
        const wchar_t* unit;
        long long factor;
    } factors[] = {
        {L"TB", 1LL << 40}, {L"GB", 1LL << 30}, {L"MB", 1LL << 20}, {L"KB", 1LL << 10}, {L"bytes", 1}};
    for (const auto& known : factors) {
        if (EqualFolded(unit, known.unit)) {
            value *= static_cast<long double>(known.factor);
            constexpr auto most = std::numeric_limits<long long>::max();
            constexpr auto least = std::numeric_limits<long long>::min();
            size = value >= static_cast<long double>(most)    ? most
                   : value <= static_cast<long double>(least) ? least
                                                              : static_cast<long long>(value);
            return;
        }
    }
}

int wildCmp(const wchar_t* pattern, const wchar_t* text, unsigned int mode) {
    if (!pattern || !text) {
        return 0;
    }
    if (mode == 1 && pattern[0] == L'*') {
        return 1;
    }
    if (mode == 3 && std::wcsncmp(pattern, L"*.*", 3) == 0) {
        return 1;
    }
    const auto same = [](wchar_t inPattern, wchar_t inText) {
        return inPattern == L'?' || inPattern == inText || FoldCase(inPattern) == FoldCase(inText);
    };

    for (; *text && *pattern != L'*'; ++text, ++pattern) {
        if (!*pattern || !same(*pattern, *text)) {
            return 0;
        }
    }
    // Only the last "*" is ever gone back to, so the work is bounded by the product of the two lengths.
    const wchar_t* patternMark = nullptr;
    const wchar_t* textMark = nullptr;
    while (*text) {
        if (*pattern == L'*') {
            if (!*++pattern) {
                return 1;
            }
            patternMark = pattern;
            textMark = text;
        } else if (*pattern && same(*pattern, *text)) {
            ++pattern;
            ++text;
        } else {
            pattern = patternMark;
            text = ++textMark;
        }
    }
    while (*pattern == L'*') {
        ++pattern;
    }
    return *pattern ? 0 : 1;
}

void PercentEncoding(std::wstring& text) {
    static constexpr wchar_t encoded[] = L"% !\"#$&'()*+,/:;<>=?@[\\]^`{|}~";
    static constexpr wchar_t digits[] = L"0123456789ABCDEF";
    // Each character is looked at once, so a "%" that was put in isn't encoded again.
    std::wstring result;
    result.reserve(text.size());
    for (const wchar_t character : text) {
        if (character != L'\0' && std::wcschr(encoded, character)) {
            result += {L'%', digits[character >> 4], digits[character & 15]};
        } else {
            result += character;
        }
    }
    text = std::move(result);
}

int Utf8ToUnicode_1(const char* in, wchar_t* out, int capacity) {
    if (!in || !out || capacity < 0) {
        return 0;
    }
    const auto begin = reinterpret_cast<const unsigned char*>(in);
    const auto room = static_cast<size_t>(capacity);
    // No text has more characters than bytes. Where that doesn't settle it they are counted first: a text
    // that doesn't fit must leave `out` alone.
    if (std::strlen(in) >= room) {
        size_t length = 0;
        for (const unsigned char* at = begin; *at; NextCharacter(at)) {
            ++length;
        }
        if (length >= room) {
            return 0;
        }
    }
    for (const unsigned char* at = begin; *at;) {
        *out++ = static_cast<wchar_t>(NextCharacter(at));
    }
    *out = L'\0';
    return 1;
}

namespace Lattice {

QString ToQString(const wchar_t* text, size_t length) {
    QString result;
    result.reserve(static_cast<int>(length));
    for (size_t i = 0; i < length; ++i) {
        const auto value = static_cast<char32_t>(text[i]);
        if (!IsCharacter(value)) {
            result += QChar(static_cast<uint>(kReplacement));
        } else if (value < 0x10000) {
            result += QChar(static_cast<uint>(value));
        } else {
            result += QChar(QChar::highSurrogate(value));
            result += QChar(QChar::lowSurrogate(value));
        }
    }
    return result;
}

QString ToQString(const wchar_t* text) {
    return text ? ToQString(text, std::wcslen(text)) : QString();
}

QString ToQString(const std::wstring& text) {
    return ToQString(text.data(), text.size());
}

std::wstring FromQString(const QString& text) {
    return text.toStdWString();
}

QByteArray ToUtf8(const wchar_t* text) {
    return ToQString(text).toUtf8();
}

QByteArray ToUtf8(const std::wstring& text) {
    return ToQString(text).toUtf8();
}

bool CopyText(wchar_t* out, size_t capacity, const std::wstring& text) {
    if (!out || text.size() >= capacity) {
        return false;
    }
    std::wmemcpy(out, text.c_str(), text.size() + 1);
    return true;
}

void CopyTextCut(wchar_t* out, size_t capacity, const std::wstring& text) {
    if (!out || capacity == 0) {
        return;
    }
    const size_t length = text.size() < capacity ? text.size() : capacity - 1;
    std::wmemcpy(out, text.c_str(), length);
    out[length] = L'\0';
}

std::wstring WithLeadingSlash(std::wstring path) {
    // The server-side scheme is an address of its own and never gets a slash.
    if (path.compare(0, 6, L"vtf://") != 0 && (path.empty() || path.front() != L'/')) {
        path.insert(path.begin(), L'/');
    }
    return path;
}

std::wstring WithTrailingSlash(std::wstring path) {
    if (path.empty() || path.back() != L'/') {
        path += L'/';
    }
    return path;
}

std::wstring WithoutTrailingSlash(std::wstring path) {
    if (!path.empty() && path.back() == L'/') {
        path.pop_back();
    }
    return path;
}

SplitPath SplitAtLastSlash(const std::wstring& path) {
    const size_t slash = path.rfind(L'/');
    if (slash == std::wstring::npos) {
        return {{}, path};
    }
    return {path.substr(0, slash), path.substr(slash + 1)};
}

}  // namespace Lattice
