#include <gmock/gmock.h>

#include <thread>

#include "nastest.h"

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class NasVersions : public NasTest {
protected:
    using NasTest::NasTest;

    struct Ids {
        std::string lock, version;
    };

    static std::string of(const std::string& session, const std::string& path, const std::string& name) {
        return "&sid=" + session + "&source_path=" + encoded(path) + "&source_file=" + encoded(name);
    }
    NasReply lockReply(const std::string& path, const std::string& name, const std::string& session = {}) {
        return get(
            cgi("func=versioning_lock&create_version=1" + of(session.empty() ? sid : session, path, name)));
    }
    Ids lock(const std::string& path, const std::string& name) {
        const Json::Value reply = lockReply(path, name).json();
        EXPECT_EQ(1, reply["status"].asInt()) << reply.toStyledString();
        return {reply["lockid"].asString(), reply["version_id"].asString()};
    }
    NasReply check(const Ids& ids, const std::string& session = {}) {
        return get(cgi("func=versioning_lock&check_version=1" +
                       of(session.empty() ? sid : session, "/home", "f") + "&version_id=" + ids.version +
                       "&lockid=" + ids.lock));
    }
    NasReply unlock(const Ids& ids, const std::string& session = {}) {
        return get(cgi("func=versioning_unlock" + of(session.empty() ? sid : session, "/home", "f") +
                       "&lockid=" + ids.lock));
    }
    NasReply clean(const Ids& ids) { return get(cgi("func=versioning_clean_version" + locked(ids))); }
    NasReply signature(const Ids& ids) { return get(cgi("func=versioning_gen_sig" + locked(ids))); }
    NasReply delta(const Ids& ids) { return get(cgi("func=versioning_gen_delta" + locked(ids))); }
    Json::Value statDelta(const Ids& ids) {
        return get(cgi("func=versioning_stat_delta" + of(sid, "/home", "f") + "&version_id=" + ids.version))
            .json();
    }
    NasReply commit(const Ids& ids, std::int64_t mtime = 1000000009) {
        return get(
            cgi("func=versioning_commit_upload&sid=" + sid + "&settime=1&mtime=" + std::to_string(mtime) +
                "&source_path=%2Fhome&source_file=f&lockid=" + ids.lock + "&version_id=" + ids.version));
    }
    std::string locked(const Ids& ids) const {
        return of(sid, "/home", "f") + "&lockid=" + ids.lock + "&version_id=" + ids.version;
    }
    /// Waits for the job of a reply; what it told at the end.
    Json::Value finish(const NasReply& reply) {
        const std::string pid = reply.json()["pid"].asString();
        EXPECT_NE("", pid) << reply.body;
        while (!pid.empty()) {
            const Json::Value now = get(cgi("func=nubo_get_progress&sid=" + sid + "&pid=" + pid)).json();
            if (now["copying"].asInt() != 0 || now["percent"].asInt() == 100) return now;
            std::this_thread::yield();
        }
        return {};
    }
    static std::string work(const Ids& ids) { return "/home/@Versions/" + ids.version; }
    std::string workFile(const Ids& ids, const std::string& name) const {
        return nas.folder().read("homes/anna/@Versions/" + ids.version + "/" + name);
    }
    std::vector<std::string> kept() const { return onDisk("homes/anna/@Versions"); }
};

class NasSlowVersions : public NasVersions {
protected:
    NasSlowVersions() : NasVersions({"--job-delay", "3600000"}) {}
};

class NasShortLocks : public NasVersions {
protected:
    NasShortLocks() : NasVersions({"--lock-ttl", "1"}) {}
};

class NasVersionQuota : public NasVersions {
protected:
    NasVersionQuota() : NasVersions({"--quota", "anna:1000"}) {}
};

class NasWithoutVersions : public NasVersions {
protected:
    NasWithoutVersions() : NasVersions({"--no-versioning"}) {}
};

TEST_F(NasVersions, ProbeTellsTheEngine) {
    for (const std::string& target :
         {cgi("func=versioning_probe&sid=" + sid), manager("func=versioning_probe&sid=" + sid)}) {
        const Json::Value reply = get(target).json();
        EXPECT_EQ(1, reply["status"].asInt());
        EXPECT_EQ(1, reply["versioning_enable"].asInt());
        EXPECT_EQ(1, reply["nubo_versioning_enable"].asInt());
        EXPECT_EQ("1.0", reply["versioning_version"].asString());
    }
    EXPECT_EQ(3, get(cgi("func=versioning_probe&sid=0123456789abcdef0123456789abcdef")).status());
}

TEST_F(NasWithoutVersions, ProbeSaysNoAndNothingCanBeLocked) {
    const Json::Value reply = get(cgi("func=versioning_probe&sid=" + sid)).json();
    EXPECT_EQ(1, reply["status"].asInt());
    EXPECT_EQ(0, reply["versioning_enable"].asInt());
    EXPECT_EQ("", reply["versioning_version"].asString());
    write("homes/anna/f", "1");
    EXPECT_EQ(0, lockReply("/home", "f").status());
    EXPECT_FALSE(there("homes/anna/@Versions"));
}

TEST_F(NasVersions, LockKeepsTheFileAsItIs) {
    write("homes/anna/f", "before", 1000000001);
    const Ids ids = lock("/home", "f");
    EXPECT_THAT(ids.lock, testing::MatchesRegex("[0-9a-f]{32}"));
    EXPECT_EQ("before", workFile(ids, "content"));
    EXPECT_EQ(1000000001, timeOf(nas.folder().file("homes/anna/@Versions/" + ids.version + "/content")));
    write("homes/anna/f", "after");
    EXPECT_EQ("before", workFile(ids, "content"));
    EXPECT_EQ("before", fetch(work(ids), "content").body);
    EXPECT_EQ(4, put(work(ids), "content", "forged").status());
    EXPECT_THAT(names(get(cgi(listQuery(sid, "/home"))).json()["datas"]),
                testing::UnorderedElementsAre("f", "Plans", "Rules"));
}

TEST_F(NasVersions, CheckAnswersWhetherTheLockStillHolds) {
    write("homes/anna/f", "1");
    const Ids ids = lock("/home", "f");
    EXPECT_THAT(nas.control("GET", "state"), HasSubstr("\"locks\":1,"));
    const Json::Value reply = check(ids).json();
    EXPECT_EQ(1, reply["status"].asInt());
    EXPECT_EQ(ids.lock, reply["lockid"].asString());
    EXPECT_EQ(ids.version, reply["version_id"].asString());
    // Another login of the same user goes on with the same ids, another user doesn't.
    EXPECT_EQ(1, check(ids, loginSid(nas.port(), "anna", "secret")).status());
    EXPECT_EQ(5, get(cgi("func=versioning_lock&check_version=1" + of(benSid, "vtf://anna-Plans", "f") +
                         "&version_id=" + ids.version + "&lockid=" + ids.lock))
                     .status());
    EXPECT_EQ(5, check({ids.lock, std::string(32, '0')}).status());
    EXPECT_EQ(5, check({std::string(32, '0'), ids.version}).status());
    EXPECT_EQ(1, unlock(ids).status());
    EXPECT_EQ(5, check(ids).status());
    EXPECT_EQ(5, unlock(ids).status());
}

TEST_F(NasVersions, OneLockAtATimeWhoeverAsks) {
    write("homes/anna/Plans/f", "1");
    const auto ask = [&](const std::string& session, const std::string& path) {
        return get(cgi("func=versioning_lock&create_version=1" + of(session, path, "f"))).json();
    };
    const Json::Value first = ask(benSid, "vtf://anna-Plans");
    EXPECT_EQ(1, first["status"].asInt());
    EXPECT_EQ(4, ask(sid, "/home/Plans")["status"].asInt());
    EXPECT_EQ(4, ask(sid, "vtf://anna-Plans")["status"].asInt());
    EXPECT_EQ(4, ask(benSid, "vtf://anna-Plans")["status"].asInt());
    EXPECT_EQ(4, ask(loginSid(nas.port(), "ben", "hidden"), "vtf://anna-Plans")["status"].asInt());
    EXPECT_EQ("1", nas.folder().read("homes/ben/@Versions/" + first["version_id"].asString() + "/content"));
    EXPECT_FALSE(there("homes/anna/@Versions"));
    EXPECT_EQ(5, get(cgi("func=versioning_unlock" + of(sid, "/home/Plans", "f") +
                         "&lockid=" + first["lockid"].asString()))
                     .status());
    EXPECT_EQ(1, get(cgi("func=versioning_unlock" + of(benSid, "vtf://anna-Plans", "f") +
                         "&lockid=" + first["lockid"].asString()))
                     .status());
    EXPECT_EQ(1, ask(sid, "/home/Plans")["status"].asInt());
}

TEST_F(NasVersions, LockedFileIsChangedByNobodyElse) {
    write("homes/anna/Plans/d/f", "1", 1000);
    write("homes/anna/Plans/d/free", "1");
    const Json::Value locked =
        get(cgi("func=versioning_lock&create_version=1" + of(benSid, "vtf://anna-Plans/d", "f"))).json();
    ASSERT_EQ(1, locked["status"].asInt());
    const std::string path = "/home/Plans/d";
    EXPECT_EQ(4, put(path, "f", "2").status());
    EXPECT_EQ(4,
              run(NasRequest::upload(cgi(moveQuery(sid, path, 1, 1)), "f", "2", "upload_and_move")).status());
    const std::string id = get(cgi("func=start_chunked_upload&sid=" + sid + "&upload_root_dir=%2Fhome"))
                               .json()["upload_id"]
                               .asString();
    EXPECT_EQ(4, run(NasRequest::upload(cgi("func=chunked_upload&sid=" + sid + "&upload_id=" + id +
                                            "&settime=1&mtime=1&offset=0&filesize=1&dest_path=" +
                                            encoded(path) + "&overwrite=1&upload_root_dir=%2Fhome"),
                                        "f", "2", "chunked_upload"))
                     .status());
    const auto remove = [&](const std::string& folder, const std::string& name) {
        return post(cgi("func=delete&sid=" + sid),
                    {{"file_name", name}, {"file_total", "1"}, {"path", folder}})
            .status();
    };
    EXPECT_EQ(4, remove(path, "f"));
    EXPECT_EQ(4, remove("/home/Plans", "d"));
    EXPECT_EQ(4, remove("/home", "Plans"));
    EXPECT_EQ(4,
              post(cgi("func=rename&sid=" + sid), {{"path", path}, {"source_name", "f"}, {"dest_name", "g"}})
                  .status());
    const auto move = [&](const std::string& folder, const std::string& name) {
        return post(cgi("func=move&sid=" + sid + "&no_fork=1"), {{"source_file", name},
                                                                 {"source_total", "1"},
                                                                 {"source_path", folder},
                                                                 {"dest_path", "/Public"},
                                                                 {"mode", "0"}})
            .status();
    };
    EXPECT_EQ(4, move(path, "f"));
    EXPECT_EQ(4, move("/home/Plans", "d"));
    EXPECT_EQ(4, get(cgi("func=stat&sid=" + sid + "&settime=1&mtime=1&path=" + encoded(path) +
                         "&file_total=1&file_name=f"))
                     .status());
    EXPECT_EQ("1", nas.folder().read("homes/anna/Plans/d/f"));
    EXPECT_EQ(1000, timeOf(nas.folder().file("homes/anna/Plans/d/f")));
    // What isn't locked is nobody's concern, and the lock's user may.
    EXPECT_EQ(1, remove(path, "free"));
    EXPECT_EQ(1, run(NasRequest::upload(cgi(uploadQuery(benSid, "vtf://anna-Plans/d")), "f", "2")).status());
    EXPECT_EQ(4, put(path, "f", "3").status());
    EXPECT_EQ(1, get(cgi("func=versioning_unlock" + of(benSid, "vtf://anna-Plans/d", "f") +
                         "&lockid=" + locked["lockid"].asString()))
                     .status());
    EXPECT_EQ(1, put(path, "f", "3").status());
    EXPECT_EQ(1, remove("/home/Plans", "d"));
}

TEST_F(NasVersions, WhatCannotBeLockedSaysSo) {
    write("Public/folder/x", "1");
    std::filesystem::permissions(write("Public/locked", "1"), std::filesystem::perms(0444));
    write("homes/anna/Rules/r", "1");
    EXPECT_EQ(5, lockReply("/home", "none").status());
    EXPECT_EQ(5, lockReply("/home/none", "x").status());
    EXPECT_EQ(33, lockReply("/Public", "folder").status());
    EXPECT_EQ(4, lockReply("/Public", "locked").status());
    EXPECT_EQ(4, lockReply("/Public", "..").status());
    EXPECT_EQ(4, lockReply("/", "Public").status());
    EXPECT_EQ(12, lockReply("/Public", "").status());
    EXPECT_EQ(4, lockReply("vtf://anna-Rules", "r", benSid).status());
    EXPECT_EQ(3, lockReply("/Public", "folder", "0123456789abcdef0123456789abcdef").status());
    EXPECT_FALSE(there("homes/anna/@Versions"));
    EXPECT_FALSE(there("homes/ben/@Versions"));
}

TEST_F(NasVersions, UnlockWithoutACommitLeavesNothing) {
    write("homes/anna/f", "1");
    const Ids ids = lock("/home", "f");
    EXPECT_EQ(1, unlock(ids).status());
    EXPECT_THAT(kept(), IsEmpty());
    EXPECT_EQ(0, statDelta(ids)["exist"].asInt());
}

TEST_F(NasVersions, CleanedVersionIsGoneAndTheFileFree) {
    write("homes/anna/f", "1");
    const Ids ids = lock("/home", "f");
    EXPECT_EQ(1, clean(ids).status());
    EXPECT_THAT(kept(), IsEmpty());
    EXPECT_EQ(5, clean(ids).status());
    EXPECT_EQ(5, check(ids).status());
    EXPECT_EQ(5, signature(ids).status());
    const Ids next = lock("/home", "f");
    // The old lock can still be given back, and doesn't take the new one along.
    EXPECT_EQ(1, unlock(ids).status());
    EXPECT_EQ(1, check(next).status());
}

TEST_F(NasVersions, CommitMakesWhatWasUploadedTheFileAndKeepsTheOldContent) {
    write("homes/anna/f", "before", 1000000001);
    const Ids ids = lock("/home", "f");
    EXPECT_EQ(5, commit(ids).status());
    const std::string content = noise(300000);
    EXPECT_EQ(1, put(work(ids), "upload", content).status());
    EXPECT_EQ("before", nas.folder().read("homes/anna/f"));
    const NasReply reply = commit(ids);
    EXPECT_EQ(1, reply.status());
    EXPECT_TRUE(reply.json()["pid"].isString());
    EXPECT_EQ(100, finish(reply)["percent"].asInt());
    EXPECT_TRUE(nas.folder().read("homes/anna/f") == content);
    EXPECT_EQ(1000000009, timeOf(nas.folder().file("homes/anna/f")));
    EXPECT_EQ(5, commit(ids).status());
    EXPECT_EQ(1, unlock(ids).status());
    EXPECT_EQ("before", workFile(ids, "content"));
    EXPECT_EQ("before", fetch(work(ids), "content").body);
    EXPECT_THAT(onDisk("homes/anna/@Versions/" + ids.version), ElementsAre(".torvi-nas.note", "content"));
    EXPECT_THAT(onDisk("homes/anna"), ElementsAre("@Versions", "Plans", "Rules", "f"));
}

TEST_F(NasVersions, UploadStraightToTheFileIsCommittedToo) {
    write("homes/anna/f", "before", 1000000001);
    const Ids ids = lock("/home", "f");
    EXPECT_EQ(1, put("/home", "f", "after").status());
    finish(commit(ids));
    EXPECT_EQ("after", nas.folder().read("homes/anna/f"));
    EXPECT_EQ(1000000009, timeOf(nas.folder().file("homes/anna/f")));
    EXPECT_EQ(1, unlock(ids).status());
    EXPECT_EQ("before", workFile(ids, "content"));
}

TEST_F(NasVersions, VersionsOfAFileStayApart) {
    write("homes/anna/f", "one");
    std::vector<Ids> all;
    for (const char* next : {"two", "three"}) {
        all.push_back(lock("/home", "f"));
        EXPECT_EQ(1, put(work(all.back()), "upload", next).status());
        finish(commit(all.back()));
        EXPECT_EQ(1, unlock(all.back()).status());
    }
    EXPECT_EQ("three", nas.folder().read("homes/anna/f"));
    EXPECT_EQ("one", workFile(all[0], "content"));
    EXPECT_EQ("two", workFile(all[1], "content"));
}

TEST_F(NasVersions, SignatureDescribesTheContentByItsBlocks) {
    write("homes/anna/f", noise(5000));
    const Ids ids = lock("/home", "f");
    const NasReply reply = signature(ids);
    EXPECT_EQ(1, reply.status());
    EXPECT_EQ(ids.version, reply.json()["version_id"].asString());
    EXPECT_EQ(100, finish(reply)["percent"].asInt());
    const std::string made = fetch(work(ids), "signature").body;
    EXPECT_EQ(8u + 4 + 8 + 3 * 20, made.size());
    EXPECT_EQ(std::string("TORVSIG1\x00\x08\x00\x00\x88\x13\x00\x00\x00\x00\x00\x00", 20),
              made.substr(0, 20));
    const NasReply again = signature(ids);
    EXPECT_EQ(33, again.status());
    EXPECT_EQ(100, finish(again)["percent"].asInt());
}

TEST_F(NasVersions, DeltaOfTwoContentsMakesOneIntoTheOther) {
    // A piece taken out, one put in, one changed, and the end moved by odd lengths.
    const std::string before = noise(400001);
    std::string after =
        before.substr(0, 100000) + before.substr(100777, 99000) + noise(3333, 7) + before.substr(199777);
    after[350000] = static_cast<char>(after[350000] + 1);
    for (const auto& [from, to] :
         std::vector<std::pair<std::string, std::string>>{{before, after},
                                                          {after, before},
                                                          {before, ""},
                                                          {"", after},
                                                          {before, before},
                                                          {"short", "shorter"},
                                                          {before, before + "tail"},
                                                          {before, "head" + before}}) {
        write("homes/anna/f", from);
        Ids ids = lock("/home", "f");
        finish(signature(ids));
        const std::string local = fetch(work(ids), "signature").body;
        unlock(ids);
        // The client has `from`, the server `to`.
        write("homes/anna/f", to);
        ids = lock("/home", "f");
        EXPECT_EQ(0, statDelta(ids)["exist"].asInt());
        EXPECT_EQ(1, put(work(ids), "local.signature", local).status());
        EXPECT_EQ(100, finish(delta(ids))["percent"].asInt());
        const std::string made = fetch(work(ids), "delta").body;
        EXPECT_EQ(1, statDelta(ids)["exist"].asInt());
        EXPECT_EQ(std::to_string(made.size()), statDelta(ids)["size"].asString());
        if (from.size() > 100000 && to.size() > 100000) {
            EXPECT_LT(made.size(), 20000u);
        }
        unlock(ids);
        // And the other way: the client sends what makes the server's `from` into `to`.
        write("homes/anna/f", from);
        ids = lock("/home", "f");
        EXPECT_EQ(1, put(work(ids), "upload.delta", made).status());
        EXPECT_EQ(100, finish(commit(ids))["percent"].asInt());
        EXPECT_TRUE(nas.folder().read("homes/anna/f") == to) << from.size() << " to " << to.size();
        unlock(ids);
    }
}

TEST_F(NasVersions, DeltaWithoutASignatureIsTheWholeContent) {
    const std::string content = noise(100000);
    write("homes/anna/f", content);
    const Ids ids = lock("/home", "f");
    finish(delta(ids));
    const std::string made = fetch(work(ids), "delta").body;
    EXPECT_EQ("TORVDLT1", made.substr(0, 8));
    EXPECT_GT(made.size(), content.size());
    EXPECT_EQ(1, put(work(ids), "upload.delta", made).status());
    finish(commit(ids));
    EXPECT_TRUE(nas.folder().read("homes/anna/f") == content);
}

TEST_F(NasVersions, WrongDeltaChangesNothing) {
    const std::string content = noise(5000);
    write("homes/anna/f", content);
    const Ids ids = lock("/home", "f");
    finish(delta(ids));
    const std::string right = fetch(work(ids), "delta").body;
    const std::string copyTooMuch =
        std::string("TORVDLT1\x01\x00\x00\x00\x00\x00\x00\x00\x00\x89\x13\x00\x00\x00\x00\x00\x00\x00", 26) +
        std::string(32, 'x');
    const std::string farAway = std::string(
                                    "TORVDLT1\x01\xff\xff\xff\xff\xff\xff\xff\xff\x01\x00\x00\x00\x00\x00"
                                    "\x00\x00\x00",
                                    26) +
                                std::string(32, 'x');
    std::string huge = "TORVDLT1";
    huge += std::string("\x02\xff\xff\xff\xff", 5) + std::string(100, 'x');
    std::string changed = right;
    changed[100] = static_cast<char>(changed[100] + 1);
    for (const std::string& wrong :
         {std::string(), std::string("no delta at all"), right.substr(0, right.size() - 1), right + "x",
          changed, copyTooMuch, farAway, huge, std::string("TORVDLT1\x07", 9) + std::string(99, 'x')}) {
        EXPECT_EQ(1, put(work(ids), "upload.delta", wrong).status());
        const Json::Value end = finish(commit(ids));
        EXPECT_EQ(-1, end["copying"].asInt());
        EXPECT_TRUE(nas.folder().read("homes/anna/f") == content);
    }
    EXPECT_THAT(onDisk("homes/anna"), ElementsAre("@Versions", "Plans", "Rules", "f"));
    EXPECT_EQ(1, put(work(ids), "local.signature", "no signature").status());
    EXPECT_EQ(-1, finish(delta(ids))["copying"].asInt());
    EXPECT_EQ(1, put(work(ids), "local.signature",
                     std::string("TORVSIG1\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff\x7f", 20))
                     .status());
    EXPECT_EQ(-1, finish(delta(ids))["copying"].asInt());
}

TEST_F(NasSlowVersions, RunningJobIsToldAndHoldsTheLock) {
    write("homes/anna/f", noise(5000));
    const Ids ids = lock("/home", "f");
    const NasReply first = signature(ids);
    EXPECT_EQ(1, first.status());
    const NasReply again = signature(ids);
    EXPECT_EQ(34, again.status());
    EXPECT_EQ(first.json()["pid"].asString(), again.json()["pid"].asString());
    EXPECT_EQ(34, delta(ids).status());
    EXPECT_EQ(0, commit(ids).status());
    EXPECT_EQ(0, unlock(ids).status());
    EXPECT_EQ(0, clean(ids).status());
    const std::string clear =
        cgi("func=daemon_list&sid=" + sid + "&subfunc=delete&pid=" + first.json()["pid"].asString());
    EXPECT_EQ(1, get(clear).status());
    EXPECT_EQ(1, unlock(ids).status());
    EXPECT_TRUE(nas.waitForLog("(dropped)"));
}

TEST_F(NasShortLocks, LockThatRestsIsGone) {
    write("homes/anna/Plans/f", "1");
    EXPECT_EQ(
        1, get(cgi("func=versioning_lock&create_version=1" + of(benSid, "vtf://anna-Plans", "f"))).status());
    while (lockReply("/home/Plans", "f").status() != 1) std::this_thread::yield();
    EXPECT_EQ(1, put("/home/Plans", "f", "2").status());
}

TEST_F(NasVersions, LockOutlivesTheLoginThatTookIt) {
    write("homes/anna/f", "1");
    const Ids ids = lock("/home", "f");
    get("/cgi-bin/torvi/torvisrv_logout.cgi?sid=" + sid + "&logout=1");
    EXPECT_EQ(3, check(ids).status());
    sid = loginSid(nas.port(), "anna", "secret");
    EXPECT_EQ(1, check(ids).status());
}

TEST_F(NasVersions, VersionsOutliveTheServerAndLocksDoNot) {
    write("homes/anna/f", "one");
    Ids done = lock("/home", "f");
    put(work(done), "upload", "two");
    finish(commit(done));
    unlock(done);
    const Ids open = lock("/home", "f");
    nas.stop();
    setTime(nas.folder().file("homes/anna/@Versions/" + open.version), 1000);
    setTime(nas.folder().file("homes/anna/@Versions/" + done.version), 1000);
    Nas::Options options;
    options.root = nas.root();
    Nas next(options);
    // What was never finished goes by its age.
    EXPECT_THAT(kept(), ElementsAre(done.version));
    const std::string session = loginSid(next.port(), "anna", "secret");
    const auto call = [&](const std::string& query) {
        return exchange(next.port(), NasRequest::get(cgi(query))).status();
    };
    EXPECT_EQ(5, call("func=versioning_lock&check_version=1" + of(session, "/home", "f") +
                      "&version_id=" + done.version + "&lockid=" + done.lock));
    EXPECT_EQ(1, call("func=versioning_lock&create_version=1" + of(session, "/home", "f")));
    EXPECT_EQ("one", workFile(done, "content"));
}

TEST_F(NasVersions, VersionBelongsToItsFileAndUser) {
    write("homes/anna/f", "1");
    write("homes/anna/g", "1");
    const Ids ids = lock("/home", "f");
    finish(delta(ids));
    EXPECT_EQ(1, statDelta(ids)["exist"].asInt());
    const auto ask = [&](const std::string& session, const std::string& path, const std::string& name,
                         const std::string& version) {
        return get(cgi("func=versioning_stat_delta" + of(session, path, name) +
                       "&version_id=" + encoded(version)))
            .json();
    };
    for (const Json::Value& reply :
         {ask(sid, "/home", "g", ids.version), ask(benSid, "/home", "f", ids.version),
          ask(sid, "/home", "f", "../" + ids.version), ask(sid, "/home", "f", std::string(32, '0'))}) {
        EXPECT_EQ(5, reply["status"].asInt());
        EXPECT_EQ(0, reply["exist"].asInt());
        EXPECT_FALSE(reply.isMember("size"));
    }
    EXPECT_EQ(5, get(cgi("func=versioning_gen_sig" + of(sid, "/home", "g") + "&lockid=" + ids.lock +
                         "&version_id=" + ids.version))
                     .status());
}

TEST_F(NasVersionQuota, CommitKeepsTheQuotaAndVersionsCostNothing) {
    write("homes/anna/f", std::string(600, 'x'));
    Ids ids = lock("/home", "f");
    EXPECT_EQ(1, put(work(ids), "upload", std::string(900, 'y')).status());
    finish(commit(ids));
    EXPECT_EQ(900u, nas.folder().read("homes/anna/f").size());
    const std::string whole = [&] {
        write("Public/big", std::string(1001, 'z'));
        const Json::Value reply = lockReply("/Public", "big").json();
        const Ids other{reply["lockid"].asString(), reply["version_id"].asString()};
        finish(get(cgi("func=versioning_gen_delta" + of(sid, "/Public", "big") + "&lockid=" + other.lock +
                       "&version_id=" + other.version)));
        return workFile(other, "delta");
    }();
    EXPECT_EQ(1, put(work(ids), "upload.delta", whole).status());
    EXPECT_EQ(9, finish(commit(ids))["copying"].asInt());
    EXPECT_EQ(900u, nas.folder().read("homes/anna/f").size());
}

TEST_F(NasVersions, FileManagerServesThemAndKeepsTheirJobs) {
    write("homes/anna/f", "1");
    const Json::Value ids =
        get(manager("func=versioning_lock&create_version=1" + of(sid, "/home", "f"))).json();
    const std::string both =
        "&lockid=" + ids["lockid"].asString() + "&version_id=" + ids["version_id"].asString();
    const NasReply reply = get(manager("func=versioning_gen_sig" + of(sid, "/home", "f") + both));
    EXPECT_EQ(1, reply.status());
    finish(reply);
    EXPECT_EQ(100, finish(reply)["percent"].asInt());
    EXPECT_EQ(1, get(manager("func=versioning_unlock" + of(sid, "/home", "f") +
                             "&lockid=" + ids["lockid"].asString()))
                     .status());
}

TEST_F(NasVersions, QueriesAreExact) {
    write("homes/anna/f", "1");
    const std::string file = of(sid, "/home", "f");
    for (const std::string& query :
         {std::string("func=versioning_probe"), "func=versioning_probe&sid=" + sid + "&more=1",
          "func=versioning_lock" + file, "func=versioning_lock&create_version=0" + file,
          "func=versioning_lock&create_version=1" + file + "&lockid=1",
          "func=versioning_lock&check_version=1" + file,
          "func=versioning_lock&check_version=1" + file + "&lockid=1&version_id=1",
          "func=versioning_lock&create_version=1&source_path=%2Fhome&source_file=f&sid=" + sid,
          "func=versioning_unlock" + file, "func=versioning_unlock" + file + "&lockid=1&version_id=1",
          "func=versioning_clean_version" + file + "&version_id=1&lockid=1",
          "func=versioning_gen_sig" + file + "&version_id=1&lockid=1",
          "func=versioning_gen_delta" + file + "&lockid=1",
          "func=versioning_stat_delta" + file + "&lockid=1&version_id=1",
          "func=versioning_commit_upload" + file + "&lockid=1&version_id=1",
          "func=versioning_commit_upload&sid=" + sid +
              "&settime=1&mtime=x&source_path=%2Fhome&source_file=f&lockid=1&version_id=1",
          "func=versioning_commit_upload&sid=" + sid +
              "&settime=1&mtime=-1&source_path=%2Fhome&source_file=f&lockid=1&version_id=1",
          "func=versioning_commit_upload&sid=" + sid +
              "&settime=0&mtime=1&source_path=%2Fhome&source_file=f&lockid=1&version_id=1"}) {
        EXPECT_EQ(400, get(cgi(query)).http) << query;
    }
    EXPECT_EQ(405, post(cgi("func=versioning_lock&create_version=1" + file), {}).http);
    EXPECT_FALSE(there("homes/anna/@Versions"));
}

TEST_F(NasVersions, LinkInThePlaceOfTheVersionsLeadsNowhere) {
    TempDir outside;
    write("homes/anna/f", "1");
    std::filesystem::create_directory_symlink(outside.path(), nas.folder().path() / "homes/anna/@Versions");
    EXPECT_EQ(4, lockReply("/home", "f").status());
    EXPECT_TRUE(std::filesystem::is_empty(outside.path()));
}
