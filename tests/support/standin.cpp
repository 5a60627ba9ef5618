#include "support/standin.h"

#include <httplib.h>
#include <json/json.h>

#include <csignal>
#include <sstream>
#include <stdexcept>

namespace {

/// The port behind "<name>=<address>:" in the line that says the server is ready, 0 if it isn't there.
std::uint16_t portIn(const std::string& line, const std::string& name) {
    const auto at = line.find(" " + name + "=");
    if (at == std::string::npos) return 0;
    const std::string word = line.substr(at + name.size() + 2, line.find(' ', at + 1) - at - name.size() - 2);
    const auto colon = word.rfind(':');
    return colon == std::string::npos ? 0 : static_cast<std::uint16_t>(std::stoi(word.substr(colon + 1)));
}

Json::Value parsed(const std::string& text) {
    Json::Value value;
    std::istringstream(text) >> value;
    return value;
}

}  // namespace

StandIn::~StandIn() = default;

void StandIn::run(const std::string& name, const std::string& program, const std::string& address, bool tls,
                  std::vector<std::string> arguments) {
    Process::Options process;
    process.arguments = {"--address", address, "--port", std::to_string(m_port), "--control"};
    if (tls) process.arguments.insert(process.arguments.end(), {"--tls-port", std::to_string(m_tlsPort)});
    process.arguments.insert(process.arguments.end(), arguments.begin(), arguments.end());
    m_address = address;
    m_process = std::make_unique<Process>(program, std::move(process));
    const auto ready = m_process->waitForLine(name + " ready ");
    if (!ready) throw std::runtime_error(name + " doesn't start: " + log());
    m_port = portIn(*ready, "http");
    m_tlsPort = portIn(*ready, "tls");
    if (m_port == 0 || (tls && m_tlsPort == 0)) throw std::runtime_error("no port in: " + *ready);
}

std::string StandIn::control(const std::string& method, const std::string& what, const std::string& body) {
    httplib::Client client(m_address, m_port);
    httplib::Request request;
    request.method = method;
    request.path = "/control/" + what;
    request.body = body;
    if (!body.empty()) request.set_header("Content-Type", "application/json");
    const httplib::Result result = client.send(request);
    if (!result || result->status != 200) {
        throw std::runtime_error(method + " " + request.path + ": " +
                                 (result ? std::to_string(result->status) + " " + result->body
                                         : httplib::to_string(result.error())));
    }
    return result->body;
}

int StandIn::arm(const std::string& rule) {
    Json::Value fault(Json::objectValue);
    std::istringstream pieces(rule);
    std::string piece;
    while (std::getline(pieces, piece, ',')) {
        const auto equals = piece.find('=');
        if (equals == std::string::npos) {
            fault["name"] = piece;
        } else {
            fault[piece.substr(0, equals)] = piece.substr(equals + 1);
        }
    }
    return parsed(control("POST", "faults", Json::FastWriter().write(fault)))["id"].asInt();
}

void StandIn::disarm() {
    control("DELETE", "faults");
}

std::int64_t StandIn::hits(int fault) {
    // Held by name: the loop would outlive a temporary.
    const Json::Value reply = parsed(control("GET", "faults"));
    for (const Json::Value& entry : reply["faults"]) {
        if (entry["id"].asInt() == fault) return entry["hits"].asInt64();
    }
    throw std::out_of_range("no such fault: " + std::to_string(fault));
}

std::int64_t StandIn::requestCount(const std::string& func) {
    const Json::Value requests = parsed(control("GET", "requests"));
    return func.empty() ? requests["total"].asInt64() : requests["by_func"].get(func, 0).asInt64();
}

void StandIn::forgetRequests() {
    control("DELETE", "requests");
}

std::string StandIn::log() const {
    return m_process->out() + m_process->err();
}

bool StandIn::waitForLog(const std::string& text) const {
    return m_process->waitFor([&](const std::string& out, const std::string& err) {
        return out.find(text) != std::string::npos || err.find(text) != std::string::npos;
    });
}

int StandIn::stop() {
    m_process->sendSignal(SIGTERM);
    return m_process->wait();
}

void StandIn::kill() {
    m_process->sendSignal(SIGKILL);
    m_process->wait();
}
