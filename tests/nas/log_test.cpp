#include <gmock/gmock.h>

#include <thread>

#include "batchrequests.h"
#include "nastest.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

const std::string kPrepare = "/cgi-bin/torvi/torvisrvPrepare.cgi?";
const std::string kFcgi = "/cgi-bin/torvi/torvisrv.fcgi?";
const std::string kManagerPrepare = "/cgi-bin/filemanager/torviPrepare.cgi?";

}  // namespace

class NasLog : public NasTest {
protected:
    using NasTest::NasTest;

    static std::string maxQuery(const std::string& session, const std::string& folder = {}) {
        return "func=nubo_get_max_log&sid=" + session + (folder.empty() ? "" : "&folder=" + encoded(folder));
    }
    static std::string logQuery(const std::string& session, std::int64_t lower = 0, int number = 1000,
                                const std::string& folder = {}) {
        return "func=nubo_get_sync_log&sid=" + session + "&lower=" + std::to_string(lower) +
               "&number=" + std::to_string(number) +
               (folder.empty() ? "" : "&syncing_folder=" + encoded(folder));
    }
    Json::Value numbers(const std::string& session, const std::string& folder = {}) {
        return get(kPrepare + maxQuery(session, folder)).json();
    }
    std::string newest(const std::string& session, const std::string& folder = {}) {
        return numbers(session, folder)["max_log"].asString();
    }
    Json::Value log(const std::string& session, std::int64_t lower = 0, int number = 1000,
                    const std::string& folder = {}) {
        const Json::Value reply = get(cgi(logQuery(session, lower, number, folder))).json();
        EXPECT_EQ(0, reply.get("status", -1000).asInt()) << reply.toStyledString();
        EXPECT_EQ(reply["number"].asUInt(), reply["data"].size());
        return reply;
    }
    /// "action path" of each change, "action old > new" where there is an old path; folders end in a slash.
    static std::vector<std::string> lines(const Json::Value& reply) {
        std::vector<std::string> result;
        for (const Json::Value& change : reply["data"]) {
            const std::string slash = change["isfolder"].asInt() == 1 ? "/" : "";
            const std::string old =
                change.isMember("old_filepath") ? change["old_filepath"].asString() + slash + " > " : "";
            result.push_back(std::to_string(change["action"].asInt()) + " " + old +
                             change["filepath"].asString() + slash);
        }
        return result;
    }
    std::vector<std::string> changes(const std::string& session, const std::string& folder = {}) {
        return lines(log(session, 0, 1000, folder));
    }

    NasReply makeFolder(const std::string& path, const std::string& name, const std::string& session = {}) {
        return get(cgi("func=createdir&sid=" + (session.empty() ? sid : session) +
                       "&dest_folder=" + encoded(name) + "&dest_path=" + encoded(path)));
    }
    NasReply rename(const std::string& path, const std::string& name, const std::string& to) {
        return post(cgi("func=rename&sid=" + sid),
                    {{"path", path}, {"source_name", name}, {"dest_name", to}});
    }
    NasReply move(const std::string& path, const std::string& name, const std::string& to, int noFork = 1) {
        return post(cgi("func=move&sid=" + sid + "&no_fork=" + std::to_string(noFork)),
                    {{"source_file", name},
                     {"source_total", "1"},
                     {"source_path", path},
                     {"dest_path", to},
                     {"mode", "0"}});
    }
    NasReply remove(const std::string& path, const std::string& name) {
        return post(cgi("func=delete&sid=" + sid),
                    {{"file_name", name}, {"file_total", "1"}, {"path", path}});
    }
    /// Waits for a job to its good end.
    void finish(const Json::Value& pid) {
        ASSERT_NE("", pid.asString());
        Json::Value now;
        do {
            std::this_thread::yield();
            now = get(cgi("func=nubo_get_progress&sid=" + sid + "&pid=" + pid.asString())).json();
        } while (now["copying"].asInt() == 0 && now["percent"].asInt() < 100);
        EXPECT_EQ(100, now["percent"].asInt()) << now.toStyledString();
    }
    static std::string source(const std::string& name) {
        return "&source_path=%2Fhome&source_file=" + encoded(name);
    }
};

class NasShortLog : public NasLog {
protected:
    NasShortLog() : NasLog({"--changes-kept", "3"}) {}
};

class NasSlowLog : public NasLog {
protected:
    NasSlowLog() : NasLog({"--job-delay", "3600000"}) {}
};

TEST_F(NasLog, AnEmptyLogIsNumberNoughtAndAtItsEnd) {
    const Json::Value all = numbers(sid);
    EXPECT_EQ(1, all["status"].asInt());
    for (const char* key : {"max_log", "notify", "global_notify", "sync_signal"}) {
        ASSERT_TRUE(all[key].isString()) << key;
        EXPECT_EQ("0", all[key].asString()) << key;
    }
    const Json::Value none = log(sid);
    EXPECT_EQ(0, none["number"].asInt());
    EXPECT_EQ(1, none["end"].asInt());
}

TEST_F(NasLog, ANewFolderIsAChangeWithNumberDeviceAndPath) {
    ASSERT_EQ(1, makeFolder("/home", "d").status());
    const Json::Value change = log(sid)["data"][0];
    EXPECT_EQ("1", change["log_id"].asString());
    EXPECT_TRUE(change["log_id"].isString());
    EXPECT_EQ("/home/d", change["filepath"].asString());
    EXPECT_EQ(8, change["action"].asInt());
    EXPECT_EQ(1, change["isfolder"].asInt());
    EXPECT_EQ("desk", change["device"].asString());
    EXPECT_FALSE(change.isMember("old_filepath"));
    EXPECT_EQ("1", newest(sid));
}

TEST_F(NasLog, ALoginWithoutAComputerLeavesNoDevice) {
    const std::string plain = run(NasRequest::form("/cgi-bin/filemanager/wfm2Login.cgi",
                                                   {{"user", "anna"}, {"pwd", base64("secret")}}))
                                  .json()["sid"]
                                  .asString();
    ASSERT_EQ(1, makeFolder("/home", "d", plain).status());
    EXPECT_FALSE(log(sid)["data"][0].isMember("device"));
}

TEST_F(NasLog, UploadsTellANewFileFromANewContent) {
    ASSERT_EQ(1, put("/Public", "a", "1").status());
    ASSERT_EQ(1, put("/Public", "a", "2").status());
    ASSERT_EQ(1,
              run(NasRequest::upload(cgi(moveQuery(sid, "/home", 5, 1, 1, "b")), "x", "1", "upload_and_move"))
                  .status());
    EXPECT_THAT(changes(sid), ElementsAre("8 /Public/a", "9 /Public/a", "8 /home/b"));
}

TEST_F(NasLog, ARefusedUploadIsNoChange) {
    ASSERT_EQ(1, put("/Public", "a", "1").status());
    ASSERT_EQ(2, put("/Public", "a", "2", 0).status());
    ASSERT_EQ(5, put("/Public/none", "a", "2").status());
    EXPECT_EQ("1", newest(sid));
}

TEST_F(NasLog, SlicesAreOneChangeOnceTheFileIsWhole) {
    const std::string id = get(cgi("func=start_chunked_upload&sid=" + sid + "&upload_root_dir=%2Fhome"))
                               .json()["upload_id"]
                               .asString();
    const auto slice = [&](int offset, const std::string& content, const std::string& more) {
        return run(NasRequest::upload(
                       cgi("func=chunked_upload&sid=" + sid + "&upload_id=" + id +
                           "&settime=1&mtime=5&offset=" + std::to_string(offset) +
                           "&filesize=4&dest_path=%2Fhome&overwrite=1&upload_root_dir=%2Fhome" + more),
                       "big", content, "chunked_upload"))
            .status();
    };
    ASSERT_EQ(1, slice(0, "12", "&multipart=1"));
    EXPECT_THAT(changes(sid), IsEmpty());
    ASSERT_EQ(1, slice(2, "34", ""));
    EXPECT_THAT(changes(sid), ElementsAre("8 /home/big"));
}

TEST_F(NasLog, ABatchIsOneChangeForEachFileThatWasStored) {
    write("Public/old", "1");
    const std::string body = BatchRequests::body(
        sid, {{"old", "2", "/Public/"}, {"lost", "3", "/Public/none/"}, {"new", "4", "/home/"}});
    ASSERT_EQ(1, run(BatchRequests::requestOf(body)).status());
    EXPECT_THAT(changes(sid), ElementsAre("9 /Public/old", "8 /home/new"));
}

TEST_F(NasLog, ARenameTellsBothNames) {
    write("Public/a", "1");
    ASSERT_EQ(1, rename("/Public", "a", "b").status());
    EXPECT_THAT(changes(sid), ElementsAre("11 /Public/a > /Public/b"));
}

TEST_F(NasLog, AMoveAtOnceTellsBothPlaces) {
    std::filesystem::create_directories(nas.folder().path() / "Public/d/e");
    ASSERT_EQ(1, move("/Public/d", "e", "/home").status());
    EXPECT_THAT(changes(sid), ElementsAre("12 /Public/d/e/ > /home/e/"));
}

TEST_F(NasLog, AMoveThatIsAJobIsAChangeWhenItIsDone) {
    write("Public/a", "1");
    const NasReply reply = move("/Public", "a", "/home", 0);
    ASSERT_EQ(1, reply.status());
    finish(reply.json()["pid"]);
    EXPECT_THAT(changes(sid), ElementsAre("12 /Public/a > /home/a"));
}

TEST_F(NasSlowLog, AMoveThatIsStillAJobIsNoChange) {
    write("Public/a", "1");
    const NasReply reply = move("/Public", "a", "/home", 0);
    ASSERT_EQ(1, reply.status());
    EXPECT_THAT(changes(sid), IsEmpty());
    get(cgi("func=daemon_list&sid=" + sid + "&subfunc=delete&pid=" + reply.json()["pid"].asString()));
    EXPECT_THAT(changes(sid), IsEmpty());
}

TEST_F(NasLog, ADeletionAndARecoveryTellThePathInTheTree) {
    write("homes/anna/d/f", "1");
    ASSERT_EQ(1, remove("/home/d", "f").status());
    const NasReply reply =
        get(cgi("func=trash_recovery&sid=" + sid +
                "&source_file=f&mode=0&source_total=1&source_path=%2Fhome%2F%40Recycle%2Fd"));
    ASSERT_EQ(1, reply.status()) << reply.body;
    finish(reply.json()["pid"]);
    EXPECT_THAT(changes(sid), ElementsAre("10 /home/d/f", "14 /home/d/f"));
}

TEST_F(NasLog, WhatHappensInTheRecycleFolderIsNoChange) {
    write("homes/anna/@Recycle/f", "1");
    write("homes/anna/@Recycle/g", "1");
    ASSERT_EQ(1, remove("/home/@Recycle", "f").status());
    ASSERT_EQ(1, makeFolder("/home/@Recycle", "d").status());
    EXPECT_THAT(changes(sid), IsEmpty());
    // Out of it by hand, something comes to be.
    ASSERT_EQ(1, move("/home/@Recycle", "g", "/home").status());
    ASSERT_EQ(1, move("/home", "g", "/home/@Recycle").status());
    EXPECT_THAT(changes(sid), ElementsAre("8 /home/g", "10 /home/g"));
}

TEST_F(NasLog, ASetTimeIsAChange) {
    write("Public/a", "1");
    const auto set = [&](const std::string& path, const std::string& name) {
        return get(cgi("func=stat&sid=" + sid + "&settime=1&mtime=1000000007&path=" + encoded(path) +
                       "&file_total=1&file_name=" + name))
            .status();
    };
    ASSERT_EQ(1, set("/Public", "a"));
    ASSERT_EQ(1, set("/", "Public"));
    ASSERT_EQ(1, set("/", "home"));
    ASSERT_EQ(5, set("/Public", "none"));
    EXPECT_THAT(changes(sid), ElementsAre("13 /Public/a", "13 /Public/", "13 /home/"));
}

TEST_F(NasLog, ACommittedVersionIsANewContentAndTheWorkBeforeItIsNone) {
    write("homes/anna/f", "one");
    const Json::Value lock =
        get(cgi("func=versioning_lock&create_version=1&sid=" + sid + source("f"))).json();
    const std::string version = lock["version_id"].asString();
    ASSERT_EQ(1, put("/home/@Versions/" + version, "upload", "two").status());
    EXPECT_THAT(changes(sid), IsEmpty());
    const NasReply reply =
        get(cgi("func=versioning_commit_upload&sid=" + sid + "&settime=1&mtime=9" + source("f") +
                "&lockid=" + lock["lockid"].asString() + "&version_id=" + version));
    finish(reply.json()["pid"]);
    EXPECT_THAT(changes(sid), ElementsAre("9 /home/f"));
}

TEST_F(NasLog, EachUserSeesOnlyTheOwnHomeSharesAndTeamFolders) {
    ASSERT_EQ(1, put("/home", "mine", "1").status());
    ASSERT_EQ(1, put("/homes/ben", "his", "1").status());
    ASSERT_EQ(1, put("/Public", "ours", "1").status());
    ASSERT_EQ(1, put("/home/Plans", "plan", "1").status());
    EXPECT_THAT(changes(sid), ElementsAre("8 /home/mine", "8 /Public/ours", "8 /home/Plans/plan"));
    EXPECT_THAT(changes(benSid), ElementsAre("8 /home/his", "8 /Public/ours", "8 vtf://anna-Plans/plan"));
    EXPECT_EQ("4", newest(sid));
    EXPECT_EQ("2", newest(benSid, "/home"));
}

TEST_F(NasLog, AMoveOutOfSightIsADeletionAndOneIntoSightMakesSomething) {
    write("homes/anna/a", "1");
    write("homes/anna/Plans/b", "1");
    ASSERT_EQ(1, move("/home", "a", "/home/Plans").status());
    ASSERT_EQ(1, move("/home/Plans", "b", "/home").status());
    ASSERT_EQ(1, rename("/home/Plans", "a", "c").status());
    EXPECT_THAT(changes(sid), ElementsAre("12 /home/a > /home/Plans/a", "12 /home/Plans/b > /home/b",
                                          "11 /home/Plans/a > /home/Plans/c"));
    EXPECT_THAT(changes(benSid), ElementsAre("8 vtf://anna-Plans/a", "10 vtf://anna-Plans/b",
                                             "11 vtf://anna-Plans/a > vtf://anna-Plans/c"));
}

TEST_F(NasLog, AFolderShowsWhatLiesBelowItInItsOwnWords) {
    ASSERT_EQ(1, makeFolder("/home/Plans", "a").status());
    ASSERT_EQ(1, makeFolder("/home/Plans", "ab").status());
    ASSERT_EQ(1, makeFolder("/home/Plans/a", "b").status());
    ASSERT_EQ(1, makeFolder("/Public", "a").status());
    EXPECT_THAT(changes(sid, "/home/Plans/a"), ElementsAre("8 /home/Plans/a/", "8 /home/Plans/a/b/"));
    EXPECT_THAT(changes(sid, "vtf://anna-Plans/a/"),
                ElementsAre("8 vtf://anna-Plans/a/", "8 vtf://anna-Plans/a/b/"));
    EXPECT_EQ("3", newest(sid, "/home/Plans/a"));
    EXPECT_EQ("2", newest(sid, "/home/Plans/ab"));
    EXPECT_EQ("4", newest(sid, "/"));
    EXPECT_EQ("0", newest(benSid, "vtf://anna-Rules"));
}

TEST_F(NasLog, ADeletedFolderIsStillKnownToTheLog) {
    ASSERT_EQ(1, makeFolder("/Public", "d").status());
    ASSERT_EQ(1, makeFolder("/Public/d", "e").status());
    ASSERT_EQ(1, remove("/Public", "d").status());
    EXPECT_THAT(changes(sid, "/Public/d/e"), ElementsAre("8 /Public/d/e/", "10 /Public/d/e/"));
    EXPECT_EQ("3", newest(sid, "/Public/d"));
    EXPECT_EQ(5, numbers(sid, "/Public/none")["status"].asInt());
}

TEST_F(NasLog, AFolderGoesAndComesWithWhatItLiesIn) {
    ASSERT_EQ(1, put("/home/Plans", "a", "1").status());
    ASSERT_EQ(1, makeFolder("/home", "Old").status());
    ASSERT_EQ(1, move("/home", "Plans", "/home/Old").status());
    ASSERT_EQ(1, rename("/home", "Old", "Older").status());
    ASSERT_EQ(1, move("/home/Older", "Plans", "/home").status());
    EXPECT_THAT(changes(benSid),
                ElementsAre("8 vtf://anna-Plans/a", "10 vtf://anna-Plans/", "8 vtf://anna-Plans/"));
    EXPECT_THAT(changes(sid, "/home/Older/Plans"),
                ElementsAre("8 /home/Older/Plans/", "10 /home/Older/Plans/"));
}

TEST_F(NasLog, ManyAtOnceGetNumbersInARow) {
    std::vector<std::thread> writers;
    for (int i = 0; i < 8; ++i) {
        writers.emplace_back([this, i] {
            for (int k = 0; k < 4; ++k) makeFolder("/home", std::to_string(i) + "-" + std::to_string(k));
        });
    }
    for (std::thread& writer : writers) writer.join();
    const Json::Value all = log(sid);
    ASSERT_EQ(32U, all["data"].size());
    for (Json::ArrayIndex i = 0; i < 32; ++i)
        EXPECT_EQ(std::to_string(i + 1), all["data"][i]["log_id"].asString());
    nas.kill();
    nas.startAgain();
    sid = loginSid(nas.port(), "anna", "secret");
    EXPECT_EQ(all, log(sid));
}

TEST_F(NasLog, OthersFoldersAreRefused) {
    ASSERT_EQ(1, put("/homes/ben", "his", "1").status());
    EXPECT_EQ(4, numbers(sid, "/homes/ben")["status"].asInt());
    EXPECT_EQ(4, numbers(sid, "/homes")["status"].asInt());
    EXPECT_EQ(4, numbers(benSid, "/homes/anna")["status"].asInt());
    EXPECT_EQ(5, numbers(sid, "vtf://ben-None")["status"].asInt());
    EXPECT_EQ(5, numbers(sid, "/none")["status"].asInt());
    EXPECT_EQ(4, get(cgi(logQuery(sid, 0, 9, "/homes/ben"))).status());
    EXPECT_EQ(4, numbers(sid, "/home/../ben")["status"].asInt());
}

TEST_F(NasLog, PagesGoOnFromALowestNumberThatIsAmongThem) {
    for (const char* name : {"a", "b", "c"}) ASSERT_EQ(1, makeFolder("/home", name).status());
    const Json::Value first = log(sid, 0, 2);
    EXPECT_THAT(lines(first), ElementsAre("8 /home/a/", "8 /home/b/"));
    EXPECT_EQ(0, first["end"].asInt());
    const Json::Value second = log(sid, 3, 2);
    EXPECT_THAT(lines(second), ElementsAre("8 /home/c/"));
    EXPECT_EQ(1, second["end"].asInt());
    EXPECT_EQ(1, log(sid, 1, 3)["end"].asInt());
    EXPECT_EQ(0, log(sid, 4294967297, 3)["number"].asInt());
    EXPECT_EQ(3, log(sid, -1, 3)["number"].asInt());
}

TEST_F(NasLog, APageEndsTheLogWhenTheRestIsOthersBusiness) {
    ASSERT_EQ(1, makeFolder("/Public", "a").status());
    ASSERT_EQ(1, makeFolder("/home", "b").status());
    EXPECT_EQ(1, log(benSid, 0, 1)["end"].asInt());
    EXPECT_EQ(0, log(sid, 0, 1)["end"].asInt());
}

TEST_F(NasLog, NotifyIsTheNewestOfOthersAndGlobalNotifyTheNewestOfAll) {
    ASSERT_EQ(1, makeFolder("/Public", "a", benSid).status());
    ASSERT_EQ(1, makeFolder("/Public", "b").status());
    ASSERT_EQ(1, makeFolder("/home", "c", benSid).status());
    EXPECT_EQ("2", newest(sid));
    EXPECT_EQ("1", numbers(sid)["notify"].asString());
    EXPECT_EQ("3", numbers(sid)["global_notify"].asString());
    EXPECT_EQ("2", numbers(benSid)["notify"].asString());
}

TEST_F(NasLog, NumbersGoOnAfterARestart) {
    ASSERT_EQ(1, makeFolder("/home", "a").status());
    ASSERT_EQ(1, rename("/home", "a", "b").status());
    const std::string before = log(sid).toStyledString();
    nas.kill();
    nas.startAgain();
    sid = loginSid(nas.port(), "anna", "secret");
    EXPECT_EQ(before, log(sid).toStyledString());
    ASSERT_EQ(1, makeFolder("/home", "c").status());
    EXPECT_EQ("3", newest(sid));
    EXPECT_THAT(onDisk("."), testing::Contains(".torvi-nas.changes"));
    EXPECT_THAT(get(cgi(listQuery(sid, "/"))).body, Not(HasSubstr(".torvi-nas")));
}

TEST_F(NasLog, ALineThatAKilledServerLeftHalfWrittenIsSkipped) {
    ASSERT_EQ(1, makeFolder("/home", "a").status());
    nas.kill();
    std::ofstream(nas.folder().file(".torvi-nas.changes"), std::ios::app) << "{\"id\":2,\"acti";
    nas.startAgain();
    sid = loginSid(nas.port(), "anna", "secret");
    ASSERT_EQ(1, makeFolder("/home", "b").status());
    nas.kill();
    nas.startAgain();
    sid = loginSid(nas.port(), "anna", "secret");
    EXPECT_THAT(changes(sid), ElementsAre("8 /home/a/", "8 /home/b/"));
}

TEST_F(NasShortLog, OldChangesAreForgottenAndNumbersAreNot) {
    for (const char* name : {"a", "b", "c", "d"}) ASSERT_EQ(1, makeFolder("/home", name).status());
    EXPECT_THAT(changes(sid), ElementsAre("8 /home/b/", "8 /home/c/", "8 /home/d/"));
    nas.stop();
    nas.startAgain();
    sid = loginSid(nas.port(), "anna", "secret");
    EXPECT_THAT(changes(sid), ElementsAre("8 /home/b/", "8 /home/c/", "8 /home/d/"));
    ASSERT_EQ(1, makeFolder("/home", "e").status());
    EXPECT_EQ("5", newest(sid));
}

TEST_F(NasShortLog, ItsFileStaysSmall) {
    for (int i = 0; i < 20; ++i) ASSERT_EQ(1, makeFolder("/home", std::to_string(i)).status());
    const std::string file = nas.folder().read(".torvi-nas.changes");
    EXPECT_LE(std::count(file.begin(), file.end(), '\n'), 6);
    EXPECT_THAT(file, HasSubstr("homes/anna/19"));
    nas.kill();
    nas.startAgain();
    sid = loginSid(nas.port(), "anna", "secret");
    EXPECT_THAT(changes(sid), ElementsAre("8 /home/17/", "8 /home/18/", "8 /home/19/"));
}

TEST_F(NasLog, EveryAddressTellsTheSameNumbers) {
    ASSERT_EQ(1, makeFolder("/home", "a").status());
    ASSERT_EQ(1, makeFolder("/Public", "b").status());
    for (const std::string& address : {kPrepare, kFcgi, kManagerPrepare}) {
        EXPECT_EQ("2", get(address + maxQuery(sid)).json()["max_log"].asString()) << address;
        EXPECT_EQ("1", get(address + maxQuery(sid, "/home")).json()["max_log"].asString()) << address;
    }
    EXPECT_EQ(get(cgi(logQuery(sid))).body, get(manager(logQuery(sid))).body);
    EXPECT_EQ(get(cgi(logQuery(sid, 0, 9, "/home"))).body, get(manager(logQuery(sid, 0, 9, "/home"))).body);
}

TEST_F(NasLog, AFormAsksForManyFoldersAtOnce) {
    ASSERT_EQ(1, makeFolder("/home", "a").status());
    ASSERT_EQ(1, makeFolder("/Public", "b").status());
    const Json::Value reply = post(kPrepare + maxQuery(sid), {{"folder_number", "4"},
                                                              {"folder0", "/home"},
                                                              {"folder1", "/none"},
                                                              {"folder2", "/Public"},
                                                              {"folder3", "vtf://anna-Plans"}})
                                  .json();
    EXPECT_EQ(1, reply["status"].asInt());
    EXPECT_EQ("1", reply["max_log0"].asString());
    EXPECT_FALSE(reply.isMember("max_log1"));
    EXPECT_EQ("2", reply["max_log2"].asString());
    EXPECT_EQ("0", reply["max_log3"].asString());
    EXPECT_EQ("2", reply["max_log"].asString());
    EXPECT_EQ("2", reply["global_notify"].asString());
}

TEST_F(NasLog, FormIsExact) {
    using Fields = std::vector<std::pair<std::string, std::string>>;
    const auto refused = [&](const Fields& form, const std::string& reason) {
        const NasReply reply = post(kPrepare + maxQuery(sid), form);
        EXPECT_EQ(400, reply.http) << reason;
        EXPECT_THAT(reply.body, HasSubstr(reason));
    };
    refused({{"folder_number", "1"}}, "\\\"folder0\\\" is missing");
    refused({{"folder_number", "1"}, {"folder0", "/home"}, {"folder1", "/home"}}, "not in the protocol");
    refused({{"folder_number", "2"}, {"folder1", "/home"}, {"folder0", "/home"}}, "out of order");
    refused({{"folder0", "/home"}, {"folder_number", "1"}}, "out of order");
    refused({{"folder_number", "1"}, {"folder0", ""}}, "\\\"folder0\\\" is empty");
    refused({{"folder_number", "0"}}, "folder_number");
    refused({{"folder_number", "x"}, {"folder0", "/home"}}, "decimal");
    refused({{"folder0", "/home"}}, "\\\"folder_number\\\" is missing");
    EXPECT_EQ(405, post(kFcgi + maxQuery(sid), {{"folder_number", "1"}, {"folder0", "/home"}}).http);
    EXPECT_EQ(400,
              post(kPrepare + maxQuery(sid, "/home"), {{"folder_number", "1"}, {"folder0", "/home"}}).http);
}

TEST_F(NasLog, QueriesAreExact) {
    const auto refused = [&](const std::string& target, const std::string& reason) {
        const NasReply reply = get(target);
        EXPECT_EQ(400, reply.http) << target;
        EXPECT_THAT(reply.body, HasSubstr(reason));
    };
    refused(kPrepare + maxQuery(sid) + "&x=1", "not in the protocol");
    refused(kPrepare + "func=nubo_get_max_log&folder=%2Fhome&sid=" + sid, "out of order");
    refused(cgi(maxQuery(sid)), "no call");
    refused(cgi("func=nubo_get_sync_log&sid=" + sid + "&number=1&lower=0"), "out of order");
    refused(cgi("func=nubo_get_sync_log&sid=" + sid + "&lower=0"), "\\\"number\\\" is missing");
    refused(cgi(logQuery(sid, 0, 0)), "not above 0");
    refused(cgi("func=nubo_get_sync_log&sid=" + sid + "&lower=a&number=1"), "decimal");
    refused(cgi(logQuery(sid) + "&device=desk"), "not in the protocol");
    EXPECT_EQ(405, post(cgi(logQuery(sid)), {}).http);
}

TEST_F(NasLog, StrangersLearnNothing) {
    const std::string stranger = "0123456789abcdef0123456789abcdef";
    ASSERT_EQ(1, makeFolder("/Public", "a").status());
    for (const NasReply& reply :
         {get(kPrepare + maxQuery(stranger)), get(cgi(logQuery(stranger))),
          post(kPrepare + maxQuery(stranger), {{"folder_number", "1"}, {"folder0", "/home"}})}) {
        EXPECT_EQ(3, reply.status());
        EXPECT_FALSE(reply.json().isMember("max_log"));
        EXPECT_FALSE(reply.json().isMember("data"));
    }
}
