#include "keptsession.h"

namespace torvi {
namespace {

const char* const kFolder = "sessions";

QByteArray keyOf(const Connection& connection) {
    return QStringLiteral("%1 %2").arg(connection.tls ? "https" : "http", connection.identity()).toUtf8();
}

}  // namespace

KeptSession::KeptSession(const Connection& connection)
    : m_connection(connection), m_file(kFolder, keyOf(connection)) {}

bool KeptSession::exists(const Connection& connection) {
    return StateFile::exists(kFolder, keyOf(connection));
}

std::vector<Connection> KeptSession::all(const Connection& like) {
    std::vector<Connection> connections;
    for (const auto& path : StateFile::all(kFolder)) {
        const StateFile file(path);
        const Json& json = file.content();
        if (!file.held() || json.empty()) continue;
        Connection connection = like;
        connection.server = QString::fromStdString(json.value("server", std::string()));
        connection.port = json.value("port", 0);
        connection.tls = json.value("tls", false);
        connection.user = QString::fromStdString(json.value("user", std::string()));
        connections.push_back(connection);
    }
    return connections;
}

std::wstring KeptSession::text(const char* key) const {
    const Json& json = m_file.content();
    const auto value = json.find(key);
    if (value == json.end() || !value->is_string()) return {};
    return wide(QString::fromStdString(value->get<std::string>()));
}

void KeptSession::keep(const std::wstring& sid, const std::wstring& slaveId) {
    m_file.save(Json{{"server", utf8(m_connection.server)},
                     {"port", m_connection.port},
                     {"tls", m_connection.tls},
                     {"user", utf8(m_connection.user)},
                     {"sid", utf8(QString::fromStdWString(sid))},
                     {"slaveId", utf8(QString::fromStdWString(slaveId))}});
}

}  // namespace torvi
