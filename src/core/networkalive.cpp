#include <QDebug>
#include <QNetworkInterface>

#include "WebFileManAPI.h"

bool IsNetworkAlive() {
    const auto interfaces = QNetworkInterface::allInterfaces();
    for (const QNetworkInterface& interface : interfaces) {
        const auto entries = interface.addressEntries();
        qDebug() << "name:" << interface.name();
        for (const QNetworkAddressEntry& entry : entries)
            qDebug() << "ip addresses:" << entry.ip().toString() << " / " << entry.netmask().toString();
        qDebug() << "mac:" << interface.hardwareAddress();

        const auto flags = interface.flags();
        if ((flags & QNetworkInterface::IsUp) && !(flags & QNetworkInterface::IsLoopBack) &&
            !entries.isEmpty())
            return true;
    }
    return false;
}
