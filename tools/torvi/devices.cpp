#include "devices.h"

#include <CLI/CLI.hpp>
#include <QStringList>

#include "failure.h"
#include "login.h"
#include "output.h"
#include "signals.h"
#include "status.h"

namespace torvi {
namespace {

/// None where the server doesn't tell: what it refuses here isn't understood.
std::vector<Device> devicesIfTold(const Session& session, const QString& what, const QString& user) {
    constexpr uint32_t kNotUnderstood = 14;
    try {
        return deviceList(session, what, user, {}).devices;
    } catch (const Failure& failure) {
        if (failure.dwStatus() != kNotUnderstood) throw;
        return {};
    }
}

}  // namespace

CLI::Option* DeviceChoice::addTo(CLI::App& command) {
    return command.add_option("--device", device, "The device's name or uid; this machine's if not given")
        ->type_name("DEVICE");
}

void DeviceChoice::addForOthersTo(CLI::App& command) {
    CLI::Option* which = addTo(command);
    command.add_option("--of", user, "Whose device it is; one's own if not given")
        ->needs(which)
        ->type_name("NAME");
}

void requirePlain(const QString& what, const QString& text) {
    // The library sends these as they are.
    for (const QChar c : QStringLiteral("%&#+")) {
        if (!text.contains(c)) continue;
        throw Failure(Exit::Usage, QStringLiteral("%1: %2 has a %3, which a request for it can't carry")
                                       .arg(what, text, QString(c)));
    }
}

QString chosenUser(const Session& session, const std::string& user) {
    return user.empty() ? session.connection().user : QString::fromStdString(user);
}

Devices deviceList(const Session& session, const QString& what, const QString& user, const Window& window) {
    Devices devices;
    const auto ask = [&](uint32_t lower, uint32_t upper, RecordPage<_WFM_TORVI_DEVICE_INFORMATION>& page) {
        uint32_t total = 0;
        uint32_t word = 0;
        const uint32_t dwStatus =
            WebFileManGetDeviceList(session.context(), session.server(), session.port(), wide(user).c_str(),
                                    lower, upper, nullptr, &total, page.count(), page.list(), &word);
        if (interrupted()) throwCancelled(what);
        check(what, dwStatus, word);
        return total;
    };
    const auto take = [&devices](const _WFM_TORVI_DEVICE_INFORMATION& device) {
        devices.devices.push_back({QString::fromWCharArray(device.szDeviceName),
                                   QString::fromWCharArray(device.szDeviceUID),
                                   QString::fromWCharArray(device.szIP), device.llModifiedTime});
    };
    devices.total = eachRecord<_WFM_TORVI_DEVICE_INFORMATION>(window, ask, take);
    return devices;
}

ChosenDevice chooseDevice(const Session& session, const QString& what, const DeviceChoice& choice) {
    const QString user = chosenUser(session, choice.user);
    if (choice.device.empty()) return {user, installationId()};
    const QString given = QString::fromStdString(choice.device);
    QStringList named;
    for (const Device& device : devicesIfTold(session, what, user)) {
        if (device.uid == given) {
            named = QStringList{given};
            break;
        }
        if (device.name == given) named << device.uid;
    }
    if (named.size() > 1) {
        throw Failure(Exit::Usage,
                      QStringLiteral("%1: several devices are called %2: give one of the uids %3")
                          .arg(what, given, named.join(QStringLiteral(", "))));
    }
    const QString uid = named.isEmpty() ? given : named.front();
    requirePlain(what, uid);
    return {user, uid};
}

}  // namespace torvi
