#include <gmock/gmock.h>

#include "nastest.h"

using testing::HasSubstr;

namespace {

const std::string kSyncIdentity = "/cgi-bin/torvi/torvisrvPrepare.cgi?user=";
const std::string kManagerIdentity = "/cgi-bin/filemanager/torviPrepare.cgi?user=";

}  // namespace

using NasIdentity = NasTest;

TEST_F(NasIdentity, IsTheSameAtBothAddressesAndWithASession) {
    const Json::Value reply = get(kSyncIdentity + "anna").json();
    EXPECT_EQ(0, reply["is_booting"].asInt());
    EXPECT_EQ(0, reply["is_recovering"].asInt());
    EXPECT_EQ(0, reply["is_migrating"].asInt());
    EXPECT_EQ(1, reply["nubo_cgi"].asInt());
    EXPECT_EQ(1, reply["fcgi"].asInt());
    EXPECT_EQ(1, reply["user_type"].asInt());
    EXPECT_NE("", reply["UID"].asString());
    EXPECT_NE("", reply["SUID"].asString());
    EXPECT_NE("", reply["MAC0"].asString());
    EXPECT_EQ("4.3.0", reply["Torvi_version"].asString());
    EXPECT_EQ("1.0", reply["versioning_version"].asString());
    EXPECT_EQ(reply, get(kManagerIdentity + "anna").json());

    Json::Value own = get(cgi("func=nubo_get_nas_uid&sid=" + sid)).json();
    EXPECT_EQ(own, get(manager("func=nubo_get_nas_uid&sid=" + sid)).json());
    EXPECT_EQ(1, own["status"].asInt());
    own.removeMember("status");
    EXPECT_EQ(reply, own);
}

TEST_F(NasIdentity, NeedsAUserAndTellsWhetherItIsAnAdministrator) {
    EXPECT_EQ(0, get(kSyncIdentity + "ben").json()["user_type"].asInt());
    EXPECT_EQ(0, get(kSyncIdentity + "nobody").json()["user_type"].asInt());
    EXPECT_EQ(0, get(cgi("func=nubo_get_nas_uid&sid=" + benSid)).json()["user_type"].asInt());
    for (const std::string& address : {kSyncIdentity, kManagerIdentity}) {
        EXPECT_THAT(get(address).body, HasSubstr("\\\"user\\\" is empty"));
        EXPECT_THAT(get(address + "anna&sid=" + sid).body, HasSubstr("not in the protocol"));
        EXPECT_EQ(400, get(address.substr(0, address.find('?'))).http);
        NasRequest post = NasRequest::form(address + "anna", {});
        EXPECT_EQ(405, run(post).http);
    }
}

TEST_F(NasIdentity, CapabilitiesOfASingleServer) {
    const Json::Value reply = get(cgi("func=nubo_get_nubo_info&sid=" + sid)).json();
    EXPECT_EQ(1, reply["status"].asInt());
    for (const char* key :
         {"nubo_function_enable", "nubo_user_enable", "home_is_exist", "team_folder_is_exist"}) {
        EXPECT_EQ(1, reply[key].asInt()) << key;
    }
    EXPECT_EQ(0, reply["nubo_cluster_support"].asInt());
    EXPECT_FALSE(reply.isMember("nubo_cluster_status"));
    EXPECT_EQ(reply, get(manager("func=nubo_get_nubo_info&sid=" + sid)).json());
}

TEST_F(NasIdentity, HomeThatIsGoneIsTold) {
    std::filesystem::remove_all(nas.folder().path() / "homes/ben");
    EXPECT_EQ(0, get(cgi("func=nubo_get_nubo_info&sid=" + benSid)).json()["home_is_exist"].asInt());
    const auto available = [&](const std::string& target) {
        return get(target).json().get("home_folder_available", "none").asString();
    };
    EXPECT_EQ("0", available(cgi("func=nubo_get_nas_status&sid=" + benSid + "&check_detail=1")));
    EXPECT_EQ("1", available(cgi("func=nubo_get_nas_status&sid=" + sid + "&check_detail=1")));
    EXPECT_EQ("none", available(cgi("func=nubo_get_nas_status&sid=" + benSid + "&check_detail=0")));
    EXPECT_EQ("none", available(manager("func=nubo_get_nas_status&sid=" + benSid)));
}

TEST_F(NasIdentity, StaticInformationHasItsLimitsAsText) {
    const Json::Value reply = get(cgi("func=nubo_get_static_information&sid=" + sid)).json();
    EXPECT_EQ(1, reply["status"].asInt());
    EXPECT_NE("", reply["model"].asString());
    EXPECT_NE("", reply["fw_version"].asString());
    EXPECT_TRUE(reply["queue_num_limit"].isString());
    EXPECT_TRUE(reply["msg_queue_num_limit"].isString());
    EXPECT_EQ(reply, get(manager("func=nubo_get_static_information&sid=" + sid)).json());
}

TEST_F(NasIdentity, StatusTellsWhatIsInOrder) {
    const Json::Value reply = get(cgi("func=nubo_get_nas_status&sid=" + sid + "&check_detail=0")).json();
    EXPECT_EQ(1, reply["status"].asInt());
    for (const char* key : {"home_folder_enable", "recycle_bin_enable", "device_db_exist", "log_db_exist",
                            "share_db_exist", "user_enable", "versioning_enable", "nubo_versioning_enable"}) {
        EXPECT_EQ(1, reply[key].asInt()) << key;
    }
    EXPECT_EQ(0, reply["is_recovering"].asInt());
    EXPECT_EQ("1.0", reply["versioning_version"].asString());
    EXPECT_EQ(reply, get(manager("func=nubo_get_nas_status&sid=" + sid)).json());
}

TEST_F(NasIdentity, AddressesAreThoseOfTheServer) {
    const Json::Value reply = get(cgi("func=get_domain_ip_list&sid=" + sid)).json();
    EXPECT_EQ(1, reply["status"].asInt());
    EXPECT_EQ("127.0.0.1", reply["local_ip"].asString());
    EXPECT_EQ("127.0.0.1", reply["host_ip"].asString());
    EXPECT_EQ("127.0.0.1", reply["local_ip_list"].asString());
    EXPECT_EQ(nas.port(), reply["port"].asInt());
    EXPECT_EQ(nas.tlsPort(), reply["sslPort"].asInt());
    for (const char* key : {"peltnet_hn", "ddns_hn", "external_ip"}) EXPECT_EQ("", reply[key].asString());
    EXPECT_EQ(reply, get(manager("func=get_domain_ip_list&sid=" + sid)).json());
}

TEST_F(NasIdentity, QueriesAreExactAndNeedASession) {
    const std::string none(32, 'a');
    for (const char* func : {"nubo_get_nas_uid", "nubo_get_nubo_info", "nubo_get_static_information",
                             "get_domain_ip_list", "nubo_get_nas_status"}) {
        const std::string query = std::string("func=") + func + "&sid=";
        const std::string tail = std::string(func) == "nubo_get_nas_status" ? "&check_detail=1" : "";
        EXPECT_EQ(3, get(cgi(query + none + tail)).status()) << func;
        EXPECT_EQ(3, get(manager(query + none)).status()) << func;
        EXPECT_EQ(400, get(cgi(query + sid + tail + "&more=1")).http) << func;
        EXPECT_EQ(400, get(manager(query + sid + "&more=1")).http) << func;
        EXPECT_EQ(405, post(cgi(query + sid + tail), {}).http) << func;
    }
    EXPECT_EQ(400, get(cgi("func=nubo_get_nas_status&sid=" + sid)).http);
    EXPECT_EQ(400, get(cgi("func=nubo_get_nas_status&sid=" + sid + "&check_detail=2")).http);
    EXPECT_EQ(400, get(manager("func=nubo_get_nas_status&sid=" + sid + "&check_detail=0")).http);
}

class NasNamed : public NasTest {
protected:
    NasNamed()
        : NasTest({"--uid",
                   "U-1",
                   "--suid",
                   "S-1",
                   "--mac",
                   "00:11",
                   "--model",
                   "Box",
                   "--firmware",
                   "5.9.9",
                   "--sync-version",
                   "4.9.1",
                   "--queue-limit",
                   "5000000000",
                   "--peltnet-name",
                   "box.pelt.example",
                   "--ddns-name",
                   "box.example",
                   "--external-address",
                   "203.0.113.7",
                   "--external-port",
                   "8080",
                   "--external-tls-port",
                   "8443",
                   "--recovering",
                   "--migrating",
                   "--sync-disabled",
                   "--no-sync-for",
                   "ben",
                   "--no-versioning",
                   "--no-fcgi"}) {}
};

TEST_F(NasNamed, TellsWhatTheCommandLineSays) {
    const Json::Value identity = get(kSyncIdentity + "anna").json();
    EXPECT_EQ("U-1", identity["UID"].asString());
    EXPECT_EQ("S-1", identity["SUID"].asString());
    EXPECT_EQ("00:11", identity["MAC0"].asString());
    EXPECT_EQ("4.9.1", identity["Torvi_version"].asString());
    EXPECT_EQ("---", identity["versioning_version"].asString());
    EXPECT_EQ(1, identity["is_recovering"].asInt());
    EXPECT_EQ(1, identity["is_migrating"].asInt());
    EXPECT_EQ(0, identity["fcgi"].asInt());

    const Json::Value info = get(cgi("func=nubo_get_static_information&sid=" + sid)).json();
    EXPECT_EQ("Box", info["model"].asString());
    EXPECT_EQ("5.9.9", info["fw_version"].asString());
    EXPECT_EQ("5000000000", info["queue_num_limit"].asString());

    const Json::Value addresses = get(cgi("func=get_domain_ip_list&sid=" + sid)).json();
    EXPECT_EQ("box.pelt.example", addresses["peltnet_hn"].asString());
    EXPECT_EQ("box.example", addresses["ddns_hn"].asString());
    EXPECT_EQ("203.0.113.7", addresses["external_ip"].asString());
    EXPECT_EQ(8080, addresses["extPort"].asInt());
    EXPECT_EQ(8443, addresses["extSslPort"].asInt());
    const Json::Value login = run(loginRequest("anna", "secret")).json();
    EXPECT_EQ("box.pelt.example", login["peltnet_dn"].asString());
    EXPECT_EQ("box.example", login["ddns_dn"].asString());
    EXPECT_EQ("203.0.113.7", login["ext_ip"].asString());
    EXPECT_EQ(8443, login["extSslPort"].asInt());
}

TEST_F(NasNamed, FunctionUserAndDatabasesAreOff) {
    const auto capability = [&](const std::string& own, const char* key) {
        return get(cgi("func=nubo_get_nubo_info&sid=" + own)).json()[key].asInt();
    };
    EXPECT_EQ(0, capability(sid, "nubo_function_enable"));
    EXPECT_EQ(1, capability(sid, "nubo_user_enable"));
    EXPECT_EQ(0, capability(benSid, "nubo_user_enable"));
    const Json::Value status = get(manager("func=nubo_get_nas_status&sid=" + benSid)).json();
    for (const char* key : {"device_db_exist", "log_db_exist", "share_db_exist", "user_enable",
                            "versioning_enable", "nubo_versioning_enable"}) {
        EXPECT_EQ(0, status[key].asInt()) << key;
    }
    EXPECT_EQ(1, status["is_recovering"].asInt());
    EXPECT_EQ("---", status["versioning_version"].asString());
}

class NasOldIdentity : public NasTest {
protected:
    NasOldIdentity() : NasTest({"--no-sync-service"}) {}
};

TEST_F(NasOldIdentity, IsAtTheOldAddressOnly) {
    EXPECT_EQ(404, get(kSyncIdentity + "anna").http);
    const Json::Value reply = get(kManagerIdentity + "anna").json();
    EXPECT_EQ(0, reply["nubo_cgi"].asInt());
    EXPECT_EQ(0, reply["fcgi"].asInt());
    EXPECT_EQ("---", reply["Torvi_version"].asString());
    EXPECT_NE("", reply["UID"].asString());
}

class NasBooting : public NasTest {
protected:
    NasBooting() : NasTest({"--booting"}) {}
};

TEST_F(NasBooting, HasNoSyncServiceUntilTheBootEnds) {
    EXPECT_EQ(404, get(kSyncIdentity + "anna").http);
    EXPECT_EQ(404, run(loginRequest("anna", "secret")).http);
    EXPECT_EQ(1, get(kManagerIdentity + "anna").json()["is_booting"].asInt());
    EXPECT_EQ("4.3.0", get(kManagerIdentity + "anna").json()["Torvi_version"].asString());
    nas.control("POST", "boot/end");
    EXPECT_EQ(0, get(kSyncIdentity + "anna").json()["is_booting"].asInt());
    EXPECT_EQ(1, run(loginRequest("anna", "secret")).status());
}

class NasClusterNode : public NasTest {
protected:
    NasClusterNode() : NasTest({"--slave-id", "node2"}) {}
};

TEST_F(NasClusterNode, TellsItsIdAndTakesItAsAPrefixWhereNodesAnswerForThemselves) {
    const Json::Value reply = get(cgi("func=nubo_get_nubo_info&sid=" + sid)).json();
    EXPECT_EQ(1, reply["nubo_cluster_support"].asInt());
    EXPECT_EQ(1, reply["nubo_cluster_status"].asInt());
    EXPECT_EQ("node2", reply["nubo_cluster_slave_id"].asString());
    EXPECT_EQ(reply, get("/node2" + cgi("func=nubo_get_nubo_info&sid=" + sid)).json());
    EXPECT_EQ(1, get("/node2" + cgi("func=nubo_get_static_information&sid=" + sid)).status());
    EXPECT_EQ(1, get("/node2" + cgi("func=nubo_get_nas_status&sid=" + sid + "&check_detail=0")).status());
    for (const std::string& target :
         {kSyncIdentity + "anna", cgi("func=nubo_get_nas_uid&sid=" + sid),
          cgi("func=get_domain_ip_list&sid=" + sid), cgi("func=nubo_get_system_sid&sid=" + sid)}) {
        EXPECT_EQ(200, get(target).http) << target;
        const NasReply prefixed = get("/node2" + target);
        EXPECT_EQ(404, prefixed.http) << target;
        EXPECT_THAT(prefixed.body, HasSubstr("no slave prefix")) << target;
    }
}

class NasLeavingNode : public NasTest {
protected:
    NasLeavingNode() : NasTest({"--slave-id", "node2", "--cluster-status", "-1"}) {}
};

TEST_F(NasLeavingNode, TellsItsAddressesButOpensNoSession) {
    const Json::Value reply = run(loginRequest("anna", "secret")).json();
    EXPECT_EQ(-1, reply["nubo_cluster_status"].asInt());
    EXPECT_FALSE(reply.isMember("sid"));
    EXPECT_EQ("127.0.0.1", reply["local_ip"].asString());
}
