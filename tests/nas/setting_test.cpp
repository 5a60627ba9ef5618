#include <gmock/gmock.h>

#include <array>

#include "sharing.h"

using testing::HasSubstr;

class NasSettings : public NasSharing {
protected:
    using NasSharing::NasSharing;

    NasReply set(const std::string& func, const std::string& key, const std::string& value,
                 const std::string& session) {
        return get(cgi("func=" + func + "&" + key + "=" + value + "&sid=" + session));
    }
    int number(const std::string& func, const std::string& key, const std::string& session) {
        return get(manager("func=" + func + "&sid=" + session)).json().get(key, -1000).asInt();
    }
    NasReply renamed(const std::string& path, const std::string& from, const std::string& to,
                     const std::string& sn) {
        return post(cgi("func=rename&sid=" + sid),
                    {{"path", path}, {"source_name", from}, {"dest_name", to}, {"sn", sn}});
    }
    static FormFields moveForm(const std::string& path, const std::string& name, const std::string& target,
                               const std::string& sn) {
        return {{"source_file", name}, {"source_total", "1"}, {"source_path", path},
                {"dest_path", target}, {"mode", "1"},         {"sn", sn}};
    }
    NasReply moved(const std::string& path, const std::string& name, const std::string& target) {
        return post(cgi("func=move&sid=" + sid), moveForm(path, name, target, sid));
    }
    NasReply updated(const std::string& target, const std::string& name) {
        return post(manager("func=update_link&sid=" + sid),
                    {{"dest_path", target}, {"source_file", name}, {"sn", sid}});
    }
    NasReply fixed(const std::string& path) {
        return get(cgi("func=nubo_fix_team_folder_link&sid=" + sid + "&path=" + encoded(path) + "&type=4"));
    }
    std::filesystem::path disk(const std::string& name) const { return nas.folder().path() / name; }
};

using NasSharedMove = NasSettings;
using NasShareLinkRepair = NasSettings;

TEST_F(NasSettings, WithoutARecycleBinDeletedFilesAreGone) {
    EXPECT_EQ(1, number("nubo_get_recycle_bin_status", "recycle_bin_enable", sid));
    const NasReply reply = set("nubo_set_recycle_bin", "recycle_bin", "0", sid);
    EXPECT_EQ(0, reply.status());
    EXPECT_EQ("true", reply.json()["success"].asString());
    EXPECT_EQ(0, number("nubo_get_recycle_bin_status", "recycle_bin_enable", sid));
    EXPECT_EQ(1, number("nubo_get_recycle_bin_status", "recycle_bin_enable", benSid));
    write("homes/anna/a", "x");
    write("homes/ben/b", "x");
    const auto remove = [&](const std::string& session, const std::string& name) {
        return post(cgi("func=delete&sid=" + session),
                    {{"file_name", name}, {"file_total", "1"}, {"path", "/home"}})
            .status();
    };
    ASSERT_EQ(1, remove(sid, "a"));
    ASSERT_EQ(1, remove(benSid, "b"));
    EXPECT_FALSE(there("homes/anna/a"));
    EXPECT_FALSE(there("homes/anna/@Recycle/a"));
    EXPECT_TRUE(there("homes/ben/@Recycle/b"));
}

TEST_F(NasSettings, ThePolicyIsKept) {
    EXPECT_EQ(0, number("nubo_get_policy", "share_policy", benSid));
    ASSERT_EQ(0, set("nubo_set_policy", "share_policy", "2", benSid).status());
    EXPECT_EQ(2, number("nubo_get_policy", "share_policy", benSid));
    EXPECT_EQ(0, number("nubo_get_policy", "share_policy", sid));
    nas.kill();
    nas.startAgain();
    EXPECT_EQ(2, number("nubo_get_policy", "share_policy", loginSid(nas.port(), "ben", "hidden")));
}

TEST_F(NasSettings, AValueThatIsNoneIsDenied) {
    const std::vector<std::array<const char*, 3>> wrong = {{"nubo_set_policy", "share_policy", "3"},
                                                           {"nubo_set_recycle_bin", "recycle_bin", "2"},
                                                           {"nubo_set_recycle_bin", "recycle_bin", "-1"}};
    for (const auto& [func, key, value] : wrong) {
        const NasReply reply = set(func, key, value, sid);
        EXPECT_EQ(4, reply.status()) << func;
        EXPECT_EQ("false", reply.json()["success"].asString()) << func;
    }
    EXPECT_EQ(1, number("nubo_get_recycle_bin_status", "recycle_bin_enable", sid));
    EXPECT_EQ("false", set("nubo_set_policy", "share_policy", "1", "x").json()["success"].asString());
    EXPECT_EQ(400, set("nubo_set_policy", "share_policy", "x", sid).http);
    EXPECT_EQ(400, set("nubo_set_policy", "policy", "1", sid).http);
    EXPECT_EQ(400, get(cgi("func=nubo_set_recycle_bin&sid=" + sid + "&recycle_bin=1")).http);
    EXPECT_EQ(400, get(cgi("func=nubo_get_policy")).http);
    EXPECT_EQ(3, get(cgi("func=nubo_get_policy&sid=x")).status());
}

TEST_F(NasSharedMove, ASharedFolderThatIsRenamedStaysShared) {
    shareWithBen();
    const NasReply reply = renamed("/home", "Photos", "Albums", sid);
    EXPECT_EQ("true", reply.json()["success"].asString());
    EXPECT_EQ(1, reach(benSid));
    EXPECT_EQ("/home/Albums", folder(sid, 4, "Albums")["path"].asString());
    EXPECT_EQ("/home/Albums", event(sid, 4, "/home/Albums")["file"].asString());
    const NasReply refused = renamed("/home", "Photos", "More", sid);
    EXPECT_EQ(5, refused.status());
    EXPECT_EQ("false", refused.json()["success"].asString());
    EXPECT_EQ(400, renamed("/home", "Albums", "More", benSid).http);
    // Whoever renames it, and by whichever path.
    std::filesystem::create_directory(disk("homes/ben/Notes"));
    const NasReply job = shareTo(benSid, "home/Notes", {"anna"});
    ASSERT_TRUE(finished(job, benSid));
    ASSERT_EQ("true", renamed("/homes/ben", "Notes", "Letters", sid).json()["success"].asString());
    EXPECT_EQ("/home/Letters", folder(benSid, 4, "Letters")["path"].asString());
}

TEST_F(NasSharedMove, ASharedFolderThatIsMovedStaysShared) {
    std::filesystem::create_directories(disk("homes/anna/Old/Deep"));
    std::filesystem::create_directory(disk("homes/anna/New"));
    ASSERT_NO_FATAL_FAILURE(share({"ben"}, "home/Old/Deep"));
    const std::string id = folder(sid, 4, "Deep")["share_id"].asString();
    ASSERT_EQ(0, accept(benSid, id, "Deep").status());
    const NasReply reply = moved("/home", "Old", "/home/New");
    EXPECT_EQ(0, reply.status());
    EXPECT_EQ("true", reply.json()["success"].asString());
    EXPECT_TRUE(there("homes/anna/New/Old/Deep"));
    EXPECT_EQ("/home/New/Old/Deep", folder(sid, 4, "Deep")["path"].asString());
    EXPECT_EQ(1, reach(benSid, "vtf://anna-Deep"));
}

TEST_F(NasSharedMove, ASharedFolderThatIsCopiedToAnotherVolumeStaysShared) {
    std::filesystem::create_directories(disk("homes/anna/Old/Deep"));
    ASSERT_NO_FATAL_FAILURE(share({"ben"}, "home/Old"));
    ASSERT_NO_FATAL_FAILURE(share({"ben"}, "home/Old/Deep"));
    for (const char* name : {"Old", "Deep"}) {
        const std::string id = folder(sid, 4, name)["share_id"].asString();
        ASSERT_EQ(0, accept(benSid, id, name).status());
    }
    ASSERT_EQ(0, moved("/home", "Old", "/Public").status());
    ASSERT_EQ("true", renamed("/Public", "Old", "New", sid).json()["success"].asString());
    EXPECT_EQ(1, folder(sid, 4, "New")["status"].asInt());
    EXPECT_EQ("/Public/New", folder(sid, 4, "New")["path"].asString());
    EXPECT_EQ("/Public/New/Deep", folder(sid, 4, "Deep")["path"].asString());
    EXPECT_EQ(1, reach(benSid, "vtf://anna-Old"));
    EXPECT_EQ(1, reach(benSid, "vtf://anna-Deep"));
}

TEST_F(NasSharedMove, AShareThatLostItsFolderFollowsNoOther) {
    shareWithBen();
    std::filesystem::rename(disk("homes/anna/Photos"), disk("homes/anna/Old"));
    std::filesystem::create_directory(disk("homes/anna/Photos"));
    ASSERT_EQ("true", renamed("/home", "Photos", "Private", sid).json()["success"].asString());
    EXPECT_EQ(5, reach(benSid));
    EXPECT_EQ(0, folder(sid, 4, "Photos")["status"].asInt());
}

TEST_F(NasSharedMove, WhatIsDeniedHasANumberOfItsOwn) {
    std::filesystem::create_directory(disk("homes/anna/Shut"));
    std::filesystem::permissions(disk("homes/anna/Shut"), std::filesystem::perms(0555));
    EXPECT_EQ(-3, moved("/home", "Photos", "/home/Shut").status());
    EXPECT_EQ(5, moved("/home", "Missing", "/Public").status());
    EXPECT_EQ("false", moved("/home", "Missing", "/Public").json()["success"].asString());
    EXPECT_TRUE(there("homes/anna/Photos"));
}

TEST_F(NasSharedMove, FormsAreExact) {
    const std::string sync = cgi("func=move&sid=" + sid);
    const auto refused = [&](const std::string& target, const FormFields& form, const std::string& reason) {
        const NasReply reply = post(target, form);
        EXPECT_EQ(400, reply.http) << reply.body;
        EXPECT_THAT(reply.body, HasSubstr(reason));
    };
    const FormFields right = moveForm("/home", "Photos", "/Public", sid);
    refused(sync + "&no_fork=1", right, "not in the protocol");
    refused(sync, moveForm("/home", "Photos", "/Public", benSid), "not the session");
    FormFields form = right;
    form[4].second = "0";
    refused(sync, form, "mode");
    form.pop_back();
    refused(sync, form, "no_fork");
    EXPECT_EQ(0, post(manager("func=move&sid=" + sid), right).status());
    EXPECT_TRUE(there("Public/Photos"));
}

TEST_F(NasShareLinkRepair, AFolderThatWasRenamedAsideIsFoundAgain) {
    shareWithBen();
    EXPECT_EQ(0, fixed("/home/Photos").status());
    std::filesystem::rename(disk("homes/anna/Photos"), disk("homes/anna/Albums"));
    EXPECT_EQ(5, reach(benSid));
    const NasReply reply = fixed("/home/Albums");
    EXPECT_EQ(1, reply.status());
    EXPECT_EQ("true", reply.json()["success"].asString());
    EXPECT_EQ(1, reach(benSid));
    EXPECT_EQ("/home/Albums", folder(sid, 4, "Albums")["path"].asString());
    EXPECT_EQ(0, fixed("/home/Albums").status());
}

TEST_F(NasShareLinkRepair, OnlyWhatWasSharedIsRepaired) {
    const NasReply reply = fixed("/home/Photos");
    EXPECT_EQ(5, reply.status());
    EXPECT_EQ("false", reply.json()["success"].asString());
    EXPECT_EQ(5, fixed("/home/Missing").status());
    EXPECT_EQ(4, fixed("/Public").status());
    const std::string query = "func=nubo_fix_team_folder_link&sid=" + sid + "&path=a";
    EXPECT_EQ(400, get(cgi(query)).http);
    EXPECT_EQ(400, get(cgi(query + "&type=8")).http);
    EXPECT_EQ(400, get(manager(query + "&type=4")).http);
    EXPECT_EQ(5, get(manager(query)).status());
}

TEST_F(NasShareLinkRepair, AFolderThatWasCopiedAwayIsToldByItsName) {
    shareWithBen();
    std::filesystem::create_directory(disk("homes/anna/New"));
    EXPECT_EQ(5, updated("/home/New", "Photos").status());
    std::filesystem::create_directory(disk("homes/anna/New/Photos"));
    // The one that is shared is still there.
    EXPECT_EQ(5, updated("/home/New", "Photos").status());
    std::filesystem::remove(disk("homes/anna/Photos"));
    EXPECT_EQ(5, reach(benSid));
    const NasReply reply = updated("/home/New", "Photos");
    EXPECT_EQ(0, reply.status());
    EXPECT_EQ("true", reply.json()["success"].asString());
    EXPECT_EQ(1, reach(benSid));
    EXPECT_EQ("/home/New/Photos", folder(sid, 4, "Photos")["path"].asString());
}

class NasShareNode : public NasSettings {
protected:
    NasShareNode() : NasSettings({"--slave-id", "node2"}) {}
};

TEST_F(NasShareNode, ALinkIsUpdatedOnTheNodeThatHoldsIt) {
    shareWithBen();
    std::filesystem::create_directory(disk("homes/anna/New"));
    std::filesystem::rename(disk("homes/anna/Photos"), disk("homes/anna/New/Photos"));
    const FormFields form = {{"dest_path", "/home/New"}, {"source_file", "Photos"}, {"sn", sid}};
    EXPECT_EQ(0, post("/node2" + manager("func=update_link&sid=" + sid), form).status());
    EXPECT_EQ(1, reach(benSid));
    EXPECT_EQ(404, get("/node2" + manager("func=nubo_get_policy&sid=" + sid)).http);
    EXPECT_EQ(400, post(cgi("func=update_link&sid=" + sid), form).http);
    FormFields other = form;
    other[2].second = benSid;
    EXPECT_EQ(400, post(manager("func=update_link&sid=" + sid), other).http);
}
