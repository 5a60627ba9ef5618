#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace nas {

// Begins a path inside a team folder.
inline const std::string kTeamScheme = "vtf://";

inline bool isTeamPath(const std::string& path) {
    return path.rfind(kTeamScheme, 0) == 0;
}

// "/" and the scheme alone stay as they are.
std::string withoutLastSlash(std::string path);

// Key and value pairs in the order in which they came.
using Fields = std::vector<std::pair<std::string, std::string>>;

// One permitted sequence of keys; an item is "key" or "key=value" where the value is fixed.
using Shape = std::vector<std::string>;

// "a=b&c=d" with percent-encoding. Refuses anything that the protocol's encoders would not have written.
Fields decodeFields(const std::string& raw, const std::string& what, const std::string& repeating = {});

// The same from a browser, which leaves more characters as they are.
Fields decodeLoosely(const std::string& raw, const std::string& what);

// The same where the values of these keys stand as somebody typed them, as far as a URL can hold that.
Fields decodeTyped(const std::string& raw, const std::string& what, const Shape& keys);

// A piece of a path that stands there as somebody typed it, as far as a URL can hold that.
std::string decodePath(const std::string& raw, const std::string& what);

// Refuses fields that match none of the shapes, naming the first difference to the nearest one.
void requireShape(const Fields& fields, const std::vector<Shape>& shapes, const std::string& what);

bool hasField(const Fields& fields, const std::string& key);
const std::string& field(const Fields& fields, const std::string& key);

// A whole decimal number, or a refusal that names the key.
int64_t numberField(const Fields& fields, const std::string& key);

std::string decodeBase64(const std::string& text, const std::string& what);

bool validUtf8(const std::string& text);

// The letters A to Z made small.
std::string lowerCase(std::string text);

// Undoes the percent-encoding that a client put into a value before the form encoded it once more.
std::string decodeTwice(const std::string& value, const std::string& what);

}  // namespace nas
