#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "calltable.h"
#include "support/logcapture.h"
#include "support/rawserver.h"

namespace wire {

inline std::vector<std::string> withPort(std::vector<std::string> lines, uint32_t port) {
    for (std::string& line : lines) line = fillLine(line, "", port, 0, 0);
    return lines;
}

/// The server's answer to a call, and what becomes of it.
struct ReplyRow {
    std::string reply;
    uint32_t dwStatus;
    int32_t result;
    std::vector<std::string> lines;  ///< "{port}" is filled in
};

/// `Args` are the good arguments of a call to a server. `also` looks at what else the call leaves.
template <class Args, class Also>
void expectReplies(const std::vector<ReplyRow>& rows, Also also) {
    for (const ReplyRow& row : rows) {
        SCOPED_TRACE(row.reply.substr(0, 200));
        RawServer server({Reply::json(row.reply)});
        Args call(server);
        LogCapture log;
        EXPECT_EQ(call.run(), row.dwStatus);
        EXPECT_EQ(call.signedResult(), row.result);
        EXPECT_EQ(log.texts(), withPort(row.lines, server.port()));
        also(call);
    }
}
template <class Args>
void expectReplies(const std::vector<ReplyRow>& rows) {
    expectReplies<Args>(rows, [](const Args&) {});
}

}  // namespace wire
