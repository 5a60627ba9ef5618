#pragma once

#include <QString>
#include <cstdint>
#include <functional>

#include "failure.h"
#include "session.h"

namespace torvi {

/// What the server tells of a job that it runs.
struct JobState {
    bool known = false;
    uint32_t percent = 0;
    int32_t error = 0;  ///< why it failed, as a client code; 0 while all is well

    bool done() const { return known && error == 0 && percent >= 100; }
};

JobState askJob(const Session& session, const QString& what, const QString& pid, const std::wstring& node);
/// The failure of a job that isn't known or has failed.
Failure jobFailure(const QString& what, const QString& pid, const JobState& state);

struct JobWait {
    QString what;   ///< for failures
    QString label;  ///< of the bar
    QString pid;
    std::wstring node;
    bool quiet = false;
    /// Whether what the job was to do is done; for servers that forget a job once it has ended, or tell no
    /// percents.
    std::function<bool()> done;
};

/// Asks until the job has ended, with a bar. Throws if it fails.
void waitForJob(const Session& session, const JobWait& wait);
/// The same for a job that the server may not have named: then until `done` says so, and a minute at most.
void waitForEnd(const Session& session, const JobWait& wait);
/// Lets this thread's timers run for a while.
void pause(int milliseconds);

}  // namespace torvi
