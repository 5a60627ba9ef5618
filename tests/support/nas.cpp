#include "support/nas.h"

#include "support/programs.h"

Nas::Nas() : Nas(Options()) {}

Nas::Nas(Options options)
    : m_options(std::move(options)), m_root(m_options.root.empty() ? m_folder.string() : m_options.root) {
    start();
}

void Nas::start() {
    std::vector<std::string> arguments = {"--root", m_root};
    for (const std::string& user : m_options.users) arguments.insert(arguments.end(), {"--user", user});
    arguments.insert(arguments.end(), m_options.arguments.begin(), m_options.arguments.end());
    run("torvi-nas", kTorviNas, m_options.address, m_options.tls, std::move(arguments));
}

Nas::~Nas() = default;

void Nas::expireSessions() {
    control("POST", "sessions/expire");
}

void Nas::startAgain() {
    start();
}
