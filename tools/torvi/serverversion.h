#pragma once

#include "connection.h"

namespace torvi {

/// What a server answers to the one question that needs neither session nor user.
struct ServerVersion {
    uint32_t dwStatus = 0;
    uint32_t word = 0;
    QString number;
    QString build;
};
ServerVersion askVersion(const Connection& connection, const QString& what);

}  // namespace torvi
