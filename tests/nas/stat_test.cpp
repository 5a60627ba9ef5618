#include <gmock/gmock.h>

#include "nastest.h"

class NasStat : public NasTest {
protected:
    Json::Value stat(const std::string& path, const std::string& name, const std::string& more = "") {
        return get(cgi(statQuery(sid, path, name, more))).json();
    }
};

TEST_F(NasStat, FileIsDescribedAtEveryAddress) {
    write("Public/a.txt", "123", 1234567890);
    for (const char* address : {"/cgi-bin/torvi/torvisrv.cgi?", "/cgi-bin/torvi/torvisrv.fcgi?",
                                "/cgi-bin/filemanager/utilRequest.cgi?"}) {
        const Json::Value reply = get(address + statQuery(sid, "/Public", "a.txt")).json();
        EXPECT_EQ(1, reply["status"].asInt()) << address;
        EXPECT_EQ(1, reply["total"].asInt());
        const Json::Value entry = reply["datas"][0];
        EXPECT_EQ("a.txt", entry["filename"].asString());
        EXPECT_EQ("3", entry["filesize"].asString());
        EXPECT_EQ(1234567890, entry["epochmt"].asInt());
        EXPECT_EQ(0, entry["isfolder"].asInt());
        EXPECT_FALSE(entry.isMember("privilege_ex"));
    }
}

TEST_F(NasStat, NameOfAnyKindComesBackExactly) {
    const std::string name = "a +&%'~\"b\xe4\xb8\xad\xf0\x9f\x98\x80.txt";
    write("Public/" + name, "1");
    EXPECT_EQ(name, stat("/Public", name)["datas"][0]["filename"].asString());
}

TEST_F(NasStat, MissingFileIsARecordThatDoesNotExist) {
    const Json::Value reply = stat("/Public", "none");
    EXPECT_EQ(1, reply["status"].asInt());
    EXPECT_EQ("none", reply["datas"][0]["filename"].asString());
    EXPECT_EQ(0, reply["datas"][0]["exist"].asInt());
}

TEST_F(NasStat, MissingFolderIsStatus5) {
    EXPECT_EQ(5, stat("/Public/none", "x")["status"].asInt());
}

TEST_F(NasStat, SharesAndHomeAreEntriesOfTheTop) {
    EXPECT_EQ(1, stat("/", "Public")["datas"][0]["isfolder"].asInt());
    EXPECT_EQ(1, stat("/", "home")["datas"][0]["exist"].asInt());
    EXPECT_EQ(0, stat("/", "none")["datas"][0]["exist"].asInt());
}

TEST_F(NasStat, PrivilegesFollowTheOwnersBits) {
    const std::string path = write("Public/a", "1");
    for (const auto& [mode, access] : std::vector<std::pair<int, int>>{{0644, 2}, {0444, 1}, {0044, 0}}) {
        std::filesystem::permissions(path, std::filesystem::perms(mode));
        EXPECT_EQ(access, stat("/Public", "a", "&get_privilege=1")["datas"][0]["privilege_ex"].asInt())
            << mode;
    }
}

TEST_F(NasStat, UploadCheckTellsTheFoldersPrivilegeForAFileThatIsNotThere) {
    const std::string more = "&get_privilege=1&check_upload=1";
    EXPECT_EQ(2, stat("/Public", "new", more)["datas"][0]["privilege_ex"].asInt());
    std::filesystem::permissions(nas.folder().path() / "Public", std::filesystem::perms(0555));
    EXPECT_EQ(1, stat("/Public", "new", more)["datas"][0]["privilege_ex"].asInt());
    EXPECT_EQ(0, stat("/Public", "new", more)["datas"][0]["exist"].asInt());
}

TEST_F(NasStat, EmptyNameIsTheTeamFolderByItsServerSidePath) {
    Json::Value reply = stat("vtf://anna-Plans", "");
    EXPECT_EQ(1, reply["status"].asInt());
    EXPECT_EQ("anna-Plans", reply["datas"][0]["filename"].asString());
    EXPECT_EQ(1, reply["datas"][0]["isfolder"].asInt());
    EXPECT_EQ(12, stat("/home", "")["status"].asInt());
}

TEST_F(NasStat, TeamFolderForReadingShowsNoWritePrivilegeToTheReceiver) {
    write("homes/anna/Rules/r.txt", "1");
    const std::string query = "&get_privilege=1";
    EXPECT_EQ(2, get(cgi(statQuery(sid, "vtf://anna-Rules", "r.txt", query)))
                     .json()["datas"][0]["privilege_ex"]
                     .asInt());
    const Json::Value ben =
        get(cgi(statQuery(benSid, "vtf://anna-Rules", "r.txt", query))).json()["datas"][0];
    EXPECT_EQ(1, ben["privilege_ex"].asInt());
    EXPECT_EQ(444, ben["privilege"].asInt());
}

TEST_F(NasStat, SettimeSetsTheTimeAndReportsIt) {
    const std::string path = write("Public/a", "1");
    const auto query = [&](const std::string& name, const std::string& time) {
        return "func=stat&sid=" + sid + "&settime=1&mtime=" + time +
               "&path=%2FPublic&file_total=1&file_name=" + name;
    };
    EXPECT_EQ(1000000007, get(cgi(query("a", "1000000007"))).json()["datas"][0]["epochmt"].asInt());
    struct stat info {};
    ASSERT_EQ(0, ::stat(path.c_str(), &info));
    EXPECT_EQ(1000000007, info.st_mtim.tv_sec);
    EXPECT_EQ(5, get(manager(query("none", "1"))).status());
    std::filesystem::permissions(path, std::filesystem::perms(0444));
    EXPECT_EQ(4, get(cgi(query("a", "1"))).status());
    EXPECT_EQ(400, get("/cgi-bin/torvi/torvisrv.fcgi?" + query("a", "1")).http);
}

TEST_F(NasStat, PropertiesSumWhatLiesBelow) {
    write("Public/d/one", std::string(1000, 'x'));
    write("Public/d/e/two", std::string(234, 'x'));
    std::filesystem::create_symlink("/usr", nas.folder().path() / "Public/d/out");
    const auto size = [&](const std::string& path, const std::string& name) {
        return get(cgi("func=properties&sid=" + sid + "&path=" + encoded(path) +
                       "&total=1&name=" + encoded(name)))
            .json();
    };
    EXPECT_EQ("1234", size("/Public", "d")["size"].asString());
    EXPECT_TRUE(size("/Public", "d")["size"].isString());
    EXPECT_EQ("234", size("/Public/d/e", "two")["size"].asString());
    EXPECT_EQ(5, size("/Public", "none")["status"].asInt());
    write("homes/anna/Plans/p", "12345");
    EXPECT_EQ("5", size("vtf://anna-Plans", "")["size"].asString());
}

TEST_F(NasStat, PermissionCheckAnswersWhetherAFileMayBePut) {
    const auto check = [&](const std::string& user, const std::string& path, const std::string& name) {
        return get(cgi("func=nubo_check_permission&sid=" + user + "&path=" + encoded(path) +
                       "&file_name=" + encoded(name) + "&check_upload=1"))
            .status();
    };
    EXPECT_EQ(1, check(sid, "/Public", "new"));
    EXPECT_EQ(5, check(sid, "/Public/none", "new"));
    EXPECT_EQ(4, check(sid, "/", "new"));
    EXPECT_EQ(1, check(benSid, "vtf://anna-Plans", "new"));
    EXPECT_EQ(4, check(benSid, "vtf://anna-Rules", "new"));
    std::filesystem::permissions(write("Public/fixed", "1"), std::filesystem::perms(0444));
    EXPECT_EQ(4, check(sid, "/Public", "fixed"));
    std::filesystem::permissions(nas.folder().path() / "Public", std::filesystem::perms(0555));
    EXPECT_EQ(4, check(sid, "/Public", "new"));
}
