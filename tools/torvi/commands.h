#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>
#include <string>

#include "options.h"

namespace torvi {

/// What the chosen subcommand does, to be run after the parsing.
using Action = std::function<void()>;

/// A subcommand's parsed state with what all of them share.
struct Commands {
    CLI::App& app;
    const GlobalOptions& global;
    Action& action;
};

/// Before the commands.
void addGlobalOptions(CLI::App& app, GlobalOptions& options);
/// The program's own last words in its help, after the commands.
void addFooter(CLI::App& app);
/// Whether a command stands wherever one must.
bool namesCommand(const CLI::App& app);

// One per family.
void addSessionCommands(const Commands& commands);
void addProbeCommands(const Commands& commands);
void addStateCommands(const Commands& commands);
void addLogCommand(const Commands& commands);
void addProxyCommand(const Commands& commands);
void addListCommands(const Commands& commands);
void addPutCommand(const Commands& commands);
void addGetCommand(const Commands& commands);
void addFileCommands(const Commands& commands);
void addMoveCommand(const Commands& commands);
void addTrashCommands(const Commands& commands);
void addJobCommand(const Commands& commands);
void addVersionCommands(const Commands& commands);
void addTeamCommands(const Commands& commands);
void addUsersCommand(const Commands& commands);
void addLinkCommand(const Commands& commands);
void addSettingsCommand(const Commands& commands);
void addDeviceCommand(const Commands& commands);
void addCloudCommand(const Commands& commands);

/// Has the command run that function with its options.
template <typename Options>
void runs(const Commands& commands, CLI::App* command, std::shared_ptr<Options> options,
          void (*run)(const GlobalOptions&, const Options&)) {
    command->callback([&global = commands.global, &action = commands.action, options, run] {
        action = [&global, options, run] { run(global, *options); };
    });
}

/// Adds a command whose one argument is a path on the server.
void addPathCommand(const Commands& commands, const char* name, const char* help,
                    void (*run)(const GlobalOptions&, const std::string& path));

}  // namespace torvi
