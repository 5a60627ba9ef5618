#include "wire_text.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <functional>

#include "status.h"

namespace nas {

namespace {

bool unreserved(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           (c != '\0' && std::strchr("-._~", c));
}

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

std::string quoted(const std::string& text) {
    return "\"" + text.substr(0, 80) + "\"";
}

bool sentByBrowsers(char c) {
    return unreserved(c) || (c > ' ' && c < 0x7f && !std::strchr("&#%+", c));
}

// What URLs hold unencoded in a query.
bool leftInUrls(char c) {
    return unreserved(c) || (c != '\0' && std::strchr("!$'()*+,;=:@/?[]", c));
}

// In a path "&" stands for itself as well.
bool leftInPaths(char c) {
    return c == '&' || leftInUrls(c);
}

using Plain = bool (*)(char);

std::string decodeValue(const std::string& raw, const std::string& what, Plain plain = unreserved) {
    std::string out;
    for (size_t i = 0; i < raw.size(); ++i) {
        if (raw[i] == '%') {
            int high = i + 1 < raw.size() ? hexDigit(raw[i + 1]) : -1;
            int low = i + 2 < raw.size() ? hexDigit(raw[i + 2]) : -1;
            if (high < 0 || low < 0) {
                throw Refusal(what + " holds a broken percent-encoding");
            }
            out += static_cast<char>(high * 16 + low);
            i += 2;
        } else if (plain(raw[i])) {
            out += raw[i];
        } else {
            throw Refusal(what + " holds the character " + quoted(std::string(1, raw[i])) + " unencoded");
        }
    }
    if (out.find('\0') != std::string::npos) {
        throw Refusal(what + " holds a NUL");
    }
    if (!validUtf8(out)) {
        throw Refusal(what + " is not UTF-8");
    }
    return out;
}

std::string keyOf(const std::string& item) {
    return item.substr(0, item.find('='));
}

size_t matched(const Fields& fields, const Shape& shape) {
    size_t i = 0;
    while (i < fields.size() && i < shape.size() && fields[i].first == keyOf(shape[i])) {
        ++i;
    }
    return i;
}

Fields decodePairs(const std::string& raw, const std::string& what, const std::string& repeating,
                   const std::function<Plain(const std::string& key)>& plainOf) {
    Fields fields;
    if (raw.empty()) {
        return fields;
    }
    size_t from = 0;
    while (from <= raw.size()) {
        size_t to = std::min(raw.find('&', from), raw.size());
        std::string pair = raw.substr(from, to - from);
        size_t equals = pair.find('=');
        if (equals == std::string::npos || equals == 0) {
            // Not quoted: it may be a secret.
            throw Refusal(what + " has a piece without key and value");
        }
        std::string key = decodeValue(pair.substr(0, equals), what);
        if (key != repeating && hasField(fields, key)) {
            throw Refusal(what + " names the key " + quoted(key) + " twice");
        }
        std::string value = decodeValue(pair.substr(equals + 1), what + " key " + quoted(key), plainOf(key));
        fields.emplace_back(std::move(key), std::move(value));
        from = to + 1;
    }
    return fields;
}

bool shapeNames(const Shape& shape, const std::string& key) {
    return std::any_of(shape.begin(), shape.end(),
                       [&](const std::string& item) { return keyOf(item) == key; });
}

}  // namespace

bool validUtf8(const std::string& text) {
    for (size_t i = 0; i < text.size();) {
        auto lead = static_cast<unsigned char>(text[i]);
        size_t length = lead < 0x80                   ? 1
                        : lead >= 0xc2 && lead < 0xe0 ? 2
                        : (lead & 0xf0) == 0xe0       ? 3
                        : lead >= 0xf0 && lead < 0xf5 ? 4
                                                      : 0;
        if (length == 0 || i + length > text.size()) {
            return false;
        }
        uint32_t code = length == 1 ? lead : lead & (0xffu >> (length + 1));
        for (size_t k = 1; k < length; ++k) {
            auto next = static_cast<unsigned char>(text[i + k]);
            if ((next & 0xc0) != 0x80) {
                return false;
            }
            code = code << 6 | (next & 0x3f);
        }
        bool overlong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
        if (overlong || code > 0x10ffff || (code >= 0xd800 && code < 0xe000)) {
            return false;
        }
        i += length;
    }
    return true;
}

std::string withoutLastSlash(std::string path) {
    while (path.size() > 1 && path.back() == '/' && path != kTeamScheme) {
        path.pop_back();
    }
    return path;
}

std::string lowerCase(std::string text) {
    for (char& c : text) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return text;
}

std::string decodeTwice(const std::string& value, const std::string& what) {
    std::string out;
    for (size_t i = 0; i < value.size(); ++i) {
        if (value[i] == '~') {
            throw Refusal(what + " holds a tilde unencoded");
        }
        // Clients leave what lies beyond ASCII as it is.
        const bool plain = unreserved(value[i]) || static_cast<unsigned char>(value[i]) >= 0x80;
        const size_t length = plain ? 1 : 3;
        out += plain ? value.substr(i, 1) : decodeValue(value.substr(i, length), what);
        i += length - 1;
    }
    return out;
}

Fields decodeFields(const std::string& raw, const std::string& what, const std::string& repeating) {
    return decodePairs(raw, what, repeating, [](const std::string&) { return unreserved; });
}

Fields decodeLoosely(const std::string& raw, const std::string& what) {
    return decodePairs(raw, what, {}, [](const std::string&) { return sentByBrowsers; });
}

Fields decodeTyped(const std::string& raw, const std::string& what, const Shape& keys) {
    return decodePairs(raw, what, {}, [&](const std::string& key) {
        return std::find(keys.begin(), keys.end(), key) == keys.end() ? unreserved : leftInUrls;
    });
}

std::string decodePath(const std::string& raw, const std::string& what) {
    return decodeValue(raw, what, leftInPaths);
}

void requireShape(const Fields& fields, const std::vector<Shape>& shapes, const std::string& what) {
    const Shape* best = nullptr;
    size_t reach = 0;
    for (const Shape& shape : shapes) {
        size_t here = matched(fields, shape);
        // Ties go to the shape of the same length, then to the first.
        if (!best || here > reach ||
            (here == reach && shape.size() == fields.size() && best->size() != fields.size())) {
            best = &shape;
            reach = here;
        }
    }
    if (reach < fields.size() || reach < best->size()) {
        if (reach < fields.size() && !shapeNames(*best, fields[reach].first)) {
            throw Refusal(what + " key " + quoted(fields[reach].first) + " is not in the protocol here");
        }
        if (reach < best->size() && !hasField(fields, keyOf((*best)[reach]))) {
            throw Refusal(what + " key " + quoted(keyOf((*best)[reach])) + " is missing");
        }
        throw Refusal(what + " key " + quoted(fields[reach].first) + " is out of order");
    }
    for (size_t i = 0; i < fields.size(); ++i) {
        const std::string& item = (*best)[i];
        size_t equals = item.find('=');
        if (equals != std::string::npos && item.substr(equals + 1) != fields[i].second) {
            throw Refusal(what + " key " + quoted(fields[i].first) + " has the value " +
                          quoted(fields[i].second) + ", not " + quoted(item.substr(equals + 1)));
        }
    }
}

bool hasField(const Fields& fields, const std::string& key) {
    return std::any_of(fields.begin(), fields.end(), [&](const auto& pair) { return pair.first == key; });
}

const std::string& field(const Fields& fields, const std::string& key) {
    for (const auto& pair : fields) {
        if (pair.first == key) {
            return pair.second;
        }
    }
    throw Refusal("key " + quoted(key) + " is missing");
}

int64_t numberField(const Fields& fields, const std::string& key) {
    const std::string& text = field(fields, key);
    size_t digits = !text.empty() && text[0] == '-' ? 1 : 0;
    bool decimal = text.size() > digits && std::all_of(text.begin() + static_cast<long>(digits), text.end(),
                                                       [](char c) { return c >= '0' && c <= '9'; });
    errno = 0;
    long long value = decimal ? std::strtoll(text.c_str(), nullptr, 10) : 0;
    if (!decimal || errno != 0) {
        throw Refusal("key " + quoted(key) + " is not a decimal number: " + quoted(text));
    }
    return value;
}

std::string decodeBase64(const std::string& text, const std::string& what) {
    static const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    if (text.size() % 4 != 0) {
        throw Refusal(what + " is not base64");
    }
    std::string out;
    for (size_t i = 0; i < text.size(); i += 4) {
        uint32_t bits = 0;
        int padding = 0;
        for (size_t k = 0; k < 4; ++k) {
            bool last = i + 4 == text.size();
            if (text[i + k] == '=' && last && (k == 3 || (k == 2 && text[i + 3] == '='))) {
                bits <<= 6;
                ++padding;
                continue;
            }
            size_t at = alphabet.find(text[i + k]);
            if (at == std::string::npos) {
                throw Refusal(what + " is not base64");
            }
            bits = bits << 6 | static_cast<uint32_t>(at);
        }
        for (int k = 0; k < 3 - padding; ++k) {
            out += static_cast<char>(bits >> (16 - 8 * k) & 0xff);
        }
    }
    return out;
}

}  // namespace nas
