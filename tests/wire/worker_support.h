#pragma once

#include <gmock/gmock.h>

#include <QEventLoop>
#include <QFile>
#include <QString>
#include <QThread>
#include <functional>
#include <string>
#include <vector>

#include "core/httprequestworker.h"
#include "support/logcapture.h"
#include "support/progress.h"
#include "support/rawserver.h"
#include "support/tempdir.h"
#include "support/wire.h"

inline QString urlOf(const RawServer& server, const QString& target = "/x", const char* scheme = "http") {
    return QString("%1://127.0.0.1:%2").arg(scheme).arg(server.port()) + target;
}

/// A bound for what should end long before: a test that hangs says nothing.
constexpr int kPatience = 20000;

inline HttpRequestInput request(const RawServer& server, const char* method = "GET") {
    HttpRequestInput input(urlOf(server), method, false);
    input.set_timeout_msec(kPatience);
    return input;
}

inline HttpRequestInput secureRequest(const RawServer& server, const char* method = "GET") {
    HttpRequestInput input(urlOf(server, "/x", "https"), method, true);
    input.set_timeout_msec(kPatience);
    return input;
}
