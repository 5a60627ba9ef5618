#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "pathroutes.h"
#include "refusals.h"
#include "replies.h"
#include "sessioncall.h"

// What the tests of the calls inside a versioning session share.
namespace wire {

/// A call on one file, good until a test changes it.
template <class Derived>
struct VersioningCall : SessionCall<Derived> {
    std::wstring pathText = L"/home/d/a.txt";
    const wchar_t* path = pathText.c_str();
    const wchar_t* lockID = L"lock-1";
    const wchar_t* versionID = L"version-1";

    using SessionCall<Derived>::SessionCall;
    void setPath(const std::wstring& text) {
        pathText = text;
        path = pathText.c_str();
    }
    bool isUntouched() const { return this->result == 0xABCD; }
};

/// The query of a call for folder and name as they are sent.
using VersioningQuery = std::function<std::string(const std::string& folder, const std::string& name)>;

/// Wherever the file lies, the call sends one GET to its place and node, with its name apart.
template <class Args>
void expectVersioningRoutes(const VersioningQuery& query) {
    for (const PathRoute& route : pathRoutes()) {
        SCOPED_TRACE(route.what);
        RawServer server({Reply::json("{}")});
        Args call;
        const SessionPtr session = route.session();
        call.slaveID = route.slaveID;
        call.setPath(route.path());
        call.run(session.get(), server.port());
        expectGet(server.onlyRequest(), route.cgi() + "?" + query(route.sent, route.sentName),
                  baseHeaders(server));
    }
}

/// Folder and name are encoded; the ids, which the server made, aren't.
template <class Args>
void expectVersioningEncoding(
    const std::function<std::string(const std::string& folder, const std::string& name,
                                    const std::string& lockID, const std::string& versionID)>& query) {
    RawServer server({Reply::json("{}")});
    Args call(server);
    call.setPath(L"/100% & \x6587/a'b=\x1F600~.txt");
    call.lockID = L"l/1:2,3=4+5";
    call.versionID = L"v/1:2,3=4+5";
    call.run();
    expectRequestLine(
        server.onlyRequest(),
        "GET /cgi-bin/torvi/torvisrv.cgi?" +
            query("%2F100%25%20%26%20%E6%96%87", "a%27b%3D%F0%9F%98%80~.txt", "l/1:2,3=4+5", "v/1:2,3=4+5") +
            " HTTP/1.1");
}

}  // namespace wire
