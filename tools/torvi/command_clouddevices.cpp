#include <memory>

#include "cloudcommands.h"
#include "clouddevices.h"
#include "failure.h"
#include "output.h"

namespace torvi {
namespace {

struct DeviceOptions {
    std::shared_ptr<CloudOptions> cloud;
    std::string name;
    bool count = false;
    bool secrets = false;
};

struct AddressOptions {
    std::shared_ptr<CloudOptions> cloud;
};

Json jsonText(const wchar_t* field) {
    return utf8(text(field));
}

QStringList addresses(int32_t count, _NAS_DEVICE_IP_INFO** list) {
    QStringList all;
    for (int32_t i = 0; i < count; ++i) {
        for (const wchar_t* address : {list[i]->szIPv4, list[i]->szIPv6}) {
            if (address[0] != 0) all << text(address);
        }
    }
    return all;
}

Json servicesJson(const _NAS_DEVICE_INFORMATION_API_V11& device) {
    Json all = Json::array();
    for (int32_t i = 0; i < device.nServiceCount; ++i) {
        const _NAS_DEVICE_SERVICE_INFO& service = *device.lppServices[i];
        all.push_back(Json{{"name", jsonText(service.szServiceName)},
                           {"protocol", jsonText(service.szProtocol)},
                           {"uri", jsonText(service.szUri)},
                           {"internalPort", service.nInternalPort},
                           {"externalPort", service.nExternalPort},
                           {"published", service.bPublished},
                           {"private", service.bPrivate}});
    }
    return all;
}

Json permissionsJson(const _NAS_DEVICE_PERMISSIONS& permissions) {
    return Json{{"basicInfo", jsonText(permissions.szBasicInfo)},
                {"remoteAccess", jsonText(permissions.szRemoteAccess)},
                {"publicLocalService", jsonText(permissions.szPublicLocalService)},
                {"privateLocalService", jsonText(permissions.szPrivateLocalService)},
                {"publicPackageServices", jsonText(permissions.szPublicPackageServices)},
                {"protectedPackageServices", jsonText(permissions.szProtectedPackageServices)},
                {"privatePackageServices", jsonText(permissions.szPrivatePackageServices)}};
}

Json toJson(const _NAS_DEVICE_INFORMATION_API_V11& device, bool secrets) {
    const _NAS_DEVICE_UPDATE_INFO& info = device.info;
    QStringList users;
    for (int32_t i = 0; i < device.nUserCount; ++i) users << text(device.lppUsers[i]->szUserName);
    return Json{{"id", jsonText(device.szDeviceID)},
                {"name", jsonText(device.szDeviceName)},
                {"description", jsonText(device.szDescription)},
                {"domainName", jsonText(device.szDomainName)},
                {"user", jsonText(device.szUserID)},
                {"access", jsonText(device.szAccessControlMode)},
                {"type", jsonText(info.szDeviceType)},
                {"model", jsonText(info.szModelName)},
                {"firmware", jsonText(info.szFirmwareVersion)},
                {"build", jsonText(info.szFirmwareBuildNumber)},
                {"latestFirmware", jsonText(device.modelInfo.szLatestFwVersion)},
                {"hostName", jsonText(info.szHostName)},
                {"mac", jsonText(info.szMacAddress)},
                {"gateway", jsonText(info.lanGateway.szIPv4)},
                {"lan", jsonTexts(addresses(info.nLanIPCount, info.lppLanIPs))},
                {"wan", jsonTexts(addresses(info.nWanIPCount, info.lppWanIPs))},
                {"services", servicesJson(device)},
                {"users", jsonTexts(users)},
                {"permissions", permissionsJson(device.permissions)},
                {"token", secrets ? jsonText(device.szToken) : Json(nullptr)},
                {"accessCode", secrets ? jsonText(device.szAccessCode) : Json(nullptr)}};
}

void printDevicesJson(const CloudDevices& devices, bool secrets) {
    Json all = Json::array();
    for (const auto* device : devices.records()) all.push_back(toJson(*device, secrets));
    printJson(Json{{"count", all.size()}, {"devices", all}});
}

QString orNone(const QString& text) {
    return text.isEmpty() ? QStringLiteral("-") : text;
}

void devices(const GlobalOptions& global, const DeviceOptions& options) {
    const QString what = QStringLiteral("cloud devices");
    CloudSession session(global, *options.cloud);
    if (options.count) {
        const int32_t count = deviceCount(session, what);
        return global.json ? printJson(Json{{"count", count}}) : printLine(QString::number(count));
    }
    CloudDevices devices;
    allDevices(session, what, devices);
    if (global.json) return printDevicesJson(devices, options.secrets);
    if (devices.records().empty()) {
        if (!global.quiet) printLine(QStringLiteral("There are none"));
        return;
    }
    Table table;
    for (const char* title : {"NAME", "ID", "MODEL", "FIRMWARE", "LAN", "WAN"})
        table.addColumn(QLatin1String(title));
    for (const auto* device : devices.records()) {
        const _NAS_DEVICE_UPDATE_INFO& info = device->info;
        table.addRow({text(device->szDeviceName), text(device->szDeviceID), orNone(text(info.szModelName)),
                      orNone(text(info.szFirmwareVersion)),
                      orNone(addresses(info.nLanIPCount, info.lppLanIPs).join(QStringLiteral(", "))),
                      orNone(addresses(info.nWanIPCount, info.lppWanIPs).join(QStringLiteral(", ")))});
    }
    table.print(stdout);
}

/// One device as label and value.
void addDevice(Table& table, const _NAS_DEVICE_INFORMATION_API_V11& device, bool secrets) {
    const auto add = [&table](const char* label, const QString& value) {
        table.addRow({QLatin1String(label), orNone(value)});
    };
    const _NAS_DEVICE_UPDATE_INFO& info = device.info;
    add("name", text(device.szDeviceName));
    add("id", text(device.szDeviceID));
    add("description", text(device.szDescription));
    add("model", text(info.szModelName));
    add("firmware", text(info.szFirmwareVersion));
    add("host name", text(info.szHostName));
    add("MAC", text(info.szMacAddress));
    add("domain", text(device.szDomainName));
    add("LAN", addresses(info.nLanIPCount, info.lppLanIPs).join(QStringLiteral(", ")));
    add("gateway", text(info.lanGateway.szIPv4));
    add("WAN", addresses(info.nWanIPCount, info.lppWanIPs).join(QStringLiteral(", ")));
    for (int32_t i = 0; i < device.nServiceCount; ++i) {
        const _NAS_DEVICE_SERVICE_INFO& service = *device.lppServices[i];
        add("service", QStringLiteral("%1, %2, inside %3, outside %4")
                           .arg(text(service.szServiceName), text(service.szProtocol))
                           .arg(service.nInternalPort)
                           .arg(service.nExternalPort == 0 ? QStringLiteral("-")
                                                           : QString::number(service.nExternalPort)));
    }
    if (!secrets) return;
    add("token", text(device.szToken));
    add("access code", text(device.szAccessCode));
}

void device(const GlobalOptions& global, const DeviceOptions& options) {
    const QString name = QString::fromStdString(options.name);
    const QString what = QStringLiteral("cloud device %1").arg(name);
    CloudSession session(global, *options.cloud);
    CloudDevices devices;
    devicesNamed(session, what, name, devices);
    if (devices.records().empty())
        throw Failure(Exit::NotFound, QStringLiteral("%1: there is none of that name").arg(what));
    if (global.json) return printDevicesJson(devices, options.secrets);
    Table table;
    table.addColumn(QStringLiteral("WHAT"));
    table.addColumn(QStringLiteral("VALUE"));
    for (const auto* one : devices.records()) addDevice(table, *one, options.secrets);
    table.print(stdout);
}

void publicIp(const GlobalOptions& global, const AddressOptions& options) {
    CloudSession session(global, *options.cloud);
    const QString address = publicAddress(session, QStringLiteral("cloud public-ip"));
    global.json ? printJson(Json{{"address", utf8(address)}}) : printLine(address);
}

}  // namespace

void addCloudDeviceCommands(const Commands& commands, const std::shared_ptr<CloudOptions>& cloud) {
    CLI::App* devicesCommand = commands.app.add_subcommand("devices", "List the NAS that one has");
    auto all = std::make_shared<DeviceOptions>();
    all->cloud = cloud;
    auto* count = devicesCommand->add_flag("--count", all->count, "Only tell how many there are");
    devicesCommand->add_flag("--secrets", all->secrets, "--json: their tokens and access codes, too")
        ->excludes(count);
    runs(commands, devicesCommand, all, devices);

    CLI::App* deviceCommand = commands.app.add_subcommand("device", "Tell all about a NAS of that name");
    auto one = std::make_shared<DeviceOptions>();
    one->cloud = cloud;
    deviceCommand->add_option("name", one->name, "What it is called")->type_name("")->required();
    deviceCommand->add_flag("--secrets", one->secrets, "Its token and access code, too");
    runs(commands, deviceCommand, one, device);

    CLI::App* addressCommand =
        commands.app.add_subcommand("public-ip", "Tell by which address this machine is seen");
    auto own = std::make_shared<AddressOptions>();
    own->cloud = cloud;
    runs(commands, addressCommand, own, publicIp);
}

}  // namespace torvi
