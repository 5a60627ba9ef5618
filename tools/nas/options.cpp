#include "options.h"

#include <CLI/CLI.hpp>
#include <stdexcept>

namespace nas {

int readOptions(int argc, char** argv, Options& options) {
    CLI::App app{
        "A NAS on a folder: serves the sync and file-manager protocols strictly, for tests and trials.",
        "torvi-nas"};
    std::vector<std::string> users;
    std::vector<std::string> quotas;
    std::vector<std::string> teams;
    std::vector<std::string> faults;
    long long ttl = options.sessionTtl.count();
    long long jobDelay = 0;
    long long lockTtl = options.lockTtl.count();
    bool noVersioning = false;
    long long partialMaxAge = options.partialMaxAge.count();
    bool noSync = false;
    bool noFcgi = false;

    app.add_option("--root", options.root,
                   "Folder to serve; its subfolders are the shares, homes/<user> the homes")
        ->required()
        ->check(CLI::ExistingDirectory);
    app.add_option("--address", options.address, "Address to listen on")->capture_default_str();
    app.add_option("--port", options.port, "HTTP port, 0 for any free one")
        ->capture_default_str()
        ->check(CLI::Range(0, 65535));
    app.add_option("--tls-port", options.tlsPort, "HTTPS port, 0 for any free one; no HTTPS without it")
        ->check(CLI::Range(0, 65535));
    auto* certificate =
        app.add_option("--cert", options.certificate, "Certificate chain (PEM); default self-signed")
            ->check(CLI::ExistingFile);
    app.add_option("--key", options.key, "Private key of --cert (PEM)")
        ->check(CLI::ExistingFile)
        ->needs(certificate);
    app.add_option("--user", users, "name:password or name:password:admin, repeatable");
    app.add_option("--quota", quotas, "name:bytes that the user's home may hold, repeatable");
    app.add_option("--team", teams,
                   "owner:/path:receiver[:ro] shares a folder as vtf://<owner>-<leaf>/, repeatable");
    auto* slaveId = app.add_option("--slave-id", options.slaveId, "This node's id in a cluster");
    auto* clusterStatus = app.add_option("--cluster-status", options.clusterStatus,
                                         "Cluster status told at login; 1 with --slave-id, else 0");
    app.add_option("--session-ttl", ttl, "Seconds of rest after which a session is gone")
        ->capture_default_str()
        ->check(CLI::Range(1LL, 31536000LL));
    app.add_option("--session-dir", options.sessionFolder,
                   "Keep sessions here, shared by the nodes of a cluster");
    app.add_option("--job-delay", jobDelay, "Milliseconds that a job takes at least")
        ->capture_default_str()
        ->check(CLI::Range(0LL, 86400000LL));
    app.add_option("--partial-max-age", partialMaxAge,
                   "Seconds after which an upload in slices, or work on a version, is given up")
        ->capture_default_str()
        ->check(CLI::Range(1LL, 31536000LL));
    app.add_option("--lock-ttl", lockTtl, "Seconds of rest after which a file's lock is gone")
        ->capture_default_str()
        ->check(CLI::Range(1LL, 31536000LL));
    app.add_flag("--no-versioning", noVersioning, "A server that keeps no versions of files");
    app.add_option("--server-name", options.serverName, "Name told at login")->capture_default_str();
    app.add_option("--server-version", options.version, "Version that the bare CGI tells")
        ->capture_default_str();
    app.add_option("--server-build", options.build, "Build number that the bare CGI tells")
        ->capture_default_str();
    app.add_flag("--no-sync", noSync, "An older server: nothing under cgi-bin/torvi");
    app.add_flag("--no-fcgi", noFcgi, "A server without torvisrv.fcgi");
    app.add_option("--fail", faults,
                   "Arm a fault: name[,match=TEXT][,count=N][,skip=N][,bytes=K][,ms=M]..., repeatable");
    app.add_flag("--control", options.control, "Offer /control/ to arm faults and read what happened");

    try {
        app.parse(argc, argv);
        for (const std::string& rule : users) options.users.add(rule);
        for (const std::string& rule : quotas) options.users.setQuota(rule);
        for (const std::string& rule : teams) options.teams.add(rule);
        for (const std::string& rule : faults) options.faults.push_back(parseFaultRule(rule));
        if (options.certificate.empty() != options.key.empty()) {
            throw std::invalid_argument("--cert and --key go together");
        }
    } catch (const CLI::ParseError& error) {
        return app.exit(error);
    } catch (const std::exception& error) {
        std::cerr << "torvi-nas: " << error.what() << "\n";
        return 2;
    }
    options.sessionTtl = std::chrono::seconds(ttl);
    options.jobDelay = std::chrono::milliseconds(jobDelay);
    options.partialMaxAge = std::chrono::seconds(partialMaxAge);
    options.lockTtl = std::chrono::seconds(lockTtl);
    options.versioning = !noVersioning;
    options.sync = !noSync;
    options.fcgi = !noFcgi;
    if (clusterStatus->empty() && !slaveId->empty()) {
        options.clusterStatus = 1;
    }
    return -1;
}

}  // namespace nas
