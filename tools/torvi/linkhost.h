#pragma once

#include <QString>
#include <string>

#include "session.h"

namespace torvi {

/// What the address of a link names: the host, and the node behind it that has the link.
class LinkHost {
public:
    /// `given` is HOST or HOST:PORT. Without it the link names the server as this session reached it; a port
    /// that isn't known is the server's to add.
    LinkHost(const Session& session, const std::string& given, bool secure, const std::wstring& node);

    bool onOtherNode() const { return m_other; }
    const QString& name() const { return m_name; }
    /// 0 if it isn't known.
    uint32_t port() const { return m_port; }
    /// For calls that send it as it stands.
    QString whole() const;
    /// For calls that add port and node by themselves where there is another node.
    QString withoutNode() const;

private:
    QString m_name;
    uint32_t m_port = 0;
    QString m_node;
    bool m_other = false;
};

}  // namespace torvi
