#include "link_calls.h"

#include "link_form.h"
#include "link_mail.h"

namespace nas {

Answer linkResult(const std::string& url, bool mailed, bool inTime) {
    nlohmann::json reply = {{"status", number(Status::Ok)}, {"result", url}};
    if (!mailed) {
        reply["email_error"] = 1;
    }
    if (!inTime) {
        reply["time_error"] = 1;
    }
    return {reply, false, reply.dump()};
}

namespace {

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
    if (mails && !mailOut(service, form, {link})) {
        throw StatusError(Status::Failed, "no mail can go out");
    }
    return selection ? told(link) : toldAsText(link, response);
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
    return linkResult(links[0].url, mailOut(service, form, links), true);
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
        return linkResult("", true, false);
    }
    keep(service, request, form, link, false);
    return linkResult(link.url, !mails || mailOut(service, form, {link}), true);
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
    return linkResult(links[0].url, mailOut(service, form, links), true);
}

}  // namespace

void addLinkCalls(std::vector<Call>& calls) {
    const size_t first = calls.size();
    const unsigned manager = on(Endpoint::ManagerCgi);
    addForm(calls, manager, {"func=get_share_link", "sid"}, getLink);
    addForm(calls, manager, {"func=share_file", "sid"}, shareFile);
    addForm(calls, manager, {"func=send_share_mail", "sid"}, mailLink);
    addLinkChangeCalls(calls);
    // Each node keeps the links of what it holds.
    for (size_t i = first; i < calls.size(); ++i) {
        calls[i].prefix = true;
    }
}

}  // namespace nas
