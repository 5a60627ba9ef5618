#pragma once

#include <QString>
#include <cstdint>

#include "options.h"
#include "teams.h"

namespace torvi {

/// Whom to talk to and as whom, all sources merged.
struct Connection {
    QString server;
    int port = 0;
    bool tls = false;
    QString user;
    QString password;
    QString proxy;
    uint32_t proxyMode = 0;
    QString proxyHost;
    QString proxyUser;
    QString proxyPassword;
    QString node;
    bool fcgi = false;
    std::vector<TeamFolder> teams;
    uint32_t timeoutMs = 0;

    QString address() const { return QStringLiteral("%1:%2").arg(server).arg(port); }
};

enum class Needs { Server, Login };

/// Merges command line, environment, profile and defaults; asks for the password if there is no other way.
Connection resolveConnection(const GlobalOptions& options, Needs needs);

/// The name that the program goes by in requests. An empty one makes listings fail.
const wchar_t* agentName();

}  // namespace torvi
