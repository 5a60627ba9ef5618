#pragma once

#include <string>

#include "routes.h"
#include "support/wire.h"

// What the tests of the calls share that send a form.
namespace wire {

/// The whole of a form POST: its line, these fields in this order, and the headers.
inline void expectPost(const RawServer& server, const Request& request, const std::string& target,
                       const HeaderList& fields, const std::string& agent = "VEXA Torvi",
                       const char* file = __builtin_FILE(), int where = __builtin_LINE()) {
    expectRequestLine(request, "POST " + target + " HTTP/1.1", file, where);
    expectForm(request, fields, file, where);
    expectHeaders(request, formHeaders(server, request.body.size(), agent), file, where);
}

/// On every route the call sends one POST with this query and these fields, and nothing else.
/// `fileManagerQuery` is the file manager's, where it differs.
inline void expectPostOnEveryRoute(const std::string& query, const HeaderList& fields, const CallTo& call,
                                   const std::string& fileManagerQuery = {},
                                   const std::vector<Route>& all = routes(),
                                   const char* file = __builtin_FILE(), int where = __builtin_LINE()) {
    for (const Route& route : all) {
        const testing::ScopedTrace trace(file, where, std::string("route: ") + route.name);
        const RawServer server({Reply::json("{}")});
        const SessionPtr session = makeSession(route.options);
        call(session.get(), server.port(), route.slaveID);
        const bool differs = route.isFileManager && !fileManagerQuery.empty();
        expectPost(server, server.onlyRequest(), route.cgi + "?" + (differs ? fileManagerQuery : query),
                   fields, "agent", file, where);
    }
}

inline HeaderList joined(HeaderList fields, const HeaderList& more) {
    fields.insert(fields.end(), more.begin(), more.end());
    return fields;
}

/// The fields by which the server checks that an object is still what the client believes it to be. Paths are
/// given as they stand on the wire.
inline HeaderList fileProfile(const std::string& path, const std::string& size, const std::string& time) {
    return {{"check_nubo_file_profile", "1"}, {"check_nubo_file_path", path}, {"check_nubo_file_exist", "1"},
            {"check_nubo_file_type", "0"},    {"check_nubo_file_size", size}, {"check_nubo_file_time", time}};
}
inline HeaderList folderProfile(const std::string& path) {
    return {{"check_nubo_file_profile", "1"},
            {"check_nubo_file_path", path},
            {"check_nubo_file_exist", "1"},
            {"check_nubo_file_type", "1"}};
}

/// The replies that a call isn't content with because "success" is missing or the text can't be read, and
/// what the parser said to each.
struct UselessReply {
    const char* reply;
    int parsed;
};
inline const std::vector<UselessReply>& uselessReplies() {
    static const std::vector<UselessReply> table = {{R"({"status":1})", 1},
                                                    {R"({"status":1,"success":"false"})", 1},
                                                    {R"({"status":1,"success":"TRUE"})", 1},
                                                    {"{}", 1},
                                                    {R"({"status":1,"success":["true"]})", -1},
                                                    {R"({"status":99999999999,"success":"true"})", -1},
                                                    {"[]", -1},
                                                    {"no", -1},
                                                    {"", -1}};
    return table;
}

/// A reply of that status, the server's own number.
inline Reply answered(const std::string& status) {
    return Reply::json(R"({"success":"true","status":)" + status + "}");
}

}  // namespace wire
