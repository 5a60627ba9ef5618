#include "jobid.h"

namespace torvi {

Json pidJson(const QString& pid) {
    return pid.isEmpty() ? Json(nullptr) : Json(utf8(pid));
}

QString asJob(const QString& pid) {
    return pid.isEmpty() ? QString() : QStringLiteral(" as job %1").arg(pid);
}

}  // namespace torvi
