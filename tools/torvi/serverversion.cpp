#include "serverversion.h"

#include <WebFileManAPI.h>

#include <memory>

#include "output.h"
#include "signals.h"

namespace torvi {

ServerVersion askVersion(const Connection& connection, const QString& what) {
    const auto record = std::make_unique<_WFM_VERSION_INFORMATION>();
    ServerVersion version;
    version.dwStatus = WFMGetVersion(
        wide(connection.server).c_str(), static_cast<uint32_t>(connection.port), agentName(), connection.tls,
        connection.proxyMode, wide(connection.proxyHost).c_str(), wide(connection.proxyUser).c_str(),
        wide(connection.proxyPassword).c_str(), L"", 0, &version.word, record.get());
    if (interrupted()) throwCancelled(what);
    version.number = QString::fromWCharArray(record->szVersion);
    version.build = QString::fromWCharArray(record->szBuildNumber);
    return version;
}

}  // namespace torvi
