#include <gmock/gmock.h>

#include <thread>

#include "nastest.h"

using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using Fields = std::vector<std::pair<std::string, std::string>>;

class NasJobs : public NasTest {
protected:
    using NasTest::NasTest;

    static Fields moveForm(const std::string& path, const std::string& name, const std::string& target) {
        return {{"source_file", name},
                {"source_total", "1"},
                {"source_path", path},
                {"dest_path", target},
                {"mode", "0"}};
    }
    static Fields checked(Fields form, const std::string& path, std::int64_t size, std::int64_t time) {
        for (const auto& field : Fields{{"check_nubo_file_profile", "1"},
                                        {"check_nubo_file_path", path},
                                        {"check_nubo_file_exist", "1"},
                                        {"check_nubo_file_type", "0"},
                                        {"check_nubo_file_size", std::to_string(size)},
                                        {"check_nubo_file_time", std::to_string(time)}}) {
            form.push_back(field);
        }
        return form;
    }
    std::string moveTarget(int noFork) {
        return cgi("func=move&sid=" + sid + "&no_fork=" + std::to_string(noFork));
    }
    NasReply moveNow(const std::string& path, const std::string& name, const std::string& target) {
        return post(moveTarget(1), moveForm(path, name, target));
    }
    int moveAsJob(const std::string& path, const std::string& name, const std::string& target) {
        const NasReply reply = post(moveTarget(0), moveForm(path, name, target));
        EXPECT_EQ(1, reply.status()) << reply.body;
        EXPECT_TRUE(reply.json()["pid"].isInt());
        return reply.json()["pid"].asInt();
    }
    Json::Value status(int pid, const std::string& session = "") {
        return get(cgi("func=get_move_status&sid=" + (session.empty() ? sid : session) +
                       "&pid=" + std::to_string(pid)))
            .json();
    }
    Json::Value progress(const std::string& pid) {
        return get(cgi("func=nubo_get_progress&sid=" + sid + "&pid=" + pid)).json();
    }
    NasReply clear(int pid, bool byManager = false) {
        const std::string query =
            "func=daemon_list&sid=" + sid + "&subfunc=delete&pid=" + std::to_string(pid);
        return get(byManager ? manager(query) : cgi(query));
    }
    /// Asks until the job is over; every percent that was told.
    std::vector<int> finish(int pid, int status = 1) {
        std::vector<int> percents;
        while (true) {
            const Json::Value reply = this->status(pid);
            if (reply["status"].asInt() != 1 || reply["percent"].asInt() == 100) {
                EXPECT_EQ(status, reply["status"].asInt());
                return percents;
            }
            percents.push_back(reply["percent"].asInt());
            std::this_thread::yield();
        }
    }
    NasReply recover(const std::string& path, const std::string& name, int mode = 0) {
        return get(cgi("func=trash_recovery&sid=" + sid + "&source_file=" + encoded(name) +
                       "&mode=" + std::to_string(mode) + "&source_total=1&source_path=" + encoded(path)));
    }
    std::string recovered(const std::string& path, const std::string& name, int mode = 0) {
        const NasReply reply = recover(path, name, mode);
        EXPECT_EQ(1, reply.status()) << reply.body;
        EXPECT_TRUE(reply.json()["pid"].isString());
        const std::string pid = reply.json()["pid"].asString();
        while (true) {
            const Json::Value now = progress(pid);
            if (now["copying"].asInt() != 0 || now["percent"].asInt() == 100) return now.toStyledString();
        }
    }
    std::filesystem::path disk(const std::string& name) const { return nas.folder().path() / name; }
};

class NasSlowJobs : public NasJobs {
protected:
    NasSlowJobs() : NasJobs({"--job-delay", "400"}) {}
};

class NasStuckJobs : public NasJobs {
protected:
    NasStuckJobs() : NasJobs({"--job-delay", "3600000"}) {}
};

class NasQuotaJobs : public NasJobs {
protected:
    NasQuotaJobs() : NasJobs({"--quota", "anna:1000"}) {}
};

using NasMove = NasJobs;
using NasTrash = NasJobs;

TEST_F(NasMove, AtOnceSaysSuccessAndNamesNoJob) {
    write("Public/a", "content", 1000000001);
    std::filesystem::create_directory(disk("Public/to"));
    const NasReply reply = moveNow("/Public", "a", "/Public/to");
    EXPECT_EQ(1, reply.status());
    EXPECT_EQ("true", reply.json()["success"].asString());
    EXPECT_FALSE(reply.json().isMember("pid"));
    EXPECT_EQ("content", nas.folder().read("Public/to/a"));
    EXPECT_EQ(1000000001, timeOf(nas.folder().file("Public/to/a")));
    EXPECT_FALSE(there("Public/a"));
}

TEST_F(NasMove, JobMovesAFolderAndIsForgottenOnceItsEndWasTold) {
    write("Public/d/sub/x", "1", 1000000001);
    std::filesystem::create_directory(disk("Public/to"));
    const int pid = moveAsJob("/Public", "d", "/Public/to");
    EXPECT_GT(pid, 0);
    finish(pid);
    EXPECT_EQ("1", nas.folder().read("Public/to/d/sub/x"));
    EXPECT_FALSE(there("Public/d"));
    EXPECT_EQ(5, status(pid)["status"].asInt());
}

TEST_F(NasMove, BetweenVolumesTheTreeIsCopiedThenRemoved) {
    const std::string big(3 << 20, 'x');
    write("Public/d/big", big, 1000000001);
    write("Public/d/sub/x", "1", 1000000002);
    std::filesystem::permissions(disk("Public/d/sub/x"), std::filesystem::perms(0640));
    std::filesystem::create_symlink("/nowhere", disk("Public/d/link"));
    setTime(disk("Public/d/sub"), 1000000003);
    finish(moveAsJob("/Public", "d", "/home"));
    EXPECT_TRUE(nas.folder().read("homes/anna/d/big") == big);
    EXPECT_EQ(1000000001, timeOf(nas.folder().file("homes/anna/d/big")));
    EXPECT_EQ(1000000003, timeOf(nas.folder().file("homes/anna/d/sub")));
    EXPECT_EQ(std::filesystem::perms(0640),
              std::filesystem::status(disk("homes/anna/d/sub/x")).permissions());
    EXPECT_TRUE(std::filesystem::is_symlink(disk("homes/anna/d/link")));
    EXPECT_THAT(onDisk("Public"), IsEmpty());
    EXPECT_THAT(onDisk("homes/anna"), ElementsAre("Plans", "Rules", "d"));
}

TEST_F(NasMove, FolderThatCannotBeRemovedIsNotCopiedEither) {
    write("Public/d/fixed/x", "1");
    std::filesystem::permissions(disk("Public/d/fixed"), std::filesystem::perms(0555));
    EXPECT_EQ(4, moveNow("/Public", "d", "/home").status());
    EXPECT_TRUE(there("Public/d/fixed/x"));
    EXPECT_THAT(onDisk("homes/anna"), ElementsAre("Plans", "Rules"));
}

TEST_F(NasMove, HolesStayHoles) {
    const std::string path = write("Public/sparse", "begin");
    std::filesystem::resize_file(path, 512 << 20);
    EXPECT_EQ(1, moveNow("/Public", "sparse", "/home").status());
    struct stat info {};
    ASSERT_EQ(0, ::stat(nas.folder().file("homes/anna/sparse").c_str(), &info));
    EXPECT_EQ(512 << 20, info.st_size);
    EXPECT_LT(info.st_blocks * 512, 1 << 20);
}

TEST_F(NasMove, TeamFoldersAreReachedInBothDirections) {
    write("homes/ben/b", "1");
    write("homes/anna/Plans/p", "2");
    EXPECT_EQ(1,
              post(cgi("func=move&sid=" + benSid + "&no_fork=1"), moveForm("/home", "b", "vtf://anna-Plans"))
                  .status());
    EXPECT_EQ(1,
              post(cgi("func=move&sid=" + benSid + "&no_fork=1"), moveForm("vtf://anna-Plans", "p", "/home"))
                  .status());
    EXPECT_EQ("1", nas.folder().read("homes/anna/Plans/b"));
    EXPECT_EQ("2", nas.folder().read("homes/ben/p"));
}

TEST_F(NasMove, WhatMayNotBeMovedStays) {
    write("Public/a", "1", 1000);
    write("Public/d/e/x", "1");
    write("Public/to/a", "2");
    write("Public/locked", "1");
    std::filesystem::permissions(disk("Public/locked"), std::filesystem::perms(0444));
    std::filesystem::create_directory(disk("Public/fixed"));
    std::filesystem::permissions(disk("Public/fixed"), std::filesystem::perms(0555));
    write("homes/anna/Rules/r", "1");
    write("homes/ben/b", "1");
    EXPECT_EQ(2, moveNow("/Public", "a", "/Public/to").status());
    EXPECT_EQ(2, moveNow("/Public", "a", "/Public").status());
    EXPECT_EQ(5, moveNow("/Public", "none", "/Public/to").status());
    EXPECT_EQ(5, moveNow("/Public", "a", "/Public/none").status());
    EXPECT_EQ(0, moveNow("/Public", "d", "/Public/d/e").status());
    EXPECT_EQ(4, moveNow("/Public", "locked", "/Public/to").status());
    EXPECT_EQ(4, moveNow("/Public", "a", "/Public/fixed").status());
    EXPECT_EQ(4, moveNow("/Public", "a", "/").status());
    EXPECT_EQ(4, moveNow("/", "Public", "/home").status());
    EXPECT_EQ(4, moveNow("/homes", "ben", "/Public").status());
    EXPECT_EQ(12, moveNow("vtf://anna-Plans", "", "/Public").status());
    const std::string ben = cgi("func=move&sid=" + benSid + "&no_fork=1");
    EXPECT_EQ(4, post(ben, moveForm("vtf://anna-Rules", "r", "/home")).status());
    EXPECT_EQ(4, post(ben, moveForm("/home", "b", "vtf://anna-Rules")).status());
    EXPECT_EQ(
        -43,
        post(moveTarget(1), checked(moveForm("/Public", "a", "/Public/d"), "/Public/a", 2, 1000)).status());
    EXPECT_EQ(
        -40,
        post(moveTarget(0), checked(moveForm("/Public", "n", "/Public/d"), "/Public/n", 2, 1000)).status());
    const NasReply refused = post(moveTarget(0), moveForm("/Public", "none", "/home"));
    EXPECT_EQ("true", refused.json()["success"].asString());
    EXPECT_FALSE(refused.json().isMember("pid"));
    EXPECT_THAT(onDisk("Public"), ElementsAre("a", "d", "fixed", "locked", "to"));
    EXPECT_EQ("2", nas.folder().read("Public/to/a"));
    EXPECT_EQ("1", nas.folder().read("homes/ben/b"));
    EXPECT_EQ("1", nas.folder().read("homes/anna/Rules/r"));
    EXPECT_EQ(
        1,
        post(moveTarget(1), checked(moveForm("/Public", "a", "/Public/d"), "/Public/a", 1, 1000)).status());
    EXPECT_EQ("1", nas.folder().read("Public/d/a"));
}

TEST_F(NasQuotaJobs, HomeTakesNoMoreThanItsQuota) {
    write("Public/big", std::string(1001, 'x'));
    write("Public/fits", std::string(1000, 'x'));
    EXPECT_EQ(9, moveNow("/Public", "big", "/home").status());
    EXPECT_EQ(
        9, post(cgi("func=move&sid=" + benSid + "&no_fork=1"), moveForm("/Public", "big", "vtf://anna-Plans"))
               .status());
    EXPECT_EQ(1, moveNow("/Public", "fits", "/home").status());
    // Inside the home nothing grows.
    EXPECT_EQ(1, moveNow("/home", "fits", "/home/Plans").status());
    EXPECT_EQ(9, put("/home", "more", "1").status());
}

TEST_F(NasMove, RequestIsExact) {
    write("Public/a", "1");
    const Fields right = moveForm("/Public", "a", "/home");
    const auto refused = [&](const std::string& target, const Fields& form, const std::string& reason) {
        const NasReply reply = post(target, form);
        EXPECT_EQ(400, reply.http) << reason;
        EXPECT_THAT(reply.body, HasSubstr(reason));
    };
    refused(cgi("func=move&sid=" + sid), right, "\\\"no_fork\\\" is missing");
    refused(cgi("func=move&sid=" + sid + "&no_fork=2"), right, "neither 0 nor 1");
    refused(manager("func=move&sid=" + sid + "&no_fork=0"), right, "not in the protocol");
    Fields form = right;
    form[4].second = "1";
    refused(moveTarget(0), form, "mode");
    form = right;
    form[1].second = "2";
    refused(moveTarget(0), form, "source_total");
    form = right;
    std::swap(form[2], form[3]);
    refused(moveTarget(0), form, "out of order");
    form.pop_back();
    refused(moveTarget(0), form, "");
    EXPECT_EQ(405, get(moveTarget(0)).http);
    EXPECT_EQ(400, get(cgi("func=get_move_status&sid=" + sid + "&pid=x")).http);
    EXPECT_EQ(400, get(cgi("func=get_move_status&pid=1&sid=" + sid)).http);
    EXPECT_EQ(400, get(cgi("func=daemon_list&sid=" + sid + "&subfunc=list&pid=1")).http);
    EXPECT_EQ(400, get(cgi("func=daemon_list&sid=" + sid + "&pid=1&subfunc=delete")).http);
    EXPECT_EQ(400, get(cgi("func=nubo_get_progress&sid=" + sid + "&pid=")).http);
    EXPECT_THAT(onDisk("Public"), ElementsAre("a"));
}

TEST_F(NasSlowJobs, ProgressAdvancesToTheEnd) {
    for (const char* target : {"/Public/to", "/home"}) {
        write("Public/d/x", std::string(200000, 'x'));
        std::filesystem::create_directories(disk("Public/to"));
        const std::vector<int> percents = finish(moveAsJob("/Public", "d", target));
        ASSERT_GT(percents.size(), 2u);
        EXPECT_TRUE(std::is_sorted(percents.begin(), percents.end()));
        EXPECT_THAT(percents, Each(testing::AllOf(testing::Ge(0), testing::Lt(100))));
        EXPECT_LT(percents.front(), percents.back());
    }
}

TEST_F(NasStuckJobs, RunningJobLeavesTheSourceInItsPlaceAndIsSeenOnBothChannels) {
    write("Public/a", "1");
    const int pid = moveAsJob("/Public", "a", "/home");
    EXPECT_EQ("a", status(pid)["filename"].asString());
    EXPECT_LT(status(pid)["percent"].asInt(), 100);
    EXPECT_THAT(nas.control("GET", "state"), HasSubstr("\"jobs\":1,"));
    EXPECT_EQ(0, progress(std::to_string(pid))["copying"].asInt());
    EXPECT_TRUE(progress(std::to_string(pid)).isMember("percent"));
    EXPECT_TRUE(there("Public/a"));
    EXPECT_FALSE(there("homes/anna/a"));
}

TEST_F(NasStuckJobs, ClearingARunningJobEndsItAndLeavesNoHalf) {
    write("Public/d/x", std::string(200000, 'x'));
    for (const char* target : {"/home", "/Public/to"}) {
        std::filesystem::create_directories(disk("Public/to"));
        const int pid = moveAsJob("/Public", "d", target);
        EXPECT_EQ(1, clear(pid).status());
        EXPECT_EQ(5, status(pid)["status"].asInt());
        EXPECT_TRUE(nas.waitForLog("job " + std::to_string(pid) + " d of anna status=0 (dropped)"));
        EXPECT_TRUE(there("Public/d/x"));
        EXPECT_THAT(onDisk("Public/to"), IsEmpty());
        EXPECT_THAT(onDisk("homes/anna"), ElementsAre("Plans", "Rules"));
    }
}

TEST_F(NasStuckJobs, JobsOfOthersAreUnknown) {
    write("Public/a", "1");
    const int pid = moveAsJob("/Public", "a", "/home");
    EXPECT_EQ(5, status(pid, benSid)["status"].asInt());
    EXPECT_EQ(5, get(cgi("func=nubo_get_progress&sid=" + benSid + "&pid=" + std::to_string(pid))).status());
    EXPECT_EQ(
        5,
        get(cgi("func=daemon_list&sid=" + benSid + "&subfunc=delete&pid=" + std::to_string(pid))).status());
    EXPECT_EQ(3, status(pid, "0123456789abcdef0123456789abcdef")["status"].asInt());
    EXPECT_EQ(1, status(pid)["status"].asInt());
}

TEST_F(NasStuckJobs, ServerEndsWithJobsRunning) {
    write("Public/a", "1");
    moveAsJob("/Public", "a", "/home");
    EXPECT_EQ(0, nas.stop());
    EXPECT_TRUE(there("Public/a"));
}

TEST_F(NasMove, FileManagerMovesAsAJobAndKeepsItUntilItIsCleared) {
    write("Public/a", "1");
    const NasReply reply = post(manager("func=move&sid=" + sid), moveForm("/Public", "a", "/home"));
    const int pid = reply.json()["pid"].asInt();
    EXPECT_GT(pid, 0);
    const std::string ask = manager("func=get_move_status&sid=" + sid + "&pid=" + std::to_string(pid));
    while (get(ask).json()["percent"].asInt() != 100) std::this_thread::yield();
    EXPECT_EQ("1", nas.folder().read("homes/anna/a"));
    for (int i = 0; i < 3; ++i) EXPECT_EQ(100, get(ask).json()["percent"].asInt());
    const NasReply cleared = clear(pid, true);
    EXPECT_EQ(1, cleared.status());
    EXPECT_EQ("true", cleared.json()["success"].asString());
    EXPECT_EQ(5, get(ask).status());
    EXPECT_EQ(5, clear(pid, true).status());
}

TEST_F(NasSlowJobs, JobThatFailsTellsItsStatusOnBothChannels) {
    for (const bool nubo : {false, true}) {
        write("Public/a", "1");
        std::filesystem::create_directories(disk("Public/to"));
        std::filesystem::remove(disk("Public/to/a"));
        const int pid = moveAsJob("/Public", "a", "/Public/to");
        write("Public/to/a", "came meanwhile");
        if (nubo) {
            Json::Value reply;
            do reply = progress(std::to_string(pid));
            while (reply["copying"].asInt() == 0);
            EXPECT_EQ(1, reply["status"].asInt());
            EXPECT_EQ(2, reply["copying"].asInt());
            EXPECT_FALSE(reply.isMember("percent"));
        } else {
            finish(pid, 2);
        }
        EXPECT_EQ("came meanwhile", nas.folder().read("Public/to/a"));
        EXPECT_EQ("1", nas.folder().read("Public/a"));
    }
}

TEST_F(NasMove, UnknownJobIsMissing) {
    EXPECT_EQ(5, status(4711)["status"].asInt());
    EXPECT_EQ(5, progress("4711")["status"].asInt());
    EXPECT_EQ(5, clear(4711).status());
    EXPECT_EQ(5, status(-1)["status"].asInt());
}

TEST_F(NasMove, LateJobIsNotRegisteredForAsManyReadingsAsArmed) {
    write("Public/a", "1");
    const int fault = nas.arm("late-job,match=get_move_status,count=3");
    const int pid = moveAsJob("/Public", "a", "/home");
    for (int i = 0; i < 3; ++i) EXPECT_EQ(-1, status(pid)["percent"].asInt());
    EXPECT_EQ(3, nas.hits(fault));
    finish(pid);
}

TEST_F(NasMove, FaultsOfTheRelayHitTheNewCallsToo) {
    write("Public/a", "1");
    nas.arm("close-before-reply,match=move");
    EXPECT_EQ("", moveNow("/Public", "a", "/home").raw);
    EXPECT_TRUE(there("homes/anna/a"));
    nas.arm("http-status,match=delete,status=503");
    EXPECT_EQ(
        503, post(cgi("func=delete&sid=" + sid), {{"file_name", "a"}, {"file_total", "1"}, {"path", "/home"}})
                 .http);
    EXPECT_TRUE(there("homes/anna/a"));
    nas.arm("garbage,match=get_move_status");
    EXPECT_TRUE(status(1).isNull());
}

TEST_F(NasTrash, DeletedFileComesBackWithItsFolders) {
    write("homes/anna/docs/sub/a.txt", "kept", 1000000001);
    post(cgi("func=delete&sid=" + sid),
         {{"file_name", "a.txt"}, {"file_total", "1"}, {"path", "/home/docs/sub"}});
    std::filesystem::remove_all(disk("homes/anna/docs"));
    EXPECT_THAT(recovered("/home/@Recycle/docs/sub", "a.txt"), HasSubstr("\"percent\" : 100"));
    EXPECT_EQ("kept", nas.folder().read("homes/anna/docs/sub/a.txt"));
    EXPECT_EQ(1000000001, timeOf(nas.folder().file("homes/anna/docs/sub/a.txt")));
    EXPECT_THAT(onDisk("homes/anna/@Recycle/docs/sub"), IsEmpty());
}

TEST_F(NasTrash, FolderComesBackToTheHomeItself) {
    write("homes/anna/@Recycle/d/x", "1");
    recovered("/home/@Recycle", "d");
    EXPECT_EQ("1", nas.folder().read("homes/anna/d/x"));
    write("homes/anna/@Recycle/e/y", "2");
    const NasReply byManager =
        get(manager("func=trash_recovery&sid=" + sid +
                    "&source_file=e&mode=0&source_total=1&source_path=%2Fhome%2F%40Recycle%2F"));
    EXPECT_EQ(1, byManager.status());
    finish(std::stoi(byManager.json()["pid"].asString()));
    EXPECT_EQ("2", nas.folder().read("homes/anna/e/y"));
}

TEST_F(NasTrash, ModeSaysWhetherAFileIsReplaced) {
    write("homes/anna/@Recycle/a", "old");
    write("homes/anna/a", "new");
    EXPECT_EQ(2, recover("/home/@Recycle", "a", 0).status());
    EXPECT_EQ("new", nas.folder().read("homes/anna/a"));
    recovered("/home/@Recycle", "a", 1);
    EXPECT_EQ("old", nas.folder().read("homes/anna/a"));
    write("homes/anna/@Recycle/d", "file");
    write("homes/anna/d/x", "folder");
    EXPECT_EQ(33, recover("/home/@Recycle", "d", 1).status());
    EXPECT_EQ("folder", nas.folder().read("homes/anna/d/x"));
    EXPECT_EQ(0, recover("/home/@Recycle", "d", 2).status());
}

TEST_F(NasTrash, WhatIsNotInARecycleFolderIsNotRecovered) {
    write("homes/anna/a", "1");
    write("Public/@Recycle/p", "1");
    write("homes/anna/@Recycle/Plans/p", "1");
    EXPECT_EQ(5, recover("/home", "a").status());
    EXPECT_EQ(5, recover("/home/@Recycle", "none").status());
    EXPECT_EQ(5, recover("/Public/@Recycle", "p").status());
    EXPECT_EQ(5, recover("/home", "@Recycle").status());
    EXPECT_EQ(5, recover("vtf://anna-Plans", "p").status());
    EXPECT_THAT(recover("/home/@Recycle", "..").status(), 4);
    EXPECT_EQ(5, get(cgi("func=trash_recovery&sid=" + benSid +
                         "&source_file=p&mode=0&source_total=1&source_path=%2Fhome%2F%40Recycle%2FPlans"))
                     .status());
    EXPECT_EQ(400, get(cgi("func=trash_recovery&sid=" + sid +
                           "&source_file=p&mode=0&source_total=2&source_path=%2Fhome%2F%40Recycle"))
                       .http);
    EXPECT_EQ(400, get(cgi("func=trash_recovery&sid=" + sid +
                           "&source_path=%2Fhome%2F%40Recycle&mode=0&source_total=1&source_file=p"))
                       .http);
}

TEST_F(NasTrash, LinkInTheWayLeadsNowhere) {
    TempDir outside;
    write("homes/anna/@Recycle/docs/a", "1");
    std::filesystem::create_directory_symlink(outside.path(), disk("homes/anna/docs"));
    EXPECT_EQ(4, recover("/home/@Recycle/docs", "a").status());
    EXPECT_TRUE(std::filesystem::is_empty(outside.path()));
}
