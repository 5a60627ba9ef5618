#pragma once

#include <string>
#include <vector>

#include "support/session.h"
#include "teamfolders.h"

namespace wire {

/// Where a call goes that names one path: what it is given, and what stands in its request.
struct PathRoute {
    const char* what;
    const char* ownSlaveID;
    const wchar_t* slaveID;
    const wchar_t* folder;  ///< null: the path has no "/"
    const wchar_t* name;
    const char* prefix;  ///< in front of "cgi-bin"
    const char* sent;    ///< the folder, percent-encoded
    const char* sentName;
    bool fileManager = false;

    std::wstring path() const { return folder != nullptr ? std::wstring(folder) + L"/" + name : name; }
    std::string cgi() const {
        return fileManager ? "/cgi-bin/filemanager/utilRequest.cgi"
                           : "/" + std::string(prefix) + "cgi-bin/torvi/torvisrv.cgi";
    }
    SessionPtr session() const {
        SessionOptions options;
        options.slaveID = ownSlaveID;
        options.fileManager = fileManager;
        SessionPtr made = makeSession(options);
        setTeamFolders(*made, {{L"/home/.Torvi/T/", L"vtf://S/", L"n2"},
                               {L"/home/.Torvi/Own/", L"vtf://O/", L"NODE1"},
                               {L"/home/.Torvi/N/", L"vtf://N/", nullptr}});
        return made;
    }
};

/// The rules of node and team folder, one row each.
inline const std::vector<PathRoute>& pathRoutes() {
    static const std::vector<PathRoute> table = {
        {"a plain path", "", nullptr, L"/home/d", L"a.txt", "", "%2Fhome%2Fd", "a.txt"},
        {"no slash in it", "", nullptr, nullptr, L"a.txt", "", "", "a.txt"},
        {"a slash at its end", "", nullptr, L"/home/d", L"", "", "%2Fhome%2Fd", ""},
        {"the server's root", "", nullptr, L"", L"a.txt", "", "", "a.txt"},
        {"another node", "node1", L"n5", L"/home", L"a", "n5/", "%2Fhome", "a"},
        {"the own node", "node1", L"node1", L"/home", L"a", "", "%2Fhome", "a"},
        {"the own node in other letters", "node1", L"NoDe1", L"/home", L"a", "", "%2Fhome", "a"},
        {"no node", "node1", L"", L"/home", L"a", "", "%2Fhome", "a"},
        {"a node where there is no cluster", "", L"n5", L"/home", L"a", "", "%2Fhome", "a"},
        {"a team folder goes before the caller's node", "node1", L"n5", L"/home/.Torvi/T", L"a", "n2/",
         "vtf%3A%2F%2FS", "a"},
        {"deep in a team folder", "node1", nullptr, L"/home/.Torvi/T/d/e", L"a", "n2/",
         "vtf%3A%2F%2FS%2Fd%2Fe", "a"},
        {"a team folder itself loses its name", "node1", nullptr, L"/home/.Torvi", L"T", "n2/",
         "vtf%3A%2F%2FS", ""},
        {"a team folder of the own node", "node1", L"n5", L"/home/.Torvi/Own", L"a", "", "vtf%3A%2F%2FO",
         "a"},
        {"a team folder where there is no cluster", "", L"n5", L"/home/.Torvi/T", L"a", "", "vtf%3A%2F%2FS",
         "a"},
        {"a team folder of no known node", "node1", L"n5", L"/home/.Torvi/N", L"a", "n5/", "vtf%3A%2F%2FN",
         "a"},
        {"a name that only begins like a team folder", "node1", L"n5", L"/home/.Torvi/TT", L"a", "n5/",
         "%2Fhome%2F.Torvi%2FTT", "a"},
        {"in the team area itself", "node1", L"n5", L"/home/.Torvi", L"a", "n5/", "%2Fhome%2F.Torvi", "a"},
        {"the web file manager maps and routes nothing", "node1", L"n5", L"/home/.Torvi/T", L"a", "",
         "%2Fhome%2F.Torvi%2FT", "a", true},
    };
    return table;
}

/// A session with the team folder "T", which lies at vtf://S.
inline SessionPtr pathRouteSession() {
    return pathRoutes().front().session();
}

}  // namespace wire
