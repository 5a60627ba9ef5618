#pragma once

#include <string>
#include <vector>

#include "cli_support.h"
#include "clustertemplate.h"
#include "support/nginx.h"

/// Two nodes behind a front end, and the command line in front of that.
class CliClusterTest : public testing::Test {
protected:
    /// With these options for both nodes, too.
    explicit CliClusterTest(std::vector<std::string> more = {})
        : m_more(std::move(more)), master(node("master")), other(node("node2")) {
        cli.goThrough(front.port());
    }

private:
    Nas::Options node(const std::string& id) const {
        Nas::Options options;
        options.arguments = {"--slave-id", id, "--session-dir", m_sessions.file("sids")};
        options.arguments.insert(options.arguments.end(), m_more.begin(), m_more.end());
        return options;
    }

    TempDir m_sessions;
    std::vector<std::string> m_more;

protected:
    Nas master;
    Nas other;
    Nginx front{clusterTemplate(),
                {{"MASTER", "127.0.0.1:" + std::to_string(master.port())},
                 {"MASTER_ID", "master"},
                 {"NODE", "127.0.0.1:" + std::to_string(other.port())},
                 {"NODE_ID", "node2"}}};
    Cli cli{master};
};
