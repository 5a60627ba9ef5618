#pragma once

#include <string>
#include <vector>

#include "accounts.h"
#include "nas/faults.h"
#include "tokens.h"

namespace cloud {

struct Options {
    std::string address = "127.0.0.1";
    int port = 0;
    int tlsPort = -1;  // -1: no TLS
    std::string certificate;
    std::string key;
    Accounts accounts;
    Lifetimes lifetimes;
    int64_t timeTolerance = 300;  // seconds that a client's clock may differ
    int64_t clockOffset = 0;      // seconds that this clock is ahead
    int64_t patience = 60;        // seconds that it waits for bytes of a client
    std::string publicIp = "203.0.113.7";
    std::string stateFolder;
    bool control = false;
    std::vector<nas::Fault> faults;
};

// Fills the options. A value other than -1 is the exit status with which the program ends at once.
int readOptions(int argc, char** argv, Options& options);

}  // namespace cloud
