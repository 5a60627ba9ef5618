#include "linkmaker.h"

#include <WebFileManShareAPI.h>

#include <QDate>
#include <algorithm>

#include "failure.h"
#include "linkfailure.h"
#include "linkupdate.h"
#include "remote.h"

namespace torvi {
namespace {

QStringList remotePaths(const std::vector<std::string>& given) {
    QStringList paths;
    for (const std::string& path : given) paths << remotePath(QString::fromStdString(path));
    return paths;
}

/// The request names a folder, and what is in it.
void requireFolder(const QString& what, const QString& path) {
    if (parentOf(path) != QLatin1String("/")) return;
    throw Failure(Exit::Usage,
                  QStringLiteral("%1: %2 can't be linked as a whole, only what is in it").arg(what, path));
}

/// It names one folder, and a list of what is in it.
void requireOneFolder(const QString& what, const QStringList& paths) {
    for (const QString& path : paths) {
        if (parentOf(path) != parentOf(paths.front()))
            throw Failure(Exit::Usage,
                          QStringLiteral("%1: what one link holds lies in one folder").arg(what));
        if (path.contains(QLatin1Char(';'))) {
            throw Failure(Exit::Usage,
                          QStringLiteral("%1: %2 has a \";\" in its name and can only be linked alone")
                              .arg(what, path));
        }
    }
}

bool isAmong(const std::vector<LinkRecord>& links, const QString& id) {
    return std::any_of(links.begin(), links.end(), [&](const LinkRecord& link) { return link.id == id; });
}

}  // namespace

void requireLinkable(const QString& what, const LinkRequest& request) {
    const QStringList paths = remotePaths(request.paths);
    if (paths.size() > 1) requireOneFolder(what, paths);
    for (const QString& path : paths) requireFolder(what, path);
}

LinkMaker::LinkMaker(const Session& session, const QString& what, const LinkRequest& request)
    : m_session(session),
      m_what(what),
      m_request(request),
      m_paths(remotePaths(request.paths)),
      m_node(session.nodeOf(m_paths.front())),
      m_terms(session, request.terms, request.end, m_node) {
    for (const QString& path : m_paths) require(m_session, m_what, path);
}

MadeLink LinkMaker::create() const {
    const std::vector<LinkRecord> before = listLinks(m_session, m_what, m_node);
    MadeLink made = m_paths.size() == 1 ? createForOne(before) : createForSeveral(before);
    nameAndMail(made);
    return made;
}

/// What fails of it leaves the link.
void LinkMaker::nameAndMail(MadeLink& made) const {
    try {
        if (!m_request.name.empty()) {
            made.name = QString::fromStdString(m_request.name);
            nameLink(m_session, m_what, m_node, made.id, made.name);
        }
        if (!mails()) return;
        LinkMail mail = m_request.mail;
        mail.code = m_request.terms.code;
        sendMail(m_session, m_what, m_node, mail, {made.id});
    } catch (const Failure& failure) {
        throw failure.withAdvice(QStringLiteral("the link is there: %1").arg(made.url));
    }
}

MadeLink LinkMaker::createForOne(const std::vector<LinkRecord>& before) const {
    // The mail goes out when the link has its name. Its words are wanted, but not sent.
    constexpr const wchar_t* kNobody = L"-";
    const std::wstring today = wide(QDate::currentDate().toString(QStringLiteral("yyyy/MM/dd")));
    uint32_t word = 0;
    const uint32_t dwStatus = WFMCreateShareLink(
        m_session.context(), m_session.server(), m_session.port(), m_session.node(), kToOpen,
        m_terms.end.durationType, m_terms.networkType, wide(m_terms.host.whole()).c_str(), 1,
        wide(m_paths.front()).c_str(), m_terms.code.c_str(), nullptr, m_terms.end.date.c_str(),
        m_terms.secure, m_terms.end.hours.c_str(), kNobody, today.c_str(), nullptr, nullptr, nullptr, &word);
    checkLink(m_what, dwStatus, word);
    const LinkRecord link = newcomer(before);
    return {link.id, link.url, link.name, true};
}

/// The call doesn't tell what it made.
LinkRecord LinkMaker::newcomer(const std::vector<LinkRecord>& before) const {
    std::optional<LinkRecord> found;
    for (const LinkRecord& link : listLinks(m_session, m_what, m_node)) {
        if (isAmong(before, link.id)) continue;
        // Another of this user's clients may make links meanwhile.
        if (!found || link.file == leafOf(m_paths.front())) found = link;
    }
    if (found) return *found;
    throw Failure(Exit::Incomplete,
                  QStringLiteral("%1: the link is made, but the server doesn't list it").arg(m_what))
        .withAdvice(QStringLiteral("`torvi link get` tells the path's address"));
}

MadeLink LinkMaker::createForSeveral(const std::vector<LinkRecord>& before) const {
    QString list;
    for (const QString& path : m_paths) list += path + QLatin1Char(';');
    // Where another node is asked the call adds the port, and the node.
    const QString host = m_terms.host.onOtherNode() ? m_terms.host.name() : m_terms.host.whole();
    _WFM_SHARE_LINK_RESULT result = {};
    const uint32_t dwStatus = WFMGetandCreateShareLink(
        m_session.context(), m_session.server(), m_session.port(), m_session.node(), 0, wide(host).c_str(),
        nullptr, wide(list).c_str(), m_terms.code.c_str(), m_terms.end.hours.c_str(),
        m_terms.end.date.c_str(), nullptr, m_terms.secure, m_terms.end.durationType, false, &result);
    checkLink(m_what, dwStatus, static_cast<uint32_t>(result.nResult));
    MadeLink made;
    made.id = QString::fromWCharArray(result.szSsid);
    made.url = QString::fromWCharArray(result.szLinkURL);
    made.name = QString::fromWCharArray(result.szLinkName);
    made.isNew = !isAmong(before, made.id);
    // Where another node is asked the call names this session's port in any case.
    const uint32_t wanted = m_terms.host.port();
    if (m_terms.host.onOtherNode() && wanted != 0 && wanted != m_session.port()) {
        updateLinks(m_session, m_what, m_node, made.id, m_terms);
        made.url = urlOf(made.id);
    }
    return made;
}

/// As the list has it, where an update has changed it.
QString LinkMaker::urlOf(const QString& id) const {
    for (const LinkRecord& link : listLinks(m_session, m_what, m_node)) {
        if (link.id == id) return link.url;
    }
    throw Failure(Exit::Incomplete,
                  QStringLiteral("%1: the link is made, but the server doesn't list it").arg(m_what));
}

MadeLink LinkMaker::get() const {
    constexpr uint32_t kUrlCapacity = 2048;
    wchar_t url[kUrlCapacity + 1] = {};
    wchar_t end[256] = {};
    uint32_t capacity = kUrlCapacity;
    uint32_t word = 0;
    const uint32_t dwStatus = WFMGetShareLink(
        m_session.context(), m_session.server(), m_session.port(), m_session.node(), kToOpen,
        m_terms.end.durationType, m_terms.networkType, wide(m_terms.host.whole()).c_str(), nullptr,
        wide(m_paths.front()).c_str(), m_terms.code.c_str(), m_terms.end.date.c_str(),
        m_terms.end.hours.c_str(), m_terms.secure, nullptr, &capacity, url, end, &word);
    checkLink(m_what, dwStatus, word);
    MadeLink made;
    made.url = QString::fromWCharArray(url);
    made.id = linkId(made.url);
    nameAndMail(made);
    return made;
}

}  // namespace torvi
