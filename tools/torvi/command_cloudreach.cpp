#include <memory>

#include "cloudcommands.h"
#include "clouddevices.h"
#include "failure.h"
#include "output.h"

namespace torvi {
namespace {

struct ReachOptions {
    std::shared_ptr<CloudOptions> cloud;
    std::string id;
};

/// All that is known of the roads to a device.
struct Reach {
    QString device;
    CloudNetwork network;
    // Only with the application's secret.
    std::optional<CloudLink> link;
    std::optional<CloudPorts> ports;
};

QString chosenDevice(CloudSession& session, const QString& what, const std::string& id) {
    if (!id.empty()) return QString::fromStdString(id);
    const TokenOwner owner = session.owner(what);
    if (owner.userId.isEmpty() || session.cloud().clientSecret.isEmpty()) {
        throw Failure(Exit::Usage,
                      QStringLiteral("%1: of which device? `torvi cloud devices` lists their ids").arg(what));
    }
    return deviceOf(session.cloud(), what, owner.userId);
}

Reach askReach(CloudSession& session, const QString& what, const std::string& id) {
    Reach reach;
    reach.device = chosenDevice(session, what, id);
    reach.network = deviceNetwork(session, QStringLiteral("%1: addresses").arg(what), reach.device);
    const Cloud& cloud = session.cloud();
    if (cloud.clientSecret.isEmpty()) return reach;
    reach.link = deviceLink(cloud, QStringLiteral("%1: link").arg(what), reach.device);
    if (reach.link->code == 0)
        reach.ports = devicePorts(cloud, QStringLiteral("%1: ports").arg(what), reach.device);
    return reach;
}

QString portsText(int32_t http, int32_t https) {
    QStringList ports;
    if (http != 0) ports << QStringLiteral("HTTP %1").arg(http);
    if (https != 0) ports << QStringLiteral("HTTPS %1").arg(https);
    return ports.isEmpty() ? QStringLiteral("-") : ports.join(QStringLiteral(", "));
}

void printReach(const Reach& reach) {
    Table table;
    for (const char* title : {"WAY", "ADDRESS", "TOLD BY"}) table.addColumn(QLatin1String(title));
    const auto addAll = [&table](const char* way, const QStringList& addresses) {
        for (const QString& address : addresses)
            table.addRow({QLatin1String(way), address, QStringLiteral("directory")});
    };
    addAll("lan", reach.network.lan);
    addAll("wan", reach.network.wan);
    addAll("ddns", reach.network.ddns);
    if (!reach.network.linkId.isEmpty()) addAll("link id", {reach.network.linkId});
    const auto add = [&table](const char* way, const QString& address) {
        if (!address.isEmpty()) table.addRow({QLatin1String(way), address, QStringLiteral("remote access")});
    };
    if (reach.link && reach.link->code != 0) add("link", reach.link->message);
    if (reach.link) {
        add("lan", reach.link->lan);
        add("gateway", reach.link->gateway);
        add("wan", reach.link->wan);
        add("link id", reach.link->id);
    }
    if (reach.ports) {
        add("inside", portsText(reach.ports->http, reach.ports->https));
        add("outside", portsText(reach.ports->externalHttp, reach.ports->externalHttps));
    }
    table.print(stdout);
}

Json toJson(const Reach& reach) {
    Json json = {{"device", utf8(reach.device)},
                 {"lan", jsonTexts(reach.network.lan)},
                 {"wan", jsonTexts(reach.network.wan)},
                 {"ddns", jsonTexts(reach.network.ddns)},
                 {"cloudLinkId", utf8(reach.network.linkId)},
                 {"link", nullptr},
                 {"ports", nullptr}};
    if (reach.link) {
        json["link"] = Json{{"code", reach.link->code},
                            {"message", utf8(reach.link->message)},
                            {"id", utf8(reach.link->id)},
                            {"lan", utf8(reach.link->lan)},
                            {"gateway", utf8(reach.link->gateway)},
                            {"wan", utf8(reach.link->wan)},
                            {"time", utf8(reach.link->time)}};
    }
    if (reach.ports) {
        json["ports"] = Json{{"http", reach.ports->http},
                             {"https", reach.ports->https},
                             {"externalHttp", reach.ports->externalHttp},
                             {"externalHttps", reach.ports->externalHttps}};
    }
    return json;
}

void reach(const GlobalOptions& global, const ReachOptions& options) {
    const QString what = QStringLiteral("cloud reach");
    CloudSession session(global, *options.cloud);
    const Reach reach = askReach(session, what, options.id);
    if (global.json) return printJson(toJson(reach));
    printReach(reach);
    if (!reach.link && !global.quiet)
        printLine(QStringLiteral("Link and ports are told only to who has the application's secret"));
}

}  // namespace

void addCloudReachCommand(const Commands& commands, const std::shared_ptr<CloudOptions>& cloud) {
    CLI::App* command =
        commands.app.add_subcommand("reach", "Tell by which addresses and ports a NAS is reached");
    auto which = std::make_shared<ReachOptions>();
    which->cloud = cloud;
    command->add_option("id", which->id, "Its id; the user's own NAS if none is given")->type_name("");
    runs(commands, command, which, reach);
}

}  // namespace torvi
