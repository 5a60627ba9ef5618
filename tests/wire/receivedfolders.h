#pragma once

#include <string>
#include <vector>

#include "support/session.h"
#include "teamfolders.h"

namespace wire {

/// Whether a path lies in a folder that this user received, which is nobody else's to share or to ask for.
struct ReceivedFolder {
    const char* what;
    const wchar_t* path;
    const char* sent;  ///< the path as the log has it
    bool isReceived;
    std::vector<TeamFolder> known = {{L"/home/.Torvi/A/", L"vtf://1/"}, {L"/home/.Torvi/T/", L"vtf://2/"}};
    bool fileManager = false;

    SessionPtr session() const {
        SessionOptions options;
        options.slaveID = "Own";
        options.fileManager = fileManager;
        SessionPtr made = makeSession(options);
        setTeamFolders(*made, known);
        return made;
    }
};

inline const std::vector<ReceivedFolder>& receivedFolders() {
    static const std::vector<ReceivedFolder> table = {
        {"the folder itself", L"/home/.Torvi/T", "/home/.Torvi/T", true},
        {"with its slash", L"/home/.Torvi/T/", "/home/.Torvi/T/", true},
        {"deep in it", L"/home/.Torvi/A/d/\x6587", "/home/.Torvi/A/d/\xE6\x96\x87", true},
        {"a name that only begins like it", L"/home/.Torvi/TT", "", false},
        {"other letters", L"/home/.Torvi/t", "", false},
        {"another area", L"/Home/.Torvi/T", "", false},
        {"a folder of the user's own", L"/home/d", "", false},
        {"no folder is known", L"/home/.Torvi/T", "", false, {}},
        {"a known folder that isn't in the area", L"/home/d", "", false, {{L"/home/d/", L"vtf://1/"}}},
        {"a session of the file manager",
         L"/home/.Torvi/T",
         "",
         false,
         {{L"/home/.Torvi/T/", L"vtf://2/"}},
         true},
    };
    return table;
}

}  // namespace wire
