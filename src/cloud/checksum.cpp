#include "cloud/checksum.h"

#include <QCryptographicHash>
#include <string>

#include "core/Utils.h"

namespace Lattice {

QString Checksum(const wchar_t* appSecret, const wchar_t* appID, int64_t msec, const wchar_t* appVersion) {
    const QString text =
        ToQString(appSecret) + ToQString(appID) + QString::number(msec) + ToQString(appVersion);
    const std::string digest =
        QCryptographicHash::hash(text.toLatin1(), QCryptographicHash::Sha1).toStdString();
    // The services expect the digest as it comes out of this: read as UTF-8 up to its first zero byte, with
    // U+FFFD for what is none. It must stay so.
    return QString(digest.c_str());
}

}  // namespace Lattice
