#pragma once

#include <QStringList>
#include <string>
#include <vector>

#include "output.h"
#include "session.h"

namespace torvi {

/// One public link, as the server lists it.
struct LinkRecord {
    QString id;
    QString url;
    QString name;
    QString file;  ///< without its folder
    QString creator;
    bool folder = false;
    bool several = false;  ///< it holds more than the one file that is named

    QString typeText() const;
};

Json toJson(const LinkRecord& link);
Json toJson(const std::vector<LinkRecord>& links);

/// All links of this user on that node.
std::vector<LinkRecord> listLinks(const Session& session, const QString& what, const std::wstring& node);

/// The id that an address names; an id is one already.
QString linkId(const QString& idOrUrl);

/// The links of these ids or addresses, which all must be there.
std::vector<LinkRecord> requireLinks(const Session& session, const QString& what,
                                     const std::vector<std::string>& idsOrUrls);

QStringList idsOf(const std::vector<LinkRecord>& links);
/// As the calls take several of them.
QString joinedIds(const QStringList& ids);

}  // namespace torvi
