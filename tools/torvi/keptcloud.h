#pragma once

#include "cloud.h"
#include "state.h"

namespace torvi {

/// The session in the cloud that outlives the commands, in a file that its owner alone can read. No other
/// process can use the file while this object lives.
class KeptCloud {
public:
    KeptCloud();

    /// Whether there is one. Doesn't wait.
    static bool exists();
    /// Whether another process has ended it before it could be opened.
    bool empty() const { return m_file.content().empty(); }
    QString text(const char* key) const;
    bool tls() const;
    /// Whether it is that application's at that service. What went over TLS isn't for one in clear.
    bool belongsTo(const Cloud& cloud) const;
    CloudTokens tokens() const { return {text("accessToken"), text("refreshToken")}; }
    void keep(const Cloud& cloud);
    /// In place of its tokens; all else stays.
    void keep(const CloudTokens& tokens);
    void forget() { m_file.clear(); }

private:
    StateFile m_file;
};

}  // namespace torvi
