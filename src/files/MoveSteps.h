#pragma once

#include "files/RouteTo.h"
#include "files/TwoPaths.h"

namespace Lattice {

/// In what the lines of the two moves differ, and must.
struct MoveLines {
    const char* retry;
    const char* pollFailed;
    const char* renaming;
    const char* renameFailed;
    const char* deleting;
};

/// The form of a move: what goes where, under its old name.
void AddMoveFields(Call& call, const TwoPaths& paths);

/// A move after its request: what the caller's next steps need.
struct Move {
    Call& call;
    const MoveLines& lines;
    _WFM_AUTH_CONTEXT* context;
    const wchar_t* server;
    uint32_t port;
    const wchar_t* slaveID;
    const TwoPaths& paths;
    bool* cancel;
    uint32_t* resultWord;
};

/// Follows the job that moves the object to its end, and clears it where the server keeps it. False if it
/// couldn't be followed: the call has then failed.
bool FollowJob(const Move& move, int32_t pid, const wchar_t* node);

/// Gives the moved object its new name, where it has one, and ends the call. An object that can't be renamed
/// is deleted, not moved back.
uint32_t FinishMove(const Move& move);

}  // namespace Lattice
