#include "login.h"

#include <QCryptographicHash>
#include <QSysInfo>

#include "output.h"
#include "secondstep.h"
#include "signals.h"
#include "status.h"

namespace torvi {
namespace {

constexpr uint32_t kNoSuchService = 10;
constexpr int32_t kInsistsOnTls = -8;
constexpr uint32_t kServerNameCapacity = 260;

QString computerName() {
    const QString name = QSysInfo::machineHostName();
    return name.isEmpty() ? QStringLiteral("computer") : name;
}

QString loginText(const Connection& connection) {
    return QStringLiteral("login to %1 as %2").arg(connection.address(), connection.user);
}

/// The two numbers of a login, and what it made.
struct Attempt {
    uint32_t dwStatus = 0;
    uint32_t word = 0;
    Entrance entrance;
};

Failure failureOf(const Connection& connection, const Attempt& attempt) {
    return loginFailure(loginText(connection), attempt.dwStatus, attempt.word);
}

Attempt askSyncService(const Connection& connection) {
    Attempt attempt;
    wchar_t serverName[kServerNameCapacity] = {};
    _WFM_AUTH_CONTEXT* context = nullptr;
    attempt.dwStatus =
        TorviLogin(wide(connection.server).c_str(), connection.port, wide(connection.user).c_str(),
                   wide(connection.password.text()).c_str(), connection.tls, wide(computerName()).c_str(),
                   wide(installationId()).c_str(), agentName(), 0, kServerNameCapacity, connection.proxyMode,
                   wide(connection.proxyHost).c_str(), wide(connection.proxyUser).c_str(),
                   wide(connection.proxyPassword).c_str(), L"", L"" TORVI_VERSION, 0, &connection.timeoutMs,
                   connection.fcgi, serverName, &attempt.entrance.admin, &attempt.entrance.slave,
                   &attempt.word, &context, 0, nullptr);
    attempt.entrance.context.reset(context);
    attempt.entrance.serverName = QString::fromWCharArray(serverName);
    if (context == nullptr && interrupted()) throwCancelled(loginText(connection));
    return attempt;
}

Attempt askOlderService(const Connection& connection) {
    Attempt attempt;
    wchar_t serverName[kServerNameCapacity] = {};
    _WFM_AUTH_CONTEXT* context = nullptr;
    attempt.dwStatus = WFMLogin(
        wide(connection.server).c_str(), static_cast<uint32_t>(connection.port),
        wide(connection.user).c_str(), wide(connection.password.text()).c_str(), connection.tls,
        wide(computerName()).c_str(), wide(installationId()).c_str(), agentName(), 0, kServerNameCapacity,
        connection.proxyMode, wide(connection.proxyHost).c_str(), wide(connection.proxyUser).c_str(),
        wide(connection.proxyPassword).c_str(), L"", L"" TORVI_VERSION, 0, &connection.timeoutMs, serverName,
        &attempt.entrance.admin, &attempt.word, &context);
    attempt.entrance.context.reset(context);
    attempt.entrance.service = Service::Older;
    attempt.entrance.serverName = QString::fromWCharArray(serverName);
    if (context == nullptr && interrupted()) throwCancelled(loginText(connection));
    return attempt;
}

/// Its own login makes the only sessions that the older service takes, and is the only one that tells of a
/// second step.
Entrance enterOlderService(const Connection& connection) {
    Attempt attempt = askOlderService(connection);
    if (attempt.entrance.context != nullptr) return std::move(attempt.entrance);
    if (attempt.dwStatus == kRefusedLogin && wantsSecondStep(attempt.word))
        return takeSecondStep(connection, loginText(connection), attempt.word);
    throw failureOf(connection, attempt);
}

/// A server with the sync service refuses there whom it wants a second step of, and says why at the other.
/// Nothing if it isn't that.
Entrance enterBySecondStep(const Connection& connection) {
    const Attempt older = askOlderService(connection);
    if (older.entrance.context != nullptr) {
        logOut(connection, older.entrance, false);
        return {};
    }
    if (older.dwStatus != kRefusedLogin || !wantsSecondStep(older.word)) return {};
    Entrance entrance = takeSecondStep(connection, loginText(connection), older.word);
    // The sync service may go on with that session, as one of its own.
    Entrance better = takeUp(connection, sidOf(entrance), std::wstring());
    return better.context != nullptr ? std::move(better) : std::move(entrance);
}

Entrance enter(Connection& connection) {
    if (connection.olderService) return enterOlderService(connection);
    Attempt attempt = askSyncService(connection);
    if (attempt.dwStatus == kNoSuchService && connection.fcgi) {
        connection.fcgi = false;
        attempt = askSyncService(connection);
    }
    if (attempt.entrance.context != nullptr) return std::move(attempt.entrance);
    if (attempt.dwStatus == kNoSuchService) {
        connection.olderService = true;
        return enterOlderService(connection);
    }
    if (failureOf(connection, attempt).exit() == Exit::NotAuthenticated) {
        Entrance entrance = enterBySecondStep(connection);
        if (entrance.context != nullptr) return entrance;
    }
    throw failureOf(connection, attempt);
}

}  // namespace

QString installationId() {
    QCryptographicHash hash(QCryptographicHash::Sha1);
    hash.addData("torvi/");
    hash.addData(QSysInfo::machineUniqueId());
    hash.addData(QSysInfo::machineHostName().toUtf8());
    hash.addData(qgetenv("USER"));
    return QString::fromLatin1(hash.result().toHex());
}

Entrance logIn(Connection& connection) {
    try {
        return enter(connection);
    } catch (const Failure& failure) {
        if (failure.resultWord() != kInsistsOnTls || !connection.goToTls()) throw;
    }
    return enter(connection);
}

Entrance takeUp(const Connection& connection, const std::wstring& sid, const std::wstring& slaveId) {
    Entrance entrance;
    wchar_t serverName[kServerNameCapacity] = {};
    _WFM_AUTH_CONTEXT* context = nullptr;
    uint32_t word = 0;
    const uint32_t dwStatus = TorviActivateSid2(
        wide(connection.server).c_str(), static_cast<uint32_t>(connection.port), connection.tls, sid.c_str(),
        nullptr, agentName(), slaveId.c_str(), kServerNameCapacity, connection.proxyMode,
        wide(connection.proxyHost).c_str(), wide(connection.proxyUser).c_str(),
        wide(connection.proxyPassword).c_str(), L"", false, &word, serverName, &entrance.admin, &context);
    entrance.context.reset(context);
    entrance.serverName = QString::fromWCharArray(serverName);
    entrance.slave = !slaveId.empty();
    if (context != nullptr) return entrance;
    const QString what = QStringLiteral("session of %1").arg(connection.identity());
    if (interrupted()) throwCancelled(what);
    // A login would not get there either.
    if (dwStatus != 0 && callFailure(what, dwStatus, word).exit() == Exit::CannotConnect)
        throw callFailure(what, dwStatus, word);
    return entrance;
}

}  // namespace torvi
