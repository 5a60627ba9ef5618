#pragma once

#include <string>
#include <vector>

#include "core/authcontext.h"

/// A session with team folder lists that are set slot by slot, null ones and absent lists too.
class TeamLists {
public:
    struct Row {
        const wchar_t* clientPath;
        const wchar_t* serverPath;
        const wchar_t* slaveID = nullptr;
    };

    TeamLists(const std::wstring& ownSlaveID, const std::vector<Row>& rows) {
        context.bUseNuboCGI = true;
        ownSlaveID.copy(context.szSlaveID, 259);
        for (const Row& row : rows) {
            m_clientPaths.push_back(const_cast<wchar_t*>(row.clientPath));
            m_serverPaths.push_back(const_cast<wchar_t*>(row.serverPath));
            m_slaveIDs.push_back(const_cast<wchar_t*>(row.slaveID));
        }
        context.nTeamFolderCount = static_cast<int32_t>(rows.size());
        context.lppOriPathList = m_clientPaths.data();
        context.lppTeamFolderPathList = m_serverPaths.data();
        context.lppTeamFolderSlaveIDList = m_slaveIDs.data();
    }
    TeamLists(const TeamLists&) = delete;
    TeamLists& operator=(const TeamLists&) = delete;

    _WFM_AUTH_CONTEXT context{};

private:
    std::vector<wchar_t*> m_clientPaths, m_serverPaths, m_slaveIDs;
};
