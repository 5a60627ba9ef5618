#include "http_request.h"

#include <strings.h>

namespace cloud {

std::string HttpRequest::header(const std::string& name) const {
    for (const auto& [key, value] : headers) {
        if (strcasecmp(key.c_str(), name.c_str()) == 0) {
            return value;
        }
    }
    return "";
}

}  // namespace cloud
