#pragma once

#include <string>

/// What servers answer in XML.
namespace wire {

inline std::string element(const std::string& name, const std::string& text) {
    return "<" + name + ">" + text + "</" + name + ">";
}

inline std::string document(const std::string& elements) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n<authLogin version=\"1.0\">\n" + elements +
           "\n</authLogin>";
}

/// A small document that would be read as ten to the 19th copies of a word, behind `elements`.
inline std::string entityBomb(const std::string& name, const std::string& elements = {}) {
    std::string bomb = "<!DOCTYPE a [<!ENTITY e0 \"lol\">";
    for (int i = 1; i < 20; ++i) {
        bomb += "<!ENTITY e" + std::to_string(i) + " \"";
        for (int k = 0; k < 10; ++k) bomb += "&e" + std::to_string(i - 1) + ";";
        bomb += "\">";
    }
    return bomb + "]><a>" + elements + element(name, "&e19;") + "</a>";
}

/// A document whose element is a file of the reader's machine.
inline std::string foreignFile(const std::string& name, const std::string& elements = {}) {
    return "<!DOCTYPE a [<!ENTITY file SYSTEM \"file:///etc/hostname\">]><a>" + elements +
           element(name, "&file;") + "</a>";
}

}  // namespace wire
