#pragma once

#include <set>
#include <string>

namespace nas {

// What the server says of itself.
struct Identity {
    std::string uid = "5E1F0C3A-9B74-4D26-8A11-2F6C7D90B3E4";
    std::string suid = "5E1F0C3A";
    std::string mac = "02:00:5E:10:00:01";
    std::string model = "Torvi Shelf 4";
    std::string firmware = "5.1.0.20260105";
    std::string syncVersion = "4.3.0";
    std::string queueLimit = "10000";
    std::string messageQueueLimit = "5000";
    std::string peltnetName;
    std::string ddnsName;
    std::string externalAddress;
    int externalPort = 0;
    int externalTlsPort = 0;
    bool recovering = false;
    bool migrating = false;
    bool syncEnabled = true;
    std::set<std::string> withoutSync;  // users who may not use the sync service
};

}  // namespace nas
