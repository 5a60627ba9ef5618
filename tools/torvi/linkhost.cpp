#include "linkhost.h"

#include <iterator>

namespace torvi {
namespace {

QString ownNode(const Session& session) {
    wchar_t id[260] = {};
    uint32_t capacity = static_cast<uint32_t>(std::size(id));
    return WFMGetSlaveID(session.context(), &capacity, id) == 0 ? QString::fromWCharArray(id) : QString();
}

}  // namespace

LinkHost::LinkHost(const Session& session, const std::string& given, bool secure, const std::wstring& node)
    : m_name(QString::fromStdString(given)), m_node(QString::fromStdWString(node)) {
    const QString own = ownNode(session);
    m_other = !own.isEmpty() && !m_node.isEmpty() && own.compare(m_node, Qt::CaseInsensitive) != 0;
    if (given.empty()) {
        m_name = session.connection().server;
        // The other of the server's two ports isn't known here.
        if (secure == session.connection().tls) m_port = session.port();
        return;
    }
    const int colon = m_name.lastIndexOf(QLatin1Char(':'));
    bool number = false;
    const uint32_t port = m_name.mid(colon + 1).toUInt(&number);
    if (colon > 0 && number) {
        m_port = port;
        m_name.truncate(colon);
    }
}

QString LinkHost::withoutNode() const {
    return m_port == 0 ? m_name : QStringLiteral("%1:%2").arg(m_name).arg(m_port);
}

QString LinkHost::whole() const {
    return m_other ? QStringLiteral("%1/%2").arg(withoutNode(), m_node) : withoutNode();
}

}  // namespace torvi
