#include "cli_cluster.h"

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using testing::UnorderedElementsAre;
using Json = nlohmann::json;

namespace {

/// One value of each item.
std::vector<Json> all(const Json& items, const char* key) {
    std::vector<Json> values;
    for (const Json& item : items) values.push_back(item[key]);
    return values;
}

Json named(const Json& items, const std::string& name) {
    for (const Json& item : items) {
        if (item["name"] == name) return item;
    }
    return nullptr;
}

/// anna has a folder; ben and carl are there to receive it.
class CliSharing : public CliOnRoads {
protected:
    explicit CliSharing(std::vector<std::string> more = {}) : CliOnRoads(withCarl(std::move(more))) {
        ben.become("ben", "hidden");
        carl.become("carl", "third");
        serve("Plans/plan", "first");
    }
    static Nas::Options withCarl(std::vector<std::string> more) {
        more.insert(more.end(), {"--user", "carl:third"});
        return nasWith(std::move(more));
    }

    Json share(std::vector<std::string> users, const std::string& path = "/home/Plans") {
        users.insert(users.begin(), {"team", "share", path});
        return runJson(users);
    }
    Json accept(const Cli& who, const std::string& folder = "Plans") {
        return jsonOf(who, {"team", "accept", folder});
    }
    Json folders(const Cli& who) { return jsonOf(who, {"team", "list"})["folders"]; }

    /// In a folder that was accepted so.
    static ProcessResult in(const Json& accepted, const Cli& who, std::vector<std::string> arguments) {
        if (accepted["team"].is_string())
            arguments.insert(arguments.end(), {"--team", accepted["team"].get<std::string>()});
        return who.run(std::move(arguments));
    }
    static bool reaches(const Cli& who, const Json& accepted) {
        return in(accepted, who, {"ls", accepted["path"].get<std::string>()}).exitCode == 0;
    }

    Cli ben{nas, GetParam()};
    Cli carl{nas, GetParam()};
};

class CliSharingRoles : public CliSharing {};

/// Jobs take a while.
class CliSharingSlowly : public CliSharing {
protected:
    CliSharingSlowly() : CliSharing({"--job-delay", "600"}) {}
};

/// The folders that the sync service tells of.
class CliSharingOnSync : public CliSharing {};
class CliSharingOnOlder : public CliSharing {};

class CliUsers : public CliOnRoads {
protected:
    CliUsers()
        : CliOnRoads(nasWith({"--user", "carl:third", "--user", "dora:fourth", "--no-sync-for", "dora",
                              "--directory", "PINE:pine.example", "--user", "PINE\\erik:fifth",
                              "--directory-user", "PINE:frida", "--description", "ben:The gardener"})) {}

    std::vector<Json> names(std::vector<std::string> more) {
        more.insert(more.begin(), "users");
        return all(runJson(std::move(more))["users"], "name");
    }
};

class CliSharingCluster : public CliClusterTest {};

}  // namespace

CLI_ON_ALL_ROADS(CliSharing);
// What doesn't differ by the way to the server.
CLI_ON_ROADS(CliSharingRoles, (std::vector<CliRoad>{{}, {false, false, true}}));
CLI_ON_ROADS(CliSharingSlowly, (std::vector<CliRoad>{{}, {false, false, true}}));
CLI_ON_ROADS(CliSharingOnSync, syncRoads());
CLI_ON_ROADS(CliSharingOnOlder, (std::vector<CliRoad>{{false, false, true}, {true, false, true}}));
CLI_ON_ALL_ROADS(CliUsers);

TEST_P(CliSharing, AnInvitationWaitsUntilItIsAccepted) {
    const Json shared = share({"ben"});
    EXPECT_EQ(shared["state"], "done");
    EXPECT_EQ(shared["users"], Json({"ben"}));
    const Json invited = folders(ben);
    ASSERT_EQ(invited.size(), 1u) << invited;
    EXPECT_EQ(invited[0]["roleName"], "invited");
    EXPECT_EQ(invited[0]["owner"], "anna");
    EXPECT_EQ(invited[0]["name"], "Plans");
    EXPECT_EQ(invited[0]["path"], "");
    EXPECT_EQ(invited[0]["shareId"], shared["shareId"]);
    EXPECT_NE(ben.run({"ls", "/home/.Torvi/Plans"}).exitCode, 0);
    EXPECT_EQ(folders(cli)[0]["members"][0]["stateName"], "waiting");

    const Json accepted = accept(ben);
    EXPECT_EQ(accepted["path"], "/home/.Torvi/Plans");
    EXPECT_EQ(accepted["owner"], "anna");
    EXPECT_EQ(accepted["team"].is_string(), !GetParam().older);
    const Json received = folders(ben);
    ASSERT_EQ(received.size(), 1u) << received;
    EXPECT_EQ(received[0]["roleName"], "received");
    EXPECT_EQ(received[0]["path"], "/home/.Torvi/Plans");
    EXPECT_EQ(folders(cli)[0]["members"][0]["stateName"], "accepted");

    const ProcessResult got = in(accepted, ben, {"get", "/home/.Torvi/Plans/plan"});
    EXPECT_EQ(got.exitCode, 0) << got.err;
    EXPECT_EQ(ben.work().read("plan"), "first");
    const ProcessResult put =
        in(accepted, ben, {"put", ben.work().write("answer", "second"), "/home/.Torvi/Plans/"});
    EXPECT_EQ(put.exitCode, 0) << put.err;
    EXPECT_EQ(nas.folder().read(home + "Plans/answer"), "second");
    EXPECT_FALSE(reaches(carl, accepted));
}

TEST_P(CliSharing, AnInvitationThatIsDeniedIsOver) {
    share({"ben"});
    EXPECT_EQ(jsonOf(ben, {"team", "deny", "Plans"})["denied"], true);
    EXPECT_THAT(folders(ben), IsEmpty());
    const Json own = folders(cli);
    ASSERT_EQ(own.size(), 1u);
    EXPECT_EQ(own[0]["path"], "/home/Plans");
    EXPECT_THAT(own[0]["members"], IsEmpty());
    const ProcessResult late = ben.run({"team", "accept", "Plans"});
    EXPECT_EQ(late.exitCode, 5);
    EXPECT_THAT(late.err, HasSubstr("no such invitation"));
}

TEST_P(CliSharing, LeavingTakesTheFolderAway) {
    share({"ben"});
    const Json accepted = accept(ben);
    ASSERT_TRUE(reaches(ben, accepted));
    EXPECT_EQ(jsonOf(ben, {"team", "leave", "/home/.Torvi/Plans"})["left"], true);
    EXPECT_FALSE(reaches(ben, accepted));
    EXPECT_THAT(folders(ben), IsEmpty());
    EXPECT_THAT(folders(cli)[0]["members"], IsEmpty());
    EXPECT_EQ(nas.folder().read(home + "Plans/plan"), "first");
}

TEST_P(CliSharing, KickingTakesTheFolderFromThatUserAlone) {
    share({"ben", "carl"});
    const Json bens = accept(ben);
    const Json carls = accept(carl);
    EXPECT_EQ(runJson({"team", "kick", "/home/Plans", "ben"})["state"], "done");
    EXPECT_FALSE(reaches(ben, bens));
    EXPECT_TRUE(reaches(carl, carls));
    EXPECT_THAT(folders(ben), IsEmpty());
    // The last one goes another way.
    EXPECT_EQ(cli.run({"team", "kick", "Plans", "carl"}).exitCode, 0);
    EXPECT_FALSE(reaches(carl, carls));
    EXPECT_THAT(folders(cli)[0]["members"], IsEmpty());
    EXPECT_EQ(cli.run({"team", "kick", "Plans", "carl"}).exitCode, 5);
}

TEST_P(CliSharing, UnsharingTakesTheFolderFromEverybodyButItsOwner) {
    share({"ben", "carl"});
    const Json bens = accept(ben);
    ASSERT_TRUE(reaches(ben, bens));
    const Json over = runJson({"team", "unshare", "Plans"});
    EXPECT_EQ(over["state"], "done");
    EXPECT_THAT(over["users"], UnorderedElementsAre("ben", "carl"));
    EXPECT_FALSE(reaches(ben, bens));
    for (const Cli* who : {&cli, &ben, &carl}) EXPECT_THAT(folders(*who), IsEmpty());
    EXPECT_EQ(nas.folder().read(home + "Plans/plan"), "first");
    EXPECT_EQ(cli.run({"team", "unshare", "Plans"}).exitCode, 5);
}

TEST_P(CliSharing, MembersAreReadInvitedLimitedAndRemoved) {
    const Json shared = share({"ben"});
    const Json accepted = accept(ben);
    const std::string id = shared["shareId"];
    const std::vector<std::string> put = {"put", ben.work().write("note", "1"), "/home/.Torvi/Plans/"};

    EXPECT_EQ(runJson({"team", "set-member", id, "ben=read", "carl=write"})["state"], "done");
    EXPECT_EQ(in(accepted, ben, put).exitCode, 6);
    const Json members = runJson({"team", "members", id})["members"];
    ASSERT_EQ(members.size(), 2u) << members;
    EXPECT_EQ(named(members, "ben")["stateName"], "accepted");
    EXPECT_EQ(named(members, "carl")["stateName"], "waiting");
    if (!GetParam().older) {
        EXPECT_EQ(named(members, "ben")["permission"], 1);
        EXPECT_EQ(named(members, "carl")["permission"], 2);
    }
    EXPECT_EQ(runJson({"team", "set-member", id, "ben=write", "carl=none"})["state"], "done");
    EXPECT_EQ(in(accepted, ben, put).exitCode, 0);
    EXPECT_THAT(all(runJson({"team", "members", id})["members"], "name"), ElementsAre("ben"));
    const Json candidates = runJson({"team", "members", id, "--candidates"})["members"];
    EXPECT_EQ(named(candidates, "carl")["member"], false);
    EXPECT_EQ(named(candidates, "ben")["member"], true);
    EXPECT_TRUE(named(candidates, "anna").is_null());
    EXPECT_THAT(folders(carl), IsEmpty());
    EXPECT_EQ(cli.run({"team", "set-member", id, "carl=none"}).exitCode, 5);
}

TEST_P(CliSharing, ADryRunTellsAndDoesNothing) {
    share({"ben"});
    const Json accepted = accept(ben);
    nas.forgetRequests();
    EXPECT_THAT(ben.run({"team", "leave", "Plans", "--dry-run"}).out,
                HasSubstr("would leave /home/.Torvi/Plans"));
    EXPECT_THAT(cli.run({"team", "kick", "Plans", "ben", "--dry-run"}).out, HasSubstr("would kick ben"));
    EXPECT_THAT(cli.run({"team", "unshare", "Plans", "--dry-run"}).out,
                HasSubstr("would unshare /home/Plans (ben)"));
    EXPECT_THAT(cli.run({"team", "set-member", "Plans", "ben=none", "carl=read", "--dry-run"}).out,
                AllOf(HasSubstr("would take it from ben"), HasSubstr("would invite carl to read")));
    EXPECT_EQ(runJson({"team", "unshare", "Plans", "--dry-run"})["state"], "planned");
    const Json requests = Json::parse(nas.control("GET", "requests"))["by_func"];
    for (const auto& [func, count] : requests.items()) {
        EXPECT_THAT(func, Not(testing::AnyOf(HasSubstr("leave"), HasSubstr("kick"), HasSubstr("unshare"),
                                             HasSubstr("set_"))));
    }
    EXPECT_TRUE(reaches(ben, accepted));
}

TEST_P(CliSharingRoles, OfSeveralFoldersOfOneNameTheIdTellsWhichIsMeant) {
    nas.folder().write("homes/carl/Plans/other", "2");
    const std::string annas = share({"ben"})["shareId"];
    const std::string carls = jsonOf(carl, {"team", "share", "/home/Plans", "ben"})["shareId"];
    const ProcessResult unclear = ben.run({"team", "accept", "Plans"});
    EXPECT_EQ(unclear.exitCode, 2);
    EXPECT_THAT(unclear.err, AllOf(HasSubstr(annas), HasSubstr(carls)));
    EXPECT_EQ(accept(ben, carls)["owner"], "carl");
    if (GetParam().older) {
        EXPECT_EQ(accept(ben, annas)["path"], "/home/.Torvi/Plans (2)");
        return;
    }
    const ProcessResult taken = ben.run({"team", "accept", annas});
    EXPECT_EQ(taken.exitCode, 10) << taken.err;
    EXPECT_THAT(taken.err, HasSubstr("--name"));
    EXPECT_EQ(jsonOf(ben, {"team", "accept", annas, "--name", "Annas"})["path"], "/home/.Torvi/Annas");
}

TEST_P(CliSharingRoles, ListsAreNarrowedByRoleUserAndPath) {
    serve("Plans/inner/a", "1");
    nas.folder().write("homes/ben/Bens/b", "2");
    share({"ben"});
    share({"carl"}, "/home/Plans/inner");
    jsonOf(ben, {"team", "share", "/home/Bens", "anna"});
    const auto names = [&](std::vector<std::string> more) {
        more.insert(more.begin(), {"team", "list"});
        return all(runJson(std::move(more))["folders"], "name");
    };
    EXPECT_THAT(names({}), UnorderedElementsAre("Plans", "inner", "Bens"));
    EXPECT_THAT(names({"--own"}), UnorderedElementsAre("Plans", "inner"));
    EXPECT_THAT(names({"--invited"}), ElementsAre("Bens"));
    EXPECT_THAT(names({"--received"}), IsEmpty());
    EXPECT_THAT(names({"--with", "carl"}), ElementsAre("inner"));
    EXPECT_THAT(names({"--with", "ben"}), UnorderedElementsAre("Plans", "Bens"));
    EXPECT_THAT(names({"--path", "/home/Plans/inner"}), ElementsAre("inner"));
    EXPECT_THAT(names({"--path", "/home/Plans/"}), UnorderedElementsAre("Plans", "inner"));
}

TEST_P(CliSharingRoles, TablesAreForReaders) {
    share({"ben", "carl"});
    accept(ben);
    EXPECT_THAT(cli.run({"team", "list"}).out,
                AllOf(HasSubstr("NAME   ROLE  OWNER  PATH         MEMBERS"),
                      HasSubstr("Plans  own   anna   /home/Plans  ben, carl (waiting)")));
    EXPECT_THAT(ben.run({"team", "list"}).out, HasSubstr("received  anna   /home/.Torvi/Plans"));
    EXPECT_THAT(cli.run({"team", "members", "Plans"}).out,
                AllOf(HasSubstr("USER  STATE"), HasSubstr("carl  waiting")));
    EXPECT_EQ(cli.run({"team", "list", "--received"}).out, "There are none\n");
}

TEST_P(CliSharingRoles, WhatCannotBeSharedIsSaidPlainly) {
    serve("file", "1");
    const ProcessResult stranger = cli.run({"team", "share", "/home/Plans", "nobody"});
    EXPECT_EQ(stranger.exitCode, 5);
    EXPECT_THAT(stranger.err, HasSubstr("torvi users"));
    EXPECT_EQ(cli.run({"team", "share", "/home/file", "ben"}).exitCode, 2);
    EXPECT_EQ(cli.run({"team", "share", "/home/nowhere", "ben"}).exitCode, 5);
    EXPECT_EQ(cli.run({"team", "share", "/home/Plans", "anna"}).exitCode, 6);
    EXPECT_EQ(cli.run({"team", "share", "/home/Plans"}).exitCode, 2);
    EXPECT_EQ(cli.run({"team", "set-member", "Plans", "ben=perhaps"}).exitCode, 2);
    EXPECT_EQ(cli.run({"team", "unshare", "/home/Plans"}).exitCode, 5);
    EXPECT_EQ(cli.run({"team"}).exitCode, 2);
    EXPECT_THAT(folders(cli), IsEmpty());
    share({"ben"});
    const Json accepted = accept(ben);
    EXPECT_EQ(in(accepted, ben, {"team", "share", "/home/.Torvi/Plans", "carl"}).exitCode, 6);
}

TEST_P(CliSharingSlowly, JobsAreWaitedForOrNamed) {
    const ProcessResult shared = cli.run({"team", "share", "/home/Plans", "ben"});
    EXPECT_EQ(shared.exitCode, 0) << shared.err;
    EXPECT_THAT(shared.err, HasSubstr("sharing Plans"));
    const Json accepted = accept(ben);
    // The reply doesn't wait for these.
    EXPECT_EQ(ben.run({"team", "leave", "Plans"}).exitCode, 0);
    EXPECT_FALSE(reaches(ben, accepted));

    const Json detached = runJson({"team", "share", "/home/Plans", "ben", "--detach"});
    EXPECT_EQ(detached["state"], "started");
    EXPECT_EQ(runJson({"jobs", detached["pid"], "--wait"})["done"], true);
    EXPECT_EQ(folders(ben).size(), 1u);
    accept(ben);
    EXPECT_EQ(runJson({"team", "kick", "Plans", "ben"})["state"], "done");
    EXPECT_FALSE(reaches(ben, accepted));
    const Json over = runJson({"team", "unshare", "Plans", "--detach"});
    EXPECT_EQ(over["state"], "started");
    EXPECT_EQ(cli.run({"jobs", over["pid"], "--wait", "--quiet"}).exitCode, 0);
    EXPECT_THAT(folders(cli), IsEmpty());
}

TEST_P(CliSharingSlowly, AJobThatFailsIsAFailure) {
    answer("nubo_get_progress", R"({"status":1,"copying":4})");
    const ProcessResult result = cli.run({"team", "share", "/home/Plans", "ben"});
    EXPECT_EQ(result.exitCode, 6);
    EXPECT_THAT(result.err, HasSubstr("job "));
}

TEST_P(CliSharingOnSync, ReceivedFoldersAreRememberedInTheProfile) {
    share({"ben"});
    ASSERT_EQ(ben.run({"login"}).exitCode, 0);
    accept(ben);
    EXPECT_NE(ben.run({"ls", "/home/.Torvi/Plans"}).exitCode, 0);
    EXPECT_EQ(jsonOf(ben, {"team", "list", "--remember"})["remembered"], 1);
    EXPECT_EQ(ben.run({"ls", "/home/.Torvi/Plans"}).exitCode, 0);
    jsonOf(ben, {"team", "leave", "Plans"});
    EXPECT_EQ(jsonOf(ben, {"team", "list", "--remember"})["remembered"], 0);
    EXPECT_EQ(cli.run({"team", "list", "--remember"}).exitCode, 2);
}

TEST_P(CliSharingOnSync, EventsAreTheOlderServices) {
    const ProcessResult result = cli.run({"team", "events"});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_THAT(result.err, HasSubstr("torvi team list"));
}

TEST_P(CliSharingOnOlder, EventsTellWhatBecameOfEachInvitationUntilTheyAreRemoved) {
    share({"ben", "carl"});
    accept(ben);
    jsonOf(carl, {"team", "deny", "Plans"});
    const Json events = runJson({"team", "events"})["events"];
    ASSERT_EQ(events.size(), 2u) << events;
    EXPECT_THAT(all(events, "with"), UnorderedElementsAre("ben", "carl"));
    const Json& live = events[0]["with"] == "ben" ? events[0] : events[1];
    const Json& over = events[0]["with"] == "ben" ? events[1] : events[0];
    EXPECT_EQ(live["roleName"], "own");
    EXPECT_EQ(live["stateName"], "accepted");
    EXPECT_EQ(over["roleName"], "over");
    EXPECT_EQ(over["stateName"], "denied");
    EXPECT_EQ(over["path"], "/home/Plans");
    EXPECT_THAT(cli.run({"team", "events"}).out, HasSubstr("over  denied    carl"));

    const auto remove = [&](const Json& event) { return std::to_string(event["event"].get<int>()); };
    const ProcessResult kept = cli.run({"team", "events", "--remove", remove(live)});
    EXPECT_EQ(kept.exitCode, 1) << kept.err;
    EXPECT_THAT(kept.err, HasSubstr("only what is over"));
    EXPECT_EQ(runJson({"team", "events", "--remove", remove(over)})["count"], 1);
    // Everybody has a list of one's own.
    EXPECT_EQ(jsonOf(carl, {"team", "events"})["count"], 1);
}

TEST_P(CliSharingOnOlder, AnInvitationGoesByTheNumberOfItsEvent) {
    share({"ben"});
    const int number = folders(ben)[0]["event"];
    EXPECT_EQ(accept(ben, std::to_string(number))["path"], "/home/.Torvi/Plans");
    EXPECT_EQ(ben.run({"team", "accept", "Plans", "--name", "Mine"}).exitCode, 2);
    const ProcessResult remembered = ben.run({"team", "list", "--remember"});
    EXPECT_EQ(remembered.exitCode, 2);
    EXPECT_THAT(remembered.err, HasSubstr("no profile"));
    ASSERT_EQ(ben.run({"login"}).exitCode, 0);
    const ProcessResult needless = ben.run({"team", "list", "--remember"});
    EXPECT_EQ(needless.exitCode, 2);
    EXPECT_THAT(needless.err, HasSubstr("where they are seen"));
}

TEST_P(CliUsers, AreListedPageByPage) {
    const Json everybody = runJson({"users", "--page-size", "1"});
    EXPECT_THAT(all(everybody["users"], "name"), ElementsAre("anna", "ben", "carl"));
    EXPECT_EQ(everybody["total"], 3);
    EXPECT_EQ(nas.requestCount("nubo_get_user_list"), 3);
    const Json second = runJson({"users", "--offset", "1", "--limit", "1"});
    EXPECT_THAT(all(second["users"], "name"), ElementsAre("ben"));
    EXPECT_EQ(second["total"], 3);
    EXPECT_EQ(second["users"][0]["description"], "The gardener");
    EXPECT_THAT(cli.run({"users", "--offset", "1", "--limit", "1"}).out, HasSubstr("2 to 2 of 3"));
    EXPECT_THAT(names({"--offset", "7"}), IsEmpty());
    EXPECT_THAT(names({"--all"}), ElementsAre("anna", "ben", "carl", "dora"));
}

TEST_P(CliUsers, AreFilteredByTheirNames) {
    EXPECT_THAT(names({"--filter", "AR"}), ElementsAre("carl"));
    EXPECT_THAT(names({"--filter", "a"}), ElementsAre("anna", "carl"));
    EXPECT_THAT(names({"--filter", "xyz"}), IsEmpty());
    EXPECT_EQ(cli.run({"users", "--filter", "xyz"}).out, "There are none\n");
}

TEST_P(CliUsers, OfADirectoryAreListedByEitherOfItsNames) {
    EXPECT_EQ(cli.run({"users", "--directories"}).out, "NETBIOS  DOMAIN\nPINE     pine.example\n");
    EXPECT_THAT(names({"--directory", "pine"}), ElementsAre("PINE\\erik"));
    EXPECT_THAT(names({"--directory", "Pine.Example", "--all"}), ElementsAre("PINE\\erik", "PINE\\frida"));
    EXPECT_THAT(names({"--directory", "PINE", "--all", "--filter", "FRI"}), ElementsAre("PINE\\frida"));
    const ProcessResult unknown = cli.run({"users", "--directory", "OAK"});
    EXPECT_EQ(unknown.exitCode, 5);
    EXPECT_THAT(unknown.err, HasSubstr("PINE"));
}

TEST_P(CliUsers, OfADirectoryReceiveFoldersLikeOthers) {
    serve("Plans/plan", "first");
    runJson({"team", "share", "/home/Plans", "ben", "PINE\\erik"});
    EXPECT_THAT(all(runJson({"team", "members", "Plans"})["members"], "name"),
                UnorderedElementsAre("ben", "PINE\\erik"));
    EXPECT_THAT(all(runJson({"team", "members", "Plans", "--directory", "PINE"})["members"], "name"),
                ElementsAre("PINE\\erik"));
    Cli erik{nas, GetParam()};
    erik.become("PINE\\erik", "fifth");
    EXPECT_EQ(jsonOf(erik, {"team", "accept", "Plans"})["owner"], "anna");
}

TEST_F(CliSharingCluster, AFolderOfTheOtherNodeIsReceivedAndTakenAwayThroughTheFrontEnd) {
    other.folder().write("homes/anna/Plans/plan", "on the second node");
    Cli anna{other};
    jsonOf(anna, {"team", "share", "/home/Plans", "ben"});

    cli.become("ben", "hidden");
    const Json invited = jsonOf(cli, {"team", "list"})["folders"];
    ASSERT_EQ(invited.size(), 1u) << invited;
    EXPECT_EQ(invited[0]["nasId"], "node2");
    EXPECT_EQ(invited[0]["roleName"], "invited");
    const std::string team = jsonOf(cli, {"team", "accept", "Plans"})["team"];
    EXPECT_EQ(team, "/home/.Torvi/Plans/=vtf://anna-Plans/@node2");
    const std::vector<std::string> get = {"get", "/home/.Torvi/Plans/plan", "--overwrite", "--team", team};
    const ProcessResult got = cli.run(get);
    EXPECT_EQ(got.exitCode, 0) << got.err;
    EXPECT_EQ(cli.work().read("plan"), "on the second node");
    EXPECT_GE(other.requestCount("download"), 1);
    EXPECT_EQ(master.requestCount("download"), 0);

    // The owner, too, may come by way of the other node.
    cli.become("anna", "secret");
    EXPECT_THAT(all(jsonOf(cli, {"team", "members", "Plans"})["members"], "name"), ElementsAre("ben"));
    EXPECT_EQ(jsonOf(cli, {"team", "unshare", "Plans"})["state"], "done");
    cli.become("ben", "hidden");
    EXPECT_NE(cli.run(get).exitCode, 0);
    EXPECT_THAT(jsonOf(cli, {"team", "list"})["folders"], IsEmpty());
    EXPECT_EQ(other.folder().read("homes/anna/Plans/plan"), "on the second node");
}

TEST_F(CliSharingCluster, AnAddressHasThePortThatItIsTold) {
    for (const char* file : {"plan", "map"})
        other.folder().write(std::string("homes/anna/Plans/") + file, "1");
    Cli anna{other};
    jsonOf(anna, {"team", "share", "/home/Plans", "ben"});
    cli.become("ben", "hidden");
    const std::string team = jsonOf(cli, {"team", "accept", "Plans"})["team"];
    const auto create = [&](std::vector<std::string> paths) {
        paths.insert(paths.begin(), {"link", "create"});
        paths.insert(paths.end(), {"--team", team, "--host", "files.example.test:8081", "--code", "sesame"});
        return jsonOf(cli, paths)["url"].get<std::string>();
    };
    const std::string address = "http://files.example.test:8081/node2/share.cgi?ssid=";
    EXPECT_THAT(create({"/home/.Torvi/Plans/plan"}), StartsWith(address));
    EXPECT_THAT(create({"/home/.Torvi/Plans/plan", "/home/.Torvi/Plans/map"}), StartsWith(address));
}
