#pragma once

#include <string>

/// The section and key of one configuration item: 1, or 0 with both texts empty if `flag` isn't exactly one.
int GetConfigItemContent(unsigned int flag, std::wstring& section, std::wstring& key);
/// The item of a section and key in UTF-8, whatever their case; 0 if there is none.
unsigned int GetConfigItemFlag(std::string section, std::string key);

namespace Lattice {

/// The value of an item as it travels: the black list's tabs are spelled, the password is base64.
std::wstring EncodedConfigValue(unsigned int flag, const std::wstring& value);
/// The value of an item that arrived.
std::wstring DecodedConfigValue(unsigned int flag, const std::wstring& value);

}  // namespace Lattice
