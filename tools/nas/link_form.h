#pragma once

#include "link_place.h"

namespace nas {

// What the forms of links say, and the link that they make.

void append(Shape& shape, const Shape& more);
// "valid_duration", and the date where it is one.
void appendDuration(Shape& shape, const Fields& form);

// Of a key that may come several times.
std::vector<std::string> valuesOf(const Fields& form, const std::string& key);
// "true" or "false", or a refusal that names the key.
bool flagField(const Fields& form, const std::string& key);

// These refuse a form, naming the key.
void requireOneOf(const Fields& form, const std::string& key, const std::vector<std::string>& values);
// What the link is for, and whether it has a code.
void requireTypes(const Fields& form);
// 10 stands for a host as it is written, 11 for none.
void requireHostKind(const Fields& form);

// When the link ends: for a period so many hours from now.
int64_t expiryOf(const Fields& form);
// By the host of the form, or of the request without one.
std::string urlOf(Service& service, const Request& request, const Fields& form, const Link& link);
// What a form asks for, without ssid and address. Throws Missing for files that aren't there.
Link linkOf(Service& service, const User& user, const Fields& form);

}  // namespace nas
