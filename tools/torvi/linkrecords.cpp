#include "linkrecords.h"

#include <WebFileManShareAPI.h>

#include <algorithm>

#include "failure.h"
#include "recordpage.h"
#include "signals.h"
#include "status.h"

namespace torvi {
namespace {

LinkRecord toLink(const _WFM_SHARE_LINK_INFO& record) {
    LinkRecord link;
    link.id = QString::fromWCharArray(record.szSsid);
    link.url = QString::fromWCharArray(record.szDownloadLink);
    link.name = QString::fromWCharArray(record.szLinkName);
    link.file = QString::fromWCharArray(record.szFileName);
    link.creator = QString::fromWCharArray(record.szCreator);
    link.folder = record.bIsFolder;
    link.several = record.bMultiple;
    return link;
}

}  // namespace

QString LinkRecord::typeText() const {
    if (several) return QStringLiteral("several");
    return folder ? QStringLiteral("folder") : QStringLiteral("file");
}

Json toJson(const LinkRecord& link) {
    return Json{{"id", utf8(link.id)},   {"name", utf8(link.name)},       {"file", utf8(link.file)},
                {"url", utf8(link.url)}, {"creator", utf8(link.creator)}, {"type", utf8(link.typeText())}};
}

Json toJson(const std::vector<LinkRecord>& links) {
    Json all = Json::array();
    for (const LinkRecord& link : links) all.push_back(toJson(link));
    return all;
}

std::vector<LinkRecord> listLinks(const Session& session, const QString& what, const std::wstring& node) {
    std::vector<LinkRecord> links;
    const auto ask = [&](uint32_t lower, uint32_t, RecordPage<_WFM_SHARE_LINK_INFO>& page) {
        auto row = static_cast<int32_t>(lower);
        const uint32_t dwStatus = WFMGetShareLinkList(session.context(), session.server(), session.port(),
                                                      node.c_str(), static_cast<int32_t>(page.capacity()),
                                                      nullptr, &row, page.count(), page.list());
        if (interrupted()) throwCancelled(what);
        if (dwStatus != 0) throw statusFailure(what, dwStatus);
        // It is the number of links now. Nothing more comes after an empty page, whatever that says.
        return page.begin() == page.end() ? 0 : static_cast<uint32_t>(std::max(row, 0));
    };
    eachRecord<_WFM_SHARE_LINK_INFO>(
        {}, ask, [&](const _WFM_SHARE_LINK_INFO& record) { links.push_back(toLink(record)); });
    return links;
}

QString linkId(const QString& idOrUrl) {
    const QString key = QStringLiteral("ssid=");
    const int at = idOrUrl.indexOf(key);
    return at < 0 ? idOrUrl : idOrUrl.mid(at + key.size()).section(QLatin1Char('&'), 0, 0);
}

std::vector<LinkRecord> requireLinks(const Session& session, const QString& what,
                                     const std::vector<std::string>& idsOrUrls) {
    const std::vector<LinkRecord> all = listLinks(session, what, session.node());
    std::vector<LinkRecord> found;
    for (const std::string& text : idsOrUrls) {
        const QString id = linkId(QString::fromStdString(text));
        const auto link =
            std::find_if(all.begin(), all.end(), [&](const LinkRecord& one) { return one.id == id; });
        if (link == all.end()) {
            throw Failure(Exit::NotFound, QStringLiteral("%1: there is no link %2; `torvi link list` tells "
                                                         "those that there are")
                                              .arg(what, id));
        }
        found.push_back(*link);
    }
    return found;
}

QStringList idsOf(const std::vector<LinkRecord>& links) {
    QStringList ids;
    for (const LinkRecord& link : links) ids << link.id;
    return ids;
}

QString joinedIds(const QStringList& ids) {
    return ids.join(QLatin1Char(';'));
}

}  // namespace torvi
