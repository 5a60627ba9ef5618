#include <gmock/gmock.h>

#include "nastest.h"

using testing::AnyOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using Fields = std::vector<std::pair<std::string, std::string>>;

class NasFiles : public NasTest {
protected:
    using NasTest::NasTest;

    static std::string createQuery(const std::string& sid, const std::string& path, const std::string& name) {
        return "func=createdir&sid=" + sid + "&dest_folder=" + encoded(name) + "&dest_path=" + encoded(path);
    }
    NasReply create(const std::string& path, const std::string& name) {
        return get(cgi(createQuery(sid, path, name)));
    }
    static Fields deleteForm(const std::string& path, const std::string& name) {
        return {{"file_name", name}, {"file_total", "1"}, {"path", path}};
    }
    NasReply remove(const std::string& path, const std::string& name, const Fields& more = {}) {
        return post(cgi("func=delete&sid=" + sid), joined(deleteForm(path, name), more));
    }
    static Fields renameForm(const std::string& path, const std::string& name, const std::string& newName) {
        return {{"path", path}, {"source_name", name}, {"dest_name", newName}};
    }
    NasReply rename(const std::string& path, const std::string& name, const std::string& newName,
                    const Fields& more = {}) {
        return post(cgi("func=rename&sid=" + sid), joined(renameForm(path, name, newName), more));
    }
    static Fields joined(Fields first, const Fields& second) {
        first.insert(first.end(), second.begin(), second.end());
        return first;
    }
    static Fields fileProfile(const std::string& path, std::int64_t size, std::int64_t time) {
        return {{"check_nubo_file_profile", "1"},
                {"check_nubo_file_path", path},
                {"check_nubo_file_exist", "1"},
                {"check_nubo_file_type", "0"},
                {"check_nubo_file_size", std::to_string(size)},
                {"check_nubo_file_time", std::to_string(time)}};
    }
    static Fields folderProfile(const std::string& path) {
        return {{"check_nubo_file_profile", "1"},
                {"check_nubo_file_path", path},
                {"check_nubo_file_exist", "1"},
                {"check_nubo_file_type", "1"}};
    }
    std::filesystem::path disk(const std::string& name) const { return nas.folder().path() / name; }
};

using NasCreateDir = NasFiles;
using NasDelete = NasFiles;
using NasRename = NasFiles;
using NasProfile = NasFiles;

TEST_F(NasCreateDir, FolderIsThereAfterwards) {
    const NasReply reply = create("/Public", "neu & \xc3\xa4");
    EXPECT_EQ(1, reply.status());
    EXPECT_EQ("true", reply.json()["success"].asString());
    EXPECT_TRUE(std::filesystem::is_directory(disk("Public/neu & \xc3\xa4")));
    EXPECT_EQ(1, get(manager(createQuery(sid, "/home", "m"))).status());
    EXPECT_TRUE(std::filesystem::is_directory(disk("homes/anna/m")));
    EXPECT_EQ(1, get(cgi(createQuery(benSid, "vtf://anna-Plans", "t"))).status());
    EXPECT_TRUE(std::filesystem::is_directory(disk("homes/anna/Plans/t")));
}

TEST_F(NasCreateDir, WhatCannotBeMadeAnswersWithItsStatus) {
    write("Public/file", "1");
    write("Public/folder/x", "1");
    std::filesystem::create_directory(disk("Public/fixed"));
    std::filesystem::permissions(disk("Public/fixed"), std::filesystem::perms(0555));
    EXPECT_EQ(33, create("/Public", "folder").status());
    EXPECT_EQ(2, create("/Public", "file").status());
    EXPECT_EQ(5, create("/Public/none", "x").status());
    EXPECT_EQ(5, create("/Public/file", "x").status());
    EXPECT_EQ(26, create("/Public", std::string(256, 'n')).status());
    EXPECT_EQ(12, create("/Public", "a/b").status());
    EXPECT_EQ(12, create("/Public", "").status());
    EXPECT_EQ(4, create("/Public", "..").status());
    EXPECT_EQ(4, create("/Public/fixed", "x").status());
    EXPECT_EQ(4, create("/", "share").status());
    EXPECT_EQ(4, create("/homes", "carl").status());
    EXPECT_EQ(4, get(cgi(createQuery(benSid, "vtf://anna-Rules", "x"))).status());
    EXPECT_EQ(3, get(cgi(createQuery("0123456789abcdef0123456789abcdef", "/Public", "x"))).status());
    EXPECT_THAT(onDisk("Public"), ElementsAre("file", "fixed", "folder"));
    EXPECT_THAT(onDisk("Public/fixed"), IsEmpty());
    EXPECT_EQ("true", create("/Public/none", "x").json()["success"].asString());
}

TEST_F(NasCreateDir, QueryIsExact) {
    const std::string right = createQuery(sid, "/Public", "x");
    EXPECT_EQ(400, get(cgi("func=createdir&sid=" + sid + "&dest_path=%2FPublic&dest_folder=x")).http);
    EXPECT_EQ(400, get(cgi(right + "&mode=1")).http);
    EXPECT_EQ(400, get(cgi("func=createdir&sid=" + sid + "&dest_folder=x&dest_path=/Public")).http);
    EXPECT_EQ(405, post(cgi(right), {}).http);
    EXPECT_EQ(400, get("/cgi-bin/torvi/torvisrv.fcgi?" + right).http);
    EXPECT_THAT(onDisk("Public"), IsEmpty());
    EXPECT_EQ(1, get(cgi(right)).status());
}

TEST_F(NasDelete, FileOfAHomeGoesToTheRecycleFolderUnderItsOldPath) {
    write("homes/anna/docs/sub/a.txt", "kept", 1000000001);
    const NasReply reply = remove("/home/docs/sub", "a.txt");
    EXPECT_EQ(1, reply.status());
    EXPECT_EQ("true", reply.json()["success"].asString());
    EXPECT_THAT(onDisk("homes/anna/docs/sub"), IsEmpty());
    EXPECT_EQ("kept", nas.folder().read("homes/anna/@Recycle/docs/sub/a.txt"));
    EXPECT_EQ(1000000001, timeOf(nas.folder().file("homes/anna/@Recycle/docs/sub/a.txt")));
}

TEST_F(NasDelete, FolderGoesWithAllThatItHolds) {
    write("homes/anna/docs/sub/a", "1");
    write("homes/anna/docs/b", "2");
    EXPECT_EQ(1, post(manager("func=delete&sid=" + sid), deleteForm("/home", "docs")).status());
    EXPECT_FALSE(there("homes/anna/docs"));
    EXPECT_EQ("1", nas.folder().read("homes/anna/@Recycle/docs/sub/a"));
    EXPECT_EQ("2", nas.folder().read("homes/anna/@Recycle/docs/b"));
}

TEST_F(NasDelete, NamesakesInTheRecycleFolderStayApart) {
    for (const char* content : {"first", "second", "third"}) {
        write("homes/anna/a", content);
        EXPECT_EQ(1, remove("/home", "a").status());
    }
    EXPECT_EQ("first", nas.folder().read("homes/anna/@Recycle/a"));
    EXPECT_EQ("second", nas.folder().read("homes/anna/@Recycle/a (2)"));
    EXPECT_EQ("third", nas.folder().read("homes/anna/@Recycle/a (3)"));
    // A file of the name that a folder needs.
    write("homes/anna/a/inner", "x");
    EXPECT_EQ(1, remove("/home/a", "inner").status());
    EXPECT_EQ("x", nas.folder().read("homes/anna/@Recycle/a (4)/inner"));
    // The number must not cut a character in two.
    std::string longest = "n";
    while (longest.size() < 255) longest += "\xc3\xa4";
    for (int i = 0; i < 2; ++i) {
        write("homes/anna/" + longest, "x");
        EXPECT_EQ(1, remove("/home", longest).status());
    }
    EXPECT_EQ(6u, onDisk("homes/anna/@Recycle").size());
}

TEST_F(NasDelete, TeamFolderDeletesIntoTheOwnersRecycleFolder) {
    write("homes/anna/Plans/p", "plan");
    EXPECT_EQ(1, post(cgi("func=delete&sid=" + benSid), deleteForm("vtf://anna-Plans", "p")).status());
    EXPECT_EQ("plan", nas.folder().read("homes/anna/@Recycle/Plans/p"));
    EXPECT_FALSE(there("homes/ben/@Recycle"));
}

TEST_F(NasDelete, OutsideOfHomesAndInTheRecycleFolderItIsForGood) {
    write("Public/d/e/f", "1");
    std::filesystem::create_symlink("/usr", disk("Public/d/out"));
    EXPECT_EQ(1, remove("/Public", "d").status());
    EXPECT_THAT(onDisk("Public"), IsEmpty());
    EXPECT_TRUE(std::filesystem::exists("/usr/bin"));
    write("homes/anna/@Recycle/old", "1");
    EXPECT_EQ(1, remove("/home/@Recycle", "old").status());
    EXPECT_THAT(onDisk("homes/anna/@Recycle"), IsEmpty());
    write("homes/anna/@Recycle/old", "1");
    EXPECT_EQ(1, remove("/home", "@Recycle").status());
    EXPECT_FALSE(there("homes/anna/@Recycle"));
}

TEST_F(NasDelete, RecycleFolderIsReachedByItsPathButNotListed) {
    write("homes/anna/a", "1");
    remove("/home", "a");
    EXPECT_THAT(names(get(cgi(listQuery(sid, "/home"))).json()["datas"]),
                testing::UnorderedElementsAre("Plans", "Rules"));
    EXPECT_THAT(names(get(cgi(listQuery(sid, "/home/@Recycle"))).json()["datas"]), ElementsAre("a"));
    EXPECT_EQ(4, rename("/home", "@Recycle", "x").status());
}

TEST_F(NasDelete, WhatMayNotBeDeletedStays) {
    write("Public/locked", "1");
    std::filesystem::permissions(disk("Public/locked"), std::filesystem::perms(0444));
    write("Public/fixed/x", "1");
    std::filesystem::permissions(disk("Public/fixed"), std::filesystem::perms(0555));
    write("Public/deep/fixed/x", "1");
    std::filesystem::permissions(disk("Public/deep/fixed"), std::filesystem::perms(0555));
    write("homes/anna/Rules/r", "1");
    EXPECT_EQ(4, remove("/Public", "locked").status());
    EXPECT_EQ(4, remove("/Public/fixed", "x").status());
    EXPECT_EQ(4, remove("/Public", "deep").status());
    EXPECT_EQ(4, remove("/", "Public").status());
    EXPECT_EQ(4, remove("/", "home").status());
    EXPECT_EQ(4, remove("/homes", "ben").status());
    EXPECT_EQ(12, remove("vtf://anna-Plans", "").status());
    EXPECT_EQ(5, remove("/Public", "none").status());
    EXPECT_EQ(5, remove("/Public/none", "x").status());
    EXPECT_EQ(4, post(cgi("func=delete&sid=" + benSid), deleteForm("vtf://anna-Rules", "r")).status());
    EXPECT_EQ(4, post(cgi("func=delete&sid=" + benSid), deleteForm("/homes/anna/Rules", "r")).status());
    EXPECT_EQ(3, post(cgi("func=delete&sid=0123456789abcdef0123456789abcdef"), deleteForm("/Public", "deep"))
                     .status());
    EXPECT_EQ("1", nas.folder().read("Public/locked"));
    EXPECT_EQ("1", nas.folder().read("Public/fixed/x"));
    EXPECT_EQ("1", nas.folder().read("Public/deep/fixed/x"));
    EXPECT_EQ("1", nas.folder().read("homes/anna/Rules/r"));
    EXPECT_TRUE(there("homes/ben"));
}

TEST_F(NasDelete, FormIsExact) {
    write("Public/a", "1", 1000);
    const Fields right = deleteForm("/Public", "a");
    const Fields profile = fileProfile("/Public/a", 1, 1000);
    const std::string target = cgi("func=delete&sid=" + sid);
    const auto refused = [&](Fields form, const std::string& reason) {
        const NasReply reply = post(target, form);
        EXPECT_EQ(400, reply.http) << reason;
        EXPECT_THAT(reply.body, HasSubstr(reason));
    };
    const auto swapped = [](Fields form, std::size_t a, std::size_t b) {
        std::swap(form[a], form[b]);
        return form;
    };
    const auto without = [](Fields form, std::size_t at) {
        form.erase(form.begin() + static_cast<long>(at));
        return form;
    };
    const auto with = [](Fields form, std::size_t at, const std::string& value) {
        form[at].second = value;
        return form;
    };
    const Fields checked = joined(right, profile);
    refused(swapped(right, 0, 2), "out of order");
    refused(with(right, 1, "2"), "not \\\"1\\\"");
    refused(without(right, 2), "\\\"path\\\" is missing");
    refused(joined(right, {{"force", "1"}}), "not in the protocol");
    refused(joined(right, {{"clean_thumb", "1"}}), "not in the protocol");
    refused(swapped(checked, 3, 4), "out of order");
    refused(with(checked, 3, "0"), "not \\\"1\\\"");
    refused(with(checked, 5, "0"), "not \\\"1\\\"");
    refused(with(checked, 6, "2"), "check_nubo_file_type");
    refused(with(checked, 6, "1"), "check_nubo_file_type");
    refused(with(checked, 7, "big"), "not a decimal number");
    refused(without(checked, 8), "check_nubo_file_time");
    refused(joined(joined(right, folderProfile("/Public/a")), {{"check_nubo_file_size", "1"}}),
            "check_nubo_file");
    refused(joined(checked, {{"clean_thumb", "0"}}), "not \\\"1\\\"");
    NasRequest twice = NasRequest::form(target, right);
    twice.body += "&path=%2FPublic";
    EXPECT_EQ(400, run(twice.set("Content-Length", std::to_string(twice.body.size()))).http);
    NasRequest raw = NasRequest::form(target, right);
    raw.body = "file_name=a&file_total=1&path=/Public";
    EXPECT_EQ(400, run(raw.set("Content-Length", std::to_string(raw.body.size()))).http);
    EXPECT_EQ(400, run(NasRequest::form(target, right).set("Content-Type", "text/plain")).http);
    EXPECT_EQ(400, post(target + "&path=%2FPublic", right).http);
    EXPECT_EQ(405, get(target).http);
    EXPECT_EQ("1", nas.folder().read("Public/a"));
    EXPECT_EQ(1, post(target, joined(checked, {{"clean_thumb", "1"}})).status());
    EXPECT_FALSE(there("Public/a"));
}

TEST_F(NasRename, NameChangesAndNothingElse) {
    write("Public/a", "content", 1000000001);
    const NasReply reply = rename("/Public", "a", "b +&\xe4\xb8\xad");
    EXPECT_EQ(1, reply.status());
    EXPECT_EQ("true", reply.json()["success"].asString());
    EXPECT_THAT(onDisk("Public"), ElementsAre("b +&\xe4\xb8\xad"));
    EXPECT_EQ(1000000001, timeOf(nas.folder().file("Public/b +&\xe4\xb8\xad")));
    write("homes/anna/Plans/d/x", "1");
    EXPECT_EQ(1, post(cgi("func=rename&sid=" + benSid), renameForm("vtf://anna-Plans", "d", "e")).status());
    EXPECT_EQ("1", nas.folder().read("homes/anna/Plans/e/x"));
    EXPECT_EQ(1, post(manager("func=rename&sid=" + sid), renameForm("/home/Plans", "e", "f")).status());
    EXPECT_EQ("1", nas.folder().read("homes/anna/Plans/f/x"));
}

TEST_F(NasRename, WhatMayNotBeRenamedStays) {
    write("Public/a", "1");
    write("Public/b", "2");
    write("Public/d/x", "1");
    write("Public/locked", "1");
    std::filesystem::permissions(disk("Public/locked"), std::filesystem::perms(0444));
    write("homes/anna/Rules/r", "1");
    EXPECT_EQ(2, rename("/Public", "a", "b").status());
    EXPECT_EQ(33, rename("/Public", "a", "d").status());
    EXPECT_EQ(2, rename("/Public", "a", "a").status());
    EXPECT_EQ(5, rename("/Public", "none", "c").status());
    EXPECT_EQ(5, rename("/Public/none", "a", "c").status());
    EXPECT_EQ(4, rename("/Public", "locked", "c").status());
    EXPECT_EQ(4, rename("/", "Public", "c").status());
    EXPECT_EQ(4, rename("/homes", "ben", "c").status());
    EXPECT_EQ(12, rename("/Public", "a", "d/c").status());
    EXPECT_EQ(12, rename("/Public", "a", "").status());
    EXPECT_EQ(12, rename("vtf://anna-Plans", "", "c").status());
    EXPECT_EQ(4, rename("/Public", "a", "..").status());
    EXPECT_EQ(4, rename("/Public", "a", ".torvi-nas.x").status());
    EXPECT_EQ(26, rename("/Public", "a", std::string(256, 'n')).status());
    EXPECT_EQ(4, post(cgi("func=rename&sid=" + benSid), renameForm("vtf://anna-Rules", "r", "s")).status());
    EXPECT_EQ("1", nas.folder().read("Public/a"));
    EXPECT_EQ("2", nas.folder().read("Public/b"));
    EXPECT_EQ("1", nas.folder().read("homes/anna/Rules/r"));
    EXPECT_THAT(onDisk("Public"), ElementsAre("a", "b", "d", "locked"));
}

TEST_F(NasRename, FormIsExact) {
    write("Public/a", "1");
    const std::string target = cgi("func=rename&sid=" + sid);
    Fields form = renameForm("/Public", "a", "b");
    EXPECT_EQ(400, post(target, joined(form, {{"overwrite", "1"}})).http);
    EXPECT_EQ(400, post(target, joined(form, {{"clean_thumb", "1"}})).http);
    std::swap(form[1], form[2]);
    EXPECT_EQ(400, post(target, form).http);
    form.pop_back();
    EXPECT_EQ(400, post(target, form).http);
    EXPECT_THAT(onDisk("Public"), ElementsAre("a"));
}

TEST_F(NasProfile, MatchingProfileLetsTheCallThrough) {
    write("Public/a", "12345", 1000000001);
    EXPECT_EQ(1, rename("/Public", "a", "b", fileProfile("/Public/a", 5, 1000000001)).status());
    EXPECT_EQ(1, remove("/Public", "b", fileProfile("/Public/b", 5, 1000000001)).status());
    write("Public/d/x", "1");
    EXPECT_EQ(1, rename("/Public", "d", "e", folderProfile("/Public/d")).status());
    EXPECT_EQ(1, remove("/Public", "e", folderProfile("/Public/e")).status());
    EXPECT_THAT(onDisk("Public"), IsEmpty());
    write("homes/anna/Plans/p", "1", 1000);
    EXPECT_EQ(1, post(cgi("func=delete&sid=" + benSid),
                      joined(deleteForm("vtf://anna-Plans", "p"), fileProfile("vtf://anna-Plans/p", 1, 1000)))
                     .status());
}

TEST_F(NasProfile, EachDifferenceHasItsVerdictAndChangesNothing) {
    write("Public/a", "12345", 1000000001);
    write("Public/d/x", "1");
    const auto both = [&](int status, const std::string& name, const Fields& profile) {
        EXPECT_EQ(status, remove("/Public", name, profile).status()) << name;
        EXPECT_EQ(status, rename("/Public", name, "other", profile).status()) << name;
    };
    both(-40, "none", fileProfile("/Public/none", 5, 1000000001));
    both(-40, "none", folderProfile("/Public/none"));
    both(-41, "a", fileProfile("/Public/b", 5, 1000000001));
    both(-41, "a", fileProfile("/home/a", 5, 1000000001));
    both(-41, "none", fileProfile("/Public/a", 5, 1000000001));
    both(-42, "a", folderProfile("/Public/a"));
    both(-42, "d", fileProfile("/Public/d", 5, 1000000001));
    both(-43, "a", fileProfile("/Public/a", 4, 1000000001));
    both(-43, "a", fileProfile("/Public/a", 5, 1000000000));
    EXPECT_EQ(-40, remove("/Public/none", "x", folderProfile("/Public/none/x")).status());
    EXPECT_EQ("true", remove("/Public", "none", folderProfile("/Public/none")).json()["success"].asString());
    EXPECT_EQ("12345", nas.folder().read("Public/a"));
    EXPECT_EQ("1", nas.folder().read("Public/d/x"));
    EXPECT_THAT(onDisk("Public"), ElementsAre("a", "d"));
    EXPECT_TRUE(nas.waitForLog("status=-42 (the profile's type is 1, not a file)"));
}

TEST_F(NasProfile, PathIsTheSameWithoutItsFirstSlash) {
    write("Public/a", "1", 1000);
    EXPECT_EQ(1, remove("/Public", "a", fileProfile("Public/a", 1, 1000)).status());
}
