#pragma once

#include <QString>
#include <QStringList>
#include <cstdint>
#include <string>
#include <vector>

#include "output.h"

namespace torvi {

/// What a server keeps of a device, under the name that it has on the command line.
struct DeviceItem {
    uint32_t flag;
    const char* name;
    bool secret;  ///< not shown unless it is asked for, and never an argument
    bool list;    ///< its value is several entries
};

/// Null if there is none of that name, or of that number.
const DeviceItem* findDeviceItem(const QString& name);
const DeviceItem* findDeviceItem(uint32_t flag);
/// The names of all of them.
QStringList deviceItemNames();

/// One item of one device.
struct DeviceValue {
    const DeviceItem* item;
    QString value;

    QStringList entries() const;
    QString text(bool secrets) const;
    Json json(bool secrets) const;
};

/// What arguments ITEM=VALUE say. The entries of a list come one by one; a secret stands without its value,
/// which is empty here. Throws the usage failure of `what`.
std::vector<DeviceValue> parseDeviceValues(const QString& what, const std::vector<std::string>& arguments);

}  // namespace torvi
