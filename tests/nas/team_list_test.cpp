#include <gmock/gmock.h>

#include "sharing.h"

using testing::HasSubstr;

class NasTeamList : public NasSharing {
protected:
    using NasSharing::NasSharing;

    Json::Value folders(const std::string& session, int type, const std::string& more = "",
                        const std::string& window = "&lower=0&upper=-1") {
        return get(cgi(foldersQuery(session, type, more, window))).json();
    }
    Json::Value find(const std::string& file) {
        return get(cgi("func=nubo_find_share&sid=" + sid + "&file=" + encoded(file) + "&lower=0&upper=100"))
            .json();
    }
    Json::Value info(const std::string& session, const std::string& path) {
        return get(cgi("func=nubo_team_folder_get_info&sid=" + session + "&path=" + encoded(path))).json();
    }
    NasReply sharePath(const std::string& session, const std::string& id) {
        return get(cgi("func=nubo_get_share_path&sid=" + session + "&share_id=" + encoded(id)));
    }
};

using NasTeamInfo = NasTeamList;

TEST_F(NasTeamList, TheOwnerSeesWhoIsInvited) {
    share({"ben", "carl"});
    ASSERT_EQ(0, accept(benSid, photosId(), "Pictures").status());
    const Json::Value photos = folder(sid, 4, "Photos");
    EXPECT_EQ(4, photos["type"].asInt());
    EXPECT_EQ(1, photos["status"].asInt());
    EXPECT_EQ("/home/Photos", photos["path"].asString());
    EXPECT_EQ("", photos["nas_id"].asString());
    EXPECT_EQ("", photos["parent_id"].asString());
    ASSERT_EQ(2, photos["receiver_number"].asInt());
    const Json::Value ben = named(photos["receiver"], "name", "ben");
    EXPECT_EQ("Pictures", ben["display_name"].asString());
    EXPECT_EQ(2, ben["permission"].asInt());
    EXPECT_EQ(2, ben["status"].asInt());
    const Json::Value carl = named(photos["receiver"], "name", "carl");
    EXPECT_EQ("", carl["display_name"].asString());
    EXPECT_EQ(1, carl["status"].asInt());
}

TEST_F(NasTeamList, FoldersOfTheCommandLineAreAcceptedAlready) {
    EXPECT_EQ("vtf://anna-Plans/", folder(benSid, 8, "Plans")["path"].asString());
    const Json::Value rules = folder(sid, 4, "Rules");
    EXPECT_EQ(1, rules["receiver"][0]["permission"].asInt());
}

TEST_F(NasTeamList, AFolderThatIsGoneSaysSo) {
    std::filesystem::remove(nas.folder().path() / "homes/anna/Plans");
    EXPECT_EQ(0, folder(benSid, 8, "Plans")["status"].asInt());
    EXPECT_EQ(1, folder(benSid, 8, "Rules")["status"].asInt());
}

TEST_F(NasTeamList, ASharedFolderBelowAnotherNamesItsParent) {
    std::filesystem::create_directory(nas.folder().path() / "homes/anna/Photos/2026");
    share({"ben"});
    share({"ben"}, "home/Photos/2026");
    EXPECT_EQ(photosId(), folder(sid, 4, "2026")["parent_id"].asString());
}

TEST_F(NasTeamList, PagesAreCutFromAllThatFits) {
    const Json::Value second = folders(benSid, 8, "", "&lower=1&upper=2");
    EXPECT_EQ(2, second["total"].asInt());
    ASSERT_EQ(1U, second["team_folder"].size());
    EXPECT_EQ("Rules", second["team_folder"][0]["name"].asString());
    EXPECT_EQ(0U, folders(benSid, 8, "", "&lower=2&upper=9")["team_folder"].size());
    EXPECT_EQ(0, folders(benSid, 1)["total"].asInt());
    EXPECT_EQ(0, folders(carlSid, 0)["total"].asInt());
}

TEST_F(NasTeamList, OneUserOrOnePathCanBeAskedFor) {
    share({"carl"});
    EXPECT_EQ(1, folders(sid, 4, "&target_user=carl")["total"].asInt());
    EXPECT_EQ(2, folders(sid, 4, "&target_user=ben")["total"].asInt());
    EXPECT_EQ(2, folders(benSid, 8, "&target_user=anna")["total"].asInt());
    EXPECT_EQ(1, folders(sid, 4, "&path=" + encoded("/home/Plans/"))["total"].asInt());
    EXPECT_EQ(3, folders(sid, 4, "&path=" + encoded("/home"))["total"].asInt());
    EXPECT_EQ(1, folders(benSid, 8, "&path=" + encoded("/home/.Torvi/Plans"))["total"].asInt());
    EXPECT_EQ(0, folders(sid, 4, "&target_user=carl&path=" + encoded("/home/Plans"))["total"].asInt());
}

TEST_F(NasTeamList, QueriesAreExact) {
    const auto refused = [&](const std::string& target, const std::string& reason) {
        const NasReply reply = get(target);
        EXPECT_EQ(400, reply.http) << target;
        EXPECT_THAT(reply.body, HasSubstr(reason)) << target;
    };
    refused(cgi(foldersQuery(sid, 16)), "out of its range");
    refused(cgi(foldersQuery(sid, -1)), "out of its range");
    refused(cgi(foldersQuery(sid, 4, "", "&lower=-1&upper=5")), "out of its range");
    refused(cgi(foldersQuery(sid, 4, "", "&upper=5&lower=0")), "out of order");
    refused(cgi(foldersQuery(sid, 4, "&path=a&target_user=b")), "not in the protocol");
    refused(manager(foldersQuery(sid, 4)), "no call");
    refused(cgi(eventsQuery(sid, 4)), "no call");
    refused(manager(eventsQuery(sid, 4) + "&path=a"), "not in the protocol");
    refused(manager(eventsQuery(sid, 99)), "out of its range");
    std::string query = foldersQuery(sid, 4);
    query.replace(query.find("event_status=0"), 14, "event_status=1");
    refused(cgi(query), "event_status");
    EXPECT_EQ(404, get("/node2" + cgi(foldersQuery(sid, 4))).http);
    EXPECT_EQ(3, folders("x", 4)["status"].asInt());
    EXPECT_EQ(3, get(manager(eventsQuery("x", 4))).status());
}

TEST_F(NasTeamList, FindsOwnSharesAtOrBelowAPathWhateverItsCase) {
    share({"ben"});
    const Json::Value found = find("/HOME/photos");
    EXPECT_EQ(1, found["status"].asInt());
    ASSERT_EQ(1, found["total"].asInt());
    EXPECT_EQ(4, found["event"][0]["event_type"].asInt());
    EXPECT_EQ(1, found["event"][0]["event_status"].asInt());
    EXPECT_EQ("/home/Photos/", found["event"][0]["file"].asString());
    EXPECT_EQ(photosId(), found["event"][0]["share_id"].asString());
    EXPECT_EQ(3, find("/home/")["total"].asInt());
    EXPECT_EQ(3, find("/")["total"].asInt());
    EXPECT_EQ(2, find("/home/plans")["event"][0]["event_status"].asInt());
    EXPECT_EQ(0, find("/home/Phot")["total"].asInt());
    EXPECT_EQ(400, get(cgi("func=nubo_find_share&sid=" + sid + "&file=&lower=0&upper=1")).http);
    EXPECT_EQ(400, get(cgi("func=nubo_find_share&sid=" + sid + "&file=a&lower=0")).http);
    EXPECT_EQ(3, get(manager("func=nubo_find_share&sid=x&file=a&lower=0&upper=1")).status());
}

TEST_F(NasTeamList, ListingsTellWhatIsShared) {
    const auto entry = [&](const std::string& session, const std::string& path, const std::string& name) {
        return named(get(cgi(listQuery(session, path))).json()["datas"], "filename", name);
    };
    std::filesystem::create_directories(nas.folder().path() / "homes/anna/Photos/2026");
    share({"ben"}, "home/Photos/2026");
    const std::string id = folder(sid, 4, "2026")["share_id"].asString();
    EXPECT_EQ(4, entry(sid, "/home/Photos", "2026")["nubo_type"].asInt());
    EXPECT_EQ(id, entry(sid, "/home/Photos", "2026")["nubo_share_id"].asString());
    EXPECT_EQ(0, entry(sid, "/home", "Photos")["nubo_type"].asInt());
    EXPECT_EQ("---", entry(sid, "/home", "Photos")["nubo_share_id"].asString());

    shareWithBen();
    // Within one team folder another that waits.
    EXPECT_EQ(0, entry(benSid, "vtf://anna-Photos", "2026")["nubo_type"].asInt());
    ASSERT_EQ(0, accept(benSid, id, "2026").status());
    EXPECT_EQ(8, entry(benSid, "vtf://anna-Photos", "2026")["nubo_type"].asInt());
    EXPECT_EQ(id, entry(benSid, "vtf://anna-Photos", "2026")["nubo_share_id"].asString());
    const Json::Value itself = get(cgi(statQuery(benSid, "vtf://anna-Photos", ""))).json()["datas"][0];
    EXPECT_EQ(8, itself["nubo_type"].asInt());
    EXPECT_EQ(photosId(), itself["nubo_share_id"].asString());
}

TEST_F(NasTeamInfo, OfAnOwnFolder) {
    share({"ben"});
    const Json::Value found = info(sid, "/home/Photos");
    EXPECT_EQ(1, found["status"].asInt());
    EXPECT_EQ(1, found["file_exist"].asInt());
    EXPECT_EQ(4, found["nubo_type"].asInt());
    EXPECT_EQ(photosId(), found["share_id"].asString());
    EXPECT_EQ("--------", found["nas_id"].asString());
    EXPECT_EQ(
        found,
        get(manager("func=nubo_get_share_info&sid=" + sid + "&file=" + encoded("/home/Photos/"))).json());
    std::filesystem::remove(nas.folder().path() / "homes/anna/Photos");
    EXPECT_EQ(0, info(sid, "/home/Photos")["file_exist"].asInt());
    EXPECT_EQ(photosId(), info(sid, "/home/Photos")["share_id"].asString());
}

TEST_F(NasTeamInfo, OfAReceivedFolderByItsNameInTheTeamArea) {
    shareWithBen();
    const Json::Value found = info(benSid, "Pictures/");
    EXPECT_EQ(8, found["nubo_type"].asInt());
    EXPECT_EQ(2, found["event_status"].asInt());
    EXPECT_EQ(photosId(), found["share_id"].asString());
    EXPECT_EQ(event(benSid, 8, "/home/.Torvi/Pictures")["event_id"], found["event_id"]);
    EXPECT_EQ("--------", info(carlSid, "Pictures")["share_id"].asString());
}

TEST_F(NasTeamInfo, OfAFolderThatNobodyShares) {
    const Json::Value found = info(sid, "/home/Photos");
    EXPECT_EQ(1, found["file_exist"].asInt());
    EXPECT_EQ(0, found["nubo_type"].asInt());
    EXPECT_EQ("--------", found["share_id"].asString());
    EXPECT_EQ(0, info(sid, "/home/Missing")["file_exist"].asInt());
    EXPECT_EQ(3, info("x", "/home")["status"].asInt());
    EXPECT_EQ(400, get(cgi("func=nubo_team_folder_get_info&sid=" + sid + "&file=a")).http);
    // What is left of the team area itself.
    EXPECT_EQ(0, info(sid, "")["nubo_type"].asInt());
    EXPECT_EQ(400, get(manager("func=nubo_get_share_info&sid=" + sid + "&file=")).http);
    EXPECT_EQ(400, get(manager("func=nubo_get_share_info&sid=" + sid + "&path=a")).http);
}

TEST_F(NasTeamInfo, TheSharePathIsThatOfWhoAsks) {
    share({"ben"});
    const std::string id = photosId();
    EXPECT_EQ("/home/Photos", sharePath(sid, id).json()["share_path"].asString());
    EXPECT_EQ(5, sharePath(benSid, id).status());
    ASSERT_EQ(0, accept(benSid, id, "Pictures").status());
    EXPECT_EQ("/home/.Torvi/Pictures", sharePath(benSid, id).json()["share_path"].asString());
    EXPECT_EQ(5, sharePath(carlSid, id).status());
    EXPECT_EQ(5, sharePath(sid, "unknown").status());
    EXPECT_EQ(3, sharePath("x", id).status());
    EXPECT_EQ(400, get(manager("func=nubo_get_share_path&share_id=a&sid=" + sid)).http);
}
