#include "options.h"

#include <CLI/CLI.hpp>
#include <stdexcept>

namespace nas {

namespace {

void requireMailFolder(const Options& options) {
    for (const auto& [name, user] : options.users.all()) {
        if (!user.second.mailTo.empty() && options.mailFolder.empty()) {
            throw std::invalid_argument("--second-factor " + name + ":mail needs --mail-dir");
        }
    }
}

void addIdentityOptions(CLI::App& app, Identity& identity, std::vector<std::string>& withoutSync) {
    const CLI::Range port(0, 65535);
    app.add_option("--uid", identity.uid, "The server's identity, as told before login")
        ->capture_default_str();
    app.add_option("--suid", identity.suid, "Its short form")->capture_default_str();
    app.add_option("--mac", identity.mac, "Hardware address of its first network card")
        ->capture_default_str();
    app.add_option("--model", identity.model, "Model name")->capture_default_str();
    app.add_option("--firmware", identity.firmware, "Firmware version")->capture_default_str();
    app.add_option("--sync-version", identity.syncVersion,
                   "Version of the sync service; --- with --no-sync-service unless given")
        ->capture_default_str();
    app.add_option("--queue-limit", identity.queueLimit, "Most entries of the change queue")
        ->capture_default_str();
    app.add_option("--message-queue-limit", identity.messageQueueLimit, "Most entries of the message queue")
        ->capture_default_str();
    app.add_option("--peltnet-name", identity.peltnetName, "Name for remote access");
    app.add_option("--ddns-name", identity.ddnsName, "Dynamic DNS name");
    app.add_option("--external-address", identity.externalAddress, "Address seen from outside");
    app.add_option("--external-port", identity.externalPort, "HTTP port seen from outside")->check(port);
    app.add_option("--external-tls-port", identity.externalTlsPort, "HTTPS port seen from outside")
        ->check(port);
    app.add_flag("--recovering", identity.recovering, "A server whose databases aren't there yet");
    app.add_flag("--migrating", identity.migrating, "A server that moves its databases");
    app.add_flag("!--sync-disabled", identity.syncEnabled, "A server that tells its sync function is off");
    app.add_option("--no-sync-for", withoutSync, "A user who may not sync, repeatable");
}

void addCloudOptions(CLI::App& app, CloudEntry& cloud) {
    auto* url =
        app.add_option("--cloud", cloud.url, "http://host[:port] of a torvi-cloud that lists this server")
            ->check([](const std::string& text) {
                return text.rfind("http://", 0) == 0 ? "" : "not http://host[:port]: " + text;
            });
    auto* user = app.add_option("--cloud-user", cloud.user, "Whose device it is there")->needs(url);
    url->needs(user);
    app.add_option("--device-name", cloud.deviceName, "Its name there; --server-name unless given")
        ->needs(url);
    app.add_option("--device-id", cloud.deviceId, "Its id there; --uid unless given")->needs(url);
    app.add_option("--device-description", cloud.description, "A word about it")->needs(url);
    app.add_option("--device-address", cloud.address,
                   "Its address in its own network; --address unless given")
        ->needs(url);
    app.add_flag("!--no-remote-access", cloud.remoteAccess, "Not reached from outside")->needs(url);
}

}  // namespace

int readOptions(int argc, char** argv, Options& options) {
    CLI::App app{
        "A NAS on a folder: serves the sync and file-manager protocols strictly, for tests and trials.",
        "torvi-nas"};
    std::vector<std::string> users;
    std::vector<std::string> quotas;
    std::vector<std::string> teams;
    std::vector<std::string> volumes;
    std::vector<std::string> domains;
    std::vector<std::string> directoryUsers;
    std::vector<std::string> descriptions;
    std::vector<std::string> configAcl;
    std::vector<std::string> faults;
    std::vector<std::string> secondFactors;
    std::vector<std::string> questionTexts;
    std::vector<std::string> withoutSync;
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
    app.add_option("--volume", volumes, "share:bytes of a share on a volume of its own, repeatable");
    app.add_option("--veto", options.veto, "Pattern of names that must not be synced, repeatable");
    app.add_option("--changes-kept", options.changesKept, "Changes that the log keeps")
        ->capture_default_str()
        ->check(CLI::Range(1LL, 1000000LL));
    app.add_option("--team", teams,
                   "owner:/path:receiver[:ro] shares a folder as vtf://<owner>-<leaf>/ unless it did before, "
                   "repeatable");
    app.add_option("--directory", domains, "NETBIOS:domain of a directory service, repeatable");
    app.add_option(
        "--directory-user", directoryUsers,
        "NETBIOS:name of a user whom a directory knows; an account NETBIOS\\name lets them log in, "
        "repeatable");
    app.add_option("--description", descriptions, "name:text that user lists tell of somebody, repeatable");
    app.add_option("--config-acl", configAcl,
                   "section:key:0 or section:key:1 of what users may change of their devices' configuration, "
                   "repeatable");
    app.add_option("--config-password", options.configRules.password,
                   "Password that opens what users may not change; an empty one opens nothing");
    app.add_option("--second-factor", secondFactors,
                   "name:code=CODE, name:question=NO:TEXT:ANSWER or name:mail=ADDRESS, asked for after the "
                   "password; repeatable, the login asks for a user's first");
    app.add_option("--question-text", questionTexts,
                   "no:language:text of a question for clients of that language, repeatable");
    app.add_option("--try-limit", options.tryLimit,
                   "Wrong second steps that lock an account until a control request; -1 for no limit")
        ->capture_default_str()
        ->check(CLI::Range(-1, 1000000));
    app.add_option("--mail-dir", options.mailFolder,
                   "Folder that mails are written to, of links and second steps: 0001.eml and so on");
    auto* slaveId = app.add_option("--slave-id", options.slaveId, "This node's id in a cluster");
    auto* clusterStatus = app.add_option("--cluster-status", options.clusterStatus,
                                         "Cluster status told at login; 1 with --slave-id, else 0");
    app.add_option("--session-ttl", ttl, "Seconds of rest after which a session is gone")
        ->capture_default_str()
        ->check(CLI::Range(1LL, 31536000LL));
    app.add_option(
        "--session-dir", options.sessionFolder,
        "Keep sessions here, shared by the nodes of a cluster, and with --slave-id the shares and links too");
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
    app.add_flag("--no-sync-service", noSync, "An older server: nothing under cgi-bin/torvi");
    app.add_flag("--booting", options.booting,
                 "Nothing under cgi-bin/torvi until a control request ends the boot");
    app.add_flag("--redirect-tls", options.redirectTls,
                 "Send logins and identity requests from the HTTP port to the HTTPS port");
    addIdentityOptions(app, options.identity, withoutSync);
    addCloudOptions(app, options.cloud);
    app.add_flag("--no-fcgi", noFcgi, "A server without torvisrv.fcgi");
    app.add_option("--fail", faults,
                   "Arm a fault: name[,match=TEXT][,count=N][,skip=N][,bytes=K][,ms=M]..., repeatable");
    app.add_flag("--control", options.control, "Offer /control/ to arm faults and read what happened");

    try {
        app.parse(argc, argv);
        for (const std::string& rule : users) options.users.add(rule);
        for (const std::string& rule : secondFactors) options.users.addSecondFactor(rule);
        for (const std::string& rule : questionTexts) options.questionTexts.add(rule);
        options.identity.withoutSync.insert(withoutSync.begin(), withoutSync.end());
        for (const std::string& rule : quotas) options.users.setQuota(rule);
        for (const std::string& rule : teams) options.teams.add(rule);
        for (const std::string& rule : domains) options.directory.addDomain(rule);
        for (const std::string& rule : directoryUsers) options.directory.addUser(rule);
        for (const std::string& rule : descriptions) options.directory.describe(rule);
        for (const std::string& rule : configAcl) options.configRules.acl.push_back(parseAclRule(rule));
        for (const std::string& rule : volumes) options.volumes.add(rule);
        for (const std::string& pattern : options.veto) {
            if (pattern.empty() || pattern.find('/') != std::string::npos) {
                throw std::invalid_argument("--veto wants a pattern of names, not " + pattern);
            }
        }
        for (const std::string& rule : faults) options.faults.push_back(parseFaultRule(rule));
        if (options.certificate.empty() != options.key.empty()) {
            throw std::invalid_argument("--cert and --key go together");
        }
        if (options.redirectTls && options.tlsPort < 0) {
            throw std::invalid_argument("--redirect-tls needs --tls-port");
        }
        requireMailFolder(options);
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
    if (noSync && app.count("--sync-version") == 0) {
        options.identity.syncVersion = "---";
    }
    options.fcgi = !noFcgi;
    if (clusterStatus->empty() && !slaveId->empty()) {
        options.clusterStatus = 1;
    }
    return -1;
}

}  // namespace nas
