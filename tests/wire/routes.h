#pragma once

#include <functional>
#include <string>
#include <vector>

#include "pathroutes.h"
#include "support/session.h"
#include "support/wire.h"

namespace wire {

/// One way on which a session's call goes out.
struct Route {
    const char* name;
    SessionOptions options;
    const wchar_t* slaveID;  ///< the call's argument
    std::string cgi;         ///< the path of the request
    bool isFileManager = false;
};

/// Every way: either service, to the session's own node and to another one. `fcgi` is the sync service's CGI
/// of this call where the server has the faster end.
inline std::vector<Route> routes(const std::string& fcgi = "torvisrv.cgi") {
    const auto session = [](const char* ownSlaveID) {
        SessionOptions options;
        options.agentName = L"agent";
        options.slaveID = ownSlaveID;
        return options;
    };
    std::vector<Route> all;
    const std::string sync = "/cgi-bin/torvi/torvisrv.cgi";
    all.push_back({"no node named", session(""), nullptr, sync});
    all.push_back({"a node, but no cluster", session(""), L"Node", sync});
    all.push_back({"a cluster, no node named", session("Own"), L"", sync});
    all.push_back({"another node", session("Own"), L"Node", "/Node" + sync});
    all.push_back({"the session's own node", session("Own"), L"oWN", sync});

    Route route{"the faster end", session("Own"), L"Node", "/Node/cgi-bin/torvi/" + fcgi};
    route.options.fcgi = true;
    all.push_back(route);

    route = {"the file manager", session("Own"), L"Node", "/cgi-bin/filemanager/utilRequest.cgi"};
    route.options.fileManager = route.isFileManager = true;
    all.push_back(route);
    return all;
}

/// Every way to a CGI that isn't the usual one: `cgi` of the sync service, `fcgi` where the server has the
/// faster end, and the path of a session of the file manager.
inline std::vector<Route> routesTo(const std::string& cgi, const std::string& fcgi,
                                   const std::string& fileManagerPath) {
    const std::string usual = "torvisrv.cgi";
    std::vector<Route> all = routes(fcgi);
    for (Route& route : all) {
        if (route.isFileManager)
            route.cgi = fileManagerPath;
        else if (const auto at = route.cgi.find(usual); at != std::string::npos)
            route.cgi.replace(at, usual.size(), cgi);
    }
    return all;
}

/// Every way of a call to the web file manager, which a session of the sync service reaches through the
/// node's front end.
inline std::vector<Route> routesToFileManager(
    const std::string& place = "/cgi-bin/filemanager/utilRequest.cgi") {
    const std::string node = "/Node";
    std::vector<Route> all = routes();
    for (Route& route : all)
        route.cgi = (route.cgi.compare(0, node.size(), node) == 0 ? node : std::string()) + place;
    return all;
}

/// Every way of a call that names no node: it goes to the session's own.
inline std::vector<Route> routesWithoutNode() {
    const std::string node = "/Node";
    std::vector<Route> all = routes();
    for (Route& route : all)
        if (route.cgi.compare(0, node.size(), node) == 0) route.cgi.erase(0, node.size());
    return all;
}

/// A call on a session, to a node. Its numbers are the call's own business.
using CallTo = std::function<void(_WFM_AUTH_CONTEXT* session, uint32_t port, const wchar_t* slaveID)>;

/// On every route the call sends one GET with this query and with the headers of a GET, and nothing else.
/// `fileManagerQuery` is the file manager's, where it differs.
inline void expectOnEveryRoute(const std::string& query, const CallTo& call,
                               const std::vector<Route>& all = routes(),
                               const std::string& fileManagerQuery = {}, const char* file = __builtin_FILE(),
                               int where = __builtin_LINE()) {
    for (const Route& route : all) {
        const testing::ScopedTrace trace(file, where, std::string("route: ") + route.name);
        const RawServer server({Reply::json("{}")});
        const SessionPtr session = makeSession(route.options);
        call(session.get(), server.port(), route.slaveID);
        const bool differs = route.isFileManager && !fileManagerQuery.empty();
        expectGet(server.onlyRequest(), route.cgi + "?" + (differs ? fileManagerQuery : query),
                  baseHeaders(server, "agent"), file, where);
    }
}

/// A call on a session that names a path by its folder and its name.
using CallForPath = std::function<void(_WFM_AUTH_CONTEXT* session, uint32_t port, const PathRoute& route)>;
/// Its query for the two as they are sent, percent-encoded.
using PathQuery = std::function<std::string(const std::string& folder, const std::string& name)>;

/// Wherever the path lies, the call sends one GET to its place and node.
inline void expectOnEveryPathRoute(const PathQuery& query, const CallForPath& call,
                                   const char* file = __builtin_FILE(), int where = __builtin_LINE()) {
    for (const PathRoute& route : pathRoutes()) {
        // Folder and name must be given.
        if (route.folder == nullptr || *route.folder == L'\0' || *route.name == L'\0') continue;
        const testing::ScopedTrace trace(file, where, std::string("route: ") + route.what);
        const RawServer server({Reply::json("{}")});
        const SessionPtr session = route.session();
        call(session.get(), server.port(), route);
        expectGet(server.onlyRequest(), route.cgi() + "?" + query(route.sent, route.sentName),
                  baseHeaders(server), file, where);
    }
}

}  // namespace wire
