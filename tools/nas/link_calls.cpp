#include <algorithm>
#include <ctime>

#include "link_place.h"

namespace nas {

std::string wholePath(const Link& link, const std::string& item) {
    return item.find('/') == std::string::npos ? link.path + "/" + item : item;
}

LinkItem openItem(Service& service, const User& owner, const std::string& whole) {
    const size_t slash = whole.rfind('/');
    LinkItem found;
    if (slash == std::string::npos || slash == 0) {
        throw StatusError(Status::Missing, "no path: " + whole);
    }
    if (whole.substr(0, slash) == "vtf:/") {
        found.folder = service.tree().open(owner, whole);
    } else {
        found.folder = service.tree().open(owner, whole.substr(0, slash));
        found.name = whole.substr(slash + 1);
    }
    const std::optional<Entry> entry = service.tree().lookup(owner, found.folder, found.name);
    if (!entry) {
        throw StatusError(Status::Missing, "nothing at " + whole);
    }
    found.entry = *entry;
    return found;
}

const Link* findLink(const ShareBook& book, const std::string& ssid) {
    const auto it = std::find_if(book.links.begin(), book.links.end(),
                                 [&](const Link& link) { return link.ssid == ssid; });
    return it == book.links.end() ? nullptr : &*it;
}

namespace {

const Shape kMail = {"addressee", "subject", "content"};

void append(Shape& shape, const Shape& more) {
    shape.insert(shape.end(), more.begin(), more.end());
}

// "valid_duration", and the date where it is one.
void appendDuration(Shape& shape, const Fields& form) {
    shape.emplace_back("valid_duration");
    if (field(form, "valid_duration") == "specific_time") {
        shape.emplace_back("datetime");
    }
}

void requireOneOf(const Fields& form, const std::string& key, const std::vector<std::string>& values) {
    if (std::find(values.begin(), values.end(), field(form, key)) == values.end()) {
        throw Refusal("form key \"" + key + "\" has the unknown value \"" + field(form, key) + "\"");
    }
}

bool flag(const Fields& form, const std::string& key) {
    requireOneOf(form, key, {"true", "false"});
    return field(form, key) == "true";
}

// When the link ends: for a period so many hours from now.
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

// 10 stands for a host as it is written, 11 for none.
void requireHostKind(const Fields& form) {
    if (hasField(form, "ht")) {
        requireOneOf(form, "ht", {hasField(form, "hostname") ? "10" : "11"});
    }
}

std::string urlOf(Service& service, const Request& request, const Fields& form, const Link& link) {
    const bool secure = flag(form, "ssl");
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

std::vector<std::string> valuesOf(const Fields& form, const std::string& key) {
    std::vector<std::string> values;
    for (const auto& [name, value] : form) {
        if (name == key) {
            values.push_back(value);
        }
    }
    return values;
}

// Of a team folder as a whole the form names nothing but its path.
std::string shownName(const Link& link) {
    return leafOf(link.files[0].empty() ? link.path : link.files[0]);
}

// What a form asks for, with everything but the ssid; throws Missing for files that aren't there.
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

void keep(Service& service, const Request& request, const Fields& form, Link& link, bool reuse) {
    service.shares().change([&](ShareBook& book) {
        Link* known = nullptr;
        for (Link& other : book.links) {
            const bool same = other.owner == link.owner && other.nas == link.nas && other.path == link.path &&
                              other.files == link.files;
            known = same && reuse ? &other : known;
        }
        link.ssid = known ? known->ssid : randomHex(8);
        link.url = urlOf(service, request, form, link);
        if (known) {
            link.name = hasField(form, "link_name") ? link.name : known->name;
            *known = link;
        } else {
            book.links.push_back(link);
        }
    });
}

void requireLine(const Fields& form, const std::string& key) {
    const std::string& text = field(form, key);
    if (text.empty() ||
        std::any_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; })) {
        throw Refusal("form key \"" + key + "\" is no line of text");
    }
}

// What kMail holds, before anything is done for the mail's sake.
void requireMail(const Fields& form) {
    requireLine(form, "addressee");
    requireLine(form, "subject");
    if (field(form, "content").empty()) {
        throw Refusal("form key \"content\" is empty");
    }
    flag(form, "include_access_code");
}

// False if no mail can go out.
bool mail(Service& service, const Fields& form, const std::vector<Link>& links) {
    if (!service.mailbox().open()) {
        return false;
    }
    std::string text = field(form, "content") + "\r\n";
    for (const Link& link : links) {
        text += "\r\n" + link.name + ": " + link.url;
    }
    if (flag(form, "include_access_code") && hasField(form, "mail_content_pwd")) {
        text += "\r\n\r\nAccess code: " + field(form, "mail_content_pwd");
    }
    service.mailbox().send({field(form, "addressee"), field(form, "subject"), text});
    return true;
}

// Clients search this text for its keys and know each slash by the backslash before it, so that it holds
// nothing that a user may choose freely but the host of the link, behind what they search for, and the end of
// the link in a form without slashes and blanks.
Answer toldAsText(const Link& link, httplib::Response& response) {
    const nlohmann::ordered_json reply = {{"status", number(Status::Ok)},
                                          {"expire_time", link.expireText("%Y-%m-%dT%H:%M")},
                                          {"ssid", link.ssid},
                                          {"link_url", link.url}};
    std::string text;
    for (const char c : reply.dump()) {
        text += c == '/' ? "\\/" : std::string(1, c);
    }
    response.set_content(text, "application/json");
    return {{{"status", number(Status::Ok)}}, true, link.ssid};
}

Answer told(const Link& link) {
    const nlohmann::json one = {{"ssid", link.ssid}, {"link_url", link.url}};
    return {{{"status", number(Status::Ok)},
             {"ssid", link.ssid},
             {"link_name", link.name},
             {"link_url", link.url},
             {"expire_time", link.expireText()},
             {"multiple", link.files.size() > 1 ? 1 : 0},
             {"links", nlohmann::json::array({one})}},
            false,
            link.ssid};
}

void requireCount(const Fields& form, size_t count) {
    if (numberField(form, "file_total") != static_cast<int64_t>(count)) {
        throw Refusal("form key \"file_total\" is not " + std::to_string(count));
    }
}

Shape selectionShape(const Fields& form) {
    Shape shape;
    appendDuration(shape, form);
    shape.emplace_back("access_code");
    for (const char* key : {"ht", "hostname"}) {
        if (hasField(form, key)) {
            shape.emplace_back(key);
        }
    }
    shape.emplace_back("ssl");
    append(shape, Shape(valuesOf(form, "file_name").size(), "file_name"));
    if (field(form, "new_share") == "0") {
        shape.emplace_back("path");
    } else if (hasField(form, "link_name")) {
        shape.emplace_back("link_name");
    }
    append(shape, {"new_share", "expire_time", "c=1", "file_total"});
    return shape;
}

Shape oneLinkShape(const Fields& form) {
    Shape shape = {"download_type"};
    if (hasField(form, "addressee")) {
        append(shape, kMail);
    }
    appendDuration(shape, form);
    append(shape, {"file_total=1", "access_code", "access_enabled", "hostname", "ssl", "include_access_code",
                   "file_name", "path", "network_type", "expire_time"});
    return shape;
}

void requireTypes(const Fields& form) {
    requireOneOf(form, "download_type", {"email_download_link", "create_download_link"});
    if (hasField(form, "network_type")) {
        requireOneOf(form, "network_type", {"internet", "local"});
    }
    const bool coded = flag(form, "access_enabled");
    if (flag(form, "include_access_code") != coded) {
        throw Refusal("form keys \"include_access_code\" and \"access_enabled\" differ");
    }
    if (hasField(form, "access_code") && coded == field(form, "access_code").empty()) {
        throw Refusal("form keys \"access_code\" and \"access_enabled\" contradict each other");
    }
}

// The link of a selection: the one that is there, or a new one.
Answer getLink(Service& service, Request& request, httplib::Response& response) {
    const Fields form = readForm(request, "file_name");
    const bool selection = hasField(form, "new_share");
    requireShape(form, {selection ? selectionShape(form) : oneLinkShape(form)}, "form");
    requireHostKind(form);
    if (selection) {
        requireOneOf(form, "new_share", {"0", "1"});
        requireCount(form, valuesOf(form, "file_name").size());
        if (field(form, "new_share") == "0" && !hasField(form, "hostname")) {
            throw Refusal("form key \"hostname\" is missing");
        }
    } else {
        requireTypes(form);
    }
    const bool mails = hasField(form, "addressee");
    if (mails) {
        requireMail(form);
    }
    const User& user = service.authenticate(request, field(request.query, "sid"));
    Link link = linkOf(service, user, form);
    keep(service, request, form, link, !selection || field(form, "new_share") == "0");
    if (mails && !mail(service, form, {link})) {
        throw StatusError(Status::Failed, "no mail can go out");
    }
    return selection ? told(link) : toldAsText(link, response);
}

Answer result(const std::string& url, bool mailed, bool inTime) {
    nlohmann::json reply = {{"status", number(Status::Ok)}, {"result", url}};
    if (!mailed) {
        reply["email_error"] = 1;
    }
    if (!inTime) {
        reply["time_error"] = 1;
    }
    return {reply, false, reply.dump()};
}

// The links of a text "a;b", which are the user's own.
std::vector<Link> ownLinks(Service& service, const User& user, const std::vector<std::string>& ssids) {
    const auto book = service.shares().read();
    std::vector<Link> links;
    for (const std::string& ssid : ssids) {
        const Link* link = findLink(*book, ssid);
        if (!link || link->owner != user.name) {
            throw StatusError(Status::Missing, user.name + " has no link " + ssid);
        }
        links.push_back(*link);
    }
    if (links.empty()) {
        throw StatusError(Status::Missing, "no link is named");
    }
    return links;
}

std::vector<std::string> splitIds(const std::string& text) {
    std::vector<std::string> ids;
    for (size_t from = 0; from <= text.size();) {
        const size_t to = std::min(text.find(';', from), text.size());
        if (to > from) {
            ids.push_back(text.substr(from, to - from));
        }
        from = to + 1;
    }
    return ids;
}

Answer mailLinks(Service& service, Request& request, const Fields& form) {
    const std::vector<std::string> ssids = valuesOf(form, "ssids");
    Shape shape = {"download_type"};
    append(shape, kMail);
    append(shape, Shape(ssids.size(), "ssids"));
    append(shape, {"file_total", "network_type", "include_access_code", "access_enabled"});
    if (hasField(form, "mail_content_pwd")) {
        shape.emplace_back("mail_content_pwd");
    }
    requireShape(form, {shape}, "form");
    requireTypes(form);
    requireMail(form);
    requireCount(form, ssids.size());
    const User& user = service.authenticate(request, field(request.query, "sid"));
    const std::vector<Link> links = ownLinks(service, user, ssids);
    return result(links[0].url, mail(service, form, links), true);
}

Answer createLink(Service& service, Request& request, const Fields& form) {
    Shape shape = {"download_type"};
    const bool mails = hasField(form, "addressee");
    if (mails) {
        append(shape, kMail);
    }
    appendDuration(shape, form);
    append(shape, {"link_url=", "file_name", "file_total", "access_code", "access_enabled", "hostname", "ssl",
                   "include_access_code"});
    if (mails && hasField(form, "mail_content_pwd")) {
        shape.emplace_back("mail_content_pwd");
    }
    append(shape, {"path", "network_type", "mail_content_date", "expire_time"});
    requireShape(form, {shape}, "form");
    requireTypes(form);
    if (mails) {
        requireMail(form);
    }
    for (const char* key : {"mail_content_date", "expire_time"}) {
        if (field(form, key).empty()) {
            throw Refusal("form key \"" + std::string(key) + "\" is empty");
        }
    }
    numberField(form, "file_total");
    const User& user = service.authenticate(request, field(request.query, "sid"));
    Link link = linkOf(service, user, form);
    if (link.over()) {
        return result("", true, false);
    }
    keep(service, request, form, link, false);
    return result(link.url, !mails || mail(service, form, {link}), true);
}

// One call both makes a link and mails others.
Answer shareFile(Service& service, Request& request, httplib::Response&) {
    const Fields form = readForm(request, "ssids");
    return hasField(form, "ssids") ? mailLinks(service, request, form) : createLink(service, request, form);
}

Answer mailLink(Service& service, Request& request, httplib::Response&) {
    const Fields form = readForm(request);
    Shape shape = {"share_ssid"};
    append(shape, kMail);
    shape.emplace_back("include_access_code");
    if (field(form, "include_access_code") == "true") {
        shape.emplace_back("mail_content_pwd");
    }
    requireShape(form, {shape}, "form");
    requireMail(form);
    const User& user = service.authenticate(request, field(request.query, "sid"));
    const std::vector<Link> links = ownLinks(service, user, {field(form, "share_ssid")});
    return result(links[0].url, mail(service, form, links), true);
}

Shape updateShape(const Fields& form) {
    Shape shape = {"download_type", "option"};
    appendDuration(shape, form);
    append(shape, {"file_total=1", "access_code", "access_enabled"});
    // Either of the two may come first.
    for (const auto& [key, value] : form) {
        if (key == "ht" || key == "hostname") {
            shape.push_back(key);
        }
    }
    append(shape, {"ssl", "include_access_code", "expire_time", "ssids"});
    if (hasField(form, "link_name")) {
        shape.emplace_back("link_name");
    }
    return shape;
}

Answer updateLinks(Service& service, Request& request, httplib::Response&) {
    const Fields form = readForm(request);
    requireShape(form, {updateShape(form)}, "form");
    requireHostKind(form);
    if (!hasField(form, "ht") && !hasField(form, "hostname")) {
        throw Refusal("form key \"hostname\" is missing");
    }
    requireOneOf(form, "option", {"1", "3"});
    // Without a host only the name changes, and the rest may be anything.
    const bool nameOnly = !hasField(form, "hostname") && hasField(form, "ht");
    if (!nameOnly) {
        requireTypes(form);
    }
    const int64_t expires = nameOnly ? Link::kNever : expiryOf(form);
    const User& user = service.authenticate(request, field(request.query, "sid"));
    const std::vector<Link> links = ownLinks(service, user, splitIds(field(form, "ssids")));
    std::string first;
    service.shares().change([&](ShareBook& book) {
        for (Link& link : book.links) {
            const bool meant = std::any_of(links.begin(), links.end(),
                                           [&](const Link& one) { return one.ssid == link.ssid; });
            if (!meant) {
                continue;
            }
            if (hasField(form, "link_name")) {
                link.name = field(form, "link_name");
            }
            if (!nameOnly) {
                link.code = field(form, "access_code");
                link.expires = expires;
                link.url = urlOf(service, request, form, link);
            }
            first = link.ssid == links[0].ssid ? link.url : first;
        }
    });
    return result(first, true, true);
}

bool holds(const Link& link, const std::string& path) {
    return std::any_of(link.files.begin(), link.files.end(), [&](const std::string& file) {
        return (file.empty() ? link.path : wholePath(link, file)) == path;
    });
}

Answer deleteLinks(Service& service, Request& request, httplib::Response&) {
    const Fields& query = request.query;
    const User& user = service.authenticate(request, field(query, "sid"));
    std::vector<std::string> ssids;
    if (hasField(query, "ssids")) {
        ssids = splitIds(field(query, "ssids"));
    } else {
        if (field(query, "filename").empty() || field(query, "download_link").empty()) {
            throw Refusal("query key \"filename\" or \"download_link\" is empty");
        }
        const auto book = service.shares().read();
        for (const Link& link : book->links) {
            if (link.owner == user.name && link.url == field(query, "download_link") &&
                holds(link, field(query, "filename"))) {
                ssids.push_back(link.ssid);
            }
        }
    }
    const std::vector<Link> links = ownLinks(service, user, ssids);
    service.shares().change([&](ShareBook& book) {
        const auto gone = [&](const Link& link) {
            return std::any_of(links.begin(), links.end(),
                               [&](const Link& one) { return one.ssid == link.ssid; });
        };
        book.links.erase(std::remove_if(book.links.begin(), book.links.end(), gone), book.links.end());
    });
    return doneWithZero(std::to_string(links.size()) + " links");
}

bool holdsFolder(Service& service, const User& user, const Link& link) {
    try {
        return openItem(service, user, wholePath(link, link.files[0])).entry.isFolder;
    } catch (const StatusError&) {
        return false;
    }
}

Answer linkList(Service& service, Request& request, httplib::Response&) {
    constexpr int kMostFiles = 1000;
    const User& user = service.authenticate(request, field(request.query, "sid"));
    const int64_t limit = numberField(request.query, "limit");
    const int64_t start = numberField(request.query, "start");
    if (limit < 1 || start < 0) {
        throw Refusal("limit or start is out of its range");
    }
    const auto book = service.shares().read();
    std::vector<const Link*> links;
    for (const Link& link : book->links) {
        if (link.owner == user.name && link.nas == service.shares().nas()) {
            links.push_back(&link);
        }
    }
    std::stable_sort(links.begin(), links.end(),
                     [](const Link* a, const Link* b) { return a->files[0] < b->files[0]; });
    nlohmann::json datas = nlohmann::json::array();
    for (int64_t i = start; i < static_cast<int64_t>(links.size()) && i - start < limit; ++i) {
        const Link& link = *links[static_cast<size_t>(i)];
        datas.push_back({{"ssid", link.ssid},
                         {"filename", shownName(link)},
                         {"download_link", link.url},
                         {"creator", link.owner},
                         {"link_name", link.name},
                         {"isfolder", holdsFolder(service, user, link) ? 1 : 0},
                         {"multiple", link.files.size() > 1 ? 1 : 0}});
    }
    return {{{"status", number(Status::Ok)},
             {"max_share_file", kMostFiles},
             {"total", links.size()},
             {"datas", std::move(datas)}}};
}

}  // namespace

void addLinkCalls(std::vector<Call>& calls) {
    const size_t first = calls.size();
    const unsigned manager = on(Endpoint::ManagerCgi);
    addForm(calls, manager, {"func=get_share_link", "sid"}, getLink);
    addForm(calls, manager, {"func=share_file", "sid"}, shareFile);
    addForm(calls, manager, {"func=send_share_mail", "sid"}, mailLink);
    addForm(calls, manager, {"func=update_share_link", "sid"}, updateLinks);
    addGet(calls, manager,
           {{"func=delete_share", "sid", "ssids", "file_total=1"},
            {"func=delete_share", "sid", "filename", "download_link", "file_total=1"}},
           deleteLinks, notDone);
    addGet(calls, manager, {{"func=get_share_list", "sid", "dir=ASC", "limit", "sort=filename", "start"}},
           linkList);
    // Each node keeps the links of what it holds.
    for (size_t i = first; i < calls.size(); ++i) {
        calls[i].prefix = true;
    }
}

}  // namespace nas
