#include <gmock/gmock.h>

#include "nastest.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class NasListing : public NasTest {
protected:
    NasListing() {
        write("Public/old.txt", "12345", 1000000000);
        write("Public/new.txt", "1", 1500000000);
        write("Public/mid/inner/leaf", "1");
        write("Public/bare/x", "1");
        std::filesystem::remove((nas.folder().path() / "Public/bare/x").string());
        setTime(nas.folder().file("Public/mid"), 1200000000);
        setTime(nas.folder().file("Public/bare"), 1100000000);
    }
    Json::Value list(const std::string& path, int limit = 100, int start = 0, const std::string& type = "",
                     bool sort = true) {
        return get(cgi(listQuery(sid, path, limit, start, type, sort))).json();
    }
};

TEST_F(NasListing, NewestComesFirst) {
    const Json::Value reply = list("/Public");
    EXPECT_EQ(1, reply["status"].asInt());
    EXPECT_EQ(4, reply["total"].asInt());
    EXPECT_THAT(names(reply["datas"]), ElementsAre("new.txt", "mid", "bare", "old.txt"));
}

TEST_F(NasListing, UnsortedHoldsTheSameEntries) {
    EXPECT_THAT(names(list("/Public", 100, 0, "", false)["datas"]),
                UnorderedElementsAre("new.txt", "mid", "bare", "old.txt"));
}

TEST_F(NasListing, EntryTellsWhatIsOnDisk) {
    const Json::Value entry = list("/Public", 1, 3)["datas"][0];
    EXPECT_EQ("old.txt", entry["filename"].asString());
    EXPECT_EQ(0, entry["isfolder"].asInt());
    EXPECT_TRUE(entry["filesize"].isString());
    EXPECT_EQ("5", entry["filesize"].asString());
    EXPECT_EQ(1000000000, entry["epochmt"].asInt());
    EXPECT_EQ(1, entry["exist"].asInt());
    EXPECT_EQ(644, entry["privilege"].asInt());
    EXPECT_EQ("---", entry["nubo_share_id"].asString());
}

TEST_F(NasListing, PagesJoinToTheWhole) {
    std::vector<std::string> all;
    for (int start = 0; start < 6; start += 3) {
        const Json::Value page = list("/Public", 3, start);
        EXPECT_EQ(4, page["total"].asInt());
        for (const std::string& name : names(page["datas"])) all.push_back(name);
    }
    EXPECT_THAT(all, ElementsAre("new.txt", "mid", "bare", "old.txt"));
}

TEST_F(NasListing, PageBehindTheEndAndPageOfNothingAreEmptyButKnowTheTotal) {
    EXPECT_THAT(names(list("/Public", 10, 4)["datas"]), IsEmpty());
    EXPECT_THAT(names(list("/Public", 0)["datas"]), IsEmpty());
    EXPECT_EQ(4, list("/Public", 0)["total"].asInt());
}

TEST_F(NasListing, FoldersOnlyCountsFoldersOnly) {
    const Json::Value reply = list("/Public", 100, 0, "&type=4");
    EXPECT_THAT(names(reply["datas"]), ElementsAre("mid", "bare"));
    EXPECT_EQ(2, reply["total"].asInt());
    EXPECT_FALSE(reply["datas"][0].isMember("have_child"));
}

TEST_F(NasListing, ChildrenAreToldOnDemand) {
    const Json::Value reply =
        get(cgi(listQuery(sid, "/Public", 100, 0, "&type=4") + "&check_child=4")).json();
    EXPECT_EQ(1, reply["datas"][0]["have_child"].asInt());
    EXPECT_EQ(0, reply["datas"][1]["have_child"].asInt());
}

TEST_F(NasListing, EachUserHasAHomeOfItsOwn) {
    write("homes/anna/hers", "1");
    write("homes/ben/his", "1");
    EXPECT_THAT(names(list("/home")["datas"]), UnorderedElementsAre("hers", "Plans", "Rules"));
    EXPECT_THAT(names(get(cgi(listQuery(benSid, "/home"))).json()["datas"]), ElementsAre("his"));
}

TEST_F(NasListing, HomesOfAllAreForAdministrators) {
    EXPECT_EQ(1, list("/homes/ben")["status"].asInt());
    EXPECT_EQ(4, get(cgi(listQuery(benSid, "/homes/anna"))).status());
    EXPECT_EQ(4, get(cgi(listQuery(benSid, "/homes"))).status());
}

TEST_F(NasListing, MissingFolderAndFileAreStatus5) {
    EXPECT_EQ(5, list("/Public/none")["status"].asInt());
    EXPECT_EQ(5, list("/none")["status"].asInt());
    EXPECT_EQ(5, list("/Public/old.txt")["status"].asInt());
    EXPECT_EQ(5, list("vtf://none/x")["status"].asInt());
}

TEST_F(NasListing, FolderWithoutReadPermissionIsStatus4) {
    std::filesystem::permissions(nas.folder().path() / "Public/mid", std::filesystem::perms(0300));
    EXPECT_EQ(4, list("/Public/mid")["status"].asInt());
    EXPECT_EQ(1, list("/Public")["status"].asInt());
}

TEST_F(NasListing, LinksAndSpecialFilesAndUnfinishedUploadsAreNotThere) {
    std::filesystem::create_symlink("/etc", nas.folder().path() / "Public/etc");
    std::filesystem::create_symlink("old.txt", nas.folder().path() / "Public/alias");
    ASSERT_EQ(0, ::mkfifo(nas.folder().file("Public/fifo").c_str(), 0600));
    write("Public/.torvi-nas.0123", "half");
    EXPECT_EQ(4, list("/Public")["total"].asInt());
}

TEST_F(NasListing, TeamAreaIsEmptyNotMissing) {
    const Json::Value reply = list("/home/.Torvi");
    EXPECT_EQ(1, reply["status"].asInt());
    EXPECT_EQ(0, reply["total"].asInt());
    EXPECT_EQ(5, list("/home/.Torvi/Plans")["status"].asInt());
}

TEST_F(NasListing, TeamFolderIsSeenByOwnerAndReceiverAndNobodyElse) {
    Nas::Options more = options();
    more.users.push_back("carl:x");
    Nas other(more);
    other.folder().write("homes/anna/Plans/sub/plan.txt", "1");
    for (const auto& [user, password, status] : std::vector<std::tuple<std::string, std::string, int>>{
             {"anna", "secret", 1}, {"ben", "hidden", 1}, {"carl", "x", 4}}) {
        const std::string own = loginSid(other.port(), user, password);
        const NasReply reply =
            exchange(other.port(), NasRequest::get(cgi(listQuery(own, "vtf://anna-Plans/sub"))));
        EXPECT_EQ(status, reply.status()) << user;
        if (status == 1) {
            EXPECT_THAT(names(reply.json()["datas"]), ElementsAre("plan.txt"));
        }
    }
}

TEST_F(NasListing, LargeSizeAndFarTimesComeAsText) {
    const std::string path = write("Public/huge", "");
    std::filesystem::resize_file(path, 5000000000);
    setTime(path, 5000000000);
    const Json::Value entry = list("/Public", 1)["datas"][0];
    EXPECT_EQ("5000000000", entry["filesize"].asString());
    EXPECT_EQ("5000000000", entry["epochmt"].asString());
}

TEST_F(NasListing, TreeOfTheTopIsTheShares) {
    const Json::Value tree = get(cgi("func=get_tree&sid=" + benSid + "&is_iso=0&node=share_root")).json();
    ASSERT_EQ(2u, tree.size());
    EXPECT_EQ("Public", tree[0]["text"].asString());
    EXPECT_EQ("folder", tree[0]["iconCls"].asString());
    EXPECT_EQ("w", tree[0]["cls"].asString());
    EXPECT_EQ("/Public", tree[0]["id"].asString());
    EXPECT_EQ("home", tree[1]["text"].asString());
}

TEST_F(NasListing, TreeHoldsFoldersOnlyAndTheirAccess) {
    std::filesystem::permissions(nas.folder().path() / "Public/mid", std::filesystem::perms(0555));
    const Json::Value tree = get(manager("func=get_tree&sid=" + sid + "&is_iso=0&node=%2FPublic")).json();
    ASSERT_EQ(2u, tree.size());
    EXPECT_EQ("bare", tree[0]["text"].asString());
    EXPECT_EQ("w", tree[0]["cls"].asString());
    EXPECT_EQ("r", tree[1]["cls"].asString());
}

TEST_F(NasListing, TreeOfAMissingFolderIsAnObjectWithStatus5) {
    const NasReply reply = get(cgi("func=get_tree&sid=" + sid + "&is_iso=0&node=%2Fnone"));
    EXPECT_TRUE(reply.json().isObject());
    EXPECT_EQ(5, reply.status());
}
