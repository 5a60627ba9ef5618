#pragma once

#include <QStringList>
#include <optional>
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
    LinkEnd end;
    std::string name;  ///< empty for the server's choice
    LinkMail mail;     ///< to nobody if there is no addressee
};

/// Throws the usage failure of what no server needs to be asked about.
void requireLinkable(const QString& what, const LinkRequest& request);

/// The link that came of it.
struct MadeLink {
    QString id;
    QString url;
    QString name;               ///< empty if the call doesn't tell
    std::optional<bool> isNew;  ///< nothing if the call doesn't tell
};

/// Makes links of what is linkable.
class LinkMaker {
public:
    /// Throws if a path isn't there.
    LinkMaker(const Session& session, const QString& what, const LinkRequest& request);

    /// One path gets a link more. Of several together there is one link, which takes the new code and end.
    MadeLink create() const;
    /// The link that the path has, with the new code and end; one is made if there is none.
    MadeLink get() const;

private:
    MadeLink createForOne(const std::vector<LinkRecord>& before) const;
    MadeLink createForSeveral(const std::vector<LinkRecord>& before) const;
    LinkRecord newcomer(const std::vector<LinkRecord>& before) const;
    QString urlOf(const QString& id) const;
    void nameAndMail(MadeLink& made) const;
    bool mails() const { return !m_request.mail.to.empty(); }

    const Session& m_session;
    QString m_what;
    const LinkRequest& m_request;
    QStringList m_paths;
    std::wstring m_node;
    LinkTerms m_terms;
};

}  // namespace torvi
