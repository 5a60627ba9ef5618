#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "calltable.h"
#include "forms.h"
#include "networkalive.h"
#include "support/logcapture.h"
#include "support/rawserver.h"
#include "support/session.h"
#include "support/timers.h"
#include "support/wire.h"
#include "teamfolders.h"

// What the tests of the two moves share. A move is a list of exchanges, and each of its ends is a list of
// them, two numbers and the lines.
namespace wire {

/// The exchanges of which a move is made.
enum class Step { Move, Poll, Clear, Rename, Remove };
struct Exchange {
    Step step;
    Reply reply;
};

/// How a move of "/home/a/old" went on.
inline Reply started() {
    return Reply::json(R"({"success":"true","status":1,"pid":7})");
}
inline Reply percentDone(int percent) {
    return Reply::json(R"({"status":1,"filename":"old","percent":)" + std::to_string(percent) + "}");
}
inline Reply done() {
    return percentDone(100);
}
inline Reply unavailable() {
    return Reply::status(503);
}

inline LogLine debugLine(const std::string& text) {
    return {"Debug", text};
}

using Lines = std::vector<LogLine>;

inline Lines operator+(Lines lines, const Lines& more) {
    lines.insert(lines.end(), more.begin(), more.end());
    return lines;
}

/// The two lines of a call that failed. "{port}" is filled in later.
inline Lines failed(const std::string& function, const std::string& word, int dwStatus) {
    return {"[WFM] " + function + ": " + word,
            "[WFM] " + function + "(127.0.0.1:{port}) failed dwStatus(" + std::to_string(dwStatus) + ")"};
}
inline Lines failedPoll(int dwStatus) {
    const char* const words[] = {"WFM_PARSE_XML_HTTPTRAN_PROXY_AUTH_REQ",
                                 "WFM_PARSE_XML_HTTPTRAN_SERVICE_UNAVAIL"};
    return failed("WFMGetProgress", dwStatus == 6 ? "FAIL(httpStatusCode=500)" : words[dwStatus - 11],
                  dwStatus);
}

/// A move with good arguments, which names itself and its move request.
struct MoveArguments {
    const wchar_t* slaveID = nullptr;
    const wchar_t* source = L"/home/a/old";
    const wchar_t* destination = L"/home/b/new";
    bool cancelled = false;
    bool* cancel = &cancelled;
    uint32_t result = 0xABCD;
    uint32_t* resultWord = &result;

    MoveArguments() = default;
    MoveArguments(const MoveArguments&) = delete;
    MoveArguments& operator=(const MoveArguments&) = delete;
    virtual ~MoveArguments() = default;

    virtual uint32_t run(_WFM_AUTH_CONTEXT* session, uint32_t port) = 0;
    virtual const char* name() const = 0;
    virtual const char* blankBeforeRemove() const = 0;
    virtual const char* retryWord() const = 0;
    virtual std::string request(bool fileManager, const std::string& from, const std::string& to) const = 0;
    bool isUntouched() const { return result == 0xABCD; }
};

struct MoveCall : MoveArguments {
    void asJob() {}  // it always is one
    uint32_t run(_WFM_AUTH_CONTEXT* session, uint32_t port) override {
        return WFMMovePath(session, kServer, port, slaveID, source, destination, cancel, resultWord);
    }
    const char* name() const override { return "WFMMovePath"; }
    const char* blankBeforeRemove() const override { return " "; }
    const char* retryWord() const override {
        return "WFMGetProgress WFM_PARSE_XML_HTTPTRAN_QUERY_HTTP_HEADER_FAIL retry";
    }
    std::string request(bool fileManager, const std::string& from, const std::string& to) const override {
        return std::string("func=move&sid=sid123") + (fileManager ? "" : "&no_fork=0") +
               " source_file=old&source_total=1&source_path=" + from + "&dest_path=" + to + "&mode=0";
    }
};

struct CheckedMoveCall : MoveArguments {
    int64_t time = 1700000000;
    int64_t size = 5000000000;
    bool isFolder = false;

    void asJob() { isFolder = true; }
    uint32_t run(_WFM_AUTH_CONTEXT* session, uint32_t port) override {
        return WFMMovePathwithCheckProfile(session, kServer, port, slaveID, source, destination, time, size,
                                           isFolder, cancel, resultWord);
    }
    const char* name() const override { return "WFMMovePathwithCheckProfile"; }
    const char* blankBeforeRemove() const override { return ""; }
    const char* retryWord() const override {
        return "WFMGetProgress WFM_PARSE_XML_HTTPTRAN_QUERY_HTTP_HEADER_FAIL retry)";
    }
    std::string request(bool fileManager, const std::string& from, const std::string& to) const override {
        return std::string("func=move&sid=sid123") +
               (fileManager ? "" : (isFolder ? "&no_fork=0" : "&no_fork=1")) +
               " source_file=old&source_total=1&source_path=" + from + "&dest_path=" + to +
               "&mode=0&check_nubo_file_profile=1&check_nubo_file_path=" + from +
               "%2Fold&check_nubo_file_exist=1&check_nubo_file_type=" +
               (isFolder ? "1" : "0&check_nubo_file_size=5000000000&check_nubo_file_time=1700000000");
    }
};

class MoveTest : public testing::Test {
protected:
    virtual MoveArguments& move() = 0;
    /// A move under the same name.
    void keepName() { move().destination = L"/home/b/old"; }

    struct End {
        uint32_t dwStatus;
        int32_t result;
        Lines lines;
        std::vector<int> slept;
    };

    /// The call meets these answers, sends exactly these requests, and ends like this.
    void expectEnd(const std::vector<Exchange>& exchanges, const End& end,
                   const char* file = __builtin_FILE(), int where = __builtin_LINE()) {
        const testing::ScopedTrace trace(file, where, "the end of a move");
        if (session == nullptr) session = makeSession();
        if (fileManager) useFileManager(*session);
        size_t answers = 0;
        RawServer server([&](const Request&) {
            const size_t number = answers++;
            if (answers == cancelAfter) move().cancelled = true;
            return number < exchanges.size() ? exchanges[number].reply : Reply::status(404);
        });
        log.clear();
        const SleepCapture sleeps;
        EXPECT_EQ(move().run(session.get(), server.port()), end.dwStatus);
        EXPECT_EQ(static_cast<int32_t>(move().result), end.result);

        std::vector<std::string> expected, got;
        for (const Exchange& exchange : exchanges) expected.push_back(textOf(exchange.step));
        for (const Request& request : server.requests()) got.push_back(textOf(request));
        EXPECT_EQ(got, expected);

        Lines lines = end.lines;
        for (LogLine& line : lines) line.text = fillLine(line.text, "", server.port(), 0, 0);
        EXPECT_EQ(log.lines(), lines);
        EXPECT_EQ(sleeps.slept(), end.slept);
    }
    /// The same for a call that comes to its end before it asks anything.
    void expectNoRequest(uint32_t dwStatus, int32_t result, const Lines& lines,
                         const char* file = __builtin_FILE(), int where = __builtin_LINE()) {
        expectEnd({}, {dwStatus, result, lines, {}}, file, where);
    }

    static std::string textOf(const Request& request) {
        return request.method() + " " + request.target() + (request.body.empty() ? "" : " " + request.body);
    }
    std::string textOf(Step step) {
        // The move and its poll go to the object's node, what follows to the caller's.
        const std::string& node = step == Step::Move || step == Step::Poll ? moveNode : callersNode;
        const std::string cgi = fileManager ? "/cgi-bin/filemanager/utilRequest.cgi?"
                                            : "/" + node + "cgi-bin/torvi/torvisrv.cgi?";
        switch (step) {
            case Step::Move:
                return "POST " + cgi + move().request(fileManager, sourceFolder, folder);
            case Step::Poll:
                return "GET " + cgi + "func=get_move_status&sid=sid123&pid=" + pid;
            case Step::Clear:
                return "GET " + cgi + "func=daemon_list&sid=sid123&subfunc=delete&pid=" + pid;
            case Step::Rename:
                return "POST " + cgi + "func=rename&sid=sid123 path=" + folder +
                       "&source_name=old&dest_name=new";
            case Step::Remove:
                return "POST " + cgi + "func=delete&sid=sid123 file_name=old&file_total=1&path=" + folder;
        }
        return {};
    }

    // The lines of a move to another name in "/home/b".
    std::string name() { return move().name(); }
    std::string word(const std::string& text) { return "[WFM] " + name() + ": " + text; }
    Lines toRename() {
        return {
            debugLine(word("WFMRenamePath strOldPath(" + movedTo + "old) strNewpath(" + movedTo + "new)"))};
    }
    /// Lines of a rename that failed and of the removal that it led to.
    Lines removed(int dwStatus, int result) {
        return {LogLine(word("WFMRenamePath failed(" + std::to_string(dwStatus) + ")(" +
                             std::to_string(result) + ")")),
                debugLine("[WFM]" + std::string(move().blankBeforeRemove()) + name() +
                          ": WFMDeletePath strMovePathName(" + movedTo + "old)")};
    }
    Lines retry() { return {"[WFM] " + name() + " " + move().retryWord()}; }
    Lines pollFailed(int dwStatus) {
        return {word("WFMGetProgress failed(" + std::to_string(dwStatus) + ")"), summary(dwStatus)};
    }
    std::string summary(int dwStatus) {
        return "[WFM] " + name() + "(127.0.0.1:{port}) failed dwStatus(" + std::to_string(dwStatus) + ")";
    }

    SessionPtr session;  ///< null: an ordinary one
    bool fileManager = false;
    size_t cancelAfter = 0;  ///< the flag is set when that many requests have come
    // As they stand on the wire.
    std::string moveNode, callersNode;
    std::string sourceFolder = "%2Fhome%2Fa";
    std::string folder = "%2Fhome%2Fb";
    std::string pid = "7";
    std::string movedTo = "/home/b/";  ///< the destination folder in the lines
    const NetworkIs network{true};
    LogCapture log{32 | 4};
};

template <class Call>
class MoveTestOf : public MoveTest {
protected:
    MoveArguments& move() override { return call; }
    Call call;
};

/// Two team folders on nodes of their own, and one on the second's in other letters.
inline SessionPtr clusterSession() {
    return makeTeamSession({{L"/home/.Torvi/T/", L"vtf://S/", L"n2"},
                            {L"/home/.Torvi/U/", L"vtf://U/", L"n3"},
                            {L"/home/.Torvi/V/", L"vtf://V/", L"N2"}},
                           "node1");
}

}  // namespace wire
