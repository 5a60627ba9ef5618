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
    // Of the file manager's calls: a slave prefix may lead to it.
    bool prefix = false;
    // Also for browsers, whose headers are their own.
    bool anybody = false;
    // Keys whose values clients put into the query as they are.
    Shape typed = {};
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
void addShareCalls(std::vector<Call>& calls);
void addTeamCalls(std::vector<Call>& calls);
void addMemberCalls(std::vector<Call>& calls);
void addUserCalls(std::vector<Call>& calls);
void addSettingCalls(std::vector<Call>& calls);
void addConfigCalls(std::vector<Call>& calls);
void addFolderLinkCalls(std::vector<Call>& calls);
void addLinkCalls(std::vector<Call>& calls);
void addLinkPageCalls(std::vector<Call>& calls);

using Serve = Answer (*)(Service&, Request&, httplib::Response&);
using Refused = void (*)(nlohmann::json&);
// A short call without a body, by the shapes of its query, and one with a form.
void addGet(std::vector<Call>& calls, unsigned endpoints, std::vector<Shape> shapes, Serve serve,
            Refused refusal = nullptr);
void addForm(std::vector<Call>& calls, unsigned endpoints, Shape query, Serve serve,
             Refused refusal = nullptr);

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

// Where the client reads "success" as well: 0 is success, and "success" is false without it.
void notDone(nlohmann::json& reply);
// What both mean when all is well.
Answer doneWithZero(const std::string& note);

// Work behind the reply. Only the file manager keeps jobs that ended until they are cleared.
int startJob(Service& service, const Request& request, const std::string& name, Jobs::Work work);

// The bytes of a file from an offset on; throws Failed for one behind the end.
Answer sendFile(Fd file, int64_t offset, httplib::Response& response);

// Refuses a slave prefix, for the calls that no other node serves.
void requireNoPrefix(const Request& request);
bool overTls(const httplib::Request& http);

}  // namespace nas
