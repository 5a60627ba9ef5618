#pragma once

#include <vector>

#include "support/session.h"

namespace wire {

/// A team folder as a client tells the session of it.
struct TeamFolder {
    const wchar_t* clientPath;
    const wchar_t* serverPath;
    const wchar_t* slaveID = L"Node";
};

/// Replaces the session's team folders.
inline void setTeamFolders(_WFM_AUTH_CONTEXT& session, const std::vector<TeamFolder>& folders) {
    std::vector<wchar_t*> clientPaths, serverPaths, slaveIDs;
    for (const TeamFolder& folder : folders) {
        clientPaths.push_back(const_cast<wchar_t*>(folder.clientPath));
        serverPaths.push_back(const_cast<wchar_t*>(folder.serverPath));
        slaveIDs.push_back(const_cast<wchar_t*>(folder.slaveID));
    }
    WFMUpdateTeamFolderInfo(&session, static_cast<int32_t>(folders.size()), clientPaths.data(),
                            serverPaths.data(), slaveIDs.data());
}

/// A session with team folders. Its agent is "agent"; `slaveID` is that of its own node.
inline SessionPtr makeTeamSession(const std::vector<TeamFolder>& folders,
                                  const std::string& slaveID = "Own") {
    SessionOptions options;
    options.agentName = L"agent";
    options.slaveID = slaveID;
    SessionPtr session = makeSession(options);
    setTeamFolders(*session, folders);
    return session;
}

/// With one, "T", which lies at vtf://S on the node "Node".
inline SessionPtr makeTeamSession(const std::string& slaveID = "Own") {
    return makeTeamSession({{L"/home/.Torvi/T/", L"vtf://S/"}}, slaveID);
}

/// Two on the node "Node": one at a place that is known, the other not.
inline std::vector<TeamFolder> teamFoldersOfNodes() {
    return {{L"/home/.Torvi/T/", L"vtf://S/"}, {L"/home/.Torvi/U/", nullptr}};
}

/// An ordinary one, with an agent, without which nothing can be listed.
inline SessionPtr makeAgentSession() {
    SessionOptions options;
    options.agentName = L"agent";
    return makeSession(options);
}

}  // namespace wire
