#include "window.h"

#include <CLI/CLI.hpp>
#include <string>

namespace torvi {

void Window::addTo(CLI::App& command) {
    command.add_option("--offset", offset, "Leave out so many at the start")
        ->check(CLI::Range(0, 1000000000).description(""))
        ->type_name("COUNT");
    command.add_option("--limit", limit, "Show at most so many")
        ->check(CLI::Range(1, 1000000000).description(""))
        ->type_name("COUNT");
}

void Window::addPagesTo(CLI::App& command, const char* records) {
    command.add_option("--page-size", pageSize, std::string(records) + " in one request")
        ->check(CLI::Range(1, 10000).description(""))
        ->type_name("COUNT")
        ->capture_default_str();
}

}  // namespace torvi
