#pragma once

#include <QByteArray>
#include <QString>
#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

// ---- Text ----

/// Text by a wide printf format into a buffer of 2048 characters; what is longer is cut, a null format is
/// empty.
std::wstring FormatWide(const wchar_t* fmt, ...);

namespace detail {
/// A null text prints as nothing, where the C library would print a word for it.
template <class T>
auto Printable(T value) {
    static_assert(std::is_scalar_v<T>, "format takes numbers and C texts");
    if constexpr (std::is_convertible_v<T, const wchar_t*>) {
        const wchar_t* text = value;
        return text ? text : L"";
    } else if constexpr (std::is_convertible_v<T, const char*>) {
        const char* text = value;
        return text ? text : "";
    } else {
        return value;
    }
}
}  // namespace detail

/// Text by a wide printf format, cut at 2047 characters; a null format or a null text argument is empty.
template <class... Arguments>
std::wstring format(const wchar_t* fmt, Arguments... arguments) {
    return FormatWide(fmt, detail::Printable(arguments)...);
}

/// A copy of `text` with every `from` replaced; what was put in isn't searched again.
std::wstring StringReplace(const std::wstring& text, const std::wstring& from, const std::wstring& to);
/// The value of a text of hexadecimal digits; 0 for anything else.
uint32_t xtoi_(const wchar_t* text);
/// At least two digits; "00" below 0.
std::wstring ToTwoDigit(int number);
/// The non-empty pieces that end in a delimiter: what stands behind the last one is left out.
std::vector<std::string> split(const std::string& text, const std::string& delimiter);
/// The last element of a path of either kind of separator, one trailing separator not counted.
std::wstring GetFileNameFromPath(std::wstring path);
/// Reads texts such as "1.5 GB" into a number of bytes; 0 for what it doesn't know.
void GetSizewithString(std::wstring text, long long& size);
/// 1 if `text` matches a pattern of "*" and "?", without regard to case. Mode 1: a leading "*" matches
/// everything. Mode 3: a leading "*.*" does.
int wildCmp(const wchar_t* pattern, const wchar_t* text, unsigned int mode);

// ---- Over the edges of a call ----

/// Encodes a query argument in place; "/", "~" and "'" too, characters beyond ASCII not.
void PercentEncoding(std::wstring& text);
/// 1 and `out` written if the text in UTF-32 fits in `capacity` with its terminator, otherwise 0 and `out`
/// untouched. Broken UTF-8 becomes U+FFFD.
int Utf8ToUnicode_1(const char* in, wchar_t* out, int capacity);

namespace Lattice {

/// Wide text is UTF-32; what is no character becomes U+FFFD, a null text is empty.
QString ToQString(const wchar_t* text);
QString ToQString(const wchar_t* text, size_t length);
QString ToQString(const std::wstring& text);
std::wstring FromQString(const QString& text);
QByteArray ToUtf8(const wchar_t* text);
QByteArray ToUtf8(const std::wstring& text);

/// Stores `text` if it fits in `capacity` with its terminator, otherwise leaves `out` alone and returns
/// false.
bool CopyText(wchar_t* out, size_t capacity, const std::wstring& text);
/// Stores as much of `text` as fits, always terminated.
void CopyTextCut(wchar_t* out, size_t capacity, const std::wstring& text);

template <size_t N>
bool CopyText(wchar_t (&out)[N], const std::wstring& text) {
    return CopyText(out, N, text);
}
template <size_t N>
void CopyTextCut(wchar_t (&out)[N], const std::wstring& text) {
    CopyTextCut(out, N, text);
}

// ---- Paths on the server ----

inline bool BeginsWith(const std::wstring& text, const std::wstring& beginning) {
    return text.compare(0, beginning.size(), beginning) == 0;
}
/// `path` beginning with "/". A path of the server-side scheme "vtf://" never gets one.
std::wstring WithLeadingSlash(std::wstring path);
std::wstring WithTrailingSlash(std::wstring path);
/// Cuts one trailing "/".
std::wstring WithoutTrailingSlash(std::wstring path);

struct SplitPath {
    std::wstring parent;  ///< before the last "/", without it
    std::wstring name;    ///< behind it; the whole text if there is none
};
SplitPath SplitAtLastSlash(const std::wstring& path);

}  // namespace Lattice
