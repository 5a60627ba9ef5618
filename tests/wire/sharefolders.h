#pragma once

#include <string>
#include <vector>

#include "WebFileManShareAPI.h"
#include "forms.h"
#include "refusals.h"
#include "sessioncall.h"
#include "teamfolders.h"

// What the tests of the calls share that carry a shared folder from one path to another.
namespace wire {

template <class Derived>
struct ShareFolderCall : SessionCall<Derived> {
    const wchar_t* source = L"/home/d/old";
    const wchar_t* destination = L"/home/d/new";
    uint32_t number = 7;  // not read

    using SessionCall<Derived>::SessionCall;
    bool isUntouched() const { return this->result == 0xABCD; }
};

struct RenameShareCall : ShareFolderCall<RenameShareCall> {
    using ShareFolderCall::ShareFolderCall;
    static const char* function() { return "WebFileManRenameShareFolder"; }
    uint32_t call() {
        return WebFileManRenameShareFolder(session, kServer, port, source, destination, number, nullptr,
                                           resultWord);
    }
};

struct MoveShareCall : ShareFolderCall<MoveShareCall> {
    using ShareFolderCall::ShareFolderCall;
    static const char* function() { return "WebFileManMoveShareFolder"; }
    uint32_t call() {
        return WebFileManMoveShareFolder(session, kServer, port, source, destination, number, nullptr,
                                         resultWord);
    }
};

struct UpdateLinkCall : ShareFolderCall<UpdateLinkCall> {
    using ShareFolderCall::ShareFolderCall;
    static const char* function() { return "WebFileManUpdateLink"; }
    uint32_t call() {
        return WebFileManUpdateLink(session, kServer, port, slaveID, source, destination, number, nullptr,
                                    resultWord);
    }
};

/// Two paths, and what of them travels.
struct ShareFolderPaths {
    const wchar_t *source, *destination;
    HeaderList fields;
};

/// The call sends one form with these fields, wherever the session's team folders lie.
template <class Call>
void expectShareFolderForms(const std::string& target, const std::vector<ShareFolderPaths>& rows) {
    const SessionPtr session = makeTeamSession();
    for (const ShareFolderPaths& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.source));
        const RawServer server({Reply::json("{}")});
        Call call;
        call.source = row.source;
        call.destination = row.destination;
        EXPECT_EQ(call.run(session.get(), server.port()), 0u);
        expectPost(server, server.onlyRequest(), target, row.fields, "agent");
    }
}

}  // namespace wire
