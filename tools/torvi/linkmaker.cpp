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

LinkMaker::LinkMaker(const Session& session, const QString& what, const LinkRequest& request)
    : m_session(session),
      m_what(what),
      m_request(request),
      m_paths(remotePaths(request.paths)),
      m_node(session.nodeOf(m_paths.front())),
      m_terms(session, request.terms, parseLinkEnd(what, QString::fromStdString(request.terms.expires)),
              m_node) {
    if (m_paths.size() > 1) requireOneFolder(m_what, m_paths);
    for (const QString& path : m_paths) {
        requireFolder(m_what, path);
        require(m_session, m_what, path);
    }
}

MadeLink LinkMaker::create() const {
    const std::vector<LinkRecord> before = listLinks(m_session, m_what, m_node);
    MadeLink made = m_paths.size() == 1 ? createForOne(before) : createForSeveral(before);
    if (!m_request.name.empty()) {
        made.name = QString::fromStdString(m_request.name);
        nameLink(m_session, m_what, m_node, made.id, made.name);
    }
    return made;
}

MadeLink LinkMaker::createForOne(const std::vector<LinkRecord>& before) const {
    // Without a mail the addressee is wanted, but not sent.
    const std::wstring to = mails() ? wide(QString::fromStdString(m_request.mail.to)) : L"-";
    const std::wstring subject = mails() ? wide(QString::fromStdString(m_request.mail.subject)) : L"";
    const std::wstring text = mails() ? wide(QString::fromStdString(m_request.mail.text)) : L"";
    const std::wstring today = wide(QDate::currentDate().toString(QStringLiteral("yyyy/MM/dd")));
    uint32_t word = 0;
    const uint32_t dwStatus = WFMCreateShareLink(
        m_session.context(), m_session.server(), m_session.port(), m_session.node(), purpose(),
        m_terms.end.durationType, m_terms.networkType, wide(m_terms.host.whole()).c_str(), 1,
        wide(m_paths.front()).c_str(), m_terms.code.c_str(), m_terms.code.c_str(), m_terms.end.date.c_str(),
        m_terms.secure, m_terms.end.hours.c_str(), to.c_str(), today.c_str(), subject.c_str(), text.c_str(),
        nullptr, &word);
    const bool onlyMailFailed = dwStatus == 0 && word == kMailFailed;
    if (!onlyMailFailed) checkLink(m_what, dwStatus, word);
    const LinkRecord link = newcomer(before);
    if (onlyMailFailed) {
        throw linkFailure(m_what, dwStatus, word)
            .withAdvice(QStringLiteral("the link is made: %1").arg(link.url));
    }
    return {link.id, link.url, link.name, m_terms.end.text(), true};
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
    made.end = endText(QString::fromWCharArray(result.szExpireTime));
    made.isNew = !isAmong(before, made.id);
    if (mails()) {
        LinkMail mail = m_request.mail;
        mail.code = m_request.terms.code;
        sendMail(m_session, m_what, m_node, mail, {made.id});
    }
    return made;
}

MadeLink LinkMaker::get() const {
    constexpr uint32_t kUrlCapacity = 2048;
    wchar_t url[kUrlCapacity + 1] = {};
    wchar_t end[256] = {};
    uint32_t capacity = kUrlCapacity;
    uint32_t word = 0;
    const uint32_t dwStatus = WFMGetShareLink(
        m_session.context(), m_session.server(), m_session.port(), m_session.node(), purpose(),
        m_terms.end.durationType, m_terms.networkType, wide(m_terms.host.whole()).c_str(),
        wide(QString::fromStdString(m_request.mail.to)).c_str(), wide(m_paths.front()).c_str(),
        m_terms.code.c_str(), m_terms.end.date.c_str(), m_terms.end.hours.c_str(), m_terms.secure, nullptr,
        &capacity, url, end, &word);
    checkLink(m_what, dwStatus, word);
    MadeLink made;
    made.url = QString::fromWCharArray(url);
    made.id = linkId(made.url);
    made.end = endText(QString::fromWCharArray(end));
    return made;
}

}  // namespace torvi
