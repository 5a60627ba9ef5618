#pragma once

#include <QStringList>
#include <string>
#include <vector>

#include "linkmail.h"
#include "linkrecords.h"
#include "linkterms.h"

namespace torvi {

/// What is asked for when a link is made.
struct LinkRequest {
    std::vector<std::string> paths;
    LinkTermOptions terms;
    std::string name;  ///< empty for the server's choice
    LinkMail mail;     ///< to nobody if there is no addressee
};

/// The link that came of it.
struct MadeLink {
    QString id;
    QString url;
    QString name;  ///< empty if the call doesn't tell
    QString end;   ///< empty if it stays
    bool isNew = true;
};

/// Makes links of paths that exist, in one folder.
class LinkMaker {
public:
    /// Throws if that isn't so.
    LinkMaker(const Session& session, const QString& what, const LinkRequest& request);

    /// One path gets a link more. Of several together there is one link, which takes the new code and end.
    MadeLink create() const;
    /// The link that the path has, with the new code and end; one is made if there is none.
    MadeLink get() const;

private:
    MadeLink createForOne(const std::vector<LinkRecord>& before) const;
    MadeLink createForSeveral(const std::vector<LinkRecord>& before) const;
    LinkRecord newcomer(const std::vector<LinkRecord>& before) const;
    uint32_t purpose() const { return mails() ? kToMail : kToOpen; }
    bool mails() const { return !m_request.mail.to.empty(); }

    const Session& m_session;
    QString m_what;
    const LinkRequest& m_request;
    QStringList m_paths;
    std::wstring m_node;
    LinkTerms m_terms;
};

}  // namespace torvi
