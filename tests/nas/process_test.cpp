#include <gmock/gmock.h>

#include <csignal>
#include <fstream>
#include <sstream>
#include <thread>

#include "nasnodes.h"
#include "nastest.h"
#include "support/nginx.h"
#include "support/programs.h"

using NasProcess = NasTest;

TEST_F(NasProcess, TellsItsAddressesInOneLine) {
    EXPECT_THAT(nas.log(), testing::HasSubstr("torvi-nas ready http=127.0.0.1:" + std::to_string(nas.port()) +
                                              " tls=127.0.0.1:" + std::to_string(nas.tlsPort()) +
                                              " root=" + nas.root() + "\n"));
}

TEST_F(NasProcess, EndsCleanlyOnBothSignalsWhateverIsGoingOn) {
    for (const int signal : {SIGTERM, SIGINT}) {
        TempDir root;
        Process process(kTorviNas, [&] {
            Process::Options options;
            options.arguments = {"--root",      root.string(), "--user",
                                 "anna:secret", "--fail",      "stall,match=version"};
            return options;
        }());
        const auto ready = process.waitForLine("torvi-nas ready ");
        ASSERT_TRUE(ready);
        EXPECT_THAT(*ready, testing::HasSubstr(" tls=- "));
        const auto port = static_cast<std::uint16_t>(std::stoi(ready->substr(ready->find("0.0.1:") + 6)));
        const std::string own = loginSid(port, "anna", "secret");
        // An upload in the middle, a reply in the middle, and a connection that says nothing.
        NasConnection upload(port), stalled(port), silent(port);
        NasRequest request =
            NasRequest::upload(cgi(uploadQuery(own, "/home")), "a", std::string(100000, 'x'));
        upload.send(request.bytes().substr(0, 50000));
        stalled.send(NasRequest::get("/cgi-bin/filemanager/utilRequest.cgi").bytes());
        ASSERT_TRUE(process.waitFor([](const std::string&, const std::string& err) {
            return err.find("fault stall hit") != std::string::npos;
        }));
        process.sendSignal(signal);
        EXPECT_EQ(0, process.wait());
        EXPECT_TRUE(std::filesystem::is_empty(root.path() / "homes/anna"));
    }
}

TEST_F(NasProcess, BadCommandLineEndsWithAnError) {
    TempDir root;
    const std::vector<std::vector<std::string>> wrong = {
        {},
        {"--root", root.file("none")},
        {"--root", root.string(), "--user", "nameonly"},
        {"--root", root.string(), "--user", "a/b:x"},
        {"--root", root.string(), "--user", "a:x", "--user", "a:y"},
        {"--root", root.string(), "--team", "anna:/home/x:ben"},
        {"--root", root.string(), "--team", "anna"},
        {"--root", root.string(), "--fail", "quake"},
        {"--root", root.string(), "--port", std::to_string(nas.port())},
        {"--root", root.string(), "--cert", "/etc/passwd"},
    };
    for (const auto& arguments : wrong) {
        const ProcessResult result = runProcess(kTorviNas, arguments);
        EXPECT_GT(result.exitCode, 0);
        EXPECT_LT(result.exitCode, 128);
        EXPECT_NE("", result.err + result.out);
    }
}

TEST_F(NasProcess, HelpExplainsTheOptions) {
    const ProcessResult result = runProcess(kTorviNas, {"--help"});
    EXPECT_EQ(0, result.exitCode);
    for (const char* option :
         {"--root", "--port", "--tls-port", "--user", "--slave-id", "--team", "--fail", "--second-factor",
          "--firmware", "--redirect-tls", "--directory", "--mail-dir"}) {
        EXPECT_THAT(result.out, testing::HasSubstr(option));
    }
}

TEST_F(NasProcess, WithoutControlThereIsNoControl) {
    TempDir root;
    Process::Options options;
    options.arguments = {"--root", root.string()};
    Process process(kTorviNas, options);
    const auto ready = process.waitForLine("torvi-nas ready ");
    ASSERT_TRUE(ready);
    const auto port = static_cast<std::uint16_t>(std::stoi(ready->substr(ready->find("0.0.1:") + 6)));
    EXPECT_EQ(404, exchange(port, NasRequest::get("/control/faults")).http);
    EXPECT_EQ(404, exchange(port, NasRequest::get("/control/state")).http);
}

TEST_F(NasProcess, ManyConnectionsAtOnceAreServed) {
    std::vector<std::thread> threads;
    std::atomic<int> good{0};
    for (int i = 0; i < 40; ++i) {
        threads.emplace_back([&, i] {
            for (int k = 0; k < 5; ++k)
                good += run(NasRequest::get(cgi(listQuery(sid, "/"))), i % 2).status() == 1;
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(200, good);
}

/// Two nodes that share their sessions, behind a real nginx.
class NasCluster : public testing::Test {
protected:
    TempDir sessions;
    Nas master{nodeOptions("alpha", sessions.string())};
    Nas other{nodeOptions("beta", sessions.string())};
};

TEST_F(NasCluster, LoginNamesTheNode) {
    const NasReply reply = exchange(master.port(), loginRequest("anna", "secret"));
    EXPECT_EQ(1, reply.json()["nubo_cluster_status"].asInt());
    EXPECT_EQ("alpha", reply.json()["nubo_slave_id"].asString());
}

TEST_F(NasCluster, SessionOfOneNodeIsGoodOnTheOtherUntilItIsClosed) {
    const std::string sid = loginSid(master.port(), "anna", "secret");
    const std::string target =
        "/cgi-bin/torvi/torvisrv.cgi?func=get_tree&sid=" + sid + "&is_iso=0&node=share_root";
    EXPECT_TRUE(exchange(other.port(), NasRequest::get(target)).json().isArray());
    exchange(master.port(), NasRequest::get("/cgi-bin/torvi/torvisrv_logout.cgi?sid=" + sid + "&logout=1"));
    EXPECT_EQ(3, exchange(other.port(), NasRequest::get(target)).status());
}

TEST_F(NasCluster, NodeTakesItsOwnPrefixWhereThereIsOne) {
    const std::string sid = loginSid(other.port(), "anna", "secret");
    const std::string query = "?func=get_tree&sid=" + sid + "&is_iso=0&node=share_root";
    EXPECT_EQ(200, exchange(other.port(), NasRequest::get("/beta/cgi-bin/torvi/torvisrv.cgi" + query)).http);
    EXPECT_EQ(404, exchange(other.port(), NasRequest::get("/alpha/cgi-bin/torvi/torvisrv.cgi" + query)).http);
    EXPECT_EQ(
        404,
        exchange(other.port(), NasRequest::get("/beta/cgi-bin/filemanager/utilRequest.cgi" + query)).http);
    EXPECT_EQ(404,
              exchange(other.port(), loginRequest("anna", "secret", "/beta/cgi-bin/torvi/torvisrv_login.cgi"))
                  .http);
}

TEST_F(NasCluster, FrontEndRoutesByTheSlaveId) {
    if (!Nginx::installed()) GTEST_SKIP() << "no nginx";
    std::ifstream in(kClusterTemplate);
    std::ostringstream configuration;
    configuration << in.rdbuf();
    Nginx front(configuration.str(), {{"MASTER", "127.0.0.1:" + std::to_string(master.port())},
                                      {"MASTER_ID", "alpha"},
                                      {"NODE", "127.0.0.1:" + std::to_string(other.port())},
                                      {"NODE_ID", "beta"}});
    master.folder().write("homes/anna/on-master", "1");
    other.folder().write("homes/anna/on-node", "1");
    const std::string sid = loginSid(front.port(), "anna", "secret");
    const auto first = [&](const std::string& prefix) {
        return exchange(front.port(),
                        NasRequest::get(prefix + "/cgi-bin/torvi/torvisrv.cgi?func=get_list&sid=" + sid +
                                        "&is_iso=0&list_mode=all&path=%2Fhome&dir=DESC&limit=10&sort=mt"
                                        "&start=0&no_sort=0"))
            .json()["datas"][0]["filename"]
            .asString();
    };
    EXPECT_EQ("on-master", first(""));
    EXPECT_EQ("on-master", first("/alpha"));
    EXPECT_EQ("on-node", first("/beta"));
    // Bodies of any size pass the front end.
    const std::string content(3 << 20, 'z');
    EXPECT_EQ(1, exchange(front.port(),
                          NasRequest::upload("/beta/cgi-bin/torvi/torvisrv.cgi?func=upload&sid=" + sid +
                                                 "&dest_path=%2Fhome&overwrite=1",
                                             "big", content))
                     .status());
    EXPECT_TRUE(other.folder().read("homes/anna/big") == content);
}
