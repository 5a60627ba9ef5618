#pragma once

#include <memory>
#include <utility>

#include "options.h"

namespace torvi {

// The parts of `torvi link`.
void addLinkListCommands(const Commands& commands);
void addLinkMakeCommands(const Commands& commands);
void addLinkUpdateCommand(const Commands& commands);
void addLinkMailCommand(const Commands& commands);
void addSharedFolderCommands(const Commands& commands);

/// Has the command run that function with its options.
template <typename Options>
void runs(const Commands& commands, CLI::App* command, std::shared_ptr<Options> options,
          void (*run)(const GlobalOptions&, const Options&)) {
    command->callback([&global = commands.global, &action = commands.action, options, run] {
        action = [&global, options, run] { run(global, *options); };
    });
}

}  // namespace torvi
