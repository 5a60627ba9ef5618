#include "commands.h"

#include <memory>

namespace torvi {
namespace {

constexpr const char* kCommandFooter =
    "Connection, proxy and output options (--server, --user, --json, ...) may stand here too: see torvi "
    "--help";

constexpr const char* kFooter = R"(
Where a value comes from: the command line, then the environment (TORVI_SERVER, TORVI_PORT, TORVI_USER,
TORVI_PASSWORD, TORVI_CODE, TORVI_ANSWER, TORVI_PROXY_USER, TORVI_PROXY_PASSWORD), then the profile that
`torvi login` stored. The password is asked for on the terminal when it is needed and none of these gives it.

Examples:
  torvi probe --server nas.local                        who is there, before any login
  torvi login --server nas.local --tls --user alice     begin a session that later commands go on with
  torvi ls /home --sort size --reverse                  the largest last first
  torvi put report.pdf /home/                           upload, keeps the modification time
  torvi put film.mkv /home/ --resume                    upload in slices; run again to go on
  torvi get /home/film.mkv                              download; run again to resume
  torvi mv /home/report.pdf /home/2024/                 move into another folder
  torvi rm -r /home/drafts --dry-run                    show all that would go
  torvi log --follow                                    changes on the server as they come
  torvi link create /home/report.pdf --expires 7d       an address that anybody can open
  torvi device config set mail-port=25                  what the server keeps for this machine
  torvi cloud signin --cloud cloud.example --client-id desk-app --refresh-token-file token
  torvi cloud reach                                     by which addresses one's NAS is reached
  torvi login -s 192.168.1.20:8080 --user alice         one of them
  torvi ls /home --json | jq '.entries[].name'          for scripts

Exit codes:
  0  done                        6  permission denied
  1  the server refused          7  cancelled (Ctrl-C)
  2  wrong usage                 8  transfer or listing incomplete
  3  cannot connect              9  a local file can't be read or written
  4  not authenticated          10  exists already
  5  not found                  11  no space or quota left on the server
                                12  changed on the server since it was looked at
)";

/// A flag bound to an optional would be false, not empty, when it isn't given.
std::function<void(int64_t)> decide(std::optional<bool>& flag) {
    return [&flag](int64_t count) { flag = count > 0; };
}

}  // namespace

void addFooter(CLI::App& app) {
    app.footer(kFooter);
}

bool namesCommand(const CLI::App& app) {
    if (app.get_require_subcommand_min() == 0) return true;
    const auto chosen = app.get_subcommands();
    return !chosen.empty() && namesCommand(*chosen.front());
}

void addGlobalOptions(CLI::App& app, GlobalOptions& options) {
    // What the subcommands inherit comes before they are made.
    app.footer(kCommandFooter);
    app.require_subcommand(1);
    // Options of the program may stand behind the subcommand too.
    app.fallthrough();
    app.failure_message([](const CLI::App* failed, const CLI::Error& error) {
        std::string message = error.what();
        // A word that is no command shows only in what is left over.
        if (failed->get_parent() == nullptr && !namesCommand(*failed) && failed->remaining_size() > 0)
            message = failed->remaining().front() + ": no such command";
        return "torvi: " + message + "\nRun torvi --help for more information.\n";
    });
    app.set_version_flag("--version", "torvi " TORVI_VERSION);

    const char* connection = "Connection";
    app.add_option("--server,-s", options.server, "Host name or address, with or without a port")
        ->envname("TORVI_SERVER")
        ->type_name("HOST[:PORT]")
        ->group(connection);
    app.add_option("--port", options.port, "Port (8080, or 443 with --tls)")
        ->check(CLI::Range(1, 65535).description(""))
        ->envname("TORVI_PORT")
        ->type_name("PORT")
        ->group(connection);
    app.add_flag_function("--tls,!--no-tls", decide(options.tls),
                          "Use HTTPS. The certificate is not verified")
        ->group(connection);
    app.add_option("--tls-port", options.tlsPort,
                   "Where to go if the server insists on HTTPS; without it that is a failure")
        ->check(CLI::Range(1, 65535).description(""))
        ->type_name("PORT")
        ->group(connection);
    app.add_option("--user", options.user, "User name")
        ->envname("TORVI_USER")
        ->type_name("NAME")
        ->group(connection);
    app.add_option("--password-file", options.passwordFile,
                   "Read the password from the file's first line; - is stdin")
        ->type_name("FILE")
        ->group(connection);
    app.add_option("--timeout", options.timeoutSeconds, "Seconds that a login may take (15)")
        ->check(CLI::Range(0.001, 86400.0).description(""))
        ->type_name("SECONDS")
        ->group(connection);
    app.add_option("--node", options.node, "Slave id of the cluster node that has the path")
        ->type_name("ID")
        ->group(connection);
    app.add_flag_function("--fcgi,!--no-fcgi", decide(options.fcgi),
                          "The server has the FastCGI end of the service")
        ->group(connection);
    app.add_option("--team", options.teams,
                   "A folder that another user shares, as CLIENTPATH=SERVERPATH[@NODE]; repeatable, or none")
        ->allow_extra_args(false)
        ->type_name("FOLDER")
        ->group(connection);

    const char* second = "Second factor, where the server wants one";
    auto* code = app.add_option("--code", options.code, "The security code, or a mailed emergency code")
                     ->envname("TORVI_CODE")
                     ->type_name("CODE")
                     ->group(second);
    auto* answer = app.add_option("--answer", options.answer, "The answer to the security question")
                       ->envname("TORVI_ANSWER")
                       ->type_name("TEXT")
                       ->group(second);
    code->excludes(answer);
    app.add_flag("--mail", options.mail, "Have the server mail an emergency code")
        ->excludes(code)
        ->excludes(answer)
        ->group(second);

    const char* proxy = "Proxy";
    app.add_option("--proxy", options.proxy, "none, system, or HOST:PORT of an HTTP proxy")
        ->type_name("PROXY")
        ->group(proxy);
    app.add_option("--proxy-user", options.proxyUser, "User name for the proxy")
        ->envname("TORVI_PROXY_USER")
        ->type_name("NAME")
        ->group(proxy);
    app.add_option("--proxy-password-file", options.proxyPasswordFile,
                   "Read the proxy's password from the file's first line")
        ->type_name("FILE")
        ->group(proxy);

    const char* output = "Output";
    app.add_flag("--json", options.json, "Machine-readable output on stdout")->group(output);
    app.add_flag("--quiet,-q", options.quiet, "No progress and no notes, only results and failures")
        ->group(output);
    app.add_flag("--verbose,-v", options.verbose, "Write the library's log to stderr")->group(output);
}

void addPathCommand(const Commands& commands, const char* name, const char* help,
                    void (*run)(const GlobalOptions&, const std::string&)) {
    CLI::App* command = commands.app.add_subcommand(name, help);
    auto path = std::make_shared<std::string>();
    command->add_option("path", *path, "The path on the server")->type_name("")->required();
    command->callback([&global = commands.global, &action = commands.action, path, run] {
        action = [&global, path, run] { run(global, *path); };
    });
}

}  // namespace torvi
