#include "cli_support.h"
#include "visitor.h"

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;
using testing::UnorderedElementsAre;
using Json = nlohmann::json;

namespace {

/// Where mails of the server end; there before it.
struct Mails {
    TempDir mails;
    std::string mail(const std::string& name) const { return mails.read(name); }
    bool isEmpty() const { return std::filesystem::is_empty(mails.path()); }
};

class CliLink : protected Mails, public CliOnRoads {
protected:
    CliLink() : CliOnRoads(nasWith({"--mail-dir", mails.string()})) {}

    Json create(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"link", "create"});
        return runJson(std::move(arguments));
    }
    /// Of a link that must be there.
    Json listed(const std::string& id) {
        const Json document = runJson({"link", "list"});
        for (const Json& link : document["links"]) {
            if (link["id"] == id) return link;
        }
        ADD_FAILURE() << "no link " << id;
        return {};
    }
    int fails(std::vector<std::string> arguments, const std::string& why) {
        const ProcessResult result = cli.run(arguments);
        EXPECT_THAT(result.err, HasSubstr(why));
        EXPECT_NE(result.exitCode, 0);
        return result.exitCode;
    }
    std::string address() const {
        return GetParam().tls ? "https://127.0.0.1:" + std::to_string(nas.tlsPort()) + "/"
                              : "http://127.0.0.1:" + std::to_string(nas.port()) + "/";
    }
};

std::string url(const Json& link) {
    return link["url"];
}
std::string id(const Json& link) {
    return link["id"];
}

/// What doesn't differ from road to road, at either service.
class CliLinkEdges : public CliLink {};

/// A folder of anna's that ben has.
class CliSharedFolder : public CliOnRoads {
protected:
    CliSharedFolder() : CliOnRoads(nasWith({"--team", "anna:/home/Plans:ben"})) {}

    std::vector<std::string> shared() {
        std::vector<std::string> paths;
        const Json document = runJson({"link", "where"});
        for (const Json& share : document["shares"]) paths.push_back(share["path"]);
        return paths;
    }
    std::filesystem::path onDisk(const std::string& name) const { return nas.folder().path() / home / name; }
};

class CliSettings : public CliOnRoads {};

const std::vector<CliRoad> kBothServices = {{}, {false, false, true}};

}  // namespace

CLI_ON_ALL_ROADS(CliLink);
CLI_ON_ROADS(CliLinkEdges, kBothServices);
CLI_ON_ALL_ROADS(CliSharedFolder);
CLI_ON_ALL_ROADS(CliSettings);

TEST_P(CliLink, AnybodyOpensItWhoKnowsTheCode) {
    serve("plan.txt", "the plan");
    const Json link = create({"/home/plan.txt", "--code", "sesame & 1", "--expires", "2099-12-31 18:00"});
    EXPECT_EQ(link["new"], true);
    EXPECT_EQ(link["accessCode"], true);
    EXPECT_EQ(link["expires"], "2099-12-31 18:00");
    EXPECT_EQ(link["paths"], Json({"/home/plan.txt"}));
    EXPECT_THAT(url(link), StartsWith(address() + "share.cgi?ssid="));
    EXPECT_EQ(visit(url(link)).status, 403);
    EXPECT_EQ(visit(url(link) + "&access_code=Sesame%20%26%201").status, 403);
    const Visit with = visit(url(link) + "&access_code=sesame%20%26%201");
    EXPECT_EQ(with.status, 200);
    EXPECT_EQ(with.body, "the plan");
}

TEST_P(CliLink, ItEndsWhenItIsToldTo) {
    serve("plan.txt", "the plan");
    const Json link = create({"/home/plan.txt", "--expires", "2d"});
    EXPECT_EQ(link["expires"], "48h");
    EXPECT_EQ(visit(url(link)).body, "the plan");
    runJson({"link", "update", id(link), "--no-code", "--expires", "2001-01-01"});
    EXPECT_EQ(visit(url(link)).status, 410);
    EXPECT_EQ(fails({"link", "items", id(link)}, "it is over"), 5);
    runJson({"link", "update", id(link), "--code", "new", "--expires", "never"});
    EXPECT_EQ(visit(url(link)).status, 403);
    EXPECT_EQ(visit(url(link) + "&access_code=new").body, "the plan");
}

TEST_P(CliLink, ItIsListedWithWhatItHoldsUntilItIsDeleted) {
    EXPECT_EQ(runJson({"link", "list"})["count"], 0);
    serve("Trip/a.txt", "a");
    serve("Trip/書類.txt", "b");
    const Json folder = create({"/home/Trip"});
    const Json several = create({"/home/Trip/a.txt", "/home/Trip/書類.txt", "--name", "Two of them"});
    EXPECT_EQ(several["name"], "Two of them");

    EXPECT_EQ(listed(id(folder))["type"], "folder");
    EXPECT_EQ(listed(id(folder))["file"], "Trip");
    EXPECT_EQ(listed(id(folder))["creator"], "anna");
    EXPECT_EQ(listed(id(folder))["url"], url(folder));
    EXPECT_EQ(listed(id(several))["type"], "several");
    EXPECT_EQ(listed(id(several))["name"], "Two of them");
    const Json items = runJson({"link", "items", url(several)});
    EXPECT_EQ(items["count"], 2);
    EXPECT_EQ(items["items"][0], Json({{"name", "a.txt"}, {"type", "file"}}));
    EXPECT_EQ(items["items"][1]["name"], "書類.txt");
    EXPECT_EQ(visit(url(several) + "&file=a.txt").body, "a");

    EXPECT_EQ(runJson({"link", "delete", id(several), "--dry-run"})["deleted"], false);
    EXPECT_EQ(runJson({"link", "list"})["count"], 2);
    const Json deleted = runJson({"link", "delete", url(several), id(folder)});
    EXPECT_EQ(deleted["deleted"], true);
    EXPECT_THAT(deleted["links"], SizeIs(2));
    EXPECT_EQ(visit(url(several)).status, 404);
    EXPECT_EQ(visit(url(folder)).status, 404);
    EXPECT_EQ(runJson({"link", "list"})["links"], Json::array());
    EXPECT_TRUE(served("Trip/a.txt"));
    EXPECT_EQ(fails({"link", "delete", id(folder)}, "there is no link"), 5);
}

TEST_P(CliLink, APathHasTheLinkThatItGotBefore) {
    serve("plan.txt", "the plan");
    const Json made = runJson({"link", "get", "/home/plan.txt"});
    EXPECT_EQ(visit(url(made)).body, "the plan");
    const Json again =
        runJson({"link", "get", "/home/plan.txt", "--code", "sesame", "--expires", "2099-12-31 18:00"});
    EXPECT_EQ(again["id"], made["id"]);
    EXPECT_EQ(again["url"], made["url"]);
    EXPECT_EQ(again["expires"], "2099-12-31 18:00");
    // The server doesn't tell.
    EXPECT_FALSE(again.contains("new"));
    EXPECT_EQ(visit(url(made)).status, 403);
    EXPECT_EQ(runJson({"link", "list"})["count"], 1);
    // Whereas what is created is another one, and the first stays as it is.
    const Json second = create({"/home/plan.txt"});
    EXPECT_NE(second["id"], made["id"]);
    EXPECT_EQ(visit(url(second)).status, 200);
    EXPECT_EQ(visit(url(made)).status, 403);
}

TEST_P(CliLink, TheServerMailsIt) {
    serve("plan.txt", "the plan");
    serve("map.txt", "the map");
    const Json plan = create({"/home/plan.txt", "--code", "sesame", "--mail", "dora@example.test",
                              "--subject", "Plans", "--text", "Have a look"});
    EXPECT_EQ(plan["mailedTo"], "dora@example.test");
    EXPECT_THAT(mail("0001.eml"),
                AllOf(HasSubstr("To: <dora@example.test>"), HasSubstr("Subject: Plans"),
                      HasSubstr("Have a look"), HasSubstr(url(plan)), HasSubstr("Access code: sesame")));
    const Json both = create({"/home/plan.txt", "/home/map.txt", "--mail", "dora@example.test"});
    EXPECT_THAT(mail("0002.eml"), AllOf(HasSubstr(url(both)), Not(HasSubstr("Access code"))));
    const Json map = runJson({"link", "get", "/home/map.txt", "--code", "sesame", "--mail",
                              "emil@example.test", "--subject", "Maps"});
    EXPECT_THAT(mail("0003.eml"), AllOf(HasSubstr("To: <emil@example.test>"), HasSubstr("Subject: Maps"),
                                        HasSubstr(url(map)), HasSubstr("Access code: sesame")));

    runJson({"link", "mail", id(plan), "--to", "emil@example.test"});
    EXPECT_THAT(mail("0004.eml"), AllOf(HasSubstr("To: <emil@example.test>"), HasSubstr(url(plan)),
                                        Not(HasSubstr("Access code"))));
    runJson({"link", "mail", id(plan), url(both), "--to", "emil@example.test", "--code", "sesame"});
    EXPECT_THAT(mail("0005.eml"),
                AllOf(HasSubstr(url(plan)), HasSubstr(url(both)), HasSubstr("Access code: sesame")));
}

TEST_P(CliLinkEdges, TheMailCallsALinkByTheNameThatItIsGiven) {
    serve("plan.txt", "the plan");
    serve("map.txt", "the map");
    create({"/home/plan.txt", "--name", "The plan", "--mail", "dora@example.test"});
    EXPECT_THAT(mail("0001.eml"), AllOf(HasSubstr("The plan: "), Not(HasSubstr("plan.txt"))));
    create({"/home/plan.txt", "/home/map.txt", "--name", "Both of them", "--mail", "dora@example.test"});
    EXPECT_THAT(mail("0002.eml"), HasSubstr("Both of them: "));
}

TEST_P(CliLinkEdges, AnEndIsToldInOneWayWhereverItIsSet) {
    serve("a.txt", "a");
    serve("b.txt", "b");
    const Json link = create({"/home/a.txt"});
    EXPECT_EQ(link["expires"], nullptr);
    for (const auto& [given, told] : {std::pair{"2d", "48h"}, std::pair{"2099-12-31", "2099-12-31 23:59"}}) {
        EXPECT_EQ(create({"/home/a.txt", "--expires", given})["expires"], told);
        EXPECT_EQ(create({"/home/a.txt", "/home/b.txt", "--expires", given})["expires"], told);
        EXPECT_EQ(runJson({"link", "get", "/home/b.txt", "--expires", given})["expires"], told);
        EXPECT_EQ(runJson({"link", "update", id(link), "--no-code", "--expires", given})["expires"], told);
    }
    EXPECT_THAT(cli.run({"link", "create", "/home/a.txt", "--expires", "2d"}).out,
                HasSubstr("it ends in 48h"));
}

TEST_P(CliLinkEdges, ANewNameLeavesCodeAndAddress) {
    serve("plan.txt", "the plan");
    const Json link = create({"/home/plan.txt", "--code", "sesame"});
    const Json changed = runJson({"link", "update", id(link), "--name", "My plan"});
    EXPECT_EQ(changed["links"][0]["name"], "My plan");
    EXPECT_EQ(listed(id(link))["url"], url(link));
    EXPECT_EQ(visit(url(link)).status, 403);
    EXPECT_EQ(visit(url(link) + "&access_code=sesame").status, 200);
}

TEST_P(CliLinkEdges, SeveralFilesTogetherHaveOneLink) {
    serve("a.txt", "a");
    serve("b.txt", "b");
    const Json link = create({"/home/a.txt", "/home/b.txt"});
    EXPECT_EQ(link["new"], true);
    const Json again = create({"/home/a.txt", "/home/b.txt", "--code", "sesame"});
    EXPECT_EQ(again["new"], false);
    EXPECT_EQ(again["id"], link["id"]);
    EXPECT_EQ(visit(url(link)).status, 403);
}

TEST_P(CliLinkEdges, TheAddressNamesWhatItIsTold) {
    serve("plan.txt", "the plan");
    EXPECT_THAT(url(create({"/home/plan.txt", "--host", "files.example.test:8081"})),
                StartsWith("http://files.example.test:8081/share.cgi"));
    EXPECT_THAT(url(create({"/home/plan.txt", "--host", "files.example.test"})),
                StartsWith("http://files.example.test:" + std::to_string(nas.port()) + "/share.cgi"));
    const Json secure = create({"/home/plan.txt", "--https", "--local"});
    EXPECT_THAT(url(secure), StartsWith("https://127.0.0.1:" + std::to_string(nas.tlsPort()) + "/"));
    EXPECT_EQ(visit(url(secure)).body, "the plan");
    const Json moved = runJson({"link", "update", id(secure), "--no-code", "--expires", "never", "--host",
                                "files.example.test:8081"});
    EXPECT_THAT(url(moved["links"][0]), StartsWith("http://files.example.test:8081/share.cgi"));
}

TEST_P(CliLinkEdges, MoreLinksThanComeAtOnceAreAllListed) {
    const auto page = [](int links) {
        Json datas = Json::array();
        for (int i = 0; i < links; ++i)
            datas.push_back({{"ssid", std::to_string(i)}, {"filename", "f" + std::to_string(i)}});
        return Json{{"status", 1}, {"total", 103}, {"datas", datas}}.dump();
    };
    answer("get_share_list", page(100));
    const int rest = answer("get_share_list", page(3));
    EXPECT_EQ(runJson({"link", "list"})["count"], 103);
    EXPECT_EQ(nas.hits(rest), 1);
    EXPECT_EQ(nas.requestCount("get_share_list"), 0);
    // A server that promises more than it has.
    answer("get_share_list", page(100));
    EXPECT_EQ(runJson({"link", "list"})["count"], 100);
}

TEST_P(CliLinkEdges, WhatIsNotThereIsNotLinked) {
    EXPECT_EQ(fails({"link", "create", "/home/nothing"}, "no such file"), 5);
    EXPECT_EQ(fails({"link", "get", "/home/nothing"}, "no such file"), 5);
    for (const char* command : {"update", "delete", "items"}) {
        std::vector<std::string> words = {"link", command, "0123abcd"};
        if (words[1] == "update") words.insert(words.end(), {"--name", "x"});
        EXPECT_EQ(fails(words, "no "), 5) << command;
    }
    EXPECT_EQ(fails({"link", "mail", "0123abcd", "--to", "dora@example.test"}, "there is no link"), 5);
    EXPECT_EQ(runJson({"link", "list"})["count"], 0);
    EXPECT_TRUE(isEmpty());
}

TEST_P(CliLinkEdges, AnEndInThePastMakesNoLink) {
    serve("plan.txt", "the plan");
    EXPECT_EQ(fails({"link", "create", "/home/plan.txt", "--expires", "2001-01-01"}, "that end"), 1);
    EXPECT_EQ(runJson({"link", "list"})["count"], 0);
}

TEST_P(CliLinkEdges, WrongUsageSendsNothing) {
    serve("plan.txt", "the plan");
    serve("sub/map.txt", "the map");
    const std::string id = this->create({"/home/plan.txt"})["id"];
    nas.forgetRequests();
    EXPECT_EQ(fails({"link"}, "subcommand"), 2);
    EXPECT_EQ(fails({"link", "bogus"}, "torvi"), 2);
    EXPECT_EQ(fails({"link", "update", id}, "what is to change"), 2);
    EXPECT_EQ(fails({"link", "update", id, "--code", "x"}, "set together"), 2);
    EXPECT_EQ(fails({"link", "update", id, "--expires", "never"}, "set together"), 2);
    EXPECT_EQ(fails({"link", "update", id, "--code", "x", "--no-code", "--expires", "never"}, "code"), 2);
    EXPECT_EQ(fails({"link", "mail", id}, "--to"), 2);
    for (const char* end : {"tomorrow", "0d", "12", "2031-02-30", "2031-12-31 25:00"}) {
        EXPECT_EQ(fails({"link", "create", "/home/plan.txt", "--expires", end}, "--expires"), 2) << end;
        EXPECT_EQ(fails({"link", "get", "/home/plan.txt", "--expires", end}, "--expires"), 2) << end;
    }
    EXPECT_EQ(fails({"link", "create", "/home/plan.txt", "/home/sub/map.txt"}, "one folder"), 2);
    EXPECT_EQ(fails({"link", "create", "/home"}, "only what is in it"), 2);
    EXPECT_EQ(fails({"link", "get", "/home"}, "only what is in it"), 2);
    EXPECT_EQ(fails({"link", "get", "/home/plan.txt", "/home/sub/map.txt"}, "At Most 1"), 2);
    EXPECT_EQ(nas.requestCount(), 0);
    EXPECT_EQ(runJson({"link", "list"})["count"], 1);
}

TEST_P(CliLinkEdges, TheTextTellsTheAddressInALineOfItsOwn) {
    serve("plan.txt", "the plan");
    const ProcessResult made = cli.run({"link", "create", "/home/plan.txt", "--code", "sesame"});
    ASSERT_EQ(made.exitCode, 0) << made.err;
    EXPECT_THAT(made.out, AllOf(StartsWith(address() + "share.cgi?ssid="), HasSubstr("with an access code"),
                                HasSubstr("no end"), Not(HasSubstr("sesame"))));
    const std::string url = made.out.substr(0, made.out.find('\n'));
    EXPECT_EQ(visit(url + "&access_code=sesame").status, 200);
    const ProcessResult list = cli.run({"link", "list"});
    EXPECT_THAT(list.out, AllOf(HasSubstr("ADDRESS"), HasSubstr(url), HasSubstr("plan.txt")));
    EXPECT_THAT(cli.run({"link", "delete", url, "--dry-run"}).out, HasSubstr("would delete link"));
    EXPECT_THAT(cli.run({"link", "delete", url}).out, HasSubstr("deleted link"));
    EXPECT_THAT(cli.run({"link", "list"}).out, HasSubstr("There are no links"));
}

TEST_P(CliLinkEdges, OnlyItsOwnerHasALink) {
    serve("plan.txt", "the plan");
    const Json link = create({"/home/plan.txt"});
    cli.become("ben", "hidden");
    EXPECT_EQ(runJson({"link", "list"})["count"], 0);
    EXPECT_EQ(fails({"link", "delete", id(link)}, "there is no link"), 5);
    EXPECT_EQ(visit(url(link)).status, 200);
}

namespace {

/// No mail leaves this server.
class CliLinkWithoutMail : public CliOnRoads {
protected:
    /// Makes the only link, mails it in vain, and gives it.
    Json mailedInVain(std::vector<std::string> arguments) {
        arguments.insert(arguments.end(), {"--mail", "dora@example.test"});
        const ProcessResult made = cli.run(arguments);
        EXPECT_EQ(made.exitCode, 1);
        EXPECT_THAT(made.out, IsEmpty());
        const Json links = runJson({"link", "list"})["links"];
        EXPECT_THAT(links, SizeIs(1));
        EXPECT_THAT(made.err, AllOf(HasSubstr("could not send the mail"), HasSubstr(url(links[0]))));
        return links[0];
    }
};

}  // namespace

CLI_ON_ROADS(CliLinkWithoutMail, kBothServices);

TEST_P(CliLinkWithoutMail, ALinkWhoseMailFailedIsMadeAllTheSame) {
    serve("plan.txt", "the plan");
    const Json link = mailedInVain({"link", "create", "/home/plan.txt", "--name", "My plan"});
    EXPECT_EQ(link["name"], "My plan");
    const ProcessResult mailed = cli.run({"link", "mail", id(link), "--to", "dora@example.test"});
    EXPECT_EQ(mailed.exitCode, 1);
    EXPECT_THAT(mailed.err, HasSubstr("could not send the mail"));
}

TEST_P(CliLinkWithoutMail, SoIsOneOfSeveralFiles) {
    serve("plan.txt", "the plan");
    serve("map.txt", "the map");
    const Json link = mailedInVain({"link", "create", "/home/plan.txt", "/home/map.txt", "--name", "Both"});
    EXPECT_EQ(link["name"], "Both");
}

TEST_P(CliLinkWithoutMail, ALinkThatIsThereIsToldWithoutItsMail) {
    serve("plan.txt", "the plan");
    mailedInVain({"link", "get", "/home/plan.txt"});
}

namespace {

/// ben links what anna shares with him.
class CliTeamLink : public CliOnRoads {
protected:
    CliTeamLink() : CliOnRoads(nasWith({"--team", "anna:/home/Plans:ben"})) {
        serve("Plans/plan.txt", "the plan");
        serve("Plans/map.txt", "the map");
        cli.become("ben", "hidden");
    }
    Json create(const std::vector<std::string>& paths) {
        std::vector<std::string> words = {"link", "create", "--team", "/home/.Torvi/Plans=vtf://anna-Plans"};
        words.insert(words.end(), paths.begin(), paths.end());
        return runJson(std::move(words));
    }
};

}  // namespace

// At the older service they are where they are seen, and need no --team.
CLI_ON_ROADS(CliTeamLink, syncRoads());

TEST_P(CliTeamLink, WhatIsInATeamFolderOpensAsWell) {
    const std::string plans = "/home/.Torvi/Plans";
    EXPECT_EQ(visit(url(create({plans + "/plan.txt"}))).body, "the plan");
    const Json both = create({plans + "/plan.txt", plans + "/map.txt"});
    EXPECT_EQ(visit(url(both) + "&file=map.txt").body, "the map");
    EXPECT_THAT(visit(url(create({plans}))).body, HasSubstr("map.txt"));
    EXPECT_EQ(runJson({"link", "list"})["count"], 3);
}

TEST_P(CliSharedFolder, ItStaysSharedWhereItGoes) {
    const Json before = runJson({"link", "where"});
    ASSERT_EQ(before["count"], 1);
    EXPECT_EQ(before["shares"][0]["path"], "/home/Plans");
    EXPECT_EQ(runJson({"link", "where", "/home/Plans"})["shares"], before["shares"]);

    EXPECT_EQ(runJson({"link", "mv", "/home/Plans", "/home/Work"})["operation"], "rename");
    EXPECT_THAT(shared(), ElementsAre("/home/Work"));
    runJson({"mkdir", "/home/2031"});
    const Json moved = runJson({"link", "mv", "/home/Work", "/home/2031/"});
    EXPECT_EQ(moved["operation"], "move");
    EXPECT_EQ(moved["destination"], "/home/2031/Work");
    EXPECT_THAT(shared(), ElementsAre("/home/2031/Work"));
    runJson({"link", "mv", "/home/2031/Work", "/home/Plans 2"});
    EXPECT_THAT(shared(), ElementsAre("/home/Plans 2"));
    EXPECT_EQ(runJson({"link", "where"})["shares"][0]["shareId"], before["shares"][0]["shareId"]);
    EXPECT_TRUE(served("Plans 2"));
    EXPECT_EQ(cli.run({"link", "mv", "/home/Plans 2", "/home/2031"}).exitCode, 0);
    EXPECT_EQ(cli.run({"link", "mv", "/home/2031/Plans 2", "/home/2031/Plans 2"}).exitCode, 2);
    runJson({"mkdir", "-p", "/home/Other/Plans 2"});
    EXPECT_EQ(cli.run({"link", "mv", "/home/2031/Plans 2", "/home/Other"}).exitCode, 10);
    EXPECT_EQ(cli.run({"link", "mv", "/home/Nothing", "/home/x"}).exitCode, 5);
}

TEST_P(CliSharedFolder, ItIsRepairedAfterItWentUnseen) {
    std::filesystem::rename(onDisk("Plans"), onDisk("Lost"));
    EXPECT_EQ(runJson({"link", "where", "/home/Plans"})["shares"][0]["exists"], false);
    EXPECT_THAT(cli.run({"link", "where"}).out, HasSubstr("/home/Plans (gone)"));
    EXPECT_EQ(runJson({"link", "repair", "/home/Lost"})["repaired"], true);
    EXPECT_THAT(shared(), ElementsAre("/home/Lost"));
    EXPECT_EQ(runJson({"link", "repair", "/home/Lost"})["repaired"], false);
    EXPECT_THAT(cli.run({"link", "repair", "/home/Lost"}).out, HasSubstr("needs no repair"));

    // A copy in its place.
    std::filesystem::create_directories(onDisk("Old/Lost"));
    std::filesystem::remove_all(onDisk("Lost"));
    EXPECT_EQ(runJson({"link", "repair", "/home/Old/Lost", "--from", "/home/Lost"})["repaired"], true);
    EXPECT_THAT(shared(), ElementsAre("/home/Old/Lost"));
    EXPECT_EQ(cli.run({"link", "repair", "/home/Old", "--from", "/home/Lost"}).exitCode, 2);
    EXPECT_EQ(cli.run({"link", "repair", "/home/Nowhere"}).exitCode, 5);
    const ProcessResult never = cli.run({"link", "repair", "/home/Old"});
    EXPECT_EQ(never.exitCode, 5);
    EXPECT_THAT(never.err, HasSubstr("isn't shared"));
}

TEST_P(CliSharedFolder, WhoHasItDoesNotShareIt) {
    cli.become("ben", "hidden");
    EXPECT_EQ(runJson({"link", "where", "/home/.Torvi/Plans"})["shares"], Json::array());
    if (GetParam().older) return;
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"where", "/home/.Torvi/Plans"}, {"mv", "/home/.Torvi/Plans", "/home/x"}}) {
        std::vector<std::string> command = {"link", "--team", "/home/.Torvi/Plans=vtf://anna-Plans"};
        command.insert(command.begin() + 1, words.begin(), words.end());
        const ProcessResult denied = cli.run(command);
        EXPECT_EQ(denied.exitCode, 6) << words[0];
        EXPECT_THAT(denied.err, HasSubstr("another user's"));
    }
}

TEST_P(CliSharedFolder, AnOrdinaryFolderSharesNothing) {
    runJson({"mkdir", "/home/Mine"});
    EXPECT_EQ(runJson({"link", "where", "/home/Mine"})["shares"], Json::array());
    const ProcessResult text = cli.run({"link", "where", "/home/Mine"});
    EXPECT_EQ(text.exitCode, 0);
    EXPECT_THAT(text.out, HasSubstr("Nothing is shared in /home/Mine"));
    EXPECT_THAT(cli.run({"link", "where"}).out, AllOf(HasSubstr("SHARE"), HasSubstr("/home/Plans")));
}

TEST_P(CliSettings, TheyChangeAndStay) {
    EXPECT_EQ(runJson({"settings"}), Json({{"recycleBin", {{"value", "on"}, {"number", 1}}},
                                           {"policy", {{"value", "ask"}, {"number", 0}}}}));
    EXPECT_EQ(runJson({"settings", "recycle-bin", "off"}),
              Json({{"recycleBin", {{"value", "off"}, {"number", 0}}}}));
    EXPECT_EQ(runJson({"settings", "policy", "refuse"})["policy"]["number"], 2);
    nas.stop();
    nas.startAgain();
    const Json after = runJson({"settings"});
    EXPECT_EQ(after["recycleBin"]["value"], "off");
    EXPECT_EQ(after["policy"]["value"], "refuse");
    EXPECT_EQ(runJson({"settings", "policy"}).size(), 1u);

    // What is deleted is gone then.
    serve("a", "1");
    runJson({"rm", "/home/a"});
    EXPECT_EQ(runJson({"trash"})["count"], 0);
    EXPECT_EQ(runJson({"settings", "policy", "1"})["policy"]["value"], "accept");
    EXPECT_THAT(cli.run({"settings"}).out, AllOf(HasSubstr("recycle-bin"), HasSubstr("accept")));
}

TEST_P(CliSettings, WhatIsNoSettingOrNoValueIsRefused) {
    EXPECT_EQ(cli.run({"settings", "colour"}).exitCode, 2);
    EXPECT_EQ(cli.run({"settings", "recycle-bin", "maybe"}).exitCode, 2);
    const ProcessResult denied = cli.run({"settings", "policy", "9"});
    EXPECT_EQ(denied.exitCode, 6);
    EXPECT_THAT(denied.err, HasSubstr("ERROR_ACCESS_DENIED"));
    EXPECT_EQ(runJson({"settings", "policy"})["policy"]["number"], 0);
}

TEST_P(CliSettings, EachUserHasTheirOwn) {
    runJson({"settings", "policy", "accept"});
    cli.become("ben", "hidden");
    EXPECT_EQ(runJson({"settings", "policy"})["policy"]["value"], "ask");
}
