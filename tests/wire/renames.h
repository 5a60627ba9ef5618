#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "forms.h"
#include "support/session.h"
#include "teamfolders.h"

// What the tests of the two renames share.
namespace wire {

/// Where a rename goes, and under which folder and names.
struct RenameRoute {
    const char* what;
    const char* ownSlaveID;
    const wchar_t* slaveID;
    const wchar_t *oldPath, *newPath;
    const char* prefix;  ///< in front of "cgi-bin"
    const char *folder, *oldName, *newName;
    bool fileManager = false;

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
                               {L"/home/.Torvi/Twin/", L"vtf://S/", L"n3"},
                               {L"/home/.Torvi/U/", L"vtf://U/", L"n3"}});
        return made;
    }
};

inline const std::vector<RenameRoute>& renameRoutes() {
    static const std::vector<RenameRoute> table = {
        {"a plain path", "", nullptr, L"/home/d/a", L"/home/d/b", "", "%2Fhome%2Fd", "a", "b"},
        {"one slash at the ends is cut", "", nullptr, L"/home/d/a/", L"/home/d/b/", "", "%2Fhome%2Fd", "a",
         "b"},
        {"no slash in front", "", nullptr, L"home/a", L"home/b", "", "home", "a", "b"},
        {"names as they are", "", nullptr, L"/home/b c&d/100% \x6587", L"/home/b c&d/x=y+z", "",
         "%2Fhome%2Fb%20c%26d", "100%25%20%E6%96%87", "x%3Dy%2Bz"},
        {"a new path without any slash", "", nullptr, L"/home/a", L"b", "", "", "%2Fhome%2Fa", "b"},
        {"another node", "node1", L"n5", L"/home/a", L"/home/b", "n5/", "%2Fhome", "a", "b"},
        {"the own node in other letters", "node1", L"NoDe1", L"/home/a", L"/home/b", "", "%2Fhome", "a", "b"},
        {"a node where there is no cluster", "", L"n5", L"/home/a", L"/home/b", "", "%2Fhome", "a", "b"},
        {"a team folder goes before the caller's node", "node1", L"n5", L"/home/.Torvi/T/a",
         L"/home/.Torvi/T/b", "n2/", "vtf%3A%2F%2FS", "a", "b"},
        {"deep in a team folder", "node1", nullptr, L"/home/.Torvi/T/d/e/a/", L"/home/.Torvi/T/d/e/b", "n2/",
         "vtf%3A%2F%2FS%2Fd%2Fe", "a", "b"},
        {"a team folder of the own node", "node1", L"n5", L"/home/.Torvi/Own/a", L"/home/.Torvi/Own/b", "",
         "vtf%3A%2F%2FO", "a", "b"},
        {"a team folder where there is no cluster", "", L"n5", L"/home/.Torvi/T/a", L"/home/.Torvi/T/b", "",
         "vtf%3A%2F%2FS", "a", "b"},
        {"the old path names the node", "node1", nullptr, L"/home/.Torvi/T/a", L"/home/.Torvi/Twin/b", "n2/",
         "vtf%3A%2F%2FS", "a", "b"},
        {"the new path doesn't", "node1", L"n5", L"vtf://S/a", L"/home/.Torvi/Twin/b", "n5/", "vtf%3A%2F%2FS",
         "a", "b"},
        // Whole paths are mapped: a team folder itself keeps a name.
        {"two team folders", "node1", L"n5", L"/home/.Torvi/T", L"/home/.Torvi/U/", "n2/", "vtf%3A%2F", "S",
         "U"},
        {"in the team area itself", "node1", L"n5", L"/home/.Torvi/x", L"/home/.Torvi/y", "n5/",
         "%2Fhome%2F.Torvi", "x", "y"},
        {"the web file manager maps and routes nothing", "node1", L"n5", L"/home/.Torvi/T/a",
         L"/home/.Torvi/T/b", "", "%2Fhome%2F.Torvi%2FT", "a", "b", true},
    };
    return table;
}

/// Two paths that can't be renamed, or moved, since one lies at the top or has no name.
struct DeniedPaths {
    const wchar_t *oldPath, *newPath;
    const char* texts;  ///< of the line that names both
};
inline const std::vector<DeniedPaths>& deniedPaths() {
    static const std::vector<DeniedPaths> table = {{L"/share", L"/home/b", "(/share)(/home/b)"},
                                                   {L"/share/", L"/home/b", "(/share)(/home/b)"},
                                                   {L"share", L"/home/b", "(share)(/home/b)"},
                                                   {L"share", L"other", "(share)(other)"},
                                                   {L"/", L"/home/b", "()(/home/b)"},
                                                   {L"/home/a", L"/b", "(/home/a)(/b)"},
                                                   {L"/home/a", L"/b/", "(/home/a)(/b)"},
                                                   {L"/share", L"/other", "(/share)(/other)"},
                                                   {L"/share", L"other", "(/share)(other)"},
                                                   {L"/home/a", L"/", "(/home/a)()"},
                                                   // A name is missing.
                                                   {L"/home/a//", L"/home/b", "(/home/a/)(/home/b)"},
                                                   {L"/home/a", L"/home/b//", "(/home/a)(/home/b/)"},
                                                   {L"//", L"/home/b", "(/)(/home/b)"},
                                                   {L"/home/a", L"//", "(/home/a)(/)"}};
    return table;
}

}  // namespace wire
