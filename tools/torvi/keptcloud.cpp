#include "keptcloud.h"

#include "output.h"

namespace torvi {
namespace {

const char* const kFolder = "cloud";
const char* const kName = "session";

}  // namespace

KeptCloud::KeptCloud() : m_file(kFolder, kName) {}

bool KeptCloud::exists() {
    return StateFile::exists(kFolder, kName);
}

QString KeptCloud::text(const char* key) const {
    const Json& json = m_file.content();
    const auto value = json.find(key);
    if (value == json.end() || !value->is_string()) return {};
    return QString::fromStdString(value->get<std::string>());
}

bool KeptCloud::tls() const {
    const Json& json = m_file.content();
    const auto value = json.find("tls");
    return value == json.end() || !value->is_boolean() || value->get<bool>();
}

bool KeptCloud::belongsTo(const Cloud& cloud) const {
    return !cloud.host.isEmpty() && cloud.host == text("cloud") && cloud.clientId == text("clientId") &&
           (cloud.tls || !tls());
}

void KeptCloud::keep(const Cloud& cloud) {
    m_file.save(Json{{"cloud", utf8(cloud.host)},
                     {"remoteAccess", utf8(cloud.remoteHost)},
                     {"tls", cloud.tls},
                     {"clientId", utf8(cloud.clientId)},
                     {"clientSecret", utf8(cloud.clientSecret)},
                     {"accessToken", utf8(cloud.tokens.access)},
                     {"refreshToken", utf8(cloud.tokens.refresh)},
                     {"proxy", utf8(cloud.way.proxy)},
                     {"proxyUser", utf8(cloud.way.proxyUser)}});
}

void KeptCloud::keep(const CloudTokens& tokens) {
    Json json = m_file.content();
    json["accessToken"] = utf8(tokens.access);
    json["refreshToken"] = utf8(tokens.refresh);
    m_file.save(json);
}

}  // namespace torvi
