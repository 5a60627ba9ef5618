#include "link_mail.h"

#include <algorithm>

#include "link_form.h"

namespace nas {

namespace {

void requireLine(const Fields& form, const std::string& key) {
    const std::string& text = field(form, key);
    if (text.empty() ||
        std::any_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; })) {
        throw Refusal("form key \"" + key + "\" is no line of text");
    }
}

}  // namespace

void requireMail(const Fields& form) {
    requireLine(form, "addressee");
    requireLine(form, "subject");
    if (field(form, "content").empty()) {
        throw Refusal("form key \"content\" is empty");
    }
    flagField(form, "include_access_code");
}

bool mailOut(Service& service, const Fields& form, const std::vector<Link>& links) {
    if (!service.mailbox().open()) {
        return false;
    }
    std::string text = field(form, "content") + "\r\n";
    for (const Link& link : links) {
        text += "\r\n" + link.name + ": " + link.url;
    }
    if (flagField(form, "include_access_code") && hasField(form, "mail_content_pwd")) {
        text += "\r\n\r\nAccess code: " + field(form, "mail_content_pwd");
    }
    service.mailbox().send({field(form, "addressee"), field(form, "subject"), text});
    return true;
}

}  // namespace nas
