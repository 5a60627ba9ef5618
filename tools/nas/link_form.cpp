#include "link_form.h"

#include <algorithm>
#include <ctime>

namespace nas {

void append(Shape& shape, const Shape& more) {
    shape.insert(shape.end(), more.begin(), more.end());
}

void appendDuration(Shape& shape, const Fields& form) {
    shape.emplace_back("valid_duration");
    if (field(form, "valid_duration") == "specific_time") {
        shape.emplace_back("datetime");
    }
}

std::vector<std::string> valuesOf(const Fields& form, const std::string& key) {
    std::vector<std::string> values;
    for (const auto& [name, value] : form) {
        if (name == key) {
            values.push_back(value);
        }
    }
    return values;
}

void requireOneOf(const Fields& form, const std::string& key, const std::vector<std::string>& values) {
    if (std::find(values.begin(), values.end(), field(form, key)) == values.end()) {
        throw Refusal("form key \"" + key + "\" has the unknown value \"" + field(form, key) + "\"");
    }
}

bool flagField(const Fields& form, const std::string& key) {
    requireOneOf(form, key, {"true", "false"});
    return field(form, key) == "true";
}

void requireTypes(const Fields& form) {
    requireOneOf(form, "download_type", {"email_download_link", "create_download_link"});
    if (hasField(form, "network_type")) {
        requireOneOf(form, "network_type", {"internet", "local"});
    }
    const bool coded = flagField(form, "access_enabled");
    if (flagField(form, "include_access_code") != coded) {
        throw Refusal("form keys \"include_access_code\" and \"access_enabled\" differ");
    }
    if (hasField(form, "access_code") && coded == field(form, "access_code").empty()) {
        throw Refusal("form keys \"access_code\" and \"access_enabled\" contradict each other");
    }
}

void requireHostKind(const Fields& form) {
    if (hasField(form, "ht")) {
        requireOneOf(form, "ht", {hasField(form, "hostname") ? "10" : "11"});
    }
}

int64_t expiryOf(const Fields& form) {
    requireOneOf(form, "valid_duration", {"forever", "specific_time", "period_of_time"});
    const std::string& kind = field(form, "valid_duration");
    if (kind == "forever") {
        return Link::kNever;
    }
    if (kind == "period_of_time") {
        constexpr int64_t kMostHours = 200000000;
        const int64_t hours = numberField(form, "expire_time");
        if (hours < 0 || hours > kMostHours) {
            throw Refusal("form key \"expire_time\" is out of its range");
        }
        return std::time(nullptr) + hours * 3600;
    }
    struct tm parts {};
    parts.tm_isdst = -1;
    const char* end = ::strptime(field(form, "datetime").c_str(), "%Y/%m/%d %H:%M", &parts);
    const int day = parts.tm_mday;
    const time_t when = std::mktime(&parts);
    // What no calendar has becomes another day.
    if (!end || *end != '\0' || parts.tm_mday != day) {
        throw Refusal("form key \"datetime\" is no date like 2026/12/31 18:00");
    }
    return when;
}

std::string urlOf(Service& service, const Request& request, const Fields& form, const Link& link) {
    const bool secure = flagField(form, "ssl");
    std::string host =
        hasField(form, "hostname") ? field(form, "hostname") : request.http.get_header_value("Host");
    if (host.empty()) {
        throw Refusal("form key \"hostname\" is empty");
    }
    // Some clients name the node themselves.
    const size_t slash = std::min(host.find('/'), host.size());
    const bool named = link.nas.empty() || slash < host.size();
    const int port = secure ? service.tlsPort() : service.httpPort();
    if (host.find(':') == std::string::npos && port != 0) {
        host.insert(slash, ":" + std::to_string(port));
    }
    return (secure ? "https://" : "http://") + host + (named ? "" : "/" + link.nas) +
           "/share.cgi?ssid=" + link.ssid;
}

Link linkOf(Service& service, const User& user, const Fields& form) {
    Link link;
    link.owner = user.name;
    link.nas = service.shares().nas();
    // A new share names no folder: what isn't a whole path lies in the home.
    link.path = hasField(form, "path") ? field(form, "path") : "/home";
    link.files = valuesOf(form, "file_name");
    link.name = hasField(form, "link_name") ? field(form, "link_name") : "";
    link.code = field(form, "access_code");
    link.expires = expiryOf(form);
    if (link.files.empty()) {
        throw StatusError(Status::Missing, "a link needs a file");
    }
    for (const std::string& file : link.files) {
        const LinkItem item = openItem(service, user, wholePath(link, file));
        if (item.folder.shares || !item.entry.readable()) {
            throw StatusError(Status::Denied, file + " can't be linked");
        }
    }
    if (link.name.empty()) {
        link.name = shownName(link);
    }
    return link;
}

}  // namespace nas
