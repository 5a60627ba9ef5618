#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "cloud_registration.h"
#include "config_rules.h"
#include "faults.h"
#include "identity.h"
#include "people.h"
#include "second_factor.h"
#include "teams.h"
#include "users.h"
#include "volumes.h"

namespace nas {

struct Options {
    std::string root;
    std::string address = "127.0.0.1";
    int port = 0;
    int tlsPort = -1;  // -1: no TLS
    std::string certificate;
    std::string key;
    std::string slaveId;
    std::string serverName = "torvi-nas";
    std::string version = "5.1.0";
    std::string build = "20260105";
    std::chrono::seconds sessionTtl{1800};
    std::string sessionFolder;
    std::chrono::milliseconds jobDelay{0};
    std::chrono::seconds lockTtl{1800};
    bool versioning = true;
    std::chrono::seconds partialMaxAge{7 * 86400};
    int clusterStatus = 0;
    bool booting = false;
    bool redirectTls = false;
    int tryLimit = 5;
    std::string mailFolder;
    QuestionTexts questionTexts;
    Identity identity;
    CloudEntry cloud;
    bool control = false;
    bool sync = true;
    bool fcgi = true;
    Users users;
    Teams teams;
    Directory directory;
    Volumes volumes;
    std::vector<std::string> veto;
    ConfigRules configRules;
    long long changesKept = 10000;
    std::vector<Fault> faults;

    // Whether this node serves, alone or in its cluster.
    bool inCluster() const { return clusterStatus == 0 || clusterStatus == 1; }
};

// Fills the options. A value other than -1 is the exit status with which the program ends at once.
int readOptions(int argc, char** argv, Options& options);

}  // namespace nas
