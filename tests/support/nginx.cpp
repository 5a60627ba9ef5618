#include "support/nginx.h"

#include "support/service.h"

namespace {

std::string filled(std::string text, const std::map<std::string, std::string>& values) {
    for (const auto& [name, value] : values) {
        const std::string mark = "@" + name + "@";
        for (std::size_t at = text.find(mark); at != std::string::npos;
             at = text.find(mark, at + value.size())) {
            text.replace(at, mark.size(), value);
        }
    }
    return text;
}

}  // namespace

std::string Nginx::configuration(const std::string& http) {
    return "daemon off;\nmaster_process off;\nworker_processes 1;\npid @DIR@/nginx.pid;\nerror_log stderr "
           "warn;\n"
           "events { worker_connections 256; }\n"
           "http {\n"
           "  access_log @DIR@/access.log;\n"
           "  client_body_temp_path @DIR@/body;\n  proxy_temp_path @DIR@/proxy;\n  fastcgi_temp_path "
           "@DIR@/fastcgi;\n"
           "  uwsgi_temp_path @DIR@/uwsgi;\n  scgi_temp_path @DIR@/scgi;\n" +
           http + "\n}\n";
}

Nginx::Nginx(std::string configuration, std::map<std::string, std::string> values) {
    const std::string program = findProgram("nginx");
    if (program.empty()) throw std::runtime_error("nginx isn't installed");
    const wire::CertificatePem& pem = wire::certificatePem(wire::Certificate::SelfSigned);
    values["DIR"] = m_dir.string();
    values["CERT"] = m_dir.write("cert.pem", pem.certificate);
    values["KEY"] = m_dir.write("key.pem", pem.key);
    m_process = startOnFreePort(m_port, [&](std::uint16_t port) {
        m_tlsPort = wire::freePort();
        values["PORT"] = std::to_string(port);
        values["TLS_PORT"] = std::to_string(m_tlsPort);
        Process::Options options;
        options.arguments = {"-p", m_dir.string(),
                             "-e", "stderr",
                             "-c", m_dir.write("nginx.conf", filled(configuration, values))};
        return std::make_unique<Process>(program, std::move(options));
    });
}
