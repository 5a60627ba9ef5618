#include "session/TorviLogin.h"

#include "core/qclogger.h"
#include "core/replyfields.h"

using namespace Lattice;

namespace {

constexpr int kClusterNodeNotReady = -37;
constexpr int kClusterNodeRefuses = -40;

int Read(const Json::Value& root, CTorviLogin& login) {
    if (!root.isObject() || !IsPresent(root, "status")) return -1;
    login.status = TranslatedStatus(root, -1);

    if (IsPresent(root, "nubo_cluster_status")) {
        const int cluster = JsonGetInt(root, "nubo_cluster_status", 0);
        if (cluster == 1) {
            login.isCluster = true;
        } else if (cluster == -1) {
            login.status = kClusterNodeNotReady;
        } else if (cluster == -2 && login.status == 0) {
            login.status = kClusterNodeRefuses;
            return 1;
        } else if (cluster != 0) {
            LogLine(Logger::Error, "[WFM] CTorviLogin::Parser Incorrect cluster status(%d)", cluster);
        }
    }
    // A refused login carries no more. A node that isn't ready still tells by which addresses others are
    // reached.
    if (login.status != 0 && login.status != kClusterNodeNotReady) return 1;

    login.peltnet_dn = JsonText(root, "peltnet_dn");
    login.ddns_dn = JsonText(root, "ddns_dn");
    login.ext_ip = JsonText(root, "ext_ip");
    login.local_ip = JsonText(root, "local_ip");
    login.local_ip_list = JsonText(root, "local_ip_list");
    login.port = JsonGetInt(root, "port", 0);
    login.sslPort = JsonGetInt(root, "sslPort", 0);
    login.extPort = JsonGetInt(root, "extPort", 0);
    login.extSslPort = JsonGetInt(root, "extSslPort", 0);

    login.sid = FieldText(root, "sid");
    login.isAdmin = JsonTextIs(root, "admingroup", "1");
    login.servername = FieldText(root, "servername");
    if (login.isCluster) login.slaveId = FieldText(root, "nubo_slave_id");
    return 1;
}

}  // namespace

int CTorviLogin::Parser(char* text) {
    const int understood = ParseReply(text, [this](const Json::Value& root) { return Read(root, *this); });
    // Half a reply must not open a session.
    if (understood != 1) *this = CTorviLogin();
    return understood;
}
