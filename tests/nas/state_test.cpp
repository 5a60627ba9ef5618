#include <gmock/gmock.h>
#include <sys/statvfs.h>

#include <ctime>

#include "nasnodes.h"
#include "nastest.h"
#include "support/programs.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class NasState : public NasTest {
protected:
    using NasTest::NasTest;

    static std::string listQuery(const std::string& session, const std::string& more = {}) {
        return "func=nubo_get_syncing_folder_list&sid=" + session + more;
    }
    Json::Value folders(const std::string& session, const std::string& more = {}) {
        const Json::Value reply = get(cgi(listQuery(session, more))).json();
        EXPECT_EQ(0, reply.get("status", -1000).asInt()) << reply.toStyledString();
        EXPECT_EQ(reply["total"].asUInt(), reply["folder"].size());
        return reply["folder"];
    }
    static Json::Value named(const Json::Value& folders, const std::string& name) {
        for (const Json::Value& folder : folders) {
            if (folder["name"].asString() == name) return folder;
        }
        ADD_FAILURE() << "no folder " << name;
        return {};
    }
    static std::vector<std::string> paths(const Json::Value& folders) {
        std::vector<std::string> result;
        for (const Json::Value& folder : folders) result.push_back(folder["path"].asString());
        std::sort(result.begin(), result.end());
        return result;
    }
    NasReply start(const std::string& channel, const std::string& session) {
        return get(cgi("func=nubo_sync_start&channel=" + channel + "&sid=" + session));
    }
    NasReply done(const std::string& number, const std::string& session) {
        return get(cgi("func=nubo_sync_done&sid=" + session + "&number=" + number));
    }
    std::string signals(const std::string& session) {
        return get("/cgi-bin/torvi/torvisrvPrepare.cgi?func=nubo_get_max_log&sid=" + session)
            .json()["sync_signal"]
            .asString();
    }
    Json::Value state() {
        Json::Value json;
        std::istringstream(nas.control("GET", "state")) >> json;
        return json;
    }
    long long lastModified(const std::string& session) {
        const Json::Value reply = get(cgi("func=nubo_get_last_modify_time&sid=" + session)).json();
        EXPECT_EQ(0, reply.get("status", -1000).asInt());
        return reply["epochmt"].asInt64();
    }
    Json::Value veto() { return get(cgi("func=nubo_get_veto_files&sid=" + sid)).json(); }
};

class NasVolumes : public NasState {
protected:
    NasVolumes() : NasState({"--quota", "ben:3145728", "--volume", "Public:2048"}) {}
};

class NasVeto : public NasState {
protected:
    NasVeto() : NasState({"--veto", "*.tmp", "--veto", "~$* \xe4\xb8\xad"}) {}
};

TEST_F(NasState, SyncFoldersAreTheHomeAndTheShares) {
    std::filesystem::create_directory(nas.folder().path() / "Films");
    for (const std::string& target : {cgi(listQuery(sid)), manager(listQuery(sid))}) {
        const Json::Value reply = get(target).json();
        EXPECT_EQ(0, reply["status"].asInt());
        EXPECT_EQ(3, reply["total"].asInt());
        EXPECT_TRUE(reply["admingroup"].asBool());
        EXPECT_THAT(paths(reply["folder"]), ElementsAre("/Films", "/Public", "/home"));
    }
    EXPECT_FALSE(get(cgi(listQuery(benSid))).json()["admingroup"].asBool());
}

TEST_F(NasState, SyncFoldersTellTheirPrivilege) {
    for (const auto& [mode, privilege] : std::vector<std::pair<int, int>>{{0755, 2}, {0555, 1}, {0055, 0}}) {
        std::filesystem::permissions(nas.folder().path() / "Public", std::filesystem::perms(mode));
        EXPECT_EQ(privilege, named(folders(sid), "Public")["privilege"].asInt()) << mode;
    }
}

TEST_F(NasState, SizesComeWithTheDetailOnly) {
    write("Public/a", std::string(2048, 'x'));
    write("homes/anna/a", std::string(1001, 'x'));
    EXPECT_FALSE(named(folders(sid), "Public").isMember("used_size"));
    EXPECT_FALSE(named(folders(sid, "&refresh=1"), "Public").isMember("used_size"));
    const Json::Value detailed = folders(sid, "&detail=1");
    EXPECT_EQ("2", named(detailed, "Public")["used_size"].asString());
    EXPECT_EQ("KB", named(detailed, "Public")["used_unit"].asString());
    EXPECT_EQ("1001", named(detailed, "home")["used_size"].asString());
    EXPECT_EQ("Byte", named(detailed, "home")["used_unit"].asString());
}

TEST_F(NasState, WithoutALimitTheDiskIsTheCapacity) {
    const Json::Value home = named(folders(sid, "&detail=1"), "home");
    struct statvfs info {};
    ASSERT_EQ(0, ::statvfs(nas.folder().string().c_str(), &info));
    const std::map<std::string, int> shifts = {{"Byte", 0}, {"KB", 10}, {"MB", 20}, {"GB", 30}, {"TB", 40}};
    ASSERT_TRUE(shifts.count(home["capacity_unit"].asString()));
    const int shift = shifts.at(home["capacity_unit"].asString());
    const auto total = static_cast<long long>(info.f_blocks) * static_cast<long long>(info.f_frsize);
    EXPECT_EQ(total, std::stoll(home["capacity"].asString()) << shift);
    EXPECT_LE(std::stoll(home["free_size"].asString()), std::stoll(home["capacity"].asString()));
}

TEST_F(NasVolumes, QuotasAndVolumesLimitTheCapacity) {
    write("homes/ben/a", std::string(1 << 20, 'x'));
    write("Public/a", std::string(1024, 'x'));
    const Json::Value list = folders(benSid, "&detail=1");
    const Json::Value home = named(list, "home");
    EXPECT_EQ("1 MB", home["used_size"].asString() + " " + home["used_unit"].asString());
    EXPECT_EQ("3 2 MB", home["capacity"].asString() + " " + home["free_size"].asString() + " " +
                            home["capacity_unit"].asString());
    EXPECT_EQ(1, home["volume_id"].asInt());
    const Json::Value share = named(list, "Public");
    EXPECT_EQ("2 1 KB", share["capacity"].asString() + " " + share["free_size"].asString() + " " +
                            share["capacity_unit"].asString());
    EXPECT_EQ(2, share["volume_id"].asInt());
}

TEST_F(NasVolumes, AVolumeHoldsNoMoreThanItsLimit) {
    EXPECT_EQ(1, put("/Public", "a", std::string(2000, 'x')).status());
    EXPECT_EQ(9, put("/Public", "b", std::string(49, 'x')).status());
    EXPECT_EQ(1, put("/Public", "b", std::string(48, 'x')).status());
}

TEST_F(NasState, SizesAreCountedAgainWhenARefreshIsWanted) {
    const auto used = [&](const std::string& more) {
        return named(folders(sid, "&detail=1" + more), "Public")["used_size"].asString();
    };
    EXPECT_EQ("0", used(""));
    write("Public/a", "12345");
    EXPECT_EQ("0", used(""));
    EXPECT_EQ("5", used("&refresh=1"));
    EXPECT_EQ("5", used(""));
}

TEST_F(NasState, ASingleServerHasNoNodes) {
    EXPECT_EQ(5, get(cgi("func=nubo_get_cluster_node_list&sid=" + sid)).status());
    EXPECT_EQ(400, get(manager("func=nubo_get_cluster_node_list&sid=" + sid)).http);
}

/// Two nodes that share their sessions, each with a share of its own.
class NasNodes : public testing::Test {
protected:
    static Nas::Options node(const std::string& id, const std::string& sessions) {
        return nodeOptions(id, sessions, {"--server-name", "host-" + id});
    }
    NasNodes() {
        std::filesystem::create_directory(master.folder().path() / "Films");
        std::filesystem::create_directory(other.folder().path() / "Music");
        std::filesystem::permissions(other.folder().path() / "Music", std::filesystem::perms(0555));
    }
    static Json::Value list(const Nas& nas, const std::string& sid, const std::string& more = {}) {
        return exchange(nas.port(),
                        NasRequest::get(
                            "/cgi-bin/torvi/torvisrv.cgi?func=nubo_get_cluster_node_list&sid=" + sid + more))
            .json();
    }
    /// "host id path permission" of each folder.
    static std::vector<std::string> folders(const Json::Value& reply) {
        std::vector<std::string> result;
        for (const Json::Value& node : reply["slave"]) {
            for (const Json::Value& folder : node["folder"]) {
                result.push_back(node["hostname"].asString() + " " + node["slave_id"].asString() + " " +
                                 folder["path"].asString() + " " + folder["permission"].asString());
            }
        }
        std::sort(result.begin(), result.end());
        return result;
    }

    TempDir sessions;
    Nas master{node("alpha", sessions.string())};
    Nas other{node("beta", sessions.string())};
};

TEST_F(NasNodes, EachNodeKnowsTheFoldersOfAll) {
    const std::string sid = loginSid(master.port(), "anna", "secret");
    for (const Nas* nas : {&master, &other}) {
        const Json::Value reply = list(*nas, sid, "&detail=1&refresh=1");
        EXPECT_EQ(0, reply["status"].asInt());
        EXPECT_EQ(2, reply["count"].asInt());
        EXPECT_THAT(folders(reply), ElementsAre("host-alpha alpha /Films 2", "host-alpha alpha /home 2",
                                                "host-beta beta /Music 1", "host-beta beta /home 2"));
    }
}

TEST_F(NasNodes, ANodeThatEndedIsNotListed) {
    const std::string sid = loginSid(master.port(), "anna", "secret");
    other.stop();
    const Json::Value reply = list(master, sid);
    EXPECT_EQ(1, reply["count"].asInt());
    EXPECT_EQ("alpha", reply["slave"][0]["slave_id"].asString());
    other.startAgain();
    EXPECT_EQ(2, list(master, sid)["count"].asInt());
}

TEST_F(NasNodes, CallsThatOneNodeServesTakeNoPrefix) {
    const std::string sid = loginSid(other.port(), "anna", "secret");
    const auto http = [&](const std::string& query) {
        return exchange(other.port(), NasRequest::get("/beta/cgi-bin/torvi/torvisrv.cgi?" + query)).http;
    };
    for (const char* func :
         {"nubo_get_cluster_node_list", "nubo_get_syncing_folder_list", "nubo_get_last_modify_time"}) {
        EXPECT_EQ(404, http("func=" + std::string(func) + "&sid=" + sid)) << func;
    }
    EXPECT_EQ(404, http("func=nubo_sync_start&channel=1&sid=" + sid));
    EXPECT_EQ(404, http("func=nubo_sync_done&sid=" + sid + "&number=1"));
    EXPECT_EQ(404, http("func=nubo_get_sync_log&sid=" + sid + "&lower=0&number=1"));
    EXPECT_EQ(200, http("func=nubo_get_sync_log&sid=" + sid + "&lower=0&number=1&syncing_folder=%2Fhome"));
    EXPECT_EQ(200, http("func=nubo_get_veto_files&sid=" + sid));
    EXPECT_EQ(200, http("func=nubo_get_quota_info&sid=" + sid));
    EXPECT_EQ(200, http("func=nubo_get_user_home&sid=" + sid + "&user=anna"));
    EXPECT_EQ(
        200,
        exchange(other.port(),
                 NasRequest::get("/beta/cgi-bin/torvi/torvisrvPrepare.cgi?func=nubo_get_max_log&sid=" + sid))
            .http);
}

TEST_F(NasState, ASyncRunBeginsAndEndsUnderItsNumber) {
    const NasReply begun = start("7", sid);
    EXPECT_EQ(1, begun.status());
    EXPECT_EQ("true", begun.json()["success"].asString());
    EXPECT_EQ("anna", state()["sync_runs"][0]["user"].asString());
    EXPECT_EQ(7, state()["sync_runs"][0]["number"].asInt());
    EXPECT_EQ("1", signals(sid));
    EXPECT_EQ(5, done("8", sid).status());
    EXPECT_EQ(5, done("7", benSid).status());
    EXPECT_EQ("1", signals(sid));
    const NasReply ended = done("7", sid);
    EXPECT_EQ(1, ended.status());
    EXPECT_EQ("true", ended.json()["success"].asString());
    EXPECT_EQ(0U, state()["sync_runs"].size());
    EXPECT_EQ("2", signals(sid));
    EXPECT_EQ("0", signals(benSid));
}

TEST_F(NasState, TwoRunsUnderOneNumberEndOneByOne) {
    for (int i = 0; i < 2; ++i) EXPECT_EQ(1, start("-1", sid).status());
    EXPECT_EQ(1, done("-1", sid).status());
    EXPECT_EQ(1U, state()["sync_runs"].size());
    EXPECT_EQ(1, done("-1", sid).status());
    EXPECT_EQ(5, done("-1", sid).status());
}

TEST_F(NasState, TheLastModifiedTimeIsThatOfTheNewestChangeWhateverTimesFilesBear) {
    const long long before = std::time(nullptr);
    ASSERT_EQ(1, put("/home", "a", "1").status());
    EXPECT_GE(lastModified(sid), before);
    EXPECT_LE(lastModified(sid), std::time(nullptr));
    setTime(write("Public/future", "1"), 4000000000);
    EXPECT_LE(lastModified(sid), std::time(nullptr));
}

TEST_F(NasState, TheLastModifiedTimeFollowsChangesDeepInTheTree) {
    const std::string deep = write("Public/d/e/f", "1");
    // As if all had been there for long; nobody can set this time, so wait for the clock to move on.
    const long long all = lastModified(sid);
    while (std::time(nullptr) <= all) {
        ::usleep(10000);
    }
    EXPECT_EQ(all, lastModified(sid));
    setTime(deep, 1000000000);
    EXPECT_GT(lastModified(sid), all);
}

TEST_F(NasState, AnEmptyVetoListIsAnEmptyText) {
    EXPECT_EQ(0, veto()["status"].asInt());
    EXPECT_EQ("", veto()["veto files"].asString());
}

TEST_F(NasVeto, VetoFilesStandBetweenSlashes) {
    EXPECT_EQ("/*.tmp/~$* \xe4\xb8\xad/", veto()["veto files"].asString());
    EXPECT_EQ(veto(), get(manager("func=nubo_get_veto_files&sid=" + sid)).json());
}

TEST_F(NasState, BadListsOnTheCommandLineAreRefused) {
    for (const std::vector<std::string>& wrong :
         std::vector<std::vector<std::string>>{{"--veto", "a/b"},
                                               {"--veto", ""},
                                               {"--volume", "Public"},
                                               {"--volume", "Public:many"},
                                               {"--volume", "homes:5"},
                                               {"--volume", "Public:5", "--volume", "Public:6"},
                                               {"--changes-kept", "0"}}) {
        TempDir root;
        std::vector<std::string> arguments = {"--root", root.string()};
        arguments.insert(arguments.end(), wrong.begin(), wrong.end());
        const ProcessResult result = runProcess(kTorviNas, arguments);
        EXPECT_GT(result.exitCode, 0) << wrong[1];
        EXPECT_LT(result.exitCode, 128);
        EXPECT_THAT(result.err + result.out, HasSubstr(wrong[0])) << wrong[1];
    }
}

TEST_F(NasState, QueriesAreExact) {
    const auto refused = [&](const std::string& query, const std::string& reason) {
        for (const std::string& target : {cgi(query), manager(query)}) {
            const NasReply reply = get(target);
            EXPECT_EQ(400, reply.http) << target;
            EXPECT_THAT(reply.body, HasSubstr(reason));
        }
    };
    refused(listQuery(sid, "&refresh=1&detail=1"), "not in the protocol");
    refused(listQuery(sid, "&detail=0"), "not \\\"1\\\"");
    refused("func=nubo_sync_start&sid=" + sid + "&channel=1", "out of order");
    refused("func=nubo_sync_start&channel=one&sid=" + sid, "decimal");
    refused("func=nubo_sync_done&number=1&sid=" + sid, "out of order");
    refused("func=nubo_sync_done&sid=" + sid, "\\\"number\\\" is missing");
    refused("func=nubo_get_last_modify_time&sid=" + sid + "&path=%2F", "not in the protocol");
    refused("func=nubo_get_veto_files&sid=" + sid + "&x=1", "not in the protocol");
    EXPECT_EQ(405, post(cgi(listQuery(sid)), {}).http);
    EXPECT_THAT(state()["sync_runs"], IsEmpty());
}

TEST_F(NasState, StrangersLearnNothing) {
    const std::string stranger = "0123456789abcdef0123456789abcdef";
    for (const char* func : {"nubo_get_syncing_folder_list", "nubo_get_cluster_node_list",
                             "nubo_get_last_modify_time", "nubo_get_veto_files"}) {
        EXPECT_EQ(3, get(cgi("func=" + std::string(func) + "&sid=" + stranger)).status()) << func;
    }
    EXPECT_EQ(3, start("1", stranger).status());
    EXPECT_EQ(3, done("1", stranger).status());
}
