#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "output.h"
#include "recordpage.h"
#include "session.h"

namespace torvi {

/// A domain of a directory service.
struct Domain {
    QString name;
    QString netbios;
};

std::vector<Domain> directoryDomains(const Session& session, const QString& what);
/// The one of that name, in either form. Throws if there is none.
Domain findDomain(const Session& session, const QString& what, const QString& name);

/// Which people of a list are wanted.
struct PeopleQuery {
    std::optional<Domain> domain;  ///< nothing for the server's own
    QString filter;                ///< what the server is to look for
    bool all = false;              ///< those, too, who may not sync
    bool refresh = false;          ///< the server looks anew
    Window window;
};

struct Person {
    QString name;
    QString description;
    QString policy;  ///< what becomes of an invitation, in the server's word; of user lists
    int32_t sync = 0;
};

struct People {
    std::vector<Person> people;
    uint32_t total = 0;  ///< on all pages
};
People userList(const Session& session, const QString& what, const PeopleQuery& query);

/// One who has a folder, or could be invited.
struct SharePerson {
    Person person;
    bool member = false;
    int32_t state = 0;
    uint32_t event = 0;  ///< of the older service
};
std::vector<SharePerson> sharePeople(const Session& session, const QString& what, const QString& nasId,
                                     const QString& shareId, const PeopleQuery& query, bool onlyMembers);

/// The server's number for whether somebody may sync.
QString syncText(int32_t sync);
QString policyText(const QString& policy);

}  // namespace torvi
