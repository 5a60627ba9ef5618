#include <gmock/gmock.h>

#include "nasnodes.h"
#include "sharing.h"

using testing::HasSubstr;

class NasShare : public NasSharing {
protected:
    using NasSharing::NasSharing;

    static std::vector<std::string> sorted(std::vector<std::string> names) {
        std::sort(names.begin(), names.end());
        return names;
    }
};

class NasStuckShare : public NasShare {
protected:
    NasStuckShare() : NasShare({"--job-delay", "3600000"}) {}
};

TEST_F(NasShare, AnInvitationWaitsUntilItIsAccepted) {
    share({"ben"});
    const Json::Value waiting = folder(benSid, 1, "Photos");
    EXPECT_EQ("anna", waiting["owner"].asString());
    EXPECT_EQ(1, waiting["type"].asInt());
    EXPECT_EQ("", waiting["path"].asString());
    EXPECT_EQ(4, reach(benSid));
    EXPECT_TRUE(folder(benSid, 8, "Photos").isNull());

    const NasReply reply = accept(benSid, photosId(), "Pictures");
    EXPECT_EQ(0, reply.status());
    EXPECT_EQ("true", reply.json()["success"].asString());
    EXPECT_EQ("/home/.Torvi/Pictures", reply.json()["file"].asString());
    EXPECT_TRUE(folder(benSid, 1, "Photos").isNull());
    const Json::Value there = folder(benSid, 8, "Pictures");
    EXPECT_EQ("vtf://anna-Photos/", there["path"].asString());
    EXPECT_EQ("/home/.Torvi/Pictures/", there["original_path"].asString());
    EXPECT_EQ(1, reach(benSid));
    EXPECT_EQ(4, reach(carlSid));
    ASSERT_EQ(
        1, run(NasRequest::upload(cgi(uploadQuery(benSid, "vtf://anna-Photos")), "p", "picture")).status());
    EXPECT_EQ("picture", nas.folder().read("homes/anna/Photos/p"));
}

TEST_F(NasShare, TheFileManagerAnswersByEvents) {
    ASSERT_TRUE(finished(post(manager("func=nubo_share_to"), shareForm(sid, "home/Photos", {"ben"})), sid));
    const Json::Value waiting = event(benSid, 1, "/home/Photos");
    EXPECT_EQ("anna", waiting["target_name"].asString());
    EXPECT_EQ(1, waiting["event_status"].asInt());
    EXPECT_EQ(photosId(), waiting["share_id"].asString());
    EXPECT_FALSE(waiting["date"].asString().empty());
    EXPECT_FALSE(waiting["time"].asString().empty());
    const int id = waiting["event_id"].asInt();
    EXPECT_EQ(5, byEvent("nubo_accept_share", carlSid, id).status());
    const NasReply reply = byEvent("nubo_accept_share", benSid, id);
    EXPECT_EQ(0, reply.status());
    EXPECT_EQ("/home/.Torvi/Photos", reply.json()["file"].asString());
    EXPECT_EQ(2, event(benSid, 8, "/home/.Torvi/Photos")["event_status"].asInt());
    EXPECT_EQ("ben", event(sid, 4, "/home/Photos")["target_name"].asString());
    EXPECT_EQ(1, reach(benSid));
}

TEST_F(NasShare, TheFileManagerShowsTheTeamArea) {
    write("homes/ben/.Torvi/own", "1");
    // Of two with one name the team folder is seen.
    std::filesystem::create_directory(nas.folder().path() / "homes/ben/.Torvi/Plans");
    shareWithBen();
    const auto area = [&](const std::string& session) {
        return get(manager(listQuery(session, "/home/.Torvi"))).json()["datas"];
    };
    EXPECT_EQ((std::vector<std::string>{"Pictures", "Plans", "Rules", "own"}), sorted(names(area(benSid))));
    EXPECT_EQ(8, named(area(benSid), "filename", "Pictures")["nubo_type"].asInt());
    EXPECT_EQ(photosId(), named(area(benSid), "filename", "Pictures")["nubo_share_id"].asString());
    EXPECT_EQ(0U, area(carlSid).size());

    const std::string inside = "/home/.Torvi/Pictures";
    ASSERT_EQ(1, run(NasRequest::upload(manager(uploadQuery(benSid, inside)), "p", "picture")).status());
    EXPECT_EQ("picture", nas.folder().read("homes/anna/Photos/p"));
    EXPECT_EQ(4,
              run(NasRequest::upload(manager(uploadQuery(benSid, "/home/.Torvi/Rules")), "p", "x")).status());
    EXPECT_EQ(
        1,
        get(manager(statQuery(benSid, "/home/.Torvi", "Pictures"))).json()["datas"][0]["isfolder"].asInt());
    EXPECT_EQ("7", get(manager("func=properties&sid=" + benSid + "&path=" + encoded("/home/.Torvi") +
                               "&total=1&name=Pictures"))
                       .json()["size"]
                       .asString());
    EXPECT_EQ(
        4, post(manager("func=nubo_share_to"), shareForm(benSid, "home/.Torvi/Pictures", {"carl"})).status());
    EXPECT_EQ(
        4,
        post(manager("func=nubo_share_to"), shareForm(benSid, "home//.Torvi//Pictures", {"carl"})).status());
    EXPECT_TRUE(folder(carlSid, 1, "Photos").isNull());
    // Clients of the sync service know where the folder is.
    EXPECT_EQ(5, get(cgi(listQuery(benSid, inside))).status());
    ASSERT_EQ(0, byShare("nubo_team_folder_leave_share", benSid, photosId()).status());
    EXPECT_EQ(5, get(manager(listQuery(benSid, inside))).status());
    EXPECT_EQ(5, get(manager(statQuery(benSid, inside, "p"))).status());
}

TEST_F(NasShare, AnotherFolderInItsPlaceIsNotShared) {
    shareWithBen();
    const std::string id = photosId();
    std::filesystem::rename(nas.folder().file("homes/anna/Photos"), nas.folder().file("homes/anna/Old"));
    write("homes/anna/Photos/private", "x");
    EXPECT_EQ(0, folder(sid, 4, "Photos")["status"].asInt());
    EXPECT_EQ(5, reach(benSid));
    EXPECT_EQ(5, run(NasRequest::upload(cgi(uploadQuery(benSid, "vtf://anna-Photos")), "p", "x")).status());
    EXPECT_FALSE(there("homes/anna/Photos/p"));
    EXPECT_EQ(1, run(NasRequest::upload(cgi(uploadQuery(sid, "/home/Photos")), "q", "x")).status());
    EXPECT_EQ(
        0, get(cgi("func=nubo_get_sync_log&sid=" + benSid + "&lower=0&number=9")).json()["number"].asInt());

    share({"carl"});
    const std::string other = folder(carlSid, 1, "Photos")["share_id"].asString();
    EXPECT_NE(id, other);
    EXPECT_EQ(5, reach(benSid));
    EXPECT_EQ(4, reach(benSid, "vtf://anna-Photos-2"));
    EXPECT_EQ(1, reach(sid, "vtf://anna-Photos-2"));
    EXPECT_EQ(other,
              get(cgi("func=nubo_team_folder_get_info&sid=" + sid + "&path=" + encoded("/home/Photos")))
                  .json()["share_id"]
                  .asString());
}

TEST_F(NasShare, TeamFoldersOfOneUserHaveDifferentNames) {
    std::filesystem::create_directories(nas.folder().path() / "Public/Photos");
    shareWithBen();
    share({"ben"}, "/Public/Photos");
    const std::string other = event(benSid, 1, "/Public/Photos")["share_id"].asString();
    EXPECT_EQ(2, accept(benSid, other, "Pictures").status());
    EXPECT_EQ(4, accept(benSid, other, "..").status());
    EXPECT_EQ(0, accept(benSid, other, "Photos").status());
    EXPECT_EQ("vtf://anna-Photos-2/", folder(benSid, 8, "Photos")["path"].asString());
    EXPECT_EQ(2, accept(benSid, other, "Again").status());
}

TEST_F(NasShare, ADeniedInvitationIsGone) {
    share({"ben"});
    const std::string id = photosId();
    EXPECT_EQ(5, byShare("nubo_team_folder_deny_share", carlSid, id).status());
    EXPECT_EQ(0, byShare("nubo_team_folder_deny_share", benSid, id).status());
    EXPECT_TRUE(folder(benSid, 0, "Photos").isNull());
    for (const std::string& session : {sid, benSid}) {
        EXPECT_EQ(3, event(session, 2, "/home/Photos")["event_status"].asInt());
    }
    EXPECT_EQ(5, accept(benSid, id, "Photos").status());
    EXPECT_EQ(4, reach(benSid));
}

TEST_F(NasShare, WhoLeavesLosesTheFolder) {
    share({"ben"});
    const std::string id = photosId();
    EXPECT_EQ(4, byShare("nubo_team_folder_leave_share", benSid, id).status());
    ASSERT_EQ(0, accept(benSid, id, "Photos").status());
    EXPECT_EQ(4, byShare("nubo_team_folder_deny_share", benSid, id).status());
    const NasReply reply = byShare("nubo_team_folder_leave_share", benSid, id);
    EXPECT_EQ(0, reply.status());
    EXPECT_EQ("true", reply.json()["success"].asString());
    EXPECT_EQ(4, reach(benSid));
    EXPECT_TRUE(folder(benSid, 8, "Photos").isNull());
    EXPECT_EQ(0, folder(sid, 4, "Photos")["receiver_number"].asInt());
    EXPECT_EQ(4, event(benSid, 2, "/home/Photos")["event_status"].asInt());
    const NasReply again = byShare("nubo_team_folder_leave_share", benSid, id);
    EXPECT_EQ(5, again.status());
    EXPECT_EQ("false", again.json()["success"].asString());
}

TEST_F(NasShare, TheOwnerKicksOutOneMember) {
    share({"ben", "carl"});
    const std::string id = photosId();
    ASSERT_EQ(0, accept(benSid, id, "Photos").status());
    // The share alone doesn't say who is meant.
    EXPECT_EQ(4, byShare("nubo_kickout_share", sid, id).status());
    const int ben = event(benSid, 8, "/home/.Torvi/Photos")["event_id"].asInt();
    EXPECT_EQ(4, byEvent("nubo_kickout_share", benSid, ben).status());
    EXPECT_EQ(5, byEvent("nubo_kickout_share", carlSid, ben).status());
    EXPECT_EQ(0, byEvent("nubo_kickout_share", sid, ben).status());
    EXPECT_EQ(4, reach(benSid));
    EXPECT_EQ(5, event(benSid, 2, "/home/Photos")["event_status"].asInt());
    EXPECT_EQ(4, byShare("nubo_kickout_share", carlSid, id).status());
    EXPECT_EQ(0, byShare("nubo_kickout_share", sid, id).status());
    EXPECT_TRUE(folder(carlSid, 1, "Photos").isNull());
    EXPECT_EQ(5, byShare("nubo_kickout_share", sid, id).status());
}

TEST_F(NasShare, UnshareTakesTheFolderFromAll) {
    shareWithBen();
    const std::string id = photosId();
    EXPECT_EQ(4, byShare("nubo_team_folder_unshare_ex", benSid, id).status());
    EXPECT_EQ(5, byShare("nubo_team_folder_unshare_ex", carlSid, id).status());
    ASSERT_TRUE(finished(byShare("nubo_team_folder_unshare_ex", sid, id), sid));
    EXPECT_EQ(5, reach(benSid));
    EXPECT_EQ(5, reach(sid));
    EXPECT_TRUE(folder(benSid, 0, "Pictures").isNull());
    EXPECT_TRUE(folder(sid, 0, "Photos").isNull());
    EXPECT_EQ(5, event(benSid, 2, "/home/Photos")["event_status"].asInt());
    EXPECT_TRUE(there("homes/anna/Photos"));
    EXPECT_EQ(5, byShare("nubo_team_folder_unshare_ex", sid, id).status());
}

TEST_F(NasShare, TheFileManagerUnsharesByShareToo) {
    shareWithBen();
    const std::string id = photosId();
    ASSERT_TRUE(finished(get(manager("func=nubo_unshare&sid=" + sid + "&share_id=" + id)), sid));
    EXPECT_EQ(5, reach(benSid));
}

TEST_F(NasStuckShare, NothingChangesBeforeAJobEnds) {
    const std::string id = folder(sid, 4, "Plans")["share_id"].asString();
    const NasReply share = shareTo(sid, "home/Photos", {"ben"});
    const NasReply leave = byShare("nubo_team_folder_leave_share", benSid, id);
    const NasReply unshare = byShare("nubo_team_folder_unshare_ex", sid, id);
    EXPECT_EQ(1, share.status());
    EXPECT_EQ(0, leave.status());
    EXPECT_LT(progress(unshare, sid)["percent"].asInt(), 100);
    EXPECT_LT(progress(leave, benSid)["percent"].asInt(), 100);
    EXPECT_TRUE(folder(benSid, 1, "Photos").isNull());
    EXPECT_EQ(1, reach(benSid, "vtf://anna-Plans"));
    // A job that is dropped never does its work.
    EXPECT_EQ(
        1, get(cgi("func=daemon_list&sid=" + sid + "&subfunc=delete&pid=" + unshare.json()["pid"].asString()))
               .status());
    EXPECT_EQ(1, reach(benSid, "vtf://anna-Plans"));
}

TEST_F(NasShare, EventsThatAreOverGoFromOneListAtATime) {
    share({"ben"});
    const int id = event(benSid, 1, "/home/Photos")["event_id"].asInt();
    EXPECT_EQ(4, byEvent("nubo_remove_event", benSid, id).status());
    ASSERT_EQ(0, byEvent("nubo_deny_share", benSid, id).status());
    EXPECT_EQ(5, byEvent("nubo_remove_event", carlSid, id).status());
    EXPECT_EQ(0, byEvent("nubo_remove_event", benSid, id).status());
    EXPECT_EQ(5, byEvent("nubo_remove_event", benSid, id).status());
    EXPECT_TRUE(event(benSid, 0, "/home/Photos").isNull());
    EXPECT_EQ(id, event(sid, 2, "/home/Photos")["event_id"].asInt());
    EXPECT_EQ(0, byEvent("nubo_remove_event", sid, id).status());
    EXPECT_TRUE(event(sid, 0, "/home/Photos").isNull());
}

TEST_F(NasShare, SharesSurviveARestart) {
    shareWithBen();
    const std::string plans = folder(benSid, 8, "Plans")["share_id"].asString();
    ASSERT_EQ(0, byShare("nubo_team_folder_leave_share", benSid, plans).status());
    nas.kill();
    nas.startAgain();
    const std::string session = loginSid(nas.port(), "ben", "hidden");
    EXPECT_EQ(1, reach(session));
    EXPECT_EQ("vtf://anna-Photos/", folder(session, 8, "Pictures")["path"].asString());
    // The command line shares it once; who left isn't brought back.
    EXPECT_EQ(4, reach(session, "vtf://anna-Plans"));
    EXPECT_EQ(1, reach(session, "vtf://anna-Rules"));
}

TEST_F(NasShare, OnlyFoldersOfOnesOwnCanBeShared) {
    write("homes/anna/file", "x");
    std::filesystem::create_directory(nas.folder().path() / "homes/anna/@Recycle");
    const auto status = [&](const std::string& session, const std::string& file, const std::string& target) {
        return shareTo(session, file, {target}).status();
    };
    EXPECT_EQ(5, status(sid, "home/Photos", "nobody"));
    EXPECT_EQ(5, status(sid, "home/Photos", ""));
    EXPECT_EQ(4, status(sid, "home/Photos", "anna"));
    EXPECT_EQ(5, status(sid, "home/Missing", "ben"));
    EXPECT_EQ(5, status(sid, "home/file", "ben"));
    EXPECT_EQ(4, status(sid, "/home", "ben"));
    EXPECT_EQ(4, status(sid, "/", "ben"));
    EXPECT_EQ(4, status(sid, "/Public", "ben"));
    EXPECT_EQ(4, status(sid, "home/@Recycle", "ben"));
    EXPECT_EQ(4, status(benSid, "vtf://anna-Plans", "carl"));
    EXPECT_EQ(4, status(benSid, "/homes/anna/Photos", "carl"));
    EXPECT_EQ(3, status("0123456789abcdef0123456789abcdef", "home/Photos", "ben"));
    EXPECT_TRUE(folder(sid, 4, "Photos").isNull());
}

TEST_F(NasShare, FormsOfSharingAreExact) {
    const std::string target = cgi("func=nubo_team_folder_share_to");
    const FormFields right = shareForm(sid, "home/Photos", {"ben"});
    const auto refused = [&](FormFields form, const std::string& reason) {
        const NasReply reply = post(target, form);
        EXPECT_EQ(400, reply.http) << reply.body;
        EXPECT_THAT(reply.body, HasSubstr(reason));
    };
    refused(shareForm(sid, "/home/Photos", {"ben"}), "slash in front");
    refused(shareForm(sid, "", {"ben"}), "is empty");
    refused(shareForm(sid, "home/Photos", {}), "out of its range");
    FormFields form = right;
    form[1].second = "2";
    refused(form, "target_name1\\\" is missing");
    form = right;
    std::swap(form[0], form[1]);
    refused(form, "out of order");
    form = right;
    form.erase(form.begin() + 1);
    refused(form, "target_number\\\" is missing");
    EXPECT_EQ(400, post(target + "&sid=" + sid, right).http);
    EXPECT_EQ(405, get(target).http);
    EXPECT_EQ(400, post(cgi("func=nubo_share_to"), right).http);
    EXPECT_EQ(400, post(manager("func=nubo_team_folder_share_to"), right).http);
}

TEST_F(NasShare, QueriesOfTheReceiverAreExact) {
    share({"ben"});
    const std::string id = photosId();
    for (const char* func : {"nubo_team_folder_deny_share", "nubo_team_folder_leave_share",
                             "nubo_kickout_share", "nubo_team_folder_unshare_ex"}) {
        const std::string query = "func=" + std::string(func) + "&sid=" + benSid;
        EXPECT_EQ(400, get(cgi(query)).http) << func;
        EXPECT_EQ(400, get(cgi(query + "&share_id=")).http) << func;
        EXPECT_EQ(400, get(cgi(query + "&event_id=1")).http) << func;
        EXPECT_EQ(400, get(cgi(query + "&nas_id=n&share_id=" + id)).http) << func;
        EXPECT_EQ(404, get("/node2" + cgi(query + "&share_id=" + id)).http) << func;
    }
    EXPECT_EQ(400, accept(benSid, id, "").http);
    for (const char* func :
         {"nubo_accept_share", "nubo_deny_share", "nubo_leave_share", "nubo_remove_event"}) {
        const std::string query = "func=" + std::string(func) + "&sid=" + benSid;
        EXPECT_EQ(400, get(manager(query + "&share_id=" + id)).http) << func;
        EXPECT_EQ(400, get(manager(query + "&event_id=x")).http) << func;
        EXPECT_EQ(400, get(cgi(query + "&event_id=1")).http) << func;
        EXPECT_EQ(5, get(manager(query + "&event_id=0")).status()) << func;
    }
    EXPECT_EQ(3, byShare("nubo_team_folder_deny_share", "x", id).status());
    EXPECT_EQ(1, folder(benSid, 1, "Photos")["type"].asInt());
}

TEST_F(NasShare, APolicyAnswersForTheReceiver) {
    ASSERT_EQ(0, get(cgi("func=nubo_set_policy&share_policy=1&sid=" + benSid)).status());
    ASSERT_EQ(0, get(cgi("func=nubo_set_policy&share_policy=2&sid=" + carlSid)).status());
    EXPECT_EQ(4, shareTo(sid, "home/Photos", {"ben", "carl"}).status());
    EXPECT_TRUE(folder(sid, 4, "Photos").isNull());
    share({"ben", "ben"});
    EXPECT_EQ(1, reach(benSid));
    EXPECT_FALSE(folder(benSid, 8, "Photos").isNull());
    EXPECT_EQ(1, folder(sid, 4, "Photos")["receiver_number"].asInt());
}

/// Two nodes with folders of their own; anna's is the first, ben comes to the second.
class NasShareCluster : public testing::Test {
protected:
    TempDir sessions;
    Nas first{nodeOptions("node1", sessions.string())};
    Nas second{nodeOptions("node2", sessions.string())};
};

TEST_F(NasShareCluster, TheReceiverFindsTheFolderOnTheOtherNode) {
    std::filesystem::create_directories(first.folder().path() / "homes/anna/Photos");
    const std::string anna = loginSid(first.port(), "anna", "secret");
    const std::string ben = loginSid(second.port(), "ben", "hidden");
    const auto at = [](const Nas& nas, const std::string& query) {
        return exchange(nas.port(), NasRequest::get("/cgi-bin/torvi/torvisrv.cgi?" + query));
    };
    const NasReply job = exchange(
        first.port(),
        NasRequest::form(
            "/cgi-bin/torvi/torvisrv.cgi?func=nubo_team_folder_share_to",
            {{"sid", anna}, {"target_number", "1"}, {"target_name0", "ben"}, {"file", "home/Photos"}}));
    ASSERT_EQ(1, job.status());
    const std::string list =
        "func=nubo_team_folder_get_list&sid=" + ben + "&event_status=0&event_type=0&lower=0&upper=-1";
    Json::Value folders;
    while (folders.empty()) folders = at(second, list).json()["team_folder"];
    EXPECT_EQ("node1", folders[0]["nas_id"].asString());
    const std::string accept = "func=nubo_team_folder_accept_share&sid=" + ben +
                               "&display_name=Photos&share_id=" + folders[0]["share_id"].asString();
    EXPECT_EQ(5, at(second, accept + "&nas_id=node2").status());
    EXPECT_EQ(0, at(second, accept + "&nas_id=node1").status());
    EXPECT_EQ("vtf://anna-Photos/", at(second, list).json()["team_folder"][0]["path"].asString());
    const std::string open = "func=get_list&sid=" + ben +
                             "&is_iso=0&list_mode=all&path=" + encoded("vtf://anna-Photos") +
                             "&dir=DESC&limit=9&sort=mt&start=0&no_sort=1";
    EXPECT_EQ(1, at(first, open).status());
    EXPECT_EQ(1,
              exchange(first.port(), NasRequest::get("/node1/cgi-bin/torvi/torvisrv.cgi?" + open)).status());
    EXPECT_EQ(5, at(second, open).status());
}
