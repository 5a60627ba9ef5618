#pragma once

#include <QStringList>
#include <string>

#include "session.h"

namespace CLI {
class App;
}

namespace torvi {

/// A mail that the server writes about links.
struct LinkMail {
    std::string to;
    std::string subject = "Files for you";
    std::string text = "These files are for you:";
    std::string code;  ///< the access code that it tells

    void addTextTo(CLI::App& command);
};

/// Has it sent by that node, about the links of these ids.
void sendMail(const Session& session, const QString& what, const std::wstring& node, const LinkMail& mail,
              const QStringList& ids);

}  // namespace torvi
