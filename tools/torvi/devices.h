#pragma once

#include <QString>
#include <vector>

#include "recordpage.h"
#include "session.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace torvi {

/// A device of a user that the server keeps a configuration for.
struct Device {
    QString name;
    QString uid;
    QString ip;
    int64_t modified = 0;
};
struct Devices {
    std::vector<Device> devices;
    uint32_t total = 0;  ///< on all pages
};

/// Which device is meant: this machine unless one is named, by its name or its uid.
struct DeviceChoice {
    std::string user;  ///< the session's own if empty
    std::string device;

    CLI::Option* addTo(CLI::App& command);
    /// For administrators, those of other users, too. This machine is none of theirs, so that they are named.
    void addForOthersTo(CLI::App& command);
};
/// One that was chosen, and whose it is.
struct ChosenDevice {
    QString user;
    QString uid;
};

Devices deviceList(const Session& session, const QString& what, const QString& user, const Window& window);
/// One that no device of the list is called is taken for a uid.
ChosenDevice chooseDevice(const Session& session, const QString& what, const DeviceChoice& choice);
/// The user that is named, or the session's own.
QString chosenUser(const Session& session, const std::string& user);
/// Throws the usage failure for what can't stand in a request as it is.
void requirePlain(const QString& what, const QString& text);

}  // namespace torvi
