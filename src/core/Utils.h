#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Lattice {}

/// Text by a wide printf format, cut at 2047 characters; a null format gives an empty text.
std::wstring format(const wchar_t* fmt, ...);
std::wstring StringReplace(const std::wstring& text, const std::wstring& from, const std::wstring& to);
uint32_t xtoi_(const wchar_t* text);
std::wstring ToTwoDigit(int number);
std::vector<std::string> split(const std::string& text, const std::string& delimiter);
std::wstring GetFileNameFromPath(std::wstring path);
void GetSizewithString(std::wstring text, long long& size);
bool wildCmp(const wchar_t* pattern, const wchar_t* text, unsigned int mode);

/// Encodes a query argument in place, character by character; "/" and "~" too.
void PercentEncoding(std::wstring& text);
/// 1 and `out` written if the text in UTF-32 fits in `capacity` with its terminator, otherwise 0 and `out` untouched.
int Utf8ToUnicode_1(const char* in, wchar_t* out, int capacity);
