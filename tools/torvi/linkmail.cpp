#include "linkmail.h"

#include <WebFileManShareAPI.h>
#include <CLI/CLI.hpp>

#include "linkfailure.h"
#include "linkrecords.h"
#include "linkterms.h"
#include "output.h"

namespace torvi {
namespace {

std::wstring wide(const std::string& text) {
    return torvi::wide(QString::fromStdString(text));
}

}  // namespace

void LinkMail::addTextTo(CLI::App& command) {
    const auto notEmpty = CLI::Validator(
        [](std::string& value) { return value.empty() ? std::string("is empty") : std::string(); }, "");
    command.add_option("--subject", subject, "The mail's subject")->check(notEmpty)->capture_default_str();
    command.add_option("--text", text, "What the mail says above the addresses")
        ->check(notEmpty)
        ->capture_default_str();
}

void sendMail(const Session& session, const QString& what, const std::wstring& node, const LinkMail& mail,
              const QStringList& ids) {
    constexpr uint32_t kInternet = 1;
    const uint32_t tellsCode = mail.code.empty() ? 0 : 1;
    const std::wstring to = wide(mail.to), subject = wide(mail.subject), text = wide(mail.text),
                       code = wide(mail.code), all = torvi::wide(joinedIds(ids));
    uint32_t word = 0;
    const uint32_t dwStatus =
        ids.size() == 1
            ? WFMSendShareLinkMail(session.context(), session.server(), session.port(), node.c_str(), nullptr,
                                   tellsCode, to.c_str(), subject.c_str(), text.c_str(), all.c_str(),
                                   code.c_str(), &word)
            : WFMSendShareLinkMail2(session.context(), session.server(), session.port(), node.c_str(),
                                    nullptr, tellsCode, kToMail, kInternet, to.c_str(), subject.c_str(),
                                    text.c_str(), all.c_str(), code.c_str(), &word);
    checkLink(what, dwStatus, word);
}

}  // namespace torvi
