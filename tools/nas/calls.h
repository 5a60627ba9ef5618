#pragma once

#include <functional>
#include <string>
#include <vector>

#include "request.h"
#include "service.h"

namespace nas {

enum class BodyKind { None, Form, Multipart };

// How a call looks on one or more endpoints, and who serves it.
struct Call {
    std::string name;
    unsigned endpoints;
    std::string method;
    BodyKind body;
    // The short calls carry "Pragma"; uploads and downloads don't.
    bool pragma;
    std::vector<Shape> shapes;
    std::function<Answer(Service&, Request&, httplib::Response&)> serve;
    // The reply for a status other than success, where a bare "status" isn't all.
    std::function<void(nlohmann::json&)> refusal;
};

const std::vector<Call>& allCalls();

// One file per family adds its own.
void addSessionCalls(std::vector<Call>& calls);
void addAuthCalls(std::vector<Call>& calls);
void addActivateCalls(std::vector<Call>& calls);
void addIdentityCalls(std::vector<Call>& calls);
void addListCalls(std::vector<Call>& calls);
void addStatCalls(std::vector<Call>& calls);
void addStateCalls(std::vector<Call>& calls);
void addLogCalls(std::vector<Call>& calls);
void addQuotaCalls(std::vector<Call>& calls);
void addFileCalls(std::vector<Call>& calls);
void addJobCalls(std::vector<Call>& calls);
void addBatchCalls(std::vector<Call>& calls);
void addChunkCalls(std::vector<Call>& calls);
void addUploadCalls(std::vector<Call>& calls);
void addVersionCalls(std::vector<Call>& calls);
void addDownloadCalls(std::vector<Call>& calls);

constexpr unsigned on(Endpoint endpoint) {
    return static_cast<unsigned>(endpoint);
}
constexpr unsigned kBothCgis = on(Endpoint::SyncCgi) | on(Endpoint::ManagerCgi);

constexpr int number(Status status) {
    return static_cast<int>(status);
}

// Clients of most calls read the status only if "success" is true: it says that the request was understood.
void understood(nlohmann::json& reply);
// Where success is 0, a failure without a number of its own needs one.
void notSuccess(nlohmann::json& reply);

// Refuses a slave prefix, for the calls that no other node serves.
void requireNoPrefix(const Request& request);
bool overTls(const httplib::Request& http);

}  // namespace nas
