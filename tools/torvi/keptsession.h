#pragma once

#include <optional>
#include <string>
#include <vector>

#include "connection.h"
#include "state.h"

namespace torvi {

/// The session of one user at one server that outlives the commands, in a file that its owner alone can read:
/// who has a session's id has the session. No other process can use the file while this object lives, which
/// should not be long.
class KeptSession {
public:
    explicit KeptSession(const Connection& connection);

    /// Whether one has been begun for them. Doesn't wait.
    static bool exists(const Connection& connection);
    /// Whom the kept sessions belong to; the rest of the connections is left as it is in `like`.
    static std::vector<Connection> all(const Connection& like);

    /// Empty if there is none.
    std::wstring sid() const { return text("sid"); }
    std::wstring slaveId() const { return text("slaveId"); }
    void keep(const std::wstring& sid, const std::wstring& slaveId);
    void forget() { m_file.clear(); }

private:
    std::wstring text(const char* key) const;

    const Connection& m_connection;
    StateFile m_file;
};

}  // namespace torvi
