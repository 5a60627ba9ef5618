#include "require_header.h"

#include "status.h"

namespace nas {

void requireHeader(const std::string& name, const std::string& found, const std::string& wanted) {
    if (found != wanted) {
        throw Refusal("header " + name + " is \"" + found + "\", not \"" + wanted + "\"");
    }
}

}  // namespace nas
